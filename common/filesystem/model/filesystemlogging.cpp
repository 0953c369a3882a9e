#include "common/filesystem/model/filesystemlogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcFileSystem, "vantrel.filesystem")

} // namespace vantrel

#include "common/filesystem/ftp/ftplogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcFtp, "vantrel.ftp")

} // namespace vantrel

#include "common/media/medialogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcMedia, "vantrel.media")

} // namespace vantrel

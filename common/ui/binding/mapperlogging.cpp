#include "common/ui/binding/mapperlogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcMapper, "vantrel.ui.mapper")

} // namespace vantrel

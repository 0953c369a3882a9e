#include "common/outputs/outputslogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcOutputs, "vantrel.outputs")

} // namespace vantrel

#include "common/command/commandlogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcCommand, "vantrel.command")

} // namespace vantrel

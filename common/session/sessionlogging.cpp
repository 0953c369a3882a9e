#include "common/session/sessionlogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcSession, "vantrel.session")

} // namespace vantrel

#include "common/session/settings/sessionlogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcSession, "vantrel.session")

} // namespace vantrel

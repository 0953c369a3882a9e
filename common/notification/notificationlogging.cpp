#include "common/notification/notificationlogging.h"

namespace vantrel {

Q_LOGGING_CATEGORY(lcNotification, "vantrel.notification")

} // namespace vantrel

#include "common/command/refusal.h"

#include "common/notification/notificationmanagerimpl.h"

namespace vantrel {

void tellNotDone(const QString& command, const QString& why)
{
    NotificationManagerImpl::instance()->createNotification(
        Notification::WarningMessage, QObject::tr("Not done: %1").arg(command.toHtmlEscaped()),
        why.toHtmlEscaped());
}

} // namespace vantrel

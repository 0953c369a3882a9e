#include "common/command/refusal.h"

#include "common/media/address/showntext.h"
#include "common/notification/notificationmanagerimpl.h"

namespace vantrel {

void tellNotDone(const QString& command, const QString& why)
{
    NotificationManagerImpl::instance()->createNotification(
        Notification::WarningMessage, QObject::tr("Not done: %1").arg(shownText(command).toHtmlEscaped()),
        shownText(why).toHtmlEscaped());
}

} // namespace vantrel

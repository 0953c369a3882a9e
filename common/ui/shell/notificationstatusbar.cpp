#include "common/ui/shell/notificationstatusbar.h"

namespace vantrel {

NotificationStatusBar::NotificationStatusBar(QWidget* parent)
    : NotificationHost(QUrl(QStringLiteral("qrc:/QmlModules/ZTCommon/ZTNotificationStatusBar.qml")), parent)
{
    setObjectName(QStringLiteral("NotificationStatusBar"));
    setAccessibleName(tr("Notifications"));
}

/// Hidden while nothing is counted: then it is no stop of the keyboard either.
void NotificationStatusBar::fit(const QSize& wanted)
{
    setVisible(!wanted.isEmpty());
    setFixedSize(wanted);
}

} // namespace vantrel

#include "common/ui/shell/notificationpresenter.h"

#include "common/notification/notificationmanagerimpl.h"

#include <algorithm>

namespace vantrel {

NotificationPresenter::NotificationPresenter(QWidget* parent)
    : NotificationHost(QUrl(QStringLiteral("qrc:/QmlModules/ZTCommon/ZTNotificationPopups.qml")), parent)
{
    setObjectName(QStringLiteral("NotificationPresenter"));
    setRootProperty("host", QVariant::fromValue<QObject*>(this));
    setManager(NotificationManagerImpl::instance());
}

void NotificationPresenter::setManager(NotificationManager* manager)
{
    NotificationHost::setManager(manager);
    if (manager) {
        connect(manager, &NotificationManager::notificationsChanged, this,
                &NotificationPresenter::onNotificationsChanged);
        connect(manager, &NotificationManager::notificationChanged, this,
                &NotificationPresenter::onNotificationChanged);
    }
    updateMouseInput();
}

void NotificationPresenter::setStay(std::chrono::milliseconds stay)
{
    setRootProperty("stay", static_cast<int>(stay.count()));
}

void NotificationPresenter::setMostWidth(int width)
{
    setRootProperty("mostWidth", width);
}

void NotificationPresenter::updateMouseInput()
{
    const auto all = manager() ? manager()->notifications() : QList<QSharedPointer<Notification>>();
    setAttribute(Qt::WA_TransparentForMouseEvents,
                 std::ranges::all_of(all, [](const auto& one) { return one->isAccepted(); }));
}

void NotificationPresenter::fit(const QSize& wanted)
{
    if (wanted.isEmpty())
        return hide();
    resize(wanted);
    show();
    raise();
}

} // namespace vantrel

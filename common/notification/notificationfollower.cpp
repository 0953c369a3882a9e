#include "common/notification/notificationfollower.h"

namespace vantrel {

bool NotificationFollower::setManager(NotificationManager* manager)
{
    if (m_manager == manager)
        return false;
    if (m_manager)
        m_manager->disconnect(this);
    m_manager = manager;
    if (manager) {
        connect(manager, &NotificationManager::notificationsChanged, this,
                [this] { onNotificationsChanged(); });
        connect(manager, &NotificationManager::notificationChanged, this,
                [this](const NotificationPtr& notification) { onNotificationChanged(notification); });
        connect(manager, &QObject::destroyed, this, [this] { onNotificationsChanged(); });
    }
    onNotificationsChanged();
    return true;
}

QList<NotificationFollower::NotificationPtr> NotificationFollower::notifications() const
{
    return m_manager ? m_manager->notifications() : QList<NotificationPtr>();
}

} // namespace vantrel

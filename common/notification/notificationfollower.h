#pragma once

#include "common/notification/notificationmanager.h"

#include <QPointer>

namespace vantrel {

/// The part of a model that follows a manager, which may be changed for another one and may go first. Main
/// thread only.
class NotificationFollower : public QObject
{
    Q_OBJECT

public:
    using NotificationPtr = QSharedPointer<Notification>;

    NotificationManager* manager() const { return m_manager; }
    /// Null follows none. False when it is the same as before.
    bool setManager(NotificationManager* manager);
    /// Empty without a manager.
    QList<NotificationPtr> notifications() const;

protected:
    /// Another list than before, also since there is another manager, or none.
    virtual void onNotificationsChanged() = 0;
    virtual void onNotificationChanged(const NotificationPtr& notification) = 0;

private:
    QPointer<NotificationManager> m_manager;
};

} // namespace vantrel

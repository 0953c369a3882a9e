#pragma once

#include "common/notification/notificationmanagerimpl.h"

namespace vantrel {

/// The list behind NotificationManagerImpl, and the eye on each notification in it.
class NotificationManagerImplPrivate : public QObject
{
    Q_OBJECT

public:
    explicit NotificationManagerImplPrivate(NotificationManagerImpl* manager)
        : m_manager(manager)
    {
    }

    void observeNotification(const QSharedPointer<Notification>& notification);
    void forgetAll();
    /// That says the same and that nobody has accepted yet; null for none.
    QSharedPointer<Notification> findWaiting(Notification::MessageType type, const QString& title,
                                             const QString& details) const;

    QList<QSharedPointer<Notification>> list;

private:
    NotificationManagerImpl* m_manager;
};

} // namespace vantrel

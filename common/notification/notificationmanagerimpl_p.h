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

    void add(const QSharedPointer<Notification>& notification);
    void forgetAll();
    /// That says the same and that nobody has accepted yet; null for none.
    QSharedPointer<Notification> findWaiting(Notification::MessageType type, const QString& title,
                                             const QString& details) const;

    QList<QSharedPointer<Notification>> list;

private:
    void observeNotification(const QSharedPointer<Notification>& notification);
    void makeRoom();
    qsizetype leastMissed() const;
    void countLeftOut(int errors);

    NotificationManagerImpl* m_manager;
    QSharedPointer<Notification> m_leftOut; // tells of errors that nobody has seen
    int m_leftOutCount = 0;
};

} // namespace vantrel

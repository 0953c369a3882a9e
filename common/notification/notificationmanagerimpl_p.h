#pragma once

#include "common/notification/notificationmanagerimpl.h"

#include <array>

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
    void append(const QSharedPointer<Notification>& notification);
    void forgetAll();
    bool isFull() const { return list.size() >= mostHeld; }
    /// A quarter goes where there is that much: what was accepted, then what is least grave, the oldest
    /// first. An error that nobody has accepted stays.
    void makeRoom();
    /// That so many of a type are not listed is told by one that counts them until somebody accepts it.
    void leaveOut(Notification::MessageType type, int number);
    /// That says the same and that nobody has accepted yet; null for none.
    QSharedPointer<Notification> findWaiting(Notification::MessageType type, const QString& title,
                                             const QString& details) const;

    QList<QSharedPointer<Notification>> list;

private:
    struct LeftOut
    {
        QSharedPointer<Notification> told;
        int number = 0;
    };

    static constexpr qsizetype mostHeld = 500; // beside those that tell what is left out

    bool mayGo(const Notification& notification) const;

    NotificationManagerImpl* m_manager;
    std::array<LeftOut, 4> m_leftOut; // by type
};

} // namespace vantrel

#pragma once

#include "common/notification/notificationmanager.h"

#include <memory>

namespace vantrel {

class NotificationManagerImplPrivate;

/// The process's one sink of messages to the operator. Its list keeps mostKept of them: of those that were
/// accepted, then of the mildest, the oldest leave. Where nothing but errors that nobody has accepted is left
/// to leave, one more error says how many did.
class NotificationManagerImpl : public NotificationManager
{
    Q_OBJECT

public:
    static constexpr qsizetype mostKept = 1000;

    explicit NotificationManagerImpl(QObject* parent = nullptr);
    ~NotificationManagerImpl() override;
    static NotificationManagerImpl* instance();

    using NotificationManager::createNotification;
    QSharedPointer<Notification> createNotification(Notification::MessageType type, QString const& title,
                                                    QString const& details) override;
    bool addNotification(QSharedPointer<Notification> notification) override;
    void clear() override;
    QList<QSharedPointer<Notification>> notifications() const override;

private:
    std::unique_ptr<NotificationManagerImplPrivate> m_private;
};

} // namespace vantrel

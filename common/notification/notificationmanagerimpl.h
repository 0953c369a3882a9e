#pragma once

#include "common/notification/notificationmanager.h"

#include <memory>

namespace vantrel {

class NotificationManagerImplPrivate;

/// The process's one sink of messages to the operator. A notification stays in its list until clear(), but
/// for a flood: beyond some hundreds the least grave go, and errors that nobody has accepted are only counted
/// on. The log has them all.
class NotificationManagerImpl : public NotificationManager
{
    Q_OBJECT

public:
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

#pragma once

#include "common/notification/notification.h"

#include <QList>
#include <QSharedPointer>

namespace vantrel {

/// The sink of messages to the operator, as its users see it: it keeps all notifications and announces
/// changes. GUI thread only.
class NotificationManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<QSharedPointer<vantrel::Notification>> notifications READ notifications NOTIFY
                   notificationsChanged)

public:
    using QObject::QObject;

    virtual QSharedPointer<Notification> createNotification(Notification::MessageType type,
                                                            QString const& title, QString const& details) = 0;
    /// False when it is in the list already.
    virtual bool addNotification(QSharedPointer<Notification> notification) = 0;
    virtual void clear() = 0;
    /// In order of arrival.
    virtual QList<QSharedPointer<Notification>> notifications() const = 0;

    Q_INVOKABLE void createNotification(vantrel::Notification::MessageType type, const QString& title)
    {
        createNotification(type, title, QString());
    }

Q_SIGNALS:
    void notificationAdded(QSharedPointer<vantrel::Notification> notification);
    void notificationsChanged();
    void notificationChanged(QSharedPointer<vantrel::Notification> notification);
};

} // namespace vantrel

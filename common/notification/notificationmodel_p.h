#pragma once

#include "common/notification/notificationmodel.h"

#include <QPointer>

namespace vantrel {

class NotificationModelPrivate : public QObject
{
    Q_OBJECT

public:
    using NotificationPtr = QSharedPointer<Notification>;

    explicit NotificationModelPrivate(NotificationModel* model)
        : m_model(model)
    {
    }

    void setManager(NotificationManager* manager);
    void updateModel(const QList<NotificationPtr>& list);

    QPointer<NotificationManager> m_manager;
    QList<NotificationPtr> m_rows;

private:
    void takeRow(const NotificationPtr& notification, qsizetype to);
    void onNotificationsChanged();
    void onNotificationChanged(const NotificationPtr& notification);

    NotificationModel* m_model;
};

} // namespace vantrel

#pragma once

#include "common/notification/pendingnotificationmodel.h"

namespace vantrel {

class PendingNotificationModelPrivate : public QObject
{
    Q_OBJECT

public:
    using NotificationPtr = QSharedPointer<Notification>;

    explicit PendingNotificationModelPrivate(PendingNotificationModel* model)
        : m_model(model)
    {
    }

    void setManager(NotificationManager* manager);
    void populateModel(const QList<NotificationPtr>& list);

    QPointer<NotificationManager> m_manager;
    NotificationPtr m_row;

private:
    void onNotificationsChanged();
    void onNotificationChanged(const NotificationPtr& notification);

    PendingNotificationModel* m_model;
};

} // namespace vantrel

#pragma once

#include "common/notification/notificationfollower.h"
#include "common/notification/notificationmodel.h"

namespace vantrel {

class NotificationModelPrivate : public NotificationFollower
{
    Q_OBJECT

public:
    explicit NotificationModelPrivate(NotificationModel* model)
        : m_model(model)
    {
    }

    void updateModel(const QList<NotificationPtr>& list);

    QList<NotificationPtr> m_rows;

protected:
    void onNotificationsChanged() override;
    void onNotificationChanged(const NotificationPtr& notification) override;

private:
    void removeGone(const QList<NotificationPtr>& list);
    void takeRow(const NotificationPtr& notification, qsizetype to);

    NotificationModel* m_model;
};

} // namespace vantrel

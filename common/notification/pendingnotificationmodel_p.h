#pragma once

#include "common/notification/notificationfollower.h"
#include "common/notification/pendingnotificationmodel.h"

namespace vantrel {

class PendingNotificationModelPrivate : public NotificationFollower
{
    Q_OBJECT

public:
    explicit PendingNotificationModelPrivate(PendingNotificationModel* model)
        : m_model(model)
    {
    }

    void populateModel(const QList<NotificationPtr>& list);

    NotificationPtr m_row;

protected:
    void onNotificationsChanged() override { populateModel(notifications()); }
    void onNotificationChanged(const NotificationPtr& notification) override;

private:
    PendingNotificationModel* m_model;
};

} // namespace vantrel

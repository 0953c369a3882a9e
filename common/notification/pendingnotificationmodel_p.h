#pragma once

#include "common/notification/notificationfollower.h"
#include "common/notification/pendingnotificationmodel.h"

#include <QHash>

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
    void passOver();

    NotificationPtr m_row;

protected:
    void onNotificationsChanged() override { populateModel(notifications()); }
    void onNotificationChanged(const NotificationPtr& notification) override;

private:
    NotificationPtr gravestOf(const QList<NotificationPtr>& list) const;
    bool isPassedOver(const Notification& notification) const;

    PendingNotificationModel* m_model;
    QHash<const Notification*, int> m_passedOver; // and how often it had been said by then
};

} // namespace vantrel

#pragma once

#include "common/notification/notificationfollower.h"
#include "common/notification/notificationstatusmodel.h"

namespace vantrel {

class NotificationStatusModelPrivate : public NotificationFollower
{
    Q_OBJECT

public:
    struct Row
    {
        Notification::MessageType type;
        int count;
    };

    explicit NotificationStatusModelPrivate(NotificationStatusModel* model)
        : m_model(model)
    {
    }

    void resetModel() { populateModel(notifications()); }
    void populateModel(const QList<NotificationPtr>& list);

    QList<Row> m_rows;

protected:
    void onNotificationsChanged() override { resetModel(); }
    void onNotificationChanged(const NotificationPtr&) override { resetModel(); }

private:
    NotificationStatusModel* m_model;
};

} // namespace vantrel

#pragma once

#include "common/notification/notificationmodel.h"
#include "common/notification/sortednotificationmodel.h"

namespace vantrel {

class SortedNotificationModelPrivate : public QObject
{
    Q_OBJECT

public:
    explicit SortedNotificationModelPrivate(SortedNotificationModel* model);

    NotificationModel source;
};

} // namespace vantrel

#pragma once

#include "common/notification/notificationmodel.h"

#include <QSortFilterProxyModel>

namespace vantrel {

/// A manager's notifications, the newest first. Main thread only.
class SortedNotificationModel : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(vantrel::NotificationManager* manager READ manager WRITE setManager NOTIFY managerChanged)

public:
    explicit SortedNotificationModel(QObject* parent = nullptr);

    NotificationManager* manager() const { return m_source->manager(); }
    void setManager(NotificationManager* manager) { m_source->setManager(manager); }

Q_SIGNALS:
    void managerChanged();

private:
    NotificationModel* m_source;
};

} // namespace vantrel

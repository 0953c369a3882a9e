#pragma once

#include "common/notification/notificationmanager.h"

#include <QSortFilterProxyModel>

#include <memory>

namespace vantrel {

class SortedNotificationModelPrivate;

/// A manager's notifications, the newest first. Main thread only.
class SortedNotificationModel : public QSortFilterProxyModel
{
    Q_OBJECT
    Q_PROPERTY(vantrel::NotificationManager* manager READ manager WRITE setManager NOTIFY managerChanged)

public:
    explicit SortedNotificationModel(QObject* parent = nullptr);
    ~SortedNotificationModel() override;

    NotificationManager* manager() const;
    void setManager(NotificationManager* manager);

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

Q_SIGNALS:
    void managerChanged();

private:
    std::unique_ptr<SortedNotificationModelPrivate> d;
};

} // namespace vantrel

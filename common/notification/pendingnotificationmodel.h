#pragma once

#include "common/notification/notificationmodel.h"

namespace vantrel {

class PendingNotificationModelPrivate;

/// At most one row: the gravest of what waits, and of those the oldest. The roles are those of
/// NotificationModel. Main thread only; the manager may go first.
class PendingNotificationModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(vantrel::NotificationManager* manager READ manager WRITE setManager NOTIFY managerChanged)

public:
    explicit PendingNotificationModel(QObject* parent = nullptr);
    ~PendingNotificationModel() override;

    NotificationManager* manager() const;
    void setManager(NotificationManager* manager);
    /// Null while there is none.
    QSharedPointer<Notification> pending() const;
    /// The row's notification is no row any more, accepted or not, until it is said again: it was shown for
    /// long enough.
    Q_INVOKABLE void passOver();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QHash<int, QByteArray> roleNames() const override { return NotificationModel::names(); }

Q_SIGNALS:
    void managerChanged();

private:
    friend class PendingNotificationModelPrivate;
    std::unique_ptr<PendingNotificationModelPrivate> d;
};

} // namespace vantrel

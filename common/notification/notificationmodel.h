#pragma once

#include "common/notification/notificationmanager.h"

#include <QAbstractListModel>

#include <memory>

namespace vantrel {

class NotificationModelPrivate;

/// A manager's notifications in their order, each a row; for tables also with a column for each role. Rows
/// come, go and move one by one, so that a view keeps its place and selection. Main thread only; the manager
/// may go first.
class NotificationModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(vantrel::NotificationManager* manager READ manager WRITE setManager NOTIFY managerChanged)

public:
    enum NotificationModelRoles {
        TypeRole = 257,
        TitleRole = 258,
        DetailsRole = 259, // lines are divided by "<br>"
        DateTimeRole = 260,
        AcceptedRole = 261, // writable
        RepeatsRole = 262,  // how often it was said
    };
    Q_ENUM(NotificationModelRoles)

    explicit NotificationModel(QObject* parent = nullptr);
    ~NotificationModel() override;

    NotificationManager* manager() const;
    /// Null empties the model.
    void setManager(NotificationManager* manager);
    QSharedPointer<Notification> notificationAt(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QHash<int, QByteArray> roleNames() const override;

    /// What a role tells of the one on the row; invalid for a role that is none.
    static QVariant valueOf(const Notification& notification, int role, int row);
    static QHash<int, QByteArray> names();

Q_SIGNALS:
    void managerChanged();

private:
    friend class NotificationModelPrivate;
    std::unique_ptr<NotificationModelPrivate> d;
};

} // namespace vantrel

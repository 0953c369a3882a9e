#pragma once

#include "common/notification/notificationmanager.h"

#include <QAbstractListModel>
#include <QPointer>

namespace vantrel {

/// How many notifications of each kind nobody has accepted yet: a row for each kind that has any, the gravest
/// first. Main thread only; the manager may go first.
class NotificationStatusModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(vantrel::NotificationManager* manager READ manager WRITE setManager NOTIFY managerChanged)

public:
    enum NotificationStatusRoles {
        TypeRole = 257,
        CountRole = 258,
    };
    Q_ENUM(NotificationStatusRoles)

    using QAbstractListModel::QAbstractListModel;

    NotificationManager* manager() const { return m_manager; }
    void setManager(NotificationManager* manager);
    int count(Notification::MessageType type) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void managerChanged();

private:
    struct Row
    {
        Notification::MessageType type;
        int count;
    };

    void resetModel();
    void populateModel(const QList<QSharedPointer<Notification>>& list);

    QPointer<NotificationManager> m_manager;
    QList<Row> m_rows;
};

} // namespace vantrel

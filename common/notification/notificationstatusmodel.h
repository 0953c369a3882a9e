#pragma once

#include "common/notification/notificationmanager.h"

#include <QAbstractListModel>

#include <memory>

namespace vantrel {

class NotificationStatusModelPrivate;

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

    explicit NotificationStatusModel(QObject* parent = nullptr);
    ~NotificationStatusModel() override;

    NotificationManager* manager() const;
    void setManager(NotificationManager* manager);
    int count(Notification::MessageType type) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void managerChanged();

private:
    friend class NotificationStatusModelPrivate;
    std::unique_ptr<NotificationStatusModelPrivate> d;
};

} // namespace vantrel

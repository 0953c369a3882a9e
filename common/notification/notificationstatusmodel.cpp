#include "common/notification/notificationstatusmodel.h"

#include "common/notification/notificationlogging.h"

#include <map>

namespace vantrel {

void NotificationStatusModel::setManager(NotificationManager* manager)
{
    if (m_manager == manager)
        return;
    if (m_manager)
        m_manager->disconnect(this);
    m_manager = manager;
    if (manager) {
        connect(manager, &NotificationManager::notificationsChanged, this,
                &NotificationStatusModel::resetModel);
        connect(manager, &NotificationManager::notificationChanged, this,
                &NotificationStatusModel::resetModel);
        connect(manager, &QObject::destroyed, this, [this] { populateModel({}); });
    }
    resetModel();
    Q_EMIT managerChanged();
}

int NotificationStatusModel::count(Notification::MessageType type) const
{
    for (const Row& row : m_rows) {
        if (row.type == type)
            return row.count;
    }
    return 0;
}

void NotificationStatusModel::resetModel()
{
    populateModel(m_manager ? m_manager->notifications() : QList<QSharedPointer<Notification>>());
}

void NotificationStatusModel::populateModel(const QList<QSharedPointer<Notification>>& list)
{
    beginResetModel();
    std::map<Notification::MessageType, int, std::greater<>> counts;
    for (const QSharedPointer<Notification>& notification : list) {
        if (!notification->isAccepted())
            ++counts[notification->type()];
    }
    m_rows.clear();
    for (const auto& [type, count] : counts)
        m_rows.append({type, count});
    endResetModel();
}

int NotificationStatusModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant NotificationStatusModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !checkIndex(index))
        return {};
    const Row& row = m_rows.at(index.row());
    switch (role) {
    case TypeRole:
        return QVariant::fromValue(row.type);
    case Qt::DisplayRole:
    case CountRole:
        return row.count;
    default:
        if (role > Qt::UserRole)
            qCWarning(lcNotification) << "Unexpected role" << role << "on row" << index.row();
        return {};
    }
}

QVariant NotificationStatusModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && section == 0 && role == Qt::DisplayRole)
        return tr("Count");
    return QAbstractListModel::headerData(section, orientation, role);
}

QHash<int, QByteArray> NotificationStatusModel::roleNames() const
{
    return {{TypeRole, "type"}, {CountRole, "count"}};
}

} // namespace vantrel

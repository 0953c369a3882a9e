#include "common/notification/notificationstatusmodel.h"

#include "common/notification/notificationlogging.h"
#include "common/notification/notificationstatusmodel_p.h"

#include <map>

namespace vantrel {

NotificationStatusModel::NotificationStatusModel(QObject* parent)
    : QAbstractListModel(parent)
    , d(std::make_unique<NotificationStatusModelPrivate>(this))
{
}

NotificationStatusModel::~NotificationStatusModel() = default;

NotificationManager* NotificationStatusModel::manager() const
{
    return d->manager();
}

void NotificationStatusModel::setManager(NotificationManager* manager)
{
    if (d->setManager(manager))
        Q_EMIT managerChanged();
}

int NotificationStatusModel::count(Notification::MessageType type) const
{
    for (const NotificationStatusModelPrivate::Row& row : d->m_rows) {
        if (row.type == type)
            return row.count;
    }
    return 0;
}

int NotificationStatusModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(d->m_rows.size());
}

QVariant NotificationStatusModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !checkIndex(index))
        return {};
    const NotificationStatusModelPrivate::Row& row = d->m_rows.at(index.row());
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

void NotificationStatusModelPrivate::populateModel(const QList<NotificationPtr>& list)
{
    m_model->beginResetModel();
    std::map<Notification::MessageType, int, std::greater<>> counts;
    for (const NotificationPtr& notification : list) {
        if (!notification->isAccepted())
            ++counts[notification->type()];
    }
    m_rows.clear();
    for (const auto& [type, count] : counts)
        m_rows.append({type, count});
    m_model->endResetModel();
}

} // namespace vantrel

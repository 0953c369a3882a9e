#include "common/notification/pendingnotificationmodel.h"

#include "common/notification/notificationlogging.h"
#include "common/notification/pendingnotificationmodel_p.h"

#include <utility>

namespace vantrel {

PendingNotificationModel::PendingNotificationModel(QObject* parent)
    : QAbstractListModel(parent)
    , d(std::make_unique<PendingNotificationModelPrivate>(this))
{
}

PendingNotificationModel::~PendingNotificationModel() = default;

NotificationManager* PendingNotificationModel::manager() const
{
    return d->m_manager;
}

void PendingNotificationModel::setManager(NotificationManager* manager)
{
    d->setManager(manager);
}

QSharedPointer<Notification> PendingNotificationModel::pending() const
{
    return d->m_row;
}

int PendingNotificationModel::rowCount(const QModelIndex& parent) const
{
    return !parent.isValid() && d->m_row ? 1 : 0;
}

QVariant PendingNotificationModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !checkIndex(index))
        return {};
    const QVariant value = NotificationModel::valueOf(*d->m_row, role);
    if (!value.isValid() && role > Qt::UserRole)
        qCWarning(lcNotification) << "Unexpected role" << role << "on row" << index.row();
    return value;
}

bool PendingNotificationModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || !checkIndex(index) || role != NotificationModel::AcceptedRole)
        return false;
    const auto kept = d->m_row; // it is no row any more then
    kept->setIsAccepted(value.toBool());
    return true;
}

void PendingNotificationModelPrivate::setManager(NotificationManager* manager)
{
    if (m_manager == manager)
        return;
    if (m_manager)
        m_manager->disconnect(this);
    m_manager = manager;
    if (manager) {
        connect(manager, &NotificationManager::notificationsChanged, this,
                &PendingNotificationModelPrivate::onNotificationsChanged);
        connect(manager, &NotificationManager::notificationChanged, this,
                &PendingNotificationModelPrivate::onNotificationChanged);
        connect(manager, &QObject::destroyed, this, [this] { populateModel({}); });
    }
    populateModel(manager ? manager->notifications() : QList<NotificationPtr>());
    Q_EMIT m_model->managerChanged();
}

void PendingNotificationModelPrivate::populateModel(const QList<NotificationPtr>& list)
{
    NotificationPtr winner;
    for (const NotificationPtr& notification : list) {
        if (!notification->isAccepted() && (!winner || notification->type() > winner->type()))
            winner = notification;
    }
    if (winner == m_row)
        return;
    if (m_row) {
        m_model->beginRemoveRows({}, 0, 0);
        m_row.reset();
        m_model->endRemoveRows();
    }
    if (!winner)
        return;
    m_model->beginInsertRows({}, 0, 0);
    m_row = winner;
    m_model->endInsertRows();
}

void PendingNotificationModelPrivate::onNotificationsChanged()
{
    populateModel(m_manager->notifications());
}

void PendingNotificationModelPrivate::onNotificationChanged(const NotificationPtr& notification)
{
    // One that was accepted may wait again, and one may become graver than that which stands here.
    if (notification != m_row || notification->isAccepted())
        populateModel(m_manager->notifications());
    if (notification == m_row)
        Q_EMIT m_model->dataChanged(m_model->index(0, 0), m_model->index(0, 0));
}

} // namespace vantrel

#include "common/notification/pendingnotificationmodel.h"

#include "common/notification/pendingnotificationmodel_p.h"

namespace vantrel {

PendingNotificationModel::PendingNotificationModel(QObject* parent)
    : QAbstractListModel(parent)
    , d(std::make_unique<PendingNotificationModelPrivate>(this))
{
}

PendingNotificationModel::~PendingNotificationModel() = default;

NotificationManager* PendingNotificationModel::manager() const
{
    return d->manager();
}

void PendingNotificationModel::setManager(NotificationManager* manager)
{
    if (d->setManager(manager))
        Q_EMIT managerChanged();
}

QSharedPointer<Notification> PendingNotificationModel::pending() const
{
    return d->m_row;
}

void PendingNotificationModel::passOver()
{
    d->passOver();
}

int PendingNotificationModel::rowCount(const QModelIndex& parent) const
{
    return !parent.isValid() && d->m_row ? 1 : 0;
}

QVariant PendingNotificationModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !checkIndex(index))
        return {};
    return NotificationModel::valueOf(*d->m_row, role, index.row());
}

bool PendingNotificationModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || !checkIndex(index) || role != NotificationModel::AcceptedRole)
        return false;
    const auto kept = d->m_row; // it is no row any more then
    kept->setIsAccepted(value.toBool());
    return true;
}

PendingNotificationModelPrivate::NotificationPtr
PendingNotificationModelPrivate::gravestOf(const QList<NotificationPtr>& list) const
{
    NotificationPtr gravest;
    for (const NotificationPtr& notification : list) {
        if (!notification->isAccepted() && (!gravest || notification->type() > gravest->type()) &&
            !isPassedOver(*notification))
            gravest = notification;
    }
    return gravest;
}

/// One that is said again is news again.
bool PendingNotificationModelPrivate::isPassedOver(const Notification& notification) const
{
    return m_passedOver.value(&notification) >= notification.repeats();
}

void PendingNotificationModelPrivate::passOver()
{
    if (!m_row)
        return;
    const Notification* const one = m_row.data();
    if (!m_passedOver.contains(one))
        connect(one, &QObject::destroyed, this, [this, one] { m_passedOver.remove(one); });
    m_passedOver.insert(one, one->repeats());
    populateModel(notifications());
}

void PendingNotificationModelPrivate::populateModel(const QList<NotificationPtr>& list)
{
    const NotificationPtr winner = gravestOf(list);
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

void PendingNotificationModelPrivate::onNotificationChanged(const NotificationPtr& notification)
{
    // One that was accepted may wait again, and one may become graver than that which stands here.
    if (notification != m_row || notification->isAccepted())
        populateModel(notifications());
    if (notification == m_row)
        Q_EMIT m_model->dataChanged(m_model->index(0, 0), m_model->index(0, 0));
}

} // namespace vantrel

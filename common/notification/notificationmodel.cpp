#include "common/notification/notificationmodel.h"

#include "common/notification/notificationlogging.h"
#include "common/notification/notificationmodel_p.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

struct Column
{
    int role;
    const char* name;
    const char* header;
};

constexpr std::array columns{
    Column{NotificationModel::TypeRole, "type", QT_TRANSLATE_NOOP("NotificationModel", "Message type")},
    Column{NotificationModel::TitleRole, "title", QT_TRANSLATE_NOOP("NotificationModel", "Title")},
    Column{NotificationModel::DetailsRole, "details", QT_TRANSLATE_NOOP("NotificationModel", "Details")},
    Column{NotificationModel::DateTimeRole, "dateTime", QT_TRANSLATE_NOOP("NotificationModel", "Created")},
    Column{NotificationModel::AcceptedRole, "accepted", QT_TRANSLATE_NOOP("NotificationModel", "Accepted")},
};

} // namespace

NotificationModel::NotificationModel(QObject* parent)
    : QAbstractListModel(parent)
    , d(std::make_unique<NotificationModelPrivate>(this))
{
}

NotificationModel::~NotificationModel() = default;

NotificationManager* NotificationModel::manager() const
{
    return d->manager();
}

void NotificationModel::setManager(NotificationManager* manager)
{
    if (d->setManager(manager))
        Q_EMIT managerChanged();
}

QSharedPointer<Notification> NotificationModel::notificationAt(int row) const
{
    return d->m_rows.value(row);
}

int NotificationModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(d->m_rows.size());
}

int NotificationModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

QVariant NotificationModel::valueOf(const Notification& notification, int role, int row)
{
    switch (role) {
    case TypeRole:
        return QVariant::fromValue(notification.type());
    case TitleRole:
        return notification.title();
    case DetailsRole:
        return notification.details().replace(u'\n', QStringLiteral("<br>"));
    case DateTimeRole:
        return notification.dateTime();
    case AcceptedRole:
        return notification.isAccepted();
    case RepeatsRole:
        return notification.repeats();
    default: // views ask for much that is nothing to a row
        if (role > Qt::UserRole)
            qCWarning(lcNotification) << "Unexpected role" << role << "on row" << row;
        return {};
    }
}

QHash<int, QByteArray> NotificationModel::names()
{
    QHash<int, QByteArray> all{{RepeatsRole, "repeats"}};
    for (const Column& column : columns)
        all.insert(column.role, column.name);
    return all;
}

QHash<int, QByteArray> NotificationModel::roleNames() const
{
    return names();
}

QVariant NotificationModel::data(const QModelIndex& index, int role) const
{
    const auto notification = index.isValid() ? notificationAt(index.row()) : nullptr;
    if (!notification || !checkIndex(index))
        return {};
    const bool isCell = role == Qt::DisplayRole;
    return valueOf(*notification, isCell ? columns[static_cast<std::size_t>(index.column())].role : role,
                   index.row());
}

QVariant NotificationModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role > Qt::UserRole)
        qCWarning(lcNotification) << "Unexpected role" << role << "on row" << section;
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= static_cast<int>(columns.size()))
        return QAbstractListModel::headerData(section, orientation, role);
    return tr(columns[static_cast<std::size_t>(section)].header);
}

bool NotificationModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const auto notification = index.isValid() ? notificationAt(index.row()) : nullptr;
    if (!notification || role != AcceptedRole)
        return false;
    notification->setIsAccepted(value.toBool());
    return true;
}

void NotificationModelPrivate::onNotificationsChanged()
{
    qCDebug(lcNotification) << "Notifications changed...";
    updateModel(notifications());
}

/// Position by position, once what is gone is out of the way: each that stays would have to move up
/// otherwise.
void NotificationModelPrivate::updateModel(const QList<NotificationPtr>& list)
{
    removeGone(list);
    for (qsizetype at = 0; at < list.size(); ++at) {
        if (at >= m_rows.size() || m_rows.at(at) != list.at(at))
            takeRow(list.at(at), at);
    }
}

/// Neighbours in one.
void NotificationModelPrivate::removeGone(const QList<NotificationPtr>& list)
{
    if (m_rows.size() <= list.size() && std::equal(m_rows.cbegin(), m_rows.cend(), list.cbegin()))
        return; // more was said, as nearly always
    const QSet<NotificationPtr> stay(list.cbegin(), list.cend());
    for (qsizetype end = m_rows.size(); end > 0;) {
        qsizetype from = end;
        while (from > 0 && !stay.contains(m_rows.at(from - 1)))
            --from;
        if (from == end) {
            --end;
            continue;
        }
        m_model->beginRemoveRows({}, static_cast<int>(from), static_cast<int>(end) - 1);
        m_rows.remove(from, end - from);
        m_model->endRemoveRows();
        end = from;
    }
}

void NotificationModelPrivate::takeRow(const NotificationPtr& notification, qsizetype to)
{
    const int row = static_cast<int>(to);
    if (const qsizetype from = m_rows.indexOf(notification, to); from >= 0) {
        m_model->beginMoveRows({}, static_cast<int>(from), static_cast<int>(from), {}, row);
        m_rows.move(from, to);
        m_model->endMoveRows();
        return;
    }
    m_model->beginInsertRows({}, row, row);
    m_rows.insert(to, notification);
    m_model->endInsertRows();
}

void NotificationModelPrivate::onNotificationChanged(const NotificationPtr& notification)
{
    const int row = static_cast<int>(m_rows.lastIndexOf(notification));
    if (row >= 0)
        Q_EMIT m_model->dataChanged(m_model->index(row, 0), m_model->index(row, m_model->columnCount() - 1));
}

} // namespace vantrel

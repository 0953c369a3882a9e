#include "common/notification/sortednotificationmodel.h"

namespace vantrel {

SortedNotificationModel::SortedNotificationModel(QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_source(new NotificationModel(this))
{
    connect(m_source, &NotificationModel::managerChanged, this, &SortedNotificationModel::managerChanged);
    setSourceModel(m_source);
    setSortRole(NotificationModel::DateTimeRole);
    sort(0, Qt::DescendingOrder);
}

} // namespace vantrel

#include "common/notification/sortednotificationmodel.h"

#include "common/notification/sortednotificationmodel_p.h"

namespace vantrel {

SortedNotificationModelPrivate::SortedNotificationModelPrivate(SortedNotificationModel* model)
{
    connect(&source, &NotificationModel::managerChanged, model, &SortedNotificationModel::managerChanged);
}

SortedNotificationModel::SortedNotificationModel(QObject* parent)
    : QSortFilterProxyModel(parent)
    , d(std::make_unique<SortedNotificationModelPrivate>(this))
{
    setSourceModel(&d->source);
    setSortRole(NotificationModel::DateTimeRole);
    sort(0, Qt::DescendingOrder);
}

SortedNotificationModel::~SortedNotificationModel()
{
    setSourceModel(nullptr); // it goes before the proxy's own end
}

NotificationManager* SortedNotificationModel::manager() const
{
    return d->source.manager();
}

void SortedNotificationModel::setManager(NotificationManager* manager)
{
    d->source.setManager(manager);
}

/// Of what was said within a millisecond the later one is the newer.
bool SortedNotificationModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    if (left.data(sortRole()) == right.data(sortRole()))
        return left.row() < right.row();
    return QSortFilterProxyModel::lessThan(left, right);
}

} // namespace vantrel

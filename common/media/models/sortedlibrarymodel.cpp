#include "common/media/models/sortedlibrarymodel.h"

#include "common/media/models/medialibrarymodel.h"

namespace vantrel {

SortedLibraryModel::SortedLibraryModel(MediaLibraryModel* model, QObject* parent)
    : QSortFilterProxyModel(parent)
{
    setSourceModel(model);
}

bool SortedLibraryModel::hasMedias(const QModelIndex& index) const
{
    Q_UNUSED(index);
    return true;
}

bool SortedLibraryModel::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    return sourceModel()->index(row, 0, parent).data(Qt::DisplayRole).toInt() >= 1;
}

} // namespace vantrel

#include "common/media/models/playlist/playlistselectionmodel.h"

#include <algorithm>

namespace vantrel {

PlaylistSelectionModel::PlaylistSelectionModel(QAbstractItemModel* model, QObject* parent)
    : QItemSelectionModel(model, parent)
{
}

QList<QModelIndex> PlaylistSelectionModel::sortedSelectedRows() const
{
    QList<QModelIndex> rows = selectedRows(0);
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace vantrel

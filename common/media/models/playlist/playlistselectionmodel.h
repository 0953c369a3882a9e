#pragma once

#include <QItemSelectionModel>

namespace vantrel {

/// A selection of playlist entries that is read in the order of the rows. Belongs to the view that it is
/// set on; main thread only.
class PlaylistSelectionModel : public QItemSelectionModel
{
    Q_OBJECT

public:
    explicit PlaylistSelectionModel(QAbstractItemModel* model, QObject* parent = nullptr);

    /// The first cell of each selected row, ascending.
    QList<QModelIndex> sortedSelectedRows() const;
};

} // namespace vantrel

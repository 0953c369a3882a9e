#include "common/media/models/sortedcollectionselectormodel.h"

#include "common/media/models/collectionselectormodel.h"

namespace vantrel {

SortedCollectionSelectorModel::SortedCollectionSelectorModel(CollectionSelectorModel* model, QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_model(model)
{
    setSourceModel(model);
    setSortRole(CollectionSelectorModel::CollectionNumberRole);
    sort(0);
    connect(model, &CollectionSelectorModel::selectionChanged, this, [this](int collectionIndex, int row) {
        const QModelIndex own = mapFromSource(m_model->index(row, 0));
        Q_EMIT selectionChanged(collectionIndex, own.row());
    });
}

void SortedCollectionSelectorModel::setSelectedCollectionIndex(int collectionIndex)
{
    m_model->setSelectedCollectionIndex(collectionIndex);
}

} // namespace vantrel

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

void SortedCollectionSelectorModel::selectComing(int collectionIndex)
{
    m_model->selectComing(collectionIndex);
}

int SortedCollectionSelectorModel::selectedCollectionIndex() const
{
    return m_model->selectedCollectionIndex();
}

int SortedCollectionSelectorModel::selectedRow() const
{
    const int selected = m_model->selectedCollectionIndex();
    const int row = selected < 0 ? -1 : m_model->getRowForCollectionIndex(static_cast<uint>(selected));
    return row < 0 ? -1 : mapFromSource(m_model->index(row, 0)).row();
}

QString SortedCollectionSelectorModel::nameOf(int collectionIndex) const
{
    const int row =
        collectionIndex < 0 ? -1 : m_model->getRowForCollectionIndex(static_cast<uint>(collectionIndex));
    return m_model->index(row, 0).data(CollectionSelectorModel::EditTextRole).toString();
}

int SortedCollectionSelectorModel::numberAt(int row) const
{
    const QVariant number = index(row, 0).data(CollectionSelectorModel::CollectionNumberRole);
    return number.isValid() ? number.toInt() : -1;
}

} // namespace vantrel

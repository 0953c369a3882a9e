#pragma once

#include <QSortFilterProxyModel>

namespace vantrel {

class CollectionSelectorModel;

/// CollectionSelectorModel sorted by number, with its choice passed on in rows of this model.
class SortedCollectionSelectorModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit SortedCollectionSelectorModel(CollectionSelectorModel* model, QObject* parent = nullptr);

    Q_INVOKABLE void setSelectedCollectionIndex(int collectionIndex);

Q_SIGNALS:
    void selectionChanged(int collectionIndex, int row);

private:
    CollectionSelectorModel* m_model;
};

} // namespace vantrel

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
    Q_INVOKABLE void selectComing(int collectionIndex);
    /// -1 while nothing is chosen.
    Q_INVOKABLE int selectedCollectionIndex() const;
    /// The row of what is chosen, -1 for none.
    Q_INVOKABLE int selectedRow() const;
    /// Of the collection in that row, -1 for none.
    Q_INVOKABLE int numberAt(int row) const;
    /// Empty for an absent collection.
    Q_INVOKABLE QString nameOf(int collectionIndex) const;

Q_SIGNALS:
    void selectionChanged(int collectionIndex, int row);

private:
    CollectionSelectorModel* m_model;
};

} // namespace vantrel

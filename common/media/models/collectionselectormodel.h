#pragma once

#include "common/media/models/collectionmodel.h"

namespace vantrel {

/// The collections to choose one from, and which is chosen. The choice stays with its collection while others
/// come and go, and moves to the nearest when its own goes.
class CollectionSelectorModel : public CollectionModel
{
    Q_OBJECT

public:
    enum Roles {
        DisplayTextRole = 257,
        EditTextRole = 258,
        CollectionNumberRole = 259,
    };
    Q_ENUM(Roles)

    explicit CollectionSelectorModel(AbstractMediaLibraryProvider* provider, QObject* parent = nullptr);

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// -1 while nothing is chosen.
    int selectedCollectionIndex() const { return m_selected; }
    /// An absent collection leaves the choice as it is.
    Q_INVOKABLE void setSelectedCollectionIndex(int collectionIndex);
    /// The same for a number that a collection is about to get: an absent one is chosen when it comes, unless
    /// another has been chosen meanwhile.
    void selectComing(int collectionIndex);

Q_SIGNALS:
    void selectionChanged(int collectionIndex, int row);

private:
    int numberAt(int row) const;
    void select(int collectionIndex);
    void keepSelection();

    int m_selected = -1;
    int m_coming = -1;
};

} // namespace vantrel

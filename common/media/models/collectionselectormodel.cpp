#include "common/media/models/collectionselectormodel.h"

#include "common/media/address/showntext.h"
#include "common/media/items/guimediacollection.h"

#include <algorithm>

namespace vantrel {

CollectionSelectorModel::CollectionSelectorModel(AbstractMediaLibraryProvider* provider, QObject* parent)
    : CollectionModel(provider, parent)
{
    connect(this, &QAbstractItemModel::modelReset, this, &CollectionSelectorModel::keepSelection);
    connect(this, &QAbstractItemModel::rowsInserted, this, &CollectionSelectorModel::keepSelection);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &CollectionSelectorModel::keepSelection);
    m_selected = numberAt(0);
}

QVariant CollectionSelectorModel::data(const QModelIndex& index, int role) const
{
    const std::shared_ptr<const GuiMediaCollection> collection = getCollection(index);
    if (!collection)
        return {};
    const auto name = [&] { return shownText(collection->name()); }; // not made to sort them by number
    const auto label = [&] {
        return QStringLiteral("%1: %2").arg(QString::number(collection->index()), name());
    };
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == 0 ? name() : label();
    case DisplayTextRole:
        return label();
    case Qt::EditRole:
    case EditTextRole:
        return name();
    case CollectionNumberRole:
        return collection->index();
    default:
        return {};
    }
}

QVariant CollectionSelectorModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == 0 ? tr("Name") : tr("Combined label");
}

QHash<int, QByteArray> CollectionSelectorModel::roleNames() const
{
    QHash<int, QByteArray> names = CollectionModel::roleNames();
    names.insert(DisplayTextRole, "displayText");
    names.insert(EditTextRole, "editText");
    names.insert(CollectionNumberRole, "collectionNumber");
    return names;
}

int CollectionSelectorModel::numberAt(int row) const
{
    const QVariant number = index(row, 0).data(CollectionNumberRole);
    return number.isValid() ? number.toInt() : -1;
}

void CollectionSelectorModel::setSelectedCollectionIndex(int collectionIndex)
{
    m_coming = -1;
    if (collectionIndex >= 0 && getRowForCollectionIndex(static_cast<uint>(collectionIndex)) >= 0)
        select(collectionIndex);
}

void CollectionSelectorModel::selectComing(int collectionIndex)
{
    setSelectedCollectionIndex(collectionIndex);
    if (m_selected != collectionIndex)
        m_coming = collectionIndex;
}

void CollectionSelectorModel::select(int collectionIndex)
{
    if (m_selected == collectionIndex)
        return;
    m_selected = collectionIndex;
    const int row = collectionIndex < 0 ? -1 : getRowForCollectionIndex(static_cast<uint>(collectionIndex));
    Q_EMIT selectionChanged(collectionIndex, row);
}

void CollectionSelectorModel::keepSelection()
{
    if (m_coming >= 0 && getRowForCollectionIndex(static_cast<uint>(m_coming)) >= 0)
        return setSelectedCollectionIndex(m_coming);
    if (m_selected >= 0 && getRowForCollectionIndex(static_cast<uint>(m_selected)) >= 0)
        return;
    // The one that followed it, else the last.
    int row = 0;
    while (row < rowCount() - 1 && numberAt(row) < m_selected)
        ++row;
    select(numberAt(row));
}

} // namespace vantrel

#include "common/media/models/collectionmodel.h"

#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/items/guimediacollection.h"

#include <algorithm>

namespace vantrel {

CollectionModel::CollectionModel(AbstractMediaLibraryProvider* provider, QObject* parent)
    : QAbstractTableModel(parent)
    , m_provider(provider)
{
    if (!provider)
        return;
    connect(provider, &AbstractMediaLibraryProvider::reset, this, [this] { reset(); });
    connect(provider, &AbstractMediaLibraryProvider::collectionChanged, this,
            &CollectionModel::onCollectionChanged);
    connect(provider, &AbstractMediaLibraryProvider::collectionAdded, this,
            &CollectionModel::onCollectionInserted);
    connect(provider, &AbstractMediaLibraryProvider::collectionRemoved, this,
            &CollectionModel::onCollectionRemoved);
    m_collections = provider->collections();
}

CollectionModel::~CollectionModel() = default;

int CollectionModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_collections.size());
}

int CollectionModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant CollectionModel::data(const QModelIndex& index, int role) const
{
    const std::shared_ptr<const GuiMediaCollection> collection = getCollection(index);
    if (!collection || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    return index.column() == 0 ? QVariant(collection->index()) : QVariant(collection->name());
}

QVariant CollectionModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == 0 ? QStringLiteral("#") : tr("Name");
}

std::shared_ptr<const GuiMediaCollection> CollectionModel::getCollection(const QModelIndex& index) const
{
    return checkIndex(index, CheckIndexOption::IndexIsValid) ? m_collections[index.row()] : nullptr;
}

int CollectionModel::lowerBound(uint collectionIndex) const
{
    const auto at = std::lower_bound(m_collections.begin(), m_collections.end(), collectionIndex,
                                     [](const auto& item, uint index) { return item->index() < index; });
    return static_cast<int>(at - m_collections.begin());
}

int CollectionModel::getRowForCollectionIndex(uint collectionIndex) const
{
    const int row = lowerBound(collectionIndex);
    return row < m_collections.size() && m_collections[row]->index() == collectionIndex ? row : -1;
}

QModelIndex CollectionModel::getLeftmostIndex(int row) const
{
    return index(row, 0);
}

QModelIndex CollectionModel::getRightmostIndex(int row) const
{
    return index(row, columnCount() - 1);
}

void CollectionModel::reset()
{
    beginResetModel();
    m_collections =
        m_provider ? m_provider->collections() : QList<std::shared_ptr<const GuiMediaCollection>>();
    endResetModel();
}

void CollectionModel::onCollectionChanged(uint collectionIndex)
{
    const int row = getRowForCollectionIndex(collectionIndex);
    const auto collection = m_provider->collection(static_cast<int>(collectionIndex));
    if (row < 0 || !collection)
        return;
    m_collections[row] = collection;
    Q_EMIT dataChanged(getLeftmostIndex(row), getRightmostIndex(row));
}

void CollectionModel::onCollectionInserted(uint collectionIndex)
{
    if (getRowForCollectionIndex(collectionIndex) >= 0) {
        onCollectionChanged(collectionIndex);
        return;
    }
    const auto collection = m_provider->collection(static_cast<int>(collectionIndex));
    if (!collection)
        return;
    const int row = lowerBound(collectionIndex);
    beginInsertRows({}, row, row);
    m_collections.insert(row, collection);
    endInsertRows();
}

void CollectionModel::onCollectionRemoved(uint collectionIndex)
{
    const int row = getRowForCollectionIndex(collectionIndex);
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    m_collections.removeAt(row);
    endRemoveRows();
}

} // namespace vantrel

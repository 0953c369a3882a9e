// How MediaLibraryModel keeps its rows in step with the library, and what it gives away in a drag.

#include "common/media/guimediaslot.h"
#include "common/media/medialibraryitem.h"
#include "common/media/medialibrarymodel.h"
#include "common/media/medialogging.h"
#include "common/media/mimedata.h"
#include "tarn/media/medialibrary.h"

#include <QJsonObject>

#include <algorithm>
#include <set>

namespace vantrel {

namespace {

int rowsFor(const MediaCollection& collection)
{
    const MediaSlotMap& slotMap = collection.getSlots();
    return slotMap.empty() ? 0 : (--slotMap.end())->first + 1;
}

} // namespace

int MediaLibraryModel::rowOf(int collection) const
{
    const auto at = std::lower_bound(m_collections.begin(), m_collections.end(), collection,
                                     [](const Item& item, int number) { return item->number() < number; });
    const auto row = static_cast<int>(at - m_collections.begin());
    return at != m_collections.end() && (*at)->number() == collection ? row : -row - 1;
}

void MediaLibraryModel::reset()
{
    beginResetModel();
    m_collections.clear();
    m_rowsByUrl.clear();
    for (const auto& [number, collection] : m_library->getCollections())
        m_collections.push_back(makeCollection(number));
    endResetModel();
}

MediaLibraryModel::Item MediaLibraryModel::makeCollection(int collection)
{
    const MediaCollection* record = std::as_const(*m_library).findCollection(collection);
    auto item = std::make_unique<MediaLibraryItem>(
        collection, record ? QString::fromStdString(record->getName()) : QString());
    updateCollectionSlots(*item, collection);
    return item;
}

void MediaLibraryModel::updateCollectionSlots(MediaLibraryItem& item, int collection)
{
    const MediaCollection* record = std::as_const(*m_library).findCollection(collection);
    if (!record)
        return;
    item.resizeChildren(rowsFor(*record));
    for (const auto& [number, slot] : record->getSlots())
        setSlot(item, number, std::make_unique<MediaLibraryItem>(number, slot));
}

void MediaLibraryModel::setSlot(MediaLibraryItem& collection, int row, Item slot)
{
    const MediaAddress address(collection.number(), row);
    const MediaLibraryItem* old = collection.child(row);
    if (old && !old->url().isEmpty())
        m_rowsByUrl.remove(old->url(), address);
    if (slot && !slot->url().isEmpty())
        m_rowsByUrl.insert(slot->url(), address);
    collection.setChild(row, std::move(slot));
}

void MediaLibraryModel::forgetUrls(const MediaLibraryItem& collection)
{
    for (int row = 0; row < collection.childCount(); ++row) {
        const MediaLibraryItem* slot = collection.child(row);
        if (slot && !slot->url().isEmpty())
            m_rowsByUrl.remove(slot->url(), MediaAddress(collection.number(), row));
    }
}

void MediaLibraryModel::onCollectionChanged(uint index)
{
    const int row = rowOf(static_cast<int>(index));
    const MediaCollection* record = std::as_const(*m_library).findCollection(static_cast<int>(index));
    if (row < 0 || !record) {
        qCWarning(lcMedia) << "Failed to find changed collection at" << index;
        return;
    }
    m_collections[static_cast<std::size_t>(row)]->setName(QString::fromStdString(record->getName()));
    emitDataChangedForRow(this->index(row, 0));
}

void MediaLibraryModel::onCollectionAdded(uint index)
{
    const auto number = static_cast<int>(index);
    if (rowOf(number) >= 0)
        onCollectionRemoved(index); // it was replaced as a whole
    if (!std::as_const(*m_library).findCollection(number))
        return;
    const int row = -rowOf(number) - 1;
    beginInsertRows({}, row, row);
    m_collections.insert(m_collections.begin() + row, makeCollection(number));
    endInsertRows();
}

void MediaLibraryModel::onCollectionRemoved(uint index)
{
    const int row = rowOf(static_cast<int>(index));
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    forgetUrls(*m_collections[static_cast<std::size_t>(row)]);
    const Item gone = std::move(m_collections[static_cast<std::size_t>(row)]);
    m_collections.erase(m_collections.begin() + row);
    endRemoveRows();
}

void MediaLibraryModel::onMediaAdded(MediaAddress address)
{
    updateSlot(address);
}

void MediaLibraryModel::onMediaChanged(MediaAddress address)
{
    updateSlot(address);
}

void MediaLibraryModel::onMediaRemoved(MediaAddress address)
{
    const QModelIndex row = slotIndex(address);
    if (!row.isValid())
        return;
    setSlot(*m_collections[static_cast<std::size_t>(row.parent().row())], row.row(), nullptr);
    emitDataChangedForRow(row);
}

void MediaLibraryModel::updateSlot(const MediaAddress& address)
{
    const int collectionRow = rowOf(address.collection);
    const MediaSlot* record = std::as_const(*m_library).findSlot(address.collection, address.slot);
    if (collectionRow < 0 || !record) {
        onMediaRemoved(address);
        return;
    }
    MediaLibraryItem& collection = *m_collections[static_cast<std::size_t>(collectionRow)];
    auto item = std::make_unique<MediaLibraryItem>(address.slot, *record);
    if (address.slot < collection.childCount()) {
        setSlot(collection, address.slot, std::move(item));
        emitDataChangedForRow(slotIndex(address));
        return;
    }
    beginInsertRows(index(collectionRow, 0), collection.childCount(), address.slot);
    collection.resizeChildren(address.slot + 1);
    setSlot(collection, address.slot, std::move(item));
    endInsertRows();
}

QStringList MediaLibraryModel::mimeTypes() const
{
    return {mimeformat::json, mimeformat::category, mimeformat::type};
}

QMimeData* MediaLibraryModel::mimeData(const QModelIndexList& indexes) const
{
    std::set<MediaAddress> addresses; // in order, and once, whatever columns are selected
    for (const QModelIndex& index : indexes) {
        if (slotItem(index))
            addresses.insert(addressOf(index));
    }
    QList<QJsonObject> objects;
    for (const MediaAddress& address : addresses) {
        const MediaSlot* record = std::as_const(*m_library).findSlot(address.collection, address.slot);
        if (!record)
            continue;
        GuiMediaSlot slot(address, *record);
        slot.setMediaType(std::nullopt); // whoever takes it in refuses a type: that is the server's to tell
        objects.append(slot.toJson());
    }
    return objects.isEmpty() ? nullptr
                             : createMimeData(objects, MimeItemCategory::MediaLibrary, MediaItemType::Slot);
}

} // namespace vantrel

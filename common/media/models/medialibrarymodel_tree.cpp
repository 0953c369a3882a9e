// How MediaLibraryModel keeps its rows in step with the library, and what it gives away in a drag.

#include "common/media/address/medialogging.h"
#include "common/media/items/mimedata.h"
#include "common/media/items/slotmimedata.h"
#include "common/media/library/aside.h"
#include "common/media/models/medialibraryitem.h"
#include "common/media/models/medialibrarymodel.h"
#include "tarn/media/medialibrary.h"

#include <QElapsedTimer>

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace vantrel {

namespace {

constexpr std::size_t fewSlots = 2000; // which are indexed in no time

int rowsFor(const MediaCollection& collection)
{
    const MediaSlotMap& slotMap = collection.getSlots();
    return slotMap.empty() ? 0 : (--slotMap.end())->first + 1;
}

std::string_view contentUrl(const MediaSlot& slot)
{
    const Json* url = slot.toJson().find("contentUrl");
    return url ? url->stringView() : std::string_view();
}

} // namespace

int MediaLibraryModel::rowOf(int collection) const
{
    const auto at = std::lower_bound(m_collections.begin(), m_collections.end(), collection,
                                     [](const Item& item, int number) { return item->number() < number; });
    const auto row = static_cast<int>(at - m_collections.begin());
    return at != m_collections.end() && (*at)->number() == collection ? row : -row - 1;
}

int MediaLibraryModel::nextSlot(int collection, int from) const
{
    const int row = rowOf(collection);
    if (row < 0)
        return -1;
    const MediaLibraryItem::Records& records = m_collections[static_cast<std::size_t>(row)]->records();
    const auto next = records.lower_bound(from);
    return next == records.end() ? -1 : next->first;
}

int MediaLibraryModel::slotBefore(int collection, int number) const
{
    const int row = rowOf(collection);
    if (row < 0)
        return -1;
    const MediaLibraryItem::Records& records = m_collections[static_cast<std::size_t>(row)]->records();
    auto before = records.lower_bound(number);
    return before == records.begin() ? -1 : (--before)->first;
}

void MediaLibraryModel::reset()
{
    m_lastChanged = -1;
    beginResetModel();
    // To free those of a large library takes time.
    aside::letGo(std::make_shared<const std::tuple<std::vector<Item>, UrlIndex, RecentItems>>(
        std::exchange(m_collections, {}), std::exchange(m_rowsByUrl, UrlIndex()),
        std::exchange(m_slotItems, RecentItems())));
    m_urlsIndexed = false;
    m_indexed = 0;
    m_toTell.clear(); // all is read anew
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
    item.setChildCount(rowsFor(*record));
    item.setRecords(record->getSlots().records());
    if (m_urlsIndexed)
        indexUrls(item);
}

void MediaLibraryModel::setSlot(MediaLibraryItem& collection, int row, const MediaSlot* record)
{
    const MediaAddress address(collection.number(), row);
    settleIndex();
    m_slotItems.remove(address);
    if (m_urlsIndexed) {
        if (const MediaSlot* old = collection.records().get(row))
            m_rowsByUrl.remove(contentUrl(*old), address);
        if (record)
            m_rowsByUrl.insert(contentUrl(*record), address);
    }
    collection.setRecord(row, record);
}

void MediaLibraryModel::indexUrls(const MediaLibraryItem& collection)
{
    for (const auto& [row, record] : collection.records())
        m_rowsByUrl.insert(contentUrl(record), {collection.number(), row});
}

void MediaLibraryModel::forgetSlots(const MediaLibraryItem& collection)
{
    m_slotItems.clear();
    settleIndex();
    if (!m_urlsIndexed)
        return;
    for (const auto& [row, record] : collection.records())
        m_rowsByUrl.remove(contentUrl(record), {collection.number(), row});
}

QList<QModelIndex> MediaLibraryModel::findItemsByUrl(const QUrl& mediaUrl)
{
    indexAll();
    QList<QModelIndex> found;
    for (const MediaAddress& address : m_rowsByUrl.candidates(mediaUrl)) {
        const QModelIndex row = slotIndex(address);
        const MediaLibraryItem* item = row.isValid() ? slotItem(row) : nullptr;
        if (item && item->url() == mediaUrl)
            found.append(row);
    }
    return found;
}

/// Of a large library the index is made in turns, and what is to be told waits for it.
void MediaLibraryModel::tellOf(const QUrl& mediaUrl)
{
    m_toTell.insert(mediaUrl);
    if (m_toTell.size() > 1)
        return;
    if (m_urlsIndexed || !isLarge())
        indexSome();
    else
        m_turn.ask();
}

bool MediaLibraryModel::isLarge() const
{
    std::size_t slots_ = 0;
    return std::ranges::any_of(m_collections, [&slots_](const Item& collection) {
        slots_ += collection->records().size();
        return slots_ > fewSlots;
    });
}

void MediaLibraryModel::indexSome()
{
    constexpr qint64 inOneTurn = 4; // milliseconds
    QElapsedTimer clock;
    clock.start();
    reserveIndex();
    for (std::size_t slots_ = 0; !m_urlsIndexed && m_indexed < m_collections.size() &&
                                 (slots_ < fewSlots || clock.elapsed() < inOneTurn);) {
        const MediaLibraryItem& collection = *m_collections[m_indexed++];
        indexUrls(collection);
        slots_ += collection.records().size();
    }
    if (!m_urlsIndexed && m_indexed < m_collections.size()) {
        m_turn.ask();
        return;
    }
    m_urlsIndexed = true;
    for (const QUrl& url : std::exchange(m_toTell, {})) {
        for (const QModelIndex& row : findItemsByUrl(url))
            emitDataChangedForRow(row);
    }
}

void MediaLibraryModel::reserveIndex()
{
    if (m_indexed > 0 || m_urlsIndexed)
        return;
    std::size_t slots_ = 0;
    for (const Item& collection : m_collections)
        slots_ += collection->records().size();
    m_rowsByUrl.reserve(slots_);
}

/// Before anything changes: an index that is half made would not hear of it.
void MediaLibraryModel::settleIndex()
{
    if (m_indexed > 0)
        indexAll();
}

void MediaLibraryModel::indexAll()
{
    reserveIndex();
    while (!m_urlsIndexed && m_indexed < m_collections.size())
        indexUrls(*m_collections[m_indexed++]);
    m_urlsIndexed = true;
}

QList<MediaAddress> MediaLibraryModel::slotsWith(const QUrl& mediaUrl)
{
    QList<MediaAddress> found;
    for (const QModelIndex& row : findItemsByUrl(mediaUrl))
        found.append(addressOf(row));
    return found;
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
    tellChanged();
    const auto number = static_cast<int>(index);
    if (rowOf(number) >= 0)
        onCollectionRemoved(index); // it was replaced as a whole
    if (!std::as_const(*m_library).findCollection(number))
        return;
    const int row = -rowOf(number) - 1;
    beginInsertRows({}, row, row);
    settleIndex();
    m_collections.insert(m_collections.begin() + row, makeCollection(number));
    endInsertRows();
}

void MediaLibraryModel::onCollectionRemoved(uint index)
{
    tellChanged();
    const int row = rowOf(static_cast<int>(index));
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    forgetSlots(*m_collections[static_cast<std::size_t>(row)]);
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
    tellLater(address);
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
    const MediaSlot* const shown = collection.records().get(address.slot);
    if (shown && shown->toJson().sameNode(record->toJson()))
        return; // it came with others
    if (address.slot < collection.childCount()) {
        setSlot(collection, address.slot, record);
        tellLater(address);
        return;
    }
    tellChanged();
    addRows(collectionRow);
}

/// All that the library has behind the last row: views have to do with each insertion.
void MediaLibraryModel::addRows(int collectionRow)
{
    MediaLibraryItem& collection = *m_collections[static_cast<std::size_t>(collectionRow)];
    const MediaCollection& record = *std::as_const(*m_library).findCollection(collection.number());
    const int first = collection.childCount();
    beginInsertRows(index(collectionRow, 0), first, rowsFor(record) - 1);
    collection.setChildCount(rowsFor(record));
    const MediaLibraryItem::Records& records = record.getSlots().records();
    for (auto added = records.lower_bound(first); added != records.end(); ++added)
        setSlot(collection, added->first, &added->second);
    endInsertRows();
}

void MediaLibraryModel::onChangesStarted()
{
    m_isChanging = true;
}

void MediaLibraryModel::onChangesFinished()
{
    m_isChanging = false;
    tellChanged();
}

void MediaLibraryModel::tellLater(const MediaAddress& slot)
{
    const bool follows =
        m_lastChanged >= 0 && slot.collection == m_firstChanged.collection && slot.slot == m_lastChanged + 1;
    if (!follows) {
        tellChanged();
        m_firstChanged = slot;
    }
    m_lastChanged = slot.slot;
    if (!m_isChanging)
        tellChanged();
}

void MediaLibraryModel::tellChanged()
{
    const int last = std::exchange(m_lastChanged, -1);
    const QModelIndex first = last < 0 ? QModelIndex() : slotIndex(m_firstChanged);
    if (first.isValid())
        Q_EMIT dataChanged(first.siblingAtColumn(0), index(last, ColumnCount - 1, first.parent()));
}

QStringList MediaLibraryModel::mimeTypes() const
{
    return {mimeformat::json, mimeformat::category, mimeformat::type};
}

QMimeData* MediaLibraryModel::mimeData(const QModelIndexList& indexes) const
{
    std::set<MediaAddress> dragged; // in order, and once, whatever columns are selected
    for (const QModelIndex& index : indexes) {
        if (slotItem(index))
            dragged.insert(dragged.end(), addressOf(index));
    }
    return mimeDataOf(QList<MediaAddress>(dragged.cbegin(), dragged.cend()));
}

QMimeData* MediaLibraryModel::mimeDataOf(const QList<MediaAddress>& addresses) const
{
    QList<MediaAddress> present;
    for (const MediaAddress& address : addresses) {
        if (std::as_const(*m_library).findSlot(address.collection, address.slot))
            present.append(address);
    }
    return present.isEmpty() ? nullptr : new SlotMimeData(*m_library, present);
}

} // namespace vantrel

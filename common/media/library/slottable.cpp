#include "common/media/library/slottable.h"

#include "common/media/items/guimediaslot.h"
#include "common/media/library/aside.h"

#include <utility>

namespace vantrel {

void SlotTable::put(const MediaAddress& address, const MediaSlot& record)
{
    Collection& collection = m_collections[static_cast<uint>(address.collection)];
    collection.records.set(address.slot, record);
    collection.made.remove(address.slot);
}

void SlotTable::putAll(uint collection, const Records& records)
{
    Collection& present = m_collections[collection];
    if (present.records.empty()) {
        present.records = records; // shared with the library
        return;
    }
    for (const auto& [number, record] : records)
        put(MediaAddress(static_cast<int>(collection), number), record);
}

void SlotTable::remove(const MediaAddress& address)
{
    const auto found = m_collections.find(static_cast<uint>(address.collection));
    if (found == m_collections.end())
        return;
    found->second.records.erase(address.slot);
    found->second.made.remove(address.slot);
}

void SlotTable::removeCollection(uint collection)
{
    m_collections.erase(collection);
}

/// The last of a large library may go with it.
void SlotTable::reset()
{
    if (!m_collections.empty())
        aside::letGo(std::exchange(m_collections, {}));
}

const SlotTable::Collection* SlotTable::find(int collection) const
{
    const auto found = m_collections.find(static_cast<uint>(collection));
    return found == m_collections.end() ? nullptr : &found->second;
}

SlotTable::Item SlotTable::itemOf(const Collection& collection, const MediaAddress& address)
{
    if (const Item known = collection.made.value(address.slot))
        return known;
    const MediaSlot* record = collection.records.get(address.slot);
    return record
               ? *collection.made.insert(address.slot, std::make_shared<const GuiMediaSlot>(address, *record))
               : nullptr;
}

bool SlotTable::contains(const MediaAddress& address) const
{
    const Collection* collection = find(address.collection);
    return collection && collection->records.contains(address.slot);
}

SlotTable::Item SlotTable::item(const MediaAddress& address) const
{
    const Collection* collection = find(address.collection);
    return collection ? itemOf(*collection, address) : nullptr;
}

QList<SlotTable::Item> SlotTable::items(uint collection) const
{
    QList<Item> items;
    const Collection* found = find(static_cast<int>(collection));
    if (!found)
        return items;
    for (const auto& [number, record] : found->records)
        items.append(itemOf(*found, MediaAddress(static_cast<int>(collection), number)));
    return items;
}

} // namespace vantrel

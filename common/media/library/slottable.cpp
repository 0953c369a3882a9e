#include "common/media/library/slottable.h"

#include "common/media/items/guimediaslot.h"
#include "common/media/library/aside.h"

#include <utility>

namespace vantrel {

SlotTable::Item SlotTable::Shelf::item(uint collection, int number) const
{
    if (const Item known = made.value(number))
        return known;
    const MediaSlot* record = records.get(number);
    if (!record)
        return nullptr;
    const MediaAddress address(static_cast<int>(collection), number);
    return *made.insert(number, std::make_shared<const GuiMediaSlot>(address, *record));
}

void SlotTable::Shelf::drop(int number)
{
    records.erase(number);
    made.remove(number);
}

void SlotTable::put(const MediaAddress& address, const MediaSlot& record)
{
    Collection& collection = m_collections[static_cast<uint>(address.collection)];
    collection.now.records.set(address.slot, record);
    collection.now.made.remove(address.slot);
    collection.unlisted.erase(address.slot);
}

void SlotTable::putAll(uint collection, const Records& records)
{
    Shelf& now = m_collections[collection].now;
    if (now.records.empty()) {
        now.records = records; // shared with the library
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
    found->second.now.drop(address.slot);
    found->second.unlisted.erase(address.slot);
}

void SlotTable::removeCollection(uint collection)
{
    const auto found = m_collections.find(collection);
    if (found == m_collections.end())
        return;
    for (const auto& [number, record] : found->second.now.records)
        found->second.unlisted.insert(number);
    found->second.earlier.clear();
}

void SlotTable::reset()
{
    // A link that comes and goes would else keep all that there ever was.
    constexpr std::size_t mostEarlier = 4;
    std::vector<Shelf> forgotten; // with them may go the last of a large library
    for (auto& [index, collection] : m_collections) {
        for (const int number : std::exchange(collection.unlisted, {}))
            collection.now.drop(number);
        Shelf old = std::exchange(collection.now, {});
        if (!old.records.empty())
            collection.earlier.push_back(std::move(old));
        if (collection.earlier.size() > mostEarlier) {
            forgotten.push_back(std::move(collection.earlier.front()));
            collection.earlier.erase(collection.earlier.begin());
        }
    }
    if (!forgotten.empty())
        aside::letGo(std::move(forgotten));
}

const SlotTable::Collection* SlotTable::find(int collection) const
{
    const auto found = m_collections.find(static_cast<uint>(collection));
    return found == m_collections.end() ? nullptr : &found->second;
}

bool SlotTable::contains(const MediaAddress& address) const
{
    const Collection* collection = find(address.collection);
    return collection && collection->now.records.contains(address.slot);
}

SlotTable::Item SlotTable::item(const MediaAddress& address) const
{
    const Collection* collection = find(address.collection);
    return collection ? collection->now.item(static_cast<uint>(address.collection), address.slot) : nullptr;
}

QList<SlotTable::Item> SlotTable::items(uint collection) const
{
    QList<Item> items;
    const Collection* found = find(static_cast<int>(collection));
    if (!found)
        return items;
    for (const auto& [number, record] : found->now.records) {
        if (!found->unlisted.contains(number))
            items.append(found->now.item(collection, number));
    }
    for (const Shelf& shelf : found->earlier) {
        for (const auto& [number, record] : shelf.records)
            items.append(shelf.item(collection, number));
    }
    return items;
}

} // namespace vantrel

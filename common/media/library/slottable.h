#pragma once

#include "tarn/media/mediaaddress.h"
#include "tarn/media/mediaslot.h"
#include "tarn/media/sharedmap.h"

#include <QHash>
#include <QList>

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace vantrel {

class GuiMediaSlot;

/// The slots of all collections as they were last told of. It holds the library's own records, which cost
/// nothing, and makes an item when somebody asks for it.
///
/// One rule holds between any two calls: the item that stands for a number, if there is one, was made of the
/// record that stands for it. Main thread only.
class SlotTable
{
public:
    using Item = std::shared_ptr<const GuiMediaSlot>;
    using Records = SharedMap<int, MediaSlot>;

    void put(const MediaAddress& address, const MediaSlot& record);
    void putAll(uint collection, const Records& records);
    void remove(const MediaAddress& address);
    /// items() forgets the collection. item() answers for its slots until they are put anew: models hear of
    /// the removal and stop asking.
    void removeCollection(uint collection);
    /// Forgets what item() tells. items() goes on to tell those before the last four resets beside the new
    /// ones, and who asks for them tells them apart by their pointers.
    void reset();

    bool contains(const MediaAddress& address) const;
    /// Null when absent.
    Item item(const MediaAddress& address) const;
    /// In no fixed order.
    QList<Item> items(uint collection) const;

private:
    /// Records and the items that were made of them.
    struct Shelf
    {
        Item item(uint collection, int number) const;
        void drop(int number);

        Records records;
        mutable QHash<int, Item> made;
    };
    struct Collection
    {
        Shelf now;
        std::set<int> unlisted;     // those in "now" whose collection was removed
        std::vector<Shelf> earlier; // those before the last resets
    };

    const Collection* find(int collection) const;

    std::map<uint, Collection> m_collections;
};

} // namespace vantrel

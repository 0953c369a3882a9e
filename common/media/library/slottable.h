#pragma once

#include "tarn/media/mediaaddress.h"
#include "tarn/media/mediaslot.h"
#include "tarn/media/sharedmap.h"

#include <QHash>
#include <QList>

#include <map>
#include <memory>

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
    void removeCollection(uint collection);
    void reset();

    bool contains(const MediaAddress& address) const;
    /// Null when absent.
    Item item(const MediaAddress& address) const;
    /// By number.
    QList<Item> items(uint collection) const;

private:
    /// Records and the items that were made of them.
    struct Collection
    {
        Records records;
        mutable QHash<int, Item> made;
    };

    const Collection* find(int collection) const;
    static Item itemOf(const Collection& collection, const MediaAddress& address);

    std::map<uint, Collection> m_collections;
};

} // namespace vantrel

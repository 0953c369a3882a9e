#pragma once

#include "common/media/address/mediaaddresshash.h"
#include "tarn/media/entryaddress.h"

#include <QHash>
#include <QList>

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace vantrel {

class GuiPlaylistEntry;
struct EntryRuntime;

/// The entries of all playlists in address order, and for each slot the entries that play it.
///
/// One rule holds between any two calls: an entry that is in the table, and only such an entry, stands among
/// the users of the slot that its URL names, whether that slot exists or not. So an entry is never changed
/// in its place, but put again. Main thread only.
class EntryTable
{
public:
    using Item = std::shared_ptr<const GuiPlaylistEntry>;
    using Place = std::pair<uint, EntryAddress>; // playlist number, address in it

    void clear();
    /// Takes the place of an entry that has the same address.
    void put(const Item& item);
    /// False when there is none.
    bool remove(uint playlist, EntryAddress address);
    void removeAll(uint playlist);

    /// Null when absent.
    Item item(uint playlist, EntryAddress address) const;
    QList<Item> items(uint playlist) const;
    uint count(uint playlist) const;
    /// No address when the entry is absent or its URL names no slot.
    MediaAddress slotOf(uint playlist, EntryAddress address) const;
    QList<Place> usersOf(MediaAddress slot) const { return m_users.value(slot); }
    QList<Place> usersOfCollection(uint collection) const;

    /// Gives the entries of a playlist their running times, which are in address order; tells whose moved.
    QList<EntryAddress> setRuntimes(uint playlist, const std::vector<EntryRuntime>& runtimes);

private:
    struct Row
    {
        EntryAddress address() const;
        Item item;
        MediaAddress slot;
    };
    using Rows = std::vector<Row>;

    const Row* row(uint playlist, EntryAddress address) const;
    void addUser(const Row& row);
    void removeUser(const Row& row);

    std::map<uint, Rows> m_rows;
    QHash<MediaAddress, QList<Place>> m_users; // in ascending order
};

} // namespace vantrel

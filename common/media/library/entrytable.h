#pragma once

#include "common/media/address/mediaaddresshash.h"
#include "tarn/media/entryaddress.h"

#include <QHash>
#include <QList>

#include <map>
#include <memory>
#include <set>
#include <utility>

namespace vantrel {

class GuiPlaylistEntry;
class MediaLibrary;

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
    QList<Place> usersOf(MediaAddress slot) const;
    QList<Place> usersOfCollection(uint collection) const;

    /// What became of the running times of a playlist.
    struct Times
    {
        QList<EntryAddress> moved;
        double total = 0; // seconds, as of PlaylistRuntimeInfo
        bool isInfinite = false;
    };
    /// Works them out anew, and which entries can be played; asks the library only for what is not known.
    Times updateRuntimes(uint playlist, const MediaLibrary& library);
    /// The slots of these entries are others.
    void forgetDurations(const QList<Place>& places);

private:
    struct Row
    {
        EntryAddress address() const;
        Item item;
        MediaAddress slot;
        double duration = unknown; // what of the slot is played, seconds
        bool isPlayable = true;    // known with the duration
    };
    // A patch adds or removes thousands one by one: each must cost the same wherever it stands.
    using Rows = std::map<EntryAddress, Row>;
    static constexpr double unknown = -1;

    static void learn(Row& row, const MediaLibrary& library);
    Row* row(uint playlist, EntryAddress address);
    const Row* row(uint playlist, EntryAddress address) const;
    void addUser(const Row& row);
    void removeUser(const Row& row);

    std::map<uint, Rows> m_rows;
    QHash<MediaAddress, std::set<Place>> m_users;
};

} // namespace vantrel

#pragma once

#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"

#include <set>
#include <utility>

namespace vantrel {

class Patch;

/// What a patch of the library touches. A change stands in a set once however often the patch touches it, and
/// the sets are walked in ascending order.
struct LibraryChanges
{
    using Entry = std::pair<int, EntryAddress>; // playlist number, address

    std::set<int> playlistsAdded;
    std::set<int> playlistsChanged;
    std::set<int> playlistsRemoved;
    std::set<Entry> entriesAdded;
    std::set<Entry> entriesChanged;
    std::set<Entry> entriesRemoved;
    std::set<int> collectionsAdded;
    std::set<int> collectionsRemoved;
    std::set<int> collectionsChanged;
    std::set<MediaAddress> mediaChanged;
    std::set<MediaAddress> mediaAdded;
    std::set<MediaAddress> mediaRemoved;

    /// Judges each operation by its kind and its path alone. Three rules are as listeners expect them: an add
    /// below a slot or an entry counts as its addition, a removal below a slot as nothing, a removal below an
    /// entry as that of the entry. Members that the records do not have here are passed over.
    static LibraryChanges fromPatch(const Patch& patch);

    /// Whether so much came and went that whoever shows it is quicker to begin anew.
    bool isAnotherLibrary() const;
};

} // namespace vantrel

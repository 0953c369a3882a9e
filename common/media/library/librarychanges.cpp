#include "common/media/library/librarychanges.h"

#include "tarn/json/patch.h"
#include "tarn/media/mediacollection.h"
#include "tarn/media/playlist.h"

#include <limits>

namespace vantrel {

namespace {

/// What a path names; -1 and an invalid address where it names none.
struct Target
{
    int playlist = -1;
    int collection = -1;
    int slot = -1;
    EntryAddress entry;
    bool isSlotItself = false;
};

constexpr std::size_t recordDepth = 4; // "/playlists/1/entries/2", "/collections/1/slots/2"

int numberOf(const PathElement& element)
{
    long long number = 0;
    const bool isNumber = element.parseIndex(&number) && number <= std::numeric_limits<int>::max();
    return isNumber ? static_cast<int>(number) : -1;
}

/// Whether a path leads below a record into a member that it does not have here: one of a newer server, which
/// is kept and not shown.
bool isUnknownMember(const Path& path)
{
    static const Json collection = MediaCollection().toJson();
    static const Json playlist = Playlist().toJson();
    static const Json slot = MediaSlot().toJson();
    static const Json entry = PlaylistEntry().toJson();
    const bool isList = path[0].text() == "playlists";
    const auto lacks = [&path](std::size_t depth, const Json& record) {
        return path.size() > depth && !record.find(path[depth].text());
    };
    return lacks(2, isList ? playlist : collection) || lacks(recordDepth, isList ? entry : slot);
}

Target targetOf(const Path& path)
{
    Target target;
    if (path.size() < 2 || isUnknownMember(path))
        return target;
    const bool isBelow = path.size() >= recordDepth;
    if (path[0].text() == "playlists") {
        target.playlist = numberOf(path[1]);
        if (isBelow && path[2].text() == "entries")
            target.entry.parseString(path[3].text());
    } else if (path[0].text() == "collections") {
        target.collection = numberOf(path[1]);
        if (isBelow && path[2].text() == "slots")
            target.slot = numberOf(path[3]);
        target.isSlotItself = path.size() == recordDepth;
    }
    return target;
}

void addPlaylistChange(LibraryChanges& changes, PatchOpType op, const Target& target)
{
    const bool hasEntry = target.entry.isValid();
    const LibraryChanges::Entry entry(target.playlist, target.entry);
    switch (op) {
    case PatchOpType::Add:
        if (hasEntry)
            changes.entriesAdded.insert(entry);
        else
            changes.playlistsAdded.insert(target.playlist);
        break;
    case PatchOpType::Remove:
        if (hasEntry)
            changes.entriesRemoved.insert(entry);
        else
            changes.playlistsRemoved.insert(target.playlist);
        break;
    case PatchOpType::Replace:
        changes.playlistsChanged.insert(target.playlist);
        if (hasEntry)
            changes.entriesChanged.insert(entry);
        break;
    default:
        break;
    }
}

void addCollectionChange(LibraryChanges& changes, PatchOpType op, const Target& target)
{
    const bool hasSlot = target.slot >= 0;
    const MediaAddress slot(target.collection, target.slot);
    switch (op) {
    case PatchOpType::Add:
        if (hasSlot)
            changes.mediaAdded.insert(slot);
        else
            changes.collectionsAdded.insert(target.collection);
        break;
    case PatchOpType::Remove:
        if (!hasSlot)
            changes.collectionsRemoved.insert(target.collection);
        else if (target.isSlotItself)
            changes.mediaRemoved.insert(slot);
        break;
    case PatchOpType::Replace:
        changes.collectionsChanged.insert(target.collection);
        if (hasSlot)
            changes.mediaChanged.insert(slot);
        break;
    default:
        break;
    }
}

} // namespace

LibraryChanges LibraryChanges::fromPatch(const Patch& patch)
{
    LibraryChanges changes;
    for (const PatchOp& op : patch) {
        const Target target = targetOf(op.path);
        if (target.playlist >= 0)
            addPlaylistChange(changes, op.op, target);
        else if (target.collection >= 0)
            addCollectionChange(changes, op.op, target);
    }
    return changes;
}

bool LibraryChanges::isAnotherLibrary() const
{
    constexpr std::size_t many = 100;
    return collectionsAdded.size() + collectionsRemoved.size() + playlistsAdded.size() +
               playlistsRemoved.size() >
           many;
}

} // namespace vantrel

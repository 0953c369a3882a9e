#include "common/media/library/librarychanges.h"

#include "tarn/json/patch.h"

#include <limits>
#include <string>

namespace vantrel {

namespace {

/// What a path names; -1 and an invalid address where it names none.
struct Target
{
    int playlist = -1;
    int collection = -1;
    int slot = -1;
    EntryAddress entry;
    std::string last;
};

bool parseNumber(const PathElement& element, int& out)
{
    long long number = 0;
    if (!element.parseIndex(&number) || number > std::numeric_limits<int>::max())
        return false;
    out = static_cast<int>(number);
    return true;
}

Target targetOf(const Path& path)
{
    Target target;
    for (const PathElement& element : path) {
        if (target.last == "playlists")
            parseNumber(element, target.playlist);
        else if (target.last == "collections")
            parseNumber(element, target.collection);
        else if (target.last == "slots")
            parseNumber(element, target.slot);
        else if (target.last == "entries") {
            EntryAddress entry;
            if (entry.parseString(element.text()))
                target.entry = entry;
        }
        target.last = element.text();
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
        else if (target.last == std::to_string(target.slot))
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

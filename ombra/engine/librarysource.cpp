#include "ombra/engine/librarysource.h"

#include "tarn/media/medialibrary.h"
#include "tarn/media/mediasourceparser.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <iterator>

namespace vantrel::ombra {

namespace {

/// The key after or before the given one, which need not be in the map itself.
template <typename Map, typename Key>
std::optional<Key> neighbourKey(const Map& map, const Key& key, int direction)
{
    std::optional<Key> before;
    for (const auto& [candidate, record] : map) {
        if (candidate < key)
            before = candidate;
        else if (key < candidate)
            return direction < 0 ? before : std::optional<Key>(candidate);
    }
    return direction < 0 ? before : std::nullopt;
}

MediaItem toItem(const MediaSlot& slot)
{
    MediaItem item;
    item.contentUrl = slot.getUrl();
    item.inpoint = std::max(0.0, slot.getInpoint());
    item.outpoint = slot.getOutpoint();
    item.scaling = slot.getScaleMode();
    if (slot.isFinite())
        item.stillDuration = slot.getCustomMediaDuration();
    if (slot.getFrameRate())
        item.sequence = SequenceRun{*slot.getFrameRate(), slot.getFirstFrameNum(), slot.getLastFrameNum()};
    return item;
}

} // namespace

std::optional<MediaItem> LibrarySource::resolve(std::string_view url) const
{
    MediaSourceParser source;
    if (!source.parseString(url))
        return std::nullopt;
    const MediaSlot* slot = nullptr;
    const PlaylistEntry* entry = nullptr;
    if (source.getSourceMode() == SourceMode::Playlist)
        std::tie(entry, slot) = m_library.findEntryAndSlot(url);
    else if (const MediaAddress at = source.getMediaAddress(); at.isValid())
        slot = m_library.findSlot(at.collection, at.slot);
    if (!slot)
        return std::nullopt;
    MediaItem item = toItem(*slot);
    item.mode = source.getSourceMode();
    if (entry) {
        item.endAction = entry->getEndAction();
        item.transition = entry->getTransitionType();
        item.transitionDuration = std::max(0.0, entry->getTransitionDuration());
    }
    return item;
}

std::string LibrarySource::neighbour(std::string_view url, int direction) const
{
    MediaSourceParser source;
    if (!source.parseString(url))
        return {};
    if (source.getSourceMode() == SourceMode::Slot) {
        const MediaAddress at = source.getMediaAddress();
        const MediaCollection* collection = m_library.findCollection(at.collection);
        const auto slot =
            collection ? neighbourKey(collection->getSlots(), at.slot, direction) : std::nullopt;
        return slot ? MediaAddress(at.collection, *slot).toString() : std::string();
    }
    const Playlist* playlist = m_library.findPlaylist(source.getPlaylistNumber());
    const auto entry =
        playlist ? neighbourKey(playlist->getEntries(), source.getEntryAddress(), direction) : std::nullopt;
    return entry ? entryUrl(source.getPlaylistNumber(), *entry) : std::string();
}

} // namespace vantrel::ombra

#include "ombra/engine/librarysource.h"

#include "ombra/base/asidethread.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/mediasourceparser.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace vantrel::ombra {

namespace {

/// The key after or before the given one, which need not be in the map itself.
template <typename Map, typename Key>
std::optional<Key> neighbourKey(const Map& map, const Key& key, int direction)
{
    auto at = map.lower_bound(key);
    if (direction < 0)
        return at == map.begin() ? std::nullopt : std::optional<Key>(std::prev(at)->first);
    if (at != map.end() && at->first == key)
        ++at;
    return at == map.end() ? std::nullopt : std::optional<Key>(at->first);
}

MediaItem toItem(const MediaSlot& slot)
{
    MediaItem item;
    item.contentUrl = slot.getUrl();
    item.inpoint = std::max(0.0, slot.getInpoint());
    item.outpoint = slot.getOutpoint();
    item.playable = slot.getIsPlayable();
    item.scaling = slot.getScaleMode();
    if (slot.isFinite())
        item.stillDuration = slot.getCustomMediaDuration();
    if (slot.getFrameRate())
        item.sequence = SequenceRun{*slot.getFrameRate(), slot.getFirstFrameNum(), slot.getLastFrameNum()};
    return item;
}

/// Whether nothing in them differs; copies of a library share what no edit has touched.
template <typename Record>
bool isSame(const Record& one, const Record* other)
{
    return other && one.toJson().sameNode(other->toJson());
}

/// How slots and entries are walked, found and told apart.
struct Slots
{
    using Record = MediaSlot;

    static const MediaSlot* at(const MediaLibrary& library, const MediaSourceParser& source)
    {
        const MediaAddress at = source.getMediaAddress();
        return library.findSlot(at.collection, at.slot);
    }
    template <typename Visit>
    static void forEach(const MediaLibrary& library, const MediaLibrary& other, const Visit& visit)
    {
        for (const auto& [index, collection] : library.getCollections()) {
            if (isSame(collection, other.findCollection(index)))
                continue;
            for (const auto& [number, slot] : collection.getSlots())
                visit(slot, [&] { return MediaAddress(index, number).toString(); });
        }
    }
    static std::string medium(const MediaSlot& slot) { return slot.getUrl(); }
};

struct Entries
{
    using Record = PlaylistEntry;

    static const PlaylistEntry* at(const MediaLibrary& library, const MediaSourceParser& source)
    {
        return library.findPlaylistEntry(source.getPlaylistNumber(), source.getEntryAddress());
    }
    template <typename Visit>
    static void forEach(const MediaLibrary& library, const MediaLibrary& other, const Visit& visit)
    {
        for (const auto& [number, playlist] : library.getPlaylists()) {
            if (isSame(playlist, other.findPlaylist(number)))
                continue;
            for (const auto& [address, entry] : playlist.getEntries())
                visit(entry, [&] { return entryUrl(number, address); });
        }
    }
    static std::string medium(const PlaylistEntry& entry) { return entry.getMediaUrl(); }
};

/// Where a library has the record and the other one has not, URLs in their order.
template <typename Kind>
std::vector<std::string> placesOf(const typename Kind::Record& record, const MediaLibrary& library,
                                  const MediaLibrary& other)
{
    std::vector<std::string> places;
    Kind::forEach(library, other, [&](const typename Kind::Record& candidate, const auto& urlOf) {
        if (!(candidate == record))
            return;
        const std::string url = urlOf();
        MediaSourceParser source;
        const typename Kind::Record* there = source.parseString(url) ? Kind::at(other, source) : nullptr;
        if (!there || !(*there == record))
            places.push_back(url);
    });
    return places;
}

template <typename Kind>
std::string whereaboutsOf(const MediaSourceParser& source, std::string_view url, const MediaLibrary& before,
                          const MediaLibrary& now)
{
    const typename Kind::Record* was = Kind::at(before, source);
    const typename Kind::Record* is = Kind::at(now, source);
    if (!was || (is && *is == *was))
        return std::string(url);
    // Of several alike that moved together each keeps its turn.
    const std::vector<std::string> left = placesOf<Kind>(*was, before, now);
    const std::vector<std::string> reached = placesOf<Kind>(*was, now, before);
    const auto turn = std::ranges::find(left, url) - left.begin();
    if (turn < std::ssize(reached))
        return reached[static_cast<std::size_t>(turn)];
    return is && Kind::medium(*is) == Kind::medium(*was) ? std::string(url) : std::string();
}

} // namespace

void LibrarySource::noteEdit()
{
    replaceAside(m_before, m_now);
    m_now = m_library;
}

void LibrarySource::noteAnotherShow()
{
    noteEdit();
    replaceAside(m_before, m_now);
}

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

std::string LibrarySource::whereabouts(std::string_view url) const
{
    MediaSourceParser source;
    if (!source.parseString(url))
        return {};
    return source.getSourceMode() == SourceMode::Playlist
               ? whereaboutsOf<Entries>(source, url, m_before, m_now)
               : whereaboutsOf<Slots>(source, url, m_before, m_now);
}

} // namespace vantrel::ombra

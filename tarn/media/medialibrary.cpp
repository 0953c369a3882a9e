#include "tarn/media/medialibrary.h"

#include "tarn/media/mediasourceparser.h"
#include "tarn/media/playenums.h"

namespace vantrel {

MediaLibrary::MediaLibrary()
    : m_json(Json::object({{"collections", Json::object()}, {"playlists", Json::object()}}))
{
}

MediaLibrary::MediaLibrary(const MediaLibrary& other)
    : RefCounted()
    , m_collections(other.m_collections)
    , m_playlists(other.m_playlists)
    , m_json(other.m_json)
{
}

MediaLibrary& MediaLibrary::operator=(const MediaLibrary& other)
{
    if (this != &other) {
        const std::lock_guard lock(m_mutex);
        m_collections = other.m_collections;
        m_playlists = other.m_playlists;
        m_json = other.m_json;
    }
    return *this;
}

MediaLibrary::~MediaLibrary() = default;

const Json& MediaLibrary::currentJson() const
{
    m_json.set("collections", m_collections.toJson());
    m_json.set("playlists", m_playlists.toJson());
    return m_json;
}

bool MediaLibrary::insertMediaCollection(int index, const MediaCollection& collection, bool overwrite)
{
    if (index < indexMin || index > indexMax || (!overwrite && m_collections.contains(index)))
        return false;
    m_collections.set(index, collection);
    return true;
}

bool MediaLibrary::copyCollection(int from, int to)
{
    const MediaCollection* source = m_collections.get(from);
    return source && insertMediaCollection(to, MediaCollection(*source), false);
}

const MediaSlot* MediaLibrary::findSlot(int collection, int slot) const
{
    const MediaCollection* found = m_collections.get(collection);
    return found ? found->findMediaSlot(slot) : nullptr;
}

MediaSlot* MediaLibrary::findSlot(int collection, int slot)
{
    if (!std::as_const(*this).findSlot(collection, slot))
        return nullptr; // nothing to detach
    return m_collections.edit(collection)->findMediaSlot(slot);
}

const MediaSlot* MediaLibrary::findSlot(std::string_view url) const
{
    const MediaAddress address = resolveSlot(url);
    return address.isValid() ? findSlot(address.collection, address.slot) : nullptr;
}

MediaSlot* MediaLibrary::findSlot(std::string_view url)
{
    const MediaAddress address = resolveSlot(url);
    return address.isValid() ? findSlot(address.collection, address.slot) : nullptr;
}

MediaAddress MediaLibrary::resolveSlot(std::string_view url) const
{
    MediaSourceParser source;
    if (source.parseString(url)) {
        MediaAddress address = source.getMediaAddress();
        if (source.getSourceMode() == SourceMode::Playlist) {
            const PlaylistEntry* entry =
                findPlaylistEntry(source.getPlaylistNumber(), source.getEntryAddress());
            if (!entry || !address.parseString(entry->getMediaUrl()))
                return {};
        }
        return findSlot(address.collection, address.slot) ? address : MediaAddress();
    }
    if (url.empty())
        return {};
    for (const auto& [index, collection] : m_collections) {
        for (const auto& [number, slot] : collection.getSlots()) {
            if (slot.toJson().get("contentUrl").stringView() == url)
                return {index, number};
        }
    }
    return {};
}

bool MediaLibrary::addPlaylist(int number, const Playlist& playlist)
{
    if (number < indexMin || number > indexMax || m_playlists.contains(number))
        return false;
    m_playlists.set(number, playlist);
    return true;
}

bool MediaLibrary::movePlaylist(int from, int to)
{
    const Playlist* source = m_playlists.get(from);
    return source && addPlaylist(to, Playlist(*source)) && m_playlists.erase(from);
}

const PlaylistEntry* MediaLibrary::findPlaylistEntry(int playlist, const EntryAddress& address) const
{
    const Playlist* found = m_playlists.get(playlist);
    return found ? found->findEntry(address) : nullptr;
}

PlaylistEntry* MediaLibrary::findPlaylistEntry(int playlist, const EntryAddress& address)
{
    if (!std::as_const(*this).findPlaylistEntry(playlist, address))
        return nullptr;
    return m_playlists.edit(playlist)->findEntry(address);
}

std::pair<const PlaylistEntry*, const MediaSlot*> MediaLibrary::findEntryAndSlot(std::string_view url) const
{
    MediaSourceParser source;
    source.parseString(url);
    if (source.getSourceMode() != SourceMode::Playlist)
        return {nullptr, nullptr};
    const PlaylistEntry* entry = findPlaylistEntry(source.getPlaylistNumber(), source.getEntryAddress());
    MediaAddress address;
    if (!entry || !address.parseString(entry->getMediaUrl()))
        return {entry, nullptr};
    return {entry, findSlot(address.collection, address.slot)};
}

PlaylistRuntimeInfo MediaLibrary::calculateRuntimeInfo(unsigned playlist) const
{
    return calculatePlaylistRuntime(*this, static_cast<int>(playlist));
}

} // namespace vantrel

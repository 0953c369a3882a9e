#include "common/media/address/medialogging.h"
#include "common/media/library/librarychanges.h"
#include "common/media/library/medialibraryapi.h"

namespace vantrel {

void MediaLibraryApi::emitLibraryChanges(const LibraryChanges& changes)
{
    Q_EMIT changesStarted();
    // Collections first: playlists look their slots up.
    emitCollectionChanges(changes);
    emitPlaylistChanges(changes);
    Q_EMIT changesFinished();
    Q_EMIT mediaLibraryChanged();
}

void MediaLibraryApi::emitCollectionChanges(const LibraryChanges& changes)
{
    const auto collections = [this](const std::set<int>& set, const char* text,
                                    void (MediaLibraryApi::*changed)(uint)) {
        for (const int index : set) {
            qCDebug(lcMedia) << text << index;
            Q_EMIT(this->*changed)(static_cast<uint>(index));
        }
    };
    const auto media = [this](const std::set<MediaAddress>& set, const char* text,
                              void (MediaLibraryApi::*changed)(MediaAddress)) {
        std::size_t told = 0;
        for (const MediaAddress& address : set) {
            if (told++ < mostLogged)
                qCDebug(lcMedia) << text << address.collection << ", " << address.slot;
            Q_EMIT(this->*changed)(address);
        }
        if (told > mostLogged)
            qCDebug(lcMedia) << text << "and" << told - mostLogged << "more";
    };
    collections(changes.collectionsChanged,
                "Media collection changed: ", &MediaLibraryApi::mediaCollectionChanged);
    collections(changes.collectionsRemoved,
                "Media collection removed: ", &MediaLibraryApi::mediaCollectionRemoved);
    collections(changes.collectionsAdded, "Media collection added: ", &MediaLibraryApi::mediaCollectionAdded);
    media(changes.mediaAdded, "Media added: ", &MediaLibraryApi::mediaAdded);
    media(changes.mediaChanged, "Media changed: ", &MediaLibraryApi::mediaChanged);
    media(changes.mediaRemoved, "Media removed: ", &MediaLibraryApi::mediaRemoved);
}

void MediaLibraryApi::emitPlaylistChanges(const LibraryChanges& changes)
{
    const auto playlists = [this](const std::set<int>& set, const char* text,
                                  void (MediaLibraryApi::*changed)(uint)) {
        for (const int number : set) {
            qCDebug(lcMedia) << text << number;
            Q_EMIT(this->*changed)(static_cast<uint>(number));
        }
    };
    const auto entries = [this](const std::set<LibraryChanges::Entry>& set, const char* text,
                                void (MediaLibraryApi::*changed)(uint, EntryAddress)) {
        for (const auto& [playlist, entry] : set) {
            qCDebug(lcMedia) << text << playlist << ", " << entry.toString(true).c_str();
            Q_EMIT(this->*changed)(static_cast<uint>(playlist), entry);
        }
    };
    playlists(changes.playlistsAdded, "Playlist added: ", &MediaLibraryApi::playlistAdded);
    playlists(changes.playlistsChanged, "Playlist changed: ", &MediaLibraryApi::playlistChanged);
    playlists(changes.playlistsRemoved, "Playlist removed: ", &MediaLibraryApi::playlistRemoved);
    entries(changes.entriesAdded, "Playlist entry added: ", &MediaLibraryApi::playlistEntryAdded);
    entries(changes.entriesChanged, "Playlist entry changed: ", &MediaLibraryApi::playlistEntryChanged);
    entries(changes.entriesRemoved, "Playlist entry removed: ", &MediaLibraryApi::playlistEntryRemoved);
}

} // namespace vantrel

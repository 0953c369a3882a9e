#pragma once

#include "tarn/json/patch.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/mediacollection.h"
#include "tarn/media/playlist.h"
#include "tarn/media/playlistruntime.h"
#include "tarn/ref.h"

#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace vantrel {

using MediaCollectionMap = RecordMap<int, MediaCollection>;
using PlaylistMap = RecordMap<int, Playlist>;

/// The media library of a show: numbered collections of slots and numbered playlists of entries. A copy
/// shares all that neither side edits, and toJson() of an unchanged library is the same node, so that
/// serialising is taking the root. What a non-const find returns may be written through until the next
/// toJson(), copy or edit of its map. One thread, but for readers that hold getMutex(), which applyDiff and
/// parseJson take while they swap.
class MediaLibrary : public RefCounted
{
public:
    static constexpr int indexMin = 1;
    static constexpr int indexMax = 9999; // of collections and of playlists

    /// Results of applyDiff beside those of PatchError.
    static constexpr int invalidContent = 100;

    MediaLibrary();
    MediaLibrary(const MediaLibrary& other);
    MediaLibrary& operator=(const MediaLibrary& other);
    ~MediaLibrary() override;

    /// Replaces the whole from {"collections", "playlists"}. False, with the library as it was, on bad
    /// content; error then says what. Records whose node is that of the present one are taken over unread.
    bool parseJson(const Json& json, std::string* error = nullptr);
    Json toJson() const;

    /// All operations or none; costs what the patch touches. 0, or the PatchError when an operation does not
    /// fit the document, or invalidContent when the outcome would be no valid library.
    int applyDiff(const Patch& patch, std::string* error = nullptr);

    const MediaCollectionMap& getCollections() const noexcept { return m_collections; }
    const PlaylistMap& getPlaylists() const noexcept { return m_playlists; }

    const MediaCollection* findCollection(int index) const { return m_collections.get(index); }
    MediaCollection* findCollection(int index) { return m_collections.edit(index); }
    const MediaCollection* getCollection(int index) const { return findCollection(index); }
    MediaCollection* getCollection(int index) { return findCollection(index); }
    /// False when the index is out of range, or taken and overwrite is false.
    bool insertMediaCollection(int index, const MediaCollection& collection, bool overwrite);
    bool removeCollection(int index) { return m_collections.erase(index); }
    /// False when the source is absent or the target out of range or taken.
    bool copyCollection(int from, int to);
    static int getCollectionIndexMin() noexcept { return indexMin; }
    static int getCollectionIndexMax() noexcept { return indexMax; }

    const MediaSlot* findSlot(int collection, int slot) const;
    MediaSlot* findSlot(int collection, int slot);
    const MediaSlot* getSlot(int collection, int slot) const { return findSlot(collection, slot); }
    MediaSlot* getSlot(int collection, int slot) { return findSlot(collection, slot); }
    /// By the URL of a slot or of a playlist entry, or else by the slot's content URL (the first slot that
    /// has it).
    const MediaSlot* findSlot(std::string_view url) const;
    MediaSlot* findSlot(std::string_view url);
    /// The address of what findSlot(url) finds; no address when there is none.
    MediaAddress resolveSlot(std::string_view url) const;

    const Playlist* findPlaylist(int number) const { return m_playlists.get(number); }
    Playlist* findPlaylist(int number) { return m_playlists.edit(number); }
    /// False when the number is out of range or taken.
    bool addPlaylist(int number, const Playlist& playlist);
    bool removePlaylist(int number) { return m_playlists.erase(number); }
    /// False when the source is absent or the target out of range or taken.
    bool movePlaylist(int from, int to);

    const PlaylistEntry* findPlaylistEntry(int playlist, const EntryAddress& address) const;
    PlaylistEntry* findPlaylistEntry(int playlist, const EntryAddress& address);
    /// The entry that an entry's URL names and the slot that it plays; null for what is absent.
    std::pair<const PlaylistEntry*, const MediaSlot*> findEntryAndSlot(std::string_view url) const;

    /// The running times of a playlist (rule: tarn/media/playlistruntime.h); empty when there is no such
    /// playlist.
    PlaylistRuntimeInfo calculateRuntimeInfo(unsigned playlist) const;

    std::mutex& getMutex() const noexcept { return m_mutex; }

private:
    class Update;

    const Json& currentJson() const;

    MediaCollectionMap m_collections;
    PlaylistMap m_playlists;
    mutable Json m_json; // as of the last currentJson()
    mutable std::mutex m_mutex;
};

} // namespace vantrel

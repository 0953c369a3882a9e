#include "tarn/media/medialibrary.h"
#include "tarn/media/recordrules.h"

#include <set>

namespace vantrel {

namespace {

using namespace recordrules;

bool isObject(const Json& value)
{
    return value.isObject();
}

constexpr Rule libraryRules[] = {{"collections", isObject}, {"playlists", isObject}};

const Json& libraryPrototype()
{
    static const Json prototype =
        Json::object({{"collections", Json::object()}, {"playlists", Json::object()}});
    return prototype;
}

/// Another answer than a library is not to pass for an empty one with members of a later version.
bool checkLibrary(Json& document, std::string* error)
{
    if (document.size() > 0 && !document.find("collections") && !document.find("playlists"))
        return fail(error, "there are neither \"collections\" nor \"playlists\"");
    return check(document, libraryRules, libraryPrototype(), error);
}

/// Reads an object of numbered records; those whose node is the present one's are taken over unread.
template <typename Record>
bool readRecords(const Json& members, const char* what, const RecordMap<int, Record>& present,
                 RecordMap<int, Record>& out, std::string* error)
{
    RecordMap<int, Record> records;
    std::string reason;
    members.forEachMember([&](std::string_view key, const Json& value) {
        int index = 0;
        if (!parseIndex(key, MediaLibrary::indexMin, MediaLibrary::indexMax, index)) {
            reason = std::string(what) + " index \"" + std::string(key) + "\" is none of 1 to 9999";
            return false;
        }
        const Record* old = present.get(index);
        Record record = old ? *old : Record();
        if (!(old && old->toJson().sameNode(value)) && !record.parseJson(value, &reason)) {
            reason = std::string(what) + " " + std::string(key) + ": " + reason;
            return false;
        }
        records.set(index, std::move(record));
        return true;
    });
    if (!reason.empty())
        return fail(error, reason);
    records.rebaseJson(members);
    out = std::move(records);
    return true;
}

} // namespace

/// What a patch touches, and the records read anew from the patched document.
class MediaLibrary::Update
{
public:
    Update(const MediaLibrary& library, const Json& document)
        : m_document(document)
        , m_collections(library.m_collections)
        , m_playlists(library.m_playlists)
    {
    }

    void mark(PathView path);
    bool read(std::string* error);
    void commit(MediaLibrary& library)
    {
        library.m_collections = std::move(m_collections);
        library.m_playlists = std::move(m_playlists);
        if (m_all)
            library.m_json = std::move(m_document); // with what stands beside the two
    }

private:
    void markInCollection(PathView path);
    void markInPlaylist(PathView path);
    bool readCollections(std::string* error);
    bool readSlots(std::string* error);
    bool readPlaylists(std::string* error);
    bool readEntries(std::string* error);

    Json m_document;
    MediaCollectionMap m_collections;
    PlaylistMap m_playlists;
    bool m_all = false;
    std::set<int> m_wholeCollections, m_collectionNames, m_wholePlaylists, m_playlistNames;
    std::set<MediaAddress> m_slots;
    std::set<std::pair<int, EntryAddress>> m_entries;
};

void MediaLibrary::Update::mark(PathView path)
{
    if (path.size() < 2)
        m_all = true;
    else if (path[0].text() == "collections")
        markInCollection(path);
    else if (path[0].text() == "playlists")
        markInPlaylist(path);
    else
        m_all = true;
}

void MediaLibrary::Update::markInCollection(PathView path)
{
    int collection = 0;
    int slot = 0;
    if (!parseIndex(path[1].text(), indexMin, indexMax, collection)) {
        m_all = true;
    } else if (path.size() == 3 && path[2].text() == "name") {
        m_collectionNames.insert(collection);
    } else if (path.size() > 3 && path[2].text() == "slots" &&
               parseIndex(path[3].text(), MediaCollection::slotIndexMin, MediaCollection::slotIndexMax,
                          slot)) {
        m_slots.emplace(collection, slot);
    } else {
        m_wholeCollections.insert(collection);
    }
}

void MediaLibrary::Update::markInPlaylist(PathView path)
{
    int playlist = 0;
    EntryAddress entry;
    if (!parseIndex(path[1].text(), indexMin, indexMax, playlist)) {
        m_all = true;
    } else if (path.size() == 3 && path[2].text() == "name") {
        m_playlistNames.insert(playlist);
    } else if (path.size() > 3 && path[2].text() == "entries" && entry.parseString(path[3].text()) &&
               entry.toString(true) == path[3].text()) {
        m_entries.emplace(playlist, entry);
    } else {
        m_wholePlaylists.insert(playlist);
    }
}

bool MediaLibrary::Update::read(std::string* error)
{
    if (m_all) {
        if (!checkLibrary(m_document, error))
            return false;
        return readRecords(m_document.get("collections"), "collection", m_collections, m_collections,
                           error) &&
               readRecords(m_document.get("playlists"), "playlist", m_playlists, m_playlists, error);
    }
    return readCollections(error) && readSlots(error) && readPlaylists(error) && readEntries(error);
}

bool MediaLibrary::Update::readCollections(std::string* error)
{
    const Json* members = m_document.find("collections");
    for (const int index : m_collectionNames) {
        // Without a name the record takes its default, which the whole reading does.
        const Json* node = members->find(std::to_string(index));
        const Json* name = node ? node->find("name") : nullptr;
        if (m_wholeCollections.contains(index) || !name || !m_collections.contains(index))
            m_wholeCollections.insert(index);
        else if (!isText(*name))
            return fail(error, "collection " + std::to_string(index) + ": \"name\" must be a text that fits");
        else
            m_collections.edit(index)->setName(name->asString());
    }
    for (const int index : m_wholeCollections) {
        const Json* node = members->find(std::to_string(index));
        if (!node) {
            m_collections.erase(index);
            continue;
        }
        const MediaCollection* old = m_collections.get(index);
        MediaCollection collection = old ? *old : MediaCollection();
        std::string reason;
        if (!collection.parseJson(*node, &reason))
            return fail(error, "collection " + std::to_string(index) + ": " + reason);
        m_collections.set(index, collection);
    }
    return true;
}

bool MediaLibrary::Update::readSlots(std::string* error)
{
    for (const auto& [index, number] : m_slots) {
        if (m_wholeCollections.contains(index))
            continue;
        const Json* node = m_document.find("collections")
                               ->get(std::to_string(index))
                               .get("slots")
                               .find(std::to_string(number));
        MediaCollection* collection = m_collections.edit(index);
        if (!collection)
            return fail(error, "no collection " + std::to_string(index));
        if (!node) {
            collection->removeMediaSlot(number);
            continue;
        }
        MediaSlot slot;
        std::string reason;
        if (!slot.parseJson(*node, &reason))
            return fail(error, "collection " + std::to_string(index) + ": slot " + std::to_string(number) +
                                   ": " + reason);
        collection->insertMediaSlot(number, slot, true);
    }
    return true;
}

bool MediaLibrary::Update::readPlaylists(std::string* error)
{
    const Json* members = m_document.find("playlists");
    for (const int index : m_playlistNames) {
        const Json* node = members->find(std::to_string(index));
        const Json* name = node ? node->find("name") : nullptr;
        if (m_wholePlaylists.contains(index) || !name || !m_playlists.contains(index))
            m_wholePlaylists.insert(index);
        else if (!isText(*name))
            return fail(error, "playlist " + std::to_string(index) + ": \"name\" must be a text that fits");
        else
            m_playlists.edit(index)->setName(name->asString());
    }
    for (const int index : m_wholePlaylists) {
        const Json* node = members->find(std::to_string(index));
        if (!node) {
            m_playlists.erase(index);
            continue;
        }
        const Playlist* old = m_playlists.get(index);
        Playlist playlist = old ? *old : Playlist();
        std::string reason;
        if (!playlist.parseJson(*node, &reason))
            return fail(error, "playlist " + std::to_string(index) + ": " + reason);
        m_playlists.set(index, playlist);
    }
    return true;
}

bool MediaLibrary::Update::readEntries(std::string* error)
{
    for (const auto& [index, address] : m_entries) {
        if (m_wholePlaylists.contains(index))
            continue;
        const Json* node = m_document.find("playlists")
                               ->get(std::to_string(index))
                               .get("entries")
                               .find(address.toString(true));
        Playlist* playlist = m_playlists.edit(index);
        if (!playlist)
            return fail(error, "no playlist " + std::to_string(index));
        if (!node) {
            playlist->removeEntry(address);
            continue;
        }
        PlaylistEntry entry;
        std::string reason;
        if (!entry.parseJson(*node, &reason))
            return fail(error, "playlist " + std::to_string(index) + ": entry " + address.toString(true) +
                                   ": " + reason);
        playlist->replaceEntry(address, entry);
    }
    return true;
}

bool MediaLibrary::parseJson(const Json& json, std::string* error)
{
    MediaCollectionMap collections;
    PlaylistMap playlists;
    Json whole = json;
    if (!checkLibrary(whole, error) ||
        !readRecords(whole.get("collections"), "collection", m_collections, collections, error) ||
        !readRecords(whole.get("playlists"), "playlist", m_playlists, playlists, error))
        return false;
    const std::lock_guard lock(m_mutex);
    m_collections = std::move(collections);
    m_playlists = std::move(playlists);
    m_json = whole;
    return true;
}

Json MediaLibrary::toJson() const
{
    return currentJson();
}

int MediaLibrary::applyDiff(const Patch& patch, std::string* error)
{
    Json document = currentJson();
    if (const PatchResult result = patch.apply(document); !result) {
        fail(error, result.message);
        return static_cast<int>(result.error);
    }
    Update update(*this, document);
    for (const PatchOp& op : patch) {
        if (op.op == PatchOpType::Test)
            continue;
        update.mark(op.path);
        if (op.op == PatchOpType::Move)
            update.mark(op.from);
    }
    if (!update.read(error))
        return invalidContent;
    const std::lock_guard lock(m_mutex);
    update.commit(*this);
    return 0;
}

} // namespace vantrel

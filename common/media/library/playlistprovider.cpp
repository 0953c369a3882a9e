#include "common/media/library/playlistprovider.h"

#include "common/media/address/medialogging.h"
#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/library/aside.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/mediasourceparser.h"
#include "tarn/media/playenums.h"

#include <QElapsedTimer>

#include <algorithm>
#include <set>
#include <utility>

namespace vantrel {

namespace {

constexpr std::size_t few = 500; // entries that are read in no time

} // namespace

struct PlaylistProvider::Coming
{
    explicit Coming(const PlaylistMap& all)
        : records(all)
        , at(records.begin())
    {
    }

    const PlaylistMap records; // as they are at the reset
    PlaylistMap::const_iterator at;
    QMap<uint, std::shared_ptr<const GuiPlaylist>> playlists;
    EntryTable entries;
};

PlaylistProvider::PlaylistProvider(Ref<MediaLibrary> library, AbstractMediaLibraryProvider* mediaProvider,
                                   QObject* parent)
    : AbstractPlaylistProvider(parent)
    , m_library(std::move(library))
    , m_mediaProvider(mediaProvider)
{
    connect(&m_turn, &Turn::come, this, [this] {
        if (m_coming)
            proceed(false);
    });
    // The slots of a collection come and go with it untold.
    if (mediaProvider) {
        using Provider = AbstractMediaLibraryProvider;
        connect(mediaProvider, &Provider::collectionAdded, this, &PlaylistProvider::onCollectionModified);
        connect(mediaProvider, &Provider::collectionRemoved, this, &PlaylistProvider::onCollectionModified);
    }
    m_coming = std::make_shared<Coming>(m_library->getPlaylists());
    proceed(true);
}

PlaylistProvider::~PlaylistProvider() = default;

QList<std::shared_ptr<const GuiPlaylist>> PlaylistProvider::playlists() const
{
    return m_playlists.values();
}

std::shared_ptr<const GuiPlaylist> PlaylistProvider::playlist(uint number) const
{
    return m_playlists.value(number);
}

QList<std::shared_ptr<const GuiPlaylistEntry>> PlaylistProvider::entries(uint playlist) const
{
    return m_entries.items(playlist);
}

std::shared_ptr<const GuiPlaylistEntry> PlaylistProvider::entry(uint playlist, EntryAddress address) const
{
    return m_entries.item(playlist, address);
}

std::shared_ptr<const GuiMediaSlot> PlaylistProvider::entrySlot(uint playlist, EntryAddress address) const
{
    const MediaAddress slot = m_entries.slotOf(playlist, address);
    return slot.isValid() ? m_mediaProvider->slot(slot) : nullptr;
}

QSet<std::shared_ptr<const GuiPlaylistEntry>> PlaylistProvider::slotEntries(const MediaAddress& address) const
{
    QSet<EntryTable::Item> items;
    if (!m_mediaProvider->hasSlot(address))
        return items;
    for (const auto& [playlist, entryAddress] : m_entries.usersOf(address))
        items.insert(m_entries.item(playlist, entryAddress));
    return items;
}

MediaLibrary* PlaylistProvider::mediaLibrary()
{
    return m_library.get();
}

/// What there was stands until the new lists are whole.
void PlaylistProvider::onReset()
{
    m_late.clear();
    m_news.clear();
    m_unlooked.clear();
    m_coming = std::make_shared<Coming>(m_library->getPlaylists());
    std::size_t entries = 0;
    for (const auto& [number, playlist] : m_coming->records)
        entries += playlist.getEntries().size();
    if (entries > few) // others have work in this turn as well
        m_turn.ask();
    else
        proceed(false);
}

/// Some of the lists that are coming, for a part of a picture's time.
void PlaylistProvider::proceed(bool toTheEnd)
{
    constexpr qint64 inOneTurn = 4; // milliseconds
    std::size_t entries = 0;
    QElapsedTimer clock;
    clock.start();
    m_playlists.swap(m_coming->playlists);
    std::swap(m_entries, m_coming->entries);
    for (; m_coming->at != m_coming->records.end() &&
           (toTheEnd || entries < few || clock.elapsed() < inOneTurn);
         ++m_coming->at) {
        loadPlaylist(static_cast<uint>(m_coming->at->first));
        entries += m_coming->at->second.getEntries().size();
    }
    if (m_coming->at == m_coming->records.end()) {
        aside::letGo(std::exchange(m_coming, nullptr)); // to free a long table takes time as well
        Q_EMIT reset();
        return;
    }
    m_playlists.swap(m_coming->playlists);
    std::swap(m_entries, m_coming->entries);
    m_turn.ask();
}

/// News of the library are about the lists that are coming.
void PlaylistProvider::settle()
{
    if (m_coming)
        proceed(true);
}

void PlaylistProvider::onPlaylistAdded(uint playlist)
{
    settle();
    if (m_playlists.contains(playlist))
        qCWarning(lcMedia) << "Playlist already existed. Invalid signaling.";
    forget(playlist);
    if (!loadPlaylist(playlist)) {
        qCWarning(lcMedia, "Couldn't add playlist: %d", static_cast<int>(playlist));
        Q_EMIT playlistRemoved(playlist);
        return;
    }
    Q_EMIT playlistAdded(playlist);
}

void PlaylistProvider::onPlaylistChanged(uint playlist)
{
    settle();
    const Playlist* record = std::as_const(*m_library).findPlaylist(static_cast<int>(playlist));
    if (!record) {
        forget(playlist);
        qCWarning(lcMedia, "Couldn't change playlist: %d", static_cast<int>(playlist));
        Q_EMIT playlistRemoved(playlist);
        return;
    }
    const auto changed = std::make_shared<GuiPlaylist>(QString::fromStdString(record->getName()), playlist);
    if (const auto old = m_playlists.value(playlist)) {
        changed->setEntryCount(old->entryCount());
        changed->setDuration(old->duration(), old->isInfinite());
    }
    m_playlists.insert(playlist, changed);
    if (m_isChanging) {
        m_late[playlist] = true;
        return;
    }
    Moved moved = updateTimes(playlist);
    moved.playlist = true;
    tell(playlist, moved);
}

void PlaylistProvider::onPlaylistRemoved(uint playlist)
{
    settle();
    forget(playlist);
    Q_EMIT playlistRemoved(playlist);
}

void PlaylistProvider::onEntryAdded(uint playlist, EntryAddress address)
{
    settle();
    if (m_entries.remove(playlist, address))
        qCWarning(lcMedia) << "Entry already existed. Invalid signaling.";
    takeEntry(&PlaylistProvider::entryAdded, "add", playlist, address);
}

void PlaylistProvider::onEntryChanged(uint playlist, EntryAddress address)
{
    settle();
    if (!m_entries.remove(playlist, address)) {
        qCWarning(lcMedia, "Changed entry did not exist %d/%s", static_cast<int>(playlist),
                  address.toString(true).c_str());
    }
    takeEntry(&PlaylistProvider::entryChanged, "change", playlist, address);
}

void PlaylistProvider::takeEntry(EntrySignal signal, const char* verb, uint playlist, EntryAddress address)
{
    if (!loadEntry(playlist, address)) {
        qCWarning(lcMedia, "Couldn't %s entry: %d/%s", verb, static_cast<int>(playlist),
                  address.toString(true).c_str());
        Q_EMIT entryRemoved(playlist, address);
        return;
    }
    // A new entry has its times already, and is among those that moved all the same.
    const Moved moved = recalculate(playlist);
    announce(signal, playlist, address);
    tell(playlist, moved);
}

void PlaylistProvider::onEntryRemoved(uint playlist, EntryAddress address)
{
    settle();
    m_entries.remove(playlist, address);
    const Moved moved = recalculate(playlist);
    announce(&PlaylistProvider::entryRemoved, playlist, address);
    tell(playlist, moved);
}

void PlaylistProvider::onSlotModified(MediaAddress address)
{
    settle();
    tellOfSlots(m_entries.usersOf(address));
}

void PlaylistProvider::onCollectionModified(uint collection)
{
    settle();
    tellOfSlots(m_entries.usersOfCollection(collection));
}

void PlaylistProvider::tellOfSlots(const QList<EntryTable::Place>& users)
{
    if (users.isEmpty())
        return;
    std::set<uint> touched;
    for (const auto& [playlist, address] : users) {
        warnWithoutSlot({playlist, address});
        touched.insert(playlist);
    }
    m_entries.forgetDurations(users);
    Q_EMIT entrySlotsModified(users);
    for (const uint playlist : touched)
        tell(playlist, recalculate(playlist));
}

bool PlaylistProvider::loadPlaylist(uint playlist)
{
    const Playlist* record = std::as_const(*m_library).findPlaylist(static_cast<int>(playlist));
    if (!record)
        return false;
    m_playlists.insert(playlist,
                       std::make_shared<GuiPlaylist>(QString::fromStdString(record->getName()), playlist));
    const auto entries = record->getEntries();
    for (const auto& [address, entry] : entries)
        putEntry(playlist, address, entry);
    updateTimes(playlist);
    return true;
}

bool PlaylistProvider::loadEntry(uint playlist, EntryAddress address)
{
    const Playlist* record = std::as_const(*m_library).findPlaylist(static_cast<int>(playlist));
    const PlaylistEntry* entry = record ? record->findEntry(address) : nullptr;
    if (entry)
        putEntry(playlist, address, *entry);
    return entry;
}

void PlaylistProvider::putEntry(uint playlist, EntryAddress address, const PlaylistEntry& entry)
{
    const auto item = std::make_shared<GuiPlaylistEntry>(playlist, address, entry);
    m_entries.put(item);
    warnWithoutSlot({playlist, address});
}

void PlaylistProvider::forget(uint playlist)
{
    m_playlists.remove(playlist);
    m_late.erase(playlist);
    std::erase_if(m_news, [=](const News& news) { return news.playlist == playlist; });
    m_entries.removeAll(playlist);
}

/// Within a change slots are told of before the entries that play them: only its end tells.
void PlaylistProvider::warnWithoutSlot(const EntryTable::Place& place)
{
    if (m_isChanging)
        return m_unlooked.push_back(place);
    const auto entry = m_entries.item(place.first, place.second);
    if (!entry)
        return;
    const MediaAddress slot = m_entries.slotOf(place.first, place.second);
    if (!slot.isValid()) {
        qCWarning(lcMedia, "Invalid entry slot url: %s", qUtf8Printable(entry->slotUrl()));
    } else if (!m_mediaProvider->hasSlot(slot)) {
        qCWarning(lcMedia, "Missing slot: '%s' assigned to entry: %d/%s", qUtf8Printable(entry->slotUrl()),
                  static_cast<int>(place.first), place.second.toString(true).c_str());
    }
}

void PlaylistProvider::lookAtSlots()
{
    std::vector<EntryTable::Place> places = std::exchange(m_unlooked, {});
    std::ranges::sort(places);
    const auto repeated = std::ranges::unique(places);
    places.erase(repeated.begin(), repeated.end());
    for (const EntryTable::Place& place : places)
        warnWithoutSlot(place);
}

void PlaylistProvider::onChangesStarted()
{
    settle();
    m_isChanging = true;
    Q_EMIT changesStarted();
}

void PlaylistProvider::onChangesFinished()
{
    m_isChanging = false;
    lookAtSlots();
    std::vector<std::pair<uint, Moved>> late;
    for (const auto& [playlist, isOther] : std::exchange(m_late, {})) {
        late.emplace_back(playlist, updateTimes(playlist));
        late.back().second.playlist |= isOther;
    }
    for (const auto& news : std::exchange(m_news, {}))
        Q_EMIT(this->*news.signal)(news.playlist, news.address);
    for (const auto& [playlist, moved] : late)
        tell(playlist, moved);
    Q_EMIT changesFinished();
}

/// Who hears of an entry finds it with its times.
void PlaylistProvider::announce(EntrySignal signal, uint playlist, EntryAddress address)
{
    if (m_isChanging)
        m_news.push_back({signal, playlist, address});
    else
        Q_EMIT(this->*signal)(playlist, address);
}

/// Nothing yet where more is to come.
PlaylistProvider::Moved PlaylistProvider::recalculate(uint playlist)
{
    if (!m_isChanging)
        return updateTimes(playlist);
    m_late.try_emplace(playlist, false);
    return {};
}

PlaylistProvider::Moved PlaylistProvider::updateTimes(uint playlist)
{
    const EntryTable::Times times = m_entries.updateRuntimes(playlist, *m_library);
    Moved moved;
    moved.entries = times.moved;
    const auto found = m_playlists.find(playlist);
    if (found == m_playlists.end()) {
        qCWarning(lcMedia, "Missing playlist: %d", static_cast<int>(playlist));
        return moved;
    }
    const GuiPlaylist& old = **found;
    const uint count = m_entries.count(playlist);
    moved.playlist =
        old.duration() != times.total || old.isInfinite() != times.isInfinite || old.entryCount() != count;
    if (moved.playlist) {
        const auto updated = std::make_shared<GuiPlaylist>(old);
        updated->setDuration(times.total, times.isInfinite);
        updated->setEntryCount(count);
        *found = updated;
    }
    return moved;
}

void PlaylistProvider::tell(uint playlist, const Moved& moved)
{
    for (const EntryAddress address : moved.entries)
        Q_EMIT entryChanged(playlist, address);
    if (moved.playlist)
        Q_EMIT playlistChanged(playlist);
}

} // namespace vantrel

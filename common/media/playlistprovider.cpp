#include "common/media/playlistprovider.h"

#include "common/media/abstractmedialibraryprovider.h"
#include "common/media/guimediaslot.h"
#include "common/media/guiplaylist.h"
#include "common/media/guiplaylistentry.h"
#include "common/media/medialogging.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/mediasourceparser.h"

#include <algorithm>
#include <set>

namespace vantrel {

PlaylistProvider::PlaylistProvider(Ref<MediaLibrary> library, AbstractMediaLibraryProvider* mediaProvider,
                                   QObject* parent)
    : AbstractPlaylistProvider(parent)
    , m_library(std::move(library))
    , m_mediaProvider(mediaProvider)
{
    populate();
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
    return m_entries.value(playlist).values();
}

std::shared_ptr<const GuiPlaylistEntry> PlaylistProvider::entry(uint playlist, EntryAddress address) const
{
    const auto found = m_entries.constFind(playlist);
    return found == m_entries.constEnd() ? nullptr : found->value(address);
}

std::shared_ptr<const GuiMediaSlot> PlaylistProvider::entrySlot(uint playlist, EntryAddress address) const
{
    const auto found = m_entrySlots.constFind(playlist);
    return found == m_entrySlots.constEnd() ? nullptr : found->value(address);
}

QSet<std::shared_ptr<const GuiPlaylistEntry>> PlaylistProvider::slotEntries(const MediaAddress& address) const
{
    return m_slotEntries.value(address);
}

MediaLibrary* PlaylistProvider::mediaLibrary()
{
    return m_library.get();
}

void PlaylistProvider::onReset()
{
    m_playlists.clear();
    clearEntries();
    populate();
    Q_EMIT reset();
}

void PlaylistProvider::onPlaylistAdded(uint playlist)
{
    if (m_playlists.remove(playlist) != 0)
        qCWarning(lcMedia) << "Playlist already existed. Invalid signaling.";
    clearSinglePlaylistEntries(playlist);
    if (!populateSinglePlaylist(playlist)) {
        qCWarning(lcMedia, "Couldn't add playlist: %d", static_cast<int>(playlist));
        Q_EMIT playlistRemoved(playlist);
        return;
    }
    populateEntriesOf(playlist);
    updatePlaylistDurations(playlist);
    Q_EMIT playlistAdded(playlist);
}

void PlaylistProvider::onPlaylistChanged(uint playlist)
{
    if (!populateSinglePlaylist(playlist)) {
        qCWarning(lcMedia, "Couldn't change playlist: %d", static_cast<int>(playlist));
        Q_EMIT playlistRemoved(playlist);
        return;
    }
    updatePlaylistDurations(playlist);
    Q_EMIT playlistChanged(playlist);
}

void PlaylistProvider::onPlaylistRemoved(uint playlist)
{
    m_playlists.remove(playlist);
    clearSinglePlaylistEntries(playlist);
    Q_EMIT playlistRemoved(playlist);
}

void PlaylistProvider::onEntryAdded(uint playlist, EntryAddress address)
{
    if (clearSingleEntry(playlist, address))
        qCWarning(lcMedia) << "Entry already existed. Invalid signaling.";
    if (!populateSingleEntry(playlist, address)) {
        qCWarning(lcMedia, "Couldn't add entry: %d/%s", static_cast<int>(playlist),
                  address.toString(true).c_str());
        Q_EMIT entryRemoved(playlist, address);
        return;
    }
    const Runtimes runtimes = updatePlaylistRuntimes(playlist);
    // The new entry has its runtimes already, and is among the changed ones all the same.
    Q_EMIT entryAdded(playlist, address);
    emitChangedForEach(playlist, runtimes.changed);
    setPlaylistDuration(playlist, runtimes.duration, runtimes.infinite, true);
    updatePlaylistEntryCount(playlist, true);
    Q_EMIT playlistChanged(playlist);
}

void PlaylistProvider::onEntryChanged(uint playlist, EntryAddress address)
{
    if (!clearSingleEntry(playlist, address)) {
        qCWarning(lcMedia, "Changed entry did not exist %d/%s", static_cast<int>(playlist),
                  address.toString(true).c_str());
    }
    if (!populateSingleEntry(playlist, address)) {
        qCWarning(lcMedia, "Couldn't change entry: %d/%s", static_cast<int>(playlist),
                  address.toString(true).c_str());
        Q_EMIT entryRemoved(playlist, address);
        return;
    }
    const Runtimes runtimes = updatePlaylistRuntimes(playlist);
    Q_EMIT entryChanged(playlist, address);
    emitChangedForEach(playlist, runtimes.changed);
    setPlaylistDuration(playlist, runtimes.duration, runtimes.infinite, false);
}

void PlaylistProvider::onEntryRemoved(uint playlist, EntryAddress address)
{
    clearSingleEntry(playlist, address);
    const Runtimes runtimes = updatePlaylistRuntimes(playlist);
    Q_EMIT entryRemoved(playlist, address);
    emitChangedForEach(playlist, runtimes.changed);
    setPlaylistDuration(playlist, runtimes.duration, runtimes.infinite, true);
    updatePlaylistEntryCount(playlist, true);
    Q_EMIT playlistChanged(playlist);
}

void PlaylistProvider::onSlotModified(MediaAddress address)
{
    // Copies: linking the entries anew edits the sets.
    const QSet<EntryPtr> users = m_slotEntries.value(address) + m_waitingEntries.value(address);
    if (users.isEmpty())
        return;
    QList<std::pair<uint, EntryAddress>> pairs;
    for (const EntryPtr& user : users)
        pairs.append({user->playlistNumber(), user->address()});
    std::sort(pairs.begin(), pairs.end());

    std::set<uint> touched;
    for (const auto& [playlist, entryAddress] : std::as_const(pairs)) {
        populateSingleEntrySlot(playlist, entryAddress);
        touched.insert(playlist);
    }
    Q_EMIT entrySlotsModified(pairs);
    for (const uint playlist : touched) {
        const Runtimes runtimes = updatePlaylistRuntimes(playlist);
        emitChangedForEach(playlist, runtimes.changed);
        setPlaylistDuration(playlist, runtimes.duration, runtimes.infinite, false);
        updatePlaylistEntryCount(playlist, true);
    }
}

void PlaylistProvider::clearEntries()
{
    m_entries.clear();
    m_entrySlots.clear();
    m_slotEntries.clear();
    m_links.clear();
    m_waitingEntries.clear();
}

void PlaylistProvider::populate()
{
    const auto playlists = m_library->getPlaylists(); // a copy: the walk must not see an edit
    for (const auto& [number, playlist] : playlists) {
        const auto key = static_cast<uint>(number);
        populateSinglePlaylist(key);
        populateEntriesOf(key);
        updatePlaylistDurations(key);
    }
}

bool PlaylistProvider::populateSinglePlaylist(uint playlist)
{
    const Playlist* record = std::as_const(*m_library).findPlaylist(static_cast<int>(playlist));
    if (!record)
        return false;
    m_playlists.insert(playlist,
                       std::make_shared<GuiPlaylist>(QString::fromStdString(record->getName()), playlist));
    return true;
}

void PlaylistProvider::populateEntriesOf(uint playlist)
{
    const Playlist* record = std::as_const(*m_library).findPlaylist(static_cast<int>(playlist));
    if (!record)
        return;
    const auto entryMap = record->getEntries();
    for (const auto& [address, entry] : entryMap)
        populateSingleEntry(playlist, address);
}

bool PlaylistProvider::populateSingleEntry(uint playlist, EntryAddress address)
{
    const Playlist* record = std::as_const(*m_library).findPlaylist(static_cast<int>(playlist));
    const PlaylistEntry* entry = record ? record->findEntry(address) : nullptr;
    if (!entry)
        return false;
    m_entries[playlist].insert(address, std::make_shared<GuiPlaylistEntry>(playlist, address, *entry));
    populateSingleEntrySlot(playlist, address);
    return true;
}

void PlaylistProvider::populateSingleEntrySlot(uint playlist, EntryAddress address)
{
    m_entrySlots[playlist].remove(address);
    const EntryPtr item = entry(playlist, address);
    if (!item) {
        qCWarning(lcMedia, "Trying to populate slot of non-existing entry: %d/%s", static_cast<int>(playlist),
                  address.toString(true).c_str());
        return;
    }
    unlink(item);
    const std::string url = item->slotUrl().toStdString();
    const MediaSourceParser source(url);
    if (source.getSourceMode() != SourceMode::Slot) {
        qCWarning(lcMedia, "Invalid entry slot url: %s", url.c_str());
        return;
    }
    const MediaAddress slotAddress = source.getMediaAddress();
    m_links.insert(item, slotAddress);
    const SlotPtr slot = m_mediaProvider->slot(slotAddress);
    if (!slot) {
        qCWarning(lcMedia, "Missing slot: '%s' assigned to entry: %d/%s", url.c_str(),
                  static_cast<int>(playlist), address.toString(true).c_str());
        m_waitingEntries[slotAddress].insert(item);
        return;
    }
    m_slotEntries[slotAddress].insert(item);
    m_entrySlots[playlist].insert(address, slot);
}

void PlaylistProvider::unlink(const EntryPtr& entry)
{
    const auto link = m_links.constFind(entry);
    if (link == m_links.constEnd())
        return;
    for (QMap<MediaAddress, QSet<EntryPtr>>* map : {&m_slotEntries, &m_waitingEntries}) {
        const auto set = map->find(*link);
        if (set == map->end())
            continue;
        set->remove(entry);
        if (set->isEmpty())
            map->erase(set);
    }
    m_links.erase(link);
}

bool PlaylistProvider::clearSingleEntry(uint playlist, EntryAddress address)
{
    const EntryPtr item = entry(playlist, address);
    if (!item)
        return false;
    unlink(item);
    m_entrySlots[playlist].remove(address);
    m_entries[playlist].remove(address);
    return true;
}

void PlaylistProvider::clearSinglePlaylistEntries(uint playlist)
{
    const QList<EntryAddress> addresses = m_entries.value(playlist).keys();
    for (const EntryAddress address : addresses)
        clearSingleEntry(playlist, address);
    m_entries.remove(playlist);
    m_entrySlots.remove(playlist);
}

PlaylistProvider::Runtimes PlaylistProvider::updatePlaylistRuntimes(uint playlist)
{
    const PlaylistRuntimeInfo info = m_library->calculateRuntimeInfo(playlist);
    Runtimes result{info.totalDuration, info.isInfinite, {}};
    for (const EntryRuntime& runtime : info.entries) {
        if (updateEntryRuntimes(playlist, runtime.address, runtime.runtimeBefore, runtime.runtimeAfter))
            result.changed.append(runtime.address);
    }
    return result;
}

bool PlaylistProvider::updateEntryRuntimes(uint playlist, EntryAddress address, double before, double after)
{
    const EntryPtr item = entry(playlist, address);
    if (!item || (item->runtimeBefore() == before && item->runtimeAfter() == after))
        return false;
    const auto updated = std::make_shared<GuiPlaylistEntry>(*item);
    updated->setRuntimes(before, after);
    clearSingleEntry(playlist, address);
    m_entries[playlist].insert(address, updated);
    populateSingleEntrySlot(playlist, address);
    return true;
}

void PlaylistProvider::updatePlaylistDurations(uint playlist)
{
    const Runtimes runtimes = updatePlaylistRuntimes(playlist);
    setPlaylistDuration(playlist, runtimes.duration, runtimes.infinite, true);
    updatePlaylistEntryCount(playlist, true);
}

void PlaylistProvider::setPlaylistDuration(uint playlist, double duration, bool infinite, bool silent)
{
    const auto found = m_playlists.find(playlist);
    if (found == m_playlists.end()) {
        qCWarning(lcMedia, "Missing playlist: %d", static_cast<int>(playlist));
        return;
    }
    if ((*found)->duration() == duration && (*found)->isInfinite() == infinite)
        return;
    const auto updated = std::make_shared<GuiPlaylist>(**found);
    updated->setDuration(duration, infinite);
    *found = updated;
    if (!silent)
        Q_EMIT playlistChanged(playlist);
}

void PlaylistProvider::updatePlaylistEntryCount(uint playlist, bool silent)
{
    const auto found = m_playlists.find(playlist);
    if (found == m_playlists.end()) {
        qCWarning(lcMedia, "Missing playlist: %d", static_cast<int>(playlist));
        return;
    }
    const auto entryMap = m_entries.constFind(playlist);
    const auto count = entryMap == m_entries.constEnd() ? 0U : static_cast<uint>(entryMap->size());
    if ((*found)->entryCount() == count)
        return;
    const auto updated = std::make_shared<GuiPlaylist>(**found);
    updated->setEntryCount(count);
    *found = updated;
    if (!silent)
        Q_EMIT playlistChanged(playlist);
}

void PlaylistProvider::emitChangedForEach(uint playlist, const QList<EntryAddress>& addresses)
{
    for (const EntryAddress address : addresses)
        Q_EMIT entryChanged(playlist, address);
}

} // namespace vantrel

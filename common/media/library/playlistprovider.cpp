#include "common/media/library/playlistprovider.h"

#include "common/media/address/medialogging.h"
#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/mediasourceparser.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <set>

namespace vantrel {

PlaylistProvider::PlaylistProvider(Ref<MediaLibrary> library, AbstractMediaLibraryProvider* mediaProvider,
                                   QObject* parent)
    : AbstractPlaylistProvider(parent)
    , m_library(std::move(library))
    , m_mediaProvider(mediaProvider)
{
    // The slots of a collection come and go with it untold.
    if (mediaProvider) {
        using Provider = AbstractMediaLibraryProvider;
        connect(mediaProvider, &Provider::collectionAdded, this, &PlaylistProvider::onCollectionModified);
        connect(mediaProvider, &Provider::collectionRemoved, this, &PlaylistProvider::onCollectionModified);
    }
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

EntryAddress PlaylistProvider::Row::address() const
{
    return item->address();
}

const PlaylistProvider::Rows* PlaylistProvider::rows(uint playlist) const
{
    const auto found = m_entries.find(playlist);
    return found == m_entries.end() ? nullptr : &found->second;
}

const PlaylistProvider::Row* PlaylistProvider::row(uint playlist, EntryAddress address) const
{
    const Rows* all = rows(playlist);
    if (!all)
        return nullptr;
    const auto at = std::ranges::lower_bound(*all, address, {}, &Row::address);
    return at != all->end() && at->address() == address ? &*at : nullptr;
}

PlaylistProvider::Row* PlaylistProvider::row(uint playlist, EntryAddress address)
{
    return const_cast<Row*>(std::as_const(*this).row(playlist, address));
}

QList<std::shared_ptr<const GuiPlaylistEntry>> PlaylistProvider::entries(uint playlist) const
{
    QList<EntryPtr> items;
    if (const Rows* all = rows(playlist)) {
        items.reserve(static_cast<qsizetype>(all->size()));
        for (const Row& row : *all)
            items.append(row.item);
    }
    return items;
}

std::shared_ptr<const GuiPlaylistEntry> PlaylistProvider::entry(uint playlist, EntryAddress address) const
{
    const Row* found = row(playlist, address);
    return found ? found->item : nullptr;
}

std::shared_ptr<const GuiMediaSlot> PlaylistProvider::entrySlot(uint playlist, EntryAddress address) const
{
    const Row* found = row(playlist, address);
    if (!found || !found->hasSlot)
        return nullptr;
    if (!found->slot)
        found->slot = m_mediaProvider->slot(found->slotAddress);
    return found->slot;
}

QSet<std::shared_ptr<const GuiPlaylistEntry>> PlaylistProvider::slotEntries(const MediaAddress& address) const
{
    QSet<EntryPtr> items;
    for (const auto& [playlist, entryAddress] : m_users.value(address)) {
        const Row* found = row(playlist, entryAddress);
        if (found && found->hasSlot)
            items.insert(found->item);
    }
    return items;
}

MediaLibrary* PlaylistProvider::mediaLibrary()
{
    return m_library.get();
}

void PlaylistProvider::onReset()
{
    m_playlists.clear();
    m_entries.clear();
    m_users.clear();
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
    refreshEntries(m_users.value(address));
}

void PlaylistProvider::onCollectionModified(uint collection)
{
    QList<User> users;
    for (auto it = m_users.cbegin(); it != m_users.cend(); ++it) {
        if (it.key().collection == static_cast<int>(collection))
            users += it.value();
    }
    std::sort(users.begin(), users.end());
    refreshEntries(users);
}

void PlaylistProvider::refreshEntries(const QList<User>& users)
{
    if (users.isEmpty())
        return;
    std::set<uint> touched;
    for (const auto& [playlist, entryAddress] : users) {
        if (Row* user = row(playlist, entryAddress))
            populateSingleEntrySlot(*user);
        touched.insert(playlist);
    }
    Q_EMIT entrySlotsModified(users);
    for (const uint playlist : touched) {
        const Runtimes runtimes = updatePlaylistRuntimes(playlist);
        emitChangedForEach(playlist, runtimes.changed);
        setPlaylistDuration(playlist, runtimes.duration, runtimes.infinite, false);
        updatePlaylistEntryCount(playlist, true);
    }
}

void PlaylistProvider::populate()
{
    const auto playlists = m_library->getPlaylists(); // a copy: the walk must not see an edit
    for (const auto& [number, playlist] : playlists) {
        const auto key = static_cast<uint>(number);
        populateSinglePlaylist(key);
        populateEntriesOf(key);
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
    const PlaylistRuntimeInfo info = m_library->calculateRuntimeInfo(playlist);
    m_entries[playlist].reserve(entryMap.size());
    auto runtime = info.entries.begin();
    for (const auto& [address, entry] : entryMap) {
        auto item = std::make_shared<GuiPlaylistEntry>(playlist, address, entry);
        while (runtime != info.entries.end() && runtime->address < address)
            ++runtime;
        if (runtime != info.entries.end() && runtime->address == address)
            item->setRuntimes(runtime->runtimeBefore, runtime->runtimeAfter);
        putEntry(playlist, item);
    }
    setPlaylistDuration(playlist, info.totalDuration, info.isInfinite, true);
    updatePlaylistEntryCount(playlist, true);
}

bool PlaylistProvider::populateSingleEntry(uint playlist, EntryAddress address)
{
    const Playlist* record = std::as_const(*m_library).findPlaylist(static_cast<int>(playlist));
    const PlaylistEntry* entry = record ? record->findEntry(address) : nullptr;
    if (!entry)
        return false;
    putEntry(playlist, std::make_shared<GuiPlaylistEntry>(playlist, address, *entry));
    return true;
}

void PlaylistProvider::putEntry(uint playlist, const EntryPtr& item)
{
    Rows& all = m_entries[playlist];
    const bool last = all.empty() || all.back().address() < item->address();
    const auto at = last ? all.end() : std::ranges::lower_bound(all, item->address(), {}, &Row::address);
    populateSingleEntrySlot(*all.insert(at, Row{item, MediaAddress(), false, nullptr}));
}

void PlaylistProvider::populateSingleEntrySlot(Row& row)
{
    row.slot.reset();
    row.hasSlot = false;
    const std::string url = row.item->slotUrl().toStdString();
    const MediaSourceParser source(url);
    if (source.getSourceMode() != SourceMode::Slot) {
        unlink(row);
        qCWarning(lcMedia, "Invalid entry slot url: %s", url.c_str());
        return;
    }
    link(row, source.getMediaAddress());
    row.hasSlot = m_mediaProvider->hasSlot(row.slotAddress);
    if (!row.hasSlot) {
        qCWarning(lcMedia, "Missing slot: '%s' assigned to entry: %d/%s", url.c_str(),
                  static_cast<int>(row.item->playlistNumber()), row.item->address().toString(true).c_str());
    }
}

void PlaylistProvider::link(Row& row, MediaAddress slotAddress)
{
    if (row.slotAddress == slotAddress)
        return;
    unlink(row);
    row.slotAddress = slotAddress;
    QList<User>& users = m_users[slotAddress];
    const User user(row.item->playlistNumber(), row.item->address());
    users.insert(std::lower_bound(users.cbegin(), users.cend(), user), user);
}

void PlaylistProvider::unlink(Row& row)
{
    if (!row.slotAddress.isValid())
        return;
    const auto users = m_users.find(std::exchange(row.slotAddress, MediaAddress()));
    if (users == m_users.end())
        return;
    const User user(row.item->playlistNumber(), row.item->address());
    const auto at = std::lower_bound(users->cbegin(), users->cend(), user);
    if (at != users->cend() && *at == user)
        users->erase(at);
    if (users->isEmpty())
        m_users.erase(users);
}

bool PlaylistProvider::clearSingleEntry(uint playlist, EntryAddress address)
{
    Row* found = row(playlist, address);
    if (!found)
        return false;
    unlink(*found);
    Rows& all = m_entries[playlist];
    all.erase(all.begin() + (found - all.data()));
    return true;
}

void PlaylistProvider::clearSinglePlaylistEntries(uint playlist)
{
    const auto found = m_entries.find(playlist);
    if (found == m_entries.end())
        return;
    for (Row& row : found->second)
        unlink(row);
    m_entries.erase(found);
}

PlaylistProvider::Runtimes PlaylistProvider::updatePlaylistRuntimes(uint playlist)
{
    const PlaylistRuntimeInfo info = m_library->calculateRuntimeInfo(playlist);
    Runtimes result{info.totalDuration, info.isInfinite, {}};
    const auto found = m_entries.find(playlist);
    if (found == m_entries.end())
        return result;
    auto row = found->second.begin(); // both are in address order
    for (const EntryRuntime& runtime : info.entries) {
        while (row != found->second.end() && row->address() < runtime.address)
            ++row;
        if (row == found->second.end())
            break;
        if (row->address() == runtime.address &&
            updateEntryRuntimes(*row, runtime.runtimeBefore, runtime.runtimeAfter))
            result.changed.append(runtime.address);
    }
    return result;
}

bool PlaylistProvider::updateEntryRuntimes(Row& row, double before, double after)
{
    if (row.item->runtimeBefore() == before && row.item->runtimeAfter() == after)
        return false;
    const auto updated = std::make_shared<GuiPlaylistEntry>(*row.item);
    updated->setRuntimes(before, after);
    row.item = updated;
    if (!row.hasSlot)
        populateSingleEntrySlot(row); // it may have come by now
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
    const Rows* all = rows(playlist);
    const auto count = all ? static_cast<uint>(all->size()) : 0U;
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

#include "common/media/library/entrytable.h"

#include "common/media/items/guiplaylistentry.h"
#include "tarn/media/medialibrary.h"

#include <algorithm>
#include <type_traits>

namespace vantrel {

EntryAddress EntryTable::Row::address() const
{
    return item->address();
}

void EntryTable::clear()
{
    m_rows.clear();
    m_users.clear();
}

void EntryTable::put(const Item& item)
{
    Row row{item, MediaAddress()};
    row.slot.parseString(item->slotUrl().toStdString());
    addUser(row);
    const auto [at, isNew] = m_rows[item->playlistNumber()].try_emplace(item->address(), row);
    if (isNew)
        return;
    if (at->second.slot != row.slot)
        removeUser(at->second);
    at->second = std::move(row);
}

bool EntryTable::remove(uint playlist, EntryAddress address)
{
    const auto found = m_rows.find(playlist);
    if (found == m_rows.end())
        return false;
    const auto at = found->second.find(address);
    if (at == found->second.end())
        return false;
    removeUser(at->second);
    found->second.erase(at);
    return true;
}

void EntryTable::removeAll(uint playlist)
{
    const auto found = m_rows.find(playlist);
    if (found == m_rows.end())
        return;
    for (const auto& [address, row] : found->second)
        removeUser(row);
    m_rows.erase(found);
}

namespace {

/// The row in a table of rows, const as the table is.
auto* find(auto& rows, uint playlist, EntryAddress address)
{
    const auto found = rows.find(playlist);
    using Row = std::remove_reference_t<decltype((found->second.find(address)->second))>;
    if (found == rows.end())
        return static_cast<Row*>(nullptr);
    const auto at = found->second.find(address);
    return at != found->second.end() ? &at->second : nullptr;
}

} // namespace

const EntryTable::Row* EntryTable::row(uint playlist, EntryAddress address) const
{
    return find(m_rows, playlist, address);
}

EntryTable::Row* EntryTable::row(uint playlist, EntryAddress address)
{
    return find(m_rows, playlist, address);
}

EntryTable::Item EntryTable::item(uint playlist, EntryAddress address) const
{
    const Row* found = row(playlist, address);
    return found ? found->item : nullptr;
}

QList<EntryTable::Item> EntryTable::items(uint playlist) const
{
    QList<Item> items;
    const auto found = m_rows.find(playlist);
    if (found == m_rows.end())
        return items;
    items.reserve(static_cast<qsizetype>(found->second.size()));
    for (const auto& [address, row] : found->second)
        items.append(row.item);
    return items;
}

uint EntryTable::count(uint playlist) const
{
    const auto found = m_rows.find(playlist);
    return found == m_rows.end() ? 0U : static_cast<uint>(found->second.size());
}

MediaAddress EntryTable::slotOf(uint playlist, EntryAddress address) const
{
    const Row* found = row(playlist, address);
    return found ? found->slot : MediaAddress();
}

QList<EntryTable::Place> EntryTable::usersOf(MediaAddress slot) const
{
    const auto users = m_users.constFind(slot);
    return users == m_users.cend() ? QList<Place>() : QList<Place>(users->begin(), users->end());
}

QList<EntryTable::Place> EntryTable::usersOfCollection(uint collection) const
{
    QList<Place> users;
    for (auto it = m_users.cbegin(); it != m_users.cend(); ++it) {
        if (it.key().collection == static_cast<int>(collection))
            users.append(QList<Place>(it.value().begin(), it.value().end()));
    }
    std::sort(users.begin(), users.end());
    return users;
}

void EntryTable::learn(Row& row, const MediaLibrary& library)
{
    row.duration = playedDuration(library, row.item->slotUrl().toStdString());
    const MediaSlot* slot =
        row.slot.isValid() ? library.findSlot(row.slot.collection, row.slot.slot) : nullptr;
    row.isPlayable = slot && slot->getIsPlayable();
}

EntryTable::Times EntryTable::updateRuntimes(uint playlist, const MediaLibrary& library)
{
    Times times;
    const auto found = m_rows.find(playlist);
    if (found == m_rows.end())
        return times;
    PlaylistClock clock;
    for (auto& [address, row] : found->second) {
        const GuiPlaylistEntry& entry = *row.item;
        // Who names no slot is told of none.
        if (row.duration == unknown || !row.slot.isValid())
            learn(row, library);
        const EntryRuntime runtime =
            clock.next(entry.address(), entry.transitionType(), entry.transitionDuration(), row.duration);
        if (entry.runtimeBefore() == runtime.runtimeBefore && entry.runtimeAfter() == runtime.runtimeAfter &&
            entry.isPlayable() == row.isPlayable)
            continue;
        const auto item = std::make_shared<GuiPlaylistEntry>(entry);
        item->setRuntimes(runtime.runtimeBefore, runtime.runtimeAfter);
        item->setPlayable(row.isPlayable);
        row.item = item;
        times.moved.append(runtime.address);
    }
    times.total = clock.total();
    times.isInfinite = clock.isInfinite();
    return times;
}

void EntryTable::forgetDurations(const QList<Place>& places)
{
    for (const auto& [playlist, address] : places) {
        if (Row* found = row(playlist, address))
            found->duration = unknown;
    }
}

void EntryTable::addUser(const Row& row)
{
    if (!row.slot.isValid())
        return;
    m_users[row.slot].insert(Place(row.item->playlistNumber(), row.address()));
}

void EntryTable::removeUser(const Row& row)
{
    const auto users = m_users.find(row.slot);
    if (users == m_users.end())
        return;
    users->erase(Place(row.item->playlistNumber(), row.address()));
    if (users->empty())
        m_users.erase(users);
}

} // namespace vantrel

#include "common/media/edit/playlist/listedit.h"

#include "common/command/commandlogging.h"
#include "common/command/refusal.h"
#include "tarn/media/medialibrary.h"

#include <QObject>

#include <iterator>
#include <utility>

namespace vantrel {

namespace {

Playlist without(Playlist list, const QList<EntryAddress>& addresses)
{
    for (const EntryAddress& address : addresses)
        list.removeEntry(address);
    return list;
}

void warnNotMoved(const EntryAddress& from, const EntryAddress& to)
{
    qCWarning(lcCommand).noquote() << QStringLiteral("Failed to move ") +
                                          QString::fromStdString(from.toString(true)) +
                                          QStringLiteral(" to ") + QString::fromStdString(to.toString(true));
}

} // namespace

Playlist* findListOrWarn(MediaLibrary& library, int playlist, const char* warning)
{
    Playlist* const list = library.findPlaylist(playlist);
    if (!list)
        qCWarning(lcCommand) << warning;
    return list;
}

void tellEntriesGone(const QString& command)
{
    tellNotDone(command,
                QObject::tr("The entries are not at these places of the playlist any more, or an edit "
                            "that is under way takes them away."));
}

PlaylistEntry newEntry(const QString& mediaUrl)
{
    PlaylistEntry entry;
    entry.setTransitionDuration(1.0);
    entry.setMediaUrl(mediaUrl.toStdString());
    return entry;
}

QList<EntryAddress> addressesOf(const EntryNumberingPlan& plan, qsizetype count)
{
    QList<EntryAddress> addresses;
    if (!plan.isValid())
        return addresses;
    addresses.reserve(count);
    EntryAddress address = plan.getFirstAddress();
    while (addresses.size() < count) {
        if (!address.isValid())
            return {};
        addresses.append(address);
        address = plan.advance(address);
    }
    return addresses;
}

QList<EntryAddress> addressesAfter(const Playlist& list, const QList<EntryAddress>& moved, EntryAddress after)
{
    const Playlist rest = without(list, moved);
    if (!rest.hasEntry(after)) {
        const auto next = rest.getEntries().lower_bound(after);
        after = next == rest.getEntries().begin() ? EntryAddress() : std::prev(next)->first;
    }
    const auto count = static_cast<int>(moved.size());
    return addressesOf(rest.pickAppendingNumberingPlan(after, count), count);
}

QList<EntryAddress> addressesBefore(const Playlist& list, const QList<EntryAddress>& moved,
                                    EntryAddress before)
{
    const Playlist rest = without(list, moved);
    const auto next = rest.getEntries().lower_bound(before);
    const auto count = static_cast<int>(moved.size());
    return addressesOf(next == rest.getEntries().end() ? rest.pickAppendingNumberingPlan()
                                                       : rest.pickPrependingNumberingPlan(next->first, count),
                       count);
}

QList<EntryAddress> addressesPast(const Playlist& list, const QList<EntryAddress>& moved,
                                  const EntryAddress& target)
{
    return !moved.isEmpty() && target < moved.first() ? addressesBefore(list, moved, target)
                                                      : addressesAfter(list, moved, target);
}

bool relocate(Playlist& list, const QList<EntryAddress>& from, const QList<EntryAddress>& to)
{
    QList<PlaylistEntry> entries;
    for (qsizetype i = 0; i < from.size(); ++i) {
        const PlaylistEntry* entry = std::as_const(list).findEntry(from[i]);
        if (!entry) {
            warnNotMoved(from[i], to.value(i));
            return false;
        }
        entries.append(*entry);
        list.removeEntry(from[i]);
    }
    for (qsizetype i = 0; i < from.size(); ++i) {
        if (!list.addEntry(to.value(i), entries[i])) {
            warnNotMoved(from[i], to.value(i));
            return false;
        }
    }
    return true;
}

} // namespace vantrel

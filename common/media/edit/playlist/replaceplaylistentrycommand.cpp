#include "common/media/edit/playlist/replaceplaylistentrycommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

namespace {

/// The target's address for the first one, and those behind it for the others; empty without room.
QList<EntryAddress> placesOf(Playlist list, const QList<EntryAddress>& addresses, const EntryAddress& target)
{
    for (const EntryAddress& address : addresses)
        list.removeEntry(address);
    const auto others = static_cast<int>(addresses.size()) - 1;
    QList<EntryAddress> places{target};
    if (others > 0)
        places += addressesOf(list.pickAppendingNumberingPlan(target, others), others);
    return places.size() == addresses.size() ? places : QList<EntryAddress>();
}

bool replace(Playlist& list, const QList<EntryAddress>& addresses, const EntryAddress& target)
{
    const QList<EntryAddress> places = placesOf(list, addresses, target);
    if (places.isEmpty()) {
        qCWarning(lcCommand) << "Failed to create initial address";
        return false;
    }
    QList<PlaylistEntry> kept;
    for (const EntryAddress& address : addresses) {
        const PlaylistEntry* entry = std::as_const(list).findEntry(address);
        kept.append(entry ? *entry : PlaylistEntry());
        if (!entry || (address != target && !list.removeEntry(address))) {
            qCWarning(lcCommand) << "unable to build redo patch due to failed remoev from entries";
            return false;
        }
    }
    if (!list.removeEntry(target)) {
        qCWarning(lcCommand) << "Unable to build redo patch due failed remove entry";
        return false;
    }
    for (qsizetype i = 0; i < kept.size(); ++i) {
        if (!list.addEntry(places[i], kept[i])) {
            qCWarning(lcCommand) << "Unable to build redo patch due to failed add entry";
            return false;
        }
    }
    return true;
}

} // namespace

bool ReplacePlaylistEntryCommand::hasApi() const
{
    return hasApiOrWarns("No api available, check connection");
}

bool ReplacePlaylistEntryCommand::init(const MediaLibrary* library, int playlist,
                                       const QList<EntryAddress>& addresses, const EntryAddress& target)
{
    return rehearse(library, tr("Replace entries from playlist"), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist);
        return list && replace(*list, addresses, target);
    });
}

} // namespace vantrel

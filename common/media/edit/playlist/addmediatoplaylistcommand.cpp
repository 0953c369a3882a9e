#include "common/media/edit/playlist/addmediatoplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

namespace {

using AddMode = AddMediaToPlaylistCommand::AddMode;

EntryNumberingPlan planFor(const Playlist& list, AddMode mode, const EntryAddress& address, int count)
{
    switch (mode) {
    case AddMediaToPlaylistCommand::Before:
        // In front of no entry is no place.
        return address.isValid() ? list.pickPrependingNumberingPlan(address, count) : EntryNumberingPlan();
    case AddMediaToPlaylistCommand::Replace:
    case AddMediaToPlaylistCommand::After:
        return list.pickAppendingNumberingPlan(address, count);
    case AddMediaToPlaylistCommand::AtEnd:
        return list.pickAppendingNumberingPlan();
    }
    qCWarning(lcCommand) << "Unknown add mode! Please add support";
    return {};
}

} // namespace

bool AddMediaToPlaylistCommand::place(Playlist& list, AddMode mode, const EntryAddress& address,
                                      QList<PlaylistEntry> entries)
{
    if (mode == Replace) {
        if (entries.isEmpty() || !list.hasEntry(address) ||
            !list.replaceEntry(address, entries.takeFirst())) {
            qCWarning(lcCommand) << "Replacing first entry failed";
            return false;
        }
        if (entries.isEmpty())
            return true;
    }
    const auto count = static_cast<int>(entries.size());
    const QList<EntryAddress> addresses = addressesOf(planFor(list, mode, address, count), count);
    if (addresses.isEmpty()) {
        qCWarning(lcCommand) << "Failed to create initial address";
        return false;
    }
    for (qsizetype i = 0; i < entries.size(); ++i)
        list.addEntry(addresses[i], entries[i]);
    return true;
}

bool AddMediaToPlaylistCommand::init(const MediaLibrary* library, int playlist, AddMode mode,
                                     const EntryAddress& address, const QList<QString>& urls)
{
    QList<PlaylistEntry> entries;
    for (const QString& url : urls)
        entries.append(newEntry(url));
    // Taken back as it was done: a replaced entry comes back whole.
    return rehearse(library, tr("Add media to playlist"), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist);
        return list && place(*list, mode, address, entries);
    });
}

} // namespace vantrel

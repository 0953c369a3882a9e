#include "common/media/edit/playlist/appendplaylistentriescommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool AppendPlaylistEntriesCommand::init(const MediaLibrary* library, int playlist,
                                        const QList<EntryAddress>& addresses)
{
    return rehearse(library, tr("Append entries to end in playlist"), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist);
        if (!list)
            return false;
        const QList<EntryAddress> places = addressesOf(list->pickAppendingNumberingPlan(), addresses.size());
        if (places.isEmpty()) {
            qCWarning(lcCommand) << "Failed to create initial address";
            return false;
        }
        return relocate(*list, addresses, places);
    });
}

} // namespace vantrel

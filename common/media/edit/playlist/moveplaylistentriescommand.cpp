#include "common/media/edit/playlist/moveplaylistentriescommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool MovePlaylistEntriesCommand::init(const MediaLibrary* library, int playlist,
                                      const QList<EntryAddress>& addresses, const EntryAddress& target)
{
    return rehearse(library, tr("Move entries in playlist"), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist);
        if (!list)
            return false;
        const QList<EntryAddress> places = addressesPast(*list, addresses, target);
        if (places.isEmpty()) {
            qCWarning(lcCommand) << "Failed to create initial address";
            return false;
        }
        return relocate(*list, addresses, places);
    });
}

} // namespace vantrel

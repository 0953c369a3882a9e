#include "common/media/edit/playlist/removeplaylistentrycommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool RemovePlaylistEntryCommand::init(const MediaLibrary* library, int playlist,
                                      const QList<EntryAddress>& addresses)
{
    const bool isDone = rehearse(library, tr("Remove entries from playlist"), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist);
        if (!list)
            return false;
        for (const EntryAddress& address : addresses) {
            if (!list->removeEntry(address)) {
                qCWarning(lcCommand) << "Unable to build redo Patch due failed removeEntry";
                return false;
            }
        }
        return true;
    });
    if (!isDone && wasRehearsed())
        tellEntriesGone(tr("Remove entries from playlist"));
    return isDone;
}

} // namespace vantrel

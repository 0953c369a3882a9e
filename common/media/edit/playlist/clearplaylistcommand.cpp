#include "common/media/edit/playlist/clearplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool ClearPlaylistCommand::init(const MediaLibrary* library, int playlist)
{
    const QString text = "Cleared all entries from playlist " + QString::number(playlist);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist);
        while (list && !list->getEntries().empty()) {
            const EntryAddress first = list->getEntries().begin()->first;
            if (!list->removeEntry(first)) {
                qCWarning(lcCommand) << "Unable to build redo Patch due failed removeEntry";
                return false;
            }
        }
        return list != nullptr;
    });
}

} // namespace vantrel

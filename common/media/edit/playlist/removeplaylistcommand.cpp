#include "common/media/edit/playlist/removeplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool RemovePlaylistCommand::init(const MediaLibrary* library, int playlist)
{
    const QString text = "Remove playlist " + QString::number(playlist);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        if (copy.removePlaylist(playlist))
            return true;
        qCWarning(lcCommand) << "Unable to build redo Patch due failed removePlaylist";
        return false;
    });
}

} // namespace vantrel

#include "common/media/edit/playlist/moveplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool MovePlaylistCommand::init(const MediaLibrary* library, int from, int to)
{
    const QString text = "Move playlist " + QString::number(from) + " to " + QString::number(to);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        if (copy.movePlaylist(from, to))
            return true;
        qCWarning(lcCommand) << "Unable to build redo Patch due failed movePlaylist";
        return false;
    });
}

} // namespace vantrel

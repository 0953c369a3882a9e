#include "common/media/edit/playlist/addplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool AddPlaylistCommand::init(const MediaLibrary* library, int playlist, const QString& name)
{
    setText(tr("New playlist"));
    const QString text = "Add new playlist " + QString::number(playlist);
    const auto add = [=](MediaLibrary& copy) {
        Playlist added;
        added.setName(name.toStdString());
        if (copy.addPlaylist(playlist, added))
            return true;
        qCWarning(lcCommand) << "Unable to build redo Patch due failed addPlaylist";
        return false;
    };
    const auto remove = [=](MediaLibrary& copy) {
        if (copy.removePlaylist(playlist))
            return true;
        qCWarning(lcCommand) << "Unable to build undo Patch due failed removePlaylist";
        return false;
    };
    return rehearse(library, tr(text.toUtf8().constData()), add, remove);
}

} // namespace vantrel

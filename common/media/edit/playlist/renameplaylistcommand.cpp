#include "common/media/edit/playlist/renameplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool RenamePlaylistCommand::init(const MediaLibrary* library, int playlist, const QString& name)
{
    const QString text = "Rename playlist " + QString::number(playlist);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        Playlist* target = copy.findPlaylist(playlist);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find playlist";
            return false;
        }
        target->setName(name.toStdString());
        return true;
    });
}

} // namespace vantrel

#include "common/media/edit/playlist/swapplaylistscommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool SwapPlaylistsCommand::init(const MediaLibrary* library, int playlist, int other)
{
    const QString text = tr("Swap playlists %1 and %2");
    return rehearse(library, text.arg(playlist).arg(other), [=](MediaLibrary& copy) {
        const Playlist* one = std::as_const(copy).findPlaylist(playlist);
        const Playlist* two = std::as_const(copy).findPlaylist(other);
        if (!one || !two || playlist == other) {
            qCWarning(lcCommand) << "Unable to swap playlists" << playlist << other;
            return false;
        }
        const Playlist first(*one);
        const Playlist second(*two);
        return copy.removePlaylist(playlist) && copy.removePlaylist(other) &&
               copy.addPlaylist(playlist, second) && copy.addPlaylist(other, first);
    });
}

} // namespace vantrel

#include "common/media/edit/playlist/pasteplaylistentriescommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool PastePlaylistEntriesCommand::init(const MediaLibrary* library, int playlist,
                                       AddMediaToPlaylistCommand::AddMode mode, const EntryAddress& address,
                                       const QList<PlaylistEntry>& entries)
{
    const std::string name = tr("New playlist %1").arg(playlist).toStdString();
    const QString text = tr("Paste entries into playlist %1");
    return rehearse(library, text.arg(playlist), [=](MediaLibrary& copy) {
        Playlist* list = copy.findPlaylist(playlist);
        if (!list && copy.addPlaylist(playlist, Playlist(name)))
            list = copy.findPlaylist(playlist);
        if (!list) {
            qCWarning(lcCommand) << "Unable to add playlist" << playlist;
            return false;
        }
        return AddMediaToPlaylistCommand::place(*list, mode, address, entries);
    });
}

} // namespace vantrel

#include "common/media/edit/playlist/importplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool ImportPlaylistCommand::init(const MediaLibrary* library, int playlist, const QString& name,
                                 const Entries& entries)
{
    const QString text = tr("Import entries into playlist %1");
    return rehearse(library, text.arg(playlist), [=](MediaLibrary& copy) {
        const Playlist* present = std::as_const(copy).findPlaylist(playlist);
        Playlist list(present ? present->getName() : name.toStdString());
        for (const auto& [address, entry] : entries) {
            if (!list.addEntry(address, entry)) {
                qCWarning(lcCommand) << "Unable to import entry" << address.toString(true).c_str();
                return false;
            }
        }
        if (present)
            copy.removePlaylist(playlist);
        if (copy.addPlaylist(playlist, list))
            return true;
        qCWarning(lcCommand) << "Unable to add playlist" << playlist;
        return false;
    });
}

} // namespace vantrel

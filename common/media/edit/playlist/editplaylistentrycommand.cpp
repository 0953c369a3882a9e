#include "common/media/edit/playlist/editplaylistentrycommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/listedit.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool EditPlaylistEntryCommand::init(const MediaLibrary* library, int playlist,
                                    const QList<EntryAddress>& addresses, const Change& change)
{
    return rehearse(library, tr("Edit playlist entries"), [=](MediaLibrary& copy) {
        Playlist* list = findListOrWarn(copy, playlist);
        if (!list)
            return false;
        for (const EntryAddress& address : addresses) {
            PlaylistEntry* entry = list->findEntry(address);
            if (!entry) {
                qCWarning(lcCommand) << "Unable to find entry";
                return false;
            }
            change(*entry);
        }
        return true;
    });
}

bool EditPlaylistEntryCommand::init(const MediaLibrary* library, const QList<EditEntryData>& entries)
{
    return rehearse(library, tr("Edit playlist entries"), [=](MediaLibrary& copy) {
        for (const EditEntryData& data : entries) {
            Playlist* playlist = copy.findPlaylist(data.playlist);
            if (!playlist) {
                qCWarning(lcCommand) << "Unable to find playlist";
                return false;
            }
            if (!playlist->removeEntry(data.address) || !playlist->addEntry(data.address, data.entry)) {
                qCWarning(lcCommand) << "Unable to find entry";
                return false;
            }
        }
        return true;
    });
}

bool EditPlaylistEntryCommand::init(const MediaLibrary* library, int playlist, const EntryAddress& address,
                                    const PlaylistEntry& entry)
{
    return init(library, {{playlist, address, entry}});
}

} // namespace vantrel

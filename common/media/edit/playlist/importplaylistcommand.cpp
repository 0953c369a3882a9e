#include "common/media/edit/playlist/importplaylistcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

#include <utility>

namespace vantrel {

namespace {

/// The list with all but its entries.
Playlist emptied(const Playlist& list)
{
    Json whole = list.toJson();
    whole.set("entries", Json::object());
    Playlist result;
    result.parseJson(whole);
    return result;
}

/// Also in place of another one, whose name stays.
bool put(MediaLibrary& library, int playlist, Playlist list)
{
    if (const Playlist* present = std::as_const(library).findPlaylist(playlist)) {
        list.setName(present->getName());
        library.removePlaylist(playlist);
    }
    if (library.addPlaylist(playlist, list))
        return true;
    qCWarning(lcCommand) << "Unable to add playlist" << playlist;
    return false;
}

} // namespace

bool ImportPlaylistCommand::init(const MediaLibrary* library, int playlist, const QString& name,
                                 const Entries& entries)
{
    return rehearse(library, textFor(playlist), [=](MediaLibrary& copy) {
        const Playlist* present = std::as_const(copy).findPlaylist(playlist);
        Playlist list = present ? emptied(*present) : Playlist(name.toStdString());
        for (const auto& [address, entry] : entries) {
            if (!list.addEntry(address, entry)) {
                qCWarning(lcCommand) << "Unable to import entry" << address.toString(true).c_str();
                return false;
            }
        }
        return put(copy, playlist, list);
    });
}

bool ImportPlaylistCommand::init(const MediaLibrary* library, int playlist, const Playlist& list)
{
    return rehearse(library, textFor(playlist),
                    [=](MediaLibrary& copy) { return put(copy, playlist, list); });
}

QString ImportPlaylistCommand::textFor(int playlist)
{
    return tr("Import entries into playlist %1").arg(playlist);
}

} // namespace vantrel

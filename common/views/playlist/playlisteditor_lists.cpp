// What is done with a playlist as a whole, and with all of them.
#include "common/command/execute.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/playlist/importplaylistcommand.h"
#include "common/media/edit/playlist/removeplaylistcommand.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/session/session.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/playlisteditor.h"
#include "common/views/playlist/playlisteditorheader.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

void PlaylistEditor::removePlaylist(uint playlist)
{
    const auto list = m_session->playlistProvider()->playlist(playlist);
    if (!list)
        return;
    confirm(m_removeListDialog, "PlaylistEditor-remove-list-confirmation", tr("Remove playlist"),
            tr("Remove playlist \"%1\" with its %n entries?", nullptr, int(list->entryCount()))
                    .arg(shownText(list->name())) +
                onAirWarning(playlist),
            tr("REMOVE"), [this, playlist, name = list->name()] {
                if (nameComing(playlist) != name)
                    return refuse(
                        tr("Playlist %1 was renamed, removed or made anew meanwhile, or is about to "
                           "be. Look at it and do it again.")
                            .arg(playlist));
                execute<RemovePlaylistCommand>(m_session->getQUndoStack(), "RemovePlaylistCommand",
                                               m_session->mediaLibrary(), static_cast<int>(playlist));
            });
    m_removeListDialog->setProperty("playlist", playlist);
}

/// Of the list that has the number once what is under way has arrived: lists change places, and there may be
/// another library since the link was lost. Empty without one.
QString PlaylistEditor::nameComing(uint playlist) const
{
    const MediaLibraryApi* api = m_session->getMediaLibraryApi();
    const Ref<const MediaLibrary> expected = api ? api->expectedLibrary() : nullptr;
    const MediaLibrary* library = expected ? &*expected : m_session->mediaLibrary();
    const Playlist* list = library->findPlaylist(static_cast<int>(playlist));
    return list ? QString::fromStdString(list->getName()) : QString();
}

/// Behind a question about a list; empty where it is not on air.
QString PlaylistEditor::onAirWarning(uint playlist) const
{
    if (m_clock->playlist() == 0 || m_clock->playlist() != playlist)
        return {};
    const EntryAddress& playing = m_clock->playing();
    return u' ' + tr("It is on program: %1 plays to its end.")
                      .arg(m_clock->isPlaying(playing)
                               ? ListClock::nameOf(m_session->playlistProvider(), playlist, playing)
                               : QString::fromStdString(playing.toString(false)));
}

PlaylistFiles::List PlaylistEditor::shownList() const
{
    const uint number = m_model->playlistNumber();
    return {number, listName(), m_session->playlistLibraryModel()->rowOf(number) < 0, onAirWarning(number)};
}

QString PlaylistEditor::listName() const
{
    const PlaylistLibraryModel* library = m_session->playlistLibraryModel();
    const int row = library->rowOf(m_model->playlistNumber());
    return row < 0 ? tr("New playlist %1").arg(m_model->playlistNumber())
                   : library->index(row, PlaylistLibraryModel::PlainNameColumn).data(Qt::EditRole).toString();
}

void PlaylistEditor::duplicatePlaylist()
{
    const int number = m_header->freeNumber();
    if (copyList(m_model->playlistNumber(), number))
        m_header->showWhenThere(static_cast<uint>(number));
}

/// number: of the copy; a free one.
bool PlaylistEditor::copyList(uint playlist, int number)
{
    const MediaLibrary* library = m_session->mediaLibrary();
    const Playlist* list = library->findPlaylist(static_cast<int>(playlist));
    if (!list)
        return false;
    Playlist copy(*list);
    copy.setName(tr("Copy of %1").arg(QString::fromStdString(list->getName())).toStdString());
    return execute<ImportPlaylistCommand>(m_session->getQUndoStack(), "ImportPlaylistCommand", library,
                                          number, copy);
}

} // namespace vantrel

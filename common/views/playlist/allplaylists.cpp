#include "common/views/playlist/allplaylists.h"

#include "common/command/abstractdiffapicommand.h"
#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/media/edit/playlist/moveplaylistcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/edit/playlist/swapplaylistscommand.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/playlistsdialog.h"
#include "tarn/media/medialibrary.h"

#include <QUndoStack>

namespace vantrel {

AllPlaylists::AllPlaylists(const Sources& sources, QWidget* window)
    : QObject(window)
    , m_sources(sources)
    , m_window(window)
{
}

void AllPlaylists::show()
{
    if (m_dialog)
        m_dialog->close();
    m_dialog =
        new PlaylistsDialog(m_sources.library, m_sources.clock, m_sources.model->playlistNumber(), m_window);
    m_dialog->setEditable(m_isEditable);
    using Dialog = PlaylistsDialog;
    connect(m_dialog, &Dialog::chosen, m_sources.model, &PlaylistEditorModel::setPlaylistNumber);
    connect(m_dialog, &Dialog::renameRequested, this, &AllPlaylists::rename);
    connect(m_dialog, &Dialog::numberRequested, this, &AllPlaylists::renumber);
    connect(m_dialog, &Dialog::swapRequested, this, &AllPlaylists::swap);
    connect(m_dialog, &Dialog::duplicateRequested, this, &AllPlaylists::copyWanted);
    connect(m_dialog, &Dialog::removeRequested, this, &AllPlaylists::removalWanted);
    m_dialog->open();
}

void AllPlaylists::setEditable(bool editable)
{
    m_isEditable = editable;
    if (m_dialog)
        m_dialog->setEditable(editable);
}

void AllPlaylists::rename(uint playlist, const QString& name)
{
    execute<RenamePlaylistCommand>(m_sources.stack, "RenamePlaylistCommand",
                                   m_sources.model->playlistProvider()->mediaLibrary(), int(playlist), name);
}

void AllPlaylists::renumber(uint playlist, const QString& to)
{
    bool isNumber = false;
    const int number = to.toInt(&isNumber);
    if (!isNumber || number < 1 || number > MediaLibrary::indexMax)
        return refuse(
            tr("\"%1\" is no number of a playlist: write 1 to %2.").arg(to).arg(MediaLibrary::indexMax));
    if (m_sources.library->rowOf(uint(number)) >= 0)
        return refuse(
            tr("Playlist %1 has that number: %2. Choose a free one, or move the playlist up or down.")
                .arg(number)
                .arg(nameOf(uint(number))));
    if (mayMove(playlist) && execute<MovePlaylistCommand>(m_sources.stack, "MovePlaylistCommand",
                                                          m_sources.model->playlistProvider()->mediaLibrary(),
                                                          int(playlist), number))
        follow(playlist, uint(number));
}

void AllPlaylists::swap(uint playlist, uint other)
{
    if (m_sources.library->rowOf(other) < 0)
        return; // it is the first or the last already
    if (mayMove(playlist) && mayMove(other) &&
        execute<SwapPlaylistsCommand>(m_sources.stack, "SwapPlaylistsCommand",
                                      m_sources.model->playlistProvider()->mediaLibrary(), int(playlist),
                                      int(other)))
        follow(playlist, other);
}

/// What plays is known by its list's number.
bool AllPlaylists::mayMove(uint playlist) const
{
    if (m_sources.clock->playlist() != playlist)
        return true;
    refuse(tr("Playlist %1 is on program and keeps its number until it is off.").arg(playlist));
    return false;
}

/// The page goes with a list that gets another number, at once: who presses the key again means it again, and
/// not the list that it passes. The editor follows once the server has given the number.
void AllPlaylists::follow(uint from, uint to)
{
    const QUndoStack* stack = m_sources.stack;
    const auto* command = dynamic_cast<const AbstractDiffApiCommand*>(stack->command(stack->index() - 1));
    if (!command)
        return;
    m_movedTo = to;
    if (m_dialog)
        m_dialog->setCurrent(to);
    const auto answered = [this, from, to](EditDirection, bool isDone) {
        if (m_dialog && m_movedTo == to)
            m_dialog->setCurrent(isDone ? to : from);
        if (!isDone)
            return;
        const uint shown = m_sources.model->playlistNumber(); // an edit after the other
        if (shown == from)
            m_sources.model->setPlaylistNumber(to);
        else if (shown == to) // with which it has changed places
            m_sources.model->setPlaylistNumber(from);
    };
    connect(command, &AbstractDiffApiCommand::answered, this, answered, Qt::SingleShotConnection);
}

QString AllPlaylists::nameOf(uint playlist) const
{
    const int row = m_sources.library->rowOf(playlist);
    return m_sources.library->index(row, PlaylistLibraryModel::PlainNameColumn).data(Qt::EditRole).toString();
}

void AllPlaylists::refuse(const QString& why) const
{
    tellNotDone(tr("All playlists"), why);
}

} // namespace vantrel

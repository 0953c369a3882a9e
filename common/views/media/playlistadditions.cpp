#include "common/views/media/playlistadditions.h"

#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/addmediatoplaylistcommand.h"
#include "common/media/edit/playlist/newplaylistandmediacommand.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/session/session.h"

namespace vantrel {

PlaylistAdditions::PlaylistAdditions(Session* session, QObject* parent)
    : QObject(parent)
    , m_session(session)
{
}

QVariantList PlaylistAdditions::lists() const
{
    QVariantList all;
    const PlaylistLibraryModel* model = m_session ? m_session->playlistLibraryModel() : nullptr;
    for (int row = 0; model && row < model->rowCount(); ++row)
        all.append(QVariantMap{
            {QStringLiteral("number"), model->playlistNumberAt(row)},
            {QStringLiteral("text"), model->index(row, PlaylistLibraryModel::NameColumn).data()}});
    return all;
}

int PlaylistAdditions::shownList() const
{
    const PlaylistEditorModel* editor = m_session ? m_session->previewPlaylistEditorModel() : nullptr;
    const PlaylistLibraryModel* all = m_session ? m_session->playlistLibraryModel() : nullptr;
    return editor && all && all->rowOf(editor->playlistNumber()) >= 0
               ? static_cast<int>(editor->playlistNumber())
               : -1;
}

QString PlaylistAdditions::add(int collection, const QList<int>& slotNumbers, int playlist)
{
    if (!m_session || slotNumbers.isEmpty())
        return {};
    QList<QString> urls;
    for (const int slot : slotNumbers)
        urls.append(media::MediaUtils::toSlotAddress(collection, slot));
    const PlaylistLibraryModel* all = m_session->playlistLibraryModel();
    QUndoStack* stack = m_session->getQUndoStack();
    const int number = playlist < 0 ? all->nextFreeNumber() : playlist;
    const bool isDone =
        playlist < 0
            ? tryExecute<NewPlaylistAndMediaCommand>(stack, m_session->mediaLibrary(), urls, number)
            : tryExecute<AddMediaToPlaylistCommand>(stack, m_session->mediaLibrary(), playlist,
                                                    AddMediaToPlaylistCommand::AtEnd, EntryAddress(), urls);
    if (!isDone) {
        tellNotDone(tr("Add media to playlist"), tr("There is no room for them, or the list is gone."));
        return {};
    }
    const QString name =
        playlist < 0 ? tr("playlist %1, a new one").arg(number)
                     : all->index(all->rowOf(static_cast<uint>(playlist)), PlaylistLibraryModel::NameColumn)
                           .data()
                           .toString();
    return urls.size() == 1 ? tr("Slot %1 goes to the end of %2.").arg(slotNumbers.first()).arg(name)
                            : tr("%1 slots go to the end of %2.").arg(urls.size()).arg(name);
}

} // namespace vantrel

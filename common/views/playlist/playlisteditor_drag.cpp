// Drags out of a playlist, over it and onto it.
#include "common/command/execute.h"
#include "common/command/playback/playmediacommand.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/pasteplaylistentriescommand.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/session/session.h"
#include "common/ui/toolkit/ztdrag.h"
#include "common/views/playlist/ownaddition.h"
#include "common/views/playlist/playlistcontainer.h"
#include "common/views/playlist/playlistdrop.h"
#include "common/views/playlist/playlisteditor.h"
#include "common/views/playlist/playlistlogging.h"
#include "common/views/playlist/playlistview.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playlistentry.h"

#include <QCursor>
#include <QDropEvent>
#include <QMimeData>

#include <utility>

namespace vantrel {

using media::MediaUtils;

void PlaylistEditor::handleDragAndDrop(const QModelIndex& index)
{
    if (!index.isValid()) {
        qCWarning(lcPlaylist) << "Clicked invalid model index, cannot procees";
        return;
    }
    const QList<QModelIndex> rows = m_selection->sortedSelectedRows();
    QMimeData* data = m_model->copyEntries(rows);
    if (!data)
        return;
    PlaylistView* view = m_container->list();
    view->setDragSource(true);
    m_isDragging = true;
    holdList();
    const QString label =
        rows.size() == 1 ? nameAt(rows.first().row()) : tr("%n entries", nullptr, int(rows.size()));
    const QPointer<PlaylistEditor> self = this;
    ZTDrag::startDrag(view, data, Qt::CopyAction | Qt::MoveAction, label);
    if (!self) // what is dragged may outlive its list
        return;
    view->setDragSource(false);
    endDrag();
}

void PlaylistEditor::dragEnterEvent(QDragEnterEvent* event)
{
    if (!PlaylistDrop::isOffered(event->mimeData()))
        return;
    m_isDragging = true;
    holdList();
    m_dragged = std::make_unique<PlaylistDrop>(PlaylistDrop::read(event->mimeData()));
    m_hover.start();
    event->acceptProposedAction();
}

void PlaylistEditor::dragHover()
{
    if (!m_isDragging)
        return;
    const PlaylistView* view = m_container->list();
    const int y = mapFromGlobal(QCursor::pos()).y();
    const int top = view->mapTo(this, QPoint(0, 0)).y();
    const int step = DropGeometry::scrollStep(y, top, height());
    if (step != 0)
        Q_EMIT scrollPositionChanged(step < 0 ? ScrollDirection::Up : ScrollDirection::Down);
}

void PlaylistEditor::dragLeaveEvent(QDragLeaveEvent* event)
{
    endDrag();
    ZTFrame::dragLeaveEvent(event);
}

void PlaylistEditor::endDrag()
{
    m_isDragging = m_container->list()->isDragSource();
    holdList();
    m_hover.stop();
    m_target = {};
    m_dragged.reset();
    m_dropTarget = QPersistentModelIndex();
    m_container->list()->showTarget({}, {});
}

DropTarget PlaylistEditor::targetOf(const QDropEvent* event) const
{
    const QWidget* viewport = m_container->list()->viewport();
    return m_container->list()->targetAt(viewport->mapFrom(this, event->position().toPoint()));
}

void PlaylistEditor::dragMoveEvent(QDragMoveEvent* event)
{
    if (!m_dragged)
        return;
    const PlaylistDrop& drop = *m_dragged;
    // A playlist as a whole has no place in another, and program takes nothing else.
    const bool isPlace = isPreview() && drop.kind() != PlaylistDrop::Kind::Playlist;
    m_target = isPlace ? targetOf(event) : DropTarget();
    m_dropTarget = m_model->index(m_target.row, 0);
    m_container->list()->showTarget(m_target, wordsFor(m_target, drop));
    if (canTake(drop))
        event->acceptProposedAction();
    else
        event->ignore();
}

/// What is nothing at all is taken as far as the drop, which has the room to say why.
bool PlaylistEditor::canTake(const PlaylistDrop& drop) const
{
    using Kind = PlaylistDrop::Kind;
    return drop.kind() == Kind::Nothing || drop.kind() == Kind::Playlist || (isPreview() && m_isEditable);
}

QString PlaylistEditor::nameAt(int row) const
{
    const QModelIndex index = m_model->index(row, PlaylistModel::NumberColumn);
    const QString name = index.siblingAtColumn(PlaylistModel::MediaColumn).data().toString();
    return name.isEmpty() ? index.data().toString() : index.data().toString() + u' ' + name;
}

/// What a drop there would do. What cannot be read says so at the drop, where there is room for the reason.
QString PlaylistEditor::wordsFor(const DropTarget& target, const PlaylistDrop& drop) const
{
    if (!drop.fault().isEmpty())
        return tr("Cannot be dropped here");
    if (target.isReplace())
        return tr("Replace %1").arg(nameAt(target.row));
    if (!target.isInsert())
        return {};
    const auto number = [this](int row) { return m_model->index(row, 0).data().toString(); };
    if (m_model->rowCount() == 0)
        return tr("Insert as the first entry");
    if (target.isOnTop())
        return tr("Insert before %1").arg(number(0));
    return tr("Insert after %1").arg(number(target.row));
}

void PlaylistEditor::dropEvent(QDropEvent* event)
{
    const DropTarget target = isPreview() ? targetOf(event) : DropTarget();
    // A copy to the source: entries go where they go when the server says so.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    applyDrop(event->mimeData(), target);
    endDrag(); // now the list may be another
}

void PlaylistEditor::applyDrop(const QMimeData* data, const DropTarget& target)
{
    const PlaylistDrop drop = PlaylistDrop::read(data);
    using Kind = PlaylistDrop::Kind;
    if (drop.kind() == Kind::Nothing) {
        refuse(drop.fault());
        return;
    }
    if (drop.kind() == Kind::Playlist) {
        dropPlaylist(drop.playlist());
        return;
    }
    if (!isPreview()) {
        refuse(tr("Program takes whole playlists only. Edit the playlist on preview."));
        return;
    }
    if (!m_isEditable) {
        refuse(tr("There is no connection to the server. Drop it again once it is back."));
        return;
    }
    if (drop.kind() == Kind::Entries)
        dropEntries(drop, target);
    else
        dropMedia(drop, target);
}

void PlaylistEditor::dropPlaylist(uint number)
{
    if (!m_session->mediaLibrary()->findPlaylist(static_cast<int>(number))) {
        refuse(tr("Playlist %1 is not in the library any more.").arg(number));
        return;
    }
    if (isPreview()) {
        m_model->setPlaylistNumber(number);
        return;
    }
    // By address, however the rows are sorted. The list is shown when it plays.
    const auto entries = m_session->playlistProvider()->entries(number);
    if (entries.isEmpty())
        refuse(tr("Playlist %1 has no entries. Nothing was put on air.").arg(number));
    else
        execute<PlayMediaCommand>(m_session->getQUndoStack(), "PlayMediaCommand", false, 0,
                                  static_cast<int>(number), entries.first()->address());
}

bool PlaylistEditor::hasAllSlots(const QList<QString>& urls) const
{
    const MediaLibrary& library = *m_session->mediaLibrary();
    for (const QString& url : urls) {
        const MediaAddress slot = MediaUtils::parseSlotAddress(url);
        if (library.findSlot(slot.collection, slot.slot))
            continue;
        refuse(tr("Slot %1-%2 is not in the library any more. Nothing was changed.")
                   .arg(slot.collection)
                   .arg(slot.slot));
        return false;
    }
    return true;
}

void PlaylistEditor::dropEntries(const PlaylistDrop& drop, const DropTarget& target)
{
    const QModelIndex place = m_model->index(target.row, 0);
    if (drop.playlist() == m_model->playlistNumber()) {
        // Those of the payload: the selection may have changed under a drag.
        QList<QModelIndex> rows;
        for (const GuiPlaylistEntry& entry : drop.entries()) {
            if (!isAsDragged(entry)) {
                refuse(tr("The entries were moved or removed while they were dragged. Drag them again."));
                return;
            }
            rows.append(m_model->indexOf(entry.address()));
        }
        const bool isOntoItself = target.isReplace() && rows == QList<QModelIndex>{place};
        if (rows.isEmpty() || isOntoItself)
            return;
        if (target.isReplace())
            m_model->doDropReplace(rows, place);
        else
            m_model->doDropInsert(rows, place);
        return;
    }
    QList<QString> urls;
    QList<PlaylistEntry> entries;
    for (const GuiPlaylistEntry& entry : drop.entries()) {
        urls.append(entry.slotUrl());
        entries.append(entry.toSdkEntry());
    }
    if (!hasAllSlots(urls) || !ensurePlaylist())
        return;
    using Mode = AddMediaToPlaylistCommand::AddMode;
    const Mode mode = target.isReplace() ? Mode::Replace : Mode::After;
    const EntryAddress address = place.isValid() ? m_model->getEntryAddress(place) : EntryAddress();
    m_added->watch([&] {
        if (!tryExecute<PastePlaylistEntriesCommand>(m_session->getQUndoStack(), m_session->mediaLibrary(),
                                                     static_cast<int>(m_model->playlistNumber()), mode,
                                                     address, entries))
            refuse(tr("There is no room for the entries at this place. Renumber entries to make room."));
    });
}

/// Whether what stands at the address is what stood there when the drag began.
bool PlaylistEditor::isAsDragged(const GuiPlaylistEntry& entry) const
{
    const auto present = m_model->getEntry(m_model->indexOf(entry.address()));
    return present && present->slotUrl() == entry.slotUrl();
}

void PlaylistEditor::dropMedia(const PlaylistDrop& drop, const DropTarget& target)
{
    if (!hasAllSlots(drop.mediaUrls()) || !ensurePlaylist())
        return;
    using Mode = PlaylistEditorModel::AddMode;
    m_added->watch([&] {
        m_model->doDropCollection(drop.mediaUrls(), m_model->index(target.row, 0),
                                  target.isReplace() ? Mode::Replace : Mode::After);
    });
}

} // namespace vantrel

// Drags out of a playlist, over it and onto it.
#include "common/command/execute.h"
#include "common/command/playback/playmediacommand.h"
#include "common/media/address/mediautils.h"
#include "common/media/items/mimedata.h"
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

#include <algorithm>
#include <optional>
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
    m_dragSources = QList<QPersistentModelIndex>(rows.begin(), rows.end());
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
    if (!isMediaPayload(event->mimeData()))
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
    if (step == 0)
        return;
    Q_EMIT scrollPositionChanged(step < 0 ? ScrollDirection::Up : ScrollDirection::Down);
    if (m_dragged)
        aim(mapFromGlobal(QCursor::pos())); // the rows have moved under the cursor
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

DropTarget PlaylistEditor::targetOf(const QPoint& position) const
{
    const QWidget* viewport = m_container->list()->viewport();
    return m_container->list()->targetAt(viewport->mapFrom(this, position));
}

/// What a drop there would do is shown, and remembered by its entry.
void PlaylistEditor::aim(const QPoint& position)
{
    m_aimedAt = position;
    showAim();
    m_dropTarget = m_model->index(m_target.row, 0);
}

void PlaylistEditor::showAim()
{
    if (!m_dragged)
        return;
    // A playlist as a whole has no place in another, and program takes nothing else.
    const bool isPlace = isPreview() && m_dragged->kind() != PlaylistDrop::Kind::Playlist;
    m_target = isPlace ? targetOf(m_aimedAt) : DropTarget();
    m_container->list()->showTarget(m_target, wordsFor(m_target, *m_dragged));
}

/// Whether somebody's edit has put another entry under a cursor that stands still.
bool PlaylistEditor::hasShifted(const QPoint& position, const DropTarget& target) const
{
    return m_dragged && position == m_aimedAt && m_dropTarget != m_model->index(target.row, 0);
}

void PlaylistEditor::dragMoveEvent(QDragMoveEvent* event)
{
    if (!m_dragged)
        return;
    aim(event->position().toPoint());
    if (canTake(*m_dragged))
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

/// A whole playlist that is let go over program begins there. One that has nothing in it does not.
QString PlaylistEditor::wordsOnAir(const PlaylistDrop& drop) const
{
    const bool begins = drop.kind() == PlaylistDrop::Kind::Playlist &&
                        !m_session->playlistProvider()->entries(drop.playlist()).isEmpty();
    return begins ? tr("Let go: on air now, cut") : QString();
}

/// What a drop there would do. What cannot be read says so at the drop, where there is room for the reason.
QString PlaylistEditor::wordsFor(const DropTarget& target, const PlaylistDrop& drop) const
{
    if (!target.isReplace() && !target.isInsert())
        return isPreview() ? QString() : wordsOnAir(drop);
    if (!drop.fault().isEmpty())
        return tr("Cannot be dropped here");
    if (target.isReplace())
        return tr("Replace %1").arg(nameAt(target.row));
    if (m_model->rowCount() == 0)
        return tr("Insert as the first entry");
    if (m_model->sortColumn() != PlaylistModel::NumberColumn)
        return tr("Not between rows that are sorted: click # first");
    const QString number = m_model->index(std::max(target.row, 0), 0).data().toString();
    // A list that is shown backwards goes on above a row.
    const bool isBehind = target.isOnTop() != m_model->isAscending();
    return isBehind ? tr("Insert after %1").arg(number) : tr("Insert before %1").arg(number);
}

void PlaylistEditor::dropEvent(QDropEvent* event)
{
    const QPoint position = event->position().toPoint();
    const DropTarget target = isPreview() ? targetOf(position) : DropTarget();
    // A copy to the source: entries go where they go when the server says so.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (isPreview() && m_dragged && m_dragged->kind() != PlaylistDrop::Kind::Playlist &&
        hasShifted(position, target))
        refuse(tr("The playlist has changed under the drag. Nothing was changed: drag it again."));
    else
        applyDrop(m_dragged ? *m_dragged : PlaylistDrop::read(event->mimeData()), target);
    endDrag(); // now the list may be another
}

void PlaylistEditor::applyDrop(const PlaylistDrop& drop, const DropTarget& target)
{
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
        const std::optional<QList<QModelIndex>> dragged = draggedRows(drop);
        if (!dragged)
            return refuse(tr("The entries were moved or removed while they were dragged. Drag them again."));
        const QList<QModelIndex>& rows = *dragged;
        const bool isOntoItself = target.isReplace() && rows == QList<QModelIndex>{place};
        if (rows.isEmpty() || isOntoItself)
            return;
        if (target.isReplace())
            m_model->doDropReplace(rows, place);
        else
            m_model->doDropInsert(rows, place);
        return;
    }
    if (!ensurePlaylist())
        return;
    using Mode = PlaylistEditorModel::AddMode;
    m_added->watch([&] {
        m_model->doDropEntries(drop.records(), place, target.isReplace() ? Mode::Replace : Mode::After);
    });
}

/// What was dragged, wherever it is by now: the selection may have changed under a drag. Nothing where some
/// of it is gone. What another window drags is known by its address and what it holds.
std::optional<QList<QModelIndex>> PlaylistEditor::draggedRows(const PlaylistDrop& drop) const
{
    QList<QModelIndex> rows;
    if (m_container->list()->isDragSource()) {
        for (const QPersistentModelIndex& source : m_dragSources) {
            if (!source.isValid())
                return std::nullopt;
            rows.append(source);
        }
        return rows;
    }
    for (const GuiPlaylistEntry& entry : drop.entries()) {
        const QModelIndex index = m_model->indexOf(entry.address());
        const auto present = m_model->getEntry(index);
        if (!present || !(present->toSdkEntry() == entry.toSdkEntry()))
            return std::nullopt;
        rows.append(index);
    }
    return rows;
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

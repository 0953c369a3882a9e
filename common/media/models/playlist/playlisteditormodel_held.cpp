// Gestures on entries that an edit under way moves: they are done to what the operator sees once it has
// arrived.
#include "common/command/refusal.h"
#include "common/media/address/medialogging.h"
#include "common/media/edit/playlist/appendplaylistentriescommand.h"
#include "common/media/edit/playlist/dragplaylistentriescommand.h"
#include "common/media/edit/playlist/moveplaylistentriescommand.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistgesture.h"
#include "tarn/media/medialibrary.h"

#include <QTimer>

#include <algorithm>

namespace vantrel {

namespace {

// After that long a gesture is not what the operator means any more, in milliseconds.
constexpr int patience = 3000;

/// No entry has come, gone or moved.
bool haveSameAddresses(const Playlist* one, const Playlist* other)
{
    return one && other &&
           std::ranges::equal(
               one->getEntries(), other->getEntries(), {}, [](const auto& entry) { return entry.first; },
               [](const auto& entry) { return entry.first; });
}

const PlaylistEntry* entryAt(const Playlist* list, const EntryAddress& address)
{
    return list ? list->findEntry(address) : nullptr;
}

} // namespace

void PlaylistEditorModel::setLibraryApi(const MediaLibraryApi* api)
{
    if (m_api)
        disconnect(m_api->edits(), nullptr, this, nullptr);
    m_api = api;
    // Once the edit that follows is under way as well.
    if (api) {
        connect(api->edits(), &EditQueue::dropped, this, &PlaylistEditorModel::resume, Qt::QueuedConnection);
        connect(api->edits(), &EditQueue::submitted, this, &PlaylistEditorModel::resume,
                Qt::QueuedConnection);
    }
    resume();
}

bool PlaylistEditorModel::areEditsUnderWay() const
{
    return m_api && library() == &m_api->library() && !m_api->edits()->isEmpty();
}

/// Whether the list shows all that is under way. What that comes to is not waited for.
bool PlaylistEditorModel::isSettled() const
{
    if (!areEditsUnderWay())
        return true;
    if (m_api->edits()->isMaking())
        return false;
    const Ref<const MediaLibrary> expected = m_api->expectedLibrary();
    const Playlist* then = std::as_const(*expected).findPlaylist(number());
    const Playlist* now = list();
    return now && then ? now->toJson() == then->toJson() : now == then;
}

/// Whether what is under way leaves these entries where they are.
bool PlaylistEditorModel::areStill(const QList<EntryAddress>& addresses) const
{
    if (!areEditsUnderWay())
        return true;
    const Ref<const MediaLibrary> expected = m_api->expectedLibrary();
    const Playlist* then = std::as_const(*expected).findPlaylist(number());
    return std::ranges::all_of(addresses, [&](const EntryAddress& address) {
        const PlaylistEntry* shown = entryAt(list(), address);
        const PlaylistEntry* coming = entryAt(then, address);
        if (!shown || !coming)
            return shown == coming;
        // The same clip may stand in many entries: another record may be another of them.
        return *shown == *coming ||
               (shown->getMediaUrl() == coming->getMediaUrl() && haveSameAddresses(list(), then));
    });
}

bool PlaylistEditorModel::areStillOrTells(const QString& title, const QList<EntryAddress>& addresses) const
{
    const bool areThey = areStill(addresses);
    if (!areThey)
        tellNotDone(title,
                    tr("An edit that moves or replaces these entries is on its way to the server. Do it "
                       "again in a moment."));
    return areThey;
}

void PlaylistEditorModel::doMoveUp(const QList<QModelIndex>& indexes)
{
    move(indexes, -1);
}

void PlaylistEditorModel::doMoveDown(const QList<QModelIndex>& indexes)
{
    move(indexes, 1);
}

void PlaylistEditorModel::move(const QList<QModelIndex>& indexes, int steps)
{
    if (!isInOrder(tr("Move entries in playlist")))
        return;
    if (!m_held.isEmpty() || !isSettled())
        hold(Held::Kind::Move, indexes, steps);
    else if (steps < 0)
        moveUp(indexes, -steps);
    else
        moveDown(indexes, steps);
}

void PlaylistEditorModel::moveUp(const QList<QModelIndex>& indexes, int steps)
{
    const auto first = std::min_element(indexes.begin(), indexes.end());
    if (first == indexes.end() || first->row() < 1) {
        qCWarning(lcMedia) << "Can't move up the topmost entry";
        return;
    }
    run<MovePlaylistEntriesCommand>(tr("Unable to move playlist entries"), library(), number(),
                                    sortedAddresses(indexes),
                                    getAddressAtRow(*first, std::max(first->row() - steps, 0)));
}

void PlaylistEditorModel::moveDown(const QList<QModelIndex>& indexes, int steps)
{
    const auto last = std::max_element(indexes.begin(), indexes.end());
    if (last == indexes.end()) {
        qCWarning(lcMedia) << "Can't move up the topmost entry";
        return;
    }
    const QList<EntryAddress> addresses = sortedAddresses(indexes);
    const int below = std::min(last->row() + steps, rowCount() - 1);
    if (below > last->row())
        run<MovePlaylistEntriesCommand>(tr("Unable to move playlist entries"), library(), number(), addresses,
                                        getAddressAtRow(*last, below));
    else if (isAscending())
        run<AppendPlaylistEntriesCommand>(tr("Unable to append entries to playlist"), library(), number(),
                                          addresses);
    else
        run<DragPlaylistEntriesCommand>(tr("Unable to move playlist entries"), library(), number(), addresses,
                                        EntryAddress());
}

void PlaylistEditorModel::directPlay(bool preview, const QModelIndex& index, int channel)
{
    if (!getEntry(index)) {
        qCWarning(lcMedia) << "Invalid index for doDirectPlay";
        return;
    }
    const bool isMaking = areEditsUnderWay() && m_api->edits()->isMaking();
    const bool isThere = m_held.isEmpty() && !isMaking && areStill({getEntryAddress(index)});
    if (isThere)
        directPlayAddress(preview, getEntryAddress(index), channel);
    else
        hold(preview ? Held::Kind::Preview : Held::Kind::Program, {index}, channel);
}

/// Steps with the same entries become one move; of two entries for one channel the last one counts.
void PlaylistEditorModel::hold(Held::Kind kind, const QList<QModelIndex>& rows, int value)
{
    const QList<QPersistentModelIndex> kept(rows.begin(), rows.end());
    if (kind != Held::Kind::Move) {
        m_held.removeIf([=](const Held& held) { return held.kind == kind && held.value == value; });
    } else if (!m_held.isEmpty() && m_held.last().kind == kind && m_held.last().rows == kept) {
        m_held.last().value += value;
        m_held.last().patience.setRemainingTime(patience);
        QTimer::singleShot(patience + 1, this, &PlaylistEditorModel::dropExpired);
        return;
    }
    m_held.append({kind, kept, value, QDeadlineTimer(patience)});
    QTimer::singleShot(patience + 1, this, &PlaylistEditorModel::dropExpired);
}

/// Of a server that hangs the operator hears at once, and not when it answers.
void PlaylistEditorModel::dropExpired()
{
    while (!m_held.isEmpty() && m_held.first().patience.hasExpired())
        perform(m_held.takeFirst());
}

/// A move waits for all that is under way, a play for what becomes of its entry.
bool PlaylistEditorModel::isReady(const Held& held) const
{
    if (held.kind == Held::Kind::Move || !areEditsUnderWay())
        return isSettled();
    const QPersistentModelIndex row = held.rows.value(0);
    return !m_api->edits()->isMaking() && row.isValid() && areStill({getEntryAddress(row)});
}

void PlaylistEditorModel::resume()
{
    while (!m_held.isEmpty() && isReady(m_held.first()))
        perform(m_held.takeFirst());
}

void PlaylistEditorModel::perform(const Held& held)
{
    QList<QModelIndex> rows;
    for (const QPersistentModelIndex& row : held.rows) {
        if (row.isValid())
            rows.append(row);
    }
    const bool isMove = held.kind == Held::Kind::Move;
    if (held.patience.hasExpired() || rows.size() != held.rows.size())
        return tellNotDone(isMove ? tr("Move entries in playlist") : tr("Play playlist entry"),
                           tr("The playlist has changed, or was busy, meanwhile. Do it again."));
    const auto edge = isMove && held.value > 0 ? rowCount() - 1 : 0;
    const bool isAtEdge =
        std::ranges::any_of(rows, [&](const QModelIndex& row) { return row.row() == edge; });
    if (!isMove)
        directPlayAddress(held.kind == Held::Kind::Preview, getEntryAddress(rows.first()), held.value);
    else if (held.value != 0 && !isAtEdge && isInOrder(tr("Move entries in playlist")))
        held.value < 0 ? moveUp(rows, -held.value) : moveDown(rows, held.value);
}

} // namespace vantrel

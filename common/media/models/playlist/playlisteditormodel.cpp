#include "common/media/models/playlist/playlisteditormodel.h"

#include "common/command/execute.h"
#include "common/command/playback/playmediacommand.h"
#include "common/command/refusal.h"
#include "common/media/address/medialogging.h"
#include "common/media/edit/playlist/clearplaylistcommand.h"
#include "common/media/edit/playlist/dragplaylistentriescommand.h"
#include "common/media/edit/playlist/editplaylistentrycommand.h"
#include "common/media/edit/playlist/listedit.h"
#include "common/media/edit/playlist/newplaylistandmediacommand.h"
#include "common/media/edit/playlist/removeplaylistentrycommand.h"
#include "common/media/edit/playlist/renumberplaylistcommand.h"
#include "common/media/edit/playlist/replaceplaylistentrycommand.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/models/playlist/playlistgesture.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/media/net/resourcestatusprovider.h"
#include "common/notification/notificationmanagerimpl.h"
#include "tarn/media/medialibrary.h"

#include <QUndoStack>

#include <algorithm>

namespace vantrel {

PlaylistEditorModel::~PlaylistEditorModel() = default;

void PlaylistEditorModel::setUndoStack(QUndoStack* stack)
{
    m_stack = stack;
}

void PlaylistEditorModel::setResourceStatusProvider(ResourceStatusProvider* status)
{
    m_resourceStatus = status;
}

void PlaylistEditorModel::setSelection(PlaylistSelectionModel* selection)
{
    m_selection = selection;
}

const MediaLibrary* PlaylistEditorModel::library() const
{
    return playlistProvider() ? playlistProvider()->mediaLibrary() : nullptr;
}

bool PlaylistEditorModel::isInOrder(const QString& title) const
{
    if (sortColumn() == NumberColumn)
        return true;
    const QString name = headerData(sortColumn(), Qt::Horizontal).toString();
    const QString why =
        name.isEmpty() ? tr("The table is not sorted by #.") : tr("The table is sorted by %1.").arg(name);
    tellNotDone(title, why + u' ' + tr("Click # to see the order of the list."));
    return false;
}

bool PlaylistEditorModel::hasPlaylist() const
{
    return list() != nullptr;
}

bool PlaylistEditorModel::willHavePlaylist() const
{
    return areEditsUnderWay() ? m_api->expectedLibrary()->findPlaylist(number()) != nullptr : hasPlaylist();
}

const Playlist* PlaylistEditorModel::list() const
{
    return playlistNumber() != noPlaylist && library() ? library()->findPlaylist(number()) : nullptr;
}

EntryAddress PlaylistEditorModel::getAddressAtRow(const QModelIndex& index, int row) const
{
    const QModelIndex at = index.sibling(row, NumberColumn);
    return at.isValid() ? getEntryAddress(at) : EntryAddress();
}

QString PlaylistEditorModel::getPlaybackInfo(const QModelIndex& index) const
{
    const auto entry = getEntry(index);
    if (!entry)
        return {};
    return QStringLiteral("%1: %2").arg(QString::fromStdString(entry->address().toString(true)),
                                        mediaName(*entry));
}

void PlaylistEditorModel::onSlotModify(const QList<std::pair<uint, EntryAddress>>& entries)
{
    onSlotsModified(entries);
}

/// In the order of the list, whatever the order on the screen.
QList<EntryAddress> PlaylistEditorModel::sortedAddresses(const QList<QModelIndex>& indexes) const
{
    QList<EntryAddress> addresses = getEntryAddresses(indexes);
    std::sort(addresses.begin(), addresses.end());
    addresses.erase(std::unique(addresses.begin(), addresses.end()), addresses.end());
    return addresses;
}

QModelIndex PlaylistEditorModel::selectedIndex() const
{
    const QList<QModelIndex> rows = m_selection && m_selection->model() == this
                                        ? m_selection->sortedSelectedRows()
                                        : QList<QModelIndex>();
    return rows.isEmpty() ? QModelIndex() : rows.first();
}

void PlaylistEditorModel::insertAtSelection(AddMode mode, const QList<QString>& urls)
{
    const QModelIndex selected = selectedIndex();
    if (!selected.isValid())
        return doInsertEnd(urls);
    const EntryAddress address = getEntryAddress(selected);
    if (mode == AddMediaToPlaylistCommand::After)
        doDropCollection(urls, selected, mode);
    else if (mode == AddMediaToPlaylistCommand::Before && !isAscending() && sortColumn() == NumberColumn)
        executeAddMediaCommand(AddMediaToPlaylistCommand::After, address, urls); // which is above it
    else if (mode == AddMediaToPlaylistCommand::Replace || isInOrder(tr("Add media to playlist")))
        executeAddMediaCommand(mode, address, urls);
}

void PlaylistEditorModel::doInsertBefore(const QList<QString>& urls)
{
    insertAtSelection(AddMediaToPlaylistCommand::Before, urls);
}

void PlaylistEditorModel::doReplace(const QList<QString>& urls)
{
    insertAtSelection(AddMediaToPlaylistCommand::Replace, urls);
}

void PlaylistEditorModel::doInsertAfter(const QList<QString>& urls)
{
    insertAtSelection(AddMediaToPlaylistCommand::After, urls);
}

void PlaylistEditorModel::doInsertEnd(const QList<QString>& urls)
{
    executeAddMediaCommand(AddMediaToPlaylistCommand::AtEnd, {}, urls);
}

void PlaylistEditorModel::doDropCollection(const QList<QString>& urls, const QModelIndex& target,
                                           AddMode mode)
{
    if (mode == AddMediaToPlaylistCommand::After && !isInOrder(tr("Add media to playlist")))
        return;
    const EntryAddress at = target.isValid() ? getEntryAddress(target) : EntryAddress();
    executeAddMediaCommand(mode, mode == AddMediaToPlaylistCommand::After ? addressAbove(target) : at, urls);
}

void PlaylistEditorModel::executeAddMediaCommand(AddMode mode, const EntryAddress& address,
                                                 const QList<QString>& urls)
{
    if (urls.isEmpty() || playlistNumber() == noPlaylist)
        return;
    if (!areStillOrTells(tr("Add media to playlist"), {address}))
        return;
    const QString failure = tr("Unable to add media to playlist");
    if (willHavePlaylist())
        run<AddMediaToPlaylistCommand>(failure, library(), number(), mode, address, urls);
    else
        run<NewPlaylistAndMediaCommand>(failure, library(), urls, number());
}

/// What stands below a row on the screen stands in front of it in a list that is shown backwards.
EntryAddress PlaylistEditorModel::addressAbove(const QModelIndex& target) const
{
    if (isAscending())
        return target.isValid() ? getEntryAddress(target) : EntryAddress();
    return getAddressAtRow(index(0, NumberColumn), target.isValid() ? target.row() + 1 : 0);
}

void PlaylistEditorModel::doDropInsert(const QList<QModelIndex>& sources, const QModelIndex& target)
{
    const QString title = tr("Move entries in playlist");
    if (sources.isEmpty() || !isInOrder(title))
        return;
    const EntryAddress behind = addressAbove(target);
    if (!areStillOrTells(title, sortedAddresses(sources) + QList{behind}))
        return;
    run<DragPlaylistEntriesCommand>(tr("Unable to drag playlist entries"), library(), number(),
                                    sortedAddresses(sources), behind);
}

void PlaylistEditorModel::doDropReplace(const QList<QModelIndex>& sources, const QModelIndex& target)
{
    if (!target.isValid() || sources.isEmpty())
        return;
    const QList<EntryAddress> touched = sortedAddresses(sources) + QList{getEntryAddress(target)};
    if (!areStillOrTells(tr("Replace entries from playlist"), touched))
        return;
    run<ReplacePlaylistEntryCommand>(tr("Unable to replace playlist entry"), library(), number(),
                                     sortedAddresses(sources), getEntryAddress(target));
}

void PlaylistEditorModel::doRemove(const QList<QModelIndex>& indexes)
{
    const QString title = tr("Remove entries from playlist");
    const QList<EntryAddress> addresses = sortedAddresses(indexes);
    if (addresses.isEmpty())
        return tellNotDone(title, tr("They are not in the playlist any more."));
    if (areStillOrTells(title, addresses))
        execute<RemovePlaylistEntryCommand>(m_stack, "remove playlist entry command", library(), number(),
                                            addresses);
}

void PlaylistEditorModel::doClear()
{
    if (rowCount() > 0)
        execute<ClearPlaylistCommand>(m_stack, "clear playlist command", library(), number());
}

int PlaylistEditorModel::doRenumber(const EntryAddress& start, const QList<EntryAddress>& entries)
{
    QList<EntryAddress> ordered = entries;
    std::sort(ordered.begin(), ordered.end());
    ordered.erase(std::unique(ordered.begin(), ordered.end()), ordered.end());
    if (!m_stack || !areStillOrTells(tr("Renumber playlist %1").arg(number()), ordered))
        return 1;
    auto command = std::make_unique<RenumberPlaylistCommand>();
    if (command->init(library(), number(), start, ordered)) {
        if (command->redoPatch().size() == 0) // they have these numbers
            return 0;
        return vantrel::submit(m_stack, std::move(command)) ? 0 : 1;
    }
    switch (command->outcome()) {
    case RenumberPlaylistCommand::Outcome::NoEntry:
        return 3;
    case RenumberPlaylistCommand::Outcome::NoRoom:
        return 4;
    default:
        return 1;
    }
}

/// Each change is of what the server will have by then: an edit that is under way is not taken back.
bool PlaylistEditorModel::editEntries(const QList<QModelIndex>& indexes,
                                      const std::function<void(PlaylistEntry& entry)>& change)
{
    const QList<EntryAddress> addresses = sortedAddresses(indexes);
    return !addresses.isEmpty() && areStillOrTells(tr("Edit playlist entries"), addresses) &&
           run<EditPlaylistEntryCommand>(QString(), library(), number(), addresses, change);
}

void PlaylistEditorModel::setEndAction(const QModelIndex& index, EndAction action)
{
    editEntries({index}, [=](PlaylistEntry& entry) { entry.setEndAction(action); });
}

void PlaylistEditorModel::setTransition(const QModelIndex& index, TakeTransitionType type)
{
    editEntries({index}, [=](PlaylistEntry& entry) { entry.setTransitionType(type); });
}

void PlaylistEditorModel::setTransitionDuration(const QModelIndex& index, double seconds)
{
    editEntries({index}, [=](PlaylistEntry& entry) { entry.setTransitionDuration(seconds); });
}

bool PlaylistEditorModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    return role == Qt::EditRole && setSelectedData({index}, value);
}

bool PlaylistEditorModel::setSelectedData(const QList<QModelIndex>& indexes, const QVariant& value)
{
    QList<QModelIndex> cells;
    for (const QModelIndex& index : indexes) {
        if (index.column() == indexes.first().column() && flags(index).testFlag(Qt::ItemIsEditable))
            cells.append(index);
    }
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (cells.isEmpty() || !isNumber)
        return false;
    const int choice = value.toInt();
    switch (cells.first().column()) {
    case EndActionColumn:
        if (choice < static_cast<int>(EndAction::Next) || choice > static_cast<int>(EndAction::GoTo))
            return false;
        return editEntries(cells,
                           [=](PlaylistEntry& entry) { entry.setEndAction(static_cast<EndAction>(choice)); });
    case TransitionColumn:
        if (choice < static_cast<int>(TakeTransitionType::Crossfade) ||
            choice > static_cast<int>(TakeTransitionType::DirectCut))
            return false;
        return editEntries(cells, [=](PlaylistEntry& entry) {
            entry.setTransitionType(static_cast<TakeTransitionType>(choice));
        });
    case TransitionDurationColumn:
        return editEntries(cells, [=](PlaylistEntry& entry) { entry.setTransitionDuration(number); });
    default:
        return false;
    }
}

bool PlaylistEditorModel::isRoomForInsertBefore(const QList<QModelIndex>& indexes, uint count) const
{
    const auto first = std::min_element(indexes.begin(), indexes.end());
    if (first == indexes.end() || sortColumn() != NumberColumn)
        return false;
    const EntryAddress target = getAddressAtRow(*first, first->row() - static_cast<int>(count));
    return list() && target.isValid() && !addressesPast(*list(), sortedAddresses(indexes), target).isEmpty();
}

bool PlaylistEditorModel::isRoomForInsertAfter(const QList<QModelIndex>& indexes, uint count) const
{
    const auto last = std::max_element(indexes.begin(), indexes.end());
    if (last == indexes.end() || sortColumn() != NumberColumn)
        return false;
    const EntryAddress target = getAddressAtRow(*last, last->row() + static_cast<int>(count));
    return list() && target.isValid() && !addressesPast(*list(), sortedAddresses(indexes), target).isEmpty();
}

void PlaylistEditorModel::showError(const QString& title, const QString& text) const
{
    NotificationManagerImpl::instance()->createNotification(Notification::ErrorMessage,
                                                            QStringLiteral("<b>%1</b>").arg(title), text);
}

void PlaylistEditorModel::showRefusal(const QString& title, const QList<EntryAddress>& named) const
{
    // Looked for where the command has looked: in the library as it will be.
    const bool isExpected = areEditsUnderWay();
    const Ref<const MediaLibrary> expected =
        isExpected ? m_api->expectedLibrary() : Ref<const MediaLibrary>();
    const Playlist* then = isExpected ? std::as_const(*expected).findPlaylist(number()) : list();
    for (const EntryAddress& address : named) {
        if (then && !then->hasEntry(address))
            return tellNotDone(
                title, tr("Entry %1 was moved or removed meanwhile. Look at the list and do it again.")
                           .arg(QString::fromStdString(address.toString(true))));
    }
    showError(title, tr("Please ensure there is address space available at the requested playlist position. "
                        "You can renumber existing playlist entries to add more space."));
}

void PlaylistEditorModel::doDirectPlayPreview(const QModelIndex& index, int channel)
{
    directPlay(true, index, channel);
}

void PlaylistEditorModel::doDirectPlayProgram(const QModelIndex& index, int channel)
{
    directPlay(false, index, channel);
}

void PlaylistEditorModel::doDirectPlayPreviewWithAddress(const EntryAddress& address, int channel)
{
    directPlayAddress(true, address, channel);
}

void PlaylistEditorModel::doDirectPlayProgramWithAddress(const EntryAddress& address, int channel)
{
    directPlayAddress(false, address, channel);
}

void PlaylistEditorModel::directPlayAddress(bool preview, const EntryAddress& address, int channel)
{
    if (preview && isPreviewConstrained())
        return;
    qCInfo(lcMedia) << "Direct play for " << number() << address.toString(true).c_str();
    const auto entry = getEntry(indexOf(address));
    // The server may know better, and is asked all the same.
    if (entry && !getEntrySlot(*entry))
        tellNotDone(tr("Play playlist entry"), tr("Entry %1 has no media: its slot is empty.")
                                                   .arg(QString::fromStdString(address.toString(true))));
    play(preview, channel, number(), address);
}

/// Why nothing is played is said aloud: who cues waits for a picture.
template <typename... Place>
void PlaylistEditorModel::play(bool preview, int channel, Place&&... place)
{
    auto command = std::make_unique<PlayMediaCommand>();
    if (!m_stack || !command->init(preview, channel, std::forward<Place>(place)...)) {
        qCWarning(lcMedia) << "Failed to init PlayMediaCommand";
        tellNotDone(tr("Play playlist entry"), tr("The server has no such channel at present."));
    } else {
        vantrel::submit(m_stack, std::move(command));
    }
}

void PlaylistEditorModel::doDirectPlayWithSlot(bool preview, int channel, int collection, int slot)
{
    if (preview && isPreviewConstrained())
        return;
    qCInfo(lcMedia) << "Direct play for " << collection << slot;
    play(preview, channel, collection, slot);
}

bool PlaylistEditorModel::isPreviewConstrained() const
{
    if (!m_resourceStatus || !m_resourceStatus->isConstrained(PlaybackViewMode::Preview))
        return false;
    qCWarning(lcMedia) << "Preview is resource constrained. Skipping media direct play request";
    tellNotDone(tr("Cue on preview"), tr("The server has no capacity left for preview at present."));
    return true;
}

} // namespace vantrel

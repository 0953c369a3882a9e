#include "common/media/models/playlist/playlisteditormodel.h"

#include "common/command/commandlogging.h"
#include "common/command/execute.h"
#include "common/command/playback/playmediacommand.h"
#include "common/media/address/medialogging.h"
#include "common/media/edit/playlist/appendplaylistentriescommand.h"
#include "common/media/edit/playlist/clearplaylistcommand.h"
#include "common/media/edit/playlist/dragplaylistentriescommand.h"
#include "common/media/edit/playlist/editplaylistentrycommand.h"
#include "common/media/edit/playlist/listedit.h"
#include "common/media/edit/playlist/moveplaylistentriescommand.h"
#include "common/media/edit/playlist/newplaylistandmediacommand.h"
#include "common/media/edit/playlist/removeplaylistentrycommand.h"
#include "common/media/edit/playlist/renumberplaylistcommand.h"
#include "common/media/edit/playlist/replaceplaylistentrycommand.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guiplaylistentry.h"
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

bool PlaylistEditorModel::hasPlaylist() const
{
    return list() != nullptr;
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

EntryAddress PlaylistEditorModel::selectedAddress() const
{
    const QList<QModelIndex> rows = m_selection && m_selection->model() == this
                                        ? m_selection->sortedSelectedRows()
                                        : QList<QModelIndex>();
    return rows.isEmpty() ? EntryAddress() : getEntryAddress(rows.first());
}

void PlaylistEditorModel::insertAtSelection(AddMode mode, const QList<QString>& urls)
{
    const EntryAddress selected = selectedAddress();
    executeAddMediaCommand(selected.isValid() ? mode : AddMediaToPlaylistCommand::AtEnd, selected, urls);
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
    executeAddMediaCommand(mode, target.isValid() ? getEntryAddress(target) : EntryAddress(), urls);
}

void PlaylistEditorModel::executeAddMediaCommand(AddMode mode, const EntryAddress& address,
                                                 const QList<QString>& urls)
{
    if (urls.isEmpty() || playlistNumber() == noPlaylist)
        return;
    if (!hasPlaylist()) {
        execute<NewPlaylistAndMediaCommand>(m_stack, "new playlist and media command", library(), urls,
                                            number());
        return;
    }
    if (!tryExecute<AddMediaToPlaylistCommand>(m_stack, library(), number(), mode, address, urls))
        showNoRoom(tr("Unable to add media to playlist"));
}

void PlaylistEditorModel::doDropInsert(const QList<QModelIndex>& sources, const QModelIndex& target)
{
    const EntryAddress behind = target.isValid() ? getEntryAddress(target) : EntryAddress();
    if (!tryExecute<DragPlaylistEntriesCommand>(m_stack, library(), number(), sortedAddresses(sources),
                                                behind))
        showNoRoom(tr("Unable to drag playlist entries"));
}

void PlaylistEditorModel::doDropReplace(const QList<QModelIndex>& sources, const QModelIndex& target)
{
    if (!target.isValid())
        return;
    if (!tryExecute<ReplacePlaylistEntryCommand>(m_stack, library(), number(), sortedAddresses(sources),
                                                 getEntryAddress(target)))
        showNoRoom(tr("Unable to replace playlist entry"));
}

void PlaylistEditorModel::doMoveUp(const QList<QModelIndex>& indexes)
{
    const auto first = std::min_element(indexes.begin(), indexes.end());
    if (first == indexes.end() || first->row() < 1) {
        qCWarning(lcMedia) << "Can't move up the topmost entry";
        return;
    }
    if (!tryExecute<MovePlaylistEntriesCommand>(m_stack, library(), number(), sortedAddresses(indexes),
                                                getAddressAtRow(*first, first->row() - 1)))
        showNoRoom(tr("Unable to move playlist entries"));
}

void PlaylistEditorModel::doMoveDown(const QList<QModelIndex>& indexes)
{
    const auto last = std::max_element(indexes.begin(), indexes.end());
    if (last == indexes.end()) {
        qCWarning(lcMedia) << "Can't move up the topmost entry";
        return;
    }
    const QList<EntryAddress> addresses = sortedAddresses(indexes);
    const EntryAddress below = getAddressAtRow(*last, last->row() + 1);
    if (below.isValid()) {
        if (!tryExecute<MovePlaylistEntriesCommand>(m_stack, library(), number(), addresses, below))
            showNoRoom(tr("Unable to move playlist entries"));
    } else if (!tryExecute<AppendPlaylistEntriesCommand>(m_stack, library(), number(), addresses)) {
        showNoRoom(tr("Unable to append entries to playlist"));
    }
}

void PlaylistEditorModel::doRemove(const QList<QModelIndex>& indexes)
{
    const QList<EntryAddress> addresses = sortedAddresses(indexes);
    if (!addresses.isEmpty())
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
    if (!m_stack)
        return 1;
    auto command = std::make_unique<RenumberPlaylistCommand>();
    if (command->init(library(), number(), start, entries)) {
        m_stack->push(command.release());
        return 0;
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

template <typename Edit>
bool PlaylistEditorModel::editEntries(const QList<QModelIndex>& indexes, const Edit& edit)
{
    QList<EditEntryData> edited;
    for (const QModelIndex& index : indexes) {
        const EntryAddress address = getEntryAddress(index);
        const PlaylistEntry* present = list() ? list()->findEntry(address) : nullptr;
        if (!present)
            continue;
        PlaylistEntry entry = *present;
        edit(entry);
        if (!(entry == *present))
            edited.append({number(), address, entry});
    }
    return !edited.isEmpty() &&
           execute<EditPlaylistEntryCommand>(m_stack, "edit playlist entry command", library(), edited);
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
    if (first == indexes.end())
        return false;
    const EntryAddress target = getAddressAtRow(*first, first->row() - static_cast<int>(count));
    return list() && target.isValid() && !addressesPast(*list(), sortedAddresses(indexes), target).isEmpty();
}

bool PlaylistEditorModel::isRoomForInsertAfter(const QList<QModelIndex>& indexes, uint count) const
{
    const auto last = std::max_element(indexes.begin(), indexes.end());
    if (last == indexes.end())
        return false;
    const EntryAddress target = getAddressAtRow(*last, last->row() + static_cast<int>(count));
    return list() && target.isValid() && !addressesPast(*list(), sortedAddresses(indexes), target).isEmpty();
}

void PlaylistEditorModel::showError(const QString& title, const QString& text) const
{
    NotificationManagerImpl::instance()->createNotification(Notification::ErrorMessage,
                                                            QStringLiteral("<b>%1</b>").arg(title), text);
}

void PlaylistEditorModel::showNoRoom(const QString& title) const
{
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

void PlaylistEditorModel::directPlay(bool preview, const QModelIndex& index, int channel)
{
    if (!getEntry(index)) {
        qCWarning(lcMedia) << "Invalid index for doDirectPlay";
        return;
    }
    directPlayAddress(preview, getEntryAddress(index), channel);
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
    if (!tryExecute<PlayMediaCommand>(m_stack, preview, channel, number(), address))
        qCWarning(lcMedia) << "Failed to init PlayMediaCommand";
}

void PlaylistEditorModel::doDirectPlayWithSlot(bool preview, int channel, int collection, int slot)
{
    if (preview && isPreviewConstrained())
        return;
    qCInfo(lcMedia) << "Direct play for " << collection << slot;
    if (!tryExecute<PlayMediaCommand>(m_stack, preview, channel, collection, slot))
        qCWarning(lcMedia) << "Failed to init PlayMediaCommand";
}

bool PlaylistEditorModel::isPreviewConstrained() const
{
    if (!m_resourceStatus || !m_resourceStatus->isConstrained(PlaybackViewMode::Preview))
        return false;
    qCWarning(lcMedia) << "Preview is resource constrained. Skipping media direct play request";
    return true;
}

} // namespace vantrel

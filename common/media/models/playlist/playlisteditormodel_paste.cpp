// Entries that come from elsewhere: the clipboard, another list, a file.
#include "common/command/refusal.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/pasteplaylistentriescommand.h"
#include "common/media/items/entrypayload.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/items/mimedata.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistgesture.h"
#include "common/media/models/playlist/playlistpayload.h"
#include "tarn/media/medialibrary.h"

#include <QMimeData>

namespace vantrel {

using media::MediaUtils;

QMimeData* PlaylistEditorModel::copyEntries(const QList<QModelIndex>& indexes) const
{
    QList<QJsonObject> objects;
    for (const EntryAddress& address : sortedAddresses(indexes)) {
        const PlaylistEntry* record = library() ? library()->findPlaylistEntry(number(), address) : nullptr;
        const auto entry = getEntry(indexOf(address));
        objects.append(record ? EntryPayload::jsonOf(*entry, *record) : entry->toJson());
    }
    return objects.isEmpty()
               ? nullptr
               : createMimeData(objects, MimeItemCategory::Playlist, MediaItemType::PlaylistEntry);
}

bool PlaylistEditorModel::canPaste(const QMimeData* payload)
{
    return !PlaylistPayload::entries(payload).isEmpty();
}

bool PlaylistEditorModel::hasSlotsOf(const QString& title, const QList<PlaylistEntry>& entries) const
{
    for (const PlaylistEntry& entry : entries) {
        const MediaAddress slot = MediaUtils::parseSlotAddress(QString::fromStdString(entry.getMediaUrl()));
        if (library() && library()->findSlot(slot.collection, slot.slot))
            continue;
        tellNotDone(title, tr("Slot %1-%2 is not in the library any more. Nothing was changed.")
                               .arg(slot.collection)
                               .arg(slot.slot));
        return false;
    }
    return true;
}

bool PlaylistEditorModel::doPaste(const QMimeData* payload, const QModelIndex& after)
{
    return placeEntries(PlaylistPayload::entries(payload),
                        after.isValid() ? AddMediaToPlaylistCommand::After : AddMediaToPlaylistCommand::AtEnd,
                        after);
}

bool PlaylistEditorModel::doDropEntries(const QList<PlaylistEntry>& entries, const QModelIndex& target,
                                        AddMode mode)
{
    return placeEntries(entries, mode, target);
}

bool PlaylistEditorModel::placeEntries(const QList<PlaylistEntry>& entries, AddMode mode,
                                       const QModelIndex& target)
{
    const QString title = tr("Paste playlist entries");
    if (entries.isEmpty() || playlistNumber() == noPlaylist || !hasSlotsOf(title, entries))
        return false;
    EntryAddress address;
    if (mode == AddMediaToPlaylistCommand::After) {
        if (!isInOrder(title))
            return false;
        address = addressAbove(target);
    } else if (mode == AddMediaToPlaylistCommand::Replace) {
        if (!target.isValid())
            return false;
        address = getEntryAddress(target);
    }
    return areStillOrTells(title, {address}) &&
           run<PastePlaylistEntriesCommand>(tr("Unable to paste playlist entries"), library(), number(), mode,
                                            address, entries);
}

} // namespace vantrel

// Entries that come from elsewhere: the clipboard, another list, a file.
#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/pasteplaylistentriescommand.h"
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
    for (const EntryAddress& address : sortedAddresses(indexes))
        objects.append(getEntry(indexOf(address))->toJson());
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
    const QString title = tr("Paste playlist entries");
    const QList<PlaylistEntry> entries = PlaylistPayload::entries(payload);
    if (entries.isEmpty() || playlistNumber() == noPlaylist || !hasSlotsOf(title, entries))
        return false;
    const bool atEnd = !after.isValid();
    if (!atEnd && !isInOrder(title))
        return false;
    const EntryAddress behind = atEnd ? EntryAddress() : addressAbove(after);
    return areStillOrTells(title, {behind}) &&
           run<PastePlaylistEntriesCommand>(
               tr("Unable to paste playlist entries"), library(), number(),
               atEnd ? AddMediaToPlaylistCommand::AtEnd : AddMediaToPlaylistCommand::After, behind, entries);
}

bool PlaylistEditorModel::doImport(const ImportPlaylistCommand::Entries& entries)
{
    return playlistNumber() != noPlaylist &&
           execute<ImportPlaylistCommand>(m_stack, "import playlist command", library(), number(),
                                          tr("New playlist %1").arg(number()), entries);
}

} // namespace vantrel

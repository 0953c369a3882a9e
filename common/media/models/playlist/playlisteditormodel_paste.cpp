// Entries that come from elsewhere: the clipboard, another list, a file.
#include "common/command/execute.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/listedit.h"
#include "common/media/edit/playlist/pasteplaylistentriescommand.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/items/mimedata.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "tarn/media/playlistentry.h"

#include <QMimeData>
#include <QUndoStack>

#include <optional>

namespace vantrel {

using media::MediaUtils;

namespace {

/// What an item of a payload is in a list; nothing where it names no slot.
std::optional<PlaylistEntry> entryOf(const GuiMediaItem& item)
{
    if (const auto* entry = dynamic_cast<const GuiPlaylistEntry*>(&item)) {
        if (MediaUtils::parseSlotAddress(entry->slotUrl()).isValid())
            return entry->toSdkEntry();
    } else if (const auto* slot = dynamic_cast<const GuiMediaSlot*>(&item)) {
        if (slot->address().isValid())
            return newEntry(MediaUtils::toSlotAddress(slot->address()));
    }
    return std::nullopt;
}

/// All of a payload or nothing: half of what somebody copied is not what they copied.
QList<PlaylistEntry> entriesOf(const QMimeData* payload)
{
    QList<PlaylistEntry> entries;
    for (const QJsonObject& object : jsonFromMimeData(payload)) {
        const auto item = mediaItemFromMimeData(payload, object);
        const auto entry = item ? entryOf(*item) : std::nullopt;
        if (!entry)
            return {};
        entries.append(*entry);
    }
    return entries;
}

} // namespace

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
    return !entriesOf(payload).isEmpty();
}

bool PlaylistEditorModel::doPaste(const QMimeData* payload, const QModelIndex& after)
{
    const QList<PlaylistEntry> entries = entriesOf(payload);
    if (entries.isEmpty() || playlistNumber() == noPlaylist)
        return false;
    const bool atEnd = !after.isValid();
    const bool isDone = tryExecute<PastePlaylistEntriesCommand>(
        m_stack, library(), number(),
        atEnd ? AddMediaToPlaylistCommand::AtEnd : AddMediaToPlaylistCommand::After,
        atEnd ? EntryAddress() : getEntryAddress(after), entries);
    if (!isDone)
        showNoRoom(tr("Unable to paste playlist entries"));
    return isDone;
}

bool PlaylistEditorModel::doImport(const ImportPlaylistCommand::Entries& entries)
{
    return playlistNumber() != noPlaylist &&
           execute<ImportPlaylistCommand>(m_stack, "import playlist command", library(), number(),
                                          tr("New playlist %1").arg(number()), entries);
}

} // namespace vantrel

#include "common/media/models/playlist/playlistpayload.h"

#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/listedit.h"
#include "common/media/items/entrypayload.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/items/mimedata.h"

#include <QJsonObject>
#include <QMimeData>

#include <optional>

namespace vantrel {

using media::MediaUtils;

namespace {

/// What an item of a payload is in a list; nothing where it names no slot.
std::optional<PlaylistEntry> entryOf(const GuiMediaItem& item, const QJsonObject& object)
{
    if (const auto* entry = dynamic_cast<const GuiPlaylistEntry*>(&item)) {
        const MediaAddress slot = MediaUtils::parseSlotAddress(entry->slotUrl());
        if (!EntryPayload::isSound(object) || !slot.isValid())
            return std::nullopt;
        GuiPlaylistEntry sound = *entry;
        sound.setSlotUrl(MediaUtils::toSlotAddress(slot)); // as the library writes it
        return EntryPayload::recordOf(sound, object);
    }
    const auto* slot = dynamic_cast<const GuiMediaSlot*>(&item);
    if (slot && slot->address().isValid())
        return newEntry(MediaUtils::toSlotAddress(slot->address()));
    return std::nullopt;
}

} // namespace

bool PlaylistPayload::isOffered(const QMimeData* payload)
{
    const std::optional<MediaItemType> type = mediaItemTypeOf(payload);
    return payload && payload->hasFormat(mimeformat::json) &&
           (type == MediaItemType::PlaylistEntry || type == MediaItemType::Slot);
}

QList<PlaylistEntry> PlaylistPayload::entries(const QMimeData* payload)
{
    QList<PlaylistEntry> entries;
    if (!payload || payload->data(mimeformat::json).size() > EntryPayload::largest)
        return entries;
    for (const QJsonObject& object : jsonFromMimeData(payload)) {
        const auto item = mediaItemFromMimeData(payload, object);
        const auto entry = item ? entryOf(*item, object) : std::nullopt;
        if (!entry)
            return {};
        entries.append(*entry);
    }
    return entries;
}

} // namespace vantrel

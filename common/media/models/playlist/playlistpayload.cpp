#include "common/media/models/playlist/playlistpayload.h"

#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/listedit.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/items/mimedata.h"
#include "common/media/items/othermembers.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/playenums.h"

#include <QJsonObject>
#include <QMimeData>

#include <cmath>
#include <optional>

namespace vantrel {

using media::MediaUtils;

namespace {

constexpr QLatin1String othersKey("others"); // the text of an object

/// What an item of a payload is in a list; nothing where it names no slot.
std::optional<PlaylistEntry> entryOf(const GuiMediaItem& item, const QJsonObject& object)
{
    if (const auto* entry = dynamic_cast<const GuiPlaylistEntry*>(&item)) {
        const MediaAddress slot = MediaUtils::parseSlotAddress(entry->slotUrl());
        if (!PlaylistPayload::isSound(object) || !slot.isValid())
            return std::nullopt;
        GuiPlaylistEntry sound = *entry;
        sound.setSlotUrl(MediaUtils::toSlotAddress(slot)); // as the library writes it
        return PlaylistPayload::recordOf(sound, object);
    }
    const auto* slot = dynamic_cast<const GuiMediaSlot*>(&item);
    if (slot && slot->address().isValid())
        return newEntry(MediaUtils::toSlotAddress(slot->address()));
    return std::nullopt;
}

} // namespace

QJsonObject PlaylistPayload::jsonOf(const GuiPlaylistEntry& entry, const PlaylistEntry& record)
{
    QJsonObject json = entry.toJson();
    if (const Json others = otherMembersOf(record); others.isObject())
        json.insert(othersKey, QString::fromStdString(others.toString()));
    return json;
}

PlaylistEntry PlaylistPayload::recordOf(const GuiPlaylistEntry& entry, const QJsonObject& json)
{
    Json others;
    Json::parseString(json.value(othersKey).toString().toStdString(), others);
    return withOtherMembers(entry.toSdkEntry(), others);
}

bool PlaylistPayload::isWhole(const QJsonValue& value, int least, int most)
{
    const double number = value.toDouble(std::nan(""));
    return number >= least && number <= most && number == std::floor(number);
}

bool PlaylistPayload::isSound(const QJsonObject& entry)
{
    const double duration = entry.value(QStringLiteral("transitionDuration")).toDouble(-1);
    return isWhole(entry.value(QStringLiteral("playlistIndex")), 1, EntryAddress::maxMajor) &&
           isWhole(entry.value(QStringLiteral("endAction")), 0, static_cast<int>(EndAction::GoTo)) &&
           isWhole(entry.value(QStringLiteral("transitionType")), 0,
                   static_cast<int>(TakeTransitionType::DirectCut)) &&
           duration >= 0 && duration <= 3600;
}

bool PlaylistPayload::isOffered(const QMimeData* payload)
{
    const std::optional<MediaItemType> type = mediaItemTypeOf(payload);
    return payload && payload->hasFormat(mimeformat::json) &&
           (type == MediaItemType::PlaylistEntry || type == MediaItemType::Slot);
}

QList<PlaylistEntry> PlaylistPayload::entries(const QMimeData* payload)
{
    QList<PlaylistEntry> entries;
    if (!payload || payload->data(mimeformat::json).size() > largest)
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

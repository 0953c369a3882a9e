#include "common/media/items/entrypayload.h"

#include "common/media/items/guiplaylistentry.h"
#include "common/media/items/othermembers.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/playenums.h"

#include <QJsonObject>

#include <cmath>

namespace vantrel {

namespace {

constexpr QLatin1String othersKey("others"); // the text of an object

} // namespace

QJsonObject EntryPayload::jsonOf(const GuiPlaylistEntry& entry, const PlaylistEntry& record)
{
    QJsonObject json = entry.toJson();
    if (const Json others = otherMembersOf(record); others.isObject())
        json.insert(othersKey, QString::fromStdString(others.toString()));
    return json;
}

PlaylistEntry EntryPayload::recordOf(const GuiPlaylistEntry& entry, const QJsonObject& json)
{
    Json others;
    Json::parseString(json.value(othersKey).toString().toStdString(), others);
    return withOtherMembers(entry.toSdkEntry(), others);
}

bool EntryPayload::isWhole(const QJsonValue& value, int least, int most)
{
    const double number = value.toDouble(std::nan(""));
    return number >= least && number <= most && number == std::floor(number);
}

bool EntryPayload::isSound(const QJsonObject& entry)
{
    const double duration = entry.value(QStringLiteral("transitionDuration")).toDouble(-1);
    return isWhole(entry.value(QStringLiteral("playlistIndex")), 1, EntryAddress::maxMajor) &&
           isWhole(entry.value(QStringLiteral("endAction")), 0, static_cast<int>(EndAction::GoTo)) &&
           isWhole(entry.value(QStringLiteral("transitionType")), 0,
                   static_cast<int>(TakeTransitionType::DirectCut)) &&
           duration >= 0 && duration <= 3600;
}

} // namespace vantrel

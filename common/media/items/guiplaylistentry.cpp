#include "common/media/items/guiplaylistentry.h"

#include "tarn/media/playlistentry.h"

#include <QJsonObject>

#include <cmath>
#include <limits>

namespace vantrel {

namespace {

// Behind an infinite slot stands the time that never comes. JSON has no number for it, and null in its place.
QJsonValue runtimeToJson(double seconds)
{
    return std::isfinite(seconds) ? QJsonValue(seconds) : QJsonValue(QJsonValue::Null);
}

double runtimeFromJson(const QJsonValue& value)
{
    return value.isNull() ? std::numeric_limits<double>::infinity() : value.toDouble();
}

} // namespace

GuiPlaylistEntry::GuiPlaylistEntry(uint playlist, EntryAddress address, const PlaylistEntry& entry)
    : m_playlist(playlist)
    , m_address(address)
    , m_slotUrl(QString::fromStdString(entry.getMediaUrl()))
    , m_endAction(entry.getEndAction())
    , m_transitionType(entry.getTransitionType())
    , m_transitionDuration(entry.getTransitionDuration())
{
}

void GuiPlaylistEntry::setRuntimes(double before, double after)
{
    m_runtimeBefore = before;
    m_runtimeAfter = after;
}

PlaylistEntry GuiPlaylistEntry::toSdkEntry() const
{
    PlaylistEntry entry;
    entry.setEndAction(m_endAction);
    entry.setMediaUrl(m_slotUrl.toStdString());
    entry.setTransitionDuration(m_transitionDuration);
    entry.setTransitionType(m_transitionType);
    return entry;
}

QJsonObject GuiPlaylistEntry::toJson() const
{
    return {
        {QStringLiteral("playlistIndex"), static_cast<qint64>(m_playlist)},
        {QStringLiteral("entryAddress"), QString::fromStdString(m_address.toString(true))},
        {QStringLiteral("slotUrl"), m_slotUrl},
        {QStringLiteral("endAction"), static_cast<int>(m_endAction)},
        {QStringLiteral("transitionType"), static_cast<int>(m_transitionType)},
        {QStringLiteral("transitionDuration"), m_transitionDuration},
        {QStringLiteral("runtimeBefore"), runtimeToJson(m_runtimeBefore)},
        {QStringLiteral("runtimeAfter"), runtimeToJson(m_runtimeAfter)},
    };
}

bool GuiPlaylistEntry::fromJson(const QJsonObject& json)
{
    for (const char* key : {"playlistIndex", "endAction", "transitionType", "transitionDuration"}) {
        if (!json.value(QLatin1String(key)).isDouble())
            return false;
    }
    const QJsonValue before = json.value(QStringLiteral("runtimeBefore"));
    const QJsonValue after = json.value(QStringLiteral("runtimeAfter"));
    if (!(before.isDouble() || before.isNull()) || !(after.isDouble() || after.isNull()))
        return false;
    const QJsonValue addressText = json.value(QStringLiteral("entryAddress"));
    const QJsonValue slotUrl = json.value(QStringLiteral("slotUrl"));
    EntryAddress address;
    if (!addressText.isString() || !slotUrl.isString() ||
        !address.parseString(addressText.toString().toStdString()))
        return false;
    m_playlist = static_cast<uint>(json.value(QStringLiteral("playlistIndex")).toInt());
    m_address = address;
    m_slotUrl = slotUrl.toString();
    m_endAction = static_cast<EndAction>(json.value(QStringLiteral("endAction")).toInt());
    m_transitionType = static_cast<TakeTransitionType>(json.value(QStringLiteral("transitionType")).toInt());
    m_transitionDuration = json.value(QStringLiteral("transitionDuration")).toDouble();
    setRuntimes(runtimeFromJson(before), runtimeFromJson(after));
    return true;
}

} // namespace vantrel

#include "common/media/items/guiplaylist.h"

#include <QJsonObject>

namespace vantrel {

GuiPlaylist::GuiPlaylist(const QString& name, uint number)
    : m_name(name)
    , m_number(number)
{
}

void GuiPlaylist::setDuration(double seconds, bool infinite)
{
    m_duration = seconds;
    m_isInfinite = infinite;
}

QJsonObject GuiPlaylist::toJson() const
{
    return {
        {QStringLiteral("name"), m_name},
        {QStringLiteral("number"), static_cast<qint64>(m_number)},
        {QStringLiteral("entryCount"), static_cast<qint64>(m_entryCount)},
        {QStringLiteral("duration"), m_duration},
    };
}

bool GuiPlaylist::fromJson(const QJsonObject& json)
{
    const QJsonValue name = json.value(QStringLiteral("name"));
    const QJsonValue entryCount = json.value(QStringLiteral("entryCount"));
    const QJsonValue duration = json.value(QStringLiteral("duration"));
    if (!name.isString() || !entryCount.isDouble() || !duration.isDouble())
        return false;
    m_name = name.toString();
    m_number = static_cast<uint>(json.value(QStringLiteral("number")).toInt());
    m_entryCount = static_cast<uint>(entryCount.toInt());
    setDuration(duration.toDouble(), false);
    return true;
}

} // namespace vantrel

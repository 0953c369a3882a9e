#include "common/media/items/guimediacollection.h"

#include <QJsonObject>

namespace vantrel {

GuiMediaCollection::GuiMediaCollection(uint index, const QString& name)
    : m_index(index)
    , m_name(name)
{
}

bool GuiMediaCollection::fromJson(const QJsonObject& json)
{
    const QJsonValue index = json.value(QStringLiteral("index"));
    const QJsonValue name = json.value(QStringLiteral("name"));
    if (!index.isDouble() || !name.isString())
        return false;
    m_index = static_cast<uint>(index.toInt());
    m_name = name.toString();
    return true;
}

} // namespace vantrel

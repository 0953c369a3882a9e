#include "common/ui/clicktest/clicktestrequest.h"

#include <QJsonObject>
#include <QMetaObject>
#include <QObject>
#include <QStringList>

namespace vantrel {

namespace {

void take(const QJsonObject& json, const char* key, QString& out)
{
    if (const auto found = json.constFind(QLatin1String(key)); found != json.constEnd())
        out = found->toString();
}

void take(const QJsonObject& json, const char* key, std::optional<int>& out)
{
    if (const auto found = json.constFind(QLatin1String(key)); found != json.constEnd())
        out = found->toInt();
}

} // namespace

ClickTestRequest ClickTestRequest::fromJson(const QJsonObject& json)
{
    ClickTestRequest request;
    request.maxResults = json.value(QLatin1String("maxResults")).toInt(request.maxResults);
    request.width = json.value(QLatin1String("width")).toInt();
    request.height = json.value(QLatin1String("height")).toInt();
    take(json, "operation", request.operation);
    take(json, "objectName", request.objectName);
    take(json, "className", request.className);
    take(json, "keyName", request.keyName);
    take(json, "global_x", request.globalX);
    take(json, "global_y", request.globalY);
    take(json, "local_x", request.localX);
    take(json, "local_y", request.localY);
    take(json, "scroll", request.scroll);
    take(json, "rootItem", request.rootItem);
    return request;
}

bool ClickTestRequest::matches(const QObject* object) const
{
    if (isOpen())
        return true;
    return (!objectName.isEmpty() && object->objectName() == objectName) ||
           (!className.isEmpty() && className == QLatin1String(object->metaObject()->className()));
}

std::optional<QPoint> ClickTestRequest::globalPosition() const
{
    if (!globalX || !globalY || !localX || !localY)
        return std::nullopt;
    return QPoint(*globalX, *globalY);
}

bool ClickTestRequest::isEvent() const
{
    static const QStringList others = {
        QStringLiteral("info"),  QStringLiteral("focus"),   QStringLiteral("raise"),
        QStringLiteral("grab"),  QStringLiteral("figures"), QStringLiteral("figures_reset"),
        QStringLiteral("state"), QStringLiteral("close"),   QStringLiteral("resize")};
    return !others.contains(operation);
}

int ClickTestRequest::replyDelay() const
{
    static const QStringList slowOperations = {QStringLiteral("click"), QStringLiteral("double_click"),
                                               QStringLiteral("drag_end")};
    static const QStringList slowKeys = {
        QStringLiteral("Enter"),     QStringLiteral("AltLeft"),    QStringLiteral("AltRight"),
        QStringLiteral("ShiftLeft"), QStringLiteral("ShiftRight"), QStringLiteral("Left"),
        QStringLiteral("Right"),
    };
    const bool slow = slowOperations.contains(operation) ||
                      (operation == QLatin1String("key_press") && slowKeys.contains(keyName));
    return slow ? 100 : 0;
}

} // namespace vantrel

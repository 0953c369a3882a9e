#pragma once

#include <QPoint>
#include <QString>

#include <optional>

class QJsonObject;
class QObject;

namespace vantrel {

/// One request of a robot to the UI test server, with the defaults of what it left out.
struct ClickTestRequest
{
    int maxResults = 1;
    QString operation = QStringLiteral("info");
    QString objectName;
    QString className;
    QString keyName;
    std::optional<int> globalX;
    std::optional<int> globalY;
    std::optional<int> localX;
    std::optional<int> localY;
    std::optional<int> scroll;
    QString rootItem;
    int width = 0; // of "resize", pixels
    int height = 0;

    static ClickTestRequest fromJson(const QJsonObject& json);

    /// True when the request names neither an object nor a class, or the object answers to one of them.
    bool matches(const QObject* object) const;
    bool isOpen() const { return objectName.isEmpty() && className.isEmpty(); }
    /// The screen position of the event; none unless all four coordinates were sent.
    std::optional<QPoint> globalPosition() const;
    /// True for the mouse and the keyboard, which have nothing to reply.
    bool isEvent() const;
    /// Milliseconds between the operation and its reply, for its effects to take place.
    int replyDelay() const;
};

} // namespace vantrel

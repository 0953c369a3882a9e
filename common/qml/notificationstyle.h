#pragma once

#include "common/notification/notification.h"

#include <QColor>

namespace vantrel {

/// How messages to the operator look and read, for declarative views too ("notificationStyle"): the mark of
/// each kind, and texts without their markup and without what may not stand on the screen. Main thread only.
class NotificationStyle : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The drawing and the colour that mark a kind of message.
    Q_INVOKABLE static QString icon(vantrel::Notification::MessageType type);
    Q_INVOKABLE static QColor color(vantrel::Notification::MessageType type);
    /// "Errors", "Warnings", ...: for tooltips and accessible names.
    Q_INVOKABLE static QString name(vantrel::Notification::MessageType type);
    /// Details as lines of text.
    Q_INVOKABLE static QString plainText(const QString& richText);
    /// The same of a title, and how often it was said when that was more than once.
    Q_INVOKABLE static QString plainTitle(const QString& title, int repeats);
};

} // namespace vantrel

#pragma once

#include "common/notification/notification.h"

#include <QColor>
#include <QString>

namespace vantrel {

/// The icon and the colour that mark a kind of message.
QString notificationIcon(Notification::MessageType type);
QColor notificationColor(Notification::MessageType type);
/// "Error", "Warning", ...: for tooltips and accessible names.
QString notificationName(Notification::MessageType type);
/// A title or details as a line of text: without their markup.
QString plainText(const QString& richText);

} // namespace vantrel

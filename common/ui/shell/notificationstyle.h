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
/// Details as lines of text: without their markup, and without what may not stand on the screen.
QString plainText(const QString& richText);
/// The same of a title, and how often it was said when that was more than once.
QString plainTitle(const QString& title, int repeats);

} // namespace vantrel

#pragma once

#include <QString>

class QFont;
class QPainter;
class QRect;

namespace vantrel {

/// What a drop leads to: red goes to an audience.
enum class DropNotice { Preview, OnAir };

/// Says over a whole part of the window, in a frame, what a drop on it does. The words stand along the top:
/// what is dragged hides the middle.
void paintDropNotice(QPainter& painter, const QRect& part, DropNotice notice, const QFont& font,
                     const QString& words);

} // namespace vantrel

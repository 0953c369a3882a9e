#pragma once

class QPoint;
class QSize;
class QWidget;

namespace vantrel {

/// Pop-ups over the window leave the widget free: it is what an operator watches, or presses, on air.
void keepUncovered(QWidget* widget);
/// Where something of the size lies over none of these that are visible, in the window's coordinates: with
/// its lower end at bottom, in the middle or at the sides, else over what is below that, else higher. Where
/// there is no such place, over what is below.
QPoint uncoveredPlace(const QWidget& window, const QSize& size, int bottom);

} // namespace vantrel

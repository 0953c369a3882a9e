#pragma once

class QRect;
class QWidget;

namespace vantrel {

/// Pop-ups over the window leave the widget free: it is what an operator watches, or presses, on air.
void keepUncovered(QWidget* widget);
/// Whether such a widget of the window is visible below the rectangle, in the window's coordinates.
bool coversKept(const QWidget& window, const QRect& rectangle);

} // namespace vantrel

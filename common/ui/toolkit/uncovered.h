#pragma once

#include <QList>

#include <functional>

class QPoint;
class QRect;
class QSize;
class QWidget;

namespace vantrel {

/// Pop-ups over the window leave the widget free: it is what an operator watches, or presses, on air.
void keepUncovered(QWidget* widget);
/// The same at any cost: where a pop-up must lie over something, it lies over something else.
void neverCover(QWidget* widget);
/// A part of it, in its own coordinates, and only where that costs no other its place.
void keepUncovered(QWidget* widget, const std::function<QRect()>& part);
QList<QWidget*> keptUncovered(const QWidget& window);
/// Where something of the size lies over none of these that are visible, in the window's coordinates: with
/// its lower end at bottom, in the middle or at the sides, else over what is below that, else higher. Where
/// there is no such place, over parts alone, and else where it covers least of them and, before all, of what
/// is never to be covered.
QPoint uncoveredPlace(const QWidget& window, const QSize& size, int bottom);

} // namespace vantrel

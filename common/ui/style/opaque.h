#pragma once

class QEvent;
class QWidget;

namespace vantrel {

/// Keeps a widget that paints all of itself opaque; called in its event(), after the base class. A style
/// sheet's polish takes every widget for one that can be seen through, and then each paint of it begins with
/// all its parents.
void keepOpaque(QWidget* widget, const QEvent* event);

} // namespace vantrel

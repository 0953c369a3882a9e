#pragma once

class QWidget;

namespace vantrel {

/// The main window as the rooms below it may know it: a plain widget, to parent a dialog or to hold its
/// repaints. Main thread only.
void setMainWindowWidget(QWidget* window);

/// Null before the window stands and after it is gone.
QWidget* mainWindowWidget();
/// Whether the main window paints; what its parts ask for while it does not is painted afterwards. Nothing
/// without a window.
void setMainWindowUpdatesEnabled(bool enabled);

} // namespace vantrel

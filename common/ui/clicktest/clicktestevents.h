#pragma once

class QPoint;
class QString;

namespace vantrel {

struct ClickTestRequest;

/// The mouse and key events that the UI test server synthesises.
namespace clicktest {

/// The mouse operation of the request at the screen position, for the widget or declarative item there. The
/// real cursor follows. An unknown operation does nothing.
void handleMouse(const ClickTestRequest& request, const QPoint& global);

/// Press and release of the named key for the widget that has the focus. A shortcut of its window that the
/// widget does not claim is triggered, as the keyboard would.
void handleKeyPress(const QString& keyName);

} // namespace clicktest

} // namespace vantrel

#pragma once

#include <atomic>
#include <string>

struct SDL_Window;
struct _XDisplay;

namespace vantrel::ombra {

/// What is known of a connection to a desktop; it must outlive the connection.
struct DesktopConnection
{
    std::atomic<bool> isLost{false};
    std::string farewell; // what the log says of its loss; nothing where empty
};

/// Whether SDL's windows are those of an X desktop.
bool isOnX();

/// A desktop that ends takes its programs with it unless they say otherwise. From here on the loss of the
/// connection only sets its mark, and leaves its lock with the thread that met the loss: no other one must
/// wait for it any more. What the desktop refuses is told to the log. Elsewhere than on X this is so by
/// itself.
void surviveLoss(_XDisplay* display, DesktopConnection& connection);
void surviveLoss(SDL_Window* window, DesktopConnection& connection);

} // namespace vantrel::ombra

#include "ombra/display/wholescreen.h"

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <array>

namespace vantrel::ombra {

/// SDL would ask for that by itself, but knows the screens only as they were when it started.
void askForWholeScreen(SDL_Window* window)
{
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11)
        return;
    ::Display* display = info.info.x11.display;
    const std::array<Atom, 2> states = {XInternAtom(display, "_NET_WM_STATE_FULLSCREEN", False),
                                        XInternAtom(display, "_NET_WM_STATE_ABOVE", False)};
    XChangeProperty(display, info.info.x11.window, XInternAtom(display, "_NET_WM_STATE", False), XA_ATOM, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(states.data()),
                    static_cast<int>(states.size()));
}

} // namespace vantrel::ombra

#include "ombra/display/inputfree.h"

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <algorithm>

namespace vantrel::ombra {

namespace {

/// What SDL says of its windows: that they want the focus, and take it themselves.
void refuseFocus(::Display* display, ::Window window)
{
    XWMHints* hints = XGetWMHints(display, window);
    if (!hints)
        hints = XAllocWMHints();
    if (hints) {
        hints->flags |= InputHint;
        hints->input = False;
        XSetWMHints(display, window, hints);
        XFree(hints);
    }
    Atom* protocols = nullptr;
    int count = 0;
    if (!XGetWMProtocols(display, window, &protocols, &count))
        return;
    Atom* end = std::remove(protocols, protocols + count, XInternAtom(display, "WM_TAKE_FOCUS", False));
    XSetWMProtocols(display, window, protocols, static_cast<int>(end - protocols));
    XFree(protocols);
}

} // namespace

void showWithoutInput(SDL_Window* window)
{
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11)
        return SDL_ShowWindow(window);
    ::Display* const display = info.info.x11.display;
    ::Window before = None, after = None;
    int revert = RevertToNone, ignored = 0;
    refuseFocus(display, info.info.x11.window);
    XGetInputFocus(display, &before, &revert);
    SDL_ShowWindow(window);
    XGetInputFocus(display, &after, &ignored);
    if (after == info.info.x11.window && before != after) // where nobody manages windows SDL takes it
        XSetInputFocus(display, before, revert, CurrentTime);
    XFlush(display);
}

} // namespace vantrel::ombra

#include "ombra/display/connectionloss.h"

#include "tarn/log/log.h"

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace vantrel::ombra {

namespace {

int tellError(::Display*, XErrorEvent* event)
{
    Log::write(LogLevel::Debug, "vantrel.display",
               "the desktop refused request " + std::to_string(event->request_code) + " with error " +
                   std::to_string(event->error_code));
    return 0;
}

void noteLoss(::Display*, void* of)
{
    auto* connection = static_cast<DesktopConnection*>(of);
    if (connection->isLost.exchange(true))
        return;
    if (!connection->farewell.empty())
        Log::write(LogLevel::Warning, "vantrel.display", connection->farewell);
    // At the end of the process OpenGL would take leave of the connection, whose lock nobody gives back.
    ::on_exit(
        [](int status, void*) {
            std::fflush(nullptr);
            ::_exit(status);
        },
        nullptr);
}

} // namespace

bool isOnX()
{
    const char* driver = SDL_GetCurrentVideoDriver();
    return driver && std::string_view(driver) == "x11";
}

void surviveLoss(_XDisplay* display, DesktopConnection& connection)
{
    XSetErrorHandler(tellError);
    XSetIOErrorHandler([](::Display*) { return 0; });
    XSetIOErrorExitHandler(display, noteLoss, &connection);
}

void surviveLoss(SDL_Window* window, DesktopConnection& connection)
{
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWindowWMInfo(window, &info) && info.subsystem == SDL_SYSWM_X11)
        surviveLoss(info.info.x11.display, connection);
}

} // namespace vantrel::ombra

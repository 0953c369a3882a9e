#include "ombra/display/window.h"

#include "ombra/base/fail.h"

#include <SDL.h>
#include <SDL_opengl.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <tuple>

namespace vantrel::ombra {

namespace {

constexpr int windowWidth = 960, windowHeight = 540; // pixels, on a desktop
constexpr int beatsLookedAt = 8;
constexpr double usualRate = 60; // of displays that tell none

const char* rendererName()
{
    using GetString = const unsigned char* (*)(unsigned);
    const auto get = reinterpret_cast<GetString>(SDL_GL_GetProcAddress("glGetString"));
    const char* name = get ? reinterpret_cast<const char*>(get(GL_RENDERER)) : nullptr;
    return name ? name : "";
}

bool startVideo(std::string* error)
{
    SDL_SetMainReady();
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0"); // the end of a Wayland desktop comes as that word
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "0");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return fail(error, SDL_GetError());
    const std::string driver = SDL_GetCurrentVideoDriver();
    if (driver == "offscreen" || driver == "dummy") { // taken where there is nothing that anybody sees
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return fail(error, "neither a desktop nor a console with a screen was found");
    }
    SDL_DisableScreenSaver();
    SDL_ShowCursor(SDL_DISABLE);
    return true;
}

} // namespace

std::unique_ptr<Display::Window> Display::Window::open(Kind kind, int screen, bool isOnlyThis,
                                                       const std::string& title, std::string* error)
{
    std::unique_ptr<Window> window(new Window);
    return window->create(kind, screen, isOnlyThis, title, error) ? std::move(window) : nullptr;
}

bool Display::Window::create(Kind kind, int screen, bool isOnlyThis, const std::string& title,
                             std::string* error)
{
    m_isWindow = kind == Kind::Window;
    if (!startVideo(error))
        return false;
    m_hasVideo = true;
    const int last = std::max(0, SDL_GetNumVideoDisplays() - 1);
    if (isOnlyThis && screen > last)
        return fail(error, "its screen is gone");
    m_screen = screen = std::clamp(screen, 0, last);
    const int centered = static_cast<int>(SDL_WINDOWPOS_CENTERED_DISPLAY(static_cast<unsigned>(screen)));
    SDL_Rect at{centered, centered, windowWidth, windowHeight};
    // Where nobody manages windows, the one over the whole screen keeps the place that it is made with.
    if (!m_isWindow && SDL_GetDisplayBounds(screen, &at) != 0)
        return fail(error, SDL_GetError());
    const unsigned flags =
        m_isWindow ? SDL_WINDOW_RESIZABLE
                   : SDL_WINDOW_FULLSCREEN_DESKTOP | SDL_WINDOW_BORDERLESS | SDL_WINDOW_ALWAYS_ON_TOP;
    m_window = SDL_CreateWindow(title.c_str(), at.x, at.y, at.w, at.h, flags | SDL_WINDOW_OPENGL);
    m_context = m_window ? SDL_GL_CreateContext(m_window) : nullptr;
    if (!m_context)
        return fail(error, SDL_GetError());
    surviveLoss(m_window, m_connection);
    m_renderer = rendererName();
    m_isSoftware =
        m_renderer.find("llvmpipe") != std::string::npos || m_renderer.find("softpipe") != std::string::npos;
    SDL_DisplayMode mode;
    if (SDL_GetWindowDisplayMode(m_window, &mode) == 0 && mode.refresh_rate > 0)
        m_rate = mode.refresh_rate;
    else
        m_rate = usualRate;
    m_painter = Painter::create(m_window, m_isSoftware, error);
    if (!m_painter)
        return false;
    if (m_isWindow)
        SDL_ShowCursor(SDL_ENABLE);
    findBeat();
    return true;
}

Display::Window::~Window()
{
    if (m_connection.isLost) { // SDL would wait for ever for what a desktop says to the end of a window
        std::ignore = m_painter.release();
        return;
    }
    m_painter.reset();
    if (m_context)
        SDL_GL_DeleteContext(m_context);
    if (m_window)
        SDL_DestroyWindow(m_window);
    if (m_hasVideo)
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

/// Whether a swap waits for the display is seen from a few: drivers promise it and do not do it.
void Display::Window::findBeat()
{
    using Clock = std::chrono::steady_clock;
    if (SDL_GL_SetSwapInterval(1) != 0)
        return;
    Clock::time_point begin;
    for (int i = 0; i <= beatsLookedAt; ++i) {
        m_painter->paint({}, {});
        m_painter->swap();
        if (i == 0)
            begin = Clock::now();
    }
    const double each = std::chrono::duration<double>(Clock::now() - begin).count() / beatsLookedAt;
    m_givesBeat = each * m_rate > 0.8 && each * m_rate < 1.25;
    if (!m_givesBeat)
        SDL_GL_SetSwapInterval(0);
}

int Display::Window::width() const
{
    int width = 0, height = 0;
    SDL_GL_GetDrawableSize(m_window, &width, &height);
    return width;
}

int Display::Window::height() const
{
    int width = 0, height = 0;
    SDL_GL_GetDrawableSize(m_window, &width, &height);
    return height;
}

Display::Fate Display::Window::handleEvents()
{
    SDL_Event event;
    Fate fate = Fate::Stays;
    while (SDL_PollEvent(&event)) {
        if (event.type == SDL_WINDOWEVENT)
            m_isExposed = true;
        if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_CLOSE && m_isWindow)
            fate = Fate::Closed;
        const bool isOtherScreen =
            event.type == SDL_DISPLAYEVENT && (event.display.event == SDL_DISPLAYEVENT_CONNECTED ||
                                               event.display.event == SDL_DISPLAYEVENT_DISCONNECTED);
        if (isOtherScreen && !m_isWindow)
            fate = Fate::Moved;
        if (event.type == SDL_QUIT)
            m_connection.isLost = true;
    }
    return m_connection.isLost ? Fate::Lost : fate;
}

std::string Display::Window::description() const
{
    char text[200];
    std::snprintf(text, sizeof text, "program is on a display of %d x %d at %.3g Hz, painted by %s%s",
                  width(), height(), m_rate, m_renderer.c_str(), m_givesBeat ? "" : ", without its beat");
    return text;
}

} // namespace vantrel::ombra

#include "ombra/display/window.h"

#include "ombra/base/fail.h"
#include "ombra/display/wholescreen.h"

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
constexpr double usualRate = 60;                      // of displays that tell none
constexpr double slowestRate = 10, fastestRate = 500; // that are believed

const char* rendererName()
{
    using GetString = const unsigned char* (*)(unsigned);
    const auto get = reinterpret_cast<GetString>(SDL_GL_GetProcAddress("glGetString"));
    const char* name = get ? reinterpret_cast<const char*>(get(GL_RENDERER)) : nullptr;
    return name ? name : "";
}

} // namespace

Window::Window(const Wish& wish, int screen, DesktopConnection& connection)
    : m_wish(wish)
    , m_screen(screen)
    , m_connection(connection)
{
}

std::unique_ptr<Window> Window::create(const Wish& wish, int screen, DesktopConnection& connection,
                                       std::string* error)
{
    std::unique_ptr<Window> window(new Window(wish, screen, connection));
    return window->create(error) ? std::move(window) : nullptr;
}

bool Window::create(std::string* error)
{
    const bool isFull = m_wish.isFullScreen;
    const int centered =
        static_cast<int>(SDL_WINDOWPOS_CENTERED_DISPLAY(static_cast<unsigned>(std::max(0, m_screen))));
    SDL_Rect at{centered, centered, windowWidth, windowHeight};
    // Where nobody manages windows, the one over a whole screen keeps the place that it is made with.
    if (isFull && m_wish.place.area)
        at = {m_wish.place.area->x, m_wish.place.area->y, m_wish.place.area->width,
              m_wish.place.area->height};
    if (isFull && m_screen >= 0 && SDL_GetDisplayBounds(m_screen, &at) != 0)
        return fail(error, SDL_GetError());
    unsigned flags = SDL_WINDOW_OPENGL;
    flags |= isFull ? SDL_WINDOW_BORDERLESS | SDL_WINDOW_ALWAYS_ON_TOP : SDL_WINDOW_RESIZABLE;
    const bool isBySdl = m_screen >= 0;
    if (isFull)
        flags |= isBySdl ? SDL_WINDOW_FULLSCREEN_DESKTOP : SDL_WINDOW_HIDDEN;
    m_window = SDL_CreateWindow(m_wish.title.c_str(), at.x, at.y, at.w, at.h, flags);
    if (m_window && isFull && !isBySdl) {
        askForWholeScreen(m_window);
        SDL_ShowWindow(m_window);
    }
    m_context = m_window ? SDL_GL_CreateContext(m_window) : nullptr;
    if (!m_context || SDL_GL_MakeCurrent(m_window, nullptr) != 0)
        return fail(error, SDL_GetError());
    surviveLoss(m_window, m_connection);
    if (!isFull)
        SDL_ShowCursor(SDL_ENABLE);
    findRate();
    return true;
}

Window::~Window()
{
    if (m_connection.isLost) // SDL would wait for ever for what a desktop says to the end of a window
        return;
    if (m_context)
        SDL_GL_DeleteContext(m_context);
    if (m_window)
        SDL_DestroyWindow(m_window);
}

unsigned Window::id() const
{
    return SDL_GetWindowID(m_window);
}

void Window::note(bool isClosed)
{
    m_isExposed = true;
    m_isClosed = m_isClosed || (isClosed && !m_wish.isFullScreen);
}

/// What the mode itself comes to, since SDL knows whole numbers only.
void Window::findRate()
{
    SDL_DisplayMode mode;
    m_rate = m_wish.place.rate;
    if (m_rate < slowestRate || m_rate > fastestRate)
        m_rate = SDL_GetWindowDisplayMode(m_window, &mode) == 0 ? mode.refresh_rate : 0;
    if (m_rate < slowestRate || m_rate > fastestRate)
        m_rate = usualRate;
}

bool Window::begin(std::string* error)
{
    if (SDL_GL_MakeCurrent(m_window, m_context) != 0)
        return fail(error, SDL_GetError());
    m_renderer = rendererName();
    m_isSoftware =
        m_renderer.find("llvmpipe") != std::string::npos || m_renderer.find("softpipe") != std::string::npos;
    m_painter = Painter::create(m_window, m_isSoftware, error);
    if (!m_painter)
        return false;
    findBeat();
    return true;
}

void Window::end()
{
    if (m_connection.isLost) {
        std::ignore = m_painter.release();
        return;
    }
    m_painter.reset();
    SDL_GL_MakeCurrent(m_window, nullptr);
}

/// Whether a swap waits for the display is seen from a few: drivers promise it and do not do it.
void Window::findBeat()
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

int Window::width() const
{
    int width = 0, height = 0;
    SDL_GL_GetDrawableSize(m_window, &width, &height);
    return width;
}

int Window::height() const
{
    int width = 0, height = 0;
    SDL_GL_GetDrawableSize(m_window, &width, &height);
    return height;
}

/// Where the machine tells of its outputs the display is told where to be, and need not see it here.
Window::Fate Window::fate() const
{
    const bool isMoved = m_seesOthers && m_wish.isFullScreen && !m_wish.place.area;
    return m_connection.isLost ? Fate::Lost
           : m_mustLeave       ? Fate::Left
           : m_isClosed        ? Fate::Closed
           : isMoved           ? Fate::Moved
                               : Fate::Stays;
}

std::string Window::description() const
{
    char text[300];
    const std::string& name = m_wish.place.name.empty() ? m_wish.title : m_wish.place.name;
    std::snprintf(text, sizeof text, "%s shows %d x %d at %.4g Hz, painted by %s%s", name.c_str(), width(),
                  height(), m_rate, m_renderer.c_str(), m_givesBeat ? "" : ", without its beat");
    return text;
}

} // namespace vantrel::ombra

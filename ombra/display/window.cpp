#include "ombra/display/window.h"

#include "ombra/base/fail.h"
#include "ombra/display/cardpainter.h"
#include "ombra/display/inputfree.h"
#include "ombra/display/processorpainter.h"
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

bool isSoftwareRenderer(const std::string& name)
{
    return name.find("llvmpipe") != std::string::npos || name.find("softpipe") != std::string::npos;
}

} // namespace

bool hasGraphicsCard(DesktopConnection& connection)
{
    SDL_Window* window = SDL_CreateWindow("", 0, 0, 16, 16, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    if (window)
        surviveLoss(window, connection);
    SDL_GLContext context = window ? SDL_GL_CreateContext(window) : nullptr;
    const bool hasOne =
        context && SDL_GL_MakeCurrent(window, context) == 0 && !isSoftwareRenderer(rendererName());
    if (context)
        SDL_GL_DeleteContext(context);
    if (window)
        SDL_DestroyWindow(window);
    return hasOne;
}

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
    unsigned flags = m_wish.isByProcessor ? 0 : SDL_WINDOW_OPENGL;
    flags |= isFull ? SDL_WINDOW_BORDERLESS | SDL_WINDOW_ALWAYS_ON_TOP : SDL_WINDOW_RESIZABLE;
    const bool isBySdl = m_screen >= 0;
    if (isFull && isBySdl)
        flags |= SDL_WINDOW_FULLSCREEN_DESKTOP;
    if (isFull && isOnX())
        flags |= SDL_WINDOW_HIDDEN; // until it refuses keys, and asks for what it is to have
    m_window = SDL_CreateWindow(m_wish.title.c_str(), at.x, at.y, at.w, at.h, flags);
    if (!m_window)
        return fail(error, SDL_GetError());
    surviveLoss(m_window, m_connection);
    if (isFull && !isBySdl)
        askForWholeScreen(m_window);
    if (isFull && isOnX())
        showWithoutInput(m_window);
    if (!m_wish.isByProcessor)
        m_context = SDL_GL_CreateContext(m_window);
    if (!m_wish.isByProcessor && (!m_context || SDL_GL_MakeCurrent(m_window, nullptr) != 0))
        return fail(error, SDL_GetError());
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
    double rate = m_wish.place.rate;
    if (rate < slowestRate || rate > fastestRate)
        rate = SDL_GetDesktopDisplayMode(SDL_GetWindowDisplayIndex(m_window), &mode) == 0 ? mode.refresh_rate
                                                                                          : 0;
    m_rate = rate < slowestRate || rate > fastestRate ? usualRate : rate;
}

void Window::noteMoved()
{
    const double before = m_rate;
    findRate();
    m_isMoved = m_isMoved || m_rate != before;
}

bool Window::begin(std::string* error)
{
    if (m_wish.isByProcessor) {
        m_renderer = "the processor";
        m_isSoftware = true;
        m_painter = makeProcessorPainter(m_window);
        return true;
    }
    if (SDL_GL_MakeCurrent(m_window, m_context) != 0)
        return fail(error, SDL_GetError());
    m_renderer = rendererName();
    m_isSoftware = isSoftwareRenderer(m_renderer);
    m_painter = makeCardPainter(m_window, m_isSoftware, error);
    if (!m_painter)
        return false;
    findBeat({}, {});
    return true;
}

void Window::end()
{
    if (m_connection.isLost) {
        std::ignore = m_painter.release();
        return;
    }
    m_painter.reset();
    if (m_context)
        SDL_GL_MakeCurrent(m_window, nullptr);
}

/// Drivers promise it and do not do it.
void Window::findBeat(const ShownMoment& moment, const Painter::Ground& ground)
{
    using Clock = std::chrono::steady_clock;
    m_givesBeat = false;
    if (!m_context || SDL_GL_SetSwapInterval(1) != 0)
        return;
    Clock::time_point begin;
    for (int i = 0; i <= beatsLookedAt; ++i) {
        m_painter->paint(moment, ground);
        m_painter->swap();
        if (i == 0)
            begin = Clock::now();
    }
    const double each = std::chrono::duration<double>(Clock::now() - begin).count() / beatsLookedAt;
    m_givesBeat = each * m_rate > 0.9 && each * m_rate < 1.25;
    if (!m_givesBeat)
        SDL_GL_SetSwapInterval(0);
}

int Window::width() const
{
    int width = 0, height = 0;
    SDL_GetWindowSizeInPixels(m_window, &width, &height);
    return width;
}

int Window::height() const
{
    int width = 0, height = 0;
    SDL_GetWindowSizeInPixels(m_window, &width, &height);
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
                  height(), rate(), m_renderer.c_str(), m_givesBeat ? "" : ", without its beat");
    return text;
}

} // namespace vantrel::ombra

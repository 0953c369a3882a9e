#include "ombra/display/screens.h"

#include "ombra/base/fail.h"
#include "ombra/display/processorpainter.h"

#include <SDL.h>
#include <algorithm>

namespace vantrel::ombra {

namespace {

using namespace std::chrono_literals;

/// How often the windows are asked what came in for them.
constexpr auto eventsEach = 10ms;
/// How long windows have that must close before SDL can look at the screens anew.
constexpr auto othersLeaveWithin = 1s;

constexpr const char* farewell =
    "the desktop is gone; program comes back to a screen when ombra is started again";

} // namespace

Screens::Screens(PaintBy paintBy)
    : m_paintBy(paintBy)
    , m_connection{{}, farewell}
    , m_thread([this] { run(); })
{
}

bool Screens::stop(Clock::time_point deadline)
{
    {
        std::unique_lock lock(m_mutex);
        m_stop = m_hasNews = true;
        m_change.notify_all();
        if (!m_change.wait_until(lock, deadline, [this] { return m_ended; })) {
            m_thread.detach();
            return false;
        }
    }
    m_thread.join();
    return true;
}

std::unique_ptr<Window> Screens::open(const Window::Wish& wish, std::string* error)
{
    const auto job = std::make_shared<Job>(Job{wish, Clock::now() + othersLeaveWithin});
    std::unique_lock lock(m_mutex);
    m_jobs.push_back(job);
    m_hasNews = true;
    m_change.notify_all();
    while (!job->isDone && !isLost())
        m_change.wait_for(lock, 100ms); // what is lost tells nobody
    if (!job->isDone || !job->window) {
        fail(error, job->isDone ? job->error : "the desktop is gone");
        return nullptr;
    }
    return std::move(job->window);
}

void Screens::close(std::unique_ptr<Window> window)
{
    {
        const std::lock_guard lock(m_mutex);
        m_closed.push_back(std::move(window));
        m_hasNews = true;
    }
    m_change.notify_all();
}

bool Screens::isStopped()
{
    const std::lock_guard lock(m_mutex);
    return m_stop && m_windows.empty() && m_closed.empty();
}

void Screens::run()
{
    while (!isStopped() && !isLost()) {
        endClosed();
        serveJobs();
        handleEvents();
        std::unique_lock lock(m_mutex);
        m_change.wait_for(lock, eventsEach, [this] { return m_hasNews; });
        m_hasNews = false;
    }
    if (!isLost())
        endVideo();
    const std::lock_guard lock(m_mutex);
    m_ended = true;
    m_change.notify_all();
}

void Screens::endClosed()
{
    std::vector<std::unique_ptr<Window>> closed;
    {
        const std::lock_guard lock(m_mutex);
        closed.swap(m_closed);
    }
    for (const auto& window : closed)
        std::erase(m_windows, window.get());
    closed.clear();
    if (m_windows.empty())
        endVideo(); // what comes next sees the screens as they are then
}

void Screens::serveJobs()
{
    std::deque<std::shared_ptr<Job>> jobs, left;
    {
        const std::lock_guard lock(m_mutex);
        jobs.swap(m_jobs);
    }
    for (const auto& job : jobs) {
        const bool isServed = !isLost() && serve(*job);
        if (!isServed)
            left.push_back(job);
        const std::lock_guard lock(m_mutex);
        job->isDone = isServed;
    }
    const std::lock_guard lock(m_mutex);
    m_jobs.insert(m_jobs.begin(), left.begin(), left.end());
    m_change.notify_all();
}

/// SDL looks at the screens when it starts, and does not see them change. What it does not know is looked for
/// anew once no window is left; on X nobody needs to know more than the place, and no other window goes.
bool Screens::serve(Job& job)
{
    if (!startVideo(&job.error))
        return true;
    const Place& place = job.wish.place;
    const bool isPlaced = place.area && isOnX();
    int screen = isPlaced ? -1 : screenOf(place);
    const bool isWorthIt = m_vain != place && Clock::now() < job.deadline;
    if (screen < 0 && !isPlaced && !m_windows.empty() && isWorthIt) {
        for (Window* window : m_windows)
            window->leave();
        return false;
    }
    if (screen < 0 && !isPlaced && m_windows.empty()) {
        endVideo();
        if (!startVideo(&job.error))
            return true;
        screen = screenOf(place);
    }
    if (screen < 0 && !isPlaced) {
        job.error = "its screen is gone";
        m_vain = place; // nobody leaves for it again
    } else {
        job.wish.isByProcessor = isByProcessor();
        job.window = Window::create(job.wish, screen, m_connection, &job.error);
    }
    if (job.window) {
        m_windows.push_back(job.window.get());
        m_vain = m_vain == place ? std::nullopt : m_vain;
    }
    return true;
}

/// Its number for SDL; -1 for one that SDL does not know as it is.
int Screens::screenOf(const Place& place) const
{
    const int count = SDL_GetNumVideoDisplays();
    for (int i = 0; place.area && i < count; ++i) {
        SDL_Rect at;
        if (SDL_GetDisplayBounds(i, &at) == 0 && ScreenArea{at.x, at.y, at.w, at.h} == *place.area)
            return i;
    }
    if (place.isGuess)
        return std::clamp(place.screen, 0, std::max(0, count - 1));
    return place.screen < count ? place.screen : -1; // desktops count in units of their own
}

bool Screens::startVideo(std::string* error)
{
    if (m_hasVideo)
        return true;
    SDL_SetMainReady();
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0"); // the end of a Wayland desktop comes as that word
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "0");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0"); // the pixels of a window are its own
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return fail(error, SDL_GetError());
    const std::string driver = SDL_GetCurrentVideoDriver();
    if (driver == "offscreen" || driver == "dummy") { // taken where there is nothing that anybody sees
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return fail(error, "neither a desktop nor a console with a screen was found");
    }
    SDL_DisableScreenSaver();
    SDL_ShowCursor(SDL_DISABLE);
    m_hasVideo = true;
    m_hasCard = m_paintBy == PaintBy::Card || !isOnX() || hasGraphicsCard(m_connection);
    return true;
}

/// X alone gives the pixels of a window away.
bool Screens::isByProcessor() const
{
    return isOnX() && (m_paintBy == PaintBy::Processor || !m_hasCard);
}

void Screens::endVideo()
{
    if (std::exchange(m_hasVideo, false))
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

void Screens::handleEvents()
{
    SDL_Event event;
    const auto poll = [&event] {
        const std::lock_guard lock(windowPixels());
        return SDL_PollEvent(&event) != 0;
    };
    while (m_hasVideo && poll()) {
        if (event.type == SDL_QUIT)
            m_connection.isLost = true;
        const bool isOtherScreen =
            event.type == SDL_DISPLAYEVENT && (event.display.event == SDL_DISPLAYEVENT_CONNECTED ||
                                               event.display.event == SDL_DISPLAYEVENT_DISCONNECTED);
        for (Window* window : m_windows) {
            const bool isIts = event.type == SDL_WINDOWEVENT && event.window.windowID == window->id();
            if (isIts)
                window->note(event.window.event == SDL_WINDOWEVENT_CLOSE);
            if (isIts && event.window.event == SDL_WINDOWEVENT_DISPLAY_CHANGED)
                window->noteMoved();
            else if (isOtherScreen)
                window->noteScreens();
        }
    }
}

} // namespace vantrel::ombra

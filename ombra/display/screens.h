#pragma once

#include "ombra/display/connectionloss.h"
#include "ombra/display/paintby.h"
#include "ombra/display/window.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vantrel::ombra {

/// The one thread that has SDL's video: it makes and ends the windows of all displays and takes what comes in
/// for them, while each display paints its own. Any thread.
class Screens
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Screens(PaintBy paintBy);
    /// Once all windows are given back. False where the desktop hangs: then this is to be left as it lies.
    bool stop(Clock::time_point deadline);
    Screens(const Screens&) = delete;

    /// Waits for a window, or gives null and the reason. It is to be given back by close().
    std::unique_ptr<Window> open(const Window::Wish& wish, std::string* error);
    void close(std::unique_ptr<Window> window);
    /// The desktop has ended, and nothing can be done with its windows any more.
    bool isLost() const { return m_connection.isLost; }

private:
    struct Job
    {
        Window::Wish wish;
        Clock::time_point deadline; // of those whose windows are in the way
        std::unique_ptr<Window> window{};
        std::string error{};
        bool isDone = false;
    };

    void run();
    void endClosed();
    void serveJobs();
    /// False where it has to wait for others.
    bool serve(Job& job);
    int screenOf(const Place& place) const;
    bool startVideo(std::string* error);
    bool isByProcessor() const;
    void endVideo();
    void handleEvents();
    bool isStopped();

    const PaintBy m_paintBy;
    // Of the thread:
    std::vector<Window*> m_windows; // those that are out
    bool m_hasVideo = false, m_hasCard = true;
    std::optional<Place> m_vain; // looked for last, and not found
    DesktopConnection m_connection;

    std::mutex m_mutex;
    std::condition_variable m_change;
    std::deque<std::shared_ptr<Job>> m_jobs;
    std::vector<std::unique_ptr<Window>> m_closed; // given back
    bool m_hasNews = false, m_stop = false, m_ended = false;
    std::thread m_thread; // last: it uses all of the above
};

} // namespace vantrel::ombra

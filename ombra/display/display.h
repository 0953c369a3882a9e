#pragma once

#include "ombra/display/painter.h"
#include "ombra/display/testcard.h"
#include "ombra/engine/shownmoment.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace vantrel::ombra {

/// One screen of the machine and what the audience sees on it. A thread of its own has the window and the
/// graphics card, and asks for each picture when the display is about to show one. Without a display it says
/// so once in the log and looks for one each second; nothing else is different. Any thread.
class Display
{
public:
    enum class Kind { Window, FullScreen };
    /// In the order of their numbers; where there are fewer screens the last one serves, as long as this one
    /// has never been there.
    Display(Kind kind, int screen, std::string title);
    ~Display();
    Display(const Display&) = delete;

    /// Who is asked for the picture that is to be shown at a moment, and gives it by show(). After this
    /// returns the one before is not asked any more.
    using Asker = std::function<void(std::chrono::steady_clock::time_point)>;
    void setAsker(Asker asker);
    void show(ShownMoment moment);
    void setGround(Painter::Ground ground);
    /// Shown while there is no picture; nothing shows the ground alone.
    void setTestCard(std::optional<TestCard> card);
    /// Pictures are shown so many seconds after their moment, by whole beats of the display: with their
    /// sound, which takes its time to a loudspeaker.
    void setDelay(double seconds) { m_delay = seconds; }

    struct Figures
    {
        bool isOpen = false;
        int width = 0, height = 0; // pixels
        double rate = 0;           // pictures a second
        long long shown = 0;       // changed pictures
        long long dropped = 0;     // beats of the display that passed while a picture was painted
        long long late = 0;        // pictures that were not decoded in time
        double paintSeconds = 0;   // of the last picture
        double decodeLoad = 0;     // share of the time there is that decoding takes
        bool bySoftware = false;
    };
    Figures figures() const;

private:
    class Window;
    using Clock = std::chrono::steady_clock;
    /// Of a window. Closed: by the operator. Moved: screens came or went. Lost: its desktop is gone.
    enum class Fate { Stays, Closed, Moved, Lost };

    void run();
    /// Whether another window is to follow.
    bool serve(Window& window);
    Fate present(Window& window);
    /// What is to be painted now.
    ShownMoment current(const Window& window, bool isFresh, Painter::Ground& ground);
    /// False where nothing came in time.
    bool ask(Clock::time_point moment, Clock::duration patience);
    /// Lets go of the moments before the one whose time has come.
    const ShownMoment& due(double rate);
    bool isStopped() const;
    void waitUntil(Clock::time_point moment);

    const Kind m_kind;
    const int m_screen;
    const std::string m_title;
    std::atomic<double> m_delay{0}; // seconds

    std::mutex m_askerMutex;
    Asker m_asker;

    mutable std::mutex m_mutex;
    std::condition_variable m_change;
    std::deque<ShownMoment> m_moments; // from the one that is due to the newest
    bool m_fresh = false;
    Painter::Ground m_ground;
    std::optional<TestCard> m_card;
    Figures m_figures;
    bool m_stop = false;
    // Of the window's thread: the card as it was painted last.
    std::optional<TestCard> m_paintedCard;
    Ref<Surface> m_cardSurface;
    std::thread m_thread; // last: it uses all of the above
};

} // namespace vantrel::ombra

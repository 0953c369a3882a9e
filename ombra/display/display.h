#pragma once

#include "ombra/display/painter.h"
#include "ombra/display/testcard.h"
#include "ombra/display/window.h"
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

class Screens;

/// What somebody sees on one screen of the machine. A thread of its own paints, and asks for each picture
/// when the screen is about to show one. While it has a place and there is no screen it says so once in the
/// log and looks for one each second; nothing else is different. Any thread.
class Display
{
public:
    using Clock = std::chrono::steady_clock;
    enum class Kind { Window, FullScreen };

    /// changed: told on the thread that paints when it has a screen, or none any more.
    Display(Screens& screens, Kind kind, std::string title, std::function<void()> changed);
    /// Only after stop(), and when that was done in time.
    ~Display();
    Display(const Display&) = delete;
    void askToStop();
    /// False where a graphics card or a desktop hangs: then this is to be left as it lies.
    bool stop(Clock::time_point deadline);

    /// Where it is from now on; nothing for nowhere.
    void setPlace(std::optional<Place> place);
    /// Who is asked for the picture that is to be shown at a moment, and gives it by show(). False where the
    /// pictures come without a word. After this returns the one before is not asked any more.
    using Asker = std::function<bool(Clock::time_point)>;
    void setAsker(Asker asker);
    void show(ShownMoment moment);
    /// What comes next is of something else; until then it goes on with what it shows.
    void expectAnother();
    void setGround(Painter::Ground ground);
    /// Shown while there is no picture; nothing shows the ground alone.
    void setTestCard(std::optional<TestCard> card);
    /// Pictures are shown so many seconds after their moment, by whole beats of the display: with their
    /// sound, which takes its time to a loudspeaker.
    void setDelay(double seconds) { m_delay = seconds; }

    struct Figures
    {
        bool isOpen = false;       // and shows what it is given
        bool isShowing = false;    // the pictures that are meant, and not those before
        int width = 0, height = 0; // pixels
        double rate = 0;           // pictures a second
        long long dropped = 0;     // beats of the display that passed while a picture was painted
        long long late = 0;        // pictures that were not decoded in time
        double decodeLoad = 0;     // share of the time there is that decoding takes
        double paintLoad = 0;      // share of a beat that painting takes; 0 while nothing moves
        bool bySoftware = false;
    };
    Figures figures() const;

private:
    struct Painted
    {
        ShownMoment moment;
        Painter::Ground ground{{-1, 0, 0}};
    };

    void run();
    std::optional<Place> waitForPlace();
    /// Whether another window is to follow, and at once.
    Window::Fate serve(Window& window, const Place& place);
    Window::Fate present(Window& window, const Place& place);
    Window::Fate fateOf(const Window& window, const Place& place) const;
    bool paint(Window& window, const Painted& painted, bool isCard);
    void findBeatAgain(Window& window, const Painted& painted);
    void noteBeat(const Window& window, bool isCard, long long lost);
    void noteStill();
    void noteShowing(bool isShowing);
    /// What is to be painted now.
    Painted current(const Window& window, bool isFresh, const Painted& before);
    void addCard(const Window& window, std::optional<TestCard> card, ShownMoment& moment);
    /// False where nothing came in time.
    bool ask(Clock::time_point moment, Clock::duration patience);
    /// Lets go of the moments before the one whose time has come.
    const ShownMoment& due(double rate);
    bool isStopped() const;
    void waitUntil(Clock::time_point moment);

    Screens& m_screens;
    const Kind m_kind;
    const std::string m_title;
    const std::function<void()> m_changed;
    std::atomic<double> m_delay{0}; // seconds

    std::mutex m_askerMutex;
    Asker m_asker;

    mutable std::mutex m_mutex;
    std::condition_variable m_change;
    std::optional<Place> m_place;
    std::deque<ShownMoment> m_moments; // from the one that is due to the newest
    bool m_fresh = false, m_awaitsAnother = false;
    Painter::Ground m_ground;
    std::optional<TestCard> m_card;
    Figures m_figures;
    Clock::time_point m_beatAt{}; // the last one
    bool m_stop = false, m_ended = false;
    // Of the thread that paints: whether what it paints is meant, and the card as it was painted last.
    bool m_isMeant = false;
    std::optional<TestCard> m_paintedCard;
    Ref<DecodedPicture> m_cardImage;
    std::thread m_thread; // last: it uses all of the above
};

} // namespace vantrel::ombra

#include "ombra/display/display.h"

#include "ombra/display/screens.h"
#include "tarn/log/log.h"

#include <algorithm>

namespace vantrel::ombra {

namespace {

using namespace std::chrono_literals;
using Fate = Window::Fate;

/// A picture is counted as painted too late when the display's next beat is over by so much of one.
constexpr double missedAfter = 0.5;
/// A card that paints nothing for so many seconds has lost the window.
constexpr double givenUpAfter = 2;
/// After so many seconds with one picture the beat is found anew, in so many pictures.
constexpr double stillFor = 0.5;
constexpr int settledAfter = 3;
/// A display that makes swaps wait no more shows pictures early: by more than so many beats, so many times.
constexpr int earlyBy = 2, earlyTimes = 3;
/// How much each picture counts for how long painting takes, in seconds of its beat.
constexpr double loadSmoothedOver = 0.25;
/// A screen without a beat for so long shows nothing that it is given.
constexpr auto hangsAfter = 3s;
/// Moments that wait for their time; a display that falls behind by more shows newer ones.
constexpr std::size_t momentsAtMost = 100;
/// How often a display is looked for that is not there, or not any more.
constexpr auto lookAgainAfter = 1s;

bool looksAlike(const ShownMoment& one, const ShownMoment& other)
{
    return one.dipped == other.dipped && one.layers == other.layers;
}

} // namespace

Display::Display(Screens& screens, Kind kind, std::string title, std::function<void()> changed)
    : m_screens(screens)
    , m_kind(kind)
    , m_title(std::move(title))
    , m_changed(std::move(changed))
    , m_thread([this] { run(); })
{
}

Display::~Display() = default;

void Display::askToStop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_change.notify_all();
}

bool Display::stop(Clock::time_point deadline)
{
    askToStop();
    {
        std::unique_lock lock(m_mutex);
        if (!m_change.wait_until(lock, deadline, [this] { return m_ended; })) {
            m_thread.detach();
            return false;
        }
    }
    m_thread.join();
    return true;
}

void Display::setPlace(std::optional<Place> place)
{
    {
        const std::lock_guard lock(m_mutex);
        m_place = std::move(place);
    }
    m_change.notify_all();
}

void Display::setAsker(Asker asker)
{
    const std::lock_guard lock(m_askerMutex);
    m_asker = std::move(asker);
}

void Display::show(ShownMoment moment)
{
    {
        const std::lock_guard lock(m_mutex);
        const bool isOfAnother = !m_moments.empty() && moment.time < m_moments.back().time;
        if (isOfAnother || !m_figures.isOpen) // engine, whose clock begins anew; or nobody sees them
            m_moments.clear();
        if (m_moments.size() >= momentsAtMost)
            m_moments.pop_front();
        m_moments.push_back(std::move(moment));
        m_fresh = true;
        m_awaitsAnother = false;
    }
    m_change.notify_all();
}

void Display::expectAnother()
{
    const std::lock_guard lock(m_mutex);
    m_moments.clear();
    m_awaitsAnother = true;
    m_figures.isShowing = false;
}

void Display::setGround(Painter::Ground ground)
{
    const std::lock_guard lock(m_mutex);
    m_ground = ground;
}

void Display::setTestCard(std::optional<TestCard> card)
{
    const std::lock_guard lock(m_mutex);
    m_card = std::move(card);
}

Display::Figures Display::figures() const
{
    const std::lock_guard lock(m_mutex);
    Figures figures = m_figures;
    figures.isOpen = figures.isOpen && !m_screens.isLost() && Clock::now() < m_beatAt + hangsAfter;
    figures.isShowing = figures.isShowing && figures.isOpen;
    return figures;
}

bool Display::isStopped() const
{
    const std::lock_guard lock(m_mutex);
    return m_stop;
}

void Display::waitUntil(Clock::time_point moment)
{
    std::unique_lock lock(m_mutex);
    m_change.wait_until(lock, moment, [this] { return m_stop; });
}

bool Display::ask(Clock::time_point moment, Clock::duration patience)
{
    {
        const std::lock_guard lock(m_askerMutex);
        if (!m_asker || !m_asker(moment)) {
            const std::lock_guard own(m_mutex);
            return std::exchange(m_fresh, false);
        }
    }
    std::unique_lock lock(m_mutex);
    m_change.wait_for(lock, patience, [this] { return m_fresh || m_stop; });
    return std::exchange(m_fresh, false);
}

const ShownMoment& Display::due(double rate)
{
    if (m_moments.empty())
        m_moments.emplace_back();
    const double time = m_moments.back().time - m_delay + 0.5 / rate;
    while (m_moments.size() > 1 && m_moments[1].time <= time)
        m_moments.pop_front();
    return m_moments.front();
}

std::optional<Place> Display::waitForPlace()
{
    std::unique_lock lock(m_mutex);
    m_change.wait(lock, [this] { return m_stop || m_place; });
    return m_stop ? std::nullopt : m_place;
}

void Display::run()
{
    std::string told;
    bool hasHadIts = false; // what is unplugged does not send its picture over another screen
    while (auto place = waitForPlace()) {
        std::string error;
        Fate fate = Fate::Moved;
        Window::Wish wish{m_kind == Kind::FullScreen, *place, m_title};
        wish.place.isGuess = place->isGuess && !hasHadIts;
        if (auto window = m_screens.open(wish, &error)) {
            if (window->begin(&error)) {
                told.clear();
                hasHadIts = hasHadIts || (place->isGuess && window->screen() == place->screen);
                fate = serve(*window, *place);
            }
            window->end();
            m_screens.close(std::move(window));
        }
        if (!error.empty() && error != told) {
            Log::write(LogLevel::Warning, "vantrel.display",
                       "no display: " + error + "; the picture goes there as soon as there is one");
            told = error;
        }
        if (fate == Fate::Closed || m_screens.isLost())
            break;
        std::unique_lock lock(m_mutex);
        if (fate == Fate::Moved)
            m_change.wait_for(lock, lookAgainAfter, [&] { return m_stop || m_place != place; });
    }
    const std::lock_guard lock(m_mutex);
    m_ended = true;
    m_change.notify_all();
}

Fate Display::serve(Window& window, const Place& place)
{
    {
        const std::lock_guard lock(m_mutex);
        m_figures.isOpen = true;
        m_figures.rate = window.rate();
        m_figures.bySoftware = window.isSoftware();
        m_beatAt = Clock::now();
    }
    Log::write(LogLevel::Info, "vantrel.display", window.description());
    m_changed();
    const Fate fate = present(window, place);
    if (fate == Fate::Closed)
        Log::write(LogLevel::Warning, "vantrel.display",
                   "the window \"" + m_title + "\" was closed; it comes back when ombra is started again");
    {
        const std::lock_guard lock(m_mutex);
        m_figures.isOpen = m_figures.isShowing = false;
        m_moments.clear();
    }
    m_changed();
    return fate;
}

Fate Display::fateOf(const Window& window, const Place& place) const
{
    const Fate fate = window.fate();
    const std::lock_guard lock(m_mutex);
    return fate == Fate::Stays && m_place != place ? Fate::Left : fate;
}

Display::Painted Display::current(const Window& window, bool isFresh, const Painted& before)
{
    std::optional<TestCard> card;
    Painted now;
    {
        const std::lock_guard lock(m_mutex);
        m_isMeant = !m_awaitsAnother;
        if (!m_isMeant)
            return before;
        now.moment = due(window.rate());
        now.ground = m_ground;
        card = m_card;
        m_figures.late += isFresh ? m_moments.back().missed : 0;
        m_figures.decodeLoad = m_moments.back().load;
    }
    addCard(window, std::move(card), now.moment);
    return now;
}

void Display::addCard(const Window& window, std::optional<TestCard> card, ShownMoment& moment)
{
    if (!card) {
        m_paintedCard.reset();
        m_cardImage = nullptr;
    } else if (moment.layers.empty() && moment.dipped <= 0) { // not between two pictures of a dip
        const bool fits = m_cardImage && m_cardImage->frame->width == window.width() &&
                          m_cardImage->frame->height == window.height() && m_paintedCard == card;
        if (!fits)
            m_cardImage = paintTestCard(*card, window.width(), window.height(), window.rate());
        m_paintedCard = std::move(card);
        if (m_cardImage)
            moment.layers.push_back({m_cardImage});
    }
}

/// The display gives the beat where it makes a swap wait, and the clock does elsewhere. Either way each beat
/// has its time on the one clock of the machine, evenly: by that time the pictures of media are chosen.
Fate Display::present(Window& window, const Place& place)
{
    const auto periodOf = [&window] {
        return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / window.rate()));
    };
    Clock::duration period = periodOf();
    Clock::time_point next = Clock::now() + period;
    int early = 0; // pictures, one after the other
    Painted painted;
    int refused = 0;             // pictures, one after the other
    int still = 0, settling = 0; // beats
    Fate fate = Fate::Stays;
    while (!isStopped() && (fate = fateOf(window, place)) == Fate::Stays) {
        const bool isFresh = ask(next, period / 2);
        Painted now = current(window, isFresh, painted);
        const auto& layers = now.moment.layers;
        const bool isCard = !layers.empty() && layers.front().image == m_cardImage;
        const bool changes =
            !looksAlike(now.moment, painted.moment) || now.ground != painted.ground || window.takeExposed();
        const bool isPainted = changes && paint(window, now, isCard);
        if (changes)
            refused = isPainted ? 0 : refused + 1;
        if (changes && !isPainted)
            window.expose(); // it is still to be painted
        if (refused > givenUpAfter * window.rate() && m_kind == Kind::FullScreen) {
            Log::write(LogLevel::Warning, "vantrel.display",
                       "the graphics card takes no pictures any more: the screen is opened anew");
            return Fate::Moved;
        }
        if (!window.givesBeat() || !isPainted)
            waitUntil(next);
        if (isPainted) {
            window.painter().swap();
            painted = std::move(now);
        }
        const Clock::time_point shown = Clock::now();
        long long missed = 0;
        if (shown > next + std::chrono::duration_cast<Clock::duration>(period * missedAfter))
            missed = std::max<long long>(1, (shown - next) / period);
        if (isPainted && still > stillFor * window.rate())
            settling = settledAfter;
        still = isPainted ? 0 : still + 1;
        if (still > stillFor * window.rate())
            noteStill();
        if (window.givesBeat() && isPainted &&
            settling > 0) { // while it stood nobody looked where the beat is
            --settling;
            missed = 0;
            next = shown;
        }
        if (window.givesBeat() && isPainted && missed == 0)
            next += (shown - next) / 16; // the display's own rate and phase, without the jitter of a thread
        next += (missed + 1) * period;
        early = window.givesBeat() && isPainted && next - shown > earlyBy * period ? early + 1 : 0;
        if (window.takeMoved() || early >= earlyTimes) {
            findBeatAgain(window, painted);
            early = 0;
            settling = settledAfter;
            period = periodOf();
            next = Clock::now() + period;
        }
        noteBeat(window, isCard, isPainted ? missed : changes);
        noteShowing(m_isMeant);
    }
    return fate;
}

/// Waits for what a graphics card does meanwhile, so that the time that it takes is known before pictures are
/// lost by it.
bool Display::paint(Window& window, const Painted& painted, bool isCard)
{
    const Clock::time_point begin = Clock::now();
    if (!window.painter().paint(painted.moment, painted.ground))
        return false;
    window.painter().finish();
    const double taken = std::chrono::duration<double>(Clock::now() - begin).count() * window.rate();
    const std::lock_guard lock(m_mutex);
    if (!isCard)
        m_figures.paintLoad +=
            (taken - m_figures.paintLoad) * std::min(1.0, 1 / (loadSmoothedOver * window.rate()));
    return true;
}

/// On another screen, or where the desktop does it in another way by now.
void Display::findBeatAgain(Window& window, const Painted& painted)
{
    window.findBeat(painted.moment, painted.ground);
    {
        const std::lock_guard lock(m_mutex);
        m_figures.rate = window.rate();
    }
    Log::write(LogLevel::Info, "vantrel.display", window.description());
    m_changed();
}

void Display::noteStill()
{
    const std::lock_guard lock(m_mutex);
    m_figures.paintLoad = 0;
}

void Display::noteBeat(const Window& window, bool isCard, long long lost)
{
    const std::lock_guard lock(m_mutex);
    m_beatAt = Clock::now();
    m_figures.width = window.width();
    m_figures.height = window.height();
    if (!isCard) // to draw one takes its time, and nothing of program is lost by it
        m_figures.dropped += lost;
}

void Display::noteShowing(bool isShowing)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_figures.isShowing || !isShowing || m_awaitsAnother)
            return;
        m_figures.isShowing = true;
    }
    m_changed();
}

} // namespace vantrel::ombra

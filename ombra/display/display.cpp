#include "ombra/display/display.h"

#include "ombra/display/window.h"
#include "tarn/log/log.h"

#include <algorithm>

namespace vantrel::ombra {

namespace {

/// A picture is counted as painted too late when the display's next beat is over by so much of one.
constexpr double missedAfter = 0.5;
/// A card that paints nothing for so many seconds has lost the window.
constexpr double givenUpAfter = 2;
/// Moments that wait for their time; a display that falls behind by more shows newer ones.
constexpr std::size_t momentsAtMost = 100;
/// How often a display is looked for that is not there, or not any more.
constexpr auto lookAgainAfter = std::chrono::seconds(1);

bool looksAlike(const ShownMoment& one, const ShownMoment& other)
{
    return one.dipped == other.dipped &&
           std::ranges::equal(one.layers, other.layers,
                              [](const ShownMoment::Layer& a, const ShownMoment::Layer& b) {
                                  return a.surface == b.surface && a.share == b.share;
                              });
}

} // namespace

Display::Display(Kind kind, int screen, std::string title)
    : m_kind(kind)
    , m_screen(screen)
    , m_title(std::move(title))
    , m_thread([this] { run(); })
{
}

Display::~Display()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_change.notify_all();
    m_thread.join();
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
        if (isOfAnother) // engine, whose clock begins anew
            m_moments.clear();
        if (m_moments.size() >= momentsAtMost)
            m_moments.pop_front();
        m_moments.push_back(std::move(moment));
        m_fresh = true;
    }
    m_change.notify_all();
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
    return m_figures;
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
        const std::lock_guard lock(m_mutex);
        m_fresh = false;
    }
    {
        const std::lock_guard lock(m_askerMutex);
        if (!m_asker)
            return false;
        m_asker(moment);
    }
    std::unique_lock lock(m_mutex);
    m_change.wait_for(lock, patience, [this] { return m_fresh || m_stop; });
    return m_fresh;
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

void Display::run()
{
    std::string told;
    bool hasHadIts = false; // a projector that is unplugged does not send program over the operator's screen
    while (!isStopped()) {
        std::string error;
        if (const auto window = Window::open(m_kind, m_screen, hasHadIts, m_title, &error)) {
            told.clear();
            hasHadIts = hasHadIts || window->screen() == m_screen;
            if (!serve(*window))
                return;
        } else if (error != told) {
            Log::write(LogLevel::Warning, "vantrel.display",
                       "no display: " + error + "; program goes there as soon as there is one");
            told = error;
        }
        waitUntil(Clock::now() + lookAgainAfter);
    }
}

bool Display::serve(Window& window)
{
    {
        const std::lock_guard lock(m_mutex);
        m_figures.isOpen = true;
        m_figures.rate = window.rate();
        m_figures.bySoftware = window.isSoftware();
    }
    Log::write(LogLevel::Info, "vantrel.display", window.description());
    const Fate fate = present(window);
    if (fate == Fate::Closed)
        Log::write(LogLevel::Warning, "vantrel.display",
                   "the window of program was closed; it comes back when ombra is started again");
    else if (fate == Fate::Lost)
        Log::write(LogLevel::Warning, "vantrel.display",
                   "the desktop is gone; program comes back to a screen when ombra is started again");
    const std::lock_guard lock(m_mutex);
    m_figures.isOpen = false;
    m_moments.clear();
    return fate == Fate::Moved;
}

ShownMoment Display::current(const Window& window, bool isFresh, Painter::Ground& ground)
{
    std::optional<TestCard> card;
    ShownMoment moment;
    {
        const std::lock_guard lock(m_mutex);
        moment = due(window.rate());
        ground = m_ground;
        card = m_card;
        m_figures.late += isFresh ? m_moments.back().missed : 0;
        m_figures.decodeLoad = m_moments.back().load;
    }
    if (!card) {
        m_paintedCard.reset();
        m_cardSurface = nullptr;
    } else if (moment.layers.empty() && moment.dipped <= 0) { // not between two pictures of a dip
        const bool fits = m_cardSurface && m_cardSurface->width == window.width() &&
                          m_cardSurface->height == window.height() && m_paintedCard == card;
        if (!fits)
            m_cardSurface = paintTestCard(*card, window.width(), window.height(), window.rate());
        m_paintedCard = std::move(card);
        if (m_cardSurface)
            moment.layers.push_back({m_cardSurface, 1});
    }
    return moment;
}

/// The display gives the beat where it makes a swap wait, and the clock does elsewhere. Either way each beat
/// has its time on the one clock of the machine, evenly: by that time the pictures of media are chosen.
Display::Fate Display::present(Window& window)
{
    const auto period =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / window.rate()));
    Clock::time_point next = Clock::now() + period;
    ShownMoment painted;
    Painter::Ground paintedGround{{-1, 0, 0}};
    int refused = 0; // pictures, one after the other
    Fate fate = Fate::Stays;
    while (!isStopped() && (fate = window.handleEvents()) == Fate::Stays) {
        const bool isFresh = ask(next, period / 2);
        Painter::Ground ground;
        ShownMoment moment = current(window, isFresh, ground);
        const bool isCard = !moment.layers.empty() && moment.layers.front().surface == m_cardSurface;
        const bool changes = !looksAlike(moment, painted) || ground != paintedGround || window.takeExposed();
        const Clock::time_point begin = Clock::now();
        const bool isPainted = changes && window.painter().paint(moment, ground);
        const Clock::time_point end = Clock::now();
        if (changes)
            refused = isPainted ? 0 : refused + 1;
        if (refused > givenUpAfter * window.rate() && m_kind == Kind::FullScreen) {
            Log::write(LogLevel::Warning, "vantrel.display",
                       "the graphics card takes no pictures any more: the screen is opened anew");
            return Fate::Moved;
        }
        if (!window.givesBeat() || !isPainted)
            waitUntil(next);
        if (isPainted) {
            window.painter().swap();
            painted = std::move(moment);
            paintedGround = ground;
        }
        const Clock::time_point shown = Clock::now();
        long long missed = 0;
        if (shown > next + std::chrono::duration_cast<Clock::duration>(period * missedAfter))
            missed = std::max<long long>(1, (shown - next) / period);
        if (window.givesBeat() && isPainted && missed == 0)
            next += (shown - next) / 16; // the display's own rate and phase, without the jitter of a thread
        next += (missed + 1) * period;
        const std::lock_guard lock(m_mutex);
        m_figures.width = window.width();
        m_figures.height = window.height();
        if (!isCard) // to draw one takes its time, and nothing of program is lost by it
            m_figures.dropped += isPainted ? missed : changes;
        m_figures.shown += isPainted ? 1 : 0;
        if (isPainted)
            m_figures.paintSeconds = std::chrono::duration<double>(end - begin).count();
    }
    return fate;
}

} // namespace vantrel::ombra

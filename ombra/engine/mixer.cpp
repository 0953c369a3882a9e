#include "ombra/engine/mixer.h"

#include "ombra/engine/mix.h"

#include <algorithm>

namespace vantrel::ombra {

namespace {

constexpr double repeatAfter = 0.24; // seconds after which levels that are unchanged are sent again
constexpr int roundsLeftOut = 5;     // when this late, go on from now rather than catch up
constexpr auto pacePatience = std::chrono::milliseconds(120); // until the rate goes on by itself

long long wallTime()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

} // namespace

Mixer::Mixer(std::mutex& lock, int framesPerSecond, std::function<void()> ticked)
    : m_lock(lock)
    , m_period(std::chrono::nanoseconds(1'000'000'000 / std::clamp(framesPerSecond, 1, 240)))
    , m_ticked(std::move(ticked))
{
}

Mixer::~Mixer()
{
    stop();
}

void Mixer::add(Playback& playback)
{
    const std::lock_guard lock(m_lock);
    m_outputs.push_back(std::make_unique<Output>(Output{&playback}));
}

void Mixer::start()
{
    m_thread = std::thread([this] { run(); });
}

void Mixer::stop()
{
    {
        const std::lock_guard lock(m_wakeMutex);
        m_stop = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void Mixer::wake()
{
    {
        const std::lock_guard lock(m_wakeMutex);
        m_woken = true;
    }
    m_wake.notify_all();
}

void Mixer::pace(Clock::time_point moment)
{
    {
        const std::lock_guard lock(m_wakeMutex);
        m_paced = moment;
    }
    m_wake.notify_all();
}

void Mixer::setMomentSink(std::function<void(const Playback&, ShownMoment)> sink)
{
    const std::lock_guard lock(m_sinkMutex);
    m_momentSink = std::move(sink);
}

void Mixer::setSoundSink(std::function<void(const Playback&, HeardMoment)> sink)
{
    const std::lock_guard lock(m_sinkMutex);
    m_soundSink = std::move(sink);
}

void Mixer::setLevelSink(std::function<void(PreviewLevels)> sink)
{
    const std::lock_guard lock(m_sinkMutex);
    m_levelSink = std::move(sink);
}

void Mixer::run()
{
    Clock::time_point next = m_begin;
    Clock::time_point last = m_begin;
    std::unique_lock lock(m_wakeMutex);
    while (!m_stop) {
        m_wake.wait_until(lock, next, [this] { return m_woken || m_stop || m_paced; });
        m_woken = false;
        if (m_stop)
            break;
        Clock::time_point now = Clock::now();
        Round kind = Round::Woken;
        if (m_paced) {
            kind = Round::Paced;
            now = *std::exchange(m_paced, std::nullopt);
            learnBeat(now);
            next = std::max(now, Clock::now()) + pacePatience;
        } else if (now >= next) {
            // Rounds count by the rate and not by when they came: 25 pictures a second meet 25 rounds
            // exactly.
            kind = Round::InTime;
            if (now > next + roundsLeftOut * m_period)
                next = now;
            now = next;
            next += m_period;
        }
        last = std::max(now, last); // a pace is of what is shown next: later than now
        lock.unlock();
        round(std::chrono::duration<double>(last - m_begin).count(), kind);
        m_ticked();
        lock.lock();
    }
}

/// Of the display that paces: the shortest of late, since it leaves out moments at times.
void Mixer::learnBeat(Clock::time_point moment)
{
    constexpr double longest = 0.05, grows = 1.01;
    const double since = std::chrono::duration<double>(moment - m_pacedLast).count();
    m_pacedLast = moment;
    if (since <= 0 || since > longest)
        return;
    m_beat = m_beat > 0 ? std::min(since, m_beat * grows) : since;
}

void Mixer::round(double now, Round kind)
{
    const bool sends = kind != Round::Paced || now >= m_sendAt;
    if (kind == Round::Paced && sends) {
        const double period = std::chrono::duration<double>(m_period).count();
        m_sendAt = now > m_sendAt + roundsLeftOut * period ? now + period : m_sendAt + period;
    }
    for (std::size_t i = 0;; ++i) {
        Output* output = nullptr;
        Player::Moment moment;
        std::vector<std::shared_ptr<Deck>> retired; // let go after the lock
        double gain = 0;
        Canvas canvas;
        {
            const std::lock_guard lock(m_lock);
            if (i >= m_outputs.size())
                return;
            output = m_outputs[i].get();
            moment = output->playback->player().advance(now, kind == Round::Paced ? m_beat / 2 : 0);
            gain = output->playback->gain();
            canvas = output->playback->output();
            output->playback->lateWatch().note(moment.late, now);
            retired = output->playback->player().takeRetired();
        }
        play(*output, std::move(moment.heard), gain, now); // first: it is what must not come late
        if (kind == Round::Paced)
            show(*output, moment, now);
        if (sends)
            m_previews.show(output->playback->path(), {std::move(moment.layers), canvas}, now);
        output->gauge.add(moment.sound, gain);
        output->channels = moment.channels.value_or(output->channels);
        if (sends && kind != Round::Woken)
            sendLevels(*output, now);
    }
}

void Mixer::show(Output& output, const Player::Moment& moment, double now)
{
    ShownMoment shown;
    shown.time = now;
    shown.missed = moment.missed;
    shown.load = moment.load;
    for (const Player::Moment::Layer& layer : moment.layers) {
        const MixShares shares =
            &layer == moment.layers.data() ? MixShares{0, 1} : mixShares(layer.type, layer.weight);
        for (ShownMoment::Layer& below : shown.layers)
            below.share *= shares.from;
        shown.dipped = shown.dipped * shares.from;
        if (layer.type == TakeTransitionType::DipToColor)
            shown.dipped += 1 - shares.from - shares.to;
        shown.layers.push_back({layer.image, layer.scaling, shares.to});
    }
    std::erase_if(shown.layers,
                  [](const ShownMoment::Layer& layer) { return !layer.image || layer.share <= 0; });
    const std::lock_guard lock(m_sinkMutex);
    if (m_momentSink)
        m_momentSink(*output.playback, std::move(shown));
}

void Mixer::play(Output& output, HeardMoment moment, double gain, double now)
{
    moment.gain = gain;
    moment.end = m_begin + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(now));
    const std::lock_guard lock(m_sinkMutex);
    if (m_soundSink)
        m_soundSink(*output.playback, std::move(moment));
}

void Mixer::sendLevels(Output& output, double now)
{
    AudioLevels levels = output.gauge.take(output.channels);
    if (levels == output.sentLevels && now < output.levelsSentAt + repeatAfter)
        return;
    output.sentLevels = levels;
    output.levelsSentAt = now;
    const std::lock_guard lock(m_sinkMutex);
    if (m_levelSink)
        m_levelSink({output.playback->path(), 0, wallTime(), std::move(levels)});
}

} // namespace vantrel::ombra

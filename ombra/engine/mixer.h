#pragma once

#include "ombra/engine/engine.h"
#include "ombra/engine/heardmoment.h"
#include "ombra/engine/levelgauge.h"
#include "ombra/engine/playback.h"
#include "ombra/engine/previewmaker.h"
#include "ombra/engine/shownmoment.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace vantrel::ombra {

/// The thread that moves all players on at a steady rate, mixes what they show and gives it to the sink. Made
/// and stopped on the io_context's thread.
class Mixer
{
public:
    /// The lock guards the players; ticked is called on the mixing thread after every round.
    Mixer(std::mutex& lock, int framesPerSecond, std::function<void()> ticked);
    ~Mixer();

    void add(Playback& playback); // before it shows anything; the playback outlives the thread
    void start();
    void stop();
    /// A round at once rather than at the next moment of the rate. Any thread.
    void wake();
    /// The next round, and the moment that it is of. While somebody paces, rounds come with his words and the
    /// rate only stands in where he falls silent; previews keep to the rate. Any thread.
    void pace(std::chrono::steady_clock::time_point moment);
    /// Called with every round of a pace, for each playback.
    void setMomentSink(std::function<void(const Playback&, ShownMoment)> sink);
    /// Called with every round, for each playback.
    void setSoundSink(std::function<void(const Playback&, HeardMoment)> sink);
    PreviewMaker& previews() { return m_previews; }
    void setLevelSink(std::function<void(PreviewLevels)> sink);

private:
    using Clock = std::chrono::steady_clock;

    struct Output
    {
        Playback* playback;
        LevelGauge gauge{};
        int channels = 0; // known last
        std::optional<AudioLevels> sentLevels{};
        double levelsSentAt = 0;
    };

    void run();
    void show(Output& output, const Player::Moment& moment, double now);
    void play(Output& output, HeardMoment moment, double gain, double now);
    enum class Round { Woken, Paced, InTime };
    /// InTime: a moment of the rate, and not one in between; levels are of whole such moments.
    void round(double now, Round kind);
    void learnBeat(Clock::time_point moment);
    void sendLevels(Output& output, double now);

    std::mutex& m_lock;
    const Clock::duration m_period;
    const Clock::time_point m_begin = Clock::now(); // of the mixing clock
    const std::function<void()> m_ticked;
    std::vector<std::unique_ptr<Output>> m_outputs; // under m_lock
    PreviewMaker m_previews;

    std::mutex m_sinkMutex;
    std::function<void(PreviewLevels)> m_levelSink;
    std::function<void(const Playback&, ShownMoment)> m_momentSink;
    std::function<void(const Playback&, HeardMoment)> m_soundSink;

    std::mutex m_wakeMutex;
    std::condition_variable m_wake;
    bool m_woken = false;
    std::optional<Clock::time_point> m_paced;
    bool m_stop = false;
    // Of the thread.
    double m_sendAt = 0; // the next time of the rate, while somebody paces
    double m_beat = 0;   // seconds between two moments of who paces
    Clock::time_point m_pacedLast{};
    std::thread m_thread;
};

} // namespace vantrel::ombra

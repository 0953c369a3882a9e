#pragma once

#include "ombra/engine/heardmoment.h"
#include "ombra/sound/driftservo.h"
#include "ombra/sound/soundmix.h"
#include "ombra/sound/soundring.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

struct SwrContext;

namespace vantrel::ombra {

/// Sound on its way from the mixing thread to a device: heard a fixed time after its moment, whatever the
/// device's clock does. play() is the mixing thread's and fill() the device's; neither waits. What is missing
/// is silence, and nothing jumps.
class SoundStream
{
public:
    using Clock = std::chrono::steady_clock;

    /// For a device of so many channels and frames a second that takes so many frames at once.
    SoundStream(int channels, int rate, int deviceFrames);
    ~SoundStream();
    SoundStream(const SoundStream&) = delete;

    /// Seconds from a moment to when it is heard. One thread at a time; what is heard goes over to it
    /// unnoticed.
    void setDelay(double seconds) { m_delay = {static_cast<float>(seconds), m_delay.load().moves}; }
    /// The same, heard at once: so much sound is left out, or silence put in, as the two differ.
    void goTo(double seconds) { m_delay = {static_cast<float>(seconds), m_delay.load().moves + 1}; }
    /// The least that this device makes possible, while moments come as the mixer makes them.
    static double leastDelay(int rate, int deviceFrames);

    void play(const HeardMoment& moment);
    /// Frames that the device plays next, asked for at a time.
    void fill(std::span<float> out, Clock::time_point now);

    // Any thread:
    /// Whether it will have nothing soon.
    bool isStarving() const;
    long long gaps() const { return m_gaps; } // times when it had nothing
    Clock::time_point lastAsked() const { return Clock::time_point(Clock::duration(m_asked.load())); }
    double rate() const { return m_toldRate; } // faster than its own time, as DriftServo::rate()
    double late() const { return m_toldLate; } // seconds, against the delay

private:
    struct FreeResampler
    {
        void operator()(SwrContext* context) const;
    };

    struct Delay
    {
        float seconds;
        std::uint32_t moves; // how often it was gone to at once
    };

    std::int64_t correct(const HeardMoment& moment);
    double followDelay();
    void resample(std::span<const float> samples);
    double waiting() const;

    const int m_channels, m_rate;
    const double m_deviceDelay; // seconds from fill() to what is heard, as far as that is known
    std::atomic<Delay> m_delay;
    std::unique_ptr<SwrContext, FreeResampler> m_resampler;
    SoundRing m_ring;

    // Of the mixing thread:
    SoundMix m_mix;
    DriftServo m_servo;
    std::vector<float> m_resampled;
    std::optional<Clock::time_point> m_playedTo;
    Delay m_followed;  // the delay as it was last
    double m_owed = 0; // seconds to be left out at once; below 0: of silence to be put in

    // Of the device's thread:
    SeamFilter m_seams;
    bool m_empty = true;

    std::atomic<Clock::rep> m_asked{0}; // when the device asked last
    std::atomic<Clock::rep> m_zero{0};  // when it would have asked for frame 0 by its clock; 0: never yet
    std::atomic<long long> m_gaps{0};
    std::atomic<double> m_toldRate{0}, m_toldLate{0};
};

} // namespace vantrel::ombra

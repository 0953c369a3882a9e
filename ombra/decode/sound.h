#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace vantrel::ombra {

/// A stretch of sound: samples at 48 kHz, -1 to 1, the channels of a moment side by side.
struct Sound
{
    static constexpr int sampleRate = 48000;
    static constexpr int maxChannels = 8;

    int channels = 0;
    std::vector<float> samples;
    std::vector<std::size_t> seams{}; // frames at which it breaks off for silence, or begins after some

    std::size_t frames() const
    {
        return channels > 0 ? samples.size() / static_cast<std::size_t>(channels) : 0;
    }
    /// The sample of a time, seconds.
    static std::int64_t sampleAt(double time)
    {
        return std::llround(std::clamp(time, 0.0, 1e9) * sampleRate);
    }
};

} // namespace vantrel::ombra

#pragma once

#include "tarn/preview/frame.h"

#include <limits>
#include <optional>
#include <vector>

namespace vantrel {

/// How loud the sound of one playback was for the time of a picture, channel by channel. As a frame of the
/// preview stream it is a surface of formatLevels: a line for each channel, the first one on top, on it two
/// signed 16-bit numbers, little-endian: the peak and the RMS in hundredths of a dBFS, -32768 for silence.
/// The surface is 2 wide, and its lines hold 4 bytes. Media without sound are one line of no bytes.
struct AudioLevels
{
    static constexpr int maxChannels = 8;
    static constexpr double silence = -std::numeric_limits<double>::infinity();

    struct Channel
    {
        double peak = silence; // dBFS; 0 is the largest sample there is
        double rms = silence;  // dBFS; a sine of full scale has -3.01
        friend bool operator==(const Channel&, const Channel&) = default;
    };

    std::vector<Channel> channels; // none: there is no sound

    /// The highest peak of all channels.
    double peak() const;
    Ref<Surface> toSurface() const;
    /// Nothing for a surface that is none of these.
    static std::optional<AudioLevels> fromSurface(const Surface* surface);

    friend bool operator==(const AudioLevels&, const AudioLevels&) = default;
};

} // namespace vantrel

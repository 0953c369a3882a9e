#pragma once

#include "ombra/decode/sound.h"

#include <chrono>
#include <vector>

namespace vantrel::ombra {

/// What a playback sounds like since the moment before: the sound of each medium, of which there is so much,
/// and how loud all of it is to be.
struct HeardMoment
{
    struct Layer
    {
        Sound sound;
        std::size_t at = 0; // its first frame in the moment
        double begin = 1;   // its share at the beginning of the moment, 0 to 1
        double end = 1;     // and at its end
    };
    std::vector<Layer> layers;
    /// Frames at which one sound ends and another one begins, or silence. Elsewhere all goes on as it was.
    std::vector<std::size_t> seams;
    std::size_t frames = 0; // of the moment; where no layer is there is silence
    double gain = 0;        // amplitude
    std::chrono::steady_clock::time_point end{};
};

} // namespace vantrel::ombra

#pragma once

#include "ombra/decode/sound.h"
#include "tarn/media/playenums.h"
#include "tarn/preview/audiolevels.h"

#include <array>

namespace vantrel::ombra {

/// Measures what sounds between two pictures. One thread.
class LevelGauge
{
public:
    /// More of the sound, as it is heard after this gain (amplitude).
    void add(const Sound& sound, double gain);
    /// What was added since the last call, of so many channels, and begins anew.
    AudioLevels take(int channels);

private:
    struct Sum
    {
        double peak = 0;
        double squares = 0;
        std::size_t count = 0;
    };
    std::array<Sum, Sound::maxChannels> m_sums{};
};

/// A moment of a transition in sound: one after the other weighed like their pictures, channel by channel.
/// The longer one counts.
Sound mixSound(const Sound& from, const Sound& to, TakeTransitionType type, double weight);

} // namespace vantrel::ombra

#pragma once

#include "ombra/engine/heardmoment.h"
#include "ombra/sound/seamfilter.h"

#include <map>
#include <vector>

namespace vantrel::ombra {

/// Mixes moments for the channels of a device into one sound that never jumps: shares and gain go from one
/// value to the next, seams are smoothed. One thread.
class SoundMix
{
public:
    explicit SoundMix(int channels);

    /// The moment's frames, valid until the next call. It is played from a frame of its own on (begin), or
    /// after so many of silence (begin below 0).
    std::span<const float> mix(const HeardMoment& moment, std::int64_t begin = 0);

private:
    void addLayer(const HeardMoment::Layer& layer, std::size_t frames);
    void applyGain(double gain);
    std::vector<std::size_t> placeSeams(const HeardMoment& moment, std::int64_t begin);

    const std::size_t m_channels;
    std::map<int, std::vector<float>> m_shares; // by the channels of the medium
    std::vector<float> m_samples;
    SeamFilter m_seams;
    float m_gain = 0, m_gainTo = 0;
    float m_gainStep = 0;   // a frame
    bool m_leftOut = false; // all of the moment before
};

} // namespace vantrel::ombra

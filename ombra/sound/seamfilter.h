#pragma once

#include "ombra/decode/sound.h"

#include <cstddef>
#include <span>
#include <vector>

namespace vantrel::ombra {

/// Takes the click out of a seam: where one sound breaks off and another one begins, the one fades
/// into the other within 5 ms. A step that is no larger than those of the sounds themselves is none: what was
/// cut to be seamless stays as it is, to the sample. One thread.
class SeamFilter
{
public:
    explicit SeamFilter(int channels);

    /// Works on more of the sound, in place; seams are frames of it, in order.
    void pass(std::span<float> samples, std::span<const std::size_t> seams);

    static constexpr int fadeFrames = Sound::sampleRate / 200;

private:
    struct Channel
    {
        float last = 0; // given out
        float step = 0; // the largest within the last millisecond or so
        float from = 0; // given out before the seam
        int left = 0;   // frames until that is gone
    };

    void passChannel(std::size_t channel, std::span<float> samples, std::span<const std::size_t> seams);
    float stepAfter(std::size_t channel, std::span<const float> samples, std::size_t frame) const;

    std::vector<Channel> m_channels;
};

} // namespace vantrel::ombra

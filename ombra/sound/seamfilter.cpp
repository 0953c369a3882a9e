#include "ombra/sound/seamfilter.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

constexpr std::size_t lookedAt = Sound::sampleRate / 1000; // frames behind a seam
constexpr float forgetting = 0.98f;                        // of a step, with each frame
constexpr float seamless = 1.5f;                           // times the steps of the sound itself

} // namespace

SeamFilter::SeamFilter(int channels)
    : m_channels(static_cast<std::size_t>(std::max(1, channels)))
{
}

void SeamFilter::pass(std::span<float> samples, std::span<const std::size_t> seams)
{
    for (std::size_t channel = 0; channel < m_channels.size(); ++channel)
        passChannel(channel, samples, seams);
}

void SeamFilter::passChannel(std::size_t channel, std::span<float> samples,
                             std::span<const std::size_t> seams)
{
    const std::size_t stride = m_channels.size();
    Channel& state = m_channels[channel];
    auto seam = seams.begin();
    for (std::size_t frame = 0; frame < samples.size() / stride; ++frame) {
        float& sample = samples[frame * stride + channel];
        if (seam != seams.end() && *seam == frame) {
            ++seam;
            const float jump = std::abs(state.last - sample);
            if (jump > seamless * std::max(state.step, stepAfter(channel, samples, frame))) {
                state.from = state.last;
                state.left = fadeFrames;
            }
        }
        if (state.left > 0) // between the two, so that nothing gets louder than it is
            sample += (state.from - sample) * static_cast<float>(state.left--) / float(fadeFrames);
        state.step = std::max(state.step * forgetting, std::abs(sample - state.last));
        state.last = sample;
    }
}

float SeamFilter::stepAfter(std::size_t channel, std::span<const float> samples, std::size_t frame) const
{
    const std::size_t stride = m_channels.size();
    const std::size_t end = std::min(samples.size() / stride, frame + lookedAt);
    float step = 0;
    for (std::size_t i = frame + 1; i < end; ++i)
        step = std::max(step, std::abs(samples[i * stride + channel] - samples[(i - 1) * stride + channel]));
    return step;
}

} // namespace vantrel::ombra

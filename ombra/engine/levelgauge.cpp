#include "ombra/engine/levelgauge.h"

#include "ombra/engine/mix.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

double decibels(double amplitude)
{
    return amplitude > 0 ? 20 * std::log10(amplitude) : AudioLevels::silence;
}

void addWeighed(Sound& out, const Sound& in, double share)
{
    const auto inChannels = static_cast<std::size_t>(in.channels);
    const auto outChannels = static_cast<std::size_t>(out.channels);
    for (std::size_t i = 0; i < in.frames(); ++i) {
        for (std::size_t c = 0; c < inChannels; ++c)
            out.samples[i * outChannels + c] += in.samples[i * inChannels + c] * static_cast<float>(share);
    }
}

} // namespace

void LevelGauge::add(const Sound& sound, double gain)
{
    const auto channels = static_cast<std::size_t>(std::clamp(sound.channels, 0, Sound::maxChannels));
    const std::size_t frames = sound.frames();
    for (std::size_t c = 0; c < channels; ++c) {
        float peak = 0;
        float squares = 0; // of at most a few thousand samples
        for (std::size_t i = 0; i < frames; ++i) {
            const float value = sound.samples[i * channels + c];
            peak = std::max(peak, std::abs(value));
            squares += value * value;
        }
        Sum& sum = m_sums[c];
        sum.peak = std::max(sum.peak, peak * gain);
        sum.squares += squares * gain * gain;
        sum.count += frames;
    }
}

AudioLevels LevelGauge::take(int channels)
{
    AudioLevels levels;
    for (int c = 0; c < std::clamp(channels, 0, Sound::maxChannels); ++c) {
        const Sum& sum = m_sums[static_cast<std::size_t>(c)];
        const double rms = sum.count > 0 ? std::sqrt(sum.squares / static_cast<double>(sum.count)) : 0;
        levels.channels.push_back({decibels(sum.peak), decibels(rms)});
    }
    m_sums = {};
    return levels;
}

Sound mixSound(const Sound& from, const Sound& to, TakeTransitionType type, double weight)
{
    const MixShares shares = mixShares(type, weight);
    Sound out;
    out.channels = std::max(from.channels, to.channels);
    out.samples.assign(std::max(from.frames(), to.frames()) * static_cast<std::size_t>(out.channels), 0.0f);
    addWeighed(out, from, shares.from);
    addWeighed(out, to, shares.to);
    return out;
}

} // namespace vantrel::ombra

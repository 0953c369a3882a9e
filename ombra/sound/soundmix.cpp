#include "ombra/sound/soundmix.h"

#include "ombra/sound/speakers.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

SoundMix::SoundMix(int channels)
    : m_channels(static_cast<std::size_t>(std::max(1, channels)))
    , m_seams(channels)
{
}

std::span<const float> SoundMix::mix(const HeardMoment& moment, std::int64_t begin)
{
    m_samples.assign(moment.frames * m_channels, 0.0f);
    for (const HeardMoment::Layer& layer : moment.layers)
        addLayer(layer, moment.frames);
    applyGain(moment.gain);
    const auto moved = static_cast<std::ptrdiff_t>(m_channels) * static_cast<std::ptrdiff_t>(std::abs(begin));
    if (begin > 0)
        m_samples.erase(m_samples.begin(),
                        m_samples.begin() + std::min(moved, static_cast<std::ptrdiff_t>(m_samples.size())));
    else
        m_samples.insert(m_samples.begin(), static_cast<std::size_t>(moved), 0.0f);
    m_seams.pass(m_samples, placeSeams(moment, begin));
    for (float& sample : m_samples)
        sample = std::clamp(sample, -1.0f, 1.0f);
    return m_samples;
}

void SoundMix::addLayer(const HeardMoment::Layer& layer, std::size_t frames)
{
    const int own = std::clamp(layer.sound.channels, 0, Sound::maxChannels);
    const auto [shares, isNew] = m_shares.try_emplace(own);
    if (isNew)
        shares->second = speakerShares(own, static_cast<int>(m_channels));
    const auto from = static_cast<std::size_t>(own);
    const double step = (layer.end - layer.begin) / static_cast<double>(std::max<std::size_t>(1, frames));
    const std::size_t count = std::min(layer.sound.frames(), frames - std::min(frames, layer.at));
    for (std::size_t i = 0; i < count; ++i) {
        const float* in = layer.sound.samples.data() + i * from;
        float* out = m_samples.data() + (layer.at + i) * m_channels;
        const auto level = static_cast<float>(layer.begin + step * static_cast<double>(layer.at + i));
        for (std::size_t c = 0; c < m_channels; ++c) {
            const float* line = shares->second.data() + c * from;
            float sum = 0;
            for (std::size_t j = 0; j < from; ++j)
                sum += in[j] * line[j];
            out[c] += sum * level;
        }
    }
}

/// Volume and mute go there within as long as a seam takes.
void SoundMix::applyGain(double gain)
{
    if (static_cast<float>(gain) != m_gainTo) {
        m_gainTo = static_cast<float>(gain);
        m_gainStep = (m_gainTo - m_gain) / static_cast<float>(SeamFilter::fadeFrames);
    }
    for (std::size_t i = 0; i < m_samples.size(); i += m_channels) {
        if (m_gain != m_gainTo) {
            m_gain += m_gainStep;
            if ((m_gainTo - m_gain) * m_gainStep <= 0)
                m_gain = m_gainTo;
        }
        for (std::size_t c = 0; c < m_channels; ++c)
            m_samples[i + c] *= m_gain;
    }
}

std::vector<std::size_t> SoundMix::placeSeams(const HeardMoment& moment, std::int64_t begin)
{
    std::vector<std::size_t> seams;
    if (begin != 0 || m_leftOut)
        seams.push_back(0);
    m_leftOut = m_samples.empty();
    if (begin < 0)
        seams.push_back(static_cast<std::size_t>(-begin));
    for (const std::size_t seam : moment.seams) {
        const std::int64_t at = static_cast<std::int64_t>(seam) - begin;
        if (at >= 0 && (seams.empty() || static_cast<std::size_t>(at) > seams.back()))
            seams.push_back(static_cast<std::size_t>(at));
    }
    return seams;
}

} // namespace vantrel::ombra

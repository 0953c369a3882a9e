#include "ombra/engine/soundlayers.h"

#include "ombra/engine/deck.h"

#include <algorithm>

namespace vantrel::ombra {

namespace {

// Frames that may be missing where one medium follows another: their ends are no whole samples of the clock.
// Who plays the sound out keeps to the time of each moment, so that nothing adds up.
constexpr std::int64_t slack = 2;
constexpr std::int64_t longest = 2 * Sound::sampleRate; // of a moment: nobody wants what is older

} // namespace

void SoundLayers::begin(double from, double to)
{
    m_expected = std::min(longest, Sound::sampleAt(to) - Sound::sampleAt(from)) - m_ahead;
    m_moment = {};
    m_sources.clear();
}

void SoundLayers::add(const Deck& deck, double share)
{
    add(deck, share, 0);
}

void SoundLayers::append(const Deck& deck, double share)
{
    add(deck, share, filled());
}

void SoundLayers::overlay(const Deck& deck, double share)
{
    const std::size_t whole = filled();
    add(deck, share, whole - std::min(whole, deck.sound().frames()));
}

void SoundLayers::add(const Deck& deck, double share, std::size_t at)
{
    if (deck.sound().frames() == 0)
        return;
    m_moment.layers.push_back({deck.sound(), at, share, share});
    m_sources.push_back({&deck, at == 0 && deck.soundGoesOn()});
}

void SoundLayers::setEnd(const Deck& deck, double share)
{
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        if (m_sources[i].deck == &deck)
            m_moment.layers[i].end = share;
    }
}

std::size_t SoundLayers::filled() const
{
    std::size_t frames = 0;
    for (const HeardMoment::Layer& layer : m_moment.layers)
        frames = std::max(frames, layer.at + layer.sound.frames());
    return frames;
}

HeardMoment SoundLayers::finish()
{
    const auto given = static_cast<std::int64_t>(filled());
    if (m_expected <= 0 && given == 0) { // what comes is heard already
        m_ahead = -m_expected;
        return std::move(m_moment);
    }
    const bool isWhole = given + slack >= m_expected;
    m_ahead = isWhole ? std::max<std::int64_t>(0, given - m_expected) : 0;
    m_moment.frames = static_cast<std::size_t>(isWhole ? given : m_expected);

    std::vector<const Deck*> begun, sounding;
    for (std::size_t i = 0; i < m_sources.size(); ++i) {
        const HeardMoment::Layer& layer = m_moment.layers[i];
        const std::size_t end = layer.at + layer.sound.frames();
        for (const std::size_t seam : layer.sound.seams)
            m_moment.seams.push_back(layer.at + seam);
        if (m_sources[i].goesOn)
            begun.push_back(m_sources[i].deck);
        else
            m_moment.seams.push_back(layer.at);
        if (end + slack < m_moment.frames)
            m_moment.seams.push_back(end);
        else
            sounding.push_back(m_sources[i].deck);
    }
    std::ranges::sort(begun);
    std::ranges::sort(sounding);
    if (begun != m_sounding)
        m_moment.seams.push_back(0);
    m_sounding = std::move(sounding);
    std::ranges::sort(m_moment.seams);
    const auto repeated = std::ranges::unique(m_moment.seams);
    m_moment.seams.erase(repeated.begin(), repeated.end());
    return std::move(m_moment);
}

} // namespace vantrel::ombra

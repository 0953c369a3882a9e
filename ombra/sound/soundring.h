#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

namespace vantrel::ombra {

/// Frames of sound on their way from one thread to another. Neither waits for the other.
class SoundRing
{
public:
    SoundRing(int channels, std::size_t frames)
        : m_channels(static_cast<std::size_t>(channels))
        , m_size(frames)
        , m_samples(m_channels * frames)
    {
    }

    std::int64_t written() const { return m_written.load(std::memory_order_acquire); } // frames, since ever
    std::int64_t read() const { return m_read.load(std::memory_order_acquire); }       // frames, since ever

    /// As many of the frames as there is room for.
    std::size_t write(std::span<const float> samples)
    {
        const std::int64_t at = m_written.load(std::memory_order_relaxed);
        const std::size_t room = m_size - static_cast<std::size_t>(at - read());
        const std::size_t count = std::min(room, samples.size() / m_channels);
        for (std::size_t i = 0; i < count; ++i)
            std::copy_n(samples.data() + i * m_channels, m_channels,
                        place(at + static_cast<std::int64_t>(i)));
        m_written.store(at + static_cast<std::int64_t>(count), std::memory_order_release);
        return count;
    }
    /// As many frames as are there.
    std::size_t take(std::span<float> out)
    {
        const std::int64_t at = m_read.load(std::memory_order_relaxed);
        const std::size_t count = std::min(static_cast<std::size_t>(written() - at), out.size() / m_channels);
        for (std::size_t i = 0; i < count; ++i)
            std::copy_n(place(at + static_cast<std::int64_t>(i)), m_channels, out.data() + i * m_channels);
        m_read.store(at + static_cast<std::int64_t>(count), std::memory_order_release);
        return count;
    }

private:
    float* place(std::int64_t frame)
    {
        return m_samples.data() + (static_cast<std::size_t>(frame) % m_size) * m_channels;
    }

    const std::size_t m_channels, m_size;
    std::vector<float> m_samples;
    std::atomic<std::int64_t> m_written{0}, m_read{0};
};

} // namespace vantrel::ombra

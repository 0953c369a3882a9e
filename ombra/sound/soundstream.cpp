#include "ombra/sound/soundstream.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

namespace vantrel::ombra {

namespace {

constexpr double ringSeconds = 1;
constexpr double aheadOfDevice = 0.06;  // seconds: a moment of the mixer and some of its being late
constexpr double starvingBelow = 0.012; // seconds beyond what the device takes at once
constexpr int parts = 1'000'000;        // in which a rate is told to the resampler

SwrContext* makeResampler(int channels, int rate)
{
    AVChannelLayout layout = {};
    av_channel_layout_default(&layout, channels);
    SwrContext* context = nullptr;
    const int made = swr_alloc_set_opts2(&context, &layout, AV_SAMPLE_FMT_FLT, rate, &layout,
                                         AV_SAMPLE_FMT_FLT, Sound::sampleRate, 0, nullptr);
    av_channel_layout_uninit(&layout);
    if (made < 0)
        return nullptr;
    // Of one kind whatever the rate is: it changes all the time.
    av_opt_set_int(context, "flags", SWR_FLAG_RESAMPLE, 0);
    av_opt_set_int(context, "exact_rational", 0, 0);
    av_opt_set_int(context, "linear_interp", 1, 0);
    if (swr_init(context) < 0)
        swr_free(&context);
    return context;
}

} // namespace

void SoundStream::FreeResampler::operator()(SwrContext* context) const
{
    swr_free(&context);
}

SoundStream::SoundStream(int channels, int rate, int deviceFrames)
    : m_channels(std::max(1, channels))
    , m_rate(std::max(1, rate))
    , m_deviceDelay(static_cast<double>(deviceFrames) / m_rate)
    , m_delay({static_cast<float>(leastDelay(rate, deviceFrames)), 0})
    , m_resampler(makeResampler(m_channels, m_rate))
    , m_ring(m_channels, static_cast<std::size_t>(m_rate * ringSeconds))
    , m_mix(m_channels)
    , m_followed(m_delay)
    , m_seams(m_channels)
{
}

SoundStream::~SoundStream() = default;

double SoundStream::leastDelay(int rate, int deviceFrames)
{
    return aheadOfDevice + 2.0 * deviceFrames / std::max(1, rate);
}

double SoundStream::waiting() const
{
    return static_cast<double>(m_ring.written() - m_ring.read()) / m_rate;
}

bool SoundStream::isStarving() const
{
    return m_zero != 0 && waiting() < m_deviceDelay + starvingBelow;
}

void SoundStream::play(const HeardMoment& moment)
{
    if (moment.frames == 0 || !m_resampler || m_zero == 0)
        return;
    const std::int64_t begin = correct(moment);
    m_playedTo = moment.end;
    resample(m_mix.mix(moment, begin));
}

/// The delay that holds. What it was moved by at once is owed, whatever a device that asks early or late
/// makes of the moment.
double SoundStream::followDelay()
{
    const Delay before = std::exchange(m_followed, m_delay.load());
    if (m_followed.moves != before.moves)
        m_owed += before.seconds - m_followed.seconds;
    return m_followed.seconds + m_owed;
}

/// Compares when the next sound would be heard with when it is to be, and sets how fast it is played. The
/// frame of the moment to begin with: 0, but where that is so far apart that frames are left out, or put in.
std::int64_t SoundStream::correct(const HeardMoment& moment)
{
    using Seconds = std::chrono::duration<double>;
    const double inside =
        static_cast<double>(swr_get_delay(m_resampler.get(), parts)) / parts; // seconds in the resampler
    const double next = static_cast<double>(m_ring.written()) / m_rate + m_deviceDelay;
    const Clock::time_point zero{Clock::duration(m_zero.load())};
    const double length = static_cast<double>(moment.frames) / Sound::sampleRate;
    const double late = Seconds(zero - moment.end).count() + next + inside + length - followDelay();
    const double elapsed = m_playedTo ? Seconds(moment.end - *m_playedTo).count() : 0;
    m_toldLate = late;
    const bool isBeyond = !m_servo.note(late, elapsed);
    if (isBeyond)
        m_servo.corrected();
    const double apart = m_owed + (isBeyond ? late : 0);
    const std::int64_t begin = std::max(std::llround(apart * Sound::sampleRate),
                                        -static_cast<long long>(ringSeconds / 2 * Sound::sampleRate));
    // What is longer than this moment is left out of those that come; beyond what the servo takes, it tells
    // anew.
    const auto leftOut = std::min(begin, static_cast<std::int64_t>(moment.frames));
    m_owed = isBeyond ? 0 : m_owed - static_cast<double>(leftOut) / Sound::sampleRate;
    m_toldRate = m_servo.rate();
    swr_set_compensation(m_resampler.get(), -static_cast<int>(std::lround(m_servo.rate() * parts)), parts);
    return begin;
}

void SoundStream::resample(std::span<const float> samples)
{
    const auto channels = static_cast<std::size_t>(m_channels);
    const int count = static_cast<int>(samples.size() / channels);
    if (count == 0)
        return;
    const int room = std::max(1, swr_get_out_samples(m_resampler.get(), count));
    m_resampled.resize(static_cast<std::size_t>(room) * channels);
    auto* out = reinterpret_cast<std::uint8_t*>(m_resampled.data());
    const auto* in = reinterpret_cast<const std::uint8_t*>(samples.data());
    const int made = swr_convert(m_resampler.get(), &out, room, &in, count);
    if (made > 0)
        m_ring.write({m_resampled.data(), static_cast<std::size_t>(made) * channels});
}

void SoundStream::fill(std::span<float> out, Clock::time_point now)
{
    const auto channels = static_cast<std::size_t>(m_channels);
    const std::size_t frames = out.size() / channels;
    const std::size_t count = m_ring.take(out);
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(count * channels), out.end(), 0.0f);
    // What it did not find now it takes when it asks next.
    const double next = (static_cast<double>(frames) - static_cast<double>(m_ring.read())) / m_rate;
    m_asked = now.time_since_epoch().count();
    m_zero = (now + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(next)))
                 .time_since_epoch()
                 .count();
    const std::array<std::size_t, 2> seams = {0, count}; // where it begins again, and where it runs dry
    const bool begins = m_empty && count > 0;
    const bool ends = count < frames && (begins || !m_empty);
    m_gaps += count < frames && !m_empty;
    m_empty = count < frames;
    m_seams.pass(out, std::span(seams).subspan(begins ? 0 : 1, std::size_t(begins) + std::size_t(ends)));
}

} // namespace vantrel::ombra

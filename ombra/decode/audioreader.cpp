#include "ombra/decode/audioreader.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace vantrel::ombra {

namespace {

constexpr std::int64_t silenceAtOnce =
    Sound::sampleRate / 2; // samples of a gap that are given out in one piece
// Containers round times, to milliseconds at worst; what differs by much more is a gap.
constexpr std::int64_t jitter = Sound::sampleRate / 200;
constexpr double warmUp = 0.1; // seconds decoded before a sought time: many codecs build on what came before

double startTime(const AVStream* stream)
{
    return stream && stream->start_time != AV_NOPTS_VALUE
               ? static_cast<double>(stream->start_time) * av_q2d(stream->time_base)
               : 0;
}

} // namespace

std::unique_ptr<AudioReader> AudioReader::open(std::unique_ptr<AvInput> input, std::string* error)
{
    AvPtr<AVCodecContext> decoder = input->openDecoder(input->audio(), error);
    if (!decoder)
        return nullptr;
    std::unique_ptr<AudioReader> reader(new AudioReader(std::move(input), std::move(decoder)));
    if (reader->decode()) {
        reader->m_channels = std::min(reader->m_frame->ch_layout.nb_channels, Sound::maxChannels);
        if (reader->m_channels > 0 && reader->prepareResampler())
            return reader;
    }
    if (error)
        *error = "nothing of its sound can be decoded";
    return nullptr;
}

AudioReader::AudioReader(std::unique_ptr<AvInput> input, AvPtr<AVCodecContext> decoder)
    : m_input(std::move(input))
    , m_decoder(std::move(decoder))
    , m_packet(av_packet_alloc())
    , m_frame(av_frame_alloc())
    , m_origin(startTime(m_input->video() ? m_input->video() : m_input->audio()))
{
}

double AudioReader::duration() const
{
    const AVStream* stream = m_input->audio();
    if (stream->duration != AV_NOPTS_VALUE && stream->duration > 0)
        return startTime(stream) + static_cast<double>(stream->duration) * av_q2d(stream->time_base) -
               m_origin;
    const std::int64_t whole = m_input->format()->duration;
    return whole != AV_NOPTS_VALUE && whole > 0 ? static_cast<double>(whole) / AV_TIME_BASE : 0;
}

bool AudioReader::seek(double time)
{
    time = std::isfinite(time) ? std::max(0.0, time) : 0;
    m_wanted = std::llround(time * Sound::sampleRate);
    m_block.clear();
    // An index may lead behind the time: try from further and further back, at last from the start.
    for (const double back : {warmUp, 1.0, 5.0, 30.0}) {
        if (!decodeFrom(time - back))
            break;
        if (startOf(*m_frame) <= m_wanted || time - back <= 0)
            return true;
        if (m_input->stopped())
            return false;
    }
    return decodeFrom(-1e6);
}

/// Decodes the frame at or before a time.
bool AudioReader::decodeFrom(double time)
{
    const AVStream* stream = m_input->audio();
    const auto stamp = static_cast<std::int64_t>(std::floor((m_origin + time) / av_q2d(stream->time_base)));
    const std::int64_t first = stream->start_time == AV_NOPTS_VALUE ? 0 : stream->start_time;
    const std::int64_t to = std::max(stamp, first);
    // Transport streams have no index: a seek by time may pass over their first packets.
    const bool byPosition = to == first && (m_input->format()->iformat->flags & AVFMT_TS_DISCONT);
    if ((byPosition || avformat_seek_file(m_input->format(), stream->index, INT64_MIN, to, to, 0) < 0) &&
        av_seek_frame(m_input->format(), -1, 0, AVSEEK_FLAG_BYTE) < 0)
        return false;
    avcodec_flush_buffers(m_decoder.get());
    m_draining = m_drained = m_hasFrame = false;
    m_decodedTo = -1;
    m_inRate = 0; // a new resampler: the old one holds the end of what was before
    return decode();
}

std::int64_t AudioReader::startOf(const AVFrame& frame) const
{
    if (frame.best_effort_timestamp == AV_NOPTS_VALUE)
        return std::max<std::int64_t>(0, m_decodedTo);
    const double time =
        static_cast<double>(frame.best_effort_timestamp) * av_q2d(m_input->audio()->time_base) - m_origin;
    return std::llround(std::clamp(time, -1e6, 1e9) * Sound::sampleRate);
}

bool AudioReader::next(std::vector<float>& out)
{
    const auto channels = static_cast<std::size_t>(m_channels);
    for (;;) {
        if (m_input->stopped())
            return false;
        const auto count = static_cast<std::int64_t>(m_block.size() / channels);
        if (count > 0 && m_blockStart > m_wanted) {
            const std::int64_t gap = std::min(m_blockStart - m_wanted, silenceAtOnce);
            out.insert(out.end(), static_cast<std::size_t>(gap) * channels, 0.0f);
            m_wanted += gap;
            return true;
        }
        if (count > 0 && m_blockStart + count > m_wanted) {
            const auto skipped = static_cast<std::size_t>(m_wanted - m_blockStart) * channels;
            out.insert(out.end(), m_block.begin() + static_cast<std::ptrdiff_t>(skipped), m_block.end());
            m_wanted = m_blockStart + count;
            m_block.clear();
            return true;
        }
        m_block.clear();
        if (!convert())
            return false;
    }
}

/// The next frame, or the end of what the resampler holds, into the block; false when there is neither.
bool AudioReader::convert()
{
    if (!m_hasFrame && !decode())
        return drainResampler();
    m_hasFrame = false;
    if (!prepareResampler())
        return m_inRate == 0; // a frame that no resampler takes is left out
    const std::int64_t start = startOf(*m_frame);
    m_blockStart = m_decodedTo >= 0 && std::abs(start - m_decodedTo) <= jitter ? m_decodedTo : start;
    const int room = swr_get_out_samples(m_resampler.get(), m_frame->nb_samples);
    if (room <= 0)
        return true;
    m_converted.resize(static_cast<std::size_t>(room) * static_cast<std::size_t>(m_inChannels));
    auto* data = reinterpret_cast<std::uint8_t*>(m_converted.data());
    const int count =
        swr_convert(m_resampler.get(), &data, room, const_cast<const std::uint8_t**>(m_frame->extended_data),
                    m_frame->nb_samples);
    append(m_converted.data(), std::max(0, count), m_inChannels);
    return true;
}

bool AudioReader::drainResampler()
{
    if (m_drained || !m_resampler || m_decodedTo < 0)
        return false;
    m_drained = true;
    const int room = swr_get_out_samples(m_resampler.get(), 0);
    if (room <= 0)
        return false;
    m_converted.resize(static_cast<std::size_t>(room) * static_cast<std::size_t>(m_inChannels));
    auto* data = reinterpret_cast<std::uint8_t*>(m_converted.data());
    m_blockStart = m_decodedTo;
    append(m_converted.data(), std::max(0, swr_convert(m_resampler.get(), &data, room, nullptr, 0)),
           m_inChannels);
    return true;
}

/// Onto the block, in as many channels as the medium began with.
void AudioReader::append(const float* samples, int count, int channels)
{
    const int shared = std::min(channels, m_channels);
    m_block.assign(static_cast<std::size_t>(count) * static_cast<std::size_t>(m_channels), 0.0f);
    for (int i = 0; i < count; ++i) {
        for (int c = 0; c < shared; ++c) {
            const float value = samples[static_cast<std::ptrdiff_t>(i) * channels + c];
            m_block[static_cast<std::size_t>(i) * static_cast<std::size_t>(m_channels) +
                    static_cast<std::size_t>(c)] = std::isfinite(value) ? value : 0.0f;
        }
    }
    m_decodedTo = m_blockStart + count;
}

bool AudioReader::prepareResampler()
{
    const int channels = m_frame->ch_layout.nb_channels;
    if (m_inRate > 0 && m_inRate == m_frame->sample_rate && m_inFormat == m_frame->format &&
        m_inChannels == channels)
        return true;
    m_inRate = 0;
    if (channels < 1 || m_frame->sample_rate < 1)
        return false;
    // In and out are of one layout, so that every channel stays what it is.
    AVChannelLayout layout = {};
    if (m_frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&layout, channels);
    else
        av_channel_layout_copy(&layout, &m_frame->ch_layout);
    SwrContext* context = nullptr;
    const int made =
        swr_alloc_set_opts2(&context, &layout, AV_SAMPLE_FMT_FLT, Sound::sampleRate, &layout,
                            static_cast<AVSampleFormat>(m_frame->format), m_frame->sample_rate, 0, nullptr);
    av_channel_layout_uninit(&layout);
    m_resampler.reset(context);
    if (made < 0 || swr_init(context) < 0)
        return false;
    m_inRate = m_frame->sample_rate;
    m_inFormat = m_frame->format;
    m_inChannels = channels;
    return true;
}

bool AudioReader::decode()
{
    for (;;) {
        const int result = avcodec_receive_frame(m_decoder.get(), m_frame.get());
        if (result == AVERROR(EAGAIN)) {
            if (!m_input->feedDecoder(m_decoder.get(), m_input->audio(), m_packet.get(), m_draining))
                return false;
            continue;
        }
        if (result == AVERROR_EOF || m_input->stopped())
            return false;
        if (result >= 0 && m_frame->nb_samples > 0)
            return m_hasFrame = true;
    }
}

} // namespace vantrel::ombra

#include "ombra/decode/videoreader.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

namespace {

constexpr double decodedBefore = 1;  // seconds before a sought time from which every picture is decoded
constexpr double catchUpReach = 0.5; // seconds of pictures passed over until one is shown again
constexpr double forwardReach = 0.8; // seconds that are decoded rather than sought

/// Some containers round times to milliseconds: a time close to where the picture rate has a picture is meant
/// to be there.
double onGrid(double time, double fps)
{
    const double nearest = std::round(time * fps) / fps;
    return std::abs(nearest - time) <= std::min(PictureReader::tolerance, 0.25 / fps) ? nearest : time;
}

} // namespace

std::unique_ptr<VideoReader> VideoReader::open(std::unique_ptr<AvInput> input, std::string* error,
                                               Decoding decoding)
{
    std::unique_ptr<VideoReader> reader(new VideoReader(std::move(input), decoding));
    return reader->openDecoder(error) ? std::move(reader) : nullptr;
}

VideoReader::VideoReader(std::unique_ptr<AvInput> input, Decoding decoding)
    : m_input(std::move(input))
    , m_decoding(decoding)
    , m_card(m_input->format()->url)
    , m_packet(av_packet_alloc())
    , m_current(av_frame_alloc())
    , m_ahead(av_frame_alloc())
    , m_fps(m_input->fps())
    , m_duration(m_input->duration())
    , m_turns(m_input->quarterTurns())
{
}

bool VideoReader::openDecoder(std::string* error)
{
    const bool isForCard = m_decoding == Decoding::Usual && !m_card.hasFailed() && !m_input->isStill();
    AvPtr<AVCodecContext> decoder =
        m_input->openDecoder(m_input->video(), error, isForCard ? &m_card : nullptr);
    if (!decoder)
        return false;
    m_decoder = std::move(decoder);
    return true;
}

bool VideoReader::seek(double time, Picture& out)
{
    time = std::max(0.0, time);
    if (find(time, out))
        return true;
    const AVIOContext* disk = m_input->format()->pb;
    if (!m_input->stopped() && !(disk && disk->error)) // one that is gone says nothing of the card
        m_card.fail("no picture came of it");
    return leaveCard() && walkFromKey(time) && deliver(out);
}

bool VideoReader::find(double time, Picture& out)
{
    if (m_atStart && !decodeAhead())
        return false;
    const double from = m_hasCurrent ? m_currentTime : 0;
    const bool near = (m_hasCurrent || m_hasAhead) && time >= from - tolerance && time < from + forwardReach;
    m_atStart = false;
    return (near ? walkTo(time) : walkFromKey(time)) && deliver(out);
}

bool VideoReader::walkFromKey(double time)
{
    // Pictures that no other is built on need no decoding far before the time. Where that left out the very
    // one that still stands then, everything is decoded after all.
    const double skipped = std::min(time, m_duration > 0 ? m_duration : time) - decodedBefore;
    m_skipUntil = skipped;
    const bool found = reposition(time) && walkTo(time);
    m_skipUntil = 0;
    if (found && m_currentTime < skipped)
        return reposition(time) && walkTo(time);
    return found;
}

bool VideoReader::next(Picture& out)
{
    const bool isFirst = !m_hasCurrent;
    const double before = m_currentTime;
    if (goOn(out))
        return true;
    return leaveCard() && walkFromKey(isFirst ? 0 : before) && (isFirst ? deliver(out) : goOn(out));
}

bool VideoReader::goOn(Picture& out)
{
    m_atStart = false;
    if (!m_hasAhead && !decodeAhead())
        return false;
    stepAhead();
    decodeAhead(); // tells how long this one stands; there is none after the last
    return !isCardLost() && deliver(out);
}

bool VideoReader::catchUp(double time, Picture& out)
{
    m_atStart = false;
    const double target = std::min(time, m_currentTime + catchUpReach);
    m_skipUntil = target;
    const bool found = (m_hasAhead || decodeAhead()) && (stepAhead(), walkTo(target));
    m_skipUntil = 0;
    return (found && deliver(out)) || (leaveCard() && walkFromKey(target) && deliver(out));
}

/// Where the card has failed: another decoder, which begins anew. What is wanted is to be sought then.
bool VideoReader::leaveCard()
{
    if (!isCardLost() || m_input->stopped() || !openDecoder(nullptr))
        return false;
    m_atStart = m_hasCurrent = m_hasAhead = m_draining = false;
    if (m_start || m_untimed)
        return true;
    rewind();
    return decodeAhead(); // where the medium begins
}

void VideoReader::stepAhead()
{
    std::swap(m_current, m_ahead);
    m_currentTime = m_aheadTime;
    m_hasCurrent = true;
    m_hasAhead = false;
}

bool VideoReader::reposition(double time)
{
    // The index may point behind the time, or to a picture that does not decode: try from further and further
    // back.
    for (const double back : {0.0, 1.0, 5.0, 30.0}) {
        if (m_untimed || !m_start || back >= time + 1)
            break;
        const double unit = av_q2d(m_input->video()->time_base);
        const auto stamp = static_cast<std::int64_t>(std::floor((*m_start + time - back + tolerance) / unit));
        if (av_seek_frame(m_input->format(), m_input->video()->index, stamp, AVSEEK_FLAG_BACKWARD) < 0)
            break;
        avcodec_flush_buffers(m_decoder.get());
        m_hasCurrent = m_hasAhead = m_draining = false;
        m_lastTime = -1;
        if (decodeAhead() && !m_untimed && m_aheadTime <= time + tolerance)
            return true;
        if (m_input->stopped() || isCardLost())
            return false;
    }
    rewind();
    return decodeAhead();
}

void VideoReader::rewind()
{
    AVFormatContext* format = m_input->format();
    const std::int64_t start = m_input->video()->start_time;
    const std::int64_t first = start == AV_NOPTS_VALUE ? 0 : start;
    // Transport streams have no index: a seek by time may pass over their first pictures.
    const bool byPosition = format->iformat->flags & AVFMT_TS_DISCONT;
    if (byPosition || avformat_seek_file(format, m_input->video()->index, INT64_MIN, first, first, 0) < 0)
        av_seek_frame(format, -1, 0, AVSEEK_FLAG_BYTE);
    avcodec_flush_buffers(m_decoder.get());
    m_hasCurrent = m_hasAhead = m_draining = false;
    m_lastTime = -1;
}

bool VideoReader::walkTo(double time)
{
    for (;;) {
        if (!m_hasAhead && !decodeAhead())
            return m_hasCurrent && !m_input->stopped() && !isCardLost();
        if (m_hasCurrent && m_aheadTime > time + std::min(tolerance, 0.25 / m_fps))
            return true;
        stepAhead();
    }
}

bool VideoReader::decodeAhead()
{
    while (!isCardLost()) {
        const int result = avcodec_receive_frame(m_decoder.get(), m_ahead.get());
        if (result == AVERROR(EAGAIN)) {
            if (!feedDecoder())
                return false;
            continue;
        }
        if (result == AVERROR_EOF || m_input->stopped())
            return false;
        if (result < 0) {
            isSurvived(result); // a picture that did not decode; the next packet brings another
            continue;
        }
        const std::int64_t stamp = m_ahead->best_effort_timestamp;
        if (stamp == AV_NOPTS_VALUE) {
            m_untimed = true;
            m_aheadTime = m_lastTime < 0 ? 0 : m_lastTime + 1 / m_fps;
        } else {
            const double time = static_cast<double>(stamp) * av_q2d(m_input->video()->time_base);
            if (!m_start)
                m_start = time;
            m_aheadTime = time - *m_start;
        }
        m_lastTime = m_aheadTime;
        m_hasAhead = true;
        return true;
    }
    return false;
}

bool VideoReader::feedDecoder()
{
    return m_input->feedDecoder(
        m_decoder.get(), m_input->video(), m_packet.get(), m_draining,
        [this](const AVPacket& packet) {
            m_decoder->skip_frame = isSkipped(packet) ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
        },
        [this](int error) { return isSurvived(error); });
}

/// Of what a decoder could not do. Media are damaged, and where one is begun in its middle something is
/// usually missing: a card that does not decode says no more than that either, but in the middle of pictures.
bool VideoReader::isSurvived(int error)
{
    if (error != AVERROR_INVALIDDATA || m_lastTime >= 0)
        m_card.fail(avErrorText(error));
    return !isCardLost();
}

bool VideoReader::isSkipped(const AVPacket& packet) const
{
    return m_skipUntil > 0 && m_start && packet.pts != AV_NOPTS_VALUE &&
           static_cast<double>(packet.pts) * av_q2d(m_input->video()->time_base) - *m_start < m_skipUntil;
}

bool VideoReader::deliver(Picture& out)
{
    if (!m_card.fetch(*m_current))
        return false;
    out.image = makePicture(*m_current, m_turns, m_input->video()->sample_aspect_ratio);
    const double current = onGrid(m_currentTime, m_fps);
    const double ahead = m_hasAhead ? onGrid(m_aheadTime, m_fps) : 0;
    out.time = std::max(0.0, current);
    out.duration = m_hasAhead && ahead > current ? ahead - current : 1 / m_fps;
    return bool(out.image);
}

} // namespace vantrel::ombra

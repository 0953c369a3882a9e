#include "ombra/decode/mediaend.h"

#include "ombra/decode/avinput.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <string_view>

namespace vantrel::ombra {

namespace {

constexpr double agreement = 0.5; // seconds by which lengths may differ, as rounding and last pictures do
constexpr int halvings = 16;
constexpr auto longestSearch = std::chrono::seconds(20); // of one file
const std::atomic<bool> never{false};

/// Looks for the last packet of a file.
class EndSearch
{
public:
    explicit EndSearch(AVFormatContext* format)
        : m_format(format)
        , m_packet(av_packet_alloc())
    {
        for (unsigned i = 0; i < format->nb_streams; ++i)
            format->streams[i]->discard = AVDISCARD_DEFAULT;
        if (format->start_time != AV_NOPTS_VALUE)
            m_start = static_cast<double>(format->start_time) / AV_TIME_BASE;
    }

    /// Seconds from the start.
    double search(double announced)
    {
        if (readToEnd(announced))
            return m_end;
        double present = 0;
        double gone = announced;
        for (int i = 0; i < halvings && gone - present > 0.05 && inTime(); ++i) {
            const double middle = (present + gone) / 2;
            (readOne(middle) ? present : gone) = middle;
        }
        readToEnd(present);
        return m_end;
    }

    /// The same from the first packet on, for what has no index to seek by; nothing where that takes too
    /// long.
    std::optional<double> walk()
    {
        while (read()) {
        }
        return inTime() ? std::optional(m_end) : std::nullopt;
    }

private:
    bool seek(double time)
    {
        const auto stamp = static_cast<std::int64_t>((m_start + time) * AV_TIME_BASE);
        return av_seek_frame(m_format, -1, stamp, AVSEEK_FLAG_BACKWARD) >= 0;
    }

    /// The next whole packet of pictures or sound.
    bool read()
    {
        for (int damaged = 0; damaged < 100 && inTime();) {
            const int result = av_read_frame(m_format, m_packet.get());
            if (result == AVERROR(EAGAIN) || result == AVERROR_INVALIDDATA) {
                ++damaged;
                continue;
            }
            if (result < 0)
                return false;
            const bool whole = note();
            av_packet_unref(m_packet.get());
            if (whole)
                return true;
        }
        return false;
    }

    bool note()
    {
        const AVStream* stream = m_format->streams[m_packet->stream_index];
        const std::int64_t stamp = m_packet->pts != AV_NOPTS_VALUE ? m_packet->pts : m_packet->dts;
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_DATA || (m_packet->flags & AV_PKT_FLAG_CORRUPT))
            return false;
        if (stamp != AV_NOPTS_VALUE) {
            const auto end = static_cast<double>(stamp + std::max<std::int64_t>(0, m_packet->duration));
            m_end = std::max(m_end, end * av_q2d(stream->time_base) - m_start);
        }
        return true;
    }

    bool readOne(double time) { return seek(time) && read(); }

    bool readToEnd(double from)
    {
        if (!readOne(from))
            return false;
        while (read()) {
        }
        return true;
    }

    bool inTime() const { return std::chrono::steady_clock::now() < m_deadline; }

    AVFormatContext* m_format;
    AvPtr<AVPacket> m_packet;
    double m_start = 0;
    double m_end = 0;
    std::chrono::steady_clock::time_point m_deadline = std::chrono::steady_clock::now() + longestSearch;
};

/// The bytes that a file announces in its first chunk; 0 where it leaves that open. The library believes what
/// is there instead.
std::uint64_t announcedBytes(const AVFormatContext& format, const std::filesystem::path& file)
{
    const std::string_view kind = format.iformat->name;
    std::array<unsigned char, 8> head{};
    std::ifstream in(file, std::ios::binary);
    if ((kind != "wav" && kind != "aiff" && kind != "avi") ||
        !in.read(reinterpret_cast<char*>(head.data()), head.size()))
        return 0;
    std::uint64_t bytes = 0;
    for (int i = 0; i < 4; ++i) // little-endian in all but one
        bytes = bytes << 8 | head[kind == "aiff" ? 4 + i : 7 - i];
    return bytes == 0xffffffff ? 0 : bytes + head.size();
}

std::optional<CutOff> findCutChunk(const AvInput& input, const std::filesystem::path& file)
{
    std::error_code code;
    const auto present = std::filesystem::file_size(file, code);
    const std::uint64_t announced = announcedBytes(*input.format(), file);
    if (code || announced <= present)
        return std::nullopt;
    // Of sound the length follows from the bytes; an AVI file goes on saying what it said.
    const double whole =
        input.video() ? EndSearch(input.format()).search(input.duration()) : input.duration();
    const double length = whole * static_cast<double>(announced) / static_cast<double>(present);
    return length - whole > agreement ? std::optional(CutOff{whole, length}) : std::nullopt;
}

/// Where the last partition of an MXF file begins, as its first one says; 0 where that leaves it open.
std::uint64_t mxfFooter(const std::filesystem::path& file)
{
    constexpr std::size_t headAtMost = 64 * 1024; // what may stand before the first partition
    constexpr std::string_view key("\x06\x0e\x2b\x34\x02\x05\x01\x01\x0d\x01\x02\x01\x01\x02", 14);
    std::string head(headAtMost, '\0');
    std::ifstream in(file, std::ios::binary);
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    std::size_t at = head.find(key);
    if (at == head.npos || at + 17 > head.size())
        return 0;
    at += 16;
    const auto length = static_cast<unsigned char>(head[at]);
    at += 1 + (length & 0x80 ? length & 0x7f : 0);
    at += 2 + 2 + 4 + 8 + 8; // versions, grid, this partition and the one before
    std::uint64_t footer = 0;
    for (std::size_t i = 0; i < 8 && at + i < head.size(); ++i)
        footer = footer << 8 | static_cast<unsigned char>(head[at + i]);
    return at + 8 <= head.size() ? footer : 0;
}

/// Its index lies at its end: a file that is cut can only be read from its beginning.
std::optional<CutOff> findCutPartition(const AvInput& input, const std::filesystem::path& file)
{
    std::error_code code;
    const auto present = std::filesystem::file_size(file, code);
    const std::uint64_t footer = mxfFooter(file);
    if (code || footer < present)
        return std::nullopt;
    CutOff cut;
    cut.announced = input.duration();
    cut.at = EndSearch(input.format())
                 .walk()
                 .value_or(cut.announced * static_cast<double>(present) / static_cast<double>(footer));
    return cut;
}

} // namespace

std::optional<CutOff> findCutOff(const std::filesystem::path& file)
{
    const std::unique_ptr<AvInput> input = AvInput::open(file, never, nullptr);
    if (!input || input->isStill())
        return std::nullopt;
    if (std::string_view(input->format()->iformat->name) == "mxf")
        return findCutPartition(*input, file);
    if (const auto cut = findCutChunk(*input, file))
        return cut;
    AVFormatContext* format = input->format();
    if (format->duration == AV_NOPTS_VALUE || format->duration <= 0 ||
        format->duration_estimation_method != AVFMT_DURATION_FROM_STREAM)
        return std::nullopt; // worked out from what is there
    CutOff cut;
    cut.announced = static_cast<double>(format->duration) / AV_TIME_BASE;
    cut.at = EndSearch(format).search(cut.announced);
    return cut.announced - cut.at > agreement ? std::optional(cut) : std::nullopt;
}

} // namespace vantrel::ombra

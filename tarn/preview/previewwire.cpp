#include "tarn/preview/previewwire.h"

#include <algorithm>
#include <type_traits>

namespace vantrel::previewwire {

namespace {

constexpr std::uint32_t magic = 'O' | 'P' << 8 | 'V' << 16 | 'W' << 24;
constexpr std::uint16_t version = 1;

template <typename T>
T readNumber(const std::uint8_t* at)
{
    std::make_unsigned_t<T> value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        value = static_cast<std::make_unsigned_t<T>>(value | std::make_unsigned_t<T>{at[i]} << 8 * i);
    return static_cast<T>(value);
}

template <typename T>
void writeNumber(std::string& out, T value)
{
    for (std::size_t i = 0; i < sizeof(T); ++i)
        out += static_cast<char>(static_cast<std::make_unsigned_t<T>>(value) >> 8 * i & 0xff);
}

const char* faultOf(const Header& header)
{
    if (header.width < 1 || header.height < 1 || header.width > maxSide || header.height > maxSide)
        return "a picture of no or of too large a size";
    if (header.sourceLength > maxSource)
        return "a source path that is too long";
    if (header.pixelLength > maxPixels)
        return "a picture of too many bytes";
    if (std::uint64_t{header.height} * header.bytesPerLine != header.pixelLength)
        return "pixels that do not fill the picture";
    if (header.format == Surface::formatRgb24 && header.bytesPerLine < header.width * 3)
        return "lines that are too short";
    return nullptr;
}

} // namespace

bool parseHeader(std::span<const std::uint8_t, headerSize> bytes, Header& out, std::string& why)
{
    const std::uint8_t* at = bytes.data();
    if (readNumber<std::uint32_t>(at) != magic || readNumber<std::uint16_t>(at + 4) != version) {
        why = "no preview frame of version 1";
        return false;
    }
    Header header;
    header.format = readNumber<std::uint16_t>(at + 6);
    header.width = readNumber<std::uint32_t>(at + 8);
    header.height = readNumber<std::uint32_t>(at + 12);
    header.bytesPerLine = readNumber<std::uint32_t>(at + 16);
    header.streamIndex = readNumber<std::int32_t>(at + 20);
    header.time = readNumber<std::int64_t>(at + 24);
    header.sourceLength = readNumber<std::uint32_t>(at + 32);
    header.pixelLength = readNumber<std::uint32_t>(at + 36);
    if (const char* fault = faultOf(header)) {
        why = fault;
        return false;
    }
    out = header;
    return true;
}

std::string encode(const PreviewFrame& frame)
{
    const Surface* surface = frame.frame.getSurface();
    if (!surface || surface->width < 0 || surface->height < 0 || surface->bytesPerLine < 0 ||
        surface->pixels.size() > maxPixels || frame.source.size() > maxSource)
        return {};
    Header header;
    header.format = static_cast<std::uint16_t>(surface->format);
    header.width = static_cast<std::uint32_t>(surface->width);
    header.height = static_cast<std::uint32_t>(surface->height);
    header.bytesPerLine = static_cast<std::uint32_t>(surface->bytesPerLine);
    header.sourceLength = static_cast<std::uint32_t>(frame.source.size());
    header.pixelLength = static_cast<std::uint32_t>(surface->pixels.size());
    if (faultOf(header))
        return {};

    std::string out;
    out.reserve(headerSize + header.sourceLength + header.pixelLength);
    writeNumber(out, magic);
    writeNumber(out, version);
    writeNumber(out, header.format);
    writeNumber(out, header.width);
    writeNumber(out, header.height);
    writeNumber(out, header.bytesPerLine);
    writeNumber(out, static_cast<std::int32_t>(frame.frame.getStreamIndex()));
    writeNumber(out, static_cast<std::int64_t>(frame.frame.getTime()));
    writeNumber(out, header.sourceLength);
    writeNumber(out, header.pixelLength);
    out += frame.source;
    out.append(reinterpret_cast<const char*>(surface->pixels.data()), surface->pixels.size());
    return out;
}

std::size_t Decoder::stageSize() const
{
    switch (m_stage) {
    case Stage::Header:
        return headerSize;
    case Stage::Source:
        return m_source.size();
    case Stage::Pixels:
        return m_surface ? m_surface->pixels.size() : 0;
    }
    return 0;
}

std::span<std::uint8_t> Decoder::space()
{
    std::uint8_t* start = m_bytes.data();
    if (m_stage == Stage::Source)
        start = reinterpret_cast<std::uint8_t*>(m_source.data());
    else if (m_stage == Stage::Pixels)
        start = m_surface ? m_surface->pixels.data() : nullptr;
    return {start + m_filled, stageSize() - m_filled};
}

bool Decoder::enter(Stage stage)
{
    m_stage = stage;
    m_filled = 0;
    if (stage == Stage::Source) {
        if (!parseHeader(m_bytes, m_header, m_message))
            return false;
        m_source.assign(m_header.sourceLength, '\0');
    } else if (stage == Stage::Pixels) {
        m_surface = makeRef<Surface>();
        m_surface->format = m_header.format;
        m_surface->width = static_cast<int>(m_header.width);
        m_surface->height = static_cast<int>(m_header.height);
        m_surface->bytesPerLine = static_cast<int>(m_header.bytesPerLine);
        m_surface->pixels.resize(m_header.pixelLength);
    }
    return true;
}

Decoder::Result Decoder::commit(std::size_t count)
{
    if (!m_message.empty())
        return Result::Error;
    m_filled += std::min(count, stageSize() - m_filled);
    while (m_filled == stageSize()) {
        if (m_stage == Stage::Pixels)
            return Result::Frame;
        if (!enter(m_stage == Stage::Header ? Stage::Source : Stage::Pixels))
            return Result::Error;
    }
    return Result::NeedMore;
}

PreviewFrame Decoder::take()
{
    PreviewFrame taken{std::move(m_source), Frame(m_surface.get(), m_header.time)};
    taken.frame.setStreamIndex(m_header.streamIndex);
    m_surface = {};
    m_source.clear();
    m_stage = Stage::Header;
    m_filled = 0;
    return taken;
}

} // namespace vantrel::previewwire

#include "tarn/net/linkframe.h"

#include "tarn/log/log.h"

namespace vantrel::linkframe {

namespace {

void appendFrame(std::string& out, const std::string& text)
{
    const auto length = static_cast<std::uint32_t>(text.size());
    for (int shift = 24; shift >= 0; shift -= 8)
        out += static_cast<char>(length >> shift & 0xff);
    out += text;
}

void appendFrames(std::string& out, const Patch& patch)
{
    const std::string text = patch.toString();
    if (text.size() <= maxPayload) {
        appendFrame(out, text);
        return;
    }
    if (patch.size() < 2) {
        Log::write_fmt(LogLevel::Error, {}, "net", "An operation of %zu bytes is too large for the link",
                       text.size());
        return;
    }
    // Operations apply one after the other, so that two frames say the same as one.
    Patch halves[2];
    for (std::size_t i = 0; i < patch.size(); ++i)
        halves[i < patch.size() / 2 ? 0 : 1].append(patch[i]);
    appendFrames(out, halves[0]);
    appendFrames(out, halves[1]);
}

} // namespace

std::string encode(const Patch& patch)
{
    std::string out;
    appendFrames(out, patch);
    return out;
}

void Decoder::feed(std::string_view bytes)
{
    if (m_offset > 0 && m_offset >= m_buffer.size() / 2) {
        m_buffer.erase(0, m_offset);
        m_offset = 0;
    }
    m_buffer.append(bytes);
    // Room for all of a large frame at once: to grow step by step would copy it again and again.
    const auto length = nextLength();
    if (length && *length <= maxPayload && m_offset + headerSize + *length > m_buffer.capacity())
        m_buffer.reserve(m_offset + headerSize + *length);
}

/// As its header says; nothing as long as that is not there.
std::optional<std::size_t> Decoder::nextLength() const
{
    if (m_buffer.size() - m_offset < headerSize)
        return std::nullopt;
    std::size_t length = 0;
    for (std::size_t i = 0; i < headerSize; ++i)
        length = length << 8 | static_cast<std::uint8_t>(m_buffer[m_offset + i]);
    return length;
}

std::size_t Decoder::nextSize() const
{
    const auto length = nextLength();
    return length && m_buffer.size() - m_offset - headerSize >= *length ? headerSize + *length : 0;
}

std::size_t Decoder::waitingSize() const
{
    return m_buffer.size() > m_offset ? headerSize + nextLength().value_or(0) : 0;
}

Decoder::Result Decoder::next(Patch& out)
{
    if (!m_message.empty())
        return Result::Error;
    const auto announced = nextLength();
    if (!announced)
        return Result::NeedMore;
    const std::size_t length = *announced;
    const std::string_view left = std::string_view(m_buffer).substr(m_offset);
    if (length > maxPayload) {
        m_message = "a frame of " + std::to_string(length) + " bytes is too large";
        return Result::Error;
    }
    if (left.size() - headerSize < length)
        return Result::NeedMore;
    std::string why;
    Patch patch;
    if (!Patch::parseString(left.substr(headerSize, length), patch, &why)) {
        m_message = why.empty() ? "a frame is no patch" : why;
        return Result::Error;
    }
    out = std::move(patch);
    m_offset += headerSize + length;
    if (m_offset == m_buffer.size()) {
        m_buffer.clear();
        m_offset = 0;
        if (m_buffer.capacity() > keptCapacity)
            m_buffer.shrink_to_fit();
    }
    return Result::Patch;
}

} // namespace vantrel::linkframe

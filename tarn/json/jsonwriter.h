#pragma once

#include "tarn/json/json.h"

#include <string>

namespace vantrel {

/// Writes values as RFC 8259 text, piece by piece. One use each.
class [[gnu::visibility("hidden")]] JsonWriter
{
public:
    explicit JsonWriter(bool pretty)
        : m_pretty(pretty)
    {
    }

    void value(const Json& json);
    void text(std::string_view text);
    /// As it stands: what is between values is the caller's.
    void put(char c)
    {
        *room(1) = c;
        ++m_used;
    }
    /// No longer than the buffer.
    void put(std::string_view piece);
    /// All that was written.
    std::string take();

private:
    void container(const Json& json);
    void entries(const JsonNode& node, bool first);
    static bool copyPlain(char* to, std::string_view text) noexcept;
    void escapedText(std::string_view text);
    void whole(std::uint64_t number, bool negative);
    void real(double number);
    void lineBreak();
    void flush();
    /// Where to write up to bytes (no more than the buffer) more.
    char* room(std::size_t bytes)
    {
        if (bufferSize - m_used < bytes)
            flush();
        return m_buffer + m_used;
    }

    static constexpr std::size_t bufferSize = 16384;
    std::string m_out;
    std::size_t m_used = 0;
    unsigned m_depth = 0;
    bool m_pretty;
    char m_buffer[bufferSize];
};

} // namespace vantrel

#include "tarn/json/jsonwriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace vantrel {

namespace {

/// For each byte: 0 when it stands for itself in a string, else the letter after the backslash.
constexpr std::array<char, 256> makeEscapes()
{
    std::array<char, 256> table{};
    for (unsigned c = 0; c < 0x20; ++c)
        table[c] = 'u';
    table['\b'] = 'b';
    table['\f'] = 'f';
    table['\n'] = 'n';
    table['\r'] = 'r';
    table['\t'] = 't';
    table['"'] = '"';
    table['\\'] = '\\';
    return table;
}

constexpr std::array<char, 256> escapes = makeEscapes();

} // namespace

std::string JsonWriter::write(const Json& json)
{
    value(json);
    m_out.append(m_buffer, m_used);
    return std::move(m_out);
}

/// Where to write up to bytes (no more than the buffer) more.
char* JsonWriter::room(std::size_t bytes)
{
    if (bufferSize - m_used < bytes) {
        m_out.append(m_buffer, m_used);
        m_used = 0;
    }
    return m_buffer + m_used;
}

void JsonWriter::put(std::string_view piece)
{
    while (!piece.empty()) {
        const std::size_t part = std::min(piece.size(), bufferSize / 2);
        std::memcpy(room(part), piece.data(), part);
        m_used += part;
        piece.remove_prefix(part);
    }
}

void JsonWriter::value(const Json& json)
{
    switch (json.type()) {
    case JsonType::Null:
        put("null");
        break;
    case JsonType::Bool:
        put(json.asBool() ? "true" : "false");
        break;
    case JsonType::Int: {
        char* const at = room(24);
        const auto number = json.asUInt();
        const bool natural = number > 0 || json.asInt() == 0;
        const auto end =
            natural ? std::to_chars(at, at + 24, number) : std::to_chars(at, at + 24, json.asInt());
        m_used += static_cast<std::size_t>(end.ptr - at);
        break;
    }
    case JsonType::Double:
        real(json.asDouble());
        break;
    case JsonType::String:
        text(json.stringView());
        break;
    case JsonType::Object:
        object(json);
        break;
    case JsonType::Array:
        array(json);
        break;
    }
}

void JsonWriter::lineBreak()
{
    put('\n');
    for (unsigned i = 0; i < m_depth; ++i)
        put("  ");
}

void JsonWriter::object(const Json& json)
{
    put('{');
    ++m_depth;
    bool first = true;
    json.forEachMember([&](std::string_view key, const Json& member) {
        if (!first)
            put(',');
        first = false;
        if (m_pretty)
            lineBreak();
        text(key);
        put(m_pretty ? std::string_view(": ") : std::string_view(":"));
        value(member);
    });
    --m_depth;
    if (m_pretty && !first)
        lineBreak();
    put('}');
}

void JsonWriter::array(const Json& json)
{
    put('[');
    ++m_depth;
    bool first = true;
    json.forEachItem([&](const Json& item) {
        if (!first)
            put(',');
        first = false;
        if (m_pretty)
            lineBreak();
        value(item);
    });
    --m_depth;
    if (m_pretty && !first)
        lineBreak();
    put(']');
}

void JsonWriter::text(std::string_view text)
{
    put('"');
    while (!text.empty()) {
        const std::size_t part = std::min(text.size(), bufferSize / 8);
        char* at = room(part * 6);
        for (std::size_t i = 0; i < part; ++i) {
            const char c = text[i];
            const char escape = escapes[static_cast<unsigned char>(c)];
            if (escape == 0) {
                *at++ = c;
                continue;
            }
            *at++ = '\\';
            *at++ = escape;
            if (escape == 'u') {
                constexpr std::string_view digits = "0123456789abcdef";
                *at++ = '0';
                *at++ = '0';
                *at++ = digits[static_cast<unsigned char>(c) >> 4];
                *at++ = digits[c & 15];
            }
        }
        m_used = static_cast<std::size_t>(at - m_buffer);
        text.remove_prefix(part);
    }
    put('"');
}

/// The shortest text that reads back as the same double, and as a double: "1.0", not "1".
void JsonWriter::real(double number)
{
    char* const at = room(40);
    char* end = nullptr;
    // Few decimals, as times have: a quotient of two integers that are exact is rounded once, as reading is.
    const double thousandths = number * 1000;
    if (std::fabs(thousandths) < 1e14 && std::nearbyint(thousandths) / 1000 == number && number != 0) {
        auto whole = static_cast<std::int64_t>(std::nearbyint(thousandths));
        end = at;
        if (whole < 0)
            *end++ = '-', whole = -whole;
        end = std::to_chars(end, at + 30, whole / 1000).ptr;
        const auto fraction = static_cast<int>(whole % 1000);
        *end++ = '.';
        *end++ = static_cast<char>('0' + fraction / 100);
        *end++ = static_cast<char>('0' + fraction / 10 % 10);
        *end++ = static_cast<char>('0' + fraction % 10);
        while (end[-1] == '0' && end[-2] != '.')
            --end;
    } else {
        end = std::to_chars(at, at + 32, number).ptr;
        if (std::string_view(at, end).find_first_of(".e") == std::string_view::npos)
            *end++ = '.', *end++ = '0';
    }
    m_used += static_cast<std::size_t>(end - at);
}

} // namespace vantrel

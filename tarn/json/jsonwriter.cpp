#include "tarn/json/jsonwriter.h"

#include "tarn/json/swar.h"

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

/// The two digits of each number below 100.
constexpr std::array<char, 200> makePairs()
{
    std::array<char, 200> pairs{};
    for (unsigned i = 0; i < 100; ++i) {
        pairs[i * 2] = static_cast<char>('0' + i / 10);
        pairs[i * 2 + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}

constexpr std::array<char, 200> digitPairs = makePairs();

char* writeNatural(char* at, std::uint64_t number) noexcept
{
    if (number < 10) {
        *at = static_cast<char>('0' + number);
        return at + 1;
    }
    if (number < 100) {
        std::memcpy(at, &digitPairs[number * 2], 2);
        return at + 2;
    }
    return std::to_chars(at, at + 20, number).ptr;
}

} // namespace

std::string JsonWriter::take()
{
    flush();
    return std::move(m_out);
}

void JsonWriter::flush()
{
    m_out.append(m_buffer, m_used);
    m_used = 0;
}

void JsonWriter::put(std::string_view piece)
{
    std::memcpy(room(piece.size()), piece.data(), piece.size());
    m_used += piece.size();
}

void JsonWriter::value(const Json& json)
{
    using Tag = Json::Tag;
    const auto& payload = json.m_wide.payload;
    switch (json.m_wide.tag) {
    case Tag::Null:
        put(std::string_view("null"));
        break;
    case Tag::Bool:
        put(payload.integer != 0 ? std::string_view("true") : std::string_view("false"));
        break;
    case Tag::Int:
        whole(payload.integer < 0 ? 0 - payload.natural : payload.natural, payload.integer < 0);
        break;
    case Tag::Natural:
        whole(payload.natural, false);
        break;
    case Tag::Double:
        real(payload.real);
        break;
    case Tag::Short:
    case Tag::Text:
        text(json.stringView());
        break;
    case Tag::Object:
    case Tag::Array:
        container(json);
        break;
    }
}

void JsonWriter::lineBreak()
{
    put('\n');
    for (unsigned i = 0; i < m_depth; ++i)
        put(std::string_view("  "));
}

void JsonWriter::container(const Json& json)
{
    const bool isObject = json.m_wide.tag == Json::Tag::Object;
    put(isObject ? '{' : '[');
    if (const JsonNode* root = JsonNode::of(json)) {
        ++m_depth;
        entries(*root, true);
        --m_depth;
        if (m_pretty)
            lineBreak();
    }
    put(isObject ? '}' : ']');
}

/// What stands below a node; first: whether nothing of its container came before.
void JsonWriter::entries(const JsonNode& node, bool first)
{
    for (unsigned i = 0; i < node.count; ++i, first = false) {
        if (node.level > 0) {
            entries(*JsonNode::of(node.value(i)), first);
            continue;
        }
        if (!first)
            put(',');
        if (m_pretty)
            lineBreak();
        if (node.width == 2) {
            text(node.key(i).stringView());
            put(':');
            if (m_pretty)
                put(' ');
        }
        value(node.value(i));
    }
}

void JsonWriter::text(std::string_view text)
{
    if (text.size() > bufferSize / 2) {
        escapedText(text);
        return;
    }
    char* const at = room(text.size() + 2);
    *at = '"';
    if (!copyPlain(at + 1, text)) {
        escapedText(text);
        return;
    }
    at[text.size() + 1] = '"';
    m_used += text.size() + 2;
}

/// Copies text; false when a byte of it needs an escape.
bool JsonWriter::copyPlain(char* to, std::string_view text) noexcept
{
    const char* const from = text.data();
    const std::size_t size = text.size();
    std::uint64_t found = 0;
    if (size < 8) {
        for (std::size_t i = 0; i < size; ++i) {
            to[i] = from[i];
            found |= static_cast<unsigned char>(escapes[static_cast<unsigned char>(from[i])]);
        }
        return found == 0;
    }
    const auto copy = [&](std::size_t offset) {
        std::uint64_t word = 0;
        std::memcpy(&word, from + offset, sizeof word);
        std::memcpy(to + offset, &word, sizeof word);
        found |= swar::quotes(word);
    };
    for (std::size_t i = 0; i + 8 < size; i += 8)
        copy(i);
    copy(size - 8); // what is left, over what is already there
    return found == 0;
}

void JsonWriter::escapedText(std::string_view text)
{
    put('"');
    for (const char c : text) {
        const char escape = escapes[static_cast<unsigned char>(c)];
        char* at = room(6);
        if (escape == 0) {
            *at++ = c;
        } else {
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
    }
    put('"');
}

void JsonWriter::whole(std::uint64_t number, bool negative)
{
    char* at = room(24);
    if (negative)
        *at++ = '-';
    m_used = static_cast<std::size_t>(writeNatural(at, number) - m_buffer);
}

/// The shortest text that reads back as the same double, and as a double: "1.0", not "1".
void JsonWriter::real(double number)
{
    char* at = room(40);
    // Few decimals, as times have: a quotient of two integers that are exact is rounded once, as reading is.
    const double magnitude = std::fabs(number);
    const auto thousandths = magnitude < 1e11 ? static_cast<std::uint64_t>(magnitude * 1000 + 0.5) : 0;
    if (thousandths != 0 && static_cast<double>(static_cast<std::int64_t>(thousandths)) / 1000 == magnitude) {
        if (number < 0)
            *at++ = '-';
        at = writeNatural(at, thousandths / 1000);
        const auto fraction = static_cast<unsigned>(thousandths % 1000);
        *at++ = '.';
        *at++ = static_cast<char>('0' + fraction / 100);
        if (fraction % 100 != 0) {
            std::memcpy(at, &digitPairs[std::size_t(fraction % 100) * 2], 2);
            at += fraction % 10 != 0 ? 2 : 1;
        }
    } else {
        char* const start = at;
        at = std::to_chars(at, at + 32, number).ptr;
        if (std::string_view(start, at).find_first_of(".e") == std::string_view::npos) {
            *at++ = '.';
            *at++ = '0';
        }
    }
    m_used = static_cast<std::size_t>(at - m_buffer);
}

} // namespace vantrel

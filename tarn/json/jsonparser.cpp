#include "tarn/json/jsonparser.h"

#include "tarn/json/jsonname.h"
#include "tarn/json/jsontree.h"
#include "tarn/json/swar.h"
#include "tarn/json/utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <new>

namespace vantrel {

namespace {

bool isDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

} // namespace

JsonParser::~JsonParser()
{
    for (std::size_t i = 0; i < m_size; ++i)
        m_stack[i].~Json();
    std::free(m_stack);
}

bool JsonParser::parse(Json& out, std::string* error)
{
    skipBlanks();
    bool good = value();
    if (good) {
        skipBlanks();
        good = m_at == m_end || fail("text after the value");
    }
    if (!good) {
        if (error)
            *error = std::string(m_what) + " at byte " + std::to_string(m_at - m_begin);
        return false;
    }
    out = std::move(m_stack[0]);
    return true;
}

bool JsonParser::fail(const char* what)
{
    m_what = what;
    return false;
}

void JsonParser::grow()
{
    const std::size_t grown = m_capacity < 64 ? 128 : m_capacity * 2;
    void* memory = std::realloc(static_cast<void*>(m_stack), grown * sizeof(Json));
    if (!memory)
        throw std::bad_alloc();
    m_stack = static_cast<Json*>(memory);
    m_capacity = grown;
}

bool JsonParser::value()
{
    if (m_at == m_end)
        return fail("unexpected end");
    switch (*m_at) {
    case '{':
        return object();
    case '[':
        return array();
    case '"':
        ++m_at;
        return string(Role::Value);
    case 't':
        return literal("true", true);
    case 'f':
        return literal("false", false);
    case 'n':
        return literal("null", Json());
    default:
        return *m_at == '-' || isDigit(*m_at) ? number() : fail("unexpected character");
    }
}

bool JsonParser::literal(std::string_view word, Json value)
{
    if (static_cast<std::size_t>(m_end - m_at) < word.size() || std::string_view(m_at, word.size()) != word)
        return fail("unexpected character");
    m_at += word.size();
    push(std::move(value));
    return true;
}

bool JsonParser::object()
{
    if (m_depth == Json::maxDepth)
        return fail("nested too deep");
    ++m_depth;
    ++m_at;
    const std::size_t base = m_size;
    skipBlanks();
    if (!next('}') && !members())
        return false;
    --m_depth;
    return closeObject(base);
}

bool JsonParser::members()
{
    do {
        skipBlanks();
        if (!next('"'))
            return fail("a member's name expected");
        if (!string(Role::Key))
            return false;
        skipBlanks();
        if (!next(':'))
            return fail("':' expected");
        skipBlanks();
        if (!value())
            return false;
        skipBlanks();
    } while (next(','));
    return next('}') || fail("',' or '}' expected");
}

bool JsonParser::closeObject(std::size_t base)
{
    struct Member
    {
        Json key;
        Json value;
    };
    const std::size_t count = (m_size - base) / 2;
    auto* const first = reinterpret_cast<Member*>(m_stack + base);
    const auto before = [](const Member& a, const Member& b) { return JsonName::compare(a.key, b.key) < 0; };
    const auto inOrder = [&] {
        for (std::size_t i = 1; i < count; ++i) {
            if (!before(first[i - 1], first[i]))
                return false;
        }
        return true;
    };
    if (!inOrder()) {
        std::sort(first, first + count, before);
        if (!inOrder())
            return fail("a member given twice");
    }
    Json built = JsonTree::build(JsonType::Object, m_stack + base, count);
    m_size = base;
    push(std::move(built));
    return true;
}

bool JsonParser::array()
{
    if (m_depth == Json::maxDepth)
        return fail("nested too deep");
    ++m_depth;
    ++m_at;
    const std::size_t base = m_size;
    skipBlanks();
    if (!next(']')) {
        do {
            skipBlanks();
            if (!value())
                return false;
            skipBlanks();
        } while (next(','));
        if (!next(']'))
            return fail("',' or ']' expected");
    }
    --m_depth;
    Json built = JsonTree::build(JsonType::Array, m_stack + base, m_size - base);
    m_size = base;
    push(std::move(built));
    return true;
}

/// Past the bytes that stand for themselves: to a quote, a backslash, or what may not be in a string.
const char* JsonParser::plainRun(const char* p) const noexcept
{
    for (;;) {
        while (m_end - p >= 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, p, sizeof word);
            if (const std::uint64_t found = swar::stops(word)) {
                p += swar::firstMark(found);
                break;
            }
            p += 8;
        }
        while (p < m_end && *p != '"' && *p != '\\' && static_cast<signed char>(*p) >= 0x20)
            ++p;
        if (p == m_end || static_cast<signed char>(*p) >= 0)
            return p;
        const char* const after = utf8::skipSequence(p, m_end);
        if (!after)
            return p;
        p = after;
    }
}

/// Takes a string of ASCII that fits into the value itself, if one stands here; most do.
bool JsonParser::shortString()
{
    constexpr std::size_t room = sizeof(Json::Short::text);
    if (m_end - m_at < 16)
        return false;
    std::uint64_t words[2];
    std::memcpy(words, m_at, sizeof words);
    std::size_t size = 0;
    if (const std::uint64_t low = swar::stops(words[0])) {
        size = swar::firstMark(low);
        words[0] = swar::firstBytes(words[0], size);
        words[1] = 0;
    } else if (const std::uint64_t high = swar::stops(words[1])) {
        size = swar::firstMark(high);
        words[1] = swar::firstBytes(words[1], size);
        size += 8;
    } else {
        return false;
    }
    if (size > room || m_at[size] != '"')
        return false;
    if (m_size == m_capacity)
        grow();
    Json* json = new (m_stack + m_size++) Json;
    json->m_short.tag = Json::Tag::Short;
    json->m_short.size = static_cast<std::uint8_t>(size);
    std::memcpy(json->m_short.text, words, room);
    m_at += size + 1;
    return true;
}

bool JsonParser::string(Role role)
{
    if (shortString())
        return true;
    const char* const start = m_at;
    m_at = plainRun(start);
    if (m_at == m_end || *m_at != '"')
        return escapedString(start, role);
    const std::string_view text(start, static_cast<std::size_t>(m_at - start));
    ++m_at;
    push(role == Role::Key ? JsonTree::makeKey(text) : JsonTree::makeText(text));
    return true;
}

bool JsonParser::escapedString(const char* start, Role role)
{
    m_text.assign(start, m_at);
    for (;;) {
        if (m_at == m_end)
            return fail("unexpected end in a string");
        if (*m_at == '"')
            break;
        if (*m_at != '\\')
            return fail(static_cast<signed char>(*m_at) < 0 ? "text that is no UTF-8"
                                                            : "control character in a string");
        ++m_at;
        if (!escape())
            return false;
        start = m_at;
        m_at = plainRun(start);
        m_text.append(start, m_at);
    }
    ++m_at;
    push(role == Role::Key ? JsonTree::makeKey(m_text) : JsonTree::makeText(m_text));
    return true;
}

bool JsonParser::escape()
{
    if (m_at == m_end)
        return fail("unexpected end in a string");
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    const char letter = *m_at;
    if (const auto i = letters.find(letter); i != std::string_view::npos) {
        ++m_at;
        m_text += meanings[i];
        return true;
    }
    if (letter != 'u')
        return fail("unknown escape");
    ++m_at;
    char32_t unit = 0;
    if (!hexQuad(unit))
        return false;
    if (unit >= 0xDC00 && unit <= 0xDFFF)
        return fail("lone surrogate");
    if (unit >= 0xD800 && unit <= 0xDBFF) {
        char32_t low = 0;
        if (m_end - m_at < 2 || m_at[0] != '\\' || m_at[1] != 'u')
            return fail("lone surrogate");
        m_at += 2;
        if (!hexQuad(low))
            return false;
        if (low < 0xDC00 || low > 0xDFFF)
            return fail("lone surrogate");
        unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    utf8::append(m_text, unit);
    return true;
}

bool JsonParser::hexQuad(char32_t& out)
{
    std::uint32_t unit = 0;
    if (m_end - m_at < 4)
        return fail("unexpected end in a string");
    const auto [end, code] = std::from_chars(m_at, m_at + 4, unit, 16);
    if (code != std::errc() || end != m_at + 4)
        return fail("four hexadecimal digits expected");
    m_at += 4;
    out = unit;
    return true;
}

/// Reads digits on into number, which means nothing past its range.
bool JsonParser::digits(std::uint64_t& number)
{
    const char* p = m_at;
    while (p < m_end && isDigit(*p))
        number = number * 10 + static_cast<std::uint64_t>(*p++ - '0');
    if (p == m_at)
        return fail("a digit expected");
    m_at = p;
    return true;
}

bool JsonParser::number()
{
    const char* const start = m_at;
    std::uint64_t magnitude = 0;
    next('-');
    if (next('0')) {
        if (m_at < m_end && isDigit(*m_at))
            return fail("a number with a leading zero");
    } else if (!digits(magnitude)) {
        return false;
    }
    if (m_at < m_end && (*m_at == '.' || *m_at == 'e' || *m_at == 'E'))
        return fractionOrExponent(start, magnitude);
    return wholeNumber(start, magnitude);
}

bool JsonParser::wholeNumber(const char* start, std::uint64_t magnitude)
{
    const bool negative = *start == '-';
    if (negative && magnitude == 0) {
        push(Json(-0.0));
    } else if (m_at - start <= 18) {
        const auto integer = static_cast<std::int64_t>(magnitude);
        push(Json(negative ? -integer : integer));
    } else if (negative) {
        std::int64_t integer = 0;
        if (std::from_chars(start, m_at, integer).ec != std::errc())
            return fail("a number out of range");
        push(Json(integer));
    } else {
        std::uint64_t natural = 0;
        if (std::from_chars(start, m_at, natural).ec != std::errc())
            return fail("a number out of range");
        push(Json(natural));
    }
    return true;
}

bool JsonParser::fractionOrExponent(const char* start, std::uint64_t mantissa)
{
    static constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
    std::size_t decimals = 0;
    if (next('.')) {
        const char* const first = m_at;
        if (!digits(mantissa))
            return false;
        decimals = static_cast<std::size_t>(m_at - first);
    }
    if (next('e') || next('E')) {
        std::uint64_t exponent = 0;
        if (!next('+'))
            next('-');
        if (!digits(exponent))
            return false;
    } else if (m_at - start <= 16) {
        // Up to 15 digits: both integers are exact, so that their quotient is rounded once.
        const double magnitude = static_cast<double>(static_cast<std::int64_t>(mantissa)) / powers[decimals];
        push(Json(*start == '-' ? -magnitude : magnitude));
        return true;
    }
    double real = 0;
    if (std::from_chars(start, m_at, real).ec != std::errc())
        return fail("a number out of range");
    push(Json(real));
    return true;
}

} // namespace vantrel

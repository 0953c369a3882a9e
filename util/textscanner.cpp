#include "util/textscanner.h"

#include <cctype>
#include <limits>

namespace vantrel::util {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

std::optional<std::int64_t> TextScanner::number()
{
    std::string_view text = m_rest;
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())))
        text.remove_prefix(1);
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    if (text.empty() || !isDigit(text.front()))
        return std::nullopt;

    constexpr std::int64_t limit = (std::numeric_limits<std::int64_t>::max() - 9) / 10;
    std::int64_t value = 0;
    bool overflow = false;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
        overflow = overflow || value > limit;
        if (!overflow)
            value = value * 10 + (text.front() - '0');
    }
    if (overflow)
        value = std::numeric_limits<std::int64_t>::max();
    m_rest = text;
    return negative ? -value : value;
}

std::optional<char> TextScanner::character()
{
    if (m_rest.empty())
        return std::nullopt;
    const char c = m_rest.front();
    m_rest.remove_prefix(1);
    return c;
}

bool TextScanner::literal(char expected)
{
    if (m_rest.empty() || m_rest.front() != expected)
        return false;
    m_rest.remove_prefix(1);
    return true;
}

} // namespace vantrel::util

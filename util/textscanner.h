#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vantrel::util {

/// Reads numbers and marks off the front of a text with the habits of scanf, but defined for every input:
/// blanks before a number are skipped, and a number too large for its type keeps its low bits.
class TextScanner
{
public:
    explicit TextScanner(std::string_view text)
        : m_rest(text)
    {
    }

    /// A decimal number with an optional sign; nothing when there is none, and then the text stays as it was.
    std::optional<std::int64_t> number();
    /// Whatever character comes next, blanks included.
    std::optional<char> character();
    /// True, and passed over, when this character comes next.
    bool literal(char expected);

private:
    std::string_view m_rest;
};

} // namespace vantrel::util

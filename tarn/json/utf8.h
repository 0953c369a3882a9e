#pragma once

#include <string>
#include <string_view>

namespace vantrel::utf8 {

/// Past the well-formed sequence of two to four bytes that begins at p; null when there is none (Unicode 15,
/// table 3-7).
const char* skipSequence(const char* p, const char* end) noexcept;

bool isValid(std::string_view text) noexcept;

/// With U+FFFD for each byte that belongs to no well-formed sequence.
std::string repaired(std::string_view text);

void append(std::string& out, char32_t codePoint);

} // namespace vantrel::utf8

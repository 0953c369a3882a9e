#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::base64 {

/// RFC 4648, section 4, with padding.
std::string encode(std::span<const std::uint8_t> bytes);
/// Strict: whole groups, padding at the end only, no blanks.
std::optional<std::vector<std::uint8_t>> decode(std::string_view text);

} // namespace vantrel::base64

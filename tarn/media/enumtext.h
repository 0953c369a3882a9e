#pragma once

#include <cstdint>
#include <string_view>

namespace vantrel {

/// True, and the value in out, when the text is one of the enumeration's texts exactly.
template <typename T>
bool fromStr(std::string_view text, T& out);
/// The value of a text, or of a number, of the enumeration; one that is unknown is logged as "Missing enum
/// mapping. Defaulting to '%s'" and gives the first value of the enumeration's table.
template <typename T>
T enumFromText(std::string_view text);
template <typename T>
T enumFromNumber(std::int64_t number);

} // namespace vantrel

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantrel::ombra {

/// The bytes that a percent-encoded text stands for; nothing when an escape is broken.
std::optional<std::string> decodePercent(std::string_view text);

} // namespace vantrel::ombra

#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The picture at a time (seconds) as a JPEG, at most width pixels wide and never enlarged. Empty, and the
/// reason, for what has no picture. A sequence is named by its pattern. Blocks; any thread.
std::vector<std::uint8_t> renderThumbnail(const std::filesystem::path& file, double seconds, int width,
                                          std::string* error);

} // namespace vantrel::ombra

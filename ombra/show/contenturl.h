#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The content URL of a file of the media folder, "file:///clips/a%20b.mp4", from its path relative to the
/// folder. Encoded as the application encodes it, so that both write the same text.
std::string contentUrl(const std::filesystem::path& relative);

/// The patterns of all sequences that a file of this name may belong to: "1006.png" is one of "%04d.png" and,
/// after "999.png", of "%03d.png" as well. Empty for names without a number that a suffix follows.
std::vector<std::string> sequencePatterns(const std::string& fileName);

} // namespace vantrel::ombra

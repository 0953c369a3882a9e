#pragma once

#include <filesystem>
#include <string>

namespace vantrel::ombra {

/// The content URL of a file of the media folder, "file:///clips/a%20b.mp4", from its path relative to the
/// folder. Encoded as the application encodes it, so that both write the same text.
std::string contentUrl(const std::filesystem::path& relative);

/// The printf pattern of a numbered file's name ("frame_%05d.png" for "frame_00017.png"), by the last run of
/// digits before the suffix; the number in number. Empty when the name has none.
std::string sequencePattern(const std::string& fileName, int& number);

} // namespace vantrel::ombra

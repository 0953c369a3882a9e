#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantrel::ombra {

/// The file below the media folder that "file:///clips/a%20b.mp4" names, or the pattern of an image sequence.
/// Nothing for other schemes, bad escapes, NUL bytes and what climbs out of the folder, also through a link.
std::optional<std::filesystem::path> resolveMediaUrl(const std::filesystem::path& mediaFolder,
                                                     std::string_view contentUrl);

/// The pattern of an image sequence, "frame_%05d.png": what stands before and after the number, and its
/// width.
struct SequencePattern
{
    std::string prefix; // with the folder
    std::string suffix;
    int width = 0; // digits, padded with zeros

    std::filesystem::path file(int number) const;
};

/// Nothing when the file's name holds no "%0<n>d".
std::optional<SequencePattern> parseSequencePattern(const std::filesystem::path& path);

/// The numbers of the pictures that there are, in order, without those that sequencePicture() refuses.
std::vector<int> findSequenceNumbers(const SequencePattern& pattern);

/// The file of one picture. A picture may be a link, but only to what lies in the folder of its sequence or
/// below: empty for any other.
std::filesystem::path sequencePicture(const SequencePattern& pattern, int number);

/// The lowest and the highest number for which there is a file; nothing when there is none.
std::optional<std::pair<int, int>> findSequenceRange(const SequencePattern& pattern);

} // namespace vantrel::ombra

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The content URL of a file of the media folder, "file:///clips/a%20b.mp4", from its path relative to the
/// folder. Encoded as the application encodes it, so that both write the same text.
std::string contentUrl(const std::filesystem::path& relative);

/// A file name that ends in a number before its suffix, "frame_00017.png".
struct NumberedName
{
    std::string prefix; // "frame_"
    std::string suffix; // ".png"
    int number = 0;
    int digits = 0;      // 1 to 9
    bool padded = false; // begins with a zero that a number does not need

    /// The printf pattern of a sequence whose numbers have at least so many digits: "frame_%05d.png".
    std::string pattern(int width) const;
};

/// Nothing for names that do not end in a number of at most nine digits.
std::optional<NumberedName> parseNumberedName(const std::string& fileName);

/// The patterns of all sequences that a file of this name belongs to: "1006.png" is one of "%04d.png" and,
/// after "999.png", of "%03d.png" as well. Empty for names without a number.
std::vector<std::string> sequencePatterns(const std::string& fileName);

} // namespace vantrel::ombra

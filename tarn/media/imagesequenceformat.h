#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vantrel {

/// How the pictures of an image sequence are named: "/clips/clip_%05d.png", where the number has at least so
/// many digits, with zeros in front. What stands around the number is taken as it is: "%" is no escape. A
/// value.
class ImageSequenceFormat
{
public:
    static constexpr int maxWidth = 9; // digits, so that every number is an int

    ImageSequenceFormat() = default;
    /// prefix: with the folder; width: 1 to maxWidth; suffix: all behind the number, ".png" or ".left.exr".
    ImageSequenceFormat(std::string prefix, int width, std::string suffix);

    /// Reads what toString() writes: the first "%<width>d" of the file's name that a suffix follows, else the
    /// first of all. The width is written with two digits or more ("%01d"). Nothing when the name holds none,
    /// or one that is too wide.
    static std::optional<ImageSequenceFormat> parse(std::string_view path);
    /// The suffixes of the pictures that an operator is offered, in small letters, without the dot.
    static std::span<const std::string_view> getSupportedImageExtensions();

    std::string toString() const;
    /// The path of one picture.
    std::string file(std::size_t number) const;

    const std::string& prefix() const noexcept { return m_prefix; }
    const std::string& suffix() const noexcept { return m_suffix; }
    int width() const noexcept { return m_width; }

    friend bool operator==(const ImageSequenceFormat&, const ImageSequenceFormat&) = default;

private:
    std::string m_prefix;
    std::string m_suffix;
    int m_width = 0;
};

} // namespace vantrel

#pragma once

#include <array>
#include <span>
#include <string_view>

namespace vantrel {

/// The suffixes of pictures, which may be one of a sequence, without the dot.
inline constexpr std::array<std::string_view, 10> pictureSuffixes{"png",  "jpg", "jpeg", "bmp", "tif",
                                                                  "tiff", "tga", "dpx",  "exr", "webp"};

/// The suffixes of video and audio files, without the dot.
inline constexpr std::array<std::string_view, 15> movieSuffixes{
    "ztx", "mov", "mp4",  "mkv", "wav",  "m4v", "mpeg", "mpg", // what an operator is offered
    "mp3", "avi", "webm", "mxf", "flac", "aac", "ogg"};        // what a server plays beside them

/// Those of video and audio files that the application itself offers: what every server plays.
inline constexpr std::span<const std::string_view> offeredMovieSuffixes =
    std::span<const std::string_view>(movieSuffixes).first<8>();

} // namespace vantrel

#pragma once

#include <array>
#include <span>
#include <string_view>

namespace vantrel {

/// The suffixes of media files in small letters, without the dot: the one table of both ends. The first 10 of
/// pictures and the first 8 of video and audio are those that an operator is offered; a server plays them
/// all.
inline constexpr std::array<std::string_view, 28> playedPictureSuffixes{
    "png", "jpg", "jpeg", "bmp", "tif", "tiff", "tga", "dpx", "exr", "webp", "jp2", "j2k", "jpe", "jfif",
    "pbm", "pgm", "ppm",  "pam", "pfm", "phm",  "hdr", "sgi", "cin", "psd",  "pcx", "qoi", "jxl", "svg"};
inline constexpr std::array<std::string_view, 63> playedMovieSuffixes{
    "ztx",  "mov", "mp4",  "mkv",   "wav",  "m4v", "mpeg", "mpg",  "avi",  "webm", "mxf",  "ts",   "mts",
    "m2ts", "m2t", "m2v",  "mpv",   "m1v",  "vob", "mp2",  "3gp",  "3g2",  "f4v",  "flv",  "wmv",  "asf",
    "ogv",  "ogg", "ogm",  "dv",    "gxf",  "y4m", "nut",  "divx", "rm",   "gif",  "apng", "ivf",  "264",
    "h264", "265", "hevc", "mjpeg", "mjpg", "qt",  "mp3",  "flac", "aac",  "aif",  "aiff", "aifc", "m4a",
    "opus", "oga", "wma",  "w64",   "caf",  "mka", "ac3",  "eac3", "rf64", "bwf",  "au"};

/// Of these, those that hold sound alone.
inline constexpr std::array<std::string_view, 21> soundSuffixes{
    "wav", "mp2", "mp3", "flac", "aac", "aif", "aiff", "aifc", "m4a", "opus", "oga",
    "ogg", "wma", "w64", "caf",  "mka", "ac3", "eac3", "rf64", "bwf", "au"};

/// Of pictures, each of which may be one of a sequence: those that an operator is offered.
inline constexpr std::span<const std::string_view> pictureSuffixes =
    std::span<const std::string_view>(playedPictureSuffixes).first<10>();

/// Those of video and audio files that the application itself offers: what every server plays.
inline constexpr std::span<const std::string_view> offeredMovieSuffixes =
    std::span<const std::string_view>(playedMovieSuffixes).first<8>();

} // namespace vantrel

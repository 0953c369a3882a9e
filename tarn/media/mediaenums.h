#pragma once

#include <cstdint>

namespace vantrel {

// What a medium is and how it fills a picture. Values are fixed by the server; the texts of toStr are the
// JSON and log forms.

enum class ScaleMode : std::int32_t {
    Default = -1,
    Fit = 0,
    Clip = 1,
    Stretch = 2,
    Centered = 3,
    TopLeft = 4,
    TopRight = 5,
    BottomLeft = 6,
    BottomRight = 7,
};
enum class MediaDurationType : std::int32_t { Manual = 0, Infinite = 1 };
enum class MediaType : std::int32_t {
    Unknown = 0,
    VideoFile = 1,
    AudioFile = 2,
    ImageFile = 3,
    ImageSequence = 4
};
enum class MediaCaveat : std::int32_t {
    UnsupportedAudio = 0,
    CutOff = 1,         // the file ends before the time that it announces
    MissingPictures = 2 // of an image sequence
};
/// The matrix by which pictures hold their colours.
enum class ColorSpace : std::int32_t {
    Unknown = 0,
    Rgb = 1,
    Bt601 = 2,
    Bt709 = 3,
    Bt2020 = 4,
    Smpte240m = 5,
    Fcc = 6,
    YCgCo = 7
};

/// The text of a value; one without is logged and gives the first text of its table (tarn/media/enumtext.h).
const char* toStr(ScaleMode value);
const char* toStr(MediaDurationType value);
const char* toStr(MediaType value);
const char* toStr(MediaCaveat value);
const char* toStr(ColorSpace value); // "unknown", "BT.709", ...: also for the operator

} // namespace vantrel

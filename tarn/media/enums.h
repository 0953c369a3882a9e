#pragma once

#include <cstdint>
#include <string_view>

namespace vantrel {

// Values are fixed by the server; the texts of toStr are the JSON and log forms.

enum class EndAction : std::int32_t { Next = 0, Pause = 1, Stop = 2, Repeat = 3, GoTo = 4 };
enum class TakeTransitionType : std::int32_t { Crossfade = 0, DipToColor = 1, DirectCut = 2 };
enum class PlayheadOption : std::int32_t { FromInpoint = 0, FromPosition = 1 };
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
enum class SourceMode : std::int32_t { None = 0, Slot = 1, Playlist = 2 };
enum class SourcePlayState : std::int32_t { Play = 0, Pause = 1, Stop = 2 };
enum class MediaCaveat : std::int32_t { UnsupportedAudio = 0 };
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
/// Where a channel's sound goes; the scene holds the text.
enum class AudioPlaybackDevice : std::int32_t { Embedded = 1, Xlr = 2, Dante = 3, Off = 4 };
/// The two playbacks of a channel, by the names that they have in the scene.
enum class PlaybackType : std::int32_t { Invalid = -1, Preview = 0, Program = 1 };
/// The channel selector of the application: which of the two playbacks a widget or a model is about.
enum PlaybackViewMode : std::int32_t { Preview = 1, Program = 2 };

/// The text of a value; a value without one is logged as "Missing enum mapping. Defaulting to '%s'" and gives
/// the first text of its table.
const char* toStr(EndAction value);
const char* toStr(TakeTransitionType value);
const char* toStr(PlayheadOption value);
const char* toStr(ScaleMode value);
const char* toStr(MediaDurationType value);
const char* toStr(MediaType value);
const char* toStr(SourcePlayState value);     // "play", "pause", "stop"
const char* toStr(SourceMode value);          // "none", "slot", "playlist"
const char* toStr(ColorSpace value);          // "unknown", "BT.709", ...: also for the operator
const char* toStr(PlaybackType value);        // "invalid", "preview", "program"
const char* toStr(AudioPlaybackDevice value); // "off" when unknown, "embedded", "xlr", "dante"

/// True, and the value in out, when the text is one of the enumeration's texts exactly.
template <typename T>
bool fromStr(std::string_view text, T& out);
/// The value of a text, or of a number, of the enumeration; one that is unknown is logged as above and gives
/// the first value of the table.
template <typename T>
T enumFromText(std::string_view text);
template <typename T>
T enumFromNumber(std::int64_t number);

} // namespace vantrel

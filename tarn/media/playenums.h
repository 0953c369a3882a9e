#pragma once

#include <cstdint>

namespace vantrel {

// How a source plays and how one takes over from another. Values are fixed by the server; the texts of toStr
// are the JSON and log forms.

enum class EndAction : std::int32_t { Next = 0, Pause = 1, Stop = 2, Repeat = 3, GoTo = 4 };
enum class TakeTransitionType : std::int32_t { Crossfade = 0, DipToColor = 1, DirectCut = 2 };
enum class PlayheadOption : std::int32_t { FromInpoint = 0, FromPosition = 1 };
enum class SourceMode : std::int32_t { None = 0, Slot = 1, Playlist = 2 };
enum class SourcePlayState : std::int32_t { Play = 0, Pause = 1, Stop = 2 };

/// The text of a value; one without is logged and gives the first text of its table (tarn/media/enumtext.h).
const char* toStr(EndAction value);
const char* toStr(TakeTransitionType value);
const char* toStr(PlayheadOption value);
const char* toStr(SourceMode value);      // "none", "slot", "playlist"
const char* toStr(SourcePlayState value); // "play", "pause", "stop"

} // namespace vantrel

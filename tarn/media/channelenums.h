#pragma once

#include <cstdint>

namespace vantrel {

// The channels and where their sound goes. Values are fixed by the server; the texts of toStr are the JSON
// and log forms.

/// Where a channel's sound goes; the scene holds the text.
enum class AudioPlaybackDevice : std::int32_t { Embedded = 1, Xlr = 2, Dante = 3, Off = 4 };
/// The two playbacks of a channel, by the names that they have in the scene.
enum class PlaybackType : std::int32_t { Invalid = -1, Preview = 0, Program = 1 };
/// The channel selector of the application: which of the two playbacks a widget or a model is about.
enum PlaybackViewMode : std::int32_t { Preview = 1, Program = 2 };

/// The text of a value; one without is logged and gives the first text of its table (tarn/media/enumtext.h).
const char* toStr(AudioPlaybackDevice value); // "off" when unknown, "embedded", "xlr", "dante"
const char* toStr(PlaybackType value);        // "invalid", "preview", "program"

} // namespace vantrel

#pragma once

#include <QMetaType>

namespace vantrel {

/// What a media item is doing or good for, play state and playability in one. The order counts: a value below
/// Playable plays on a channel, one below NotPlayable can be played.
enum class MediaState {
    ProgramPlay = 0,
    ProgramPause = 1,
    ProgramStop = 2,
    PreviewPlay = 3,
    PreviewPause = 4,
    PreviewStop = 5,
    Playable = 6,
    PlayableWithCaveats = 7,
    NotPlayable = 8,
    UnknownState = 9,
    MediaStateCount = 10,
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::MediaState)

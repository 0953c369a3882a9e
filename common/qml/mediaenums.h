#pragma once

#include "common/media/address/mediastate.h"
#include "tarn/media/mediaenums.h"

#include <QObject>

namespace vantrel::media {

/// The kinds and states of media as declarative views name them ("Media.VideoFile"); the values are those of
/// the enumerations that models hand out.
Q_NAMESPACE

enum Kind {
    UnknownFile = static_cast<int>(vantrel::MediaType::Unknown),
    VideoFile = static_cast<int>(vantrel::MediaType::VideoFile),
    AudioFile = static_cast<int>(vantrel::MediaType::AudioFile),
    ImageFile = static_cast<int>(vantrel::MediaType::ImageFile),
    ImageSequence = static_cast<int>(vantrel::MediaType::ImageSequence),
};
Q_ENUM_NS(Kind)

enum State {
    ProgramPlay = static_cast<int>(vantrel::MediaState::ProgramPlay),
    ProgramPause = static_cast<int>(vantrel::MediaState::ProgramPause),
    ProgramStop = static_cast<int>(vantrel::MediaState::ProgramStop),
    PreviewPlay = static_cast<int>(vantrel::MediaState::PreviewPlay),
    PreviewPause = static_cast<int>(vantrel::MediaState::PreviewPause),
    PreviewStop = static_cast<int>(vantrel::MediaState::PreviewStop),
    Playable = static_cast<int>(vantrel::MediaState::Playable),
    PlayableWithCaveats = static_cast<int>(vantrel::MediaState::PlayableWithCaveats),
    NotPlayable = static_cast<int>(vantrel::MediaState::NotPlayable),
    UnknownState = static_cast<int>(vantrel::MediaState::UnknownState),
};
Q_ENUM_NS(State)

} // namespace vantrel::media

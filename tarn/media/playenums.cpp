#include "tarn/media/playenums.h"

#include "tarn/media/enumtable.h"

namespace vantrel {

namespace {

using enumtable::Row;

constexpr Row<EndAction> endActions[] = {{EndAction::Next, "next"},
                                         {EndAction::Pause, "pause"},
                                         {EndAction::Stop, "stop"},
                                         {EndAction::Repeat, "repeat"},
                                         {EndAction::GoTo, "goTo"}};
constexpr Row<TakeTransitionType> transitions[] = {{TakeTransitionType::Crossfade, "crossfade"},
                                                   {TakeTransitionType::DipToColor, "dipToColor"},
                                                   {TakeTransitionType::DirectCut, "directCut"}};
constexpr Row<PlayheadOption> playheads[] = {{PlayheadOption::FromInpoint, "inpoint"},
                                             {PlayheadOption::FromPosition, "position"}};
constexpr Row<SourceMode> sourceModes[] = {
    {SourceMode::None, "none"}, {SourceMode::Slot, "slot"}, {SourceMode::Playlist, "playlist"}};
constexpr Row<SourcePlayState> playStates[] = {
    {SourcePlayState::Play, "play"}, {SourcePlayState::Pause, "pause"}, {SourcePlayState::Stop, "stop"}};

} // namespace

TARN_ENUM_TEXT(EndAction, endActions)
TARN_ENUM_TEXT(TakeTransitionType, transitions)
TARN_ENUM_TEXT(PlayheadOption, playheads)
TARN_ENUM_TEXT(SourceMode, sourceModes)
TARN_ENUM_TEXT(SourcePlayState, playStates)

} // namespace vantrel

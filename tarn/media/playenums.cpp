#include "tarn/media/playenums.h"

#include "tarn/media/enumtable.h"

namespace vantrel {

namespace enumtable {

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

template <>
constexpr std::span<const Row<EndAction>> table()
{
    return endActions;
}
template <>
constexpr std::span<const Row<TakeTransitionType>> table()
{
    return transitions;
}
template <>
constexpr std::span<const Row<PlayheadOption>> table()
{
    return playheads;
}
template <>
constexpr std::span<const Row<SourceMode>> table()
{
    return sourceModes;
}
template <>
constexpr std::span<const Row<SourcePlayState>> table()
{
    return playStates;
}

} // namespace enumtable

const char* toStr(EndAction value)
{
    return enumtable::textOf(value);
}
const char* toStr(TakeTransitionType value)
{
    return enumtable::textOf(value);
}
const char* toStr(PlayheadOption value)
{
    return enumtable::textOf(value);
}
const char* toStr(SourceMode value)
{
    return enumtable::textOf(value);
}
const char* toStr(SourcePlayState value)
{
    return enumtable::textOf(value);
}

TARN_ENUM_TEXT(EndAction)
TARN_ENUM_TEXT(TakeTransitionType)
TARN_ENUM_TEXT(PlayheadOption)
TARN_ENUM_TEXT(SourceMode)
TARN_ENUM_TEXT(SourcePlayState)

} // namespace vantrel

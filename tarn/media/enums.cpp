#include "tarn/media/enums.h"

#include "tarn/log/log.h"

#include <algorithm>
#include <span>

namespace vantrel {

namespace {

template <typename T>
struct Row
{
    T value;
    const char* text;
};

// The first row of a table is what an unknown value falls back to.

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
constexpr Row<ScaleMode> scaleModes[] = {{ScaleMode::Default, "default"},
                                         {ScaleMode::Fit, "fit"},
                                         {ScaleMode::Clip, "clip"},
                                         {ScaleMode::Stretch, "stretch"},
                                         {ScaleMode::Centered, "centered"},
                                         {ScaleMode::TopLeft, "topLeft"},
                                         {ScaleMode::TopRight, "topRight"},
                                         {ScaleMode::BottomLeft, "bottomLeft"},
                                         {ScaleMode::BottomRight, "bottomRight"}};
constexpr Row<MediaDurationType> durationTypes[] = {{MediaDurationType::Manual, "manual"},
                                                    {MediaDurationType::Infinite, "infinite"}};
constexpr Row<MediaType> mediaTypes[] = {{MediaType::Unknown, "unknown"},
                                         {MediaType::VideoFile, "videoFile"},
                                         {MediaType::AudioFile, "audioFile"},
                                         {MediaType::ImageFile, "imageFile"},
                                         {MediaType::ImageSequence, "imageSequence"}};
constexpr Row<SourceMode> sourceModes[] = {
    {SourceMode::None, "none"}, {SourceMode::Slot, "slot"}, {SourceMode::Playlist, "playlist"}};
constexpr Row<SourcePlayState> playStates[] = {
    {SourcePlayState::Play, "play"}, {SourcePlayState::Pause, "pause"}, {SourcePlayState::Stop, "stop"}};
constexpr Row<PlaybackType> playbackTypes[] = {{PlaybackType::Invalid, "invalid"},
                                               {PlaybackType::Preview, "preview"},
                                               {PlaybackType::Program, "program"}};
constexpr Row<ColorSpace> colorSpaces[] = {
    {ColorSpace::Unknown, "unknown"}, {ColorSpace::Rgb, "RGB"},        {ColorSpace::Bt601, "BT.601"},
    {ColorSpace::Bt709, "BT.709"},    {ColorSpace::Bt2020, "BT.2020"}, {ColorSpace::Smpte240m, "SMPTE 240M"},
    {ColorSpace::Fcc, "FCC"},         {ColorSpace::YCgCo, "YCgCo"}};
constexpr Row<AudioPlaybackDevice> audioDevices[] = {{AudioPlaybackDevice::Off, "off"},
                                                     {AudioPlaybackDevice::Embedded, "embedded"},
                                                     {AudioPlaybackDevice::Xlr, "xlr"},
                                                     {AudioPlaybackDevice::Dante, "dante"}};

template <typename T>
constexpr std::span<const Row<T>> table();
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
constexpr std::span<const Row<ScaleMode>> table()
{
    return scaleModes;
}
template <>
constexpr std::span<const Row<MediaDurationType>> table()
{
    return durationTypes;
}
template <>
constexpr std::span<const Row<MediaType>> table()
{
    return mediaTypes;
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
template <>
constexpr std::span<const Row<PlaybackType>> table()
{
    return playbackTypes;
}
template <>
constexpr std::span<const Row<ColorSpace>> table()
{
    return colorSpaces;
}
template <>
constexpr std::span<const Row<AudioPlaybackDevice>> table()
{
    return audioDevices;
}

template <typename T>
const Row<T>& fallback(const char* function)
{
    const Row<T>& row = table<T>().front();
    Log::write_fmt(LogLevel::Warning, {"enums", function}, "enums",
                   "Missing enum mapping. Defaulting to '%s'", row.text);
    return row;
}

template <typename T>
const char* textOf(T value)
{
    const auto rows = table<T>();
    const auto row = std::ranges::find(rows, value, &Row<T>::value);
    return row != rows.end() ? row->text : fallback<T>("toStr").text;
}

} // namespace

const char* toStr(EndAction value)
{
    return textOf(value);
}
const char* toStr(TakeTransitionType value)
{
    return textOf(value);
}
const char* toStr(PlayheadOption value)
{
    return textOf(value);
}
const char* toStr(ScaleMode value)
{
    return textOf(value);
}
const char* toStr(MediaDurationType value)
{
    return textOf(value);
}
const char* toStr(MediaType value)
{
    return textOf(value);
}
const char* toStr(SourceMode value)
{
    return textOf(value);
}
const char* toStr(SourcePlayState value)
{
    return textOf(value);
}
const char* toStr(PlaybackType value)
{
    return textOf(value);
}
const char* toStr(ColorSpace value)
{
    return textOf(value);
}
const char* toStr(AudioPlaybackDevice value)
{
    return textOf(value);
}

template <typename T>
bool fromStr(std::string_view text, T& out)
{
    const auto rows = table<T>();
    const auto row = std::ranges::find_if(rows, [&](const Row<T>& r) { return text == r.text; });
    if (row == rows.end())
        return false;
    out = row->value;
    return true;
}

template <typename T>
T enumFromText(std::string_view text)
{
    T value{};
    return fromStr(text, value) ? value : fallback<T>("fromStr").value;
}

template <typename T>
T enumFromNumber(std::int64_t number)
{
    const auto rows = table<T>();
    const auto row = std::ranges::find_if(
        rows, [&](const Row<T>& r) { return number == static_cast<std::int64_t>(r.value); });
    return row != rows.end() ? row->value : fallback<T>("fromStr").value;
}

#define TARN_INSTANTIATE(Enum)                                                                               \
    template bool fromStr<Enum>(std::string_view, Enum&);                                                    \
    template Enum enumFromText<Enum>(std::string_view);                                                      \
    template Enum enumFromNumber<Enum>(std::int64_t);

TARN_INSTANTIATE(EndAction)
TARN_INSTANTIATE(TakeTransitionType)
TARN_INSTANTIATE(PlayheadOption)
TARN_INSTANTIATE(ScaleMode)
TARN_INSTANTIATE(MediaDurationType)
TARN_INSTANTIATE(MediaType)
TARN_INSTANTIATE(SourceMode)
TARN_INSTANTIATE(SourcePlayState)
TARN_INSTANTIATE(ColorSpace)
TARN_INSTANTIATE(AudioPlaybackDevice)

#undef TARN_INSTANTIATE

} // namespace vantrel

#include "tarn/media/channelenums.h"

#include "tarn/media/enumtable.h"

namespace vantrel {

namespace enumtable {

constexpr Row<AudioPlaybackDevice> audioDevices[] = {{AudioPlaybackDevice::Off, "off"},
                                                     {AudioPlaybackDevice::Embedded, "embedded"},
                                                     {AudioPlaybackDevice::Xlr, "xlr"},
                                                     {AudioPlaybackDevice::Dante, "dante"}};
constexpr Row<PlaybackType> playbackTypes[] = {{PlaybackType::Invalid, "invalid"},
                                               {PlaybackType::Preview, "preview"},
                                               {PlaybackType::Program, "program"}};

template <>
constexpr std::span<const Row<AudioPlaybackDevice>> table()
{
    return audioDevices;
}
template <>
constexpr std::span<const Row<PlaybackType>> table()
{
    return playbackTypes;
}

} // namespace enumtable

const char* toStr(AudioPlaybackDevice value)
{
    return enumtable::textOf(value);
}
const char* toStr(PlaybackType value)
{
    return enumtable::textOf(value);
}

TARN_ENUM_TEXT(AudioPlaybackDevice)

} // namespace vantrel

#include "tarn/media/channelenums.h"

#include "tarn/media/enumtable.h"

namespace vantrel {

namespace {

using enumtable::Row;

constexpr Row<AudioPlaybackDevice> audioDevices[] = {{AudioPlaybackDevice::Off, "off"},
                                                     {AudioPlaybackDevice::Embedded, "embedded"},
                                                     {AudioPlaybackDevice::Xlr, "xlr"},
                                                     {AudioPlaybackDevice::Dante, "dante"}};
constexpr Row<PlaybackType> playbackTypes[] = {{PlaybackType::Invalid, "invalid"},
                                               {PlaybackType::Preview, "preview"},
                                               {PlaybackType::Program, "program"}};

} // namespace

TARN_ENUM_TEXT(AudioPlaybackDevice, audioDevices)
TARN_ENUM_TEXT(PlaybackType, playbackTypes)

} // namespace vantrel

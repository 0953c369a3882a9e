#include "tarn/media/mediaenums.h"

#include "tarn/media/enumtable.h"

namespace vantrel {

namespace enumtable {

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
constexpr Row<ColorSpace> colorSpaces[] = {
    {ColorSpace::Unknown, "unknown"}, {ColorSpace::Rgb, "RGB"},        {ColorSpace::Bt601, "BT.601"},
    {ColorSpace::Bt709, "BT.709"},    {ColorSpace::Bt2020, "BT.2020"}, {ColorSpace::Smpte240m, "SMPTE 240M"},
    {ColorSpace::Fcc, "FCC"},         {ColorSpace::YCgCo, "YCgCo"}};

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
constexpr std::span<const Row<ColorSpace>> table()
{
    return colorSpaces;
}

} // namespace enumtable

const char* toStr(ScaleMode value)
{
    return enumtable::textOf(value);
}
const char* toStr(MediaDurationType value)
{
    return enumtable::textOf(value);
}
const char* toStr(MediaType value)
{
    return enumtable::textOf(value);
}
const char* toStr(ColorSpace value)
{
    return enumtable::textOf(value);
}

TARN_ENUM_TEXT(ScaleMode)
TARN_ENUM_TEXT(MediaDurationType)
TARN_ENUM_TEXT(MediaType)
TARN_ENUM_TEXT(ColorSpace)

} // namespace vantrel

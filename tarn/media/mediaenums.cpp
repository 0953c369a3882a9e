#include "tarn/media/mediaenums.h"

#include "tarn/media/enumtable.h"
#include "tarn/media/mediametadata.h"

namespace vantrel {

namespace {

using enumtable::Row;

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
constexpr Row<MediaCaveat> mediaCaveats[] = {{MediaMetadata::unknownCaveat, "unknown"},
                                             {MediaCaveat::UnsupportedAudio, "unsupportedAudio"},
                                             {MediaCaveat::CutOff, "cutOff"},
                                             {MediaCaveat::MissingPictures, "missingPictures"}};
constexpr Row<ColorSpace> colorSpaces[] = {
    {ColorSpace::Unknown, "unknown"}, {ColorSpace::Rgb, "RGB"},        {ColorSpace::Bt601, "BT.601"},
    {ColorSpace::Bt709, "BT.709"},    {ColorSpace::Bt2020, "BT.2020"}, {ColorSpace::Smpte240m, "SMPTE 240M"},
    {ColorSpace::Fcc, "FCC"},         {ColorSpace::YCgCo, "YCgCo"}};

} // namespace

TARN_ENUM_TEXT(ScaleMode, scaleModes)
TARN_ENUM_TEXT(MediaDurationType, durationTypes)
TARN_ENUM_TEXT(MediaType, mediaTypes)
TARN_ENUM_TEXT(MediaCaveat, mediaCaveats)
TARN_ENUM_TEXT(ColorSpace, colorSpaces)

} // namespace vantrel

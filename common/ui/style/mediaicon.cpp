#include "common/ui/style/mediaicon.h"

#include "tarn/media/mediaenums.h"

namespace vantrel {

QString mediaIcon(MediaType type)
{
    switch (type) {
    case MediaType::AudioFile:
        return QStringLiteral("audio");
    case MediaType::ImageFile:
        return QStringLiteral("image");
    case MediaType::ImageSequence:
        return QStringLiteral("image_sequence");
    default: // a film strip: what is not known yet mostly is one
        return QStringLiteral("media");
    }
}

} // namespace vantrel

#include "common/import/imagesresult.h"

#include "common/media/address/mediafiles.h"

namespace vantrel::images {

QString StillImage::name() const
{
    return getNameInPath(filePath);
}

void ImagesResult::setStillImageDuration(double durationSeconds, bool isInfinite)
{
    for (StillImage& still : m_stills) {
        still.durationSeconds = durationSeconds;
        still.hasInfiniteDuration = isInfinite;
    }
}

} // namespace vantrel::images

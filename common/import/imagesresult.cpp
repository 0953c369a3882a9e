#include "common/import/imagesresult.h"

#include "common/media/address/mediafiles.h"

#include <algorithm>

namespace vantrel::images {

namespace {

constexpr double slowest = 0.01, fastest = 1000; // pictures a second
constexpr double longest = 100 * 3600;           // seconds

} // namespace

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

bool ImagesResult::isStorable() const
{
    if (isSequence())
        return m_sequence->frameCount() > 0 && m_sequence->fps >= slowest && m_sequence->fps <= fastest;
    return std::ranges::all_of(m_stills,
                               [](const StillImage& still) { return still.durationSeconds <= longest; });
}

} // namespace vantrel::images

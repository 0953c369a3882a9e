#include "ombra/outputs/displaylink.h"

#include <array>

namespace vantrel::ombra {

double DisplayLink::capacity() const
{
    return lanes * rate * 0.27e9 * 8 / 10;
}

double bitRate(const VideoTiming& mode, int bpc)
{
    return 3.0 * bpc * static_cast<double>(mode.dotClock);
}

std::optional<DisplayLink> linkFor(const VideoTiming& mode, int bpc, bool isFastest)
{
    constexpr std::array rates = {6, 10, fastestLink.rate};
    for (const int rate : rates) {
        const DisplayLink link{fastestLink.lanes, rate};
        if (link.capacity() >= bitRate(mode, bpc) && (!isFastest || link == fastestLink))
            return link;
    }
    return std::nullopt;
}

} // namespace vantrel::ombra

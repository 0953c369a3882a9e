#include "tarn/edid/edidblocks.h"

#include <algorithm>

namespace vantrel::edidblocks {

int word(Bytes bytes, std::size_t at)
{
    return bytes[at] | bytes[at + 1] << 8;
}

std::optional<VideoTiming> detailedTiming(Bytes bytes)
{
    VideoTiming mode;
    mode.dotClock = word(bytes, 0) * std::int64_t{10'000};
    mode.width = bytes[2] | (bytes[4] & 0xf0) << 4;
    mode.hTotal = mode.width + (bytes[3] | (bytes[4] & 0x0f) << 8);
    mode.height = bytes[5] | (bytes[7] & 0xf0) << 4;
    const int blanking = bytes[6] | (bytes[7] & 0x0f) << 8;
    mode.hFront = bytes[8] | (bytes[11] & 0xc0) << 2;
    mode.hSync = bytes[9] | (bytes[11] & 0x30) << 4;
    mode.vFront = bytes[10] >> 4 | (bytes[11] & 0x0c) << 2;
    mode.vSync = (bytes[10] & 15) | (bytes[11] & 0x03) << 4;
    mode.interlaced = bytes[17] & 0x80;
    mode.vTotal = mode.height + blanking;
    if (mode.interlaced) { // it counts the lines of one field, and leaves out half a line of blanking
        mode.height *= 2;
        mode.vTotal = 2 * mode.vTotal + 1;
    }
    const bool isSeparate = (bytes[17] & 0x18) == 0x18;
    mode.vPolarity = isSeparate && bytes[17] & 0x04 ? 1 : -1;
    mode.hPolarity = bytes[17] & 0x02 ? 1 : -1;
    if (mode.dotClock == 0 || mode.width == 0 || mode.height == 0)
        return std::nullopt;
    return mode;
}

void addMode(Edid& display, const VideoTiming& mode)
{
    if (mode.dotClock > 0 && std::ranges::find(display.modes, mode) == display.modes.end())
        display.modes.push_back(mode);
}

} // namespace vantrel::edidblocks

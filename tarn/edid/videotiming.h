#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vantrel {

/// A video mode as it is on the wire.
struct VideoTiming
{
    int width = 0, height = 0;        // pixels of the whole picture
    int hTotal = 0, vTotal = 0;       // pixels and lines of it, with blanking
    int hFront = 0, hSync = 0;        // pixels from the picture to the pulse, and of the pulse
    int vFront = 0, vSync = 0;        // lines, likewise; of a field of an interlaced mode
    int hPolarity = 1, vPolarity = 1; // 1 or -1
    bool interlaced = false;
    std::int64_t dotClock = 0; // Hz

    /// Pictures a second, or fields a second of an interlaced mode; 0 for one without a total.
    double refreshRate() const;
    /// Lines a second.
    double lineRate() const;
    /// "1920x1080p59.94": what tells modes apart.
    std::string id() const;
    /// "1920 x 1080p 59.94 Hz"
    std::string label() const;

    bool operator==(const VideoTiming&) const = default;
};

struct StandardTiming
{
    int code;
    VideoTiming timing;
};

/// VESA Display Monitor Timings, by their ID, in order.
std::span<const StandardTiming> dmtTimings();
/// Null for a code that is none.
const VideoTiming* findDmt(int id);
const VideoTiming* findVic(int vic);

/// A progressive mode by VESA's Coordinated Video Timings 1.2, with blanking for a tube or reduced (RBv1).
/// The width is brought down to a multiple of 8; all must be greater than 0.
VideoTiming cvtTiming(int width, int height, double rate, bool reducedBlanking);

} // namespace vantrel

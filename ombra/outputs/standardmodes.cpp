#include "ombra/outputs/standardmodes.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vantrel::ombra {

namespace {

constexpr std::array televisionModes = {102, 101, 100, 99, 98, 97, 96, 95, 94, 93, 63, 64,
                                        16,  31,  34,  33, 32, 5,  20, 4,  19, 18, 3};
constexpr std::array monitorModes = {0x4c, 0x44, 0x33, 0x53, 0x3a, 0x23, 0x2f, 0x51, 0x1c, 0x10, 0x09, 0x04};
struct Shape
{
    int width, height;
};
constexpr std::array wideShapes = {Shape{3840, 1600}, Shape{3440, 1440}, Shape{2560, 1440},
                                   Shape{2560, 1080}};

/// What television counts with 1000 pictures in 1001 seconds.
VideoTiming slowed(VideoTiming mode)
{
    mode.dotClock = mode.dotClock * 1000 / 1001;
    return mode;
}

bool isCountedSlower(const VideoTiming& mode)
{
    const double rate = mode.refreshRate();
    return !mode.interlaced && (rate == 24 || rate == 30 || rate == 60);
}

std::vector<VideoTiming> make()
{
    std::vector<VideoTiming> modes;
    for (const int vic : televisionModes) {
        const VideoTiming& mode = *findVic(vic);
        modes.push_back(mode);
        if (isCountedSlower(mode))
            modes.push_back(slowed(mode));
    }
    const auto computers = static_cast<std::ptrdiff_t>(modes.size());
    for (const int id : monitorModes)
        modes.push_back(*findDmt(id));
    for (const auto [width, height] : wideShapes)
        modes.push_back(cvtTiming(width, height, 60, true));
    std::stable_sort(modes.begin() + computers, modes.end(), [](const VideoTiming& a, const VideoTiming& b) {
        return a.width * a.height > b.width * b.height;
    });
    return modes;
}

} // namespace

std::span<const VideoTiming> standardModes()
{
    static const std::vector<VideoTiming> modes = make();
    return modes;
}

} // namespace vantrel::ombra

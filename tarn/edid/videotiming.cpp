#include "tarn/edid/videotiming.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace vantrel {

namespace {

/// With two decimals at most, and no zeros at the end.
std::string rateText(double rate)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", rate);
    std::string trimmed(text);
    trimmed.erase(trimmed.find_last_not_of('0') + 1);
    if (trimmed.ends_with('.'))
        trimmed.pop_back();
    return trimmed;
}

/// Lines of the vertical pulse, by which CVT tells the shape of a picture.
int cvtVerticalSync(int width, int height)
{
    const auto is = [width, height](int across, int down) {
        return height % down == 0 && height / down * across / 8 * 8 == width;
    };
    return is(4, 3) ? 4 : is(16, 9) ? 5 : is(16, 10) ? 6 : is(5, 4) || is(15, 9) ? 7 : 10;
}

constexpr double clockStep = 250'000; // Hz
constexpr int vFront = 3;

} // namespace

double VideoTiming::refreshRate() const
{
    const double total = static_cast<double>(hTotal) * vTotal;
    return total <= 0 ? 0 : static_cast<double>(dotClock) / total * (interlaced ? 2 : 1);
}

double VideoTiming::lineRate() const
{
    return hTotal <= 0 ? 0 : static_cast<double>(dotClock) / hTotal;
}

std::string VideoTiming::id() const
{
    return std::to_string(width) + 'x' + std::to_string(height) + (interlaced ? 'i' : 'p') +
           rateText(refreshRate());
}

std::string VideoTiming::label() const
{
    return std::to_string(width) + " x " + std::to_string(height) + (interlaced ? "i " : "p ") +
           rateText(refreshRate()) + " Hz";
}

VideoTiming cvtTiming(int width, int height, double rate, bool reducedBlanking)
{
    VideoTiming timing;
    timing.width = std::max(8, width / 8 * 8);
    timing.height = height;
    timing.vFront = vFront;
    timing.vSync = cvtVerticalSync(timing.width, height);
    if (reducedBlanking) {
        constexpr double leastBlanking = 460e-6; // seconds
        const double line = (1 / rate - leastBlanking) / height;
        const int blanking = std::max(static_cast<int>(leastBlanking / line) + 1, vFront + timing.vSync + 6);
        timing.hTotal = timing.width + 160;
        timing.vTotal = height + blanking;
        timing.hFront = 48;
        timing.hSync = 32;
        timing.vPolarity = -1;
        timing.dotClock = static_cast<std::int64_t>(
            std::floor(rate * timing.vTotal * timing.hTotal / clockStep) * clockStep);
        return timing;
    }
    constexpr double syncAndBack = 550e-6; // seconds
    const double line = (1 / rate - syncAndBack) / (height + vFront);
    const int lines = std::max(static_cast<int>(syncAndBack / line) + 1, timing.vSync + 6);
    const double duty = std::max(20.0, 30 - 300 * line * 1000); // percent of a line that is blank
    const int blanking = static_cast<int>(timing.width * duty / (100 - duty) / 16) * 16;
    timing.hTotal = timing.width + blanking;
    timing.vTotal = height + lines + vFront;
    timing.hSync = static_cast<int>(0.08 * timing.hTotal / 8) * 8;
    timing.hFront = blanking / 2 - timing.hSync;
    timing.hPolarity = -1;
    timing.dotClock = static_cast<std::int64_t>(std::floor(timing.hTotal / line / clockStep) * clockStep);
    return timing;
}

} // namespace vantrel

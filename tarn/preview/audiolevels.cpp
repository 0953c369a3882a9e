#include "tarn/preview/audiolevels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vantrel {

namespace {

constexpr int bytesPerLine = 4;
constexpr std::int16_t silent = -32768;
constexpr double quietest = 327.67; // dB below full scale that the numbers can tell

std::int16_t toWire(double decibels)
{
    if (!(decibels >= -quietest))
        return silent;
    return static_cast<std::int16_t>(std::lround(std::min(decibels, quietest) * 100));
}

double fromWire(const std::uint8_t* at)
{
    const auto value = static_cast<std::int16_t>(static_cast<std::uint16_t>(at[0] | at[1] << 8));
    return value == silent ? AudioLevels::silence : value / 100.0;
}

void put(std::uint8_t* at, double decibels)
{
    const auto value = static_cast<std::uint16_t>(toWire(decibels));
    at[0] = static_cast<std::uint8_t>(value & 0xff);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}

} // namespace

double AudioLevels::peak() const
{
    double highest = silence;
    for (const Channel& channel : channels)
        highest = std::max(highest, channel.peak);
    return highest;
}

Ref<Surface> AudioLevels::toSurface() const
{
    auto surface = makeRef<Surface>();
    surface->format = Surface::formatLevels;
    surface->width = 2;
    surface->height = std::clamp(static_cast<int>(channels.size()), 1, maxChannels);
    surface->bytesPerLine = channels.empty() ? 0 : bytesPerLine;
    surface->pixels.resize(static_cast<std::size_t>(surface->height) *
                           static_cast<std::size_t>(surface->bytesPerLine));
    for (std::size_t i = 0; (i + 1) * bytesPerLine <= surface->pixels.size(); ++i) {
        put(surface->pixels.data() + i * bytesPerLine, channels[i].peak);
        put(surface->pixels.data() + i * bytesPerLine + 2, channels[i].rms);
    }
    return surface;
}

std::optional<AudioLevels> AudioLevels::fromSurface(const Surface* surface)
{
    if (!surface || surface->format != Surface::formatLevels || surface->width != 2)
        return std::nullopt;
    AudioLevels levels;
    if (surface->height == 1 && surface->pixels.empty())
        return levels;
    if (surface->height < 1 || surface->height > maxChannels || surface->bytesPerLine != bytesPerLine ||
        surface->pixels.size() != static_cast<std::size_t>(surface->height) * bytesPerLine)
        return std::nullopt;
    for (std::size_t i = 0; i < static_cast<std::size_t>(surface->height); ++i) {
        const std::uint8_t* line = surface->pixels.data() + i * bytesPerLine;
        levels.channels.push_back({fromWire(line), fromWire(line + 2)});
    }
    return levels;
}

} // namespace vantrel

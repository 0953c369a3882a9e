#pragma once

#include "tarn/edid/edid.h"

#include <array>

namespace vantrel::edidblocks {

constexpr std::size_t blockSize = 128;
constexpr std::size_t descriptorSize = 18;
using Block = std::span<const std::uint8_t, blockSize>;
using Bytes = std::span<const std::uint8_t>;

/// Of two bytes, the low one first.
int word(Bytes bytes, std::size_t at);
/// A detailed timing of 18 bytes; nothing for what is none, or has no picture.
std::optional<VideoTiming> detailedTiming(Bytes descriptor);
/// Unless the display has it already, or it is computed to be nothing.
void addMode(Edid& display, const VideoTiming& mode);

/// What extensions would rather show; the first that says so counts.
struct Preference
{
    std::optional<VideoTiming> named; // as such
    std::optional<VideoTiming> first; // of a list that begins with the best
};

void readCtaExtension(Block block, Edid& display, Preference& preference);
void readDisplayIdExtension(Block block, Edid& display, Preference& preference);

} // namespace vantrel::edidblocks

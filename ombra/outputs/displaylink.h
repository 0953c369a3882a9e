#pragma once

#include "tarn/edid/videotiming.h"

#include <optional>

namespace vantrel::ombra {

/// What runs between an output and its display: lanes of DisplayPort with 8b/10b, each of so many times
/// 0.27 Gbit/s.
struct DisplayLink
{
    int lanes = 0;
    int rate = 0;

    /// Bits of pictures a second.
    double capacity() const;
    bool operator==(const DisplayLink&) const = default;
};

/// The most that an output has.
inline constexpr DisplayLink fastestLink{4, 20};

/// Bits a second of a mode with three colour channels.
double bitRate(const VideoTiming& mode, int bpc);
/// The slowest link that carries it, or the fastest of all when that is wanted; nothing where none does.
std::optional<DisplayLink> linkFor(const VideoTiming& mode, int bpc, bool isFastest);

} // namespace vantrel::ombra

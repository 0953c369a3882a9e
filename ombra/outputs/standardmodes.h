#pragma once

#include "tarn/edid/videotiming.h"

#include <span>

namespace vantrel::ombra {

/// The modes that an output offers whatever its display says of itself, as CTA-861, VESA DMT and VESA CVT
/// have them: those of television first, each kind from the most pixels to the fewest.
std::span<const VideoTiming> standardModes();

} // namespace vantrel::ombra

#pragma once

#include "ombra/decode/decodedpicture.h"
#include "tarn/media/mediaenums.h"

#include <vector>

namespace vantrel::ombra {

/// What a playback shows at a moment: pictures of which there is so much each, 0 to 1. What is missing to 1
/// is the background of the output, after what a dip has made black.
struct ShownMoment
{
    struct Layer
    {
        Ref<DecodedPicture> image;
        ScaleMode scaling = ScaleMode::Fit;
        double share = 1;
        friend bool operator==(const Layer&, const Layer&) = default;
    };
    std::vector<Layer> layers; // none: nothing is on it
    double dipped = 0;         // share of black
    double time = 0;           // of the mixing clock, seconds
    int missed = 0;            // pictures that came due and were not decoded by then
    double load = 0;           // share of the time there is that decoding takes
};

} // namespace vantrel::ombra

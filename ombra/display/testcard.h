#pragma once

#include "ombra/decode/decodedpicture.h"

#include <string>

namespace vantrel::ombra {

/// What an output shows so that whoever stands before it knows which one it is.
struct TestCard
{
    int number = 0;   // of the output, from 1
    std::string name; // of the output
    friend bool operator==(const TestCard&, const TestCard&) = default;
};

/// A picture of the size of a screen (pixels) that shows pictures at a rate (Hz): a border in
/// the outermost pixels, a circle that is round where pixels are square, bars, and what the card says. Null
/// where there is no memory for it.
Ref<DecodedPicture> paintTestCard(const TestCard& card, int width, int height, double rate);

} // namespace vantrel::ombra

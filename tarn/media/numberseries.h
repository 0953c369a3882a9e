#pragma once

#include <cstdint>
#include <vector>

namespace vantrel {

/// The number in the name of a picture, as it is written.
struct PictureNumber
{
    std::uint32_t value = 0;
    std::uint8_t digits = 0; // 1 to 9
    bool isPadded = false;   // begins with a zero that it does not need
};

/// Numbers that belong together, each once and in order.
struct NumberSeries
{
    int width = 0; // of the narrowest, to which all are padded
    std::vector<std::uint32_t> numbers;
};

/// Numbers of names that are otherwise the same, told apart by their widths: 001 to 003 beside 1 to 3 are
/// two. A number that needs more digits goes on with a narrower series that it is near to: 7, 8, 9, 10 and
/// 9999, 10000; 101 to 110 and 1001 to 1010 are two. In order of the widths.
std::vector<NumberSeries> splitByWidth(std::vector<PictureNumber> numbers);

} // namespace vantrel

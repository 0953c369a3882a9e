#include "tarn/media/numberseries.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantrel {

namespace {

// What may be missing between two widths and still be a gap: unpadded numbers tell nothing of their width.
constexpr std::uint32_t gapOfUnpadded = 100;
constexpr std::uint32_t gapOfPadded = 10;

/// A series while it grows, in ascending order.
struct Growing
{
    std::vector<std::uint32_t> numbers;
    std::uint32_t widestStep = 0;

    void add(std::uint32_t number)
    {
        if (!numbers.empty())
            widestStep = std::max(widestStep, number - numbers.back());
        numbers.push_back(number);
    }

    /// A number of more digits goes on with this series; step: from there to the next of its own width.
    bool goesOnWith(std::uint32_t number, int width, std::uint32_t step) const
    {
        if (numbers.empty())
            return false;
        const std::uint32_t missing = number - numbers.back() - 1;
        const auto count = static_cast<std::uint32_t>(numbers.size());
        return missing <=
               std::max({width == 1 ? gapOfUnpadded : gapOfPadded, count, 2 * widestStep, 2 * step});
    }
};

using ByWidth = std::array<Growing, 10>; // by width, from 1

/// The nearest below, and of two that are as near the wider.
Growing& seriesOf(ByWidth& series, const PictureNumber& number, std::uint32_t step)
{
    Growing* best = &series[number.digits];
    for (int width = number.digits - 1; width > 0; --width) {
        Growing& one = series[static_cast<std::size_t>(width)];
        if (one.goesOnWith(number.value, width, step) &&
            (best->numbers.empty() || one.numbers.back() > best->numbers.back()))
            best = &one;
    }
    return *best;
}

} // namespace

std::vector<NumberSeries> splitByWidth(std::vector<PictureNumber> numbers)
{
    const auto order = [](const PictureNumber& n) { return std::pair(n.digits, n.value); };
    if (!std::ranges::is_sorted(numbers, {}, order))
        std::ranges::sort(numbers, {}, order);
    const auto twice = std::ranges::unique(numbers, {}, order);
    numbers.erase(twice.begin(), twice.end());

    ByWidth series;
    for (const PictureNumber& number : numbers) {
        if (number.isPadded)
            series[number.digits].add(number.value);
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i].isPadded)
            continue;
        const bool isFollowed = i + 1 < numbers.size() && numbers[i + 1].digits == numbers[i].digits;
        const std::uint32_t step = isFollowed ? numbers[i + 1].value - numbers[i].value : 0;
        seriesOf(series, numbers[i], step).add(numbers[i].value);
    }
    std::vector<NumberSeries> result;
    for (std::size_t width = 1; width < series.size(); ++width) {
        if (!series[width].numbers.empty())
            result.push_back({static_cast<int>(width), std::move(series[width].numbers)});
    }
    return result;
}

} // namespace vantrel

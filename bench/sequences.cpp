// Telling image sequences among a million names, against putting the same names in order.
#include "bench/json_library.h"
#include "tarn/media/imgseqanalyzer.h"

#include <algorithm>

using namespace vantrel;
using namespace vantrel::bench;

namespace {

constexpr int count = 1000000;

std::string padded(int number, std::size_t width)
{
    const std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

/// As a disk lists them: in no order. perSequence: of each of the sequences, whose names also hold a version.
std::vector<std::filesystem::path> names(int perSequence)
{
    std::vector<std::filesystem::path> files;
    for (int i = 0; i < count; ++i) {
        const std::string shot = padded(i / perSequence, 4);
        files.emplace_back("/media/show/sh" + shot + "_comp_v003." + padded(i % perSequence + 1001, 4) +
                           ".exr");
    }
    std::ranges::shuffle(files, std::mt19937(7));
    return files;
}

bool measure(const char* name, int perSequence, double limit)
{
    const auto files = names(perSequence);
    std::vector<std::string> plain;
    for (const auto& file : files)
        plain.push_back(file.native());
    std::size_t found = 0;
    const double ours = bestOf(3, [&] { found = ImgSeqAnalyzer().findSequences(files, {}).size(); });
    if (found != std::size_t(count / perSequence))
        return false;
    std::vector<std::string> sorted;
    const double theirs = bestOf(3, [&] {
        sorted = plain;
        std::ranges::sort(sorted);
    });
    const std::string row = std::string("sequences/") + name;
    report(row, "std::sort of the names", ours * 1000, theirs * 1000, "ms", theirs / ours, 0.5);
    report(row + "-bound", "what an operator is to wait at most", ours * 1000, limit, "ms",
           limit / (ours * 1000), 1);
    return true;
}

} // namespace

int main()
{
    return measure("1-of-1000000", count, 2000) && measure("1000-of-1000", 1000, 2000) ? 0 : 1;
}

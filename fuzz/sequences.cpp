// A folder's names, one a line: no picture is of two sequences, each sequence has all that it says and no
// more, and its pattern is read as it was written.
#include "tarn/media/imgseqanalyzer.h"

#include <cstdint>
#include <cstdlib>
#include <set>

using namespace vantrel;

namespace {

void check(const ImageSequenceInfo& info, std::set<std::string>& names)
{
    if (info.firstFrame >= info.lastFrame || info.sourceName != info.format.toString() ||
        ImageSequenceFormat::parse(info.sourceName) != info.format || info.pictureCount() < 2)
        std::abort();
    std::size_t last = info.firstFrame;
    for (const FrameRange& gap : info.missing) {
        if (gap.first <= last || gap.last < gap.first || gap.last >= info.lastFrame)
            std::abort();
        last = gap.last;
    }
    info.forEachFrame([&](std::size_t frame) {
        if (names.erase(info.format.file(frame)) != 1)
            std::abort();
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::set<std::string> names;
    std::vector<std::filesystem::path> files;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        names.emplace(line);
        files.emplace_back(line);
    }
    const auto lister = [&](const std::filesystem::path&) { return files; };
    const auto given = ImgSeqAnalyzer().findSequences(files, {});
    for (const ImageSequenceInfo& info : given)
        check(info, names);
    // Whole paths are taken as they are, names are put behind the folder's.
    for (const ImageSequenceInfo& info : ImgSeqAnalyzer().findSequences({"/folder"}, lister)) {
        if (info.firstFrame >= info.lastFrame)
            std::abort();
    }
    return 0;
}

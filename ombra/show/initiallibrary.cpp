#include "ombra/show/initiallibrary.h"

#include "ombra/show/contenturl.h"
#include "tarn/log/log.h"
#include "tarn/media/imgseqanalyzer.h"
#include "tarn/media/mediasuffixes.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vantrel::ombra {

namespace {

constexpr double sequenceRate = 25; // frames a second, until somebody says otherwise
constexpr std::size_t sequenceMinimum = 3;

/// In small letters and without the dot.
std::string suffixOf(const std::filesystem::path& path)
{
    std::string suffix = path.extension().string();
    suffix.erase(0, 1);
    std::ranges::transform(suffix, suffix.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix;
}

bool isMedia(const std::filesystem::path& path)
{
    const std::string suffix = suffixOf(path);
    return std::ranges::find(playedPictureSuffixes, suffix) != playedPictureSuffixes.end() ||
           std::ranges::find(playedMovieSuffixes, suffix) != playedMovieSuffixes.end();
}

std::vector<std::filesystem::path> listFiles(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    std::error_code code;
    using Walk = std::filesystem::recursive_directory_iterator;
    for (Walk it(folder, std::filesystem::directory_options::skip_permission_denied, code), end;
         !code && it != end; it.increment(code)) {
        std::error_code ignored;
        const std::string name = it->path().filename().string();
        if (name.starts_with('.')) {
            it.disable_recursion_pending();
            continue;
        }
        if (it->is_regular_file(ignored) && isMedia(it->path()))
            files.push_back(it->path().lexically_relative(folder));
    }
    if (code)
        Log::write(LogLevel::Warning, "vantrel.show",
                   "cannot list all of " + folder.string() + ": " + code.message());
    std::ranges::sort(files);
    return files;
}

/// Few pictures are just pictures where nobody looks at what was found: "logo1" to "logo9" are none of a
/// sequence either.
bool isSurelySequence(const ImageSequenceInfo& sequence)
{
    return sequence.pictureCount() >= sequenceMinimum &&
           (sequence.format.width() > 1 || sequence.lastFrame >= 10);
}

/// By the paths of their pictures.
std::map<std::string, const ImageSequenceInfo*> picturesOf(const std::vector<ImageSequenceInfo>& sequences)
{
    std::map<std::string, const ImageSequenceInfo*> pictures;
    for (const ImageSequenceInfo& sequence : sequences) {
        if (isSurelySequence(sequence))
            sequence.forEachFrame(
                [&](std::size_t frame) { pictures.emplace(sequence.format.file(frame), &sequence); });
    }
    return pictures;
}

} // namespace

MediaLibrary makeInitialLibrary(const std::filesystem::path& mediaFolder)
{
    const std::vector<std::filesystem::path> files = listFiles(mediaFolder);
    const auto sequences = ImgSeqAnalyzer(playedPictureSuffixes).findSequences(files, {});
    const auto pictures = picturesOf(sequences);
    MediaCollection collection("Media");
    int index = MediaCollection::slotIndexMin;
    std::set<const ImageSequenceInfo*> taken;
    for (const auto& file : files) {
        if (index > MediaCollection::slotIndexMax)
            break;
        const auto picture = pictures.find(file.native());
        if (picture == pictures.end()) {
            collection.insertMediaSlot(index++, MediaSlot(file.stem().string(), contentUrl(file)), true);
            continue;
        }
        const ImageSequenceInfo* const sequence = picture->second;
        if (!taken.insert(sequence).second)
            continue;
        const std::filesystem::path pattern = sequence->format.toString();
        MediaSlot slot(pattern.filename().string(), contentUrl(pattern));
        slot.setFrameRate(sequenceRate);
        slot.setFirstFrameNum(static_cast<int>(sequence->firstFrame));
        slot.setLastFrameNum(static_cast<int>(sequence->lastFrame));
        collection.insertMediaSlot(index++, slot, true);
    }
    MediaLibrary library;
    library.insertMediaCollection(1, collection, true);
    return library;
}

} // namespace vantrel::ombra

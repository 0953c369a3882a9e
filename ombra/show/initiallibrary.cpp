#include "ombra/show/initiallibrary.h"

#include "ombra/decode/mediaprobe.h"
#include "ombra/decode/mediaurl.h"
#include "ombra/show/contenturl.h"
#include "tarn/log/log.h"
#include "tarn/media/mediaenums.h"
#include "util/mediasuffixes.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace vantrel::ombra {

namespace {

constexpr double sequenceRate = 25; // frames a second, until somebody says otherwise
constexpr int sequenceMinimum = 3;  // fewer numbered pictures are just pictures

/// In small letters and without the dot.
std::string suffixOf(const std::filesystem::path& path)
{
    std::string suffix = path.extension().string();
    suffix.erase(0, 1);
    std::ranges::transform(suffix, suffix.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix;
}

bool isStill(const std::filesystem::path& path)
{
    return std::ranges::find(pictureSuffixes, suffixOf(path)) != pictureSuffixes.end();
}

bool isMedia(const std::filesystem::path& path)
{
    return isStill(path) || std::ranges::find(movieSuffixes, suffixOf(path)) != movieSuffixes.end();
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

struct Range
{
    int first = 0, last = 0, count = 0;
};

} // namespace

MediaLibrary makeInitialLibrary(const std::filesystem::path& mediaFolder)
{
    const std::vector<std::filesystem::path> files = listFiles(mediaFolder);
    std::map<std::filesystem::path, Range> sequences; // by pattern
    for (const auto& file : files) {
        int number = 0;
        const std::string pattern =
            isStill(file) ? sequencePattern(file.filename().string(), number) : std::string();
        if (pattern.empty())
            continue;
        Range& range = sequences[file.parent_path() / pattern];
        range.first = range.count == 0 ? number : std::min(range.first, number);
        range.last = std::max(range.last, number);
        ++range.count;
    }
    MediaCollection collection("Media");
    int index = MediaCollection::slotIndexMin;
    for (const auto& file : files) {
        if (index > MediaCollection::slotIndexMax)
            break;
        int number = 0;
        const std::string pattern =
            isStill(file) ? sequencePattern(file.filename().string(), number) : std::string();
        const auto range = sequences.find(file.parent_path() / pattern);
        if (pattern.empty() || range == sequences.end() || range->second.count < sequenceMinimum) {
            collection.insertMediaSlot(index++, MediaSlot(file.stem().string(), contentUrl(file)), true);
            continue;
        }
        if (number != range->second.first)
            continue;
        MediaSlot slot(pattern, contentUrl(file.parent_path() / pattern));
        slot.setFrameRate(sequenceRate);
        slot.setFirstFrameNum(range->second.first);
        slot.setLastFrameNum(range->second.last);
        collection.insertMediaSlot(index++, slot, true);
    }
    MediaLibrary library;
    library.insertMediaCollection(1, collection, true);
    return library;
}

bool probeSlot(const std::filesystem::path& mediaFolder, MediaSlot& slot)
{
    const MediaSlot before = slot;
    const auto file = resolveMediaUrl(mediaFolder, slot.getUrl());
    if (!file)
        return false;
    std::string error;
    const auto info = probeMedia(*file, &error);
    if (!info)
        return false;
    slot.setMediaType(info->type);
    slot.setIsPlayable(info->playable);
    if (info->type == MediaType::ImageSequence)
        return !(slot == before); // its length follows from the frames
    if (info->duration > 0)
        slot.setInherentMediaDuration(info->duration);
    else if (before.getMediaType() == MediaType::VideoFile || before.getMediaType() == MediaType::AudioFile)
        slot.setInherentMediaDuration(std::nullopt); // another file took its place
    return !(slot == before);
}

} // namespace vantrel::ombra

#include "ombra/show/initiallibrary.h"

#include "ombra/show/contenturl.h"
#include "tarn/log/log.h"
#include "util/mediasuffixes.h"

#include <algorithm>
#include <map>
#include <set>
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
    return std::ranges::find(playedPictureSuffixes, suffixOf(path)) != playedPictureSuffixes.end();
}

bool isMedia(const std::filesystem::path& path)
{
    return isStill(path) ||
           std::ranges::find(playedMovieSuffixes, suffixOf(path)) != playedMovieSuffixes.end();
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

/// Which sequence each numbered picture belongs to. Numbers that outgrow the others' digits go on with them,
/// 995 to 1006, unless there are padded ones of their own length.
class SequenceFinder
{
public:
    struct Range
    {
        int first = 0, last = 0, count = 0;
    };

    explicit SequenceFinder(const std::vector<std::filesystem::path>& files)
    {
        for (const auto& file : files) {
            const auto name = isStill(file) ? parseNumberedName(file.filename().string()) : std::nullopt;
            if (!name)
                continue;
            Group& group = m_groups[file.parent_path() / (name->prefix + "/" + name->suffix)];
            group.narrowest = std::min(group.narrowest, name->digits);
            if (name->padded)
                group.padded.insert(name->digits);
        }
        for (const auto& file : files) {
            const std::filesystem::path pattern = patternOf(file);
            if (pattern.empty())
                continue;
            const int number = parseNumberedName(file.filename().string())->number;
            Range& range = m_ranges[pattern];
            range.first = range.count == 0 ? number : std::min(range.first, number);
            range.last = std::max(range.last, number);
            ++range.count;
        }
    }

    /// Relative to the media folder, as the file is; empty for what is of no sequence.
    std::filesystem::path patternOf(const std::filesystem::path& file) const
    {
        const auto name = parseNumberedName(file.filename().string());
        if (!name || !isStill(file))
            return {};
        const Group& group = m_groups.at(file.parent_path() / (name->prefix + "/" + name->suffix));
        const int width = group.padded.contains(name->digits) ? name->digits : group.narrowest;
        return file.parent_path() / name->pattern(width);
    }

    /// Null where so few pictures are just pictures: "logo1" to "logo9" are none of a sequence either.
    const Range* rangeOf(const std::filesystem::path& pattern) const
    {
        const auto range = m_ranges.find(pattern);
        const bool single = pattern.string().find("%01d") != std::string::npos;
        const bool isSequence = range != m_ranges.end() && range->second.count >= sequenceMinimum &&
                                (!single || range->second.last >= 10);
        return isSequence ? &range->second : nullptr;
    }

private:
    struct Group
    {
        int narrowest = 9;
        std::set<int> padded; // lengths of numbers that begin with a zero
    };
    std::map<std::filesystem::path, Group> m_groups; // by what stands around the number
    std::map<std::filesystem::path, Range> m_ranges; // by pattern
};

} // namespace

MediaLibrary makeInitialLibrary(const std::filesystem::path& mediaFolder)
{
    const std::vector<std::filesystem::path> files = listFiles(mediaFolder);
    const SequenceFinder sequences(files);
    MediaCollection collection("Media");
    int index = MediaCollection::slotIndexMin;
    std::set<std::filesystem::path> taken; // patterns
    for (const auto& file : files) {
        if (index > MediaCollection::slotIndexMax)
            break;
        const std::filesystem::path pattern = sequences.patternOf(file);
        const SequenceFinder::Range* range = sequences.rangeOf(pattern);
        if (!range) {
            collection.insertMediaSlot(index++, MediaSlot(file.stem().string(), contentUrl(file)), true);
            continue;
        }
        if (!taken.insert(pattern).second)
            continue;
        MediaSlot slot(pattern.filename().string(), contentUrl(pattern));
        slot.setFrameRate(sequenceRate);
        slot.setFirstFrameNum(range->first);
        slot.setLastFrameNum(range->last);
        collection.insertMediaSlot(index++, slot, true);
    }
    MediaLibrary library;
    library.insertMediaCollection(1, collection, true);
    return library;
}

} // namespace vantrel::ombra

#include "ombra/decode/mediaurl.h"

#include "ombra/base/percent.h"
#include "tarn/media/imagesequenceformat.h"

#include <algorithm>
#include <charconv>

namespace vantrel::ombra {

namespace {

bool isBelow(const std::filesystem::path& folder, const std::filesystem::path& path)
{
    const auto [inFolder, inPath] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return inFolder == folder.end() && inPath != path.end();
}

} // namespace

std::optional<std::filesystem::path> resolveMediaUrl(const std::filesystem::path& mediaFolder,
                                                     std::string_view contentUrl)
{
    constexpr std::string_view scheme = "file:///";
    if (!contentUrl.starts_with(scheme))
        return std::nullopt;
    const auto relative = decodePercent(contentUrl.substr(scheme.size()));
    if (!relative || relative->empty() || relative->find('\0') != std::string::npos ||
        relative->front() == '/')
        return std::nullopt;
    const std::filesystem::path path(*relative);
    if (std::ranges::find(path, std::filesystem::path("..")) != path.end())
        return std::nullopt;

    std::error_code code;
    const auto folder = std::filesystem::weakly_canonical(mediaFolder, code);
    if (code)
        return std::nullopt;
    // A link in the folder may point anywhere; what it names counts, not where it lies.
    const auto file = std::filesystem::weakly_canonical(folder / path, code);
    if (code || !isBelow(folder, file))
        return std::nullopt;
    return file;
}

std::filesystem::path SequencePattern::file(int number) const
{
    return ImageSequenceFormat(prefix, width, suffix).file(static_cast<std::size_t>(number));
}

std::optional<SequencePattern> parseSequencePattern(const std::filesystem::path& path)
{
    const auto format = ImageSequenceFormat::parse(path.native());
    if (!format)
        return std::nullopt;
    return SequencePattern{format->prefix(), format->suffix(), format->width()};
}

std::filesystem::path sequencePicture(const SequencePattern& pattern, int number)
{
    const std::filesystem::path file = pattern.file(number);
    std::error_code code;
    if (!std::filesystem::is_symlink(file, code))
        return file;
    const auto folder = std::filesystem::weakly_canonical(file.parent_path(), code);
    const auto target = std::filesystem::weakly_canonical(file, code);
    return !code && isBelow(folder, target) ? target : std::filesystem::path();
}

std::vector<int> findSequenceNumbers(const SequencePattern& pattern)
{
    const std::filesystem::path probe(pattern.prefix + "0");
    const std::string start = pattern.prefix.substr(pattern.prefix.rfind('/') + 1);
    std::vector<int> numbers;
    std::error_code code;
    for (std::filesystem::directory_iterator i(probe.parent_path(), code), end; !code && i != end;
         i.increment(code)) {
        const std::string name = i->path().filename().string();
        const std::size_t fixed = start.size() + pattern.suffix.size();
        if (name.size() < fixed + static_cast<std::size_t>(pattern.width) || name.size() > fixed + 9 ||
            !name.starts_with(start) || !name.ends_with(pattern.suffix))
            continue;
        int number = 0;
        const char* first = name.data() + start.size();
        const char* last = name.data() + name.size() - pattern.suffix.size();
        const auto [rest, parsed] = std::from_chars(first, last, number);
        if (parsed != std::errc() || rest != last || number < 0 || pattern.file(number).filename() != name)
            continue;
        std::error_code ignored;
        if (!i->is_symlink(ignored) || !sequencePicture(pattern, number).empty())
            numbers.push_back(number);
    }
    std::ranges::sort(numbers);
    return numbers;
}

std::optional<std::pair<int, int>> findSequenceRange(const SequencePattern& pattern)
{
    const std::vector<int> numbers = findSequenceNumbers(pattern);
    if (numbers.empty())
        return std::nullopt;
    return std::pair(numbers.front(), numbers.back());
}

} // namespace vantrel::ombra

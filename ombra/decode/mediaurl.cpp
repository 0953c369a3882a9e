#include "ombra/decode/mediaurl.h"

#include <algorithm>
#include <charconv>

namespace vantrel::ombra {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::optional<std::string> decodePercent(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        out += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return out;
}

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
    std::string digits = std::to_string(number);
    if (digits.size() < static_cast<std::size_t>(width))
        digits.insert(0, static_cast<std::size_t>(width) - digits.size(), '0');
    return prefix + digits + suffix;
}

std::optional<SequencePattern> parseSequencePattern(const std::filesystem::path& path)
{
    const std::string text = path.string();
    const std::size_t name = text.rfind('/') == std::string::npos ? 0 : text.rfind('/') + 1;
    for (std::size_t at = text.find('%', name); at != std::string::npos; at = text.find('%', at + 1)) {
        int width = 0;
        const char* begin = text.data() + at + 1;
        const char* end = text.data() + text.size();
        const auto [rest, code] = std::from_chars(begin, end, width);
        if (code != std::errc() || rest - begin < 2 || rest == end || *rest != 'd' || width < 1 || width > 9)
            continue;
        return SequencePattern{text.substr(0, at), std::string(rest + 1, end), width};
    }
    return std::nullopt;
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

#include "tarn/media/imgseqanalyzer.h"

#include "tarn/log/log.h"
#include "tarn/media/numberfields.h"
#include "tarn/media/picturegroup.h"

#include <algorithm>
#include <deque>
#include <string>
#include <unordered_map>

namespace vantrel {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// As a reader orders names: runs of digits by their value.
bool isBefore(std::string_view a, std::string_view b)
{
    std::size_t i = 0;
    std::size_t j = 0;
    const auto run = [](std::string_view text, std::size_t& at) {
        while (at < text.size() && text[at] == '0')
            ++at;
        const std::size_t start = at;
        while (at < text.size() && isDigit(text[at]))
            ++at;
        return text.substr(start, at - start);
    };
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const std::string_view left = run(a, i);
            const std::string_view right = run(b, j);
            if (left.size() != right.size())
                return left.size() < right.size();
            if (left != right)
                return left < right;
        } else if (a[i] != b[j]) {
            return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]);
        } else {
            ++i, ++j;
        }
    }
    if (a.size() - i != b.size() - j)
        return a.size() - i < b.size() - j;
    return a < b;
}

/// The files whose paths are the same but for the numbers in their names.
class Groups
{
public:
    void add(std::string_view path)
    {
        const std::size_t name = path.rfind('/') + 1; // 0 without one
        if (path.substr(name).starts_with('.'))
            return; // what a system keeps beside the pictures
        findNumberFields(path.substr(name), m_fields);
        if (m_fields.empty())
            return;
        // A slash stands for each number: there is none in names. Where the name begins is said last:
        // "t/_2.png" and "t1_2.png" would look the same.
        m_shape.assign(path.substr(0, name));
        std::size_t at = name;
        for (const NumberField& field : m_fields) {
            m_shape.append(path, at, name + field.start - at).append(1, '/');
            at = name + field.end();
        }
        m_shape.append(path, at).append(1, '/').append(std::to_string(name));
        if (!m_last || m_shape != *m_lastShape) {
            const auto group = m_groups.try_emplace(m_shape, path, name, m_fields).first;
            m_lastShape = &group->first;
            m_last = &group->second;
        }
        m_last->add(path, m_fields);
    }

    void findSequences(std::vector<ImageSequenceInfo>& result) const
    {
        for (const auto& [shape, group] : m_groups)
            group.findSequences(result);
    }

private:
    std::unordered_map<std::string, PictureGroup> m_groups;
    const std::string* m_lastShape = nullptr; // files of a sequence come one after the other
    PictureGroup* m_last = nullptr;
    std::vector<NumberField> m_fields;
    std::string m_shape;
};

/// What may lie in a folder that is gone by now, or is none.
std::vector<std::filesystem::path> listed(const std::filesystem::path& folder,
                                          const ImgSeqAnalyzer::Lister& lister)
{
    std::vector<std::filesystem::path> files;
    if (!lister)
        return files;
    try {
        files = lister(folder);
    } catch (const std::filesystem::filesystem_error& error) {
        Log::write(LogLevel::Warning, "vantrel.media", error.what());
        return {};
    }
    for (std::filesystem::path& file : files) {
        if (file.native().find('/') == std::string::npos)
            file = folder / file;
    }
    return files;
}

/// The texts of a million paths lie anywhere: waiting for each is most of the time that they take.
void fetchAhead(const std::vector<std::filesystem::path>& files, std::size_t at)
{
    constexpr std::size_t distance = 16;
    if (at + distance >= files.size())
        return;
    const std::string& text = files[at + distance].native();
    __builtin_prefetch(text.data());
    __builtin_prefetch(text.data() + text.size());
}

} // namespace

ImgSeqAnalyzer::ImgSeqAnalyzer()
    : ImgSeqAnalyzer(ImageSequenceFormat::getSupportedImageExtensions())
{
}

ImgSeqAnalyzer::ImgSeqAnalyzer(std::span<const std::string_view> suffixes)
    : m_suffixes(suffixes)
{
}

bool ImgSeqAnalyzer::isPicture(std::string_view path) const
{
    const std::size_t dot = path.rfind('.');
    if (dot == std::string_view::npos)
        return false;
    const auto lowered = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    const std::string_view suffix = path.substr(dot + 1);
    return std::ranges::any_of(
        m_suffixes, [&](std::string_view one) { return std::ranges::equal(suffix, one, {}, lowered); });
}

std::vector<ImageSequenceInfo> ImgSeqAnalyzer::findSequences(const std::vector<std::filesystem::path>& paths,
                                                             const Lister& lister) const
{
    Groups groups;
    std::deque<std::vector<std::filesystem::path>> folders; // the groups hold views of paths
    const auto add = [&](const std::vector<std::filesystem::path>& files, std::size_t i) {
        fetchAhead(files, i);
        const bool isOne = isPicture(files[i].native());
        if (isOne)
            groups.add(files[i].native());
        return isOne;
    };
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (add(paths, i))
            continue;
        const auto& files = folders.emplace_back(listed(paths[i], lister));
        for (std::size_t j = 0; j < files.size(); ++j)
            add(files, j);
    }
    std::vector<ImageSequenceInfo> result;
    groups.findSequences(result);
    std::ranges::sort(result, isBefore, &ImageSequenceInfo::sourceName);
    return result;
}

} // namespace vantrel

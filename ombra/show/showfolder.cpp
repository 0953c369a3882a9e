#include "ombra/show/showfolder.h"

#include "ombra/base/atomicfile.h"
#include "ombra/show/showfile.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <sys/stat.h>
#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::string_view suffix = ".show";

bool isPlain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

/// A name comes from outside: encoded, and "/" and a leading "." with it, it is one harmless file name.
std::string encoded(const std::string& name)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string file;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain(c))
            file += c;
        else
            file += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return file;
}

/// Nothing for a name that no show was saved under.
std::optional<std::string> decoded(std::string_view file)
{
    std::string name;
    for (std::size_t i = 0; i < file.size(); ++i) {
        unsigned byte = 0;
        if (file[i] == '%' && i + 2 < file.size() &&
            std::from_chars(&file[i + 1], &file[i + 3], byte, 16).ptr == &file[i + 3]) {
            name += static_cast<char>(byte);
            i += 2;
        } else if (isPlain(file[i])) {
            name += file[i];
        } else {
            return std::nullopt;
        }
    }
    return ShowFolder::isName(name) ? std::optional(name) : std::nullopt;
}

std::vector<std::filesystem::path> filesOf(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    std::error_code code;
    for (std::filesystem::directory_iterator it(folder, code), end; !code && it != end; it.increment(code)) {
        if (it->path().extension() == suffix)
            files.push_back(it->path());
    }
    std::ranges::sort(files);
    return files;
}

/// The number (microseconds since 1970, mostly) and what came next, of "<number>-<word>"; false for another's
/// name.
bool parseId(const std::string& id, std::int64_t& number, std::string& before)
{
    constexpr std::int64_t largest = std::int64_t{1} << 62; // there is one above it
    const auto [end, code] = std::from_chars(id.data(), id.data() + id.size(), number);
    if (code != std::errc() || number < 0 || number > largest || end == id.data() + id.size() || *end != '-')
        return false;
    before.assign(end + 1, id.data() + id.size());
    return !before.empty() && std::ranges::all_of(before, [](char c) { return c >= 'a' && c <= 'z'; });
}

std::optional<std::string> readShow(const std::filesystem::path& path, const char* none, std::string* error)
{
    auto text = readWholeFile(path, showfile::largest, error);
    if (!text && error && error->empty())
        *error = none;
    return text;
}

bool write(const std::filesystem::path& path, const std::string& text, std::string* error)
{
    std::error_code ignored; // the writing tells
    std::filesystem::create_directories(path.parent_path(), ignored);
    return writeFileAtomically(path, text, error);
}

} // namespace

ShowFolder::ShowFolder(std::filesystem::path stateFolder)
    : m_shows(stateFolder / "shows")
    , m_copies(std::move(stateFolder) / "earlier")
{
}

std::vector<ShowFolder::Entry> ShowFolder::shows()
{
    std::vector<Entry> all;
    for (const auto& path : filesOf(m_shows)) {
        const auto name = decoded(path.stem().string());
        if (!name)
            continue;
        Entry entry;
        look(path, nullptr, entry);
        entry.name = *name;
        all.push_back(std::move(entry));
    }
    return all;
}

std::vector<ShowFolder::Entry> ShowFolder::copies(const Json& present)
{
    std::vector<Entry> all;
    for (const auto& [key, path] : copyFiles()) {
        Entry entry;
        look(path, &present, entry);
        entry.name = key.second;
        entry.id = path.stem().string();
        all.push_back(std::move(entry));
    }
    std::ranges::reverse(all);
    return all;
}

/// Reads what is in a file, but not again what it has read already.
void ShowFolder::look(const std::filesystem::path& path, const Json* present, Entry& entry)
{
    struct stat status
    {
    };
    const bool isThere = ::stat(path.c_str(), &status) == 0;
    const auto known = m_known.find(path);
    if (isThere && known != m_known.end() && known->second.modified == status.st_mtime &&
        known->second.bytes == static_cast<std::uintmax_t>(status.st_size)) {
        entry = known->second;
        return;
    }
    entry.modified = status.st_mtime;
    entry.bytes = static_cast<std::uintmax_t>(status.st_size);
    if (const auto text = readShow(path, "The file is gone.", &entry.error)) {
        showfile::Reading reading = showfile::read(*text);
        entry.error = reading.status != 200 ? reading.error : reading.libraryError;
        const Json library = reading.library.toJson();
        entry.contents = ShowContents::of(library);
        if (present) {
            entry.library = sharing(*present, library);
            entry.settings = reading.show.get("settings");
        }
    }
    m_known[path] = entry;
}

bool ShowFolder::save(const std::string& name, const std::string& text, std::string* error)
{
    m_known.erase(pathOf(name)); // two saves of one second may have one size
    return write(pathOf(name), text, error);
}

std::optional<std::string> ShowFolder::read(const std::string& name, std::string* error) const
{
    return readShow(pathOf(name), "no show was saved under that name", error);
}

std::optional<std::string> ShowFolder::readCopy(const std::string& id, std::string* error) const
{
    std::int64_t number = 0;
    std::string before;
    const std::filesystem::path path = parseId(id, number, before) ? m_copies / (id + ".show") : m_copies;
    return readShow(path, "that state is no longer kept", error);
}

bool ShowFolder::remove(const std::string& name, std::string* error)
{
    m_known.erase(pathOf(name));
    std::error_code code;
    if (std::filesystem::remove(pathOf(name), code))
        return true;
    *error = code ? code.message() : "no show was saved under that name";
    return false;
}

/// Above all that there are, also where the clock stands before them: the oldest go by their numbers.
bool ShowFolder::keepCopy(const std::string& before, const std::string& text, std::string* error)
{
    const auto now = std::chrono::duration_cast<std::chrono::microseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    auto files = copyFiles();
    const std::int64_t newest = files.empty() ? 0 : files.rbegin()->first.first;
    const std::int64_t number = std::max<std::int64_t>(now, newest + 1);
    if (!write(m_copies / (std::to_string(number) + '-' + before + ".show"), text, error))
        return false;
    while (files.size() >= keptCopies) { // with the new one
        const std::filesystem::path oldest = files.extract(files.begin()).mapped();
        std::error_code ignored; // it goes with the next one
        std::filesystem::remove(oldest, ignored);
        m_known.erase(oldest);
    }
    return true;
}

bool ShowFolder::keepReplaced(const std::string& name, const Json& library, std::string* error)
{
    std::string none; // also what cannot be read is nothing that could be brought back
    const auto text = read(name, &none);
    if (!text)
        return false;
    const showfile::Reading before = showfile::read(*text);
    return before.status == 200 && !(before.show.get("library") == library) && keepCopy("save", *text, error);
}

/// By their numbers and what came after them, the oldest first.
std::map<std::pair<std::int64_t, std::string>, std::filesystem::path> ShowFolder::copyFiles() const
{
    std::map<std::pair<std::int64_t, std::string>, std::filesystem::path> files;
    for (auto& path : filesOf(m_copies)) {
        std::int64_t number = 0;
        std::string before;
        if (parseId(path.stem().string(), number, before))
            files.emplace(std::pair(number, before), std::move(path));
    }
    return files;
}

std::filesystem::path ShowFolder::pathOf(const std::string& name) const
{
    return m_shows / (encoded(name) + std::string(suffix));
}

} // namespace vantrel::ombra

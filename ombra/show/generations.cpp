#include "ombra/show/generations.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>

namespace vantrel::ombra {

namespace {

/// The generation of a name of this form; false when it is another file's.
bool parseName(std::string_view name, std::string_view stem, std::string_view suffix, std::uint64_t& out)
{
    if (!name.starts_with(stem) || !name.ends_with(suffix) || name.size() < stem.size() + suffix.size())
        return false;
    std::string_view number = name.substr(stem.size(), name.size() - stem.size() - suffix.size());
    out = 0;
    if (number.empty())
        return true;
    if (number.front() != '-')
        return false;
    number.remove_prefix(1);
    const auto [end, code] = std::from_chars(number.data(), number.data() + number.size(), out);
    return code == std::errc() && end == number.data() + number.size() && out > 0;
}

std::filesystem::path numbered(const char* stem, std::uint64_t generation, const char* suffix)
{
    char name[64];
    std::snprintf(name, sizeof name, "%s-%06llu%s", stem, static_cast<unsigned long long>(generation),
                  suffix);
    return name;
}

} // namespace

std::filesystem::path snapshotPath(const std::filesystem::path& folder, std::uint64_t generation)
{
    return folder / numbered("show", generation, ".json");
}

std::filesystem::path journalPath(const std::filesystem::path& folder, std::uint64_t generation)
{
    return folder / numbered("journal", generation, ".ndjson");
}

Generations Generations::find(const std::filesystem::path& folder)
{
    Generations found;
    std::error_code code;
    for (std::filesystem::directory_iterator it(folder, code), end; !code && it != end; it.increment(code)) {
        const std::string name = it->path().filename().string();
        std::uint64_t number = 0;
        if (parseName(name, "show", ".json", number))
            found.snapshots[number] = it->path();
        else if (parseName(name, "journal", ".ndjson", number))
            found.journals[number] = it->path();
    }
    return found;
}

std::uint64_t Generations::highest() const
{
    return std::max(snapshots.empty() ? 0 : snapshots.rbegin()->first,
                    journals.empty() ? 0 : journals.rbegin()->first);
}

void Generations::prune(std::size_t kept) const
{
    if (snapshots.size() <= kept)
        return;
    const std::uint64_t oldest = std::prev(snapshots.end(), static_cast<std::ptrdiff_t>(kept))->first;
    std::error_code ignored;
    for (const auto* files : {&snapshots, &journals}) {
        for (const auto& [number, path] : *files) {
            if (number < oldest)
                std::filesystem::remove(path, ignored);
        }
    }
}

} // namespace vantrel::ombra

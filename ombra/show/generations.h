#pragma once

#include <cstdint>
#include <filesystem>
#include <map>

namespace vantrel::ombra {

/// The files of the show by their generation: "show-000012.json" holds all that came before it, and
/// "journal-000012.ndjson" the edits since. Generation 0 are "show.json" and "journal.ndjson" of servers
/// before 0.2, which had no numbers in their names.
struct Generations
{
    std::map<std::uint64_t, std::filesystem::path> snapshots;
    std::map<std::uint64_t, std::filesystem::path> journals;

    static Generations find(const std::filesystem::path& folder);
    /// The highest number that is in use; 0 without any.
    std::uint64_t highest() const;
    /// Removes all but the newest generations, of which so many are kept, and the journals that follow on
    /// none of them.
    void prune(std::size_t kept) const;
};

std::filesystem::path snapshotPath(const std::filesystem::path& folder, std::uint64_t generation);
std::filesystem::path journalPath(const std::filesystem::path& folder, std::uint64_t generation);

} // namespace vantrel::ombra

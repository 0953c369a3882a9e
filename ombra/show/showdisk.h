#pragma once

#include "tarn/json/json.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The show on the disk: a snapshot "show.json" and the edits since in "journal.ndjson", one a line. Both
/// carry a generation: a journal of an older one than the snapshot is in the snapshot already. Not
/// thread-safe; belongs to the loading thread first and to the writer's thread afterwards.
class ShowDisk
{
public:
    explicit ShowDisk(std::filesystem::path folder);
    ~ShowDisk();
    ShowDisk(const ShowDisk&) = delete;
    ShowDisk& operator=(const ShowDisk&) = delete;

    /// Creates the folder where needed and takes its lock. False, with the reason, when another server has
    /// it.
    bool open(std::string* error);

    struct Loaded
    {
        bool found = false;        // there was a sound snapshot
        Json library, settings;    // of the snapshot
        std::vector<Json> entries; // to be applied on it, in order
    };
    /// Reads what is there. A torn last line is dropped; a damaged file is moved aside and told in the log.
    /// False, with the reason, when a damaged file could not be kept: then nothing must be written.
    bool load(Loaded& out, std::string* error);

    /// Writes the snapshot of the next generation and starts an empty journal for it.
    bool writeSnapshot(const Json& library, const Json& settings, std::string* error);

    /// Appends lines (see encodeJournalLine) by one write and one fsync. On failure the journal ends where it
    /// did before.
    bool append(std::span<const std::string> lines, std::string* error);

    /// Whether the journal has grown so that a new snapshot pays.
    bool wantsSnapshot() const noexcept;

private:
    bool loadJournal(Loaded& out, std::string* error);
    bool startJournal(std::string* error);

    std::filesystem::path m_folder;
    int m_lock = -1;
    int m_journal = -1;
    std::uint64_t m_generation = 0;
    std::uint64_t m_journalBytes = 0;
    std::uint64_t m_journalEntries = 0;
    std::uint64_t m_snapshotBytes = 0;
};

} // namespace vantrel::ombra

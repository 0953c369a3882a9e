#pragma once

#include "tarn/json/json.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace vantrel::ombra {

struct LoadedShow;

/// Writes the show to the disk: snapshots of which the last three generations are kept, and to the newest a
/// journal of the edits since, one a line (see Generations). Not thread-safe; belongs to the loading thread
/// first and to the writer's thread afterwards.
class ShowDisk
{
public:
    static constexpr std::int64_t formatVersion = 1;
    static constexpr std::size_t keptGenerations = 3;

    explicit ShowDisk(std::filesystem::path folder);
    ~ShowDisk();
    ShowDisk(const ShowDisk&) = delete;
    ShowDisk& operator=(const ShowDisk&) = delete;

    /// Creates the folder where needed and takes its lock. False, with the reason, when another server has
    /// it and keeps it, the path cannot be one or what it holds cannot be read. A disk that takes nothing is
    /// no failure: writing then says so.
    bool open(std::string* error);

    /// What was loaded: the next snapshot follows on its generation, and puts its damaged files aside.
    void adopt(const LoadedShow& loaded);

    /// Writes the snapshot of the next generation and starts an empty journal for it. On failure the present
    /// generation goes on. Nothing is written over a show that came into the folder after the start.
    bool writeSnapshot(const Json& library, const Json& settings, std::string* error);

    /// Whether there is a journal to append to. A snapshot makes one.
    bool hasJournal() const noexcept { return m_journal >= 0; }

    /// Appends lines (see encodeJournalLine) by one write and one fsync. On failure the journal ends where it
    /// did before, or is closed.
    bool append(std::span<const std::string> lines, std::string* error);

    /// Whether the journal has grown so that a new snapshot pays.
    bool wantsSnapshot() const noexcept;

private:
    enum class Lock { Ours, Others, Unwritable, Impossible };
    Lock lock(std::string* error, std::chrono::milliseconds patience = {});
    void keepDamaged();
    void postponeSnapshot();

    std::filesystem::path m_folder;
    int m_lock = -1;
    int m_journal = -1;
    std::uint64_t m_generation = 0;
    std::uint64_t m_journalBytes = 0;
    std::uint64_t m_journalEntries = 0;
    std::uint64_t m_snapshotBytes = 0;
    std::uint64_t m_snapshotAtBytes = 0; // of a journal with however few entries
    std::vector<std::filesystem::path> m_badSnapshots, m_badJournals;
};

} // namespace vantrel::ombra

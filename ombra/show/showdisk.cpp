#include "ombra/show/showdisk.h"

#include "ombra/base/atomicfile.h"
#include "ombra/base/fail.h"
#include "ombra/show/generations.h"
#include "ombra/show/journalline.h"
#include "ombra/show/showloader.h"
#include "tarn/log/log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace vantrel::ombra {

namespace {

/// Bytes of a journal, far from what a start still reads.
constexpr std::uint64_t largeJournal = 256u << 20;
constexpr std::uint64_t untilNextTry = 64u << 20;
constexpr std::chrono::seconds lockPatience{2};

/// A server that was killed while it started another program leaves its lock with that for a moment.
bool takes(int file, std::chrono::milliseconds patience)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    bool isTaken = ::flock(file, LOCK_EX | LOCK_NB) == 0;
    if (!isTaken && patience.count() > 0)
        Log::write(LogLevel::Info, "vantrel.show",
                   "waits for the state folder, which another server still has");
    while (!isTaken && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        isTaken = ::flock(file, LOCK_EX | LOCK_NB) == 0;
    }
    return isTaken;
}

/// Whether a path is fine and the disk takes nothing just now.
bool isDiskTrouble(int code)
{
    constexpr std::array codes = {ENOSPC, EDQUOT, EROFS, EACCES, EPERM, EIO, EFBIG};
    return std::ranges::find(codes, code) != codes.end();
}

} // namespace

ShowDisk::ShowDisk(std::filesystem::path folder)
    : m_folder(std::move(folder))
{
}

ShowDisk::~ShowDisk()
{
    if (m_journal >= 0)
        ::close(m_journal);
    if (m_lock >= 0)
        ::close(m_lock);
}

bool ShowDisk::open(std::string* error)
{
    const Lock result = lock(error, lockPatience);
    if (result != Lock::Ours && result != Lock::Unwritable)
        return false;
    // What cannot be read is not empty: a new show in its place would later overwrite what is there.
    std::error_code code;
    for (std::filesystem::directory_iterator it(m_folder, code), end; !code && it != end;
         it.increment(code)) {
    }
    return !code || code == std::errc::no_such_file_or_directory ||
           fail(error, "cannot read " + m_folder.string() + ": " + code.message());
}

ShowDisk::Lock ShowDisk::lock(std::string* error, std::chrono::milliseconds patience)
{
    if (m_lock >= 0)
        return Lock::Ours;
    const auto failed = [error](const std::string& what, int code) {
        fail(error, what + ": " + std::strerror(code));
        return isDiskTrouble(code) ? Lock::Unwritable : Lock::Impossible;
    };
    std::error_code code;
    std::filesystem::create_directories(m_folder, code);
    if (code)
        return failed("cannot create " + m_folder.string(), code.value());
    const std::filesystem::path path = m_folder / "lock";
    int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    const int trouble = errno;
    if (file < 0 && isDiskTrouble(trouble))
        file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC); // one can be held on a read-only disk as well
    if (file < 0)
        return failed("cannot open " + path.string(), trouble);
    if (!takes(file, patience)) {
        ::close(file);
        fail(error, "another server uses the state folder " + m_folder.string());
        return Lock::Others;
    }
    m_lock = file;
    return Lock::Ours;
}

void ShowDisk::adopt(const LoadedShow& loaded)
{
    m_generation = loaded.generation;
    m_badSnapshots = loaded.badSnapshots;
    m_badJournals = loaded.badJournals;
}

bool ShowDisk::writeSnapshot(const Json& library, const Json& settings, std::string* error)
{
    const bool late = m_lock < 0;
    if (lock(error) != Lock::Ours)
        return false;
    if (late && Generations::find(m_folder).highest() > m_generation) {
        ::close(std::exchange(m_lock, -1));
        return fail(error,
                    "the state folder holds a show that was not there at the start; restart the server");
    }
    const std::uint64_t generation = m_generation + 1;
    const std::string head = encodeJournalLine(Json::object({{"generation", generation}}));
    // The journal first: a snapshot without one would hold edits that were answered as not saved.
    const std::filesystem::path path = journalPath(m_folder, generation);
    std::error_code ignored;
    if (!writeFileAtomically(path, head, error)) {
        postponeSnapshot();
        return false;
    }
    const std::string text = encodeJournalLine(Json::object({{"format", formatVersion},
                                                             {"generation", generation},
                                                             {"library", library},
                                                             {"settings", settings}}));
    const int journal = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (journal < 0 || !writeFileAtomically(snapshotPath(m_folder, generation), text, error)) {
        if (journal < 0)
            fail(error, "cannot open " + path.string() + ": " + std::strerror(errno));
        else
            ::close(journal);
        std::filesystem::remove(snapshotPath(m_folder, generation), ignored);
        std::filesystem::remove(path, ignored);
        syncFolder(m_folder); // a snapshot that came back would hide the edits that follow
        postponeSnapshot();
        return false;
    }
    if (m_journal >= 0)
        ::close(m_journal);
    m_journal = journal;
    m_generation = generation;
    m_snapshotBytes = text.size();
    m_journalBytes = head.size();
    m_journalEntries = 0;
    m_snapshotAtBytes = largeJournal;
    keepDamaged();
    Generations::find(m_folder).prune(keptGenerations);
    return true;
}

/// Not again with the next edit: each try writes the whole library down.
void ShowDisk::postponeSnapshot()
{
    m_journalEntries = 0;
    m_snapshotAtBytes = m_journalBytes + untilNextTry;
}

void ShowDisk::keepDamaged()
{
    const auto tell = [](const std::filesystem::path& path, const std::filesystem::path& kept) {
        Log::write(LogLevel::Error, "vantrel.show",
                   path.filename().string() + " is damaged; " +
                       (kept.empty() ? "it cannot be put aside" : "kept as " + kept.filename().string()));
    };
    for (const auto& path : std::exchange(m_badSnapshots, {}))
        tell(path, moveAside(path));
    for (const auto& path : std::exchange(m_badJournals, {}))
        tell(path, copyAside(path));
}

bool ShowDisk::append(std::span<const std::string> lines, std::string* error)
{
    if (m_journal < 0)
        return fail(error, "the journal is not open");
    std::string batch;
    for (const std::string& line : lines)
        (batch += line) += '\n'; // an empty line between: damage of a line feed joins no two edits
    if (!writeAll(m_journal, batch) || ::fdatasync(m_journal) != 0) {
        fail(error, std::string("cannot write the journal: ") + std::strerror(errno));
        // What follows must not stand behind half a line; without a clean end it goes to a new journal.
        if (::ftruncate(m_journal, static_cast<off_t>(m_journalBytes)) != 0) {
            ::close(m_journal);
            m_journal = -1;
        }
        return false;
    }
    m_journalBytes += batch.size();
    m_journalEntries += lines.size();
    return true;
}

bool ShowDisk::wantsSnapshot() const noexcept
{
    constexpr std::uint64_t enoughEntries = 1000;
    constexpr std::uint64_t enoughBytes = 1 << 20;
    return m_journalBytes >= m_snapshotAtBytes ||
           (m_journalEntries >= enoughEntries &&
            m_journalBytes >= std::max(enoughBytes, m_snapshotBytes / 2));
}

} // namespace vantrel::ombra

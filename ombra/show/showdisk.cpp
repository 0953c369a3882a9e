#include "ombra/show/showdisk.h"

#include "ombra/base/serverlog.h"
#include "ombra/show/atomicfile.h"
#include "ombra/show/journalline.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace vantrel::ombra {

namespace {

constexpr std::size_t maxFile = std::size_t{1} << 31;
constexpr std::int64_t formatVersion = 1;

bool fail(std::string* error, const std::string& text)
{
    if (error)
        *error = text;
    return false;
}

/// Keeps a damaged file under another name; false when even that fails.
bool keepDamaged(const std::filesystem::path& path, const std::string& why, std::string* error)
{
    const std::filesystem::path kept = moveAside(path);
    if (kept.empty())
        return fail(error, path.string() + " is damaged (" + why + ") and cannot be moved aside");
    logLine(LogLevel::Error, "vantrel.show",
            path.filename().string() + " is damaged (" + why + "); kept as " + kept.filename().string());
    return true;
}

bool parseSnapshot(const std::string& text, ShowDisk::Loaded& out, std::uint64_t& generation,
                   std::string& why)
{
    Json document;
    if (!Json::parseString(text, document, &why))
        return false;
    if (document.get("format").asInt() != formatVersion || !document.get("library").isObject() ||
        !document.get("settings").isObject() || !document.get("generation").isNumber()) {
        why = "not a show of this format";
        return false;
    }
    out.library = document.get("library");
    out.settings = document.get("settings");
    generation = document.get("generation").asUInt();
    return true;
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
    std::error_code code;
    std::filesystem::create_directories(m_folder, code);
    if (code)
        return fail(error, "cannot create " + m_folder.string() + ": " + code.message());
    const std::filesystem::path path = m_folder / "lock";
    m_lock = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (m_lock < 0)
        return fail(error, "cannot open " + path.string() + ": " + std::strerror(errno));
    if (::flock(m_lock, LOCK_EX | LOCK_NB) != 0)
        return fail(error, "another server uses the state folder " + m_folder.string());
    return true;
}

bool ShowDisk::load(Loaded& out, std::string* error)
{
    const std::filesystem::path path = m_folder / "show.json";
    std::string why;
    const auto text = readWholeFile(path, maxFile, &why);
    if (!text && !why.empty())
        return fail(error, why);
    if (text) {
        m_snapshotBytes = text->size();
        out.found = parseSnapshot(*text, out, m_generation, why);
        if (!out.found && !keepDamaged(path, why, error))
            return false;
    }
    return loadJournal(out, error);
}

bool ShowDisk::loadJournal(Loaded& out, std::string* error)
{
    const std::filesystem::path path = m_folder / "journal.ndjson";
    std::string why;
    const auto text = readWholeFile(path, maxFile, &why);
    if (!text)
        return why.empty() || fail(error, why);
    if (!out.found)
        return text->empty() || keepDamaged(path, "there is no snapshot that it belongs to", error);

    bool headed = false;
    std::size_t start = 0;
    while (start < text->size()) {
        const std::size_t end = text->find('\n', start);
        const bool torn = end == std::string::npos;
        Json entry;
        const bool sound =
            !torn && decodeJournalLine(std::string_view(*text).substr(start, end - start), entry);
        if (!sound && (torn || end + 1 == text->size())) {
            logLine(LogLevel::Warning, "vantrel.show", "dropping the torn last line of the journal");
            return true;
        }
        if (!sound)
            return keepDamaged(path, "line at byte " + std::to_string(start), error);
        start = end + 1;
        if (!headed) {
            headed = true;
            const std::uint64_t generation = entry.get("generation").asUInt();
            if (generation < m_generation)
                return true; // its edits are in the snapshot
            if (generation > m_generation)
                return keepDamaged(path, "it belongs to a later snapshot", error);
            continue;
        }
        out.entries.push_back(std::move(entry));
    }
    return true;
}

bool ShowDisk::writeSnapshot(const Json& library, const Json& settings, std::string* error)
{
    const std::uint64_t generation = m_generation + 1;
    const Json document = Json::object({{"format", formatVersion},
                                        {"generation", generation},
                                        {"library", library},
                                        {"settings", settings}});
    const std::string text = document.toString();
    if (!writeFileAtomically(m_folder / "show.json", text, error))
        return false;
    m_generation = generation;
    m_snapshotBytes = text.size();
    return startJournal(error);
}

bool ShowDisk::startJournal(std::string* error)
{
    if (m_journal >= 0)
        ::close(m_journal);
    m_journal = -1;
    const std::filesystem::path path = m_folder / "journal.ndjson";
    const std::string head = encodeJournalLine(Json::object({{"generation", m_generation}}));
    if (!writeFileAtomically(path, head, error))
        return false;
    m_journal = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (m_journal < 0)
        return fail(error, "cannot open " + path.string() + ": " + std::strerror(errno));
    m_journalBytes = head.size();
    m_journalEntries = 0;
    return true;
}

bool ShowDisk::append(std::span<const std::string> lines, std::string* error)
{
    if (m_journal < 0)
        return fail(error, "the journal is not open");
    std::string batch;
    for (const std::string& line : lines)
        batch += line;
    if (!writeAll(m_journal, batch) || ::fdatasync(m_journal) != 0) {
        fail(error, std::string("cannot write the journal: ") + std::strerror(errno));
        // What follows must not stand behind half a line; without a clean end nothing more is taken.
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
    return m_journalEntries >= enoughEntries && m_journalBytes >= std::max(enoughBytes, m_snapshotBytes / 2);
}

} // namespace vantrel::ombra

#include "ombra/show/showloader.h"

#include "ombra/base/atomicfile.h"
#include "ombra/show/generations.h"
#include "ombra/show/journalline.h"
#include "ombra/show/showdisk.h"
#include "tarn/json/patch.h"

#include <string_view>

namespace vantrel::ombra {

namespace {

constexpr std::size_t maxFile = std::size_t{1} << 31;

struct Losses
{
    std::size_t edits = 0;
    bool torn = false; // the last line of a journal was not whole
};

/// An edit of the library, settings, or both.
bool replay(const Json& entry, LoadedShow& show)
{
    const Json* operations = entry.find("library");
    const Json* changed = entry.find("settings");
    Patch patch;
    if (operations && (!Patch::fromJson(*operations, patch) || show.library.applyDiff(patch) != 0))
        return false;
    if (!changed || !changed->isObject())
        return operations != nullptr;
    changed->forEachMember([&show](std::string_view path, const Json& value) {
        if (value.isNull())
            show.settings.erase(path);
        else
            show.settings.set(path, value);
        return true;
    });
    return true;
}

/// The snapshot's JSON, whose checksum fits; files of generation 0 have none.
bool readSnapshot(const std::filesystem::path& path, bool checked, Json& out, std::string& why)
{
    const auto text = readWholeFile(path, maxFile, &why);
    if (!text) {
        why = why.empty() ? "it is gone" : why;
        return false;
    }
    if (!checked)
        return Json::parseString(*text, out, &why);
    why = "its checksum does not fit";
    return text->ends_with('\n') &&
           decodeJournalLine(std::string_view(*text).substr(0, text->size() - 1), out);
}

bool takeSnapshot(const std::filesystem::path& path, bool checked, LoadedShow& show,
                  std::uint64_t& generation, std::string& why)
{
    Json document;
    if (!readSnapshot(path, checked, document, why))
        return false;
    const Json settings = document.get("settings");
    if (document.get("format").asInt() != ShowDisk::formatVersion || !settings.isObject() ||
        !document.get("generation").isNumber()) {
        why = "it is no show of this format";
        return false;
    }
    MediaLibrary library;
    if (!library.parseJson(document.get("library"), &why))
        return false;
    show.library = library;
    show.settings = settings;
    generation = document.get("generation").asUInt();
    return true;
}

/// The journal's edits on top of the show, if it belongs to this generation; false when it has damage.
bool replayJournal(const std::filesystem::path& path, std::uint64_t generation, LoadedShow& show,
                   Losses& losses)
{
    const Losses before = losses;
    std::string why;
    const auto text = readWholeFile(path, maxFile, &why);
    if (!text) {
        losses.edits += why.empty() ? 0 : 1; // at least
        return why.empty();
    }
    std::string_view rest = *text;
    for (bool first = true; !rest.empty(); first = false) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        Json entry;
        if (line.empty())
            continue;
        if (end == std::string_view::npos)
            losses.torn = true;
        else if (!decodeJournalLine(line, entry))
            ++losses.edits;
        else if (first && entry.find("generation")) {
            if (entry.get("generation").asUInt() != generation)
                return true; // its edits are in the snapshot
        } else if (!replay(entry, show))
            ++losses.edits;
    }
    return losses.edits == before.edits;
}

std::string describe(const LoadedShow& show, const Losses& losses, const std::string& reasons)
{
    std::string text;
    if (!reasons.empty())
        text =
            "The show on the server's disk is damaged: " + reasons +
            (show.found ? ". The newest copy that is sound was taken, with the edits made since."
                        : ". No sound copy is left, so that this is a new show; the damaged files are kept.");
    else if (losses.edits > 0)
        text = "The list of edits on the server's disk is damaged.";
    if (losses.edits > 0)
        text += (losses.edits == 1 ? " One edit is" : " " + std::to_string(losses.edits) + " edits are") +
                std::string(" missing: check the library.");
    if (losses.torn)
        text += std::string(text.empty() ? "" : " ") +
                "The server was stopped while it saved: the last edit may be missing.";
    return text;
}

} // namespace

LoadedShow loadShow(const std::filesystem::path& folder)
{
    const Generations files = Generations::find(folder);
    LoadedShow show;
    show.generation = files.highest();
    Losses losses;
    std::string reasons;
    std::uint64_t base = 0, written = 0;
    for (auto it = files.snapshots.rbegin(); it != files.snapshots.rend() && !show.found; ++it) {
        std::string why;
        base = it->first;
        show.found = takeSnapshot(it->second, base > 0, show, written, why);
        if (show.found)
            break;
        show.badSnapshots.push_back(it->second);
        reasons += (reasons.empty() ? "" : ", ") + it->second.filename().string() + " (" + why + ")";
    }
    for (const auto& [number, path] : files.journals) {
        if (!show.found)
            show.badSnapshots.push_back(path); // there is nothing that it follows on
        else if (number >= base && !replayJournal(path, number > 0 ? number : written, show, losses))
            show.badJournals.push_back(path);
    }
    if (!show.found && reasons.empty() && !files.journals.empty())
        reasons = "there are edits and no show that they belong to";
    show.notice = describe(show, losses, reasons);
    return show;
}

} // namespace vantrel::ombra

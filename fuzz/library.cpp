// A library, a line break, a patch: what is read is what is written, a patch that is refused leaves the
// library as it was, and one that is taken leads to the library that the patched document makes.
#include "tarn/media/medialibrary.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace vantrel;

namespace {

void check(bool good)
{
    if (!good)
        std::abort();
}

/// What the typed maps hold, written without the nodes that the library keeps above its records.
std::string spelled(const MediaLibrary& library)
{
    std::string text;
    for (const auto& [index, collection] : library.getCollections()) {
        text += "c" + std::to_string(index) + " " + collection.getName() + "\n";
        for (const auto& [number, slot] : collection.getSlots())
            text += std::to_string(number) + " " + slot.toJson().toString() + "\n";
    }
    for (const auto& [number, playlist] : library.getPlaylists()) {
        text += "p" + std::to_string(number) + " " + playlist.getName() + "\n";
        for (const auto& [address, entry] : playlist.getEntries())
            text += address.toString(true) + " " + entry.toJson().toString() + "\n";
    }
    return text;
}

/// A library from text alone, past all that a process remembers of nodes it has seen.
bool readAnew(const std::string& text, MediaLibrary& library)
{
    Json json;
    return Json::parseString(text, json) && library.parseJson(json);
}

void checkRuntimes(const MediaLibrary& library)
{
    for (const auto& [number, playlist] : library.getPlaylists()) {
        const PlaylistRuntimeInfo info = library.calculateRuntimeInfo(static_cast<unsigned>(number));
        check(info.entries.size() == playlist.getEntries().size());
        check(std::isfinite(info.totalDuration) && info.totalDuration >= 0);
        for (const EntryRuntime& entry : info.entries)
            check(entry.runtimeBefore >= 0 && entry.runtimeAfter >= entry.runtimeBefore);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t split = std::min(text.find('\n'), size);
    Json document;
    MediaLibrary library;
    if (!Json::parseString(text.substr(0, split), document))
        return 0;
    if (!library.parseJson(document)) {
        check(spelled(library).empty());
        return 0;
    }
    const std::string before = library.toJson().toString();
    const std::string beforeSpelled = spelled(library);
    MediaLibrary again;
    check(readAnew(before, again) && again.toJson().toString() == before && spelled(again) == beforeSpelled);
    checkRuntimes(library);

    Patch patch;
    if (!Patch::parseString(text.substr(std::min(split + 1, size)), patch))
        return 0;
    const MediaLibrary copy(library);
    std::string error;
    if (library.applyDiff(patch, &error) != 0) {
        check(!error.empty());
        check(library.toJson().toString() == before && spelled(library) == beforeSpelled);
        return 0;
    }
    check(copy.toJson().toString() == before && spelled(copy) == beforeSpelled);
    Json patched = copy.toJson();
    check(bool(patch.apply(patched)));
    MediaLibrary expected;
    check(readAnew(patched.toString(), expected));
    check(library.toJson().toString() == expected.toJson().toString());
    check(spelled(library) == spelled(expected));
    checkRuntimes(library);

    // The way back: what an undo would send.
    Patch undo;
    Patch::diff(library.toJson(), copy.toJson(), undo);
    check(library.applyDiff(undo) == 0 && library.toJson().toString() == before);
    return 0;
}

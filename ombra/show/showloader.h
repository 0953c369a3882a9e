#pragma once

#include "tarn/json/json.h"
#include "tarn/media/medialibrary.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// What the disk holds of a show.
struct LoadedShow
{
    bool found = false; // there was a sound snapshot
    MediaLibrary library;
    Json settings = Json::object();
    std::uint64_t generation = 0;                    // the highest one in use
    std::vector<std::filesystem::path> badSnapshots; // to be put aside
    std::vector<std::filesystem::path> badJournals; // to be copied: what is sound in them may be needed again
    std::string notice;                             // for the operator: what was damaged and what is missing
};

/// Reads the newest sound snapshot and the edits since. Where newer snapshots are damaged, the journals lead
/// from an older one to the same show. A journal's damaged line loses only itself. Changes nothing on the
/// disk.
LoadedShow loadShow(const std::filesystem::path& folder);

} // namespace vantrel::ombra

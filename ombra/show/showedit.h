#pragma once

#include "tarn/json/patch.h"
#include "tarn/media/medialibrary.h"

#include <cstddef>
#include <memory>
#include <string>

namespace vantrel::ombra {

/// A whole show in place of the present one, as one edit, with all that takes long for a large library worked
/// out: on any thread, for ShowStore::replaceShow().
struct ShowEdit
{
    /// saved: a library that the new one is to share with where the two agree. settings: those to change.
    ShowEdit(const MediaLibrary& present, const MediaLibrary& library, const Json& saved, Json settings);

    MediaLibrary before, library;
    Json settings;
    std::shared_ptr<const Patch> difference;
    std::size_t bytes = 0; // of the library, see librarysize
    std::string line;      // of the journal
};

/// An edit as the journal has it; settings may be none.
Json journalEntry(const Patch& patch, const Json& settings);

} // namespace vantrel::ombra

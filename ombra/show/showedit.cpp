#include "ombra/show/showedit.h"

#include "ombra/show/journalline.h"
#include "ombra/show/librarysize.h"
#include "ombra/show/showdifference.h"

#include <utility>

namespace vantrel::ombra {

namespace {

MediaLibrary sharingWith(const Json& saved, const MediaLibrary& library)
{
    MediaLibrary shared;
    return saved.get("collections").size() > 0 && shared.parseJson(sharing(saved, library.toJson()))
               ? shared
               : library;
}

} // namespace

ShowEdit::ShowEdit(const MediaLibrary& present, const MediaLibrary& next, const Json& saved, Json changed)
    : before(present)
    , library(sharingWith(saved, next))
    , settings(std::move(changed))
{
    Patch patch;
    Patch::diff(before.toJson(), library.toJson(), patch);
    bytes = librarysize::of(library.toJson());
    line = encodeJournalLine(journalEntry(patch, settings));
    difference = std::make_shared<const Patch>(std::move(patch));
}

Json journalEntry(const Patch& patch, const Json& settings)
{
    Json entry = Json::object({{"library", patch.toJson()}});
    if (settings.size() > 0)
        entry.set("settings", settings);
    return entry;
}

} // namespace vantrel::ombra

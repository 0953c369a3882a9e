#pragma once

#include "ombra/engine/slotsource.h"
#include "tarn/media/medialibrary.h"

namespace vantrel::ombra {

/// The slots and entries of a MediaLibrary, which must outlive it. Keeps the library as it was before the
/// newest edit, to find again what was moved: edits come as what differs, and not as what was meant.
class LibrarySource : public SlotSource
{
public:
    explicit LibrarySource(const MediaLibrary& library)
        : m_library(library)
        , m_now(library)
        , m_before(library)
    {
    }

    /// The library was edited: what whereabouts() compares from now on.
    void noteEdit();
    /// It is that of another show: nothing in it was moved there from somewhere.
    void noteAnotherShow();

    std::optional<MediaItem> resolve(std::string_view url) const override;
    std::string neighbour(std::string_view url, int direction) const override;
    std::string whereabouts(std::string_view url) const override;

private:
    const MediaLibrary& m_library;
    MediaLibrary m_now; // copies share what they hold
    MediaLibrary m_before;
};

} // namespace vantrel::ombra

#pragma once

#include "ombra/engine/slotsource.h"

namespace vantrel {
class MediaLibrary;
}

namespace vantrel::ombra {

/// The slots and entries of a MediaLibrary, which must outlive it.
class LibrarySource : public SlotSource
{
public:
    explicit LibrarySource(const MediaLibrary& library)
        : m_library(library)
    {
    }

    std::optional<MediaItem> resolve(std::string_view url) const override;
    std::string neighbour(std::string_view url, int direction) const override;

private:
    const MediaLibrary& m_library;
};

} // namespace vantrel::ombra

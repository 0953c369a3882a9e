#pragma once

#include "common/media/address/mediautils.h"

#include <QString>

#include <memory>

namespace vantrel {

class AbstractMediaLibraryProvider;
class AbstractPlaylistProvider;
class GuiMediaSlot;

/// What several views ask of the library. Static functions; main thread.
class MediaLibraryFunctional
{
public:
    MediaLibraryFunctional() = delete;

    /// The slot that the URL of a slot or of a playlist entry leads to.
    static MediaAddress resolveMediaSlotAddress(const AbstractPlaylistProvider* provider,
                                                const QString& address);
    /// The same as an item; null when there is none.
    static std::shared_ptr<const GuiMediaSlot> resolveMediaSlot(const AbstractPlaylistProvider* provider,
                                                                const AbstractMediaLibraryProvider* library,
                                                                const QString& address);
};

} // namespace vantrel

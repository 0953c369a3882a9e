#include "common/media/items/medialibraryfunctional.h"

#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/items/guimediaslot.h"

namespace vantrel {

using media::MediaUtils;

MediaAddress MediaLibraryFunctional::resolveMediaSlotAddress(const AbstractPlaylistProvider* provider,
                                                             const QString& address)
{
    if (MediaUtils::isSlotAddress(address))
        return MediaUtils::parseSlotAddress(address);
    if (!provider || !MediaUtils::isPlaylistAddress(address))
        return {};
    const media::PlaylistAndEntry entry = MediaUtils::parsePlaylistAddress(address);
    if (!entry.valid)
        return {};
    const auto slot = provider->entrySlot(static_cast<uint>(entry.playlist), entry.entry);
    return slot ? slot->address() : MediaAddress();
}

std::shared_ptr<const GuiMediaSlot>
MediaLibraryFunctional::resolveMediaSlot(const AbstractPlaylistProvider* provider,
                                         const AbstractMediaLibraryProvider* library, const QString& address)
{
    const MediaAddress slot = resolveMediaSlotAddress(provider, address);
    return slot.isValid() && library ? library->slot(slot) : nullptr;
}

} // namespace vantrel

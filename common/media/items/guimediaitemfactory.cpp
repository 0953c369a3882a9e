#include "common/media/items/guimediaitemfactory.h"

#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"

namespace vantrel {

GuiMediaItemFactory::GuiMediaItemFactory()
{
    m_makers[MediaItemType::Collection] = [] { return std::make_shared<GuiMediaCollection>(); };
    m_makers[MediaItemType::Slot] = [] { return std::make_shared<GuiMediaSlot>(); };
    m_makers[MediaItemType::Playlist] = [] { return std::make_shared<GuiPlaylist>(); };
    m_makers[MediaItemType::PlaylistEntry] = [] { return std::make_shared<GuiPlaylistEntry>(); };
}

std::shared_ptr<GuiMediaItem> GuiMediaItemFactory::createObject(MediaItemType type,
                                                                const QJsonObject& json) const
{
    const auto maker = m_makers.find(type);
    if (maker == m_makers.end())
        return nullptr;
    std::shared_ptr<GuiMediaItem> item = maker->second();
    return item->fromJson(json) ? item : nullptr;
}

} // namespace vantrel

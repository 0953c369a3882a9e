#pragma once

#include "common/media/items/guimediaitem.h"

#include <functional>
#include <memory>
#include <unordered_map>

namespace vantrel {

/// Makes media items from the JSON of drag payloads. The session owns the one instance; main thread.
class GuiMediaItemFactory
{
public:
    GuiMediaItemFactory();

    /// Null when the type is unknown or the JSON is not of it.
    std::shared_ptr<GuiMediaItem> createObject(MediaItemType type, const QJsonObject& json) const;

private:
    std::unordered_map<MediaItemType, std::function<std::shared_ptr<GuiMediaItem>()>> m_makers;
};

} // namespace vantrel

#pragma once

class QJsonObject;

namespace vantrel {

/// Kinds of media item as drag payloads write them.
enum class MediaItemType { Collection = 1, Slot = 2, Playlist = 3, PlaylistEntry = 4 };

/// Base of the interface's media items, flat values that turn into and out of JSON. Once published behind a
/// shared_ptr<const ...> an item is never changed, so that any thread that holds it may read it.
class GuiMediaItem
{
public:
    virtual ~GuiMediaItem() = default;

    /// False, and the item as it was, when a key is missing or of the wrong type.
    virtual bool fromJson(const QJsonObject& json) = 0;

protected:
    GuiMediaItem() = default;
    GuiMediaItem(const GuiMediaItem&) = default;
    GuiMediaItem& operator=(const GuiMediaItem&) = default;
};

} // namespace vantrel

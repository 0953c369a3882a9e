#pragma once

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <string>

namespace vantrel {

/// One event of the events channel.
class Event
{
public:
    explicit Event(std::string typeName)
        : m_typeName(std::move(typeName))
    {
    }
    virtual ~Event() = default;
    const std::string& getTypeName() const noexcept { return m_typeName; }

private:
    std::string m_typeName;
};

/// "metadata-added", "metadata-changed" or "metadata-removed": what is known of a media file is no longer so.
class MetadataEvent : public Event
{
public:
    MetadataEvent(std::string typeName, std::string mediaUrl)
        : Event(std::move(typeName))
        , m_mediaUrl(std::move(mediaUrl))
    {
    }
    const std::string& getMediaUrl() const noexcept { return m_mediaUrl; }

private:
    std::string m_mediaUrl;
};

/// Makes events from their JSON: {"type": "metadata-changed", "mediaUrl": "file:///clips/a.mp4"}. Any thread.
class EventFactory
{
public:
    static EventFactory& getInstance();
    /// Null when the JSON is no event: no object, no text "type", or a metadata event without the text
    /// "mediaUrl".
    std::shared_ptr<Event> create(const nlohmann::json& json) const;
};

} // namespace vantrel

#include "tarn/net/eventfactory.h"

#include <nlohmann/json.hpp>

namespace vantrel {

namespace {

const std::string* textMember(const nlohmann::json& json, const char* name)
{
    const auto member = json.find(name);
    return member != json.end() ? member->get_ptr<const std::string*>() : nullptr;
}

} // namespace

EventFactory& EventFactory::getInstance()
{
    static EventFactory factory;
    return factory;
}

std::shared_ptr<Event> EventFactory::create(const nlohmann::json& json) const
{
    if (!json.is_object())
        return {};
    const std::string* type = textMember(json, "type");
    if (!type)
        return {};
    if (*type != "metadata-added" && *type != "metadata-changed" && *type != "metadata-removed")
        return std::make_shared<Event>(*type);
    const std::string* url = textMember(json, "mediaUrl");
    return url ? std::make_shared<MetadataEvent>(*type, *url) : nullptr;
}

} // namespace vantrel

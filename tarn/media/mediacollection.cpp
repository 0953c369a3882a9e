#include "tarn/media/mediacollection.h"

#include "tarn/media/recordrules.h"

namespace vantrel {

namespace {

using namespace recordrules;

constexpr Rule collectionRules[] = {
    {"name", isText},
    {"slots", [](const Json& value) { return value.isObject(); }},
};

const Json& collectionPrototype()
{
    static const Json prototype = Json::object({{"name", ""}, {"slots", Json::object()}});
    return prototype;
}

} // namespace

MediaCollection::MediaCollection(const std::string& name)
    : m_json(collectionPrototype())
{
    if (!name.empty())
        setName(name);
}

bool MediaCollection::parseJson(const Json& json, std::string* error)
{
    Json whole = json;
    if (!check(whole, collectionRules, collectionPrototype(), error))
        return false;
    MediaSlotMap slots;
    std::string reason;
    const Json members = whole.get("slots");
    members.forEachMember([&](std::string_view key, const Json& value) {
        int index = 0;
        if (!parseIndex(key, slotIndexMin, slotIndexMax, index)) {
            reason = "slot index \"" + std::string(key) + "\" is none of 1 to 9999";
            return false;
        }
        const MediaSlot* present = m_slots.get(index);
        MediaSlot slot;
        if (present && present->toJson().sameNode(value)) {
            slot = *present;
        } else if (!slot.parseJson(value, &reason)) {
            reason = "slot " + std::to_string(index) + ": " + reason;
            return false;
        }
        slots.set(index, slot);
        return true;
    });
    if (!reason.empty())
        return fail(error, reason);
    slots.rebaseJson(members);
    m_json = whole;
    m_slots = std::move(slots);
    return true;
}

const Json& MediaCollection::toJson() const
{
    m_json.set("slots", m_slots.toJson());
    return m_json;
}

std::string MediaCollection::getName() const
{
    return m_json.get("name").asString();
}

void MediaCollection::setName(const std::string& name)
{
    m_json.set("name", name);
}

bool MediaCollection::insertMediaSlot(int index, const MediaSlot& slot, bool overwrite)
{
    if (index < slotIndexMin || index > slotIndexMax || (!overwrite && m_slots.contains(index)))
        return false;
    m_slots.set(index, slot);
    return true;
}

} // namespace vantrel

#include "tarn/media/mediaslot.h"

#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/recordrules.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

using namespace recordrules;

constexpr Rule sequenceRules[] = {
    {"firstFrame",
     [](const Json& v) {
         return v.isNull() || (v.type() == JsonType::Int && v.asInt(-1) >= 0 && v.asInt() <= 0x7fffffff);
     }},
    {"framerate",
     [](const Json& v) { return v.isNull() || (v.isNumber() && v.asDouble() > 0 && v.asDouble() <= 1000); }},
    {"lastFrame",
     [](const Json& v) {
         return v.isNull() || (v.type() == JsonType::Int && v.asInt(-1) >= 0 && v.asInt() <= 0x7fffffff);
     }},
};

const Json& sequencePrototype()
{
    static const Json prototype =
        Json::object({{"firstFrame", Json()}, {"framerate", Json()}, {"lastFrame", Json()}});
    return prototype;
}

bool isSequenceOrNull(const Json& value)
{
    Json copy = value;
    return value.isNull() || check(copy, sequenceRules, sequencePrototype(), nullptr);
}

constexpr Rule slotRules[] = {
    {"contentUrl", isText},
    {"duration", isSecondsOrNull},
    {"durationType", isEnum<MediaDurationType>},
    {"imageSequence", isSequenceOrNull},
    {"inpoint", isSeconds},
    {"isPlayable", isFlag},
    {"mediaDuration", isSecondsOrNull},
    {"name", isText},
    {"outpoint", isSecondsOrNull},
    {"scaleMode", isEnum<ScaleMode>},
    {"type", isEnum<MediaType>},
};

const Json& slotPrototype()
{
    static const Json prototype = Json::object({{"contentUrl", ""},
                                                {"duration", Json()},
                                                {"durationType", toStr(MediaDurationType::Manual)},
                                                {"imageSequence", Json()},
                                                {"inpoint", 0.0},
                                                {"isPlayable", true},
                                                {"mediaDuration", Json()},
                                                {"name", ""},
                                                {"outpoint", Json()},
                                                {"scaleMode", toStr(ScaleMode::Default)},
                                                {"type", toStr(MediaType::Unknown)}});
    return prototype;
}

double clampSeconds(double seconds)
{
    return std::isfinite(seconds) ? std::clamp(seconds, 0.0, maxSeconds) : 0.0;
}

Json secondsOrNull(std::optional<double> seconds)
{
    return seconds && std::isfinite(*seconds) ? Json(clampSeconds(*seconds)) : Json();
}

std::optional<double> optionalDouble(const Json* value)
{
    return value && value->isNumber() ? std::optional(value->asDouble()) : std::nullopt;
}

std::optional<int> optionalInt(const Json* value)
{
    return value && value->isNumber() ? std::optional(static_cast<int>(value->asInt())) : std::nullopt;
}

template <typename Enum>
Enum enumOf(const Json& json, std::string_view key)
{
    Enum value{};
    if (const Json* text = json.find(key))
        fromStr(text->stringView(), value);
    return value;
}

} // namespace

MediaSlot::MediaSlot()
    : m_json(slotPrototype())
{
}

MediaSlot::MediaSlot(const std::string& name, const std::string& url)
    : MediaSlot()
{
    setName(name);
    setUrl(url);
}

bool MediaSlot::parseJson(const Json& json, std::string* error)
{
    Json whole = json;
    if (!check(whole, slotRules, slotPrototype(), error))
        return false;
    m_json = whole;
    return true;
}

std::string MediaSlot::getName() const
{
    return m_json.get("name").asString();
}

std::string MediaSlot::getUrl() const
{
    return m_json.get("contentUrl").asString();
}

double MediaSlot::getInpoint() const
{
    return m_json.get("inpoint").asDouble();
}

std::optional<double> MediaSlot::getOutpoint() const
{
    return optionalDouble(m_json.find("outpoint"));
}

double MediaSlot::getEffectiveMediaDuration() const
{
    if (const auto custom = getCustomMediaDuration())
        return *custom;
    if (const auto inherent = getInherentMediaDuration())
        return *inherent;
    const auto rate = getFrameRate();
    const auto first = getFirstFrameNum();
    const auto last = getLastFrameNum();
    if (rate && first && last && *last >= *first)
        return (static_cast<double>(*last) - *first + 1) / *rate;
    return 0;
}

double MediaSlot::getTrimmedDuration() const
{
    const double duration = getEffectiveMediaDuration();
    const auto outpoint = getOutpoint();
    const double end = outpoint ? (duration > 0 ? std::min(*outpoint, duration) : *outpoint) : duration;
    return std::max(0.0, end - getInpoint());
}

std::optional<double> MediaSlot::getInherentMediaDuration() const
{
    return optionalDouble(m_json.find("mediaDuration"));
}

std::optional<double> MediaSlot::getCustomMediaDuration() const
{
    return optionalDouble(m_json.find("duration"));
}

bool MediaSlot::isFinite() const
{
    return getDurationType() != MediaDurationType::Infinite;
}

ScaleMode MediaSlot::getScaleMode() const
{
    return enumOf<ScaleMode>(m_json, "scaleMode");
}

bool MediaSlot::getIsPlayable() const
{
    return m_json.get("isPlayable").asBool();
}

MediaDurationType MediaSlot::getDurationType() const
{
    const bool isUntimedStill = getMediaType() == MediaType::ImageFile && !(getEffectiveMediaDuration() > 0);
    return isUntimedStill ? MediaDurationType::Infinite : enumOf<MediaDurationType>(m_json, "durationType");
}

std::optional<double> MediaSlot::getFrameRate() const
{
    return optionalDouble(m_json.get("imageSequence").find("framerate"));
}

std::optional<int> MediaSlot::getFirstFrameNum() const
{
    return optionalInt(m_json.get("imageSequence").find("firstFrame"));
}

std::optional<int> MediaSlot::getLastFrameNum() const
{
    return optionalInt(m_json.get("imageSequence").find("lastFrame"));
}

MediaType MediaSlot::getMediaType() const
{
    return enumOf<MediaType>(m_json, "type");
}

void MediaSlot::setName(const std::string& name)
{
    m_json.set("name", name);
}

void MediaSlot::setUrl(const std::string& url)
{
    m_json.set("contentUrl", url);
}

void MediaSlot::setInpoint(double seconds)
{
    m_json.set("inpoint", clampSeconds(seconds));
}

void MediaSlot::setOutpoint(std::optional<double> seconds)
{
    m_json.set("outpoint", secondsOrNull(seconds));
}

void MediaSlot::setInherentMediaDuration(std::optional<double> seconds)
{
    m_json.set("mediaDuration", secondsOrNull(seconds));
}

void MediaSlot::setCustomMediaDuration(std::optional<double> seconds)
{
    m_json.set("duration", secondsOrNull(seconds));
}

void MediaSlot::setScaleMode(ScaleMode mode)
{
    m_json.set("scaleMode", toStr(mode));
}

void MediaSlot::setIsPlayable(bool playable)
{
    m_json.set("isPlayable", playable);
}

void MediaSlot::setDurationType(MediaDurationType type)
{
    m_json.set("durationType", toStr(type));
}

void MediaSlot::setFrameRate(double rate)
{
    if (rate > 0 && rate <= 1000)
        setSequenceMember("framerate", rate);
}

void MediaSlot::setFirstFrameNum(int frame)
{
    setSequenceMember("firstFrame", std::max(0, frame));
}

void MediaSlot::setLastFrameNum(int frame)
{
    setSequenceMember("lastFrame", std::max(0, frame));
}

void MediaSlot::setMediaType(MediaType type)
{
    m_json.set("type", toStr(type));
}

void MediaSlot::setSequenceMember(const char* key, Json value)
{
    Json sequence = m_json.get("imageSequence");
    if (!sequence.isObject())
        sequence = sequencePrototype();
    sequence.set(key, std::move(value));
    m_json.set("imageSequence", sequence);
}

} // namespace vantrel

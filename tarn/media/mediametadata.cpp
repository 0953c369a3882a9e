#include "tarn/media/mediametadata.h"

namespace vantrel {

namespace {

constexpr std::string_view unsupportedAudio = "unsupportedAudio";

bool readNumber(const Json& json, std::string_view key, std::optional<double>& out)
{
    const Json* value = json.find(key);
    if (!value || value->isNull())
        return true;
    if (!value->isNumber() || value->asDouble(-1) < 0)
        return false;
    out = value->asDouble();
    return true;
}

bool readCount(const Json& json, std::string_view key, std::optional<int>& out)
{
    const Json* value = json.find(key);
    if (!value || value->isNull())
        return true;
    if (value->type() != JsonType::Int || value->asInt(-1) < 0 || value->asInt() > 1'000'000)
        return false;
    out = static_cast<int>(value->asInt());
    return true;
}

bool readText(const Json& json, std::string_view key, std::string& out)
{
    const Json* value = json.find(key);
    if (!value || value->isNull())
        return true;
    if (!value->isString())
        return false;
    out = value->stringView();
    return true;
}

bool readCaveats(const Json& json, std::unordered_set<MediaCaveat>& out)
{
    const Json* list = json.find("caveats");
    if (!list || list->isNull())
        return true;
    if (!list->isArray())
        return false;
    for (std::size_t i = 0; i < list->size(); ++i) {
        if (!list->at(i)->isString())
            return false;
        out.insert(list->at(i)->stringView() == unsupportedAudio ? MediaCaveat::UnsupportedAudio
                                                                 : MediaMetadata::unknownCaveat);
    }
    return true;
}

template <typename T>
Json orNull(const std::optional<T>& value)
{
    return value ? Json(*value) : Json();
}

Json orNull(const std::string& text)
{
    return text.empty() ? Json() : Json(text);
}

} // namespace

bool MediaMetadata::parseJson(const Json& json)
{
    const Json* type = json.find("type");
    const Json* playable = json.find("isPlayable");
    MediaMetadata parsed;
    if (!type || !type->isString() || !fromStr(type->stringView(), parsed.m_type))
        return false;
    if (!playable || playable->type() != JsonType::Bool)
        return false;
    parsed.m_playable = playable->asBool();
    if (!readCaveats(json, parsed.m_caveats) || !readNumber(json, "duration", parsed.m_duration) ||
        !readNumber(json, "frameRate", parsed.m_frameRate) || !readCount(json, "width", parsed.m_width) ||
        !readCount(json, "height", parsed.m_height) || !readText(json, "codec", parsed.m_codec) ||
        !readText(json, "audioCodec", parsed.m_audioCodec) || !readText(json, "error", parsed.m_error))
        return false;
    *this = std::move(parsed);
    return true;
}

Json MediaMetadata::toJson() const
{
    Json caveats = Json::array();
    for (const MediaCaveat caveat : m_caveats)
        caveats.append(Json(caveat == MediaCaveat::UnsupportedAudio ? unsupportedAudio : "unknown"));
    return Json::object({{"type", toStr(m_type)},
                         {"isPlayable", m_playable},
                         {"caveats", caveats},
                         {"duration", orNull(m_duration)},
                         {"width", orNull(m_width)},
                         {"height", orNull(m_height)},
                         {"frameRate", orNull(m_frameRate)},
                         {"codec", orNull(m_codec)},
                         {"audioCodec", orNull(m_audioCodec)},
                         {"error", orNull(m_error)}});
}

} // namespace vantrel

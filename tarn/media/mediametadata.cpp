#include "tarn/media/mediametadata.h"

#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"

#include <limits>
#include <set>

namespace vantrel {

namespace {

constexpr std::int64_t maxCount = 1'000'000;

/// A member of a record: absent and null are the same; false when it is of another type or out of bounds.
template <typename T>
bool readWhole(const Json& json, std::string_view key, std::optional<T>& out, std::int64_t minimum,
               std::int64_t maximum)
{
    const Json* value = json.find(key);
    if (!value || value->isNull())
        return true;
    if (value->type() != JsonType::Int || value->asInt() < minimum || value->asInt() > maximum)
        return false;
    out = static_cast<T>(value->asInt());
    return true;
}

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

bool readDate(const Json& json, std::string_view key, std::optional<DateTime>& out)
{
    std::optional<std::int64_t> seconds;
    if (!readWhole(json, key, seconds, std::numeric_limits<std::int64_t>::min(),
                   std::numeric_limits<std::int64_t>::max()))
        return false;
    if (seconds)
        out = DateTime(*seconds);
    return true;
}

bool readAspect(const Json& json, std::optional<Rational<int>>& out)
{
    const Json* value = json.find("pixelAspect");
    if (!value || value->isNull())
        return true;
    if (!value->isArray() || value->size() != 2)
        return false;
    Rational<int> ratio;
    for (int i = 0; i < 2; ++i) {
        const Json& part = *value->at(i);
        if (part.type() != JsonType::Int || part.asInt() < 1 || part.asInt() > maxCount)
            return false;
        (i == 0 ? ratio.num : ratio.den) = static_cast<int>(part.asInt());
    }
    out = ratio;
    return true;
}

bool readPictures(const Json& json, std::string_view key, std::optional<MediaMetadata::Pictures>& out)
{
    const Json* value = json.find(key);
    if (!value || value->isNull())
        return true;
    MediaMetadata::Pictures read;
    std::string space;
    if (!value->isObject() || !readWhole(*value, "width", read.width, 0, maxCount) ||
        !readWhole(*value, "height", read.height, 0, maxCount) || !readAspect(*value, read.pixelAspect) ||
        !readText(*value, "codec", read.codec) || !readText(*value, "colorSpace", space) ||
        !readText(*value, "pixelFormat", read.pixelFormat) || !readText(*value, "profile", read.profile) ||
        !readText(*value, "fieldOrder", read.fieldOrder) ||
        !readNumber(*value, "frameRate", read.frameRate) ||
        !readWhole(*value, "bitRate", read.bitRate, 0, std::numeric_limits<std::int64_t>::max()))
        return false;
    if (!space.empty())
        read.colorSpace = enumFromText<ColorSpace>(space);
    out = std::move(read);
    return true;
}

bool readAudio(const Json& json, std::optional<MediaMetadata::Audio>& out)
{
    const Json* value = json.find("audio");
    if (!value || value->isNull())
        return true;
    MediaMetadata::Audio read;
    std::optional<int> channels;
    if (!value->isObject() || !readText(*value, "codec", read.codec) ||
        !readText(*value, "description", read.description) ||
        !readWhole(*value, "channels", channels, 0, maxCount))
        return false;
    read.channels = channels.value_or(0);
    out = std::move(read);
    return true;
}

MediaCaveat caveatOf(std::string_view text)
{
    MediaCaveat caveat = MediaMetadata::unknownCaveat;
    fromStr(text, caveat);
    return caveat;
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
        out.insert(caveatOf(list->at(i)->stringView()));
    }
    return true;
}

bool readCaveatTexts(const Json& json, std::map<MediaCaveat, std::string>& out)
{
    const Json* texts = json.find("caveatTexts");
    if (!texts || texts->isNull())
        return true;
    if (!texts->isObject())
        return false;
    bool good = true;
    texts->forEachMember([&](std::string_view caveat, const Json& text) {
        good = good && text.isString();
        out[caveatOf(caveat)] = text.asString();
        return good;
    });
    return good;
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

Json orNull(const std::optional<DateTime>& time)
{
    return time ? Json(time->secondsSinceEpoch()) : Json();
}

Json orNull(const std::optional<MediaMetadata::Pictures>& pictures)
{
    if (!pictures)
        return {};
    Json aspect;
    if (pictures->pixelAspect)
        aspect = Json::array({pictures->pixelAspect->num, pictures->pixelAspect->den});
    return Json::object({{"width", orNull(pictures->width)},
                         {"height", orNull(pictures->height)},
                         {"pixelAspect", aspect},
                         {"frameRate", orNull(pictures->frameRate)},
                         {"codec", orNull(pictures->codec)},
                         {"profile", orNull(pictures->profile)},
                         {"fieldOrder", orNull(pictures->fieldOrder)},
                         {"colorSpace", toStr(pictures->colorSpace)},
                         {"pixelFormat", orNull(pictures->pixelFormat)},
                         {"bitRate", orNull(pictures->bitRate)}});
}

Json orNull(const std::optional<MediaMetadata::Audio>& audio)
{
    if (!audio)
        return {};
    return Json::object({{"codec", orNull(audio->codec)},
                         {"description", orNull(audio->description)},
                         {"channels", audio->channels}});
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
    if (!readCaveats(json, parsed.m_caveats) || !readCaveatTexts(json, parsed.m_caveatTexts) ||
        !readNumber(json, "duration", parsed.m_duration) || !readPictures(json, "video", parsed.m_video) ||
        !readPictures(json, "image", parsed.m_image) || !readAudio(json, parsed.m_audio) ||
        !readWhole(json, "fileSize", parsed.m_fileSize, 0, std::numeric_limits<std::int64_t>::max()) ||
        !readDate(json, "imported", parsed.m_imported) || !readDate(json, "modified", parsed.m_modified) ||
        !readText(json, "error", parsed.m_error) ||
        !readText(json, "startTimecode", parsed.m_startTimecode) ||
        !readWhole(json, "missingPictures", parsed.m_missingPictures, 0, maxCount))
        return false;
    *this = std::move(parsed);
    return true;
}

std::string MediaMetadata::getCaveatText(MediaCaveat caveat) const
{
    const auto text = m_caveatTexts.find(caveat);
    return text == m_caveatTexts.end() ? std::string() : text->second;
}

void MediaMetadata::addCaveat(MediaCaveat caveat, const std::string& text)
{
    m_caveats.insert(caveat);
    if (!text.empty())
        m_caveatTexts[caveat] = text;
}

Json MediaMetadata::toJson() const
{
    Json caveats = Json::array();
    for (const MediaCaveat caveat : std::set(m_caveats.begin(), m_caveats.end()))
        caveats.append(Json(toStr(caveat)));
    Json caveatTexts = Json::object();
    for (const auto& [caveat, text] : m_caveatTexts)
        caveatTexts.set(toStr(caveat), text);
    return Json::object({{"type", toStr(m_type)},
                         {"isPlayable", m_playable},
                         {"caveats", caveats},
                         {"caveatTexts", caveatTexts},
                         {"duration", orNull(m_duration)},
                         {"video", orNull(m_video)},
                         {"image", orNull(m_image)},
                         {"audio", orNull(m_audio)},
                         {"fileSize", orNull(m_fileSize)},
                         {"imported", orNull(m_imported)},
                         {"modified", orNull(m_modified)},
                         {"startTimecode", orNull(m_startTimecode)},
                         {"missingPictures", orNull(m_missingPictures)},
                         {"error", orNull(m_error)}});
}

} // namespace vantrel

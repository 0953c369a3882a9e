#include "tarn/media/playlistentry.h"

#include "tarn/media/enumtext.h"
#include "tarn/media/recordrules.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

using namespace recordrules;

constexpr Rule entryRules[] = {
    {"endAction", isEnum<EndAction>},
    {"slotUrl", isText},
    {"transitionDuration", isSeconds},
    {"transitionType", isEnum<TakeTransitionType>},
};

const Json& entryPrototype()
{
    static const Json prototype = Json::object({{"endAction", toStr(EndAction::Next)},
                                                {"slotUrl", ""},
                                                {"transitionDuration", 0.0},
                                                {"transitionType", toStr(TakeTransitionType::Crossfade)}});
    return prototype;
}

} // namespace

PlaylistEntry::PlaylistEntry()
    : m_json(entryPrototype())
{
}

PlaylistEntry::PlaylistEntry(const std::string& mediaUrl, EndAction endAction,
                             TakeTransitionType transitionType, double transitionDuration)
    : PlaylistEntry()
{
    setMediaUrl(mediaUrl);
    setEndAction(endAction);
    setTransitionType(transitionType);
    setTransitionDuration(transitionDuration);
}

bool PlaylistEntry::parseJson(const Json& json, std::string* error)
{
    Json whole = json;
    if (!check(whole, entryRules, entryPrototype(), error))
        return false;
    m_json = whole;
    return true;
}

std::string PlaylistEntry::getMediaUrl() const
{
    return m_json.get("slotUrl").asString();
}

EndAction PlaylistEntry::getEndAction() const
{
    EndAction action = EndAction::Next;
    fromStr(m_json.get("endAction").stringView(), action);
    return action;
}

TakeTransitionType PlaylistEntry::getTransitionType() const
{
    TakeTransitionType type = TakeTransitionType::Crossfade;
    fromStr(m_json.get("transitionType").stringView(), type);
    return type;
}

double PlaylistEntry::getTransitionDuration() const
{
    return m_json.get("transitionDuration").asDouble();
}

void PlaylistEntry::setMediaUrl(const std::string& url)
{
    m_json.set("slotUrl", url);
}

void PlaylistEntry::setEndAction(EndAction action)
{
    m_json.set("endAction", toStr(action));
}

void PlaylistEntry::setTransitionType(TakeTransitionType type)
{
    m_json.set("transitionType", toStr(type));
}

void PlaylistEntry::setTransitionDuration(double seconds)
{
    m_json.set("transitionDuration", std::isfinite(seconds) ? std::clamp(seconds, 0.0, maxSeconds) : 0.0);
}

} // namespace vantrel

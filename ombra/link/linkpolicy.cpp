#include "ombra/link/linkpolicy.h"

#include "tarn/media/channelenums.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"

#include <map>
#include <string_view>

namespace vantrel::ombra {

namespace {

using Check = bool (*)(const Json& value);

bool anything(const Json&)
{
    return true;
}

template <typename Enum>
bool isEnum(const Json& value)
{
    Enum out{};
    return fromStr(value.stringView(), out);
}

bool isShortText(const Json& value)
{
    constexpr std::size_t longest = 64 * 1024; // an EDID as text is far below it
    return value.stringView().size() <= longest;
}

/// What is not in the table belongs to the server.
const std::map<std::string, std::map<std::string, Check, std::less<>>, std::less<>>& table()
{
    static const std::map<std::string, std::map<std::string, Check, std::less<>>, std::less<>> rules = {
        {"Channel", {{"name", isShortText}}},
        {"Playback",
         {{"media", isShortText},
          {"endAction", isEnum<EndAction>},
          {"audioDevice", isEnum<AudioPlaybackDevice>},
          {"volume", anything},
          {"muted", anything},
          {"state", isEnum<SourcePlayState>}}},
        {"GpuMapping",
         {{"target", isShortText}, {"defaultScaleMode", isEnum<ScaleMode>}, {"backgroundColor", anything}}},
        {"Output",
         {{"modelineId", isShortText},
          {"maxLinkRate", anything},
          {"edidOverride", isShortText},
          {"edidOverrideFilename", isShortText}}},
        {"ShowConfiguration",
         {{"autoSave", anything},
          {"autoStartShow", isShortText},
          {"autoStartPlayState", isEnum<SourcePlayState>},
          {"autoStartShowList", isShortText}}},
        {"Surface",
         {{"name", isShortText},
          {"source", isShortText},
          {"x", anything},
          {"y", anything},
          {"width", anything},
          {"height", anything},
          {"rotation", anything},
          {"opacity", anything},
          {"locked", anything}}},
        {"Corner", {{"x", anything}, {"y", anything}}},
    };
    return rules;
}

bool inRange(const PropertyInfo* property, const Json& value)
{
    if (!value.isNumber())
        return true;
    const double number = value.asDouble();
    if (property->min.type() != VariantType::None && number < property->min.as<double>())
        return false;
    return property->max.type() == VariantType::None || number <= property->max.as<double>();
}

} // namespace

bool clientMayWrite(const Object* object, const PropertyInfo* property, const Json& value, std::string& why)
{
    const auto type = table().find(object->getTypeName());
    const auto rule =
        type == table().end() ? decltype(type->second.find(""))() : type->second.find(property->name);
    if (type == table().end() || rule == type->second.end() || property->readOnly) {
        why = "the property is the server's";
        return false;
    }
    if (!rule->second(value) || !inRange(property, value)) {
        why = "the value is out of range";
        return false;
    }
    return true;
}

bool clientMayRestructure(PathView path)
{
    return path.size() >= 3 && path[0].text() == "device" && path[1].text() == "surfaces";
}

} // namespace vantrel::ombra

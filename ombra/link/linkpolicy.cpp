#include "ombra/link/linkpolicy.h"

#include "tarn/media/channelenums.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace vantrel::ombra {

namespace {

constexpr std::size_t longestName = 256; // bytes
constexpr int surfacesAtMost = 1000;
constexpr int cornersAtMost = 64;            // of a surface
constexpr std::size_t largestObject = 16384; // bytes of what is added at once

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

/// What a start puts program into, or "" to leave it as it was.
bool isPlayStateOrNone(const Json& value)
{
    return value.stringView().empty() || isEnum<SourcePlayState>(value);
}

bool isName(const Json& value)
{
    return value.stringView().size() <= longestName;
}

/// An address or a name of a file.
bool isShortText(const Json& value)
{
    constexpr std::size_t longest = 4096;
    return value.stringView().size() <= longest;
}

/// An EDID as text, which is far below it.
bool isText(const Json& value)
{
    constexpr std::size_t longest = 64 * 1024;
    return value.stringView().size() <= longest;
}

/// What is not in the table belongs to the server.
const std::map<std::string, std::map<std::string, Check, std::less<>>, std::less<>>& table()
{
    static const std::map<std::string, std::map<std::string, Check, std::less<>>, std::less<>> rules = {
        {"Channel", {{"name", isName}}},
        {"Playback",
         {{"media", isShortText},
          {"endAction", isEnum<EndAction>},
          {"audioDevice", isEnum<AudioPlaybackDevice>},
          {"audioOffset", anything},
          {"volume", anything},
          {"muted", anything},
          {"state", isEnum<SourcePlayState>}}},
        {"GpuMapping",
         {{"target", isShortText},
          {"defaultScaleMode", isEnum<ScaleMode>},
          {"backgroundColor", anything},
          {"linearTransitions", anything}}},
        {"Output",
         {{"modelineId", isShortText},
          {"maxLinkRate", anything},
          {"edidOverride", isText},
          {"edidOverrideFilename", isShortText}}},
        {"ShowConfiguration",
         {{"autoSave", anything},
          {"autoStartShow", isShortText},
          {"autoStartPlayState", isPlayStateOrNone},
          {"autoStartShowList", isShortText}}},
        {"Surface",
         {{"name", isName},
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

/// Whether a value takes no more room than this as text, about, and names in it no more than a name may;
/// reads no further than that.
bool fits(const Json& value, std::size_t& room)
{
    const std::size_t own = 8 + value.stringView().size();
    if (own > room)
        return false;
    room -= own;
    bool good = true;
    if (value.isObject())
        value.forEachMember([&](std::string_view key, const Json& member) {
            good = key.size() <= std::min(room, longestName) && (key != "name" || isName(member));
            room -= good ? key.size() : 0;
            return good = good && fits(member, room);
        });
    else if (value.isArray())
        value.forEachItem([&](const Json& item) { return good = fits(item, room); });
    return good;
}

/// How many more objects may stand beside this one.
int roomFor(const Scene& scene, const Path& path)
{
    const Object* holder = scene.findObject(path.parent().toString());
    const int most = path.size() == 3 ? surfacesAtMost : cornersAtMost;
    return holder ? most - holder->childCount() : 1;
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

/// Null for what no client writes.
Check checkOf(const Object* object, const PropertyInfo* property)
{
    const auto type = table().find(object->getTypeName());
    if (type == table().end())
        return nullptr;
    const auto rule = type->second.find(property->name);
    return rule == type->second.end() ? nullptr : rule->second;
}

} // namespace

bool isSensible(const Object* object, const PropertyInfo* property, const Json& value, std::string& why)
{
    const Check check = checkOf(object, property);
    if ((!check || check(value)) && inRange(property, value))
        return true;
    why = "the value is out of range";
    return false;
}

bool clientMayWrite(const Object* object, const PropertyInfo* property, const Json& value, std::string& why)
{
    if (!checkOf(object, property) || property->readOnly) {
        why = "the property is the server's";
        return false;
    }
    return isSensible(object, property, value, why);
}

bool clientMayRestructure(const Scene& scene, const PatchOp& op, std::string& why)
{
    const auto isSurface = [](PathView path) { // or below one; its properties are written one by one
        return path.size() >= 3 && path[0].text() == "device" && path[1].text() == "surfaces" &&
               std::ranges::none_of(path.from(3),
                                    [](const PathElement& part) { return part.text() == "properties"; });
    };
    const bool hasSource = op.op == PatchOpType::Move || op.op == PatchOpType::Copy;
    why = "this part of the scene is the server's";
    if (!isSurface(op.path) || (hasSource && !isSurface(op.from)))
        return false;
    if (op.op == PatchOpType::Remove)
        return true;
    std::size_t room = largestObject;
    why = "it is too large";
    if (op.path.back().text().size() > longestName || !fits(op.value, room))
        return false;
    why = "there are too many already";
    return op.op == PatchOpType::Move || roomFor(scene, op.path) > 0;
}

} // namespace vantrel::ombra

#include "ombra/outputs/outputs.h"

#include "ombra/outputs/videomodes.h"
#include "tarn/log/log.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/scene/variantjson.h"

#include <array>

namespace vantrel::ombra {

namespace {

constexpr std::array outputNames = {"DP-1", "DP-2"};
constexpr const char* preferredMode = "1920x1080p50";
constexpr std::array displayModes = {"1920x1080p50", "1920x1080p60", "1280x720p50", "1280x720p60"};
constexpr const char* product = "Ombra Monitor";
constexpr const char* displayPrefix = "edid-"; // of a mode that the display itself names

bool fail(std::string* error, const std::string& text)
{
    if (error)
        *error = text;
    return false;
}

Json modeline(const VideoMode& mode, bool standard)
{
    const std::string id = (standard ? "" : displayPrefix) + std::string(mode.id);
    return Json::object({{"type", "Modeline"},
                         {"properties", Json::object({{"id", id},
                                                      {"label", mode.label},
                                                      {"width", mode.width},
                                                      {"height", mode.height},
                                                      {"standard", standard},
                                                      {"interlaced", mode.interlaced},
                                                      {"refreshRate", mode.refreshRate()}})}});
}

Json output(std::size_t index)
{
    Json modelines = Json::array();
    for (const char* id : displayModes)
        modelines.append(modeline(*findVideoMode(id), false));
    for (const VideoMode& mode : videoModes())
        modelines.append(modeline(mode, true));
    const std::string preferred = std::string(displayPrefix) + preferredMode;
    return Json::object(
        {{"type", "Output"},
         {"properties", Json::object({{"name", outputNames[index]},
                                      {"connected", true},
                                      {"product", product},
                                      {"bpc", 8},
                                      {"colorspace", "RGB"},
                                      {"modelineId", preferred},
                                      {"preferredModelineId", preferred},
                                      {"edid", makeEdid(*findVideoMode(preferredMode), product)}})},
         {"modelines", modelines}});
}

Json mapping(std::size_t index)
{
    return Json::object(
        {{"type", "GpuMapping"}, {"properties", Json::object({{"target", outputNames[index]}})}});
}

Json playback()
{
    return Json::object(
        {{"type", "Playback"}, {"properties", Json::object({{"audioDevice", toStr(initialAudioDevice)}})}});
}

const VideoMode* modeOf(std::string id)
{
    const std::string prefix = displayPrefix;
    if (id.starts_with(prefix))
        id.erase(0, prefix.size());
    return findVideoMode(id);
}

bool hasModeline(const Object* output, const std::string& id)
{
    const Object* modelines = output->findChildByName("modelines", false);
    for (int i = 0; modelines && i < modelines->childCount(); ++i) {
        Variant value;
        if (modelines->childAt(i)->getProperty("id", value) && value.as<std::string>() == id)
            return true;
    }
    return false;
}

} // namespace

void Outputs::build()
{
    Patch patch;
    PatchOp op;
    op.op = PatchOpType::Add;
    op.path = Path("/device/channels/0");
    op.value = Json::object({{"type", "Channel"},
                             {"properties", Json::object({{"name", "Channel 1"}})},
                             {"preview", playback()},
                             {"program", playback()},
                             {"mappings", Json::array({mapping(0), mapping(1)})}});
    patch.append(op);
    op.path = Path("/device/system/gpus/0");
    op.value = Json::object({{"type", "Gpu"},
                             {"properties", Json::object({{"name", "GPU 0"}})},
                             {"outputs", Json::array({output(0), output(1)})}});
    patch.append(op);
    if (!m_scene.apply(patch, true))
        Log::write(LogLevel::Error, "vantrel.outputs", "the scene does not take the outputs");
    const Object* outputs = m_scene.findObject("/device/system/gpus/0/outputs");
    for (int i = 0; outputs && i < outputs->childCount(); ++i)
        applyMode(outputs->childAt(i), *findVideoMode(preferredMode));
}

void Outputs::reset()
{
    Object* outputs = m_scene.findObject("/device/system/gpus/0/outputs");
    for (int i = 0; outputs && i < outputs->childCount(); ++i) {
        Object* one = outputs->childAt(i);
        set(one, "edidOverride", std::string());
        set(one, "edidOverrideFilename", std::string());
        set(one, "maxLinkRate", false);
        selectMode(one, text(one, "preferredModelineId"), nullptr);
    }
    Object* mappings = m_scene.findObject("/device/channels/0/mappings");
    for (int i = 0; mappings && i < mappings->childCount(); ++i) {
        set(mappings->childAt(i), "target", std::string(outputNames[static_cast<std::size_t>(i) % 2]));
        set(mappings->childAt(i), "defaultScaleMode", ScaleMode::Fit);
        set(mappings->childAt(i), "backgroundColor", ColorValue{});
    }
}

std::optional<bool> Outputs::invoke(PathView methodPath, const Json& args, std::string* error)
{
    const ScenePointer at = m_scene.find(methodPath);
    if (!at.deref() || !at.method())
        return std::nullopt;
    const std::string type = at.deref()->getTypeName();
    const std::string method = at.method()->name;
    if (type == "Output")
        return invokeOutput(at.deref(), method, args, error);
    if (type == "GpuMapping")
        return invokeMapping(at.deref(), method, args, error);
    if (type == "Channel" && method == "configure")
        return configure(at.deref(), args, error);
    if (type == "System" && method == "resetOutputConfiguration") {
        reset();
        return true;
    }
    return std::nullopt;
}

bool Outputs::invokeOutput(Object* output, const std::string& method, const Json& args, std::string* error)
{
    if (method == "resetEdid") {
        set(output, "edidOverride", std::string());
        set(output, "edidOverrideFilename", std::string());
        set(output, "maxLinkRate", false);
        return selectMode(output, text(output, "preferredModelineId"), error);
    }
    const std::string id = args.get("modelineId").asString();
    const bool named = args.get("modelineId").isString() && !id.empty();
    if (method == "selectModeline") {
        if (!named || !selectMode(output, id, error))
            return named ? false : fail(error, "no \"modelineId\" is given");
    } else if (method == "setEdidOverride") {
        const std::string edid = args.get("edid").isString() ? args.get("edid").asString() : std::string();
        if (!isEdid(edid))
            return fail(error, "\"edid\" is no EDID");
        if (named && !selectMode(output, id, error))
            return false;
        set(output, "edidOverride", edid);
        set(output, "edidOverrideFilename", std::string(args.get("filename").stringView()));
    } else {
        return fail(error, "unknown method");
    }
    set(output, "maxLinkRate", args.get("maxLinkRate").asBool());
    return true;
}

bool Outputs::invokeMapping(Object* mapping, const std::string& method, const Json& args, std::string* error)
{
    if (method == "selectDefaultScaleMode") {
        ScaleMode mode{};
        if (!fromStr(args.get("mode").stringView(), mode))
            return fail(error, "\"mode\" is no scale mode");
        set(mapping, "defaultScaleMode", mode);
        return true;
    }
    if (method == "selectBackgroundColor") {
        const Variant color = variantFromJson(args.get("color"), VariantType::Color);
        if (color.type() != VariantType::Color)
            return fail(error, "\"color\" is no colour");
        set(mapping, "backgroundColor", color.as<ColorValue>());
        return true;
    }
    return fail(error, "unknown method");
}

/// Gives both mappings their target, scaling and background at once: the first takes those numbered 1.
bool Outputs::configure(Object* channel, const Json& args, std::string* error)
{
    const Object* mappings = channel->findChildByName("mappings", false);
    if (!mappings || mappings->childCount() < 2)
        return fail(error, "the channel has no two mappings");
    std::array<std::string, 2> targets;
    std::array<ScaleMode, 2> modes{};
    std::array<ColorValue, 2> colors{};
    for (std::size_t i = 0; i < 2; ++i) {
        const std::string number = std::to_string(i + 1);
        const Variant color = variantFromJson(args.get("bg" + number), VariantType::Color);
        targets[i] = args.get("target" + number).stringView();
        if (targets[i] != outputNames[0] && targets[i] != outputNames[1])
            return fail(error, "\"target" + number + "\" is no output");
        if (!fromStr(args.get("mode" + number).stringView(), modes[i]))
            return fail(error, "\"mode" + number + "\" is no scale mode");
        if (color.type() != VariantType::Color)
            return fail(error, "\"bg" + number + "\" is no colour");
        colors[i] = color.as<ColorValue>();
    }
    if (targets[0] == targets[1])
        return fail(error, "both targets are the same output");
    for (std::size_t i = 0; i < 2; ++i) {
        Object* mapping = mappings->childAt(static_cast<int>(i));
        set(mapping, "target", targets[i]);
        set(mapping, "defaultScaleMode", modes[i]);
        set(mapping, "backgroundColor", colors[i]);
    }
    return true;
}

bool Outputs::selectMode(Object* output, const std::string& id, std::string* error)
{
    const VideoMode* mode = modeOf(id);
    if (!mode || !hasModeline(output, id))
        return fail(error, "no such mode: " + id);
    set(output, "modelineId", id);
    applyMode(output, *mode);
    return true;
}

void Outputs::applyMode(Object* output, const VideoMode& mode)
{
    set(output, "width", mode.width);
    set(output, "height", mode.height);
    set(output, "hTotal", mode.hTotal);
    set(output, "vTotal", mode.vTotal);
    set(output, "hSyncPolarity", mode.hPolarity);
    set(output, "vSyncPolarity", mode.vPolarity);
    set(output, "interlaced", mode.interlaced);
    set(output, "dotClock", mode.dotClock);
}

void Outputs::propertyWritten(Object* object, const PropertyInfo* property)
{
    if (object->getTypeName() != "Output" || property->name != "modelineId")
        return;
    const std::string id = text(object, "modelineId");
    if (modeOf(id) && hasModeline(object, id))
        applyMode(object, *modeOf(id));
    else
        selectMode(object, text(object, "preferredModelineId"), nullptr);
}

std::string Outputs::text(const Object* object, const char* property) const
{
    Variant value;
    object->getProperty(property, value);
    return value.as<std::string>();
}

template <typename T>
void Outputs::set(Object* object, const char* property, const T& value)
{
    Path path;
    if (!m_scene.pathOf(object, path) ||
        !m_scene.replaceProperty(m_scene.find(path + Path{"properties", property}), Variant::from(value)))
        Log::write(LogLevel::Error, "vantrel.outputs", std::string("cannot set ") + property);
}

} // namespace vantrel::ombra

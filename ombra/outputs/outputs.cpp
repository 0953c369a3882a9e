#include "ombra/outputs/outputs.h"

#include "ombra/base/fail.h"
#include "ombra/outputs/displayedid.h"
#include "ombra/outputs/sceneaccess.h"
#include "ombra/outputs/videooutput.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/scene/variantjson.h"

#include <algorithm>
#include <array>

namespace vantrel::ombra {

namespace {

constexpr std::array outputNames = {"DP-1", "DP-2"};
constexpr int programMapping = 1;
constexpr int fullHd50 = 31; // its video code

/// What stands beside the operator.
DisplayTraits monitor()
{
    return {.product = "Ombra Monitor",
            .serial = "OM24-00017",
            .widthMm = 520,
            .heightMm = 290,
            .bpc = 8,
            .maxRate = 76,
            .maxLineRate = 83,
            .maxDotClock = 170'000'000,
            .preferred = *findVic(fullHd50),
            .videoCodes = {31, 16, 34, 33, 32, 20, 5, 19, 4, 18, 3, 1}};
}

/// What an audience looks at.
DisplayTraits wall()
{
    return {.product = "Ombra Wall",
            .serial = "OW4K-00021",
            .widthMm = 1210,
            .heightMm = 680,
            .bpc = 10,
            .maxRate = 120,
            .maxLineRate = 135,
            .maxDotClock = 600'000'000,
            .preferred = *findVic(fullHd50),
            .videoCodes = {31, 16, 34, 33, 32, 20, 5, 19, 4, 97, 96, 95, 94, 93, 64, 63, 1}};
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

} // namespace

Outputs::Outputs(Scene& scene)
    : m_scene(scene)
{
    for (int i = 0; i < static_cast<int>(outputNames.size()); ++i)
        m_outputs.push_back(std::make_unique<VideoOutput>(scene, i, outputNames[std::size_t(i)], ownEdid(i)));
}

Outputs::~Outputs() = default;

void Outputs::build()
{
    Json outputs = Json::array();
    for (const auto& output : m_outputs)
        outputs.append(output->toJson());
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
    op.value = Json::object(
        {{"type", "Gpu"}, {"properties", Json::object({{"name", "GPU 0"}})}, {"outputs", outputs}});
    patch.append(op);
    if (!m_scene.apply(patch, true))
        Log::write(LogLevel::Error, "vantrel.outputs", "the scene does not take the outputs");
    for (const auto& output : m_outputs)
        output->start();
}

void Outputs::reset()
{
    for (const auto& output : m_outputs)
        output->reset();
    resetMappings();
}

void Outputs::resetMappings()
{
    Object* mappings = m_scene.findObject("/device/channels/0/mappings");
    for (int i = 0; mappings && i < mappings->childCount(); ++i) {
        Object* one = mappings->childAt(i);
        setProperty(m_scene, one, "target", std::string(outputNames[static_cast<std::size_t>(i) % 2]));
        setProperty(m_scene, one, "defaultScaleMode", ScaleMode::Fit);
        setProperty(m_scene, one, "backgroundColor", ColorValue{});
    }
}

std::optional<bool> Outputs::invoke(PathView methodPath, const Json& args, std::string* error)
{
    const ScenePointer at = m_scene.find(methodPath);
    if (!at.deref() || !at.method())
        return std::nullopt;
    const std::string type = at.deref()->getTypeName();
    const std::string method = at.method()->name;
    if (VideoOutput* output = outputOf(at.deref()))
        return output->invoke(method, args, isOnAir(*output), error);
    if (type == "GpuMapping")
        return invokeMapping(at.deref(), method, args, error);
    if (type == "Channel" && method == "configure")
        return configure(at.deref(), args, error);
    if (type == "System" && method == "resetOutputConfiguration") {
        resetMappings(); // first: it says what is on air then
        for (const auto& output : m_outputs)
            output->resetByClient(isOnAir(*output));
        return true;
    }
    return std::nullopt;
}

VideoOutput* Outputs::outputOf(const Object* object) const
{
    if (object->getTypeName() != "Output")
        return nullptr;
    const std::string name = propertyOf<std::string>(object, "name");
    for (const auto& output : m_outputs) {
        if (output->name() == name)
            return output.get();
    }
    return nullptr;
}

/// Whether an output shows the program.
bool Outputs::isOnAir(const VideoOutput& output) const
{
    const Object* mappings = m_scene.findObject("/device/channels/0/mappings");
    return mappings && mappings->childCount() > programMapping &&
           propertyOf<std::string>(mappings->childAt(programMapping), "target") == output.name();
}

bool Outputs::plug(int output, const std::string& edid, std::string* error)
{
    if (output < 0 || static_cast<std::size_t>(output) >= m_outputs.size())
        return fail(error, "there is no such output");
    return m_outputs[static_cast<std::size_t>(output)]->plug(edid, error);
}

std::string Outputs::ownEdid(int output)
{
    return makeEdid(output == 0 ? monitor() : wall());
}

void Outputs::secondPassed()
{
    for (const auto& output : m_outputs)
        output->secondPassed();
}

void Outputs::tellScreen(const ScreenFigures& figures)
{
    ScreenFigures lately = figures;
    lately.dropped = m_dropped.grown(figures.dropped);
    lately.late = m_late.grown(figures.late);
    for (const auto& output : m_outputs)
        output->tellScreen(isOnAir(*output) ? lately : ScreenFigures{});
}

const VideoOutput* Outputs::identified() const
{
    for (const auto& output : m_outputs) {
        if (output->isIdentified() && isOnAir(*output))
            return output.get();
    }
    return nullptr;
}

void Outputs::endIdentify()
{
    for (const auto& output : m_outputs)
        output->endIdentify();
}

void Outputs::propertyWritten(const Object* object, const PropertyInfo* property, bool isByClient)
{
    if (VideoOutput* output = outputOf(object))
        output->propertyWritten(property->name, isByClient && isOnAir(*output));
    else if (object->getTypeName() == "GpuMapping" && property->name == "target")
        settleTargets(object);
}

/// Each mapping has an output of its own: the other one takes what the written one had, and what is no
/// output is undone.
void Outputs::settleTargets(const Object* written)
{
    const Object* mappings = m_scene.findObject("/device/channels/0/mappings");
    if (!mappings || mappings->childCount() < 2 || m_outputs.size() < 2)
        return;
    const bool isFirst = mappings->childAt(0) == written;
    Object* mine = mappings->childAt(isFirst ? 0 : 1);
    Object* other = mappings->childAt(isFirst ? 1 : 0);
    const auto otherThan = [this](const std::string& name) {
        return m_outputs[m_outputs[0]->name() == name ? 1 : 0]->name();
    };
    const std::string taken = propertyOf<std::string>(other, "target");
    const std::string wanted = propertyOf<std::string>(mine, "target");
    if (std::ranges::none_of(m_outputs, [&](const auto& output) { return output->name() == wanted; }))
        setProperty(m_scene, mine, "target", otherThan(taken));
    else if (wanted == taken)
        setProperty(m_scene, other, "target", otherThan(wanted));
}

bool Outputs::invokeMapping(Object* mapping, const std::string& method, const Json& args, std::string* error)
{
    if (method == "selectDefaultScaleMode") {
        ScaleMode mode{};
        if (!fromStr(args.get("mode").stringView(), mode))
            return fail(error, "\"mode\" is no scale mode");
        setProperty(m_scene, mapping, "defaultScaleMode", mode);
        return true;
    }
    if (method == "selectBackgroundColor") {
        const Variant color = variantFromJson(args.get("color"), VariantType::Color);
        if (color.type() != VariantType::Color)
            return fail(error, "\"color\" is no colour");
        setProperty(m_scene, mapping, "backgroundColor", color.as<ColorValue>());
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
        setProperty(m_scene, mapping, "target", targets[i]);
        setProperty(m_scene, mapping, "defaultScaleMode", modes[i]);
        setProperty(m_scene, mapping, "backgroundColor", colors[i]);
    }
    return true;
}

} // namespace vantrel::ombra

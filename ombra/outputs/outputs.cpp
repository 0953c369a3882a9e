#include "ombra/outputs/outputs.h"

#include "ombra/base/fail.h"
#include "ombra/outputs/connectorchoice.h"
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

constexpr std::array simulatedNames = {"DP-1", "DP-2"};
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

Json mappingJson(std::size_t index)
{
    return Json::object(
        {{"type", "GpuMapping"}, {"properties", Json::object({{"target", simulatedNames[index]}})}});
}

Json playback()
{
    return Json::object(
        {{"type", "Playback"}, {"properties", Json::object({{"audioDevice", toStr(initialAudioDevice)}})}});
}

} // namespace

Outputs::Outputs(Scene& scene, Kind kind)
    : m_scene(scene)
    , m_kind(kind)
{
    for (int i = 0; i < static_cast<int>(simulatedNames.size()); ++i)
        m_outputs.push_back(std::make_unique<VideoOutput>(
            scene, i, simulatedNames[static_cast<std::size_t>(i)],
            kind == Kind::Simulated ? std::optional(ownEdid(i)) : std::nullopt));
    m_wanted = names();
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
                             {"mappings", Json::array({mappingJson(0), mappingJson(1)})}});
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
        setProperty(m_scene, one, "defaultScaleMode", ScaleMode::Fit);
        setProperty(m_scene, one, "backgroundColor", ColorValue{});
        setProperty(m_scene, one, "linearTransitions", false);
    }
    m_wanted = names();
    m_isChosen = false;
    showTargets();
}

std::optional<bool> Outputs::invoke(PathView methodPath, const Json& args, std::string* error)
{
    const ScenePointer at = m_scene.find(methodPath);
    if (!at.deref() || !at.method())
        return std::nullopt;
    const std::string type = at.deref()->getTypeName();
    const std::string method = at.method()->name;
    if (VideoOutput* output = videoOutput(at.deref()))
        return output->invoke(method, args, isSeen(*output), error);
    if (type == "GpuMapping")
        return invokeMapping(at.deref(), method, args, error);
    if (type == "Channel" && method == "configure")
        return configure(at.deref(), args, error);
    if (type == "System" && method == "resetOutputConfiguration") {
        resetMappings(); // first: it says what is on air then
        for (const auto& output : m_outputs)
            output->resetByClient(isSeen(*output));
        return true;
    }
    return std::nullopt;
}

VideoOutput* Outputs::videoOutput(const Object* object) const
{
    if (object->getTypeName() != "Output")
        return nullptr;
    const int index = outputNamed(propertyOf<std::string>(object, "name"));
    return index < 0 ? nullptr : m_outputs[static_cast<std::size_t>(index)].get();
}

int Outputs::outputNamed(const std::string& name) const
{
    const auto found = std::ranges::find_if(m_outputs, [&](const auto& one) { return one->name() == name; });
    return found == m_outputs.end() ? -1 : static_cast<int>(found - m_outputs.begin());
}

std::array<std::string, 2> Outputs::names() const
{
    return {m_outputs[0]->name(), m_outputs[1]->name()};
}

Object* Outputs::mapping(int index) const
{
    return m_scene.findObject("/device/channels/0/mappings/" + std::to_string(index));
}

int Outputs::outputOf(int index) const
{
    const Object* object = mapping(index);
    return object ? outputNamed(propertyOf<std::string>(object, "target")) : -1;
}

void Outputs::setModeSetter(const VideoOutput::ModeSetter& setter)
{
    for (const auto& output : m_outputs)
        output->setModeSetter(setter);
}

/// Whether somebody may lose sight of it: the audience of program, or who works at a screen of this machine.
bool Outputs::isSeen(const VideoOutput& output) const
{
    return output.connector() || outputOf(programMapping) == outputNamed(output.name());
}

void Outputs::follow(const std::vector<Connector>& machine)
{
    const std::array<std::string, 2> before = names();
    std::vector<HeldConnector> held;
    for (const auto& output : m_outputs)
        held.push_back(output->held());
    const auto chosen = chooseConnectors(held, machine);
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        if (chosen[i])
            m_outputs[i]->follow(*chosen[i]);
        else
            m_outputs[i]->pulled();
    }
    for (std::string& wanted : m_wanted) {
        const auto was = std::ranges::find(before, wanted);
        if (was != before.end())
            wanted = names()[static_cast<std::size_t>(was - before.begin())];
    }
    showTargets();
}

/// The outputs that the mappings have: those that are wanted. Where this machine has none of that name the
/// number of the mapping decides, and the only display that there is shows program until program's own
/// output has had one: what is unplugged later does not send program over the operator's screen.
std::array<int, 2> Outputs::targets() const
{
    std::array<int, 2> found = {outputNamed(m_wanted[0]), outputNamed(m_wanted[1])};
    if (found[0] < 0 && found[1] < 0)
        found = {0, 1};
    else if (found[0] < 0 || found[0] == found[1])
        found[0] = 1 - found[1];
    else if (found[1] < 0)
        found[1] = 1 - found[0];
    const auto of = [this](int output) -> const VideoOutput& { return *m_outputs[std::size_t(output)]; };
    if (m_kind == Kind::Real && !m_isChosen && found[0] != found[1] && !of(found[1]).hasHadDisplay() &&
        of(found[0]).isConnected())
        std::swap(found[0], found[1]);
    return found;
}

/// What only stands in for another output is marked as such, and not kept.
void Outputs::showTargets()
{
    const std::array<int, 2> found = targets();
    for (std::size_t i = 0; i < found.size(); ++i) {
        Object* object = mapping(static_cast<int>(i));
        const std::string& name = m_outputs[static_cast<std::size_t>(found[i])]->name();
        const bool standsIn = name != m_wanted[i];
        if (!object)
            return;
        if (standsIn)
            setProperty(m_scene, object, "standsIn", true);
        setProperty(m_scene, object, "target", name);
        setProperty(m_scene, object, "standsIn", standsIn);
    }
}

/// Each mapping has an output of its own. A show may come from another machine; what a client writes has to
/// be an output of this one, and the mapping that had it takes the other one.
void Outputs::targetWritten(int index, bool isByClient)
{
    const std::string name = propertyOf<std::string>(mapping(index), "target");
    const int output = outputNamed(name);
    std::string& wanted = m_wanted[static_cast<std::size_t>(index)];
    std::string& others = m_wanted[static_cast<std::size_t>(1 - index)];
    if (output >= 0 || !isByClient)
        wanted = name;
    if (output >= 0 && (isByClient || others == name)) // what stood in is chosen now
        others = names()[static_cast<std::size_t>(1 - output)];
    if (output >= 0 || !isByClient)
        m_isChosen = isByClient;
    showTargets();
}

bool Outputs::plug(int output, const std::string& edid, std::string* error)
{
    if (output < 0 || static_cast<std::size_t>(output) >= m_outputs.size())
        return fail(error, "there is no such output");
    if (m_kind == Kind::Real)
        return fail(error, "the outputs are those of the machine: plug a display in there");
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

void Outputs::propertyWritten(const Object* object, const PropertyInfo* property, bool isByClient)
{
    if (VideoOutput* output = videoOutput(object))
        output->propertyWritten(property->name, isByClient, isByClient && isSeen(*output));
    for (const int index : {previewMapping, programMapping}) {
        if (object == mapping(index) && property->name == "target")
            targetWritten(index, isByClient);
    }
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
    if (method == "selectLinearTransitions") {
        if (args.get("on").type() != JsonType::Bool)
            return fail(error, "\"on\" is neither true nor false");
        setProperty(m_scene, mapping, "linearTransitions", args.get("on").asBool());
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
        if (outputNamed(targets[i]) < 0)
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
        setProperty(m_scene, mapping, "defaultScaleMode", modes[i]);
        setProperty(m_scene, mapping, "backgroundColor", colors[i]);
    }
    m_wanted = targets;
    m_isChosen = true;
    showTargets();
    return true;
}

} // namespace vantrel::ombra

#include "ombra/show/scenesettings.h"

#include "ombra/link/linkpolicy.h"
#include "ombra/outputs/outputs.h"
#include "ombra/show/showstore.h"
#include "ombra/show/showtargets.h"
#include "tarn/log/log.h"
#include "tarn/media/playenums.h"
#include "tarn/scene/variantjson.h"

#include <string_view>
#include <vector>

namespace vantrel::ombra {

namespace {

using Properties = std::map<std::string, const char*, std::less<>>; // name to section

constexpr const char* ofServer = "server"; // lasts, and is no part of a show

/// What lasts of the scene, by the type of the object.
const std::map<std::string, Properties, std::less<>>& lasting()
{
    static const std::map<std::string, Properties, std::less<>> table = {
        {"Playback",
         {{"media", "playback"},
          {"state", "playback"},
          {"mediaPosition", "playback"},
          {"endAction", "playback"},
          {"volume", "playback"},
          {"muted", "playback"},
          {"audioDevice", "audio"},
          {"audioOffset", ofServer}}}, // made up for what stands behind this machine
        {"GpuMapping",
         {{"target", "output"},
          {"defaultScaleMode", "output"},
          {"backgroundColor", "output"},
          {"linearTransitions", "output"}}},
        {"Output",
         {{"modelineId", "output"},
          {"maxLinkRate", "output"},
          {"edidOverride", "output"},
          {"edidOverrideFilename", "output"}}},
        {"ShowConfiguration",
         {{"autoSave", "playback"},
          {"autoStartShow", "playback"},
          {"autoStartPlayState", "playback"},
          {"autoStartShowList", ofServer},
          {"showName", ofServer}}},
    };
    return table;
}

const char* sectionOf(const Object* object, const PropertyInfo* property)
{
    const auto type = lasting().find(object->getTypeName());
    if (type == lasting().end())
        return nullptr;
    const auto section = type->second.find(property->name);
    return section == type->second.end() ? nullptr : section->second;
}

bool waitsToBeKept(const Object* output)
{
    Variant seconds;
    return output->getProperty("confirmSeconds", seconds) && seconds.as<int>() > 0;
}

/// What only stands in for another output is not what was chosen.
bool standsIn(const Object* object, const PropertyInfo* property)
{
    Variant is;
    return property->name == "target" && object->getProperty("standsIn", is) && is.as<bool>();
}

/// Whether a property is to be kept as it is now. A position is while its playback is paused; of what plays
/// it is no part of the show. A mode is once somebody has said that it can be seen.
bool lasts(const Object* object, const PropertyInfo* property)
{
    Variant state;
    if (waitsToBeKept(object) || standsIn(object, property))
        return false;
    return sectionOf(object, property) &&
           (property->name != "mediaPosition" ||
            (object->getProperty("state", state) && state.as<SourcePlayState>() == SourcePlayState::Pause));
}

/// What is to be kept of a property: a playback that waits for its medium counts as playing.
bool keptValue(const Object* object, const PropertyInfo* property, Json& out)
{
    Variant value, waits;
    if (!object->getProperty(property, value))
        return false;
    const bool isState = property->name == "state" && object->getProperty("waitsToPlay", waits);
    if (isState && waits.as<bool>())
        out = toStr(SourcePlayState::Play);
    else
        Json::fromVariant(value, out);
    return true;
}

} // namespace

const std::set<std::string>& SceneSettings::sections()
{
    static const std::set<std::string> all = {"output", "audio", "playback"};
    return all;
}

const std::set<std::string>& SceneSettings::all()
{
    static const std::set<std::string> all = [] {
        std::set<std::string> names = sections();
        names.insert(ofServer);
        return names;
    }();
    return all;
}

SceneSettings::SceneSettings(Scene& scene, ShowStore& store,
                             std::function<void(Object*, const PropertyInfo*)> written, Seek seek)
    : m_scene(scene)
    , m_store(store)
    , m_written(std::move(written))
    , m_seek(std::move(seek))
{
    m_callback = [](Scene*, int count, const SceneChange* changes, void* user) {
        static_cast<SceneSettings*>(user)->onSceneChange(count, changes);
    };
    m_scene.addChangeCallback(m_callback, this);
}

SceneSettings::~SceneSettings()
{
    m_scene.removeChangeCallback(m_callback, this);
}

// The settings come as a copy of their own, since what is saved changes while they are applied.
void SceneSettings::apply(Json settings, const std::set<std::string>& sections, const Positions& playing)
{
    constexpr std::string_view state = "/properties/state", position = "/properties/mediaPosition";
    settings.forEachMember([&](std::string_view path, const Json& value) {
        if (!path.ends_with(state) && !path.ends_with(position))
            applyOne(path, value, sections);
        return true;
    });
    // New media play from their beginning: the picture and the state are theirs.
    settings.forEachMember([&](std::string_view path, const Json& value) {
        if (!path.ends_with(state))
            return true;
        const std::string playback(path.substr(0, path.size() - state.size()));
        const Json* at = settings.find(playback + std::string(position));
        if (sections.contains("playback") && at && value.stringView() == toStr(SourcePlayState::Pause))
            m_seek(playback, at->asDouble());
        const auto stood = playing.find(playback);
        if (stood != playing.end() && value.stringView() == toStr(SourcePlayState::Play))
            m_seek(playback, stood->second);
        applyOne(path, value, sections);
        return true;
    });
}

/// Null where nothing lasts.
const char* SceneSettings::sectionAt(std::string_view path) const
{
    const ScenePointer at = m_scene.find(path);
    return at.deref() && at.property() ? sectionOf(at.deref(), at.property()) : nullptr;
}

Json SceneSettings::chosen(const Json& show, const std::set<std::string>& sections, std::string& note) const
{
    const ShowTargets targets(m_scene, show.get("settings"), show.get("outputs"));
    if (sections.contains("output"))
        note = targets.note;
    Json found = Json::object();
    targets.settings.forEachMember([&](std::string_view path, const Json& value) {
        const char* section = sectionAt(path);
        if (section && sections.contains(section) && !value.isNull())
            found.set(path, value);
        else if (!section)
            Log::write(LogLevel::Warning, "vantrel.show",
                       "the show sets what is not here: " + std::string(path));
        return true;
    });
    return found;
}

std::string SceneSettings::misfit(const Json& settings, const std::set<std::string>& sections) const
{
    std::string sentence;
    settings.forEachMember([&](std::string_view path, const Json& value) {
        const char* section = sectionAt(path);
        if (!section || !sections.contains(section) || value.isNull())
            return true;
        const ScenePointer at = m_scene.find(path);
        const VariantType type = at.property()->type;
        std::string why;
        if (variantFromJson(value, type).converted(type).type() != type)
            sentence = "The show's value for " + std::string(path) + " is no " + toStr(type) + ".";
        else if (!isSensible(at.deref(), at.property(), value, why))
            sentence = "The show's setting " + std::string(path) + " cannot be used: " + why + ".";
        return sentence.empty();
    });
    if (sentence.empty() && sections.contains("output"))
        sentence = ShowTargets(m_scene, settings, {}).fault;
    return sentence;
}

void SceneSettings::applyOne(std::string_view path, const Json& value, const std::set<std::string>& sections)
{
    const char* section = sectionAt(path);
    if (!section)
        Log::write(LogLevel::Warning, "vantrel.show", "the show sets what is not here: " + std::string(path));
    else if (sections.contains(section) && !write(std::string(path), value))
        Log::write(LogLevel::Warning, "vantrel.show", "the show's value does not fit: " + std::string(path));
}

bool SceneSettings::write(const std::string& path, const Json& value)
{
    const ScenePointer at = m_scene.find(path);
    std::string ignored; // the caller tells
    if (!isSensible(at.deref(), at.property(), value, ignored))
        return false;
    Patch patch;
    PatchOp op;
    op.op = PatchOpType::Replace;
    op.path = Path(path);
    op.value = value;
    patch.append(op);
    const Ref<Object> object(at.deref());
    if (!m_scene.apply(patch, true))
        return false;
    m_written(object.get(), at.property());
    return true;
}

Json SceneSettings::outputs() const
{
    return ShowTargets::outputsOf(m_scene);
}

Json SceneSettings::current() const
{
    Json all = Json::object();
    collect(m_scene.root(), all);
    return all;
}

void SceneSettings::collect(const Object* object, Json& out) const
{
    for (const PropertyInfo* property : object->getProperties()) {
        const char* section = sectionOf(object, property);
        Path path;
        Json json;
        if (!section || section == std::string_view(ofServer) || !m_scene.pathOf(object, property, path))
            continue;
        const auto before = m_beforeMode.find(path.toString());
        if (before != m_beforeMode.end())
            out.set(before->first, before->second);
        else if (lasts(object, property) && keptValue(object, property, json))
            out.set(path.toString(), json);
    }
    for (int i = 0; i < object->childCount(); ++i)
        collect(object->childAt(i), out);
}

void SceneSettings::resetPlayback()
{
    for (const char* side : {"preview", "program"}) {
        const std::string path = std::string("/device/channels/0/") + side;
        const Object* playback = m_scene.findObject(path);
        if (!playback)
            continue;
        write(path + "/properties/state", "stop");
        for (const auto& [name, section] : lasting().at("Playback")) {
            Json value;
            if (name == "mediaPosition" || section == std::string_view(ofServer))
                continue; // follows the media, or is no part of a show
            if (name == "audioDevice")
                value = toStr(initialAudioDevice);
            else
                Json::fromVariant(playback->findProperty(name)->def, value);
            write(path + "/properties/" + name, value);
        }
    }
}

void SceneSettings::onSceneChange(int count, const SceneChange* changes)
{
    for (int i = 0; i < count; ++i) {
        if (changes[i].kind != SceneChange::PropertyChanged)
            continue;
        Object* object = changes[i].object;
        save(object, changes[i].property);
        if (changes[i].property->name == "waitsToPlay")
            save(object, object->findProperty("state"));
        if (changes[i].property->name == "standsIn")
            save(object, object->findProperty("target"));
        if (changes[i].property->name == "confirmSeconds")
            followMode(object);
        if (sectionOf(object, changes[i].property) && changes[i].property->name == "state")
            save(object, object->findProperty("mediaPosition")); // where it was paused
    }
}

/// The seconds begin to run before anything is changed.
void SceneSettings::followMode(Object* output)
{
    for (const auto& [name, section] : lasting().at("Output")) {
        const PropertyInfo* property = output->findProperty(name);
        Path path;
        Json json;
        if (!m_scene.pathOf(output, property, path) || !keptValue(output, property, json))
            continue;
        if (waitsToBeKept(output)) {
            m_beforeMode.try_emplace(path.toString(), json);
        } else {
            m_beforeMode.erase(path.toString());
            save(output, property);
        }
    }
}

void SceneSettings::save(Object* object, const PropertyInfo* property)
{
    Path path;
    Json json;
    if (!lasts(object, property) || !m_scene.pathOf(object, property, path) ||
        !keptValue(object, property, json))
        return;
    m_store.changeSetting(path.toString(), json);
}

} // namespace vantrel::ombra

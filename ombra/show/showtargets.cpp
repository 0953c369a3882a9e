#include "ombra/show/showtargets.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vantrel::ombra {

namespace {

struct Target
{
    const char* signal;
    const char* path;
    std::string name = {}; // of its output; empty where the show does not say
};

using Names = std::vector<std::string>;

Names namesIn(const Json& outputs)
{
    Names names;
    outputs.forEachItem([&names](const Json& name) {
        names.emplace_back(name.stringView());
        return true;
    });
    return names;
}

/// 0 or 1: where a name that is not here stood there. other: of the other signal's output, or empty.
std::size_t placeOf(const std::string& name, const std::string& other, const Names& there, const Names& here)
{
    const auto place = [](const Names& names, const std::string& wanted) {
        return static_cast<std::size_t>(std::ranges::find(names, wanted) - names.begin());
    };
    if (const std::size_t taken = place(here, other); taken < here.size())
        return taken == 0 ? 1 : 0;
    const std::size_t own = place(there, name), others = place(there, other);
    if (own < there.size() && (other.empty() ? own < 2 : others < there.size()))
        return other.empty() ? own : own < others ? 0 : 1;
    return name < other ? 0 : 1;
}

} // namespace

Json ShowTargets::outputsOf(const Scene& scene)
{
    Json names = Json::array();
    const Object* outputs = scene.findObject("/device/system/gpus/0/outputs");
    for (int i = 0; outputs && i < outputs->childCount(); ++i) {
        Variant name;
        outputs->childAt(i)->getProperty("name", name);
        names.append(Json(name.asString()));
    }
    return names;
}

/// One beside a name that is here is the other one. Those that are not here keep their order, which is that
/// of their names where the show does not tell it. One alone has the place of its signal then.
ShowTargets::ShowTargets(const Scene& scene, const Json& showSettings, const Json& outputs)
    : settings(showSettings)
{
    std::array<Target, 2> targets{{{"preview", "/device/channels/0/mappings/0/properties/target"},
                                   {"program", "/device/channels/0/mappings/1/properties/target"}}};
    for (Target& target : targets)
        target.name = settings.get(target.path).stringView();
    const std::string first = targets[0].name, second = targets[1].name;
    if (!first.empty() && first == second)
        fault = "The show gives preview and program the same output, " + first + ".";
    const Names here = namesIn(outputsOf(scene)), there = namesIn(outputs);
    if (!fault.empty() || here.size() < targets.size())
        return;
    std::string missing;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const std::string& name = targets[i].name;
        const std::string& other = i == 0 ? second : first;
        if (name.empty() || std::ranges::find(here, name) != here.end())
            continue;
        const bool isAlone = other.empty() && std::ranges::find(there, name) == there.end();
        const std::size_t place = isAlone ? i : placeOf(name, other, there, here);
        settings.set(targets[i].path, here[place]);
        missing += (missing.empty() ? "" : " and ") + name;
        note += std::string(note.empty() ? "" : ", ") + targets[i].signal + " is on " + here[place];
    }
    if (!note.empty())
        note = "The show names outputs that this server does not have (" + missing + "): " + note +
               " instead. Look at the targets in the OUTPUTS tab.";
}

} // namespace vantrel::ombra

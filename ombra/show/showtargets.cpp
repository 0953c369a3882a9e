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

std::vector<std::string> outputsOf(const Scene& scene)
{
    std::vector<std::string> names;
    const Object* outputs = scene.findObject("/device/system/gpus/0/outputs");
    for (int i = 0; outputs && i < outputs->childCount(); ++i) {
        Variant name;
        outputs->childAt(i)->getProperty("name", name);
        names.push_back(name.asString());
    }
    return names;
}

} // namespace

/// Names of outputs sort as the outputs stand: the lower of two that are not here is the first one. One
/// beside a name that is here is the other one, and one alone has the place of its signal.
ShowTargets::ShowTargets(const Scene& scene, const Json& showSettings)
    : settings(showSettings)
{
    std::array<Target, 2> targets{{{"preview", "/device/channels/0/mappings/0/properties/target"},
                                   {"program", "/device/channels/0/mappings/1/properties/target"}}};
    for (Target& target : targets)
        target.name = settings.get(target.path).stringView();
    const std::string first = targets[0].name, second = targets[1].name;
    if (!first.empty() && first == second)
        fault = "The show gives preview and program the same output, " + first + ".";
    const std::vector<std::string> here = outputsOf(scene);
    if (!fault.empty() || here.size() < targets.size())
        return;
    const auto isHere = [&here](const std::string& name) {
        return std::ranges::find(here, name) != here.end();
    };
    std::string missing;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const std::string& name = targets[i].name;
        const std::string& other = i == 0 ? second : first;
        if (name.empty() || isHere(name))
            continue;
        const std::size_t place = other.empty()   ? i
                                  : isHere(other) ? (other == here[0] ? 1 : 0)
                                                  : (name < other ? 0 : 1);
        settings.set(targets[i].path, here[place]);
        missing += (missing.empty() ? "" : " and ") + name;
        note += std::string(note.empty() ? "" : ", ") + targets[i].signal + " is on " + here[place];
    }
    if (!note.empty())
        note = "The show names outputs that this server does not have (" + missing + "): " + note +
               " instead. Look at the targets in the OUTPUTS tab.";
}

} // namespace vantrel::ombra

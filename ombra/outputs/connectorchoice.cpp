#include "ombra/outputs/connectorchoice.h"

#include <algorithm>
#include <functional>

namespace vantrel::ombra {

std::vector<const Connector*> chooseConnectors(std::span<const HeldConnector> outputs,
                                               const std::vector<Connector>& machine)
{
    std::vector<const Connector*> chosen(outputs.size());
    const auto isFree = [&chosen](const Connector& one) {
        return std::ranges::find(chosen, &one) == chosen.end();
    };
    const auto give = [&](std::size_t output, const std::function<bool(const Connector&)>& fits) {
        const auto found =
            std::ranges::find_if(machine, [&](const Connector& one) { return isFree(one) && fits(one); });
        if (found != machine.end())
            chosen[output] = &*found;
    };
    const auto forThoseWithout = [&](const auto& isRight) {
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            if (!chosen[i])
                give(i, [&](const Connector& one) { return isRight(outputs[i], one); });
        }
    };
    using Held = HeldConnector;
    forThoseWithout(
        [](const Held& of, const Connector& one) { return one.isConnected && one.name == of.name; });
    forThoseWithout([](const Held& of, const Connector& one) {
        return one.isConnected && !of.edid.empty() && one.edid == of.edid;
    });
    forThoseWithout([](const Held&, const Connector& one) { return one.isConnected; });
    forThoseWithout([](const Held& of, const Connector& one) { return one.name == of.name; });
    forThoseWithout([](const Held& of, const Connector&) { return of.name.empty(); });
    return chosen;
}

} // namespace vantrel::ombra

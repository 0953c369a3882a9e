#pragma once

#include "tarn/json/json.h"
#include "tarn/scene/scene.h"

#include <string>

namespace vantrel::ombra {

/// The outputs that a show gives to preview and program, on this machine: one that was saved on another may
/// name outputs that are not here.
struct ShowTargets
{
    /// outputs: of the machine that wrote the show, null where it does not say.
    ShowTargets(const Scene& scene, const Json& showSettings, const Json& outputs);

    std::string fault; // a sentence where they cannot be taken; empty otherwise
    std::string note;  // a sentence where others stand in their place; empty otherwise
    Json settings;     // the show's, with targets that are here

    /// The names of this machine's outputs, in their order.
    static Json outputsOf(const Scene& scene);
};

} // namespace vantrel::ombra

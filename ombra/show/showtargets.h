#pragma once

#include "tarn/json/json.h"
#include "tarn/scene/scene.h"

#include <string>

namespace vantrel::ombra {

/// The outputs that a show gives to preview and program, on this machine: one that was saved on another may
/// name outputs that are not here.
struct ShowTargets
{
    ShowTargets(const Scene& scene, const Json& showSettings);

    std::string fault; // a sentence where they cannot be taken; empty otherwise
    std::string note;  // a sentence where others stand in their place; empty otherwise
    Json settings;     // the show's, with targets that are here
};

} // namespace vantrel::ombra

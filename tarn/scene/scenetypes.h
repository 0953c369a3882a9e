#pragma once

#include "tarn/scene/typeinfo.h"

#include <functional>
#include <map>
#include <string>

namespace vantrel {

/// All types of the scene by name, made at the first call.
const std::map<std::string, TypeInfo, std::less<>>& sceneTypes();

} // namespace vantrel

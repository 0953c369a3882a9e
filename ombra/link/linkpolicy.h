#pragma once

#include "tarn/json/json.h"
#include "tarn/json/patch.h"
#include "tarn/scene/scene.h"

#include <string>

namespace vantrel::ombra {

/// Whether a value of the property's type means something to it, whoever brings it: a client or a show. On
/// false, why says the reason.
bool isSensible(const Object* object, const PropertyInfo* property, const Json& value, std::string& why);

/// Whether a client may write this value to a property of the scene: only what an operator sets, and only
/// values that mean something. On false, why says the reason.
bool clientMayWrite(const Object* object, const PropertyInfo* property, const Json& value, std::string& why);

/// Whether a client may add, remove, move or copy the object at a path: only surfaces of the mapping editor,
/// and what lies below them, and of these only so many and so large that the scene stays small. On false, why
/// says the reason.
bool clientMayRestructure(const Scene& scene, const PatchOp& op, std::string& why);

} // namespace vantrel::ombra

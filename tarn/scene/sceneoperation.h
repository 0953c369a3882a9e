#pragma once

#include "tarn/scene/scene.h"

namespace vantrel {

/// The operation that tells the other end of a change; false when the object has no path in the scene. An add
/// carries the object with all that it came with.
bool operationOf(const Scene& scene, const SceneChange& change, PatchOp& op);

} // namespace vantrel

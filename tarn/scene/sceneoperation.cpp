#include "tarn/scene/sceneoperation.h"

namespace vantrel {

bool operationOf(const Scene& scene, const SceneChange& change, PatchOp& op)
{
    switch (change.kind) {
    case SceneChange::Added:
        op.op = PatchOpType::Add;
        op.value = Scene::toJson(change.object);
        return scene.pathOf(change.object, op.path);
    case SceneChange::Removed:
        op.op = PatchOpType::Remove;
        return scene.pathOf(change.object, op.path);
    case SceneChange::PropertyChanged:
        op.op = PatchOpType::Replace;
        Json::fromVariant(change.value, op.value);
        return scene.pathOf(change.object, change.property, op.path);
    default:
        return false;
    }
}

} // namespace vantrel

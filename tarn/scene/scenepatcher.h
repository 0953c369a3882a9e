#pragma once

#include "tarn/scene/scene.h"

namespace vantrel {

/// Applies the operations of one patch to a scene, in order. Lives for that one call.
class ScenePatcher
{
public:
    explicit ScenePatcher(Scene& scene)
        : m_scene(scene)
    {
    }

    /// True when all operations fitted; strict stops at the first that did not.
    bool apply(const Patch& patch, bool strict);

private:
    bool apply(const PatchOp& op);
    bool add(const PatchOp& op);
    bool replace(const PatchOp& op);
    bool assignTo(const ScenePointer& at, const Json& value);
    bool move(const PatchOp& op);
    bool test(const PatchOp& op);
    bool refuse(const char* why);
    void report(const PatchOp& op);

    static constexpr int maxReports = 10;

    Scene& m_scene;
    std::string m_why;
    int m_misfits = 0;
};

} // namespace vantrel

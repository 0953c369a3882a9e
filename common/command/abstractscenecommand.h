#pragma once

#include "common/command/abstractsessioncommand.h"
#include "tarn/ref.h"
#include "tarn/scene/scene.h"

namespace vantrel {

/// A command that edits the local scene, whose change callback carries the edit to the server. Objects are
/// found afresh by path at each redo() and undo(), so that a command survives a reconnection.
class AbstractSceneCommand : public AbstractSessionCommand
{
public:
    /// Takes the session's scene, which stays null when there is no session.
    explicit AbstractSceneCommand(QUndoCommand* parent = nullptr);

    Scene* scene() const { return m_scene.get(); }

private:
    Ref<Scene> m_scene;
};

} // namespace vantrel

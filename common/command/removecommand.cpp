#include "common/command/removecommand.h"

#include <QCoreApplication>

namespace vantrel {

RemoveCommand::RemoveCommand(QUndoCommand* parent)
    : AbstractSceneCommand(parent)
{
    setText(QCoreApplication::translate("RemoveCommand", "Remove object"));
}

void RemoveCommand::init(const Path& path)
{
    m_path = path;
    setInitialized(true);
}

void RemoveCommand::redo()
{
    if (Scene* tree = scene()) {
        const ScenePointer at = tree->find(PathView(m_path));
        m_object = Scene::toJson(at.deref());
        tree->removeObject(at);
    }
    QUndoCommand::redo();
}

void RemoveCommand::undo()
{
    Scene* tree = scene();
    if (tree && !m_object.isNull()) {
        Patch back;
        back.append({PatchOpType::Add, m_path, {}, m_object});
        tree->apply(back, false);
    }
    QUndoCommand::undo();
}

} // namespace vantrel

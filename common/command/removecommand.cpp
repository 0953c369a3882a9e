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
        m_properties.clear();
        tree->getProperties(tree->find(PathView(m_path)), m_properties);
        tree->removeObject(tree->find(PathView(m_path)));
    }
    QUndoCommand::redo();
}

void RemoveCommand::undo()
{
    if (Scene* tree = scene())
        tree->addObject(tree->find(PathView(m_path)), m_properties);
    QUndoCommand::undo();
}

} // namespace vantrel

#include "common/command/addcommand.h"

#include <QCoreApplication>

namespace vantrel {

AddCommand::AddCommand(QUndoCommand* parent)
    : AbstractSceneCommand(parent)
{
    setText(QCoreApplication::translate("AddCommand", "Add object"));
}

void AddCommand::init(const Path& path, const VariantMap& properties)
{
    m_path = path;
    m_properties = properties;
    setInitialized(true);
}

void AddCommand::redo()
{
    if (Scene* tree = scene())
        tree->addObject(tree->find(PathView(m_path)), m_properties);
    QUndoCommand::redo();
}

void AddCommand::undo()
{
    if (Scene* tree = scene())
        tree->removeObject(tree->find(PathView(m_path)));
    QUndoCommand::undo();
}

} // namespace vantrel

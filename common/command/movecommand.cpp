#include "common/command/movecommand.h"

#include <QCoreApplication>

namespace vantrel {

MoveCommand::MoveCommand(QUndoCommand* parent)
    : AbstractSceneCommand(parent)
{
    setText(QCoreApplication::translate("MoveCommand", "Move object"));
}

void MoveCommand::init(const Path& from, const Path& to)
{
    m_fromPath = from;
    m_toPath = to;
    setInitialized(true);
}

void MoveCommand::redo()
{
    if (Scene* tree = scene())
        tree->moveObject(tree->find(PathView(m_fromPath)), tree->find(PathView(m_toPath)));
}

void MoveCommand::undo()
{
    if (Scene* tree = scene())
        tree->moveObject(tree->find(PathView(m_toPath)), tree->find(PathView(m_fromPath)));
}

} // namespace vantrel

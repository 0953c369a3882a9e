#include "common/command/duplicatecommand.h"

#include <QCoreApplication>

namespace vantrel {

DuplicateCommand::DuplicateCommand(QUndoCommand* parent)
    : AbstractSceneCommand(parent)
{
    setText(QCoreApplication::translate("DuplicateCommand", "Duplicate object"));
}

void DuplicateCommand::init(const Path&, const Path&)
{
    setInitialized(true);
}

void DuplicateCommand::redo()
{
    if (Scene* tree = scene())
        tree->copyObject(tree->find(PathView(m_fromPath)), tree->find(PathView(m_toPath)));
    QUndoCommand::redo();
}

void DuplicateCommand::undo()
{
    if (Scene* tree = scene())
        tree->removeObject(tree->find(PathView(m_toPath)));
    QUndoCommand::undo();
}

} // namespace vantrel

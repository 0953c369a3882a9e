#pragma once

#include "common/command/abstractscenecommand.h"

namespace vantrel {

/// Runs its child commands, in order on redo and in reverse order on undo.
class AbstractSceneCompositeCommand : public AbstractSceneCommand
{
public:
    using AbstractSceneCommand::AbstractSceneCommand;

    void redo() override { QUndoCommand::redo(); }
    void undo() override { QUndoCommand::undo(); }
};

} // namespace vantrel

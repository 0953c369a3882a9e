#pragma once

#include "common/command/abstractscenecommand.h"
#include "common/command/commandid.h"

namespace vantrel {

/// Moves an object within the scene. Child commands of a move do not run.
class MoveCommand : public AbstractSceneCommand
{
public:
    explicit MoveCommand(QUndoCommand* parent = nullptr);

    void init(const Path& from, const Path& to);

    int id() const override { return static_cast<int>(CommandId::Move); }
    void redo() override;
    void undo() override;

private:
    Path m_fromPath;
    Path m_toPath;
};

} // namespace vantrel

#pragma once

#include "common/command/abstractscenecommand.h"
#include "common/command/commandid.h"

namespace vantrel {

/// Removes an object from the scene; undo brings it back whole, as it was at the last redo.
class RemoveCommand : public AbstractSceneCommand
{
public:
    explicit RemoveCommand(QUndoCommand* parent = nullptr);

    void init(const Path& path);

    int id() const override { return static_cast<int>(CommandId::Remove); }
    void redo() override;
    void undo() override;

private:
    Path m_path;
    Json m_object; // whole, as it stood at the last redo
};

} // namespace vantrel

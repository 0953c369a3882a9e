#pragma once

#include "common/command/abstractscenecommand.h"
#include "common/command/commandid.h"

namespace vantrel {

/// Removes an object from the scene; undo brings it back with the properties that it had at the last redo.
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
    VariantMap m_properties;
};

} // namespace vantrel

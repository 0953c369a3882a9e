#pragma once

#include "common/command/abstractscenecommand.h"
#include "common/command/commandid.h"

namespace vantrel {

/// Copies an object within the scene; undo removes the copy.
class DuplicateCommand : public AbstractSceneCommand
{
public:
    explicit DuplicateCommand(QUndoCommand* parent = nullptr);

    /// Marks the command as ready without storing the paths: no feature duplicates objects yet, and until one
    /// does a stray duplicate must change nothing.
    void init(const Path& from, const Path& to);

    int id() const override { return static_cast<int>(CommandId::Duplicate); }
    void redo() override;
    void undo() override;

private:
    Path m_fromPath;
    Path m_toPath;
};

} // namespace vantrel

#pragma once

#include "common/command/abstractscenecommand.h"
#include "common/command/commandid.h"

namespace vantrel {

/// Writes one property of a scene object. The old value is read at the first redo() unless init() was given
/// one.
class SetCommand : public AbstractSceneCommand
{
public:
    explicit SetCommand(QUndoCommand* parent = nullptr);

    /// oldValue counts only when its tag is not None.
    void init(const Path& path, const Variant& value, const Variant& oldValue = {});
    void setMergeable(bool mergeable) { m_mergeable = mergeable; }
    bool isMergeable() const { return m_mergeable; }
    /// The stack drops the command right after its first redo().
    void disableUndo() { m_undoDisabled = true; }
    bool leavesNoTrace() const override { return m_undoDisabled; }
    /// Both of one kind, and a kind that merges at all.
    static bool canMerge(const Variant& a, const Variant& b);

    const Path& path() const { return m_path; }
    const Variant& value() const { return m_value; }
    const Variant& oldValue() const { return m_oldValue; }

    int id() const override { return static_cast<int>(CommandId::Set); }
    bool mergeWith(const QUndoCommand* other) override;
    void redo() override;
    void undo() override;

private:
    bool m_mergeable = false;
    bool m_undoDisabled = false;
    Path m_path;
    Variant m_value;
    Variant m_oldValue;
};

} // namespace vantrel

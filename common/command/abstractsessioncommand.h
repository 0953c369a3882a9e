#pragma once

#include <QUndoCommand>

namespace vantrel {

/// Base of every change that an operator makes. It is initialised before it is pushed, and pushed only when
/// its init returned true, which execute() does (common/command/execute.h); from then on the undo stack owns
/// it. Main thread only.
class AbstractSessionCommand : public QUndoCommand
{
public:
    explicit AbstractSessionCommand(QUndoCommand* parent = nullptr)
        : QUndoCommand(parent)
    {
    }

    /// Whether it leaves the stack right after its run: then it never comes on it, and what was undone before
    /// can still be redone.
    virtual bool leavesNoTrace() const { return false; }

    bool initialized() const { return m_initialized; }
    void setInitialized(bool initialized) { m_initialized = initialized; }

private:
    bool m_initialized = false;
};

} // namespace vantrel

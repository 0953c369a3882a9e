#pragma once

#include "common/command/abstractscenecommand.h"

#include <QString>

namespace vantrel {

/// Calls a method of a scene object on the server; the result comes back as ordinary patches. Without undo
/// data submit() keeps it off the stack, and one that was pushed all the same leaves it after its first run.
class InvokeMethodCommand : public AbstractSceneCommand
{
public:
    explicit InvokeMethodCommand(QUndoCommand* parent = nullptr)
        : AbstractSceneCommand(parent)
    {
    }

    /// False, with a warning, when the object is missing, is not in the scene, or has no such method. text:
    /// what the undo history calls it, where it has no name of its own.
    bool init(Object* object, const QString& method, const VariantMap& args, const QString& text = {});
    /// After init() only; makes the command undoable.
    bool setUndo(const QString& method, const VariantMap& args);
    virtual bool isUndoSupported() const { return m_undoSupported; }
    bool leavesNoTrace() const override { return !isUndoSupported(); }

    void redo() override;
    void undo() override;

private:
    bool resolve(Object* object, const QString& method, Path& path) const;
    void send(const Path& path, const VariantMap& args) const;

    Ref<Object> m_object;
    Path m_redoPath;
    VariantMap m_redoArgs;
    bool m_undoSupported = false;
    Path m_undoPath;
    VariantMap m_undoArgs;
};

} // namespace vantrel

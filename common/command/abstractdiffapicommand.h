#pragma once

#include "common/command/abstractsessioncommand.h"
#include "common/media/library/libraryedit.h"

#include <QObject>

namespace vantrel {

/// A command that edits the media library by HTTP PATCH. A derived class's init() builds both patches by
/// rehearsing the edit on a copy of the library; they wait their turn in the connection's queue of edits. The
/// library itself changes only when the server sends the patch back. What is refused is logged and told to
/// the operator, and leaves the undo stack when its turn to be undone comes.
class AbstractDiffApiCommand : public QObject, public AbstractSessionCommand
{
    Q_OBJECT

public:
    explicit AbstractDiffApiCommand(QUndoCommand* parent = nullptr);
    ~AbstractDiffApiCommand() override;

    void setRedoPatch(const Patch& patch) { m_edit->redo = patch; }
    /// Also makes the command undoable.
    void setUndoPatch(const Patch& patch);
    const Patch& redoPatch() const { return settled().redo; }
    const Patch& undoPatch() const { return settled().undo; }
    bool isUndoSupported() const { return m_undoSupported; }

    void redo() override;
    void undo() override;

Q_SIGNALS:
    /// The last word on a redo or an undo: whether it was done.
    void answered(vantrel::EditDirection direction, bool isDone);

protected:
    virtual void redoResult(DiffApiError result);
    virtual void undoResult(DiffApiError result);

    /// Both patches at once, with what they were made on; undoable.
    void setEdit(LibraryEdit edit);

private:
    const LibraryEdit& settled() const
    {
        m_edit->settle();
        return *m_edit;
    }
    void send(EditDirection direction);
    void handleAnswer(EditDirection direction, const DiffApiError& answer);

    std::shared_ptr<LibraryEdit> m_edit = std::make_shared<LibraryEdit>();
    bool m_undoSupported = false;
};

} // namespace vantrel

#pragma once

#include "common/command/abstractsessioncommand.h"
#include "common/command/diffapierror.h"
#include "tarn/json/patch.h"

#include <QObject>

class QNetworkReply;

namespace vantrel {

/// A command that edits the media library by HTTP PATCH. A derived class's init() builds both patches by
/// rehearsing the edit on a copy of the library; the library itself changes only when the server sends the
/// patch back. A failed request is logged and changes nothing else.
class AbstractDiffApiCommand : public QObject, public AbstractSessionCommand
{
    Q_OBJECT

public:
    explicit AbstractDiffApiCommand(QUndoCommand* parent = nullptr);

    void setRedoPatch(const Patch& patch) { m_redoPatch = patch; }
    /// Also makes the command undoable.
    void setUndoPatch(const Patch& patch);
    const Patch& redoPatch() const { return m_redoPatch; }
    const Patch& undoPatch() const { return m_undoPatch; }
    bool isUndoSupported() const { return m_undoSupported; }

    void redo() override;
    void undo() override;

protected:
    virtual void redoResult(DiffApiError result);
    virtual void undoResult(DiffApiError result);

private:
    using ResultHandler = void (AbstractDiffApiCommand::*)(DiffApiError);
    void send(const Patch& patch, ResultHandler handler);
    void handleReply(QNetworkReply* reply, ResultHandler handler);

    Patch m_redoPatch;
    Patch m_undoPatch;
    bool m_undoSupported = false;
};

} // namespace vantrel

#pragma once

#include <QObject>
#include <QString>

class QUndoStack;

namespace vantrel {

/// The one gate through which the operator's commands go to an undo stack. The session closes it while the
/// server does not answer: what is pressed then is refused aloud, never kept for later. The stack owns it;
/// main thread.
class CommandGate : public QObject
{
    Q_OBJECT

public:
    explicit CommandGate(QUndoStack* stack);

    /// reason: a sentence for the operator; empty opens the gate.
    void setReason(const QString& reason) { m_reason = reason; }

    /// Whether the command may go; where it may not, the operator is told. A stack without a gate lets all
    /// through.
    static bool passes(const QUndoStack* stack, const QString& command);

private:
    QString m_reason;
};

} // namespace vantrel

#include "common/command/commandgate.h"

#include "common/command/refusal.h"

#include <QUndoStack>

namespace vantrel {

CommandGate::CommandGate(QUndoStack* stack)
    : QObject(stack)
{
}

bool CommandGate::passes(const QUndoStack* stack, const QString& command)
{
    const auto* gate =
        stack ? stack->findChild<CommandGate*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
    if (!gate || gate->m_reason.isEmpty())
        return true;
    tellNotDone(command, gate->m_reason);
    return false;
}

} // namespace vantrel

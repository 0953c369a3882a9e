#pragma once

#include "common/command/abstractsessioncommand.h"
#include "common/command/commandgate.h"
#include "common/command/commandlogging.h"

#include <QUndoStack>

#include <memory>
#include <utility>

namespace vantrel {

/// Runs a command that is initialised. The stack keeps what can be undone; what cannot passes it by, and with
/// it what was undone and may be redone. False, and nothing is run, when the stack's gate is closed, which
/// the operator is told.
inline bool submit(QUndoStack* stack, std::unique_ptr<AbstractSessionCommand> command)
{
    if (!CommandGate::passes(stack, command->text()))
        return false;
    if (command->leavesNoTrace())
        command->redo();
    else
        stack->push(command.release());
    return true;
}

/// Makes a command, initialises it with args and pushes it, which runs it at once; the stack owns it from
/// then on. False, and nothing is pushed, when init refuses, there is no stack or its gate is closed, which
/// the operator is told. Main thread only.
template <typename Command, typename... Args>
bool tryExecute(QUndoStack* stack, Args&&... args)
{
    if (!stack)
        return false;
    auto command = std::make_unique<Command>();
    return command->init(std::forward<Args>(args)...) && submit(stack, std::move(command));
}

/// The same, and a refusal of init is a warning. name: the command's in the log.
template <typename Command, typename... Args>
bool execute(QUndoStack* stack, const char* name, Args&&... args)
{
    auto command = std::make_unique<Command>();
    if (stack && command->init(std::forward<Args>(args)...))
        return submit(stack, std::move(command));
    qCWarning(lcCommand) << "Failed to init" << name;
    return false;
}

} // namespace vantrel

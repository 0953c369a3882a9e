#pragma once

#include "common/command/commandgate.h"
#include "common/command/commandlogging.h"

#include <QUndoStack>

#include <memory>
#include <utility>

namespace vantrel {

/// Makes a command, initialises it with args and pushes it, which runs it at once; the stack owns it from
/// then on. False, and nothing is pushed, when init refuses, there is no stack or its gate is closed, which
/// the operator is told. Main thread only.
template <typename Command, typename... Args>
bool tryExecute(QUndoStack* stack, Args&&... args)
{
    if (!stack)
        return false;
    auto command = std::make_unique<Command>();
    if (!command->init(std::forward<Args>(args)...) || !CommandGate::passes(stack, command->text()))
        return false;
    stack->push(command.release());
    return true;
}

/// The same, and a refusal is a warning. name: the command's in the log.
template <typename Command, typename... Args>
bool execute(QUndoStack* stack, const char* name, Args&&... args)
{
    const bool isDone = tryExecute<Command>(stack, std::forward<Args>(args)...);
    if (!isDone)
        qCWarning(lcCommand) << "Failed to init" << name;
    return isDone;
}

} // namespace vantrel

#pragma once

#include "common/command/commandgate.h"
#include "common/media/models/playlist/playlisteditormodel.h"

#include <QUndoStack>

#include <memory>
#include <utility>

namespace vantrel {

/// What would change nothing makes no undo step. False when the command refuses: where it has found no room,
/// this is told under the title, if there is one.
template <typename Command, typename... Args>
bool PlaylistEditorModel::run(const QString& failure, Args&&... args)
{
    auto command = std::make_unique<Command>();
    if (!m_stack)
        return false;
    if (!command->init(std::forward<Args>(args)...)) {
        if (command->wasRehearsed() && !failure.isEmpty())
            showNoRoom(failure);
        return false;
    }
    if (command->redoPatch().size() > 0 && CommandGate::passes(m_stack, command->text()))
        m_stack->push(command.release());
    return true;
}

} // namespace vantrel

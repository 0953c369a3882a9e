// How a gesture of PlaylistEditorModel becomes a command; for its own source files.
#pragma once

#include "common/command/execute.h"
#include "common/media/models/playlist/playlisteditormodel.h"

#include <memory>
#include <utility>

namespace vantrel {

namespace gesture {

/// The entries that a command is told to act on or beside, among all that it is told.
inline void collect(QList<EntryAddress>& named, const EntryAddress& address)
{
    if (address.isValid())
        named.append(address);
}
inline void collect(QList<EntryAddress>& named, const QList<EntryAddress>& addresses)
{
    named.append(addresses);
}
template <typename Other>
void collect(QList<EntryAddress>&, const Other&)
{
}

} // namespace gesture

/// What would change nothing makes no undo step. False when the command refuses: what it has found missing,
/// an entry or room, is told under the title, if there is one.
template <typename Command, typename... Args>
bool PlaylistEditorModel::run(const QString& failure, Args&&... args)
{
    auto command = std::make_unique<Command>();
    if (!m_stack)
        return false;
    QList<EntryAddress> named;
    (gesture::collect(named, args), ...);
    if (!command->init(std::forward<Args>(args)...)) {
        if (command->wasRehearsed() && !failure.isEmpty())
            showRefusal(failure, named);
        return false;
    }
    if (command->redoPatch().size() > 0)
        vantrel::submit(m_stack, std::move(command));
    return true;
}

} // namespace vantrel

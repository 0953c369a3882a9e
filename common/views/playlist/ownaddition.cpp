#include "common/views/playlist/ownaddition.h"

#include "common/command/abstractdiffapicommand.h"

#include <QUndoStack>

#include <string>

namespace vantrel {

namespace {

/// Whether the patch makes the entry, alone or with its list.
bool adds(const Patch& patch, uint playlist, const EntryAddress& address)
{
    const std::string list = "/playlists/" + std::to_string(playlist);
    const std::string parent = list + "/entries/";
    for (const PatchOp& op : patch) {
        if (op.op != PatchOpType::Add)
            continue;
        const std::string path = op.path.toString();
        if (path == list || path + '/' == parent)
            return true;
        EntryAddress added;
        if (path.starts_with(parent) && added.parseString(path.substr(parent.size())) && added == address)
            return true;
    }
    return false;
}

} // namespace

OwnAddition::OwnAddition(QUndoStack* stack, QObject* parent)
    : QObject(parent)
    , m_stack(stack)
{
}

void OwnAddition::watch(const std::function<void()>& operation)
{
    forget();
    const auto last = [this] { return m_stack ? m_stack->command(m_stack->index() - 1) : nullptr; };
    const QUndoCommand* before = last();
    operation();
    const auto* command = last() == before ? nullptr : dynamic_cast<const AbstractDiffApiCommand*>(last());
    if (!command)
        return;
    m_command = command;
    connect(command, &AbstractDiffApiCommand::answered, this, [this](EditDirection, bool isDone) {
        if (!isDone)
            forget();
    });
}

QList<EntryAddress> OwnAddition::take(uint playlist, const QList<EntryAddress>& came)
{
    QList<EntryAddress> own;
    // Asked for only now: a patch is made anew where somebody else was faster.
    for (const EntryAddress& address : came) {
        if (m_command && adds(m_command->redoPatch(), playlist, address))
            own.append(address);
    }
    if (!own.isEmpty())
        forget();
    return own;
}

void OwnAddition::forget()
{
    if (m_command)
        m_command->disconnect(this);
    m_command.clear();
}

} // namespace vantrel

#include "common/playback/volumebinding.h"

#include "common/command/commandgate.h"
#include "common/command/playback/setvolumecommand.h"
#include "common/playback/volumecontrolpopup.h"

#include <QUndoStack>

#include <memory>

namespace vantrel {

namespace {
constexpr int gestureEnds = 700; // milliseconds
} // namespace

VolumeBinding::VolumeBinding(VolumeControlPopup* popup, QUndoStack* stack, QObject* parent)
    : QObject(parent)
    , m_popup(popup)
    , m_stack(stack)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(gestureEnds);
    connect(&m_rest, &QTimer::timeout, this, &VolumeBinding::endGesture);
    connect(popup, &VolumeControlPopup::volumeChanged, this, &VolumeBinding::onMoved);
}

void VolumeBinding::setVolume(double volume)
{
    m_volume = volume;
    m_popup->setVolume(volume);
}

void VolumeBinding::onMoved()
{
    const double wanted = m_popup->volume();
    if (wanted == m_volume || m_path.empty())
        return;
    auto command = std::make_unique<SetVolumeCommand>();
    command->init(m_path, wanted, m_volume);
    command->setText(tr("Set volume"));
    command->setMergeable(true);
    if (!CommandGate::passes(m_stack, command->text())) {
        m_popup->setVolume(m_volume);
        return;
    }
    m_rest.start();
    m_stack->push(command.release());
}

/// What closes a gesture has no value of its own, and would cut off what was undone meanwhile.
void VolumeBinding::endGesture()
{
    const auto* last = dynamic_cast<const SetVolumeCommand*>(m_stack->command(m_stack->index() - 1));
    if (!last || !last->isMergeable() || m_stack->canRedo() ||
        !(last->path() == m_path + Path("/properties/volume")))
        return;
    auto closing = std::make_unique<SetVolumeCommand>();
    closing->init(m_path, m_volume, m_volume);
    closing->setText(last->text());
    m_stack->push(closing.release());
}

} // namespace vantrel

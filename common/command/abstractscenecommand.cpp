#include "common/command/abstractscenecommand.h"

#include "common/session/session.h"

namespace vantrel {

AbstractSceneCommand::AbstractSceneCommand(QUndoCommand* parent)
    : AbstractSessionCommand(parent)
    , m_scene(Session::instance() ? Session::instance()->getScene() : nullptr)
{
}

} // namespace vantrel

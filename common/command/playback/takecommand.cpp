#include "common/command/playback/takecommand.h"

#include <QCoreApplication>

namespace vantrel {

TakeCommand::TakeCommand(QUndoCommand* parent)
    : InvokeMethodCommand(parent)
{
    setText(QCoreApplication::translate("TakeCommand", "Take"));
}

bool TakeCommand::init(Object* playback, bool presetToggle, PlayheadOption playheadOption,
                       TakeTransitionType transitionType, double transitionDuration)
{
    const VariantMap args = {
        {"presetToggle", Variant::from(presetToggle)},
        {"playheadOption", Variant::from(toStr(playheadOption))},
        {"transitionType", Variant::from(toStr(transitionType))},
        {"transitionDuration", Variant::from(transitionDuration)},
    };
    return InvokeMethodCommand::init(playback, QStringLiteral("take"), args);
}

} // namespace vantrel

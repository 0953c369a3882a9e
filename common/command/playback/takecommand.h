#pragma once

#include "common/command/invokemethodcommand.h"
#include "tarn/media/playenums.h"

namespace vantrel {

/// Takes what the preview has cued to the program, with a transition.
class TakeCommand : public InvokeMethodCommand
{
public:
    explicit TakeCommand(QUndoCommand* parent = nullptr);

    /// presetToggle: the preview gets what the program played. transitionDuration: seconds.
    bool init(Object* playback, bool presetToggle, PlayheadOption playheadOption,
              TakeTransitionType transitionType, double transitionDuration);
};

} // namespace vantrel

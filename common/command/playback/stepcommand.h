#pragma once

#include "common/command/invokemethodcommand.h"

namespace vantrel {

/// Steps a playback by single frames.
class StepCommand : public InvokeMethodCommand
{
public:
    using InvokeMethodCommand::InvokeMethodCommand;

    /// frames: forward when positive; 0 is refused.
    bool init(Object* playback, int frames);
};

} // namespace vantrel

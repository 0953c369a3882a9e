#pragma once

#include "common/command/invokemethodcommand.h"

namespace vantrel {

/// Moves the playhead of a playback.
class SeekCommand : public InvokeMethodCommand
{
public:
    using InvokeMethodCommand::InvokeMethodCommand;

    /// position: seconds; a negative one is refused.
    bool init(Object* playback, double position);
};

} // namespace vantrel

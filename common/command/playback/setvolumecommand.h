#pragma once

#include "common/command/setcommand.h"

namespace vantrel {

/// Sets the volume of a playback, 0 to 1.
class SetVolumeCommand : public SetCommand
{
public:
    using SetCommand::SetCommand;

    bool init(const Path& playbackPath, double volume, double oldVolume);
    bool init(int channel, bool program, double volume, double oldVolume);
};

} // namespace vantrel

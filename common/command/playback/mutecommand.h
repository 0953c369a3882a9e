#pragma once

#include "common/command/setcommand.h"

namespace vantrel {

/// Mutes or unmutes a playback.
class MuteCommand : public SetCommand
{
public:
    using SetCommand::SetCommand;

    bool init(const Path& playbackPath, bool muted);
};

} // namespace vantrel

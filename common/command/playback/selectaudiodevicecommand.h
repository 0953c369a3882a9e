#pragma once

#include "common/command/invokemethodcommand.h"

#include <string>

namespace vantrel {

/// Chooses where a channel's sound goes.
class SelectAudioDeviceCommand : public InvokeMethodCommand
{
public:
    using InvokeMethodCommand::InvokeMethodCommand;

    /// device: the text that the scene has for it, for example "embedded".
    bool init(Object* playback, const std::string& device);
};

} // namespace vantrel

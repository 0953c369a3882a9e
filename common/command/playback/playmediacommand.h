#pragma once

#include "common/command/invokemethodcommand.h"
#include "tarn/media/entryaddress.h"

namespace vantrel {

/// Has a playback load and play a slot or a playlist entry.
class PlayMediaCommand : public InvokeMethodCommand
{
public:
    using InvokeMethodCommand::InvokeMethodCommand;

    /// preview: the channel's preview, otherwise its program.
    bool init(bool preview, int channel, int collection, int slot);
    bool init(bool preview, int channel, int playlist, const EntryAddress& entry);
    /// Null, with a warning, when the scene has no object there.
    static Object* getObjectForPath(const QString& path);

private:
    bool init(bool preview, int channel, const QString& mediaUrl);
};

} // namespace vantrel

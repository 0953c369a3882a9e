#pragma once

#include "common/command/setcommand.h"
#include "tarn/media/entryaddress.h"

#include <QString>

namespace vantrel {

/// Puts a slot or a playlist entry on a playback at once, by writing its media property. Leaves no undo.
class DirectPlayCommand : public SetCommand
{
public:
    using SetCommand::SetCommand;

    /// preview: the channel's preview, otherwise its program. False, and nothing to run, without a URL.
    bool init(bool preview, int channel, const QString& url);
    bool init(bool preview, int channel, int collection, int slot);
    bool init(bool preview, int channel, int playlist, EntryAddress entry);
};

} // namespace vantrel

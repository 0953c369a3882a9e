#include "common/command/playback/mutecommand.h"

namespace vantrel {

bool MuteCommand::init(const Path& playbackPath, bool muted)
{
    SetCommand::init(playbackPath + Path("/properties/muted"), Variant::from(muted));
    return true;
}

} // namespace vantrel

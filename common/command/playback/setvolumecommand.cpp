#include "common/command/playback/setvolumecommand.h"

#include "common/command/playback/playbackpath.h"

namespace vantrel {

bool SetVolumeCommand::init(const Path& playbackPath, double volume, double oldVolume)
{
    SetCommand::init(playbackPath + Path("/properties/volume"), Variant::from(volume),
                     Variant::from(oldVolume));
    return true;
}

bool SetVolumeCommand::init(int channel, bool program, double volume, double oldVolume)
{
    return init(Path(playbackPath(channel, !program).toStdString()), volume, oldVolume);
}

} // namespace vantrel

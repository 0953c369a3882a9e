#include "common/command/playback/directplaycommand.h"

#include "common/command/playback/playbackpath.h"
#include "common/media/address/mediautils.h"
#include "tarn/qt/variantqt.h"

namespace vantrel {

using media::MediaUtils;

bool DirectPlayCommand::init(bool preview, int channel, const QString& url)
{
    if (url.isEmpty())
        return false;
    disableUndo();
    const QString path = playbackPath(channel, preview) + QStringLiteral("/properties/media");
    SetCommand::init(Path(path.toStdString()), Variant::from(url));
    return true;
}

bool DirectPlayCommand::init(bool preview, int channel, int collection, int slot)
{
    const QString url = MediaUtils::toSlotAddress(collection, slot);
    return MediaUtils::isSlotAddress(url) && init(preview, channel, url);
}

bool DirectPlayCommand::init(bool preview, int channel, int playlist, EntryAddress entry)
{
    const QString url = MediaUtils::toPlaylistAddress(playlist, entry);
    return entry.isValid() && MediaUtils::isPlaylistAddress(url) && init(preview, channel, url);
}

} // namespace vantrel

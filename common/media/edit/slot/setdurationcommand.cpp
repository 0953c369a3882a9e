#include "common/media/edit/slot/setdurationcommand.h"

#include "common/command/commandlogging.h"
#include "common/media/address/mediafiles.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool SetDurationCommand::init(const MediaLibrary* library, const QUrl& mediaUrl, double seconds,
                              bool isInfinite, const MediaAddress& at)
{
    return rehearse(library, tr("Set duration to %1").arg(seconds), [=](MediaLibrary& copy) {
        const QString url = mediaUrlToString(mediaUrl);
        const MediaSlot* known = std::as_const(copy).findSlot(at.collection, at.slot);
        MediaSlot* slot = known && QUrl(QString::fromStdString(known->getUrl())) == mediaUrl
                              ? copy.findSlot(at.collection, at.slot)
                              : copy.findSlot(url.toStdString());
        if (!slot) {
            qCWarning(lcCommand).nospace()
                << "Failed to set duration " << seconds << "s to " << url << " because a slot was not found";
            return false;
        }
        slot->setCustomMediaDuration(seconds);
        slot->setDurationType(isInfinite ? MediaDurationType::Infinite : MediaDurationType::Manual);
        return true;
    });
}

} // namespace vantrel

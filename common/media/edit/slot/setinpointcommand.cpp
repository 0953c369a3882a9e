#include "common/media/edit/slot/setinpointcommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool SetInpointCommand::init(const MediaLibrary* library, const QString& slotUrl, double inpoint)
{
    const QString text = tr(("Set inpoint to " + QString::number(inpoint)).toUtf8().constData());
    return rehearse(library, text, [=](MediaLibrary& copy) {
        MediaSlot* slot = copy.findSlot(slotUrl.toStdString());
        if (!slot) {
            qCWarning(lcCommand) << "Media slot not found for setting inpoint";
            return false;
        }
        slot->setInpoint(inpoint);
        return true;
    });
}

} // namespace vantrel

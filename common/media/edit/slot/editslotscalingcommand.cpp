#include "common/media/edit/slot/editslotscalingcommand.h"

#include "common/command/commandlogging.h"
#include "common/media/address/mediautils.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool EditSlotScalingCommand::init(const MediaLibrary* library, int collection, int slot, ScaleMode mode)
{
    const QString text = "Set scaling to '" + scaleModeToPrettyString(mode) + "' for slot " +
                         QString::number(slot) + " in collection " + QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        MediaCollection* target = copy.findCollection(collection);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        MediaSlot* record = target->findMediaSlot(slot);
        if (!record) {
            qCWarning(lcCommand) << "Unable to find slot";
            return false;
        }
        record->setScaleMode(mode);
        return true;
    });
}

} // namespace vantrel

#include "common/command/slot/clearslotfromcollectioncommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool ClearSlotFromCollectionCommand::init(const MediaLibrary* library, int collection, int slot)
{
    const QString text =
        "Cleared slot " + QString::number(slot) + " from collection " + QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [&](MediaLibrary& copy) {
        MediaCollection* target = copy.findCollection(collection);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        if (!std::as_const(*target).findMediaSlot(slot)) {
            qCWarning(lcCommand) << "Unable to find slot";
            return false;
        }
        return target->insertMediaSlot(slot, MediaSlot(), true);
    });
}

} // namespace vantrel

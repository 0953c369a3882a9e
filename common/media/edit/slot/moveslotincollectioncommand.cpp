#include "common/media/edit/slot/moveslotincollectioncommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/followslots.h"
#include "tarn/media/medialibrary.h"

namespace vantrel {

bool MoveSlotInCollectionCommand::init(const MediaLibrary* library, int collection, int fromSlot, int toSlot)
{
    const QString text = "Move slot " + QString::number(fromSlot) + " to " + QString::number(toSlot) +
                         " in collection " + QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        MediaCollection* target = copy.findCollection(collection);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        const MediaCollection& present = *target;
        const MediaSlot* source = present.findMediaSlot(fromSlot);
        if (!source) {
            qCWarning(lcCommand) << "Unable to find source slot";
            return false;
        }
        // An empty slot holds its number but no media: there is room.
        if (const MediaSlot* taken = present.findMediaSlot(toSlot); taken && !taken->getUrl().empty()) {
            qCDebug(lcCommand) << "Target slot is already taken";
            return false;
        }
        const MediaSlot moved = *source; // a copy: the insertion may move what source points at
        if (!target->insertMediaSlot(toSlot, moved, true) ||
            !target->insertMediaSlot(fromSlot, MediaSlot(), true))
            return false;
        followSlots(copy, [=](const MediaAddress& slot) {
            return slot == MediaAddress(collection, fromSlot) ? MediaAddress(collection, toSlot)
                                                              : MediaAddress();
        });
        return true;
    });
}

} // namespace vantrel

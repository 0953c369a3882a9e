#include "common/media/edit/slot/moveslotsincollectioncommand.h"

#include "common/command/commandlogging.h"
#include "tarn/media/medialibrary.h"

#include <vector>

namespace vantrel {

bool MoveSlotsInCollectionCommand::init(const MediaLibrary* library, int collection,
                                        const QList<int>& fromSlots, int toSlot)
{
    const QString text = "Move " + QString::number(fromSlots.size()) + " slots to " +
                         QString::number(toSlot) + " in collection " + QString::number(collection);
    return rehearse(library, tr(text.toUtf8().constData()), [=](MediaLibrary& copy) {
        MediaCollection* target = copy.findCollection(collection);
        if (!target) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        if (fromSlots.isEmpty() || toSlot < 0 ||
            toSlot + fromSlots.size() - 1 > MediaCollection::getMediaSlotIndexMax()) {
            qCWarning(lcCommand) << "Not enough slots to move to";
            return false;
        }
        const MediaCollection& present = *target;
        std::vector<MediaSlot> moved; // all of them first: they may lie where others go
        moved.reserve(static_cast<std::size_t>(fromSlots.size()));
        for (const int from : fromSlots) {
            const MediaSlot* source = present.findMediaSlot(from);
            if (!source) {
                qCWarning(lcCommand) << "Unable to find source slot";
                return false;
            }
            moved.push_back(*source);
        }
        for (const int from : fromSlots)
            target->insertMediaSlot(from, MediaSlot(), true);
        int to = toSlot;
        for (const MediaSlot& slot : moved) {
            if (!target->insertMediaSlot(to++, slot, true))
                return false;
        }
        return true;
    });
}

} // namespace vantrel

#include "common/media/edit/slot/moveslotstocollectioncommand.h"

#include "common/command/commandlogging.h"
#include "common/media/edit/playlist/followslots.h"
#include "tarn/media/medialibrary.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace vantrel {

bool MoveSlotsToCollectionCommand::init(const MediaLibrary* library, const QList<MediaAddress>& from,
                                        int collection, int toSlot)
{
    const QString text =
        from.size() == 1
            ? tr("Move 1 slot to %1 in collection %2").arg(toSlot).arg(collection)
            : tr("Move %1 slots to %2 in collection %3").arg(from.size()).arg(toSlot).arg(collection);
    const auto fits = [=](const MediaLibrary& on) {
        if (!on.findCollection(collection)) {
            qCWarning(lcCommand) << "Unable to find collection";
            return false;
        }
        if (from.isEmpty() || toSlot < 0 ||
            toSlot + from.size() - 1 > MediaCollection::getMediaSlotIndexMax()) {
            qCWarning(lcCommand) << "Not enough slots to move to";
            return false;
        }
        const bool areThere = std::ranges::all_of(
            from, [&on](const MediaAddress& each) { return on.findSlot(each.collection, each.slot); });
        if (!areThere)
            qCWarning(lcCommand) << "Unable to find source slot";
        return areThere;
    };
    const auto edit = [=](MediaLibrary& copy) {
        std::vector<MediaSlot> moved; // all of them first: they may lie where others go
        std::map<MediaAddress, MediaAddress> addresses;
        for (const MediaAddress& address : from) {
            addresses[address] = MediaAddress(collection, toSlot + static_cast<int>(moved.size()));
            moved.push_back(*std::as_const(copy).findSlot(address.collection, address.slot));
        }
        for (const MediaAddress& address : from)
            copy.findCollection(address.collection)->insertMediaSlot(address.slot, MediaSlot(), true);
        MediaCollection* const target = copy.findCollection(collection);
        int to = toSlot;
        for (const MediaSlot& slot : moved)
            target->insertMediaSlot(to++, slot, true);
        followSlots(copy, [&addresses](const MediaAddress& slot) {
            const auto now = addresses.find(slot);
            return now == addresses.end() ? MediaAddress() : now->second;
        });
        return true;
    };
    return rehearseMany(library, text, from.size(), fits, edit);
}

} // namespace vantrel

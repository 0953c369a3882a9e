#include "common/import/dropforecast.h"

#include "common/filesystem/model/pathhelpers.h"
#include "common/import/mediadrop.h"
#include "common/import/slotpayload.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/guimediaslot.h"

#include <QCoreApplication>
#include <QSet>

namespace vantrel {

namespace {

constexpr qsizetype mostNames = 2;

QString translated(const char* text)
{
    return QCoreApplication::translate("DropForecast", text);
}

/// So many slots at least; isExact: and no more.
int slotsFor(const SlotPayload& payload, bool* isExact = nullptr)
{
    qsizetype count = payload.addresses().size();
    for (const MediaEntry& entry : payload.entries()) {
        const bool isRead = entry.isDirectory || !isMediaFile(entry.path);
        if (isExact)
            *isExact &= !isRead;
        if (isRead || entry.isPlayable || !entry.isKnown)
            ++count;
    }
    return static_cast<int>(count);
}

/// Whoever drags them may have seen them some time ago. Empty where all are there.
QString missingSlot(const SlotPayload& payload, const MediaCollectionManager& manager, int collection)
{
    for (const MediaAddress& address : payload.addresses()) {
        const int from = address.collection < 0 ? collection : address.collection;
        if (!manager.isSlotOccupied(from, address.slot))
            return translated("Slot %1-%2 is not in the library any more.").arg(from).arg(address.slot);
    }
    return {};
}

} // namespace

int roomFrom(const SlotPayload& payload, const MediaCollectionManager& manager, int collection, int slot)
{
    const QList<int> list = payload.leaving(collection);
    const QSet<int> moved(list.cbegin(), list.cend());
    const int count = slotsFor(payload);
    const int end = manager.lastSlotInCollection(collection);
    int start = slot;
    for (int at = slot; at <= end && at - start < count; ++at) {
        if (!moved.contains(at) && manager.holdsMedia(collection, at))
            start = at + 1;
    }
    return start + count - 1 <= end ? start : slot;
}

int overwrittenSlots(const MediaCollectionManager& manager, int collection, int first, int last,
                     const QList<int>& movedSlots, QStringList& names)
{
    const QSet<int> moved(movedSlots.cbegin(), movedSlots.cend());
    int count = 0;
    for (int slot = first; slot <= last; ++slot) {
        if (moved.contains(slot) || !manager.holdsMedia(collection, slot))
            continue;
        GuiMediaSlot there;
        if (++count <= mostNames && manager.findMediaSlot(collection, slot, there))
            names.append(QString::number(slot) + u' ' + shownText(there.name()));
    }
    return count;
}

DropForecast DropForecast::of(const SlotPayload& payload, const MediaCollectionManager& manager,
                              int collection, int slot)
{
    DropForecast forecast;
    forecast.fault = payload.fault();
    const int count = slotsFor(payload, &forecast.isExact);
    if (forecast.fault.isEmpty())
        forecast.fault = missingSlot(payload, manager, collection);
    if (!forecast.fault.isEmpty())
        return forecast;
    if (count == 0)
        forecast.fault = translated("The server can play none of these files.");
    else
        forecast.place(manager, collection, slot, count, payload.leaving(collection));
    if (!forecast.isPossible())
        return forecast;
    const bool isWithin = payload.movesWithin(collection);
    const bool isSlots = payload.kind() == SlotPayload::Kind::Slots;
    forecast.goes = !isSlots                        ? Goes::In
                    : isWithin                      ? Goes::Along
                    : payload.movesInto(collection) ? Goes::Over
                                                    : Goes::Copied;
    forecast.isCopyWanted = payload.isCopy();
    return forecast;
}

DropForecast DropForecast::of(const MediaDrop& drop, const MediaCollectionManager& manager)
{
    DropForecast forecast;
    if (const int asked = drop.askedCount(); asked > 0)
        forecast.fault = translated("Files that the server has yet to look into: %1.").arg(asked);
    else if (!drop.isReady())
        forecast.fault = translated("It is still being read.");
    else if (const int count = drop.storedSlotCount(); count == 0)
        forecast.fault = translated("Nothing of it is left.");
    else
        forecast.place(manager, drop.collection(), drop.startSlot(), count, drop.collectionSlots());
    return forecast;
}

void DropForecast::place(const MediaCollectionManager& manager, int collection, int slot, int count,
                         const QList<int>& moved)
{
    const int end = manager.lastSlotInCollection(collection);
    if (!manager.holdsCollection(collection)) {
        fault = collection < 0 ? translated("Its collection is not in the library any more.")
                               : translated("Collection %1 is not in the library any more.").arg(collection);
        return;
    }
    if (slot < 0 || slot + count - 1 > end) {
        fault = translated("There is no room: the last slot is %1.").arg(end);
        return;
    }
    first = slot;
    last = slot + count - 1;
    overwritten = overwrittenSlots(manager, collection, first, last, moved, losing);
}

QString DropForecast::text() const
{
    if (!fault.isEmpty())
        return fault;
    QString text =
        first == last && isExact
            ? translated("Slot %1.").arg(first)
            : (isExact ? translated("Slots %1 to %2 (%3).").arg(first).arg(last).arg(last - first + 1)
                       : translated("From slot %1 on; how many slots tells once it is read.").arg(first));
    if (goes == Goes::Copied)
        text = translated("Copy to: %1").arg(text);
    else if (goes == Goes::Over)
        text = translated("Move to: %1").arg(text);
    if (overwritten == 0)
        return text;
    const int more = overwritten - static_cast<int>(losing.size());
    text +=
        u' ' +
        (more > 0 ? translated("Overwrites %1 and %2 more.").arg(losing.join(QStringLiteral(", "))).arg(more)
                  : translated("Overwrites %1.").arg(losing.join(QStringLiteral(", "))));
    return text;
}

} // namespace vantrel

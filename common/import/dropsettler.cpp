#include "common/import/dropsettler.h"

#include "common/import/mediadrop.h"
#include "common/import/mediaslotdrophandler.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/notification/notificationmanagerimpl.h"

#include <QPointer>

namespace vantrel {

namespace {

constexpr qsizetype mostFaults = 4; // that are told one by one

void tell(const QString& text)
{
    NotificationManagerImpl::instance()->createNotification(
        Notification::WarningMessage, DropSettler::tr("Not all of the drop was added"), text);
}

} // namespace

DropSettler::DropSettler(MediaSlotDropHandler* handler, MediaCollectionManager* manager, QObject* parent)
    : QObject(parent)
    , m_handler(handler)
    , m_manager(manager)
{
    connect(handler, &MediaSlotDropHandler::mediaDropCreated, this, &DropSettler::follow);
}

void DropSettler::follow(MediaDrop* drop)
{
    // Whoever has made it, or has read it, is to be done first.
    const auto later = [this, drop = QPointer<MediaDrop>(drop)] {
        if (drop && drop->isReady())
            settle(drop);
    };
    connect(drop, &MediaDrop::isReadyChanged, this, later, Qt::QueuedConnection);
    QMetaObject::invokeMethod(this, later, Qt::QueuedConnection);
}

void DropSettler::settle(MediaDrop* drop)
{
    const int count = drop->lastSlot() < 0 ? 0 : drop->lastSlot() - drop->startSlot() + 1;
    if (count == 0) {
        tellFaults(*drop);
        drop->cancel();
        return;
    }
    const int first = drop->collectionSlots().isEmpty()
                          ? freeRun(*m_manager, drop->collection(), drop->startSlot(), count)
                          : drop->startSlot();
    if (first < 0) {
        tell(tr("There is no room for %1 slots from slot %2 on in this collection.")
                 .arg(count)
                 .arg(drop->startSlot()));
        drop->cancel();
        return;
    }
    if (first != drop->startSlot()) {
        tellFaults(*drop);
        m_handler->moveDrop(drop, first); // which comes here by itself
        return;
    }
    const int collection = drop->collection();
    const int start = drop->startSlot();
    const QPointer<MediaDrop> kept = drop;
    bool isSaved = false;
    const auto watch = connect(drop, &MediaDrop::saved, this, [&isSaved] { isSaved = true; });
    drop->save();
    disconnect(watch);
    if (kept)
        tellFaults(*kept);
    if (isSaved)
        Q_EMIT settled(collection, start, start + count - 1);
    else if (kept)
        kept->cancel();
}

int DropSettler::freeRun(const MediaCollectionManager& manager, int collection, int first, int count)
{
    const int last = manager.lastSlotInCollection(collection);
    int start = first;
    for (int slot = first; slot <= last; ++slot) {
        if (manager.isSlotOccupied(collection, slot))
            start = slot + 1;
        else if (slot - start + 1 >= count)
            return start;
    }
    return -1;
}

void DropSettler::tellFaults(const MediaDrop& drop)
{
    QStringList faults = drop.faults();
    if (faults.isEmpty())
        return;
    if (const qsizetype more = faults.size() - mostFaults; more > 0) {
        faults.resize(mostFaults);
        faults.append(tr("And %1 more.").arg(more));
    }
    for (QString& fault : faults)
        fault = fault.toHtmlEscaped();
    tell(faults.join(QLatin1String("<br>")));
}

} // namespace vantrel

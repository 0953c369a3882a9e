#pragma once

#include <QObject>

namespace vantrel {

class MediaCollectionManager;
class MediaDrop;
class MediaSlotDropHandler;

/// Writes each drop of a handler once it has been read: where there is room for all of it, from the slot on
/// that it was meant for, so that nothing is overwritten that nobody pointed at. Tells the operator what was
/// left out. Main thread only; what it is given must outlive it.
class DropSettler : public QObject
{
    Q_OBJECT

public:
    DropSettler(MediaSlotDropHandler* handler, MediaCollectionManager* manager, QObject* parent = nullptr);

    /// The first slot from first on behind which count slots are free; -1 for none.
    static int freeRun(const MediaCollectionManager& manager, int collection, int first, int count);

Q_SIGNALS:
    /// Of the collection the slots first to last hold what was dropped.
    void settled(int collection, int first, int last);

private:
    void follow(MediaDrop* drop);
    void settle(MediaDrop* drop);
    static void tellFaults(const MediaDrop& drop);

    MediaSlotDropHandler* m_handler;
    MediaCollectionManager* m_manager;
};

} // namespace vantrel

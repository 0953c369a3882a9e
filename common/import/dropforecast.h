#pragma once

#include <QString>
#include <QStringList>

namespace vantrel {

class MediaCollectionManager;
class MediaDrop;
class SlotPayload;

/// What a drop on a slot would do, told before the button is let go. A value.
struct DropForecast
{
    /// What becomes of what is dropped: files come in; slots move within their collection, are copied, or
    /// leave another collection.
    enum class Goes { In, Along, Copied, Over };

    static DropForecast of(const SlotPayload& payload, const MediaCollectionManager& manager, int collection,
                           int slot);
    /// Of one that has been read, as it stands.
    static DropForecast of(const MediaDrop& drop, const MediaCollectionManager& manager);

    int first = -1; // the slots that it takes
    int last = -1;
    bool isExact = true; // false: folders and pictures tell only once they are read
    Goes goes = Goes::In;
    bool isCopyWanted = false; // a key says so
    int overwritten = 0;       // slots that hold media and would hold another
    QStringList losing;        // "4 Logo": the first of those
    QString fault;             // why nothing can be dropped there; the rest says nothing then

    bool isPossible() const { return fault.isEmpty(); }
    /// "Slots 3 to 7 (5). Overwrites 4 Logo, 5 Loop and 1 more."
    QString text() const;

    friend bool operator==(const DropForecast&, const DropForecast&) = default;

private:
    void place(const MediaCollectionManager& manager, int collection, int slot, int count,
               const QList<int>& moved);
};

/// The first slot from there on behind which all that is known of the payload finds free slots; the slot
/// itself where there is no such place.
int roomFrom(const SlotPayload& payload, const MediaCollectionManager& manager, int collection, int slot);

/// The slots in the range that hold media, without those that the payload itself moves away: how many, and
/// the first few as "4 Logo".
int overwrittenSlots(const MediaCollectionManager& manager, int collection, int first, int last,
                     const QList<int>& movedSlots, QStringList& names);

} // namespace vantrel

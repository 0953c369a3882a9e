#pragma once

#include "tarn/media/mediaaddress.h"

#include <QList>
#include <QString>

#include <optional>

namespace vantrel {

class GuiMediaSlot;

/// The operations on collections and slots. Each checks what it is asked for and runs a command; the change
/// shows once the server has sent it back. A refused one leaves a warning and returns false or does nothing.
class MediaCollectionManager
{
public:
    virtual ~MediaCollectionManager() = default;

    virtual bool removeCollection(int collection) = 0;
    /// Takes the first free index; an empty name gives "My collection <index>".
    virtual bool appendCollection(const QString& name) = 0;
    virtual bool insertCollection(int collection, const QString& name) = 0;
    /// A target of -1 is the first free index.
    virtual bool copyCollection(int fromCollection, int toCollection) = 0;
    virtual bool holdsCollection(int collection) const = 0;
    virtual bool isSlotOccupied(int collection, int slot) const = 0;
    /// One that has been cleared is kept, and holds nothing.
    virtual bool holdsMedia(int collection, int slot) const = 0;
    virtual bool findMediaSlot(int collection, int slot, GuiMediaSlot& result) const = 0;
    /// The highest index that the collection may hold.
    virtual int lastSlotInCollection(int collection) const = 0;
    /// The first text counts: a JSON object that describes a media.
    virtual void addMedia(int collection, int slot, const QList<QString>& medias) = 0;
    virtual void clearSlot(int collection, int slot) = 0;
    virtual void moveSlot(int collection, int fromSlot, int toSlot) = 0;
    /// To consecutive slots, all in one edit, onto whatever is there. Whether that was taken; nothing from
    /// who moves them only one by one.
    virtual std::optional<bool> moveSlots(int collection, const QList<int>& fromSlots, int toSlot)
    {
        Q_UNUSED(collection);
        Q_UNUSED(fromSlots);
        Q_UNUSED(toSlot);
        return std::nullopt;
    }
    /// Slots of whatever collections to consecutive ones of this, in one edit; false where that was refused.
    virtual bool moveSlotsFrom(const QList<MediaAddress>& from, int collection, int toSlot)
    {
        Q_UNUSED(from);
        Q_UNUSED(collection);
        Q_UNUSED(toSlot);
        return false;
    }
    virtual void addMedia(int collection, int slot, const GuiMediaSlot& mediaSlot) = 0;
    virtual void addMedias(int collection, int slot, const QList<GuiMediaSlot>& mediaSlots) = 0;
    virtual void renameCollection(int collection, const QString& name) = 0;
    virtual bool updateMediaDuration(int collection, int slot, double durationSeconds, bool isInfinite) = 0;
    /// Takes over the duration and its type, nothing else.
    virtual bool updateMedia(int collection, int slot, const GuiMediaSlot& newMediaSlot) = 0;

    /// What is done until endStep() is one step of undo, under the text. False, and the operator is told why,
    /// where nothing can be done now.
    virtual bool beginStep(const QString& text)
    {
        Q_UNUSED(text);
        return true;
    }
    virtual void endStep() {}
};

} // namespace vantrel

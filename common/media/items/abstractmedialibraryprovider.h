#pragma once

#include "tarn/media/mediaaddress.h"

#include <QList>
#include <QObject>

#include <memory>
#include <optional>

namespace vantrel {

class AbstractSessionCommand;
class GuiMediaCollection;
class GuiMediaSlot;
class MediaLibrary;

/// What models and views know of collections and slots: immutable items behind shared pointers, and a signal
/// for each change. An item that was handed out never changes, so a holder compares pointers to see a change.
/// Main thread only.
class AbstractMediaLibraryProvider : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// In index order.
    virtual QList<std::shared_ptr<const GuiMediaCollection>> collections() const = 0;
    /// Null when absent.
    virtual std::shared_ptr<const GuiMediaCollection> collection(int index) const = 0;
    /// The slots of a collection, in no fixed order.
    virtual QList<std::shared_ptr<const GuiMediaSlot>> slots_(int collection) const = 0;
    /// Null when absent.
    virtual std::shared_ptr<const GuiMediaSlot> slot(MediaAddress address) const = 0;
    /// Whether slot() would give one.
    virtual bool hasSlot(MediaAddress address) const { return slot(address) != nullptr; }
    /// Seconds; the change is a command, and shows once the server has sent it back.
    virtual void setInpoint(const MediaAddress& address, double inpoint) = 0;
    /// Seconds, or nothing for the end of the media.
    virtual void setOutpoint(const MediaAddress& address, std::optional<double> outpoint) = 0;
    virtual MediaLibrary* mediaLibrary() = 0;

Q_SIGNALS:
    /// An initialised command to run; the receiver takes ownership.
    void libraryCommandExec(vantrel::AbstractSessionCommand* command);
    void reset();
    void collectionChanged(uint collectionIndex);
    void collectionRemoved(uint collectionIndex);
    void collectionAdded(uint collectionIndex);
    void slotAdded(vantrel::MediaAddress address);
    void slotChanged(vantrel::MediaAddress address);
    void slotRemoved(vantrel::MediaAddress address);
    /// Nothing that this window asked for is under way any more: it shows, or it was refused. What was shown
    /// ahead of the answer becomes what the library has.
    void editsSettled();
};

} // namespace vantrel

#pragma once

#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"

#include <QList>
#include <QObject>
#include <QSet>

#include <memory>
#include <utility>

namespace vantrel {

class GuiMediaSlot;
class GuiPlaylist;
class GuiPlaylistEntry;
class MediaLibrary;

/// What models and views know of playlists: immutable items behind shared pointers with the slot that each
/// entry plays and its running times, and a signal for each change. Main thread only.
class AbstractPlaylistProvider : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// In number order.
    virtual QList<std::shared_ptr<const GuiPlaylist>> playlists() const = 0;
    /// Null when absent.
    virtual std::shared_ptr<const GuiPlaylist> playlist(uint number) const = 0;
    /// In address order.
    virtual QList<std::shared_ptr<const GuiPlaylistEntry>> entries(uint playlist) const = 0;
    /// Null when absent.
    virtual std::shared_ptr<const GuiPlaylistEntry> entry(uint playlist, EntryAddress address) const = 0;
    /// The slot an entry plays; null when the entry or its slot is absent.
    virtual std::shared_ptr<const GuiMediaSlot> entrySlot(uint playlist, EntryAddress address) const = 0;
    /// Every entry that plays the slot.
    virtual QSet<std::shared_ptr<const GuiPlaylistEntry>> slotEntries(const MediaAddress& address) const = 0;
    virtual MediaLibrary* mediaLibrary() = 0;

public Q_SLOTS:
    virtual void onReset() = 0;
    virtual void onPlaylistAdded(uint playlist) = 0;
    virtual void onPlaylistChanged(uint playlist) = 0;
    virtual void onPlaylistRemoved(uint playlist) = 0;
    virtual void onEntryAdded(uint playlist, vantrel::EntryAddress address) = 0;
    virtual void onEntryChanged(uint playlist, vantrel::EntryAddress address) = 0;
    virtual void onEntryRemoved(uint playlist, vantrel::EntryAddress address) = 0;
    virtual void onSlotModified(vantrel::MediaAddress address) = 0;

Q_SIGNALS:
    void reset();
    void playlistAdded(uint playlistIndex);
    void playlistChanged(uint playlistIndex);
    void playlistRemoved(uint playlistIndex);
    void entryAdded(uint playlistIndex, vantrel::EntryAddress entryAddress);
    void entryChanged(uint playlistIndex, vantrel::EntryAddress entryAddress);
    void entryRemoved(uint playlistIndex, vantrel::EntryAddress entryAddress);
    void entrySlotsModified(QList<std::pair<uint, vantrel::EntryAddress>> entryAddressPair);
    /// Around the signals of one patch of the library, where the provider is told of it. Running times are
    /// right when it is finished.
    void changesStarted();
    void changesFinished();
};

} // namespace vantrel

#pragma once

#include "common/media/abstractplaylistprovider.h"
#include "tarn/ref.h"

#include <QHash>
#include <QMap>

namespace vantrel {

class AbstractMediaLibraryProvider;

/// Keeps the items of playlists and entries in step with the library, each entry linked to the slot that it
/// plays and with the running time before and after it. The session owns it for its life; main thread only.
class PlaylistProvider : public AbstractPlaylistProvider
{
    Q_OBJECT

public:
    PlaylistProvider(Ref<MediaLibrary> library, AbstractMediaLibraryProvider* mediaProvider,
                     QObject* parent = nullptr);
    ~PlaylistProvider() override;

    QList<std::shared_ptr<const GuiPlaylist>> playlists() const override;
    std::shared_ptr<const GuiPlaylist> playlist(uint number) const override;
    QList<std::shared_ptr<const GuiPlaylistEntry>> entries(uint playlist) const override;
    std::shared_ptr<const GuiPlaylistEntry> entry(uint playlist, EntryAddress address) const override;
    std::shared_ptr<const GuiMediaSlot> entrySlot(uint playlist, EntryAddress address) const override;
    QSet<std::shared_ptr<const GuiPlaylistEntry>> slotEntries(const MediaAddress& address) const override;
    MediaLibrary* mediaLibrary() override;

    void onReset() override;
    void onPlaylistAdded(uint playlist) override;
    void onPlaylistChanged(uint playlist) override;
    void onPlaylistRemoved(uint playlist) override;
    void onEntryAdded(uint playlist, EntryAddress address) override;
    void onEntryChanged(uint playlist, EntryAddress address) override;
    void onEntryRemoved(uint playlist, EntryAddress address) override;
    void onSlotModified(MediaAddress address) override;

private:
    using EntryPtr = std::shared_ptr<const GuiPlaylistEntry>;
    using SlotPtr = std::shared_ptr<const GuiMediaSlot>;
    struct Runtimes
    {
        double duration = 0;
        bool infinite = false;
        QList<EntryAddress> changed;
    };

    void clearEntries();
    void populate();
    bool populateSinglePlaylist(uint playlist);
    void populateEntriesOf(uint playlist);
    bool populateSingleEntry(uint playlist, EntryAddress address);
    void populateSingleEntrySlot(uint playlist, EntryAddress address);
    bool clearSingleEntry(uint playlist, EntryAddress address);
    void clearSinglePlaylistEntries(uint playlist);
    void unlink(const EntryPtr& entry);

    Runtimes updatePlaylistRuntimes(uint playlist);
    bool updateEntryRuntimes(uint playlist, EntryAddress address, double before, double after);
    void updatePlaylistDurations(uint playlist);
    void setPlaylistDuration(uint playlist, double duration, bool infinite, bool silent);
    void updatePlaylistEntryCount(uint playlist, bool silent);
    void emitChangedForEach(uint playlist, const QList<EntryAddress>& addresses);

    Ref<MediaLibrary> m_library;
    AbstractMediaLibraryProvider* m_mediaProvider;
    QMap<uint, std::shared_ptr<const GuiPlaylist>> m_playlists;
    QMap<uint, QMap<EntryAddress, EntryPtr>> m_entries;
    QMap<uint, QMap<EntryAddress, SlotPtr>> m_entrySlots;
    QMap<MediaAddress, QSet<EntryPtr>> m_slotEntries;
    // Where an entry stands in one of the two maps by slot, so that letting go of it need not walk them.
    QHash<EntryPtr, MediaAddress> m_links;
    // Entries whose slot is absent: they get it as soon as it comes.
    QMap<MediaAddress, QSet<EntryPtr>> m_waitingEntries;
};

} // namespace vantrel

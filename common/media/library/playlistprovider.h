#pragma once

#include "common/media/address/mediaaddresshash.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "tarn/ref.h"

#include <QHash>
#include <QMap>

#include <map>
#include <utility>
#include <vector>

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
    struct Row
    {
        EntryAddress address() const;
        EntryPtr item;
        MediaAddress slotAddress; // invalid when the entry names no slot
        bool hasSlot = false;     // at that address
        mutable SlotPtr slot;     // taken when somebody asks for it
    };
    using Rows = std::vector<Row>; // by address
    using User = std::pair<uint, EntryAddress>;

    void onCollectionModified(uint collection);
    void refreshEntries(const QList<User>& users);

    const Rows* rows(uint playlist) const;
    const Row* row(uint playlist, EntryAddress address) const;
    Row* row(uint playlist, EntryAddress address);

    void populate();
    bool populateSinglePlaylist(uint playlist);
    void populateEntriesOf(uint playlist);
    bool populateSingleEntry(uint playlist, EntryAddress address);
    void putEntry(uint playlist, const EntryPtr& item);
    void populateSingleEntrySlot(Row& row);
    bool clearSingleEntry(uint playlist, EntryAddress address);
    void clearSinglePlaylistEntries(uint playlist);
    void link(Row& row, MediaAddress slotAddress);
    void unlink(Row& row);

    Runtimes updatePlaylistRuntimes(uint playlist);
    bool updateEntryRuntimes(Row& row, double before, double after);
    void updatePlaylistDurations(uint playlist);
    void setPlaylistDuration(uint playlist, double duration, bool infinite, bool silent);
    void updatePlaylistEntryCount(uint playlist, bool silent);
    void emitChangedForEach(uint playlist, const QList<EntryAddress>& addresses);

    Ref<MediaLibrary> m_library;
    AbstractMediaLibraryProvider* m_mediaProvider;
    QMap<uint, std::shared_ptr<const GuiPlaylist>> m_playlists;
    std::map<uint, Rows> m_entries;
    // Which entries name a slot, whether it is there or not, so that nothing need be walked to find them.
    QHash<MediaAddress, QList<User>> m_users;
};

} // namespace vantrel

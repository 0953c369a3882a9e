#pragma once

#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/library/entrytable.h"
#include "common/media/library/turn.h"
#include "tarn/ref.h"

#include <QMap>

#include <map>
#include <memory>
#include <vector>

namespace vantrel {

class AbstractMediaLibraryProvider;
class PlaylistEntry;

/// Keeps the items of playlists and entries in step with the library, each entry with the running time before
/// and after it. Whatever the news, the same happens: the items that it names are made anew, the times of the
/// playlist are worked out again, and then it is told, followed by every entry whose times moved and by the
/// playlist. The session owns it for its life; main thread only.
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
    /// Around the calls above that belong to one patch: the times of a playlist are worked out once, and what
    /// moved is told at the end.
    void onChangesStarted();
    void onChangesFinished();

private:
    /// What moved when the times of a playlist were worked out again.
    struct Moved
    {
        QList<EntryAddress> entries;
        bool playlist = false;
    };

    using EntrySignal = void (AbstractPlaylistProvider::*)(uint, EntryAddress);
    struct News
    {
        EntrySignal signal;
        uint playlist;
        EntryAddress address;
    };

    /// The lists of a new library, which come in turns.
    struct Coming;

    void takeEntry(EntrySignal signal, const char* verb, uint playlist, EntryAddress address);
    void announce(EntrySignal signal, uint playlist, EntryAddress address);
    void proceed(bool toTheEnd);
    void settle();
    bool loadPlaylist(uint playlist);
    bool loadEntry(uint playlist, EntryAddress address);
    void putEntry(uint playlist, EntryAddress address, const PlaylistEntry& entry);
    void forget(uint playlist);
    void warnWithoutSlot(const EntryTable::Place& place);
    void lookAtSlots();

    Moved recalculate(uint playlist);
    Moved updateTimes(uint playlist);
    void tell(uint playlist, const Moved& moved);
    void tellOfSlots(const QList<EntryTable::Place>& users);
    void onCollectionModified(uint collection);

    Ref<MediaLibrary> m_library;
    AbstractMediaLibraryProvider* m_mediaProvider;
    QMap<uint, std::shared_ptr<const GuiPlaylist>> m_playlists;
    EntryTable m_entries;
    bool m_isChanging = false;                 // between the two calls around a patch
    std::vector<News> m_news;                  // of entries, for its end
    std::vector<EntryTable::Place> m_unlooked; // whose slots may come with the rest of it
    std::map<uint, bool> m_late; // playlists to work out at its end, and whether they changed themselves
    std::shared_ptr<Coming> m_coming;
    Turn m_turn; // of reading what is coming
};

} // namespace vantrel

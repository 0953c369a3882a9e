#pragma once

#include "common/media/address/entryaddresshash.h"
#include "common/media/address/mediastate.h"
#include "common/media/models/playlist/playlistorder.h"
#include "common/media/models/playlist/playlistrows.h"
#include "common/media/models/urlindex.h"
#include "common/media/net/metadataprovider.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/entryaddress.h"
#include "tarn/media/mediaaddress.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QPixmap>
#include <QPointer>
#include <QSet>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace vantrel {

class AbstractPlaylistProvider;
class GUIPlayback;
class GuiMediaSlot;
class MediaDataAggregator;
class MediaSlot;
class MediaStateProvider;

/// The entries of one playlist, a row each, in an order of its own: sorting leaves their addresses alone.
/// Follows the provider row by row, or once for all that one patch changes. The session owns one for each
/// channel; main thread only.
class PlaylistModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    static constexpr uint noPlaylist = ~0U;

    enum Column : int {
        NumberColumn = 0,
        EndActionColumn = 1,
        TransitionColumn = 2,
        RuntimeBeforeColumn = 3, // a placeholder; Qt::EditRole gives seconds, as of all times here
        RuntimeAfterColumn = 4,
        StateColumn = 5,
        MediaColumn = 6,
        DurationColumn = 7,
        TransitionDurationColumn = 8,
        ThumbnailColumn = 9,
        SizeColumn = 10,
        ColumnCount = 11,
    };
    enum Roles : int {
        DisplayRole = 0,
        DecorationRole = 1,
        // Of the whole row, in any column.
        PreviewPlayingEntryRole = 257,
        ProgramPlayingEntryRole = 258,
        PlayableRole = 259,
        PreviewRole = 260,
        ProgramRole = 261,
    };
    Q_ENUM(Roles)

    /// Follows what plays on the channels that "modes" names. All collaborators may be null and must outlive
    /// the model or be QObjects that go.
    PlaylistModel(AbstractPlaylistProvider* provider, MediaDataAggregator* aggregator, GUIPlayback* preview,
                  GUIPlayback* program, const QSet<PlaybackViewMode>& modes,
                  MediaStateProvider* stateProvider, QObject* parent = nullptr);
    ~PlaylistModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    /// Qt::EditRole gives enumerations and times as numbers.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Columns without an order of their own are passed over.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    int sortColumn() const { return m_sortColumn; }
    bool isAscending() const { return m_isAscending; }

    /// noPlaylist for none.
    uint playlistNumber() const { return m_playlist; }
    uint playlistIndex() const { return m_playlist; }
    void setPlaylistNumber(uint playlist);
    AbstractPlaylistProvider* playlistProvider() const;

    /// Null for an invalid index.
    std::shared_ptr<const GuiPlaylistEntry> getEntry(const QModelIndex& index) const;
    EntryAddress getEntryAddress(const QModelIndex& index) const;
    /// Passes over invalid ones, with a warning.
    QList<EntryAddress> getEntryAddresses(const QList<QModelIndex>& indexes) const;
    /// Of the first cell; invalid when there is no such entry.
    QModelIndex indexOf(EntryAddress address) const;
    /// The most digits that an address here has before and behind its point.
    std::pair<int, int> addressDigits() const;
    QModelIndex getLeftmostIndex(int row) const;
    QModelIndex getRightmostIndex(int row) const;

    MediaState getMediaState(const GuiPlaylistEntry& entry) const;
    MediaState getPreviewMediaState(const GuiPlaylistEntry& entry) const;
    MediaState getProgramMediaState(const GuiPlaylistEntry& entry) const;
    bool getMediaPlayable(const GuiPlaylistEntry& entry) const;
    /// Null when the entry plays nothing that there is.
    std::shared_ptr<const GuiMediaSlot> getEntrySlot(const GuiPlaylistEntry& entry) const;
    /// Null until it is known; asks for it.
    MediaMetadataPtr getMetadata(const GuiPlaylistEntry& entry) const;
    /// In bytes; 0 while it is not known.
    qint64 getMediaSize(const GuiPlaylistEntry& entry) const;
    /// As the table writes it.
    static QString sizeText(qint64 bytes);
    /// To the millisecond, with as many decimals as that takes and one at the least: "1.0", "0.25".
    static QString secondsText(double seconds);
    QVariant getThumbnail(const GuiPlaylistEntry& entry) const;
    /// Seconds: of the medium, and of what of it is played.
    double getMediaDuration(const GuiPlaylistEntry& entry) const;
    double getEffectiveMediaDuration(const GuiPlaylistEntry& entry) const;
    bool hasInfiniteDuration(const GuiPlaylistEntry& entry) const;
    /// In seconds as the table shows it: infinity where it has no end, 0 without a medium.
    double shownDuration(const GuiPlaylistEntry& entry) const;
    /// Empty without a medium.
    QString mediaName(const GuiPlaylistEntry& entry) const;
    // As the table shows them, asking nobody for what is not known yet.
    MediaState knownState(const GuiPlaylistEntry& entry) const;
    qint64 knownSize(const GuiPlaylistEntry& entry) const;
    /// Sentences: why its medium is not played, or not whole.
    QStringList knownFaults(const GuiPlaylistEntry& entry) const;
    /// As its file is known to be, or else as its slot has it; nothing without a medium.
    std::optional<MediaType> knownType(const GuiPlaylistEntry& entry) const;
    QPixmap knownThumbnail(const GuiPlaylistEntry& entry) const;
    /// In address order.
    QList<EntryAddress> getEntriesUsingMediaUrl(const QUrl& url) const;

public Q_SLOTS:
    virtual void onReset();
    void onPlaylistRemoved(uint playlist);
    void onEntryAdded(uint playlist, vantrel::EntryAddress address);
    void onEntryChanged(uint playlist, vantrel::EntryAddress address);
    void onEntryRemoved(uint playlist, vantrel::EntryAddress address);
    void onSlotsModified(const QList<std::pair<uint, vantrel::EntryAddress>>& entries);
    void onSlotModified(uint playlist, vantrel::EntryAddress address);
    void onMetadataChanged(const QUrl& mediaUrl);
    void onThumbnailChanged(const QUrl& mediaUrl);
    void onMediaStateChanged(const QUrl& mediaUrl, vantrel::MediaState state);
    void onPreviewChange();
    void onProgramChange();

Q_SIGNALS:
    void playlistChanged(uint index);
    void entriesAdded(uint playlistIndex, QList<vantrel::EntryAddress> entryAddresses);
    void entriesRemoved(uint playlistIndex, QList<vantrel::EntryAddress> entryAddresses);

private:
    /// What a channel plays; nothing of the sort where the address is invalid.
    struct Playing
    {
        uint playlist = noPlaylist;
        EntryAddress entry;
    };
    using Item = PlaylistRows::Item;
    struct Difference;

    void connectProvider();
    void connectChannels(const QSet<PlaybackViewMode>& modes);
    void populate();
    void clearCachedData();
    PlaylistOrder rowOrder() const;
    void sortData();
    void relayout(const QList<Item>& items, const QHash<EntryAddress, EntryAddress>& moved);
    bool isBehind(EntryAddress address, bool isEdited);
    bool takeOverEdits(const std::vector<EntryAddress>& edited);
    void onChangesFinished();
    Difference compare(const QList<Item>& now) const;
    void synchronise();
    void onLibraryRead();
    void findFates(Difference& difference);
    void applyFates(const QHash<EntryAddress, Item>& fates);
    void removeItems(std::vector<int> rows);
    void insertItems(const QList<Item>& items);
    void doubtOrder();
    void knowUrl(const GuiPlaylistEntry& entry) const;
    void learnUrls() const;
    void follow(Playing& playing, const GUIPlayback* channel);
    const MediaSlot* recordOf(const GuiPlaylistEntry& entry) const;
    bool isPlaying(const Playing& playing, const GuiPlaylistEntry& entry) const;
    QVariant displayData(const GuiPlaylistEntry& entry, int column) const;
    QVariant editData(const GuiPlaylistEntry& entry, int column) const;
    QVariant rowData(const GuiPlaylistEntry& entry, int role) const;
    void emitDataChangedOnRow(int row, int firstColumn = 0, int lastColumn = ColumnCount - 1);
    void emitDataChangedOn(std::vector<int> rows, int firstColumn = 0, int lastColumn = ColumnCount - 1);
    void emitDataChangedFor(const QUrl& mediaUrl, int column);
    void warnMissing(uint playlist, EntryAddress address) const;

    QPointer<AbstractPlaylistProvider> m_provider;
    QPointer<MediaDataAggregator> m_aggregator;
    QPointer<MediaStateProvider> m_stateProvider;
    QPointer<GUIPlayback> m_preview;
    QPointer<GUIPlayback> m_program;
    uint m_playlist = noPlaylist;
    PlaylistRows m_rows;
    Playing m_previewPlaying;
    Playing m_programPlaying;
    int m_sortColumn = NumberColumn;
    bool m_isAscending = true;
    bool m_isChanging = false;          // within a patch: what it changes is taken over at its end
    bool m_isBehind = false;            // and it changes something here
    bool m_isRearranged = false;        // entries come or go
    std::vector<EntryAddress> m_edited; // what else there is to take over, as long as it is little
    bool m_isOrderDoubtful = false;
    mutable UrlIndex m_urls;             // of the slots that are played here, and of some that were
    mutable bool m_areUrlsKnown = false; // since somebody asked
};

} // namespace vantrel

#pragma once

#include "common/media/address/mediastate.h"
#include "common/media/address/mediautils.h"
#include "common/media/library/turn.h"
#include "common/media/models/recentitems.h"
#include "common/media/models/urlindex.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/ref.h"

#include <QAbstractItemModel>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <vector>

namespace vantrel {

class AbstractMediaLibraryProvider;
class GUIPlayback;
class MediaDataAggregator;
class MediaLibrary;
class MediaLibraryItem;
class MediaSlot;
class MediaStateProvider;

/// The library as a tree of collections and slots, read from the library itself. A collection's rows are its
/// slot numbers, from 0 to the highest it holds; a number without a slot is an empty row. The session owns
/// it; main thread, but resolvePlaylistAddress, which any thread may call.
class MediaLibraryModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column {
        NumberColumn = 0,
        ThumbnailColumn = 1,
        StateColumn = 2,
        NameColumn = 4,
        DurationColumn = 5,
        PlayableColumn = 6,
        InpointColumn = 7,
        OutpointColumn = 8,
        ScalingColumn = 9,
        UrlColumn = 10,
        ColumnCount = 11,
    };
    enum Roles {
        PlayableRole = 257,
        NumberRole = 258,
        ThumbRole = 259,
        StateRole = 260,
        NameRole = 261,
        DurationRole = 262,
        InpointRole = 263,
        OutpointRole = 264,
        ScaleModeRole = 265,
        CaveatsRole = 266,
        MediaTypeRole = 267,
        DurationSecondsRole = 268,
        HasInfiniteDurationRole = 269,
        UrlRole = 270,
        CollectionNumberRole = 271, // of a slot's collection, or the collection's own
        // What is known already, asking nobody: for views while they scroll past.
        KnownThumbnailRole = 272, // nothing while there is only a placeholder
        KnownStateRole = 273,
        KnownTypeRole = 274,
        KnownFaultsRole = 275, // sentences: why it is not played, or not whole
    };
    Q_ENUM(Roles)

    MediaLibraryModel(MediaLibrary* library, GUIPlayback* preview, GUIPlayback* program,
                      QObject* parent = nullptr);
    ~MediaLibraryModel() override;

    void setMediaDataAggregator(MediaDataAggregator* aggregator);
    void setMediaStateProvider(MediaStateProvider* provider);
    void setMediaLibaryProvider(AbstractMediaLibraryProvider* provider);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QHash<int, QByteArray> roleNames() const override;
    QStringList mimeTypes() const override;
    /// The slots as items that a playlist or a playback takes in.
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    /// The same of slots by their addresses, each once; null where the library has none of them.
    QMimeData* mimeDataOf(const QList<MediaAddress>& addresses) const;
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction | Qt::MoveAction; }

    MediaLibrary* mediaLibrary() const { return m_library.get(); }
    /// The collection that an index of this model or of a proxy of it stands in; -1 for none.
    static int getCollectionIndexNumber(const QModelIndex& index);
    /// The row of a collection; invalid when absent.
    QModelIndex collectionIndex(int collection) const;
    /// The row of a slot; invalid when the collection or the row is absent.
    QModelIndex slotIndex(const MediaAddress& address) const;
    /// The row that a slot's or a playlist entry's URL names; invalid when there is none.
    Q_INVOKABLE QModelIndex getSlotIndexFromMediaAddress(QString mediaAddress) const;
    QVariant data(const QString& address, int role, int column) const;
    /// Whether the row's slot names a file. Who asks of thousands has no item made for each.
    bool holdsMedia(const MediaAddress& address) const;
    /// The first number from there on that has a slot, which may be empty; -1 for none.
    int nextSlot(int collection, int from) const;
    /// The last number in front of it that has one; -1 for none.
    int slotBefore(int collection, int number) const;
    /// The address as it is when it begins as a media URL, else empty.
    static QString normalizeMediaAddress(const QString& address);
    /// The slot that a playlist entry's URL leads to. Any thread.
    MediaAddress resolvePlaylistAddress(const QString& address) const;
    /// Every slot that plays the file, in address order.
    QList<MediaAddress> slotsWith(const QUrl& mediaUrl);
    QStringList mediaCaveats(const QModelIndex& index) const;
    QVariant fetchThumbnail(const QModelIndex& index) const;

    /// Marks the row that a channel plays; the address is that of a slot or an entry, or empty, the state
    /// "play", "pause" or "stop".
    void setProgramState(int channel, const QString& mediaAddress, const QString& state);
    void setPreviewState(int channel, const QString& mediaAddress, const QString& state);

public Q_SLOTS:
    void reset();
    void onThumbnailUpdate(const QUrl& mediaUrl);
    void onCollectionChanged(uint index);
    void onCollectionRemoved(uint index);
    void onCollectionAdded(uint index);
    /// Slots that change between the two and follow each other are told of at once: views have to do with
    /// each word, and with thousands of them for long.
    void onChangesStarted();
    void onChangesFinished();
    void onMediaAdded(vantrel::MediaAddress address);
    void onMediaChanged(vantrel::MediaAddress address);
    void onMediaRemoved(vantrel::MediaAddress address);
    void onMediaStateChanged(const QUrl& mediaUrl, vantrel::MediaState state);
    void onPreviewChange();
    void onProgramChange();

private:
    using Item = std::unique_ptr<MediaLibraryItem>;
    struct Mark
    {
        QString address;
        QString state;
    };

    int
    rowOf(int collection) const; // the row of the collection, or the one where it would stand, negated - 1
    const MediaLibraryItem* collectionItem(const QModelIndex& index) const;
    const MediaLibraryItem* slotItem(const QModelIndex& index) const;
    MediaAddress addressOf(const QModelIndex& slot) const;
    Item makeCollection(int collection);
    void updateCollectionSlots(MediaLibraryItem& item, int collection);
    void updateSlot(const MediaAddress& address);
    void addRows(int collectionRow);
    void tellLater(const MediaAddress& slot);
    void tellChanged();
    void setSlot(MediaLibraryItem& collection, int row, const MediaSlot* record);
    void indexUrls(const MediaLibraryItem& collection);
    void forgetSlots(const MediaLibraryItem& collection);
    QList<QModelIndex> findItemsByUrl(const QUrl& mediaUrl);
    void tellOf(const QUrl& mediaUrl);
    bool isLarge() const;
    void indexSome();
    void reserveIndex();
    void settleIndex();
    void indexAll();
    void emitDataChangedForRow(const QModelIndex& index);
    void setMark(Mark& mark, const QString& mediaAddress, const QString& state);
    MediaAddress resolvePlaylistAddressUnsafe(const QString& address) const;
    QVariant displayData(const MediaLibraryItem& item, const QModelIndex& index) const;
    QVariant collectionData(const MediaLibraryItem& item, int column, int role) const;
    QVariant slotData(const MediaLibraryItem& item, const QModelIndex& index, int role) const;
    QVariant thumbnail(const MediaLibraryItem& item) const;
    int stateOf(const QModelIndex& index) const;
    int mediaType(const MediaLibraryItem& item) const;
    QVariant knownData(const MediaLibraryItem& item, const QModelIndex& index, int role) const;
    QString toolTip(const MediaLibraryItem& item) const;
    QStringList knownFaults(const MediaLibraryItem& item) const;
    QString accessibleText(const MediaLibraryItem& item, const QModelIndex& index) const;
    bool setName(const QModelIndex& index, const QString& name);
    bool setDuration(const QModelIndex& index, const QVariant& value);

    Ref<MediaLibrary> m_library;
    QPointer<GUIPlayback> m_preview;
    QPointer<GUIPlayback> m_program;
    QPointer<MediaDataAggregator> m_aggregator;
    QPointer<MediaStateProvider> m_stateProvider;
    QPointer<AbstractMediaLibraryProvider> m_libraryProvider;
    std::vector<Item> m_collections; // by ascending number
    mutable RecentItems m_slotItems;
    UrlIndex m_rowsByUrl;
    Turn m_turn;                // of indexing
    bool m_urlsIndexed = false; // since somebody asked for a URL
    bool m_isChanging = false;
    MediaAddress m_firstChanged{}; // of those that are not told of yet, up to
    int m_lastChanged = -1;
    std::size_t m_indexed = 0; // collections, until all are
    QSet<QUrl> m_toTell;       // as soon as they are
    Mark m_previewMark;
    Mark m_programMark;
};

} // namespace vantrel

#pragma once

#include "common/media/address/mediautils.h"
#include "common/media/net/metadataprovider.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QStringList>
#include <QUrl>

namespace vantrel {

class AbstractPlaylistProvider;
class GuiMediaSlot;
class MediaDataAggregator;
class MediaLibraryProvider;

/// All that is known of the one media in focus, in one row: what the library says of its slot joined with the
/// metadata of its file. Main thread only; the collaborators must outlive it or be null.
class SingleMediaModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column : int {
        NameColumn = 0,
        LocationColumn = 1,
        DurationColumn = 2,
        WidthColumn = 3,
        HeightColumn = 4,
        AspectColumn = 5,
        FpsColumn = 6,
        VideoColumn = 7,
        ColorSpaceColumn = 8,
        PixelFormatColumn = 9,
        BitRateColumn = 10,
        FileSizeColumn = 11,
        AudioColumn = 12,
        ChannelsColumn = 13, // has no title: it goes on where the audio column ends
        ImportedColumn = 14,
        ModifiedColumn = 15,
        PlaylistColumn = 16,
        CollectionColumn = 17,
        UsedInColumn = 18,
        MediaTypeColumn = 19,
        ScalingColumn = 20, // a view shows its menu here
        ReservedColumn = 21,
        ColumnCount = 22,
    };

    SingleMediaModel(MediaDataAggregator* aggregator, AbstractPlaylistProvider* playlistProvider,
                     MediaLibraryProvider* mediaProvider, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    /// Texts for the operator, and a list of them in UsedInColumn; nothing while no metadata is there.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// That of a new connection; may be null.
    void setMediaDataAggregator(MediaDataAggregator* aggregator);
    const QString& mediaAddress() const { return m_mediaAddress; }
    /// The URL of a slot or of a playlist entry; anything else shows nothing.
    void setMediaAddress(const QString& address);
    const QUrl& contentUrl() const { return m_contentUrl; }
    /// Null when the address leads to none.
    std::shared_ptr<const GuiMediaSlot> getMediaSlotPtr() const;

    /// "2: Show, slot 5"; empty for a collection that is not there.
    QString getCollectionString(int collection, int slot) const;
    /// "1: Gala - 5.1"; empty for a playlist that is not there.
    QString getPlaylistString(uint playlist, EntryAddress address) const;
    /// Where else the media stands: the entries that use a slot, or the slot that an entry uses.
    QStringList getUsedInList() const;
    static QString removePrefix(const QString& text, const QString& prefix);

public Q_SLOTS:
    virtual void onReset();
    void onMetadataChanged(QUrl mediaUrl);
    void onProviderReset();
    void onPlaylistModified(uint playlistIndex);
    void onEntryModified(uint playlistIndex, vantrel::EntryAddress entryAddress);
    void onSlotModified(vantrel::MediaAddress address);
    void onCollectionModified(uint collection);

Q_SIGNALS:
    void mediaAddressChanged(QString mediaAddress);

private:
    QVariant fileData(int column) const;
    QString pictureText(int column) const;
    QString fpsText() const;
    QString audioText() const;
    QString channelsText() const;
    QString playlistText() const;
    QString collectionText() const;
    media::PlaylistAndEntry entryInFocus() const;
    void connectSources();

    QPointer<MediaDataAggregator> m_aggregator;
    QPointer<AbstractPlaylistProvider> m_playlistProvider;
    QPointer<MediaLibraryProvider> m_mediaProvider;
    QString m_mediaAddress;
    QUrl m_contentUrl;
    MediaMetadataPtr m_metadata;
};

} // namespace vantrel

#pragma once

#include "common/media/address/mediastate.h"
#include "common/media/net/metadataprovider.h"
#include "common/media/net/thumbnailprovider.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <unordered_set>

namespace vantrel {

class MediaStateProvider;

/// All that views want to know of a media file beside its slot: metadata, thumbnail, state. The session
/// owns it; main thread only.
class MediaDataAggregator : public QObject
{
    Q_OBJECT

public:
    MediaDataAggregator(MetadataProvider* metadataProvider, ThumbnailProvider* thumbnailProvider,
                        MediaStateProvider* stateProvider, QObject* parent = nullptr);

    MediaMetadataPtr metadata(const QUrl& mediaUrl);
    /// The thumbnail, or a placeholder while there is none.
    ThumbnailPtr thumbnail(const QUrl& mediaUrl);
    /// What is here already, asking nobody; null for none.
    ThumbnailPtr knownThumbnail(const QUrl& mediaUrl) const;
    MediaMetadataPtr knownMetadata(const QUrl& mediaUrl) const;
    /// Of the file, in bytes, as last told, however long ago; 0 while nobody has told.
    qint64 knownSize(const QUrl& mediaUrl) const { return m_sizes.value(mediaUrl); }
    MediaState mediaState(const QUrl& mediaUrl) const;
    MediaState metadataMediaState(const QUrl& mediaUrl);
    MediaState previewMediaState(int channel) const;
    MediaState programMediaState(int channel) const;
    std::unordered_set<MediaCaveat> mediaCaveats(const QUrl& mediaUrl);
    /// For the operator, one text a caveat.
    QStringList mediaCaveatsDescribed(const QUrl& mediaUrl);
    /// Why the file is not played, or not whole, as sentences for the operator and as far as it was told,
    /// however long ago; none for a file that plays whole.
    QStringList knownFaults(const QUrl& mediaUrl) const;
    /// The sentence alone that stands for a file that cannot be played; empty for one that can.
    static QString whyNotPlayable(const MediaMetadata& metadata);
    void refreshData(const QUrl& mediaUrl);
    /// Forgets all of a file; with terminate also answers that are still to come.
    void invalidateData(const QUrl& mediaUrl, bool terminate);
    void invalidateAllData();
    /// What is kept of files of which metadata is not: another server may hold other files under their names.
    void forgetAll();

Q_SIGNALS:
    void metadataChanged(QUrl mediaUrl, vantrel::MediaMetadataPtr metadata);
    void thumbnailChanged(QUrl mediaUrl, vantrel::ThumbnailPtr thumbnail);
    void metadataInvalidated(QUrl mediaUrl);
    void thumbnailInvalidated(QUrl mediaUrl);
    void mediaStateChanged(QUrl mediaUrl);

private:
    void handleMetadataChanged(const QUrl& mediaUrl, const MediaMetadataPtr& metadata);
    void handleThumbnailChanged(const QUrl& mediaUrl, const ThumbnailPtr& thumbnail);
    void handleThumbnailInvalidated(const QUrl& mediaUrl);
    ThumbnailPtr selectPlaceholderThumbnailForMetadata(const MediaMetadataPtr& metadata) const;
    ThumbnailPtr getPlaceholderThumbnail(const QUrl& mediaUrl) const;
    QStringList faultsOf(const MediaMetadata& metadata) const;
    void forget(const QUrl& mediaUrl);
    QStringList caveatTexts(const MediaMetadata& metadata) const;
    QStringList describeCaveats(const std::unordered_set<MediaCaveat>& caveats) const;

    QPointer<MetadataProvider> m_metadataProvider;
    QPointer<ThumbnailProvider> m_thumbnailProvider;
    QPointer<MediaStateProvider> m_stateProvider;
    QHash<QUrl, qint64> m_sizes;       // of more files than metadata is kept of
    QHash<QUrl, QStringList> m_faults; // the same, of those that have some
    ThumbnailPtr m_genericPlaceholder;
    ThumbnailPtr m_imagePlaceholder;
    ThumbnailPtr m_audioPlaceholder;
    ThumbnailPtr m_videoPlaceholder;
};

} // namespace vantrel

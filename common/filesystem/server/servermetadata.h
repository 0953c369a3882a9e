#pragma once

#include "common/filesystem/model/filesystem.h"
#include "common/media/net/metadataprovider.h"
#include "common/media/net/thumbnailprovider.h"

#include <QCache>
#include <QPointer>
#include <QUrl>

namespace vantrel {

class MediaDataAggregator;

/// What the media side knows of the server's files, as the rows of a file view show it. Owned by the server
/// file system; main thread only.
class ServerMetadata : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// null: there is nobody to ask.
    void setAggregator(MediaDataAggregator* aggregator);
    /// False when nothing is known yet; changed() follows once something is.
    bool request(const QString& path, qint64 sizeBytes, FileMetadata& result);
    /// The same without the picture, which nobody is asked for.
    bool requestAlone(const QString& path, qint64 sizeBytes, FileMetadata& result);

Q_SIGNALS:
    void changed(vantrel::FileSystemFile file, vantrel::FileMetadata metadata);

private Q_SLOTS:
    void onMetadataChanged(const QUrl& url, const vantrel::MediaMetadataPtr& metadata);
    void onMediaStateChanged(const QUrl& url);
    void onThumbnailChanged(const QUrl& url);
    void onMetadataInvalidated(const QUrl& url);
    void onThumbnailInvalidated(const QUrl& url);

private:
    /// Of one file.
    struct FileMetadataCache
    {
        FileMetadata metadata;
        qint64 sizeBytes = -1;
    };

    void applyMetadata(const QUrl& url, const MediaMetadataPtr& metadata, FileMetadata& result) const;
    void cacheMetadata(const FileSystemFile& file, const FileMetadata& metadata);
    void tell(const QUrl& url, const FileMetadata& metadata);
    FileMetadataCache cached(const QUrl& url) const;

    QPointer<MediaDataAggregator> m_aggregator;
    QCache<QString, FileMetadataCache> m_cache{100}; // by path
};

} // namespace vantrel

#include "common/filesystem/server/servermetadata.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/media/net/mediadataaggregator.h"

namespace vantrel {

namespace {

FileSystemFile fileOf(const QString& path, qint64 sizeBytes)
{
    return {getNameInPath(path), sizeBytes, FileSystemDirectory::fromFullPath(getParentPath(path))};
}

} // namespace

void ServerMetadata::setAggregator(MediaDataAggregator* aggregator)
{
    if (m_aggregator)
        m_aggregator->disconnect(this);
    m_aggregator = aggregator;
    if (!aggregator)
        return;
    using Aggregator = MediaDataAggregator;
    connect(aggregator, &Aggregator::mediaStateChanged, this, &ServerMetadata::onMediaStateChanged);
    connect(aggregator, &Aggregator::metadataChanged, this, &ServerMetadata::onMetadataChanged);
    connect(aggregator, &Aggregator::thumbnailChanged, this,
            [this](const QUrl& url) { onThumbnailChanged(url); });
    connect(aggregator, &Aggregator::metadataInvalidated, this, &ServerMetadata::onMetadataInvalidated);
    connect(aggregator, &Aggregator::thumbnailInvalidated, this, &ServerMetadata::onThumbnailInvalidated);
}

bool ServerMetadata::request(const QString& path, qint64 sizeBytes, FileMetadata& result)
{
    if (!m_aggregator)
        return false;
    const bool isKnown = requestAlone(path, sizeBytes, result);
    const QUrl url = QUrl::fromLocalFile(path);
    if (m_aggregator->knownMetadata(url))
        return true;
    const bool hasThumbnail = m_aggregator->thumbnail(url) && m_aggregator->knownThumbnail(url);
    if (!hasThumbnail)
        return isKnown;
    result.thumbnail = url;
    cacheMetadata(fileOf(path, sizeBytes), result);
    return true;
}

bool ServerMetadata::requestAlone(const QString& path, qint64 sizeBytes, FileMetadata& result)
{
    if (!m_aggregator)
        return false;
    const QUrl url = QUrl::fromLocalFile(path);
    const FileSystemFile file = fileOf(path, sizeBytes);
    qCDebug(lcFileSystem) << "Requesting metadata for file" << path << "->" << url;
    if (const MediaMetadataPtr metadata = m_aggregator->metadata(url)) {
        applyMetadata(url, metadata, result);
        result.thumbnail = url;
        cacheMetadata(file, result);
        qCDebug(lcFileSystem) << "Found metadata for file";
        return true;
    }
    const FileMetadataCache* known = m_cache.object(path);
    if (known)
        result = known->metadata;
    return known != nullptr;
}

void ServerMetadata::applyMetadata(const QUrl& url, const MediaMetadataPtr& metadata,
                                   FileMetadata& result) const
{
    if (m_aggregator) {
        result.mediaState = m_aggregator->mediaState(url);
        const QStringList faults = m_aggregator->knownFaults(url);
        result.mediaCaveats = QSet<QString>(faults.cbegin(), faults.cend());
    } else {
        qCInfo(lcFileSystem) << "XXX Using default, Unable to acquire metadata for " << url;
        result.mediaState = MediaState::NotPlayable;
    }
    const std::optional<double> duration = metadata->getDuration();
    result.durationMs = duration ? static_cast<quint64>(1000.0 * std::max(0.0, *duration)) : 0;
    if (metadata->getVideo())
        result.videoCodec = QString::fromStdString(metadata->getVideo()->codec);
    else if (metadata->getImage())
        result.videoCodec = QString::fromStdString(metadata->getImage()->codec);
    else
        result.videoCodec.clear();
    result.isPlayable = metadata->getIsPlayable();
    result.mediaType = metadata->getMediaType();
}

void ServerMetadata::cacheMetadata(const FileSystemFile& file, const FileMetadata& metadata)
{
    const QString path = file.getFullPath();
    qCDebug(lcFileSystem) << "Caching metadata for file" << path << "with thumbnail" << metadata.thumbnail;
    m_cache.insert(path, new FileMetadataCache{metadata, file.sizeBytes});
}

ServerMetadata::FileMetadataCache ServerMetadata::cached(const QUrl& url) const
{
    const FileMetadataCache* known = m_cache.object(url.toLocalFile());
    return known ? *known : FileMetadataCache();
}

void ServerMetadata::tell(const QUrl& url, const FileMetadata& metadata)
{
    const FileSystemFile file = fileOf(url.toLocalFile(), cached(url).sizeBytes);
    cacheMetadata(file, metadata);
    Q_EMIT changed(file, metadata);
}

void ServerMetadata::onMetadataChanged(const QUrl& url, const MediaMetadataPtr& metadata)
{
    if (!url.isLocalFile() || !metadata)
        return;
    FileMetadata result = cached(url).metadata;
    applyMetadata(url, metadata, result);
    if (result.thumbnail.isEmpty())
        result.thumbnail = url;
    tell(url, result);
}

void ServerMetadata::onMediaStateChanged(const QUrl& url)
{
    const FileMetadataCache* known = url.isLocalFile() ? m_cache.object(url.toLocalFile()) : nullptr;
    if (!known || !m_aggregator)
        return; // nobody has asked for the file
    FileMetadata result = known->metadata;
    result.mediaState = m_aggregator->mediaState(url);
    tell(url, result);
}

void ServerMetadata::onThumbnailChanged(const QUrl& url)
{
    if (!url.isLocalFile())
        return;
    qCDebug(lcFileSystem) << "Thumbnail has changed for" << url.toLocalFile() << "->" << url;
    FileMetadata result = cached(url).metadata;
    result.thumbnail = url;
    tell(url, result);
}

void ServerMetadata::onMetadataInvalidated(const QUrl& url)
{
    qCDebug(lcFileSystem) << "Metadata has been invalidated for" << url << "- Reloading it...";
    if (m_aggregator && m_cache.contains(url.toLocalFile()))
        m_aggregator->metadata(url);
}

/// Of the files that are known few are in view: the rows that show this one ask for it when they hear of it.
void ServerMetadata::onThumbnailInvalidated(const QUrl& url)
{
    qCDebug(lcFileSystem) << "Thumbnail has been invalidated for" << url << "- Reloading it...";
    if (m_aggregator && m_cache.contains(url.toLocalFile()))
        tell(url, cached(url).metadata);
}

} // namespace vantrel

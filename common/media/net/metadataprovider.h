#pragma once

#include "tarn/media/mediametadata.h"

#include <QCache>
#include <QHash>
#include <QObject>
#include <QUrl>

#include <memory>

namespace vantrel {

class AbstractNetworkAccessManager;
class NetworkResourceCollection;

using MediaMetadataPtr = std::shared_ptr<MediaMetadata>;

/// Asks the server for the metadata of media files and keeps the last hundred answers. The session
/// owns it; main thread only.
class MetadataProvider : public QObject
{
    Q_OBJECT

public:
    /// The cost that is asked for is not looked at: the cache holds a hundred.
    MetadataProvider(const QString& host, AbstractNetworkAccessManager* manager, long long maxCost,
                     QObject* parent = nullptr);
    ~MetadataProvider() override;

    void setPort(unsigned short port) { m_port = port; }
    /// Another server: forgets what the last one said. An empty host is none, and nothing is asked for.
    void setServer(const QString& host, unsigned short port);

    /// The cached answer; else null, a request is on its way and metadataChanged follows.
    MediaMetadataPtr getMetadata(const QUrl& url);
    MediaMetadataPtr getMetadataFromCache(const QUrl& url) const;
    /// Forgets the answer; with terminate also one that is still to come.
    void invalidateMetadata(const QUrl& url, bool terminate);
    void invalidateAll();

Q_SIGNALS:
    void metadataChanged(QUrl mediaUrl, vantrel::MediaMetadataPtr metadata);
    void metadataInvalidated(QUrl mediaUrl);

private:
    void handleDataReceived(const QString& url, const QByteArray& data);
    MediaMetadataPtr convertDataToMetadata(const QString& url, const QByteArray& data) const;

    static const QString _apiPath;

    NetworkResourceCollection* m_resources;
    mutable QCache<QUrl, MediaMetadataPtr> m_cache;
    QString m_host;
    unsigned short m_port = 80;
};

} // namespace vantrel

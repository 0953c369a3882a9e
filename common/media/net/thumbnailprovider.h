#pragma once

#include <QCache>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QUrl>

#include <memory>

class QThreadPool;

namespace vantrel {

class AbstractNetworkAccessManager;
class NetworkResourceCollection;

using ThumbnailPtr = std::shared_ptr<const QPixmap>;

/// Asks the server for thumbnails, JPEG, and keeps the last ones: 64 MiB of pixels, but never fewer pictures
/// than views show at once, and five thousand at most. They are decoded on a worker thread, everything else
/// happens on the main thread. The session owns it.
class ThumbnailProvider : public QObject
{
    Q_OBJECT

public:
    /// The cost that is asked for is not looked at.
    ThumbnailProvider(const QString& host, AbstractNetworkAccessManager* manager, long long maxCost,
                      QObject* parent = nullptr);
    ~ThumbnailProvider() override;

    void setPort(unsigned short port) { m_port = port; }
    /// Another server: forgets what the last one said. An empty host is none, and nothing is asked for.
    void setServer(const QString& host, unsigned short port);

    /// The cached picture; else null, a request is on its way and thumbnailChanged follows. A picture that
    /// the server does not have or that could not be decoded is a null pixmap.
    ThumbnailPtr getThumbnail(const QUrl& url);
    ThumbnailPtr getThumbnailFromCache(const QUrl& url) const;
    /// Forgets the picture; with terminate also one that is still to come.
    void invalidateThumbnail(const QUrl& url, bool terminate);
    void invalidateAll();

Q_SIGNALS:
    void thumbnailChanged(QUrl mediaUrl, vantrel::ThumbnailPtr thumbnail);
    void thumbnailInvalidated(QUrl mediaUrl);

private:
    void handleDataReceived(const QString& url, const QByteArray& data);
    void keepAsMissing(const QUrl& url);
    void store(const QUrl& url, const QImage& image);

    static const QString _apiPath;

    NetworkResourceCollection* m_resources;
    mutable QCache<QUrl, ThumbnailPtr> m_cache;
    QString m_host;
    unsigned short m_port = 80;
    std::unique_ptr<QThreadPool> m_decoders;
    QHash<QUrl, int> m_decoding; // URL to the number of its latest decoding; an older one is dropped
    int m_lastDecoding = 0;
};

} // namespace vantrel

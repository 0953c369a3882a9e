#include "common/media/net/thumbnailprovider.h"

#include "common/media/address/medialogging.h"
#include "common/media/address/resourceurl.h"
#include "common/media/net/abstractnetworkaccessmanager.h"
#include "common/media/net/networkresourcecollection.h"

#include <QBuffer>
#include <QImageReader>
#include <QThreadPool>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

constexpr int missingMs = 2000; // until one that is not there is asked for again
constexpr qsizetype maxBytes = 64 * 1024 * 1024;
constexpr qsizetype maxCached = 5000;
// A screen of 3840 x 2160 full of tiles shows 252. What is in view must not push itself out: each paint would
// fetch anew what the one before had let go.
constexpr qsizetype minCached = 256;
// So many of four bytes. No view shows a picture larger than this.
constexpr qint64 mostPixels = maxBytes / minCached / 4;
constexpr uint retryCount = 3;
constexpr int timeoutMs = 5000;
// What claims to be larger is no thumbnail. A few kilobytes can unfold to gigabytes while they are decoded.
constexpr qint64 maxPixels = 16 * 1024 * 1024;

qint64 pixelsOf(const QByteArray& data)
{
    if (data.isEmpty()) // so a server tells that the file has no picture
        return 0;
    QBuffer buffer;
    buffer.setData(data);
    const QSize size = QImageReader(&buffer, QByteArrayLiteral("JPG")).size();
    return size.isValid() ? qint64(size.width()) * size.height() : 0;
}

QImage decode(const QByteArray& data)
{
    QBuffer buffer;
    buffer.setData(data);
    QImageReader reader(&buffer, QByteArrayLiteral("JPG"));
    const QSize size = reader.size();
    const double share = std::sqrt(double(mostPixels) / std::max(1.0, double(size.width()) * size.height()));
    if (share < 1)
        reader.setScaledSize(
            {std::max(1, int(size.width() * share)), std::max(1, int(size.height() * share))});
    return reader.read();
}

/// Bytes, and no fewer than the greatest number of pictures allows.
qsizetype costOf(const QPixmap& picture)
{
    const qsizetype bytes = qsizetype(picture.width()) * picture.height() * picture.depth() / 8;
    return std::max(bytes, maxBytes / maxCached);
}

} // namespace

const QString ThumbnailProvider::_apiPath = QStringLiteral("/api/brume/v1/thumbnails/");

ThumbnailProvider::ThumbnailProvider(const QString& host, AbstractNetworkAccessManager* manager,
                                     long long maxCost, QObject* parent)
    : QObject(parent)
    , m_resources(new NetworkResourceCollection(manager, retryCount, timeoutMs, this))
    , m_cache(maxBytes)
    , m_host(host)
    , m_decoders(std::make_unique<QThreadPool>())
{
    Q_UNUSED(maxCost);
    m_decoders->setMaxThreadCount(1);
    connect(m_resources, &NetworkResourceCollection::dataReceived, this,
            &ThumbnailProvider::handleDataReceived);
    connect(m_resources, &NetworkResourceCollection::dataNotFound, this,
            [this](const QString& url) { keepAsMissing(QUrl(url)); });
}

ThumbnailProvider::~ThumbnailProvider()
{
    m_decoders->clear();
    m_decoders->waitForDone();
}

ThumbnailPtr ThumbnailProvider::getThumbnail(const QUrl& url)
{
    if (url.isEmpty() || m_host.isEmpty())
        return nullptr;
    if (ThumbnailPtr cached = getThumbnailFromCache(url))
        return cached;
    if (!m_decoding.contains(url))
        m_resources->fetch(url.toString(QUrl::FullyEncoded), resourceUrl(m_host, m_port, _apiPath, url));
    return nullptr;
}

ThumbnailPtr ThumbnailProvider::getThumbnailFromCache(const QUrl& url) const
{
    const ThumbnailPtr* cached = m_cache.object(url);
    return cached ? *cached : nullptr;
}

/// Kept for a while as a picture that could not be read, since who draws would ask again each time; not for
/// good, since a file may be there again before its server can make a picture of it.
void ThumbnailProvider::keepAsMissing(const QUrl& url)
{
    const auto missing = std::make_shared<const QPixmap>();
    m_cache.insert(url, new ThumbnailPtr(missing), costOf(*missing));
    QTimer::singleShot(missingMs, this, [this, url, missing] {
        if (getThumbnailFromCache(url) != missing)
            return;
        m_cache.remove(url);
        Q_EMIT thumbnailInvalidated(url);
    });
}

void ThumbnailProvider::handleDataReceived(const QString& url, const QByteArray& data)
{
    const QUrl mediaUrl(url);
    const qint64 pixels = pixelsOf(data);
    if (pixels > maxPixels)
        qCWarning(lcMedia) << "Thumbnail is too large:" << mediaUrl << pixels << "pixels";
    if (pixels == 0 || pixels > maxPixels) {
        store(mediaUrl, {});
        return;
    }
    // A usual one takes a millisecond, but they come by the dozen, while the list that shows them is drawn.
    const int number = ++m_lastDecoding;
    m_decoding.insert(mediaUrl, number);
    m_decoders->start([this, mediaUrl, data, number] {
        const QImage image = decode(data);
        // The destructor waits for this: the object is still here.
        QMetaObject::invokeMethod(
            this,
            [this, mediaUrl, image, number] {
                if (m_decoding.value(mediaUrl) != number)
                    return;
                m_decoding.remove(mediaUrl);
                store(mediaUrl, image);
            },
            Qt::QueuedConnection);
    });
}

void ThumbnailProvider::store(const QUrl& url, const QImage& image)
{
    if (image.isNull())
        qCDebug(lcMedia) << "There is no picture in the thumbnail of" << url;
    const auto pixmap = std::make_shared<const QPixmap>(QPixmap::fromImage(image));
    m_cache.insert(url, new ThumbnailPtr(pixmap), costOf(*pixmap));
    Q_EMIT thumbnailChanged(url, pixmap);
}

void ThumbnailProvider::invalidateThumbnail(const QUrl& url, bool terminate)
{
    const QString text = url.toString(QUrl::FullyEncoded);
    if (terminate && m_resources->isFetching(text))
        m_resources->terminateFetch(text);
    else
        m_resources->fetchAgainAfterwards(text); // the answer may tell of the file as it was
    m_decoding.remove(url);
    m_cache.remove(url);
    Q_EMIT thumbnailInvalidated(url);
}

void ThumbnailProvider::setServer(const QString& host, unsigned short port)
{
    m_host = host;
    m_port = port;
    invalidateAll();
}

void ThumbnailProvider::invalidateAll()
{
    m_resources->terminateAll();
    m_decoding.clear();
    const QList<QUrl> urls = m_cache.keys();
    m_cache.clear();
    for (const QUrl& url : urls)
        Q_EMIT thumbnailInvalidated(url);
}

} // namespace vantrel

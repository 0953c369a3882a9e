#include "common/media/net/metadataprovider.h"

#include "common/media/address/medialogging.h"
#include "common/media/address/resourceurl.h"
#include "common/media/net/abstractnetworkaccessmanager.h"
#include "common/media/net/networkresourcecollection.h"
#include "tarn/json/json.h"

namespace vantrel {

namespace {

constexpr int maxCached = 100;
constexpr uint retryCount = 3;
constexpr int timeoutMs = 5000;

} // namespace

const QString MetadataProvider::_apiPath = QStringLiteral("/api/brume/v1/metadata/");

MetadataProvider::MetadataProvider(const QString& host, AbstractNetworkAccessManager* manager,
                                   long long maxCost, QObject* parent)
    : QObject(parent)
    , m_resources(new NetworkResourceCollection(manager, retryCount, timeoutMs, this))
    , m_cache(maxCached)
    , m_host(host)
{
    Q_UNUSED(maxCost);
    connect(m_resources, &NetworkResourceCollection::dataReceived, this,
            &MetadataProvider::handleDataReceived);
}

MetadataProvider::~MetadataProvider() = default;

MediaMetadataPtr MetadataProvider::getMetadata(const QUrl& url)
{
    if (url.isEmpty() || m_host.isEmpty())
        return nullptr;
    if (MediaMetadataPtr cached = getMetadataFromCache(url))
        return cached;
    m_resources->fetch(url.toString(QUrl::FullyEncoded), resourceUrl(m_host, m_port, _apiPath, url));
    return nullptr;
}

MediaMetadataPtr MetadataProvider::getMetadataFromCache(const QUrl& url) const
{
    const MediaMetadataPtr* cached = m_cache.object(url);
    return cached ? *cached : nullptr;
}

void MetadataProvider::handleDataReceived(const QString& url, const QByteArray& data)
{
    const MediaMetadataPtr metadata = convertDataToMetadata(url, data);
    if (!metadata)
        return;
    const QUrl mediaUrl(url);
    m_cache.insert(mediaUrl, new MediaMetadataPtr(metadata));
    Q_EMIT metadataChanged(mediaUrl, metadata);
}

MediaMetadataPtr MetadataProvider::convertDataToMetadata(const QString& url, const QByteArray& data) const
{
    Json json;
    if (!Json::parseString(data.toStdString(), json)) {
        qCWarning(lcMedia) << "JSON data is invalid for reply from " << url;
        return nullptr;
    }
    auto metadata = std::make_shared<MediaMetadata>();
    if (!metadata->parseJson(json)) {
        qCWarning(lcMedia) << "Error parsing JSON from reply from " << url;
        return nullptr;
    }
    return metadata;
}

void MetadataProvider::invalidateMetadata(const QUrl& url, bool terminate)
{
    const QString text = url.toString(QUrl::FullyEncoded);
    if (terminate && m_resources->isFetching(text))
        m_resources->terminateFetch(text);
    else
        m_resources->fetchAgainAfterwards(text); // the answer may tell of the file as it was
    m_cache.remove(url);
    Q_EMIT metadataInvalidated(url);
}

void MetadataProvider::setServer(const QString& host, unsigned short port)
{
    m_host = host;
    m_port = port;
    invalidateAll();
}

void MetadataProvider::invalidateAll()
{
    m_resources->terminateAll();
    const QList<QUrl> urls = m_cache.keys();
    m_cache.clear();
    for (const QUrl& url : urls)
        Q_EMIT metadataInvalidated(url);
}

} // namespace vantrel

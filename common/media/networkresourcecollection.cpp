#include "common/media/networkresourcecollection.h"

#include "common/media/abstractnetworkaccessmanager.h"
#include "common/media/medialogging.h"

#include <QTimer>

namespace vantrel {

struct NetworkResourceCollection::FetchContext
{
    QNetworkRequest request;
    NetworkReplyPtr reply;
    // Deleted later: a timer's own signal may end its context.
    std::unique_ptr<QTimer, void (*)(QTimer*)> timeout{new QTimer, [](QTimer* timer) {
                                                           timer->stop();
                                                           timer->disconnect();
                                                           timer->deleteLater();
                                                       }};
    uint retries = 0;
};

NetworkResourceCollection::NetworkResourceCollection(AbstractNetworkAccessManager* manager, uint retryCount,
                                                     int timeoutMs, QObject* parent)
    : QObject(parent)
    , m_manager(manager)
    , m_retryCount(retryCount)
    , m_timeoutMs(timeoutMs)
{
}

NetworkResourceCollection::~NetworkResourceCollection()
{
    terminateAll();
}

void NetworkResourceCollection::fetch(const QString& url, const QUrl& request)
{
    if (isFetching(url) || !m_manager)
        return;
    createFetchContext(url, request);
    send(url);
}

void NetworkResourceCollection::createFetchContext(const QString& url, const QUrl& request)
{
    const auto context = std::make_shared<FetchContext>();
    context->request = QNetworkRequest(request);
    context->timeout->setSingleShot(true);
    context->timeout->setInterval(m_timeoutMs);
    connect(context->timeout.get(), &QTimer::timeout, this, [this, url] { onReplyTimeout(url); });
    m_fetches.insert(url, context);
}

void NetworkResourceCollection::send(const QString& url)
{
    const std::shared_ptr<FetchContext> context = m_fetches.value(url);
    if (!context || !m_manager)
        return;
    context->timeout->start();
    context->reply = m_manager->get(context->request);
    if (!context->reply) {
        onReplyFinished(url);
        return;
    }
    AbstractNetworkReply* reply = context->reply.data();
    connect(reply, &AbstractNetworkReply::finished, this, [this, url, reply] {
        // An answer to a request that was sent again or given up meanwhile is nobody's.
        const std::shared_ptr<FetchContext> current = m_fetches.value(url);
        if (current && current->reply.data() == reply)
            onReplyFinished(url);
    });
}

void NetworkResourceCollection::onReplyFinished(const QString& url)
{
    const std::shared_ptr<FetchContext> context = m_fetches.value(url);
    if (!context)
        return;
    const NetworkReplyPtr reply = context->reply;
    if (!reply) {
        qCWarning(lcMedia, "Nullptr passed as reply for resource: %s", qPrintable(url));
        removeFetchContext(url);
        return;
    }
    const QNetworkReply::NetworkError error = reply->error();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (error == QNetworkReply::NoError && status == 200)
        handleSuccessfulReply(url, reply);
    else if (error == QNetworkReply::ContentNotFoundError)
        handleNotFound(url);
    else if (error == QNetworkReply::NoError)
        qCWarning(lcMedia) << "Invalid reply for url" << url << ":" << status;
    else // waits for the timeout, which sends the request again
        qCDebug(lcMedia) << "Failed to fetch" << url << ":" << reply->errorString();
}

void NetworkResourceCollection::onReplyTimeout(const QString& url)
{
    const std::shared_ptr<FetchContext> context = m_fetches.value(url);
    if (!context)
        return;
    if (context->retries < m_retryCount) {
        ++context->retries;
        if (const NetworkReplyPtr old = std::exchange(context->reply, {}); old && old->isRunning())
            old->abort();
        send(url);
        return;
    }
    qCWarning(lcMedia) << "No reply after requesting data for url: " << url << " for " << context->retries
                       << "times";
    if (context->reply && context->reply->isRunning())
        context->reply->abort();
    removeFetchContext(url);
}

void NetworkResourceCollection::handleSuccessfulReply(const QString& url, const NetworkReplyPtr& reply)
{
    const QByteArray data = reply->readAll();
    removeFetchContext(url); // first: a listener may ask for the same again
    Q_EMIT dataReceived(url, data);
}

void NetworkResourceCollection::handleNotFound(const QString& url)
{
    removeFetchContext(url);
    Q_EMIT dataNotFound(url);
}

void NetworkResourceCollection::removeFetchContext(const QString& url)
{
    if (m_fetches.remove(url) == 0)
        qCDebug(lcMedia) << "No such fetch ongoing" << url;
}

void NetworkResourceCollection::terminateFetch(const QString& url)
{
    const std::shared_ptr<FetchContext> context = m_fetches.value(url);
    removeFetchContext(url);
    if (context && context->reply && context->reply->isRunning())
        context->reply->abort();
}

void NetworkResourceCollection::terminateAll()
{
    const QList<QString> urls = m_fetches.keys();
    for (const QString& url : urls)
        terminateFetch(url);
}

} // namespace vantrel

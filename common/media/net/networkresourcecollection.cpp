#include "common/media/net/networkresourcecollection.h"

#include "common/media/address/medialogging.h"
#include "common/media/net/abstractnetworkaccessmanager.h"

#include <QScopedValueRollback>
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
    bool waiting = true;  // not sent yet
    bool running = false; // the request is under way
    bool again = false;   // the resource changed after the request was sent
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
    if (const std::shared_ptr<FetchContext> present = m_fetches.value(url)) {
        if (present->waiting && m_waiting.removeOne(url)) // somebody looks at it now
            m_waiting.append(url);
        return;
    }
    if (!m_manager)
        return;
    createFetchContext(url, request);
    m_waiting.append(url);
    startNext();
}

void NetworkResourceCollection::startNext()
{
    if (m_starting)
        return;
    const QScopedValueRollback starting(m_starting, true);
    while (m_running < maxRunning && !m_waiting.isEmpty())
        send(m_waiting.takeLast());
}

void NetworkResourceCollection::release(FetchContext& context)
{
    if (std::exchange(context.running, false))
        --m_running;
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
    context->waiting = false;
    context->again = false;
    context->running = true;
    ++m_running;
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
    release(*context);
    const NetworkReplyPtr reply = context->reply;
    if (!reply) {
        qCWarning(lcMedia, "Nullptr passed as reply for resource: %s", qPrintable(url));
        removeFetchContext(url);
        return;
    }
    const QNetworkReply::NetworkError error = reply->error();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (error == QNetworkReply::NoError && status == 200)
        return handleSuccessfulReply(url, reply);
    if (error == QNetworkReply::ContentNotFoundError)
        return handleNotFound(url);
    if (error == QNetworkReply::NoError)
        qCWarning(lcMedia) << "Invalid reply for url" << url << ":" << status;
    else // waits for the timeout, which sends the request again
        qCDebug(lcMedia) << "Failed to fetch" << url << ":" << reply->errorString();
    startNext();
}

void NetworkResourceCollection::onReplyTimeout(const QString& url)
{
    const std::shared_ptr<FetchContext> context = m_fetches.value(url);
    if (!context)
        return;
    release(*context);
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
    const std::shared_ptr<FetchContext> context = m_fetches.value(url);
    removeFetchContext(url); // first: a listener may ask for the same again
    const QPointer<NetworkResourceCollection> alive(this);
    Q_EMIT dataReceived(url, data);
    if (alive && context && context->again)
        fetch(url, context->request.url());
}

void NetworkResourceCollection::handleNotFound(const QString& url)
{
    const std::shared_ptr<FetchContext> context = m_fetches.value(url);
    removeFetchContext(url);
    if (context && context->again) // it may have come since
        fetch(url, context->request.url());
    else
        Q_EMIT dataNotFound(url);
}

void NetworkResourceCollection::removeFetchContext(const QString& url)
{
    const std::shared_ptr<FetchContext> context = m_fetches.take(url);
    if (!context) {
        qCDebug(lcMedia) << "No such fetch ongoing" << url;
        return;
    }
    if (context->waiting)
        m_waiting.removeOne(url);
    release(*context);
    startNext();
}

void NetworkResourceCollection::fetchAgainAfterwards(const QString& url)
{
    if (const std::shared_ptr<FetchContext> context = m_fetches.value(url))
        context->again = context->running;
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
    m_waiting.clear(); // none of them takes the place of one that ends
    const QList<QString> urls = m_fetches.keys();
    for (const QString& url : urls)
        terminateFetch(url);
}

} // namespace vantrel

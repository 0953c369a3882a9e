#include "common/media/net/serveraccess.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace vantrel {

namespace {

constexpr int headerMs = 15000; // from the last byte that is sent
constexpr int idleMs = 30000;   // without a byte

} // namespace

ServerAccess::ServerAccess(QObject* parent)
    : QNetworkAccessManager(parent)
    , m_headerTime(headerMs)
{
}

void ServerAccess::forgetConnections()
{
    m_isForgetting = true;
    QMetaObject::invokeMethod(this, &ServerAccess::forgetNow, Qt::QueuedConnection);
}

void ServerAccess::forgetNow()
{
    if (m_isForgetting && m_bodies == 0) {
        m_isForgetting = false;
        clearAccessCache();
    }
}

/// Where a connection ends under a body, the thread that sends it asks this one to begin it again, and waits;
/// clearAccessCache() waits for that thread.
void ServerAccess::watchBody(const QNetworkReply* reply)
{
    ++m_bodies;
    connect(reply, &QObject::destroyed, this, [this] {
        --m_bodies;
        QMetaObject::invokeMethod(this, &ServerAccess::forgetNow, Qt::QueuedConnection);
    });
}

QNetworkReply* ServerAccess::createRequest(Operation operation, const QNetworkRequest& request,
                                           QIODevice* body)
{
    m_isForgetting = false;
    QNetworkRequest bounded = request;
    bounded.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
    const bool isStream = request.url().path().endsWith(QLatin1String("/sse"));
    if (!isStream && bounded.transferTimeout() == 0)
        bounded.setTransferTimeout(idleMs);
    QNetworkReply* reply = QNetworkAccessManager::createRequest(operation, bounded, body);
    // Headers that drip in count as a transfer that goes on. They are read byte by byte, so that a flood of
    // them is no more than some megabytes until their time is over.
    auto* headers = new QTimer(reply);
    headers->setSingleShot(true);
    headers->setInterval(m_headerTime);
    connect(headers, &QTimer::timeout, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::metaDataChanged, headers, &QTimer::stop);
    connect(reply, &QNetworkReply::finished, headers, &QTimer::stop);
    headers->start();
    if (body) { // what is sent first may take its time
        connect(reply, &QNetworkReply::uploadProgress, headers, QOverload<>::of(&QTimer::start));
        watchBody(reply);
    }
    return reply;
}

} // namespace vantrel

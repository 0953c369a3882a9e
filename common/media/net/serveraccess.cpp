#include "common/media/net/serveraccess.h"

#include "common/media/address/medialogging.h"

#include <QFile>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <utility>

namespace vantrel {

namespace {

constexpr int headerMs = 15000; // once the request is sent, or in the queue for one that sends nothing
constexpr int idleMs = 30000;   // without a byte
constexpr int watchMs = 100;
// How far this process may grow within so long while headers are awaited: further than a library of the
// largest size makes it grow that is read meanwhile.
constexpr qint64 floodBytes = 2048LL * 1024 * 1024;
constexpr qint64 floodMs = 5000;

/// What this process has in memory, in bytes; 0 where the system does not tell.
qint64 memoryInUse()
{
    constexpr qint64 page = 4096;
    QFile status(QStringLiteral("/proc/self/statm"));
    return status.open(QIODevice::ReadOnly) ? status.readAll().split(' ').value(1).toLongLong() * page : 0;
}

} // namespace

ServerAccess::ServerAccess(QObject* parent)
    : QNetworkAccessManager(parent)
    , m_headerTime(headerMs)
    , m_floodBytes(floodBytes)
{
    m_watch.setInterval(watchMs);
    connect(&m_watch, &QTimer::timeout, this, &ServerAccess::checkMemory);
}

ServerAccess::~ServerAccess()
{
    // The replies go with the base, when there is nothing here any more that could be told of it.
    for (QNetworkReply* reply : findChildren<QNetworkReply*>())
        reply->disconnect(this);
}

QNetworkReply* ServerAccess::createRequest(Operation operation, const QNetworkRequest& request,
                                           QIODevice* body)
{
    QNetworkRequest bounded = request;
    bounded.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
    const bool isStream = request.url().path().endsWith(QLatin1String("/sse"));
    if (!isStream && bounded.transferTimeout() == 0)
        bounded.setTransferTimeout(idleMs);
    QNetworkReply* reply = QNetworkAccessManager::createRequest(operation, bounded, body);
    // Headers that drip in count as a transfer that goes on. What is sent first may take its time.
    auto* headers = new QTimer(reply);
    headers->setSingleShot(true);
    headers->setInterval(m_headerTime);
    connect(headers, &QTimer::timeout, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::metaDataChanged, headers, &QTimer::stop);
    connect(reply, &QNetworkReply::finished, headers, &QTimer::stop);
    if (body)
        connect(reply, &QNetworkReply::requestSent, headers, QOverload<>::of(&QTimer::start));
    else
        headers->start();
    await(reply);
    return reply;
}

void ServerAccess::await(QNetworkReply* reply)
{
    if (m_awaited.isEmpty()) {
        m_base = memoryInUse();
        m_sinceBase.start();
        m_watch.start();
    }
    m_awaited.insert(reply);
    const auto arrive = [this, reply] { arrived(reply); };
    connect(reply, &QNetworkReply::metaDataChanged, this, arrive);
    connect(reply, &QNetworkReply::finished, this, arrive);
    connect(reply, &QObject::destroyed, this, arrive);
}

void ServerAccess::arrived(QNetworkReply* reply)
{
    m_awaited.remove(reply);
    if (m_awaited.isEmpty())
        m_watch.stop();
}

/// Nothing tells of headers before they are whole: those without end show only in the memory that they take.
void ServerAccess::checkMemory()
{
    const qint64 now = memoryInUse();
    if (now - m_base > m_floodBytes) {
        qCWarning(lcMedia) << "An answer begins without end, giving it up";
        for (QNetworkReply* reply : std::exchange(m_awaited, {}))
            reply->abort();
        m_watch.stop();
        return;
    }
    if (m_sinceBase.elapsed() > floodMs || now < m_base) {
        m_base = now;
        m_sinceBase.start();
    }
}

} // namespace vantrel

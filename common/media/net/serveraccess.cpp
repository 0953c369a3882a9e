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

QNetworkReply* ServerAccess::createRequest(Operation operation, const QNetworkRequest& request,
                                           QIODevice* body)
{
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
    if (body) // what is sent first may take its time
        connect(reply, &QNetworkReply::uploadProgress, headers, QOverload<>::of(&QTimer::start));
    return reply;
}

} // namespace vantrel

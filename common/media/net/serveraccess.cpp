#include "common/media/net/serveraccess.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace vantrel {

namespace {

constexpr int headerMs = 30000; // they may wait for answers before them
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
    // Headers that drip in count as a transfer that goes on, and without end would fill the memory. What is
    // sent first may take its time.
    if (!body) {
        auto* headers = new QTimer(reply);
        headers->setSingleShot(true);
        connect(headers, &QTimer::timeout, reply, &QNetworkReply::abort);
        connect(reply, &QNetworkReply::metaDataChanged, headers, &QTimer::stop);
        connect(reply, &QNetworkReply::finished, headers, &QTimer::stop);
        headers->start(m_headerTime);
    }
    return reply;
}

} // namespace vantrel

#include "common/media/net/networkaccessmanager.h"

#include "common/media/net/networkreply.h"

#include <QNetworkAccessManager>

namespace vantrel {

NetworkAccessManager::NetworkAccessManager(QNetworkAccessManager* manager, QObject* parent)
    : AbstractNetworkAccessManager(parent)
    , m_manager(manager)
{
}

NetworkReplyPtr NetworkAccessManager::get(const QNetworkRequest& request)
{
    return createAndConnectReplyWrapper(m_manager ? m_manager->get(request) : nullptr);
}

NetworkReplyPtr NetworkAccessManager::post(const QNetworkRequest& request, const QByteArray& body)
{
    return createAndConnectReplyWrapper(m_manager ? m_manager->post(request, body) : nullptr);
}

NetworkReplyPtr NetworkAccessManager::patch(const QNetworkRequest& request, const QByteArray& body)
{
    return createAndConnectReplyWrapper(
        m_manager ? m_manager->sendCustomRequest(request, QByteArrayLiteral("PATCH"), body) : nullptr);
}

NetworkReplyPtr NetworkAccessManager::createAndConnectReplyWrapper(QNetworkReply* reply)
{
    if (!reply)
        return {};
    NetworkReplyPtr wrapper(new NetworkReply(reply), &QObject::deleteLater);
    // The connection holds the wrapper and ends with the answer: a caller that only waits for a signal need
    // not keep the pointer.
    connect(reply, &QNetworkReply::finished, this, [this, reply, wrapper] {
        const NetworkReplyPtr kept = wrapper;
        reply->disconnect(this);
        Q_EMIT finished(kept);
    });
    return wrapper;
}

} // namespace vantrel

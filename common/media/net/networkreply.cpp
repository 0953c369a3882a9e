#include "common/media/net/networkreply.h"

namespace vantrel {

namespace {
// An answer that does not end stands still here, until who waits for it gives up.
constexpr qint64 maxBuffered = 16 * 1024 * 1024; // bytes
} // namespace

NetworkReply::NetworkReply(QPointer<QNetworkReply> reply, QObject* parent)
    : AbstractNetworkReply(parent)
    , m_reply(std::move(reply))
{
    if (!m_reply)
        return;
    m_reply->setReadBufferSize(maxBuffered);
    connect(m_reply, &QNetworkReply::readyRead, this, &AbstractNetworkReply::readyRead);
    connect(m_reply, &QNetworkReply::finished, this, &AbstractNetworkReply::finished);
}

NetworkReply::~NetworkReply()
{
    if (!m_reply)
        return;
    m_reply->disconnect(this);
    if (m_reply->isRunning())
        m_reply->abort();
    m_reply->deleteLater();
}

QByteArray NetworkReply::readAll()
{
    return m_reply ? m_reply->readAll() : QByteArray();
}

bool NetworkReply::isRunning() const
{
    return m_reply && m_reply->isRunning();
}

void NetworkReply::abort()
{
    if (m_reply)
        m_reply->abort();
}

// A reply that went with its manager counts as cancelled.
QNetworkReply::NetworkError NetworkReply::error() const
{
    return m_reply ? m_reply->error() : QNetworkReply::OperationCanceledError;
}

QString NetworkReply::errorString() const
{
    return m_reply ? m_reply->errorString() : tr("The request was cancelled");
}

QNetworkRequest NetworkReply::request() const
{
    return m_reply ? m_reply->request() : QNetworkRequest();
}

QVariant NetworkReply::attribute(QNetworkRequest::Attribute code) const
{
    return m_reply ? m_reply->attribute(code) : QVariant();
}

} // namespace vantrel

#include "common/session/link/webprobe.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace vantrel {

namespace {
constexpr int interval = 2000; // milliseconds
constexpr int patience = 1500; // the same
} // namespace

WebProbe::WebProbe(QNetworkAccessManager* manager, quint16 port, QObject* parent)
    : QObject(parent)
    , m_manager(manager)
    , m_port(port)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &WebProbe::ask);
}

WebProbe::~WebProbe()
{
    setHost({});
}

void WebProbe::setHost(const QString& host)
{
    if (host == m_host)
        return;
    m_host = host;
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
    }
    if (host.isEmpty())
        return m_timer.stop();
    m_timer.start();
    ask();
}

void WebProbe::ask()
{
    if (m_reply)
        return;
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(m_host);
    url.setPort(m_port);
    url.setPath(QStringLiteral("/api/brume/v1/system"));
    QNetworkRequest request(url);
    request.setTransferTimeout(patience);
    QNetworkReply* const reply = m_manager->head(request);
    m_reply = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        m_reply = nullptr;
        // Also an error of the protocol's own is an answer.
        Q_EMIT answered(reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid());
    });
}

} // namespace vantrel

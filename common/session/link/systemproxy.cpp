#include "common/session/link/systemproxy.h"

#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "common/session/settings/sessionlogging.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace vantrel {

namespace {
constexpr qint64 maxAnswer = 1024 * 1024; // bytes
} // namespace

void SystemProxy::setSession(Session* session)
{
    m_session = session;
    if (session)
        connect(session->connectionHandler(), &ConnectionHandler::connected, this, &SystemProxy::onConnected);
}

void SystemProxy::onConnected()
{
    const QString host = m_session ? m_session->connectionHandler()->getConnectedHost() : QString();
    if (host.isEmpty())
        return;
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(host);
    url.setPort(m_session->ports().http);
    url.setPath(QStringLiteral("/api/brume/v1/system"));
    QNetworkReply* reply = m_session->getQNetworkAccessManager()->get(QNetworkRequest(url));
    reply->setReadBufferSize(maxAnswer);
    const QPointer<QNetworkReply> earlier = std::exchange(m_reply, reply);
    connect(reply, &QNetworkReply::finished, this, [this, reply] { onFinished(reply); });
    // More than the buffer takes stands still for ever.
    connect(reply, &QNetworkReply::readyRead, this, [reply] {
        if (reply->bytesAvailable() >= maxAnswer)
            reply->abort();
    });
    if (earlier)
        earlier->abort();
}

void SystemProxy::onFinished(QNetworkReply* reply)
{
    reply->deleteLater();
    if (reply != m_reply)
        return;
    m_reply = nullptr;
    QJsonObject object;
    if (reply->error() != QNetworkReply::NoError)
        qCWarning(lcSession).noquote()
            << QStringLiteral("Getting system property failed:") + reply->errorString();
    else
        object = QJsonDocument::fromJson(reply->readAll()).object();
    setData(object);
}

void SystemProxy::setData(const QJsonObject& object)
{
    const QString hostname = object.value(QStringLiteral("hostname")).toString();
    const QString key = QStringLiteral("firmwareVersion");
    const QString version =
        object.contains(key) ? formatVersionString(object.value(key).toObject()) : QString();
    if (std::exchange(m_hostname, hostname) != hostname)
        Q_EMIT hostnameChanged();
    if (std::exchange(m_version, version) != version)
        Q_EMIT versionChanged();
}

QString SystemProxy::formatVersionString(const QJsonObject& object)
{
    const auto number = [&](const QString& name) {
        const QJsonValue value = object.value(name);
        if (value.isDouble())
            return QString::number(value.toInteger());
        return value.isString() ? value.toString() : QStringLiteral("0");
    };
    const QString text = QStringLiteral("%1.%2.%3")
                             .arg(number(QStringLiteral("major")), number(QStringLiteral("minor")),
                                  number(QStringLiteral("patch")));
    return text + object.value(QStringLiteral("tag")).toString();
}

} // namespace vantrel

#include "common/ui/shell/showservice.h"

#include "common/command/commandgate.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace vantrel {

ShowService::ShowService(Session* session, QObject* parent)
    : QObject(parent)
    , m_session(session)
{
}

void ShowService::ask(const QString& command, const QByteArray& method, const QString& path,
                      const QUrlQuery& query, const QByteArray& body, Then then)
{
    // By a road of its own, which is no reason to wait in the sockets of a server that hangs.
    if (!CommandGate::passes(m_session->getQUndoStack(), command))
        return;
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(m_session->connectionHandler()->getConnectedHost());
    url.setPort(m_session->ports().http);
    url.setPath(QStringLiteral("/api/brume/v1") + path);
    url.setQuery(query);
    QNetworkRequest request(url);
    if (method == "POST")
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          path == QLatin1String("/show/current")
                              ? QStringLiteral("application/x-www-form-urlencoded")
                              : QStringLiteral("application/json"));
    QNetworkAccessManager* network = m_session->getQNetworkAccessManager();
    QNetworkReply* reply = method == "GET"    ? network->get(request)
                           : method == "POST" ? network->post(request, body)
                                              : network->sendCustomRequest(request, method);
    connect(reply, &QNetworkReply::finished, this, [reply, then = std::move(then)] {
        reply->deleteLater();
        then(answerOf(*reply));
    });
}

ShowService::Answer ShowService::answerOf(QNetworkReply& reply)
{
    Answer answer;
    answer.status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply.error() == QNetworkReply::NoError) {
        answer.body = reply.readAll();
        return answer;
    }
    constexpr qint64 longest = 1024 * 1024; // bytes of an error
    answer.netError = reply.errorString();
    const QJsonObject said = QJsonDocument::fromJson(reply.read(longest)).object();
    answer.error = said.value(QStringLiteral("error")).toString();
    answer.missing = said.value(QStringLiteral("missing")).toVariant().toStringList();
    if (answer.error.isEmpty())
        answer.error = answer.status == 0 ? tr("The server did not answer (%1).").arg(answer.netError)
                                          : tr("The server refused it (%1).").arg(answer.status);
    return answer;
}

} // namespace vantrel

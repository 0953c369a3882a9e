#include "common/ui/shell/showservice.h"

#include "common/command/commandgate.h"
#include "common/media/address/showntext.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

#include <algorithm>
#include <memory>
#include <utility>

namespace vantrel {

namespace {

/// Properties of the reply.
constexpr const char* stopped = "isStopped";
constexpr const char* lost = "isLost";
constexpr const char* endless = "isEndless";

/// Of an answer, in bytes. A show is as large as one may be; of lists and sentences nobody waits for more.
constexpr qint64 largestShow = 272LL * 1024 * 1024, largestAnswer = 8LL * 1024 * 1024;

/// Names come from outside.
QStringList missingIn(const QByteArray& body)
{
    QStringList names =
        QJsonDocument::fromJson(body).object().value(QStringLiteral("missing")).toVariant().toStringList();
    std::ranges::transform(names, names.begin(), [](const QString& name) { return shownText(name); });
    return names;
}

void giveUp(QNetworkReply* reply, const char* why)
{
    reply->setProperty(why, true);
    reply->abort();
}

} // namespace

ShowService::ShowService(Session* session, QObject* parent)
    : QObject(parent)
    , m_session(session)
{
}

QNetworkReply* ShowService::ask(const QString& command, const QByteArray& method, const QString& path,
                                const QUrlQuery& query, const QByteArray& body, Then then)
{
    // By a road of its own, which is no reason to wait in the sockets of a server that hangs. Without any
    // server the request itself fails.
    const QString host = m_session->connectionHandler()->getConnectedHost();
    if (!host.isEmpty() && !CommandGate::passes(m_session->getQUndoStack(), command))
        return nullptr;
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(host);
    url.setPort(m_session->ports().http);
    url.setPath(QStringLiteral("/api/brume/v1") + path);
    url.setQuery(query);
    QNetworkRequest request(url);
    if (method == "POST")
        request.setHeader(QNetworkRequest::ContentTypeHeader,
                          path == QLatin1String("/show/current")
                              ? QStringLiteral("application/x-www-form-urlencoded")
                              : QStringLiteral("application/json"));
    constexpr int patience =
        15'000; // milliseconds; a show is made before it comes, and is followed on the screen
    if (method == "GET" && path != QLatin1String("/show/current"))
        request.setTransferTimeout(patience);
    QNetworkAccessManager* network = m_session->getQNetworkAccessManager();
    QNetworkReply* reply = method == "GET"    ? network->get(request)
                           : method == "POST" ? network->post(request, body)
                                              : network->sendCustomRequest(request, method);
    // The network layer would try it again on its own for ten seconds, while the operator is told nothing.
    connect(m_session->connectionHandler(), &ConnectionHandler::disconnected, reply,
            [reply] { giveUp(reply, lost); });
    // Taken as it comes, and never much in one turn: put together at once a show would hold the window.
    constexpr qint64 mostInOneTurn = 512 * 1024;
    reply->setReadBufferSize(mostInOneTurn);
    const auto answer = std::make_shared<Answer>();
    const bool isShow = method == "GET" && path == QLatin1String("/show/current");
    connect(reply, &QNetworkReply::readyRead, this,
            [reply, answer, left = isShow ? largestShow : largestAnswer]() mutable {
                answer->pieces.append(reply->readAll());
                left -= answer->pieces.last().size();
                if (left < 0)
                    giveUp(reply, endless);
            });
    connect(reply, &QNetworkReply::finished, this, [reply, answer, then = std::move(then)] {
        reply->deleteLater();
        finish(*reply, *answer);
        then(*answer);
    });
    return reply;
}

void ShowService::stop(QNetworkReply* reply)
{
    giveUp(reply, stopped);
}

void ShowService::finish(const QNetworkReply& reply, Answer& answer)
{
    answer.status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply.error() == QNetworkReply::NoError) {
        if (reply.operation() != QNetworkAccessManager::GetOperation)
            answer.missing = missingIn(answer.body());
        return;
    }
    answer.netError = reply.errorString();
    answer.isStopped = reply.property(stopped).toBool();
    const bool asksOnly = reply.operation() == QNetworkAccessManager::GetOperation;
    if (answer.isStopped) {
        answer.error = asksOnly
                           ? tr("It was stopped.")
                           : tr("It was stopped here. What the server has begun already it still finishes.");
        return;
    }
    if (reply.property(lost).toBool()) {
        answer.error = tr("The connection to the server ended meanwhile.");
        if (!asksOnly)
            answer.error +=
                u' ' + tr("It may be done all the same: look at the server's show before you try again.");
        return;
    }
    if (reply.property(endless).toBool()) {
        answer.pieces.clear();
        answer.error = tr("The server sends more than a show may have. Is this address the right one?");
        return;
    }
    if (reply.url().host().isEmpty()) {
        answer.error = tr("No server is connected.");
        return;
    }
    const QJsonObject said = QJsonDocument::fromJson(answer.body()).object();
    answer.error = said.value(QStringLiteral("error")).toString();
    answer.missing = missingIn(answer.body());
    if (answer.error.isEmpty())
        answer.error = answer.status == 0 ? tr("The server did not answer (%1).").arg(answer.netError)
                                          : tr("The server refused it (%1).").arg(answer.status);
}

} // namespace vantrel

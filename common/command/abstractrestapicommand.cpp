#include "common/command/abstractrestapicommand.h"

#include "common/command/commandlogging.h"
#include "common/media/net/networkaccessmanager.h"
#include "common/session/session.h"
#include "tarn/json/json.h"

#include <QJsonDocument>
#include <QNetworkRequest>

namespace vantrel {

namespace {
QByteArray bodyOf(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray bodyOf(const VariantMap& values)
{
    QJsonObject object;
    for (const auto& [name, value] : values) {
        Json json;
        Json::fromVariant(value, json);
        object.insert(QString::fromStdString(name), QString::fromStdString(json.asString()));
    }
    return bodyOf(object);
}

QUrl urlOf(const QString& base, const QString& path)
{
    return QUrl(base + path);
}
} // namespace

AbstractRestApiCommand::AbstractRestApiCommand(QUndoCommand* parent)
    : AbstractSessionCommand(parent)
{
}

void AbstractRestApiCommand::init(const QString& baseUrl, const QString& verb, const QString& path,
                                  const QJsonObject& body)
{
    m_baseUrl = baseUrl;
    m_redo = {true, verb, urlOf(baseUrl, path), bodyOf(body)};
    setInitialized(true);
}

void AbstractRestApiCommand::initVarMap(const QString& baseUrl, const QString& verb, const QString& path,
                                        const VariantMap& body)
{
    m_baseUrl = baseUrl;
    m_redo = {true, verb, urlOf(baseUrl, path), bodyOf(body)};
    setInitialized(true);
}

void AbstractRestApiCommand::setUndo(const QString& verb, const QString& path, const QJsonObject& body)
{
    m_undo = {true, verb, urlOf(m_baseUrl, path), bodyOf(body)};
}

void AbstractRestApiCommand::setUndoVarMap(const QString& verb, const QString& path, const VariantMap& body)
{
    m_undo = {true, verb, urlOf(m_baseUrl, path), bodyOf(body)};
}

void AbstractRestApiCommand::redo()
{
    send(m_redo, &AbstractRestApiCommand::redoResult, &AbstractRestApiCommand::redoNetworkError);
    QUndoCommand::redo();
    setObsolete(!isUndoSupported());
}

void AbstractRestApiCommand::undo()
{
    send(m_undo, &AbstractRestApiCommand::undoResult, &AbstractRestApiCommand::undoNetworkError);
    QUndoCommand::undo();
}

void AbstractRestApiCommand::send(const Request& request, Result result, NetworkError error)
{
    AbstractNetworkAccessManager* network =
        Session::instance() ? Session::instance()->getNetworkAccessManager() : nullptr;
    if (!network || !request.supported)
        return;
    QNetworkRequest message(request.url);
    message.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    NetworkReplyPtr reply;
    if (request.verb == QStringLiteral("GET"))
        reply = network->get(message);
    else if (request.verb == QStringLiteral("PATCH"))
        reply = network->patch(message, request.body);
    else
        reply = network->post(message, request.body);
    if (!reply)
        return;
    // The closure holds the reply until it has been read; the connection goes with the reply or the command.
    connect(reply.get(), &AbstractNetworkReply::finished, this, [this, reply, result, error] {
        if (reply->error() == QNetworkReply::NoError)
            (this->*result)(QJsonDocument::fromJson(reply->readAll()).object());
        else
            (this->*error)(reply->error(), reply->errorString());
        reply->disconnect(this);
    });
}

AbstractRestApiCommand::ParsedError AbstractRestApiCommand::parseError(const QJsonObject& object)
{
    ParsedError parsed;
    const QJsonValue result = object.value(QStringLiteral("result"));
    const QJsonValue success = result.toObject().value(QStringLiteral("success"));
    if (!result.isObject() || !success.isBool())
        return parsed;
    parsed.hasError = true;
    parsed.success = success.toBool();
    if (parsed.success)
        return parsed;
    const QJsonObject error = result.toObject().value(QStringLiteral("error")).toObject();
    parsed.text = error.value(QStringLiteral("text")).toVariant().toString();
    parsed.code = error.value(QStringLiteral("code")).toVariant().toString();
    return parsed;
}

void AbstractRestApiCommand::redoResult(const QJsonObject& object)
{
    if (const ParsedError error = parseError(object); error.hasError && !error.success)
        qCWarning(lcCommand).noquote()
            << QStringLiteral("Redo request failed! ") + error.code + QStringLiteral(": ") + error.text;
}

void AbstractRestApiCommand::undoResult(const QJsonObject& object)
{
    if (const ParsedError error = parseError(object); error.hasError && !error.success)
        qCWarning(lcCommand).noquote()
            << QStringLiteral("Undo request failed! ") + error.code + QStringLiteral(": ") + error.text;
}

void AbstractRestApiCommand::redoNetworkError(QNetworkReply::NetworkError code, const QString& text)
{
    qCWarning(lcCommand).noquote() << "Redo failed due network error:" << int(code) << text;
}

void AbstractRestApiCommand::undoNetworkError(QNetworkReply::NetworkError code, const QString& text)
{
    qCWarning(lcCommand).noquote() << "Undo failed due network error:" << int(code) << text;
}

} // namespace vantrel

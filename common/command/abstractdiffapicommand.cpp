#include "common/command/abstractdiffapicommand.h"

#include "common/command/commandlogging.h"
#include "common/media/library/medialibraryapi.h"
#include "common/session/session.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>

namespace vantrel {

namespace {
DiffApiError parseResult(QNetworkReply* reply)
{
    DiffApiError result;
    const QJsonObject object = QJsonDocument::fromJson(reply->readAll()).object();
    result.statusCode = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.success = result.statusCode == 200 || result.statusCode == 204;
    if (!result.success)
        result.message = object.value(QStringLiteral("error")).toString();
    return result;
}
} // namespace

AbstractDiffApiCommand::AbstractDiffApiCommand(QUndoCommand* parent)
    : AbstractSessionCommand(parent)
{
}

void AbstractDiffApiCommand::setUndoPatch(const Patch& patch)
{
    m_undoPatch = patch;
    m_undoSupported = true;
}

void AbstractDiffApiCommand::redo()
{
    send(m_redoPatch, &AbstractDiffApiCommand::redoResult);
}

void AbstractDiffApiCommand::undo()
{
    send(m_undoPatch, &AbstractDiffApiCommand::undoResult);
}

void AbstractDiffApiCommand::send(const Patch& patch, ResultHandler handler)
{
    MediaLibraryApi* api = Session::instance() ? Session::instance()->getMediaLibraryApi() : nullptr;
    if (!api) {
        qCWarning(lcCommand) << "No api available, check connection?";
        return;
    }
    QNetworkReply* reply = api->patchMediaLibrary(patch);
    if (!reply)
        return;
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    // The command is the context: an answer that comes after its deletion is dropped.
    connect(reply, &QNetworkReply::finished, this, [this, reply, handler] { handleReply(reply, handler); });
}

void AbstractDiffApiCommand::handleReply(QNetworkReply* reply, ResultHandler handler)
{
    // An error status is the server's answer, not a failure of the network.
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError && status < 400) {
        qCWarning(lcCommand).noquote() << QStringLiteral("Failed due network error: ") + reply->errorString();
        DiffApiError failure;
        failure.networkFailed = true;
        failure.networkErrorCode = reply->error();
        failure.networkMessage = reply->errorString();
        (this->*handler)(failure);
        return;
    }
    const DiffApiError result = parseResult(reply);
    // Children run after a confirmed undo as well as after a redo; the diff commands have none.
    QUndoCommand::redo();
    (this->*handler)(result);
}

void AbstractDiffApiCommand::redoResult(DiffApiError result)
{
    if (result.networkFailed)
        qCDebug(lcCommand).noquote() << QStringLiteral("Redo failed due network error ") +
                                            result.networkMessage;
    else if (!result.success)
        qCWarning(lcCommand).noquote() << QStringLiteral("Redo failed! ") + result.message;
}

void AbstractDiffApiCommand::undoResult(DiffApiError result)
{
    if (result.networkFailed)
        qCDebug(lcCommand).noquote() << QStringLiteral("Undo failed due network error ") +
                                            result.networkMessage;
    else if (!result.success)
        qCWarning(lcCommand).noquote() << QStringLiteral("Undo failed! ") + result.message;
}

} // namespace vantrel

#include "common/ui/shell/showmanager.h"

#include "common/command/commandgate.h"
#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/command/showcommands.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/mirror/serverconfigurationmodel.h"
#include "common/session/session.h"
#include "common/ui/shell/importshowdialog.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "tarn/scene/scene.h"

#include <QDateTime>
#include <QFile>
#include <QFileDialog>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrlQuery>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.show")

constexpr auto resource = "/api/brume/v1/show/current";

int statusOf(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

/// Whether the server has read the show and finds it incompatible.
bool isDislike(const QNetworkReply& reply)
{
    const int status = statusOf(reply);
    return status == 400 || status == 409 || status == 422;
}

/// In the server's own words, where it has any.
QString reasonOf(QNetworkReply& reply)
{
    constexpr qint64 longest = 4096; // bytes of an error
    const QString said =
        QJsonDocument::fromJson(reply.read(longest)).object().value(QStringLiteral("error")).toString();
    if (!said.isEmpty())
        return said;
    const int status = statusOf(reply);
    return status == 0 ? QObject::tr("The server did not answer (%1).").arg(reply.errorString())
                       : QObject::tr("The server refused it (%1).").arg(status);
}

void tellDone(const QString& what)
{
    NotificationManagerImpl::instance()->createNotification(Notification::CheckedMessage,
                                                            what.toHtmlEscaped(), QString());
}

} // namespace

QString ShowManager::clearText()
{
    return tr("All output and playback configurations,\nmedia collections and playlists will be lost.\n"
              "Do you want to continue?");
}

ShowManager::ShowManager(Session* session, QWidget* parent)
    : QObject(parent)
    , m_session(session)
    , m_clearDialog(new ConfirmationDialog(tr("Clear show"), clearText(), tr("CLEAR"), parent))
    , m_revertDialog(new ConfirmationDialog(tr("Revert show"),
                                            tr("All unsaved changes will be lost. Do you want to continue?"),
                                            tr("REVERT"), parent))
    , m_saveAsDialog(new TextInputDialog(tr("Save show as"), tr("Name of show:"), tr("SAVE"), parent))
    , m_importDialog(new ImportShowDialog(parent))
    , m_forceImportDialog(new ConfirmationDialog(
          tr("Force import"),
          tr("The imported show is not compatible with the Halcyra Ombra version. Do you want to continue?"),
          tr("IMPORT"), parent))
{
    m_clearDialog->setObjectNames(QStringLiteral("ClearShowDialog"));
    m_clearDialog->setAcceptClass(QStringLiteral("red"));
    m_revertDialog->setObjectNames(QStringLiteral("RevertShowDialog"));
    m_saveAsDialog->setObjectNames(QStringLiteral("SaveShowAsDialog"));
    m_forceImportDialog->setObjectNames(QStringLiteral("ForceImportDialog"));
    connect(m_clearDialog, &ZTDialog::confirmed, this, &ShowManager::clearShow);
    connect(m_revertDialog, &ZTDialog::confirmed, this, &ShowManager::revertShow);
    connect(m_saveAsDialog, &TextInputDialog::valuesConfirmed, this, &ShowManager::saveShowAs);
    connect(m_importDialog, &ImportShowDialog::importShow, this, &ShowManager::importShow);
    connect(m_forceImportDialog, &ZTDialog::confirmed, this, &ShowManager::forceImport);
}

void ShowManager::handleSaveAs()
{
    m_saveAsDialog->open();
}

void ShowManager::handleRevertShow()
{
    m_revertDialog->open();
}

void ShowManager::setOnAir(bool onAir)
{
    m_clearDialog->setDescription(
        (onAir ? tr("Program is playing and goes black at once.") + u'\n' : QString()) + clearText());
}

void ShowManager::handleClearShow()
{
    m_clearDialog->open();
}

void ShowManager::handleImport()
{
    m_importDialog->open();
}

void ShowManager::clearShow()
{
    sendClearShowCommand(QStringLiteral("default"));
}

void ShowManager::revertShow()
{
    sendRevertShowCommand(QStringLiteral("default"));
}

void ShowManager::saveShow()
{
    sendSaveShowCommand(QStringLiteral("default"));
}

void ShowManager::saveShowAs(const QStringList& values)
{
    if (values.size() != 1)
        return;
    m_session->serverConfigurationModel()->addShow(values.first());
    sendSaveShowCommand(values.first());
}

template <typename Command>
void ShowManager::send(const char* name, const QString& showName)
{
    Object* configuration = getObject(QStringLiteral("/device/showConfiguration"));
    execute<Command>(m_session->getQUndoStack(), name, configuration, showName);
}

void ShowManager::sendClearShowCommand(const QString& showName)
{
    send<ClearShowCommand>("ClearShowCommand", showName);
}

void ShowManager::sendRevertShowCommand(const QString& showName)
{
    send<RevertShowCommand>("RevertShowCommand", showName);
}

void ShowManager::sendSaveShowCommand(const QString& showName)
{
    send<SaveShowCommand>("SaveShowCommand", showName);
}

Object* ShowManager::getObject(const QString& path) const
{
    return m_session->getScene()->findObject(path.toStdString());
}

QUrl ShowManager::showUrl() const
{
    QUrl url;
    url.setScheme(QStringLiteral("http"));
    url.setHost(m_session->connectionHandler()->getConnectedHost());
    url.setPort(m_session->ports().http);
    url.setPath(QString::fromLatin1(resource));
    return url;
}

void ShowManager::importShow(QString fileName, QStringList imports)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(log) << "Failed to open import file:" << file.errorString();
        tellNotDone(tr("Import show"), file.errorString());
        return;
    }
    m_importSections = imports;
    m_importData = file.readAll();
    file.close();
    sendImportRequest(false);
}

void ShowManager::forceImport()
{
    sendImportRequest(true);
}

void ShowManager::sendImportRequest(bool force)
{
    // By a road of its own, which is no reason to wait in the sockets of a server that hangs.
    if (!CommandGate::passes(m_session->getQUndoStack(), tr("Import show")))
        return;
    QUrl url = showUrl();
    QUrlQuery query;
    if (!m_importSections.isEmpty())
        query.addQueryItem(QStringLiteral("include"), m_importSections.join(u','));
    if (force)
        query.addQueryItem(QStringLiteral("force"), QString());
    url.setQuery(query);
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    QNetworkReply* reply = m_session->getQNetworkAccessManager()->post(request, m_importData);
    connect(reply, &QNetworkReply::finished, this, [this, reply, force] {
        reply->deleteLater();
        if (reply->error() == QNetworkReply::NoError) {
            qCDebug(log) << "Success:" << reply->readAll();
            tellDone(tr("The show was imported"));
            return;
        }
        qCDebug(log) << "Error:" << reply->errorString();
        // Only what the server has read and does not like may be forced on it.
        if (!force && isDislike(*reply))
            m_forceImportDialog->open();
        else
            tellNotDone(tr("Import show"), reasonOf(*reply));
    });
}

void ShowManager::handleExport()
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd_HH-mm"));
    // The backslash stands before the name on every platform, so that exported names agree.
    const QString proposal = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                             QStringLiteral("\\default_%1.show").arg(stamp);
    const QString chosen = QFileDialog::getSaveFileName(qobject_cast<QWidget*>(parent()), tr("Export Show"),
                                                        proposal, tr("Show Files (*.show)"));
    if (chosen.isEmpty())
        return;
    qCDebug(log) << "Selected file to export:" << chosen;
    exportShow(chosen);
}

void ShowManager::exportShow(const QString& fileName)
{
    if (!CommandGate::passes(m_session->getQUndoStack(), tr("Export show")))
        return;
    QNetworkReply* reply = m_session->getQNetworkAccessManager()->get(QNetworkRequest(showUrl()));
    connect(reply, &QNetworkReply::finished, this, [reply, fileName] {
        reply->deleteLater();
        if (reply->error() != QNetworkReply::NoError) {
            qCWarning(log) << "Download failed:" << reply->errorString();
            tellNotDone(tr("Export show"), reasonOf(*reply));
        } else {
            saveReply(reply->readAll(), fileName);
        }
    });
}

void ShowManager::saveReply(const QByteArray& bytes, const QString& fileName)
{
    QSaveFile file(fileName); // an earlier export stays until this one is whole
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        qCWarning(log) << "Failed to save the file!";
        tellNotDone(tr("Export show"), file.errorString());
        return;
    }
    qCDebug(log) << "File downloaded successfully!";
    tellDone(tr("The show was exported to %1").arg(fileName));
}

} // namespace vantrel

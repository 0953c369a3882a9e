#include "common/ui/shell/showmanager.h"

#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/command/showcommands.h"
#include "common/media/address/showntext.h"
#include "common/session/mirror/guishowconfiguration.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/mirror/serverconfigurationmodel.h"
#include "common/session/session.h"
#include "common/ui/shell/importshowdialog.h"
#include "common/ui/shell/missinglist.h"
#include "common/ui/shell/onairquestions.h"
#include "common/ui/shell/showfileaccess.h"
#include "common/ui/shell/showoutcome.h"
#include "common/ui/shell/showprogress.h"
#include "common/ui/shell/showservice.h"
#include "common/ui/shell/showshelf.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "tarn/scene/scene.h"

#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QUrlQuery>

#include <utility>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.show")

/// What the application calls the show that is on.
const QString defaultName = QStringLiteral("default");

QString clearText()
{
    return ShowManager::tr("All output and playback configurations,\nmedia collections and playlists will be "
                           "lost.\nDo you want to continue?");
}

QString revertText()
{
    return ShowManager::tr("All unsaved changes will be lost. Do you want to continue?");
}

QString forceText()
{
    return ShowManager::tr(
        "The imported show is not compatible with the Halcyra Ombra version. Do you want to continue?");
}

/// What the operator is asked behind the error that came, in whose place no other reason may stand.
QString questionFor(const ShowService::Answer& answer)
{
    return answer.isConflict() && answer.missing.isEmpty()
               ? forceText()
               : ShowManager::tr("Do you want to import it all the same?");
}

} // namespace

ShowManager::ShowManager(Session* session, QWidget* parent)
    : QObject(parent)
    , m_session(session)
    , m_questions(new OnAirQuestions(session, parent))
    , m_service(new ShowService(session, this))
    , m_progress(new ShowProgress(parent))
    , m_shelf(new ShowShelf(session, m_service, m_questions, m_progress, parent))
    , m_clearDialog(new ConfirmationDialog(tr("Clear show"), clearText(), tr("CLEAR"), parent))
    , m_revertDialog(new ConfirmationDialog(tr("Revert show"), revertText(), tr("REVERT"), parent))
    , m_saveAsDialog(new TextInputDialog(tr("Save show as"), tr("Name of show:"), tr("SAVE"), parent))
    , m_importDialog(new ImportShowDialog(parent))
    , m_forceImportDialog(new ConfirmationDialog(tr("Force import"), forceText(), tr("IMPORT"), parent))
    , m_forceMissing(new MissingList(m_forceImportDialog))
{
    m_clearDialog->setObjectNames(QStringLiteral("ClearShowDialog"));
    m_clearDialog->setAcceptClass(QStringLiteral("red"));
    m_revertDialog->setObjectNames(QStringLiteral("RevertShowDialog"));
    m_saveAsDialog->setObjectNames(QStringLiteral("SaveShowAsDialog"));
    m_forceImportDialog->setObjectNames(QStringLiteral("ForceImportDialog"));
    m_forceMissing->setObjectName(QStringLiteral("ForceImportDialog-missing-view"));
    connect(m_clearDialog, &ZTDialog::confirmed, this, &ShowManager::clearShow);
    connect(m_revertDialog, &ZTDialog::confirmed, this, &ShowManager::revertShow);
    m_saveAsDialog->setClosesOnAccept(false);
    connect(m_saveAsDialog, &TextInputDialog::valuesConfirmed, this, &ShowManager::confirmSaveAs);
    connect(m_saveAsDialog, &QDialog::rejected, m_shelf, &ShowShelf::stopNames);
    // Once the dialog is closed, over which no other opens.
    connect(m_importDialog, &ImportShowDialog::importShow, this, &ShowManager::askToImport,
            Qt::QueuedConnection);
    connect(m_forceImportDialog, &ZTDialog::confirmed, this, &ShowManager::forceImport);
    connect(m_forceImportDialog, &QDialog::finished, this, &ShowManager::askNext, Qt::QueuedConnection);
}

void ShowManager::handleSaveAs()
{
    m_saveAsDialog->setError(0, {});
    m_saveAsDialog->open();
}

/// The server takes names of so many bytes; it keeps their list as one text with commas.
void ShowManager::confirmSaveAs(const QStringList& values)
{
    constexpr qsizetype longest = 80;
    m_shelf->stopNames(); // of a name before this one
    const QString name = values.value(0);
    QString error;
    if (name.toUtf8().size() > longest)
        error = tr("The name is too long.");
    else if (name.contains(u','))
        error = tr("A name cannot hold a comma.");
    else if (name == defaultName)
        error = tr("The show that is on goes by this name, whatever it is called: choose another one.");
    m_saveAsDialog->setError(0, error);
    if (!error.isEmpty())
        return;
    // The name stays to be tried again until it is clear what becomes of it.
    m_shelf->fetchNames(
        [this, name](const QStringList& names) {
            if (!m_saveAsDialog->isVisible())
                return; // nobody wants it any more
            m_saveAsDialog->close();
            saveUnlessTaken(name, names);
        },
        [this](const QString& why) { m_saveAsDialog->setError(0, why); });
}

/// What another show was saved as is gone with the next one of that name.
void ShowManager::saveUnlessTaken(const QString& name, const QStringList& names)
{
    const QString present = m_session->sceneObjectProvider()->showConfiguration()->showName();
    if (!names.contains(name) || name == present)
        return saveShowAs({name});
    m_questions->ask(tr("Replace \"%1\"?").arg(shownText(name)),
                     tr("Another show is saved under this name. It stays among the earlier states, of which "
                        "the last 20 are kept."),
                     tr("REPLACE"), QStringLiteral("ReplaceShowDialog"),
                     [this, name] { saveShowAs({name}); });
}

void ShowManager::handleRevertShow()
{
    m_revertDialog->setDescription(m_questions->beforeAnotherShow() + revertText());
    m_revertDialog->open();
}

void ShowManager::handleClearShow()
{
    m_clearDialog->setDescription(m_questions->beforeClear() + clearText());
    m_clearDialog->open();
}

void ShowManager::handleImport()
{
    m_importDialog->open();
}

void ShowManager::clearShow()
{
    sendClearShowCommand(defaultName);
}

void ShowManager::revertShow()
{
    sendRevertShowCommand(defaultName);
}

void ShowManager::saveShow()
{
    sendSaveShowCommand(defaultName);
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

void ShowManager::askToImport(const QString& fileName, const QStringList& imports)
{
    const bool isPlayback = imports.contains(QStringLiteral("playback"));
    const QString text = isPlayback ? m_questions->beforeAnotherShow() : m_questions->beforeImport();
    if (text.isEmpty())
        return importShow(fileName, imports);
    m_questions->ask(tr("Import show"), text + tr("Do you want to continue?"), tr("IMPORT"),
                     QStringLiteral("ImportOnAirDialog"),
                     [this, fileName, imports] { importShow(fileName, imports); });
}

void ShowManager::importShow(QString fileName, QStringList imports)
{
    readShowFile(fileName).then(this, [this, fileName, imports](const ShowFileReading& reading) {
        if (!reading.fault.isEmpty()) {
            qCWarning(log) << "Failed to open import file:" << reading.fault;
            return tellNotDone(tr("Import show"), reading.fault);
        }
        m_import = std::make_shared<const Import>(Import{fileName, reading.bytes, imports});
        sendImportRequest(false);
    });
}

void ShowManager::forceImport()
{
    sendImportRequest(true);
}

void ShowManager::sendImportRequest(bool force)
{
    if (const SharedImport import = force ? m_asked : m_import)
        sendImport(import, force);
}

/// Several may be on their way at once: each keeps what it sends.
void ShowManager::sendImport(const SharedImport& import, bool force)
{
    QUrlQuery query;
    if (!import->sections.isEmpty())
        query.addQueryItem(QStringLiteral("include"), import->sections.join(u','));
    if (force)
        query.addQueryItem(QStringLiteral("force"), QString());
    const auto then = [this, import, force](const ShowService::Answer& answer) {
        if (answer.isDone()) {
            qCDebug(log) << "Success:" << answer.body();
            return tellDone(tr("The show was imported"), answer.missing);
        }
        qCDebug(log) << "Error:" << answer.netError;
        if (force || answer.isStopped)
            return tellNotDone(tr("Import show"), answer.error);
        m_refused.append({import, answer});
        askNext();
    };
    m_progress->follow(m_service->ask(tr("Import show"), "POST", QStringLiteral("/show/current"), query,
                                      import->bytes, then),
                       tr("Import show"), tr("The server takes the show over. It plays on meanwhile."));
}

/// One question at a time, with the file that its answer will send.
void ShowManager::askNext()
{
    if (m_forceImportDialog->isVisible() || m_refused.isEmpty())
        return;
    const auto [import, answer] = m_refused.takeFirst();
    m_asked = import;
    const QString file = tr("File: %1").arg(shownText(QFileInfo(import->fileName).fileName()));
    m_forceImportDialog->setDescription(
        QStringList{answer.error, file, questionFor(answer)}.join(QStringLiteral("\n\n")));
    m_forceMissing->setMedia(answer.missing);
    m_forceImportDialog->open();
}

void ShowManager::handleExport()
{
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd_HH-mm"));
    // The backslash stands before the name on every platform, so that exported names agree.
    const QString proposal = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                             QStringLiteral("\\default_%1.show").arg(stamp);
    auto* dialog =
        new QFileDialog(qobject_cast<QWidget*>(parent()), tr("Export Show"), {}, tr("Show Files (*.show)"));
    dialog->setObjectName(QStringLiteral("ExportShowDialog-file-dialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("show"));
    dialog->selectFile(proposal);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& chosen) {
        qCDebug(log) << "Selected file to export:" << chosen;
        exportShow(chosen);
    });
    dialog->open();
}

void ShowManager::exportShow(const QString& fileName)
{
    const auto then = [this, fileName](const ShowService::Answer& answer) {
        if (answer.isDone())
            return saveReply(answer.pieces, fileName);
        qCWarning(log) << "Download failed:" << answer.netError;
        tellNotDone(tr("Export show"), answer.error);
    };
    m_progress->follow(
        m_service->ask(tr("Export show"), "GET", QStringLiteral("/show/current"), {}, {}, then),
        tr("Export show"), tr("The server sends the show."));
}

void ShowManager::saveReply(const QByteArrayList& pieces, const QString& fileName)
{
    writeShowFile(fileName, pieces).then(this, [fileName](const QString& fault) {
        if (!fault.isEmpty()) {
            qCWarning(log) << "Failed to save the file!";
            return tellNotDone(tr("Export show"), fault);
        }
        qCDebug(log) << "File downloaded successfully!";
        tellDone(tr("The show was exported to %1").arg(fileName));
    });
}

} // namespace vantrel

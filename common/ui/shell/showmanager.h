#pragma once

#include "common/ui/shell/showservice.h"

#include <QByteArrayList>
#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>

namespace vantrel {

class ConfirmationDialog;
class ImportShowDialog;
class MissingList;
class Object;
class OnAirQuestions;
class Session;
class ShowProgress;
class ShowShelf;
class TextInputDialog;

/// Clears, reverts, saves, imports and exports the server's show, each behind its dialog, and opens the list
/// of those that the server keeps. The results reach the application as ordinary changes of the server. Owned
/// by the main window; main thread.
class ShowManager : public QObject
{
    Q_OBJECT

public:
    /// session: must outlive this. parent: the window that the dialogs open over.
    ShowManager(Session* session, QWidget* parent);

    void clearShow();
    void revertShow();
    void saveShow();
    /// Only with exactly one name: it joins the server's list of shows, and the show is saved under it.
    void saveShowAs(const QStringList& values);
    void exportShow(const QString& fileName);
    /// force: of the file that the operator is asked about, else of the one that was read last.
    void sendImportRequest(bool force);
    void sendClearShowCommand(const QString& showName);
    void sendRevertShowCommand(const QString& showName);
    void sendSaveShowCommand(const QString& showName);
    /// Null while the scene has no such object.
    Object* getObject(const QString& path) const;
    ConfirmationDialog* forceImportDialog() const { return m_forceImportDialog; }
    ShowShelf* shelf() const { return m_shelf; }

public Q_SLOTS:
    void handleSaveAs();
    void handleRevertShow();
    void handleClearShow();
    void handleImport();
    void handleExport();
    void importShow(QString fileName, QStringList imports);
    void forceImport();

private:
    /// What goes to the server, also a second time: the file need not be there any more by then.
    struct Import
    {
        QString fileName;
        QByteArray bytes;
        QStringList sections;
    };
    using SharedImport = std::shared_ptr<const Import>;

    void sendImport(const SharedImport& import, bool force);
    void askNext();
    void askToImport(const QString& fileName, const QStringList& imports);
    void confirmSaveAs(const QStringList& values);
    void saveUnlessTaken(const QString& name, const QStringList& names);
    template <typename Command>
    void send(const char* name, const QString& showName);
    void saveReply(const QByteArrayList& pieces, const QString& fileName);

    Session* m_session;
    OnAirQuestions* m_questions;
    ShowService* m_service;
    ShowProgress* m_progress;
    ShowShelf* m_shelf;
    SharedImport m_import;                                         // that was read last
    SharedImport m_asked;                                          // that the operator is asked about
    QList<std::pair<SharedImport, ShowService::Answer>> m_refused; // to be asked about, one after the other
    ConfirmationDialog* m_clearDialog;
    ConfirmationDialog* m_revertDialog;
    TextInputDialog* m_saveAsDialog;
    ImportShowDialog* m_importDialog;
    ConfirmationDialog* m_forceImportDialog;
    MissingList* m_forceMissing;
};

} // namespace vantrel

#include "common/ui/shell/showmanager.h"

#include "common/notification/notificationmanagerimpl.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/mirror/guishowconfiguration.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/shell/importshowdialog.h"
#include "common/ui/shell/missinglist.h"
#include "common/ui/shell/showshelf.h"
#include "common/ui/shell/showtabledialog.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QDirIterator>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

#include <algorithm>
#include <sys/stat.h>

using namespace vantrel;

class ShowManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!test::OmbraProcess::isAvailable())
            QSKIP("the server is not built");
        QVERIFY2(m_server.start(), m_server.output().constData());
        Session::initialize(m_server.ports());
        m_session.reset(Session::instance());
        QSignalSpy loaded(m_session.get(), &Session::sceneLoaded);
        m_session->connectionHandler()->connect(m_server.host());
        QVERIFY(loaded.wait(10000));
        m_shows = std::make_unique<ShowManager>(m_session.get(), &m_window);
    }

    void cleanupTestCase()
    {
        m_shows.reset();
        m_session.reset();
        m_server.stop();
    }

    void exportsWhatImportTakes()
    {
        const QString file = m_folder.filePath(QStringLiteral("gala.show"));
        m_shows->exportShow(file);
        QTRY_VERIFY(QFile(file).size() > 0);
        m_shows->importShow(file, {QStringLiteral("output"), QStringLiteral("medialibrary")});
        const QString second = m_folder.filePath(QStringLiteral("again.show"));
        m_shows->exportShow(second); // its answer comes after that of the import
        QTRY_VERIFY(QFile(second).size() > 0);
        QVERIFY(!m_shows->forceImportDialog()->isVisible());
    }

    void anImportThatFailsMayBeForcedOnce()
    {
        QStringList asked;
        QObject here;
        connect(m_session->getQNetworkAccessManager(), &QNetworkAccessManager::finished, &here,
                [&asked](QNetworkReply* reply) {
                    const QNetworkRequest request = reply->request();
                    if (reply->operation() == QNetworkAccessManager::PostOperation)
                        asked << request.url().path() + u'?' + request.url().query() + u' ' +
                                     request.header(QNetworkRequest::ContentTypeHeader).toString();
                });
        const QString file = m_folder.filePath(QStringLiteral("broken.show"));
        QFile broken(file);
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("this is no show");
        broken.close();
        m_shows->importShow(file, QStringLiteral("output,audio,playback,medialibrary").split(u','));
        QTRY_VERIFY(m_shows->forceImportDialog()->isVisible());
        QVERIFY(
            m_shows->forceImportDialog()->description().startsWith(QStringLiteral("This is no show file")));
        QFile::remove(file); // the second try must not need it
        m_shows->forceImportDialog()->acceptButton()->click();
        QVERIFY(!m_shows->forceImportDialog()->isVisible());
        const QString after = m_folder.filePath(QStringLiteral("after.show"));
        m_shows->exportShow(after);
        QTRY_VERIFY(QFile(after).size() > 0);
        QVERIFY(!m_shows->forceImportDialog()->isVisible()); // a forced import that fails only tells
        QTRY_VERIFY(!said().filter(QStringLiteral("Not done: Import show")).isEmpty());
        const QString first =
            QStringLiteral("/api/brume/v1/show/current?include=output,audio,playback,medialibrary");
        const QString type = QStringLiteral(" application/x-www-form-urlencoded");
        QCOMPARE(asked.filter(first), (QStringList{first + type, first + QStringLiteral("&force") + type}));
    }

    /// The error that came stands in the question, and no other one.
    void theForceDialogNamesTheError_data()
    {
        QTest::addColumn<QByteArray>("show");
        QTest::addColumn<QStringList>("told");
        const QByteArray head = R"({"format":"halcyra-show","settings":{},)";
        const QString asksByVersion = QStringLiteral("not compatible with the Halcyra Ombra version");
        QTest::newRow("of the future") << head + R"("version":7,"library":{}})"
                                       << QStringList{QStringLiteral("version 7"), asksByVersion};
        QTest::newRow("media are missing")
            << head +
                   R"("version":1,"library":{"collections":{"1":{"slots":{"1":{"contentUrl":"file:///no%20such.mp4"}}}}}})"
            << QStringList{QStringLiteral("One of the show's media"),
                           QStringLiteral("import it all the same"), QStringLiteral("no such.mp4")};
        QTest::newRow("no library") << head + R"("version":1,"library":{"collections":7}})"
                                    << QStringList{QStringLiteral("cannot be used")};
    }

    void theForceDialogNamesTheError()
    {
        QFETCH(QByteArray, show);
        QFETCH(QStringList, told);
        QFile file(m_folder.filePath(QStringLiteral("other.show")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(show) == show.size());
        file.close();
        m_shows->importShow(file.fileName(), {});
        QTRY_VERIFY(m_shows->forceImportDialog()->isVisible());
        QString all = m_shows->forceImportDialog()->description();
        const auto* missing = m_shows->forceImportDialog()->findChild<MissingList*>();
        for (int row = 0; row < missing->count(); ++row)
            all += missing->item(row)->text();
        for (const QString& part : told)
            QVERIFY2(all.contains(part), qPrintable(all));
        m_shows->forceImportDialog()->reject();
    }

    /// Each question is about the file that was refused, and its yes sends that one.
    void importsOfOneMomentKeepTheirFiles()
    {
        int answered = 0;
        QObject here;
        connect(m_session->getQNetworkAccessManager(), &QNetworkAccessManager::finished, &here,
                [&answered](const QNetworkReply* reply) {
                    answered += reply->operation() == QNetworkAccessManager::PostOperation ? 1 : 0;
                });
        const auto import = [this](const QString& name, const QByteArray& content) {
            QFile file(m_folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
            file.close();
            m_shows->importShow(file.fileName(), {});
        };
        import(QStringLiteral("future.show"),
               R"({"format":"halcyra-show","version":7,"library":{"collections":{"1":{"name":"of 2031"}}}})");
        import(QStringLiteral("rubbish.show"), "rubbish");
        QTRY_COMPARE(answered, 2);
        ConfirmationDialog* question = m_shows->forceImportDialog();
        for (int i = 0; i < 2; ++i) {
            QTRY_VERIFY(question->isVisible());
            const bool isFuture = question->description().contains(QStringLiteral("future.show"));
            QCOMPARE(isFuture, question->description().contains(QStringLiteral("version 7")));
            isFuture ? question->acceptButton()->click() : question->reject();
        }
        QTRY_COMPARE(answered, 3);
        const QString now = m_folder.filePath(QStringLiteral("now.show"));
        m_shows->exportShow(now);
        QTRY_VERIFY(QFile(now).size() > 0);
        QFile file(now);
        QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll().contains("of 2031"));
    }

    /// A disk that is full, or a folder that takes nothing, leaves the earlier export as it was.
    void anExportThatFailsIsTold()
    {
        test::expectWarning(QStringLiteral("Failed to save the file!"));
        m_shows->exportShow(m_folder.filePath(QStringLiteral("none/gala.show")));
        QTRY_VERIFY(!said().filter(QStringLiteral("Not done: Export show")).isEmpty());
    }

    void aFileThatCannotBeReadIsLogged()
    {
        test::expectWarning(QStringLiteral("Failed to open import file:"));
        m_shows->importShow(m_folder.filePath(QStringLiteral("nothing.show")), {});
    }

    /// Of a disk that does not answer the window learns nothing, and goes on: the threads that its painter
    /// waits for are not those that wait for the disk.
    void aFileThatHangsHoldsNothingUp()
    {
        const QByteArray pipe = m_folder.filePath(QStringLiteral("hangs.show")).toLocal8Bit();
        QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
        m_shows->importShow(QString::fromLocal8Bit(pipe), {});
        const int occupied = QThreadPool::globalInstance()->activeThreadCount();
        QFile other(QString::fromLocal8Bit(pipe));
        QVERIFY(other.open(QIODevice::WriteOnly));
        other.close(); // it ends, and there is no show in it
        QTRY_VERIFY(m_shows->forceImportDialog() && m_shows->forceImportDialog()->isVisible());
        m_shows->forceImportDialog()->reject();
        QCOMPARE(occupied, 0);
    }

    void savesUnderANewName()
    {
        const auto saved = [this](const QString& name) {
            return QDirIterator(m_server.stateFolder(), {name}, QDir::Files, QDirIterator::Subdirectories)
                .hasNext();
        };
        m_shows->saveShowAs({});
        m_shows->saveShowAs({QStringLiteral("a"), QStringLiteral("b")});
        m_shows->saveShowAs({QStringLiteral("gala")});
        QTRY_VERIFY(saved(QStringLiteral("gala*")));
        QVERIFY(!saved(QStringLiteral("a.*")) && !saved(QStringLiteral("b.*")));
    }

    /// A saved show is lost to another one only by somebody who said so, however late the server tells of it.
    void asksBeforeAnotherShowIsReplaced()
    {
        m_shows->saveShowAs({QStringLiteral("first")});
        m_shows->saveShowAs({QStringLiteral("second")});
        const auto isOn = [this](const QString& name) {
            return m_session->sceneObjectProvider()->showConfiguration()->showName() == name;
        };
        QTRY_VERIFY(isOn(QStringLiteral("second")));
        const QString dialog = QStringLiteral("SaveShowAsDialog");
        const auto save = [&](const QString& name) {
            m_shows->handleSaveAs();
            auto* asked = m_window.findChild<TextInputDialog*>(dialog);
            asked->setValue(0, name);
            asked->acceptButton()->click();
            return m_window.findChild<ZTLabel*>(dialog + QStringLiteral("-input-0-error"))->text();
        };
        QVERIFY(save(QStringLiteral("a,b")).contains(QStringLiteral("comma")));
        QVERIFY(save(QStringLiteral("default")).contains(QStringLiteral("choose another one")));
        QVERIFY(save(QString(81, u'x')).contains(QStringLiteral("too long")));
        QVERIFY(save(QStringLiteral("first")).isEmpty()); // before the server could have told anything
        ConfirmationDialog* question = nullptr;
        const auto isAsked = [&] {
            question = m_window.findChild<ConfirmationDialog*>(QStringLiteral("ReplaceShowDialog"));
            return question != nullptr;
        };
        QTRY_VERIFY(isAsked());
        QVERIFY(question->title().contains(QStringLiteral("first")) && isOn(QStringLiteral("second")));
        question->acceptButton()->click();
        QTRY_VERIFY(isOn(QStringLiteral("first")));
        save(QStringLiteral("third"));
        QTRY_VERIFY(isOn(QStringLiteral("third")));
    }

    /// What takes longer than a moment says so, and can be stopped; nothing of it is left then.
    void whatTakesLongCanBeStopped()
    {
        const QString file = m_folder.filePath(QStringLiteral("stopped.show"));
        const auto progress = [this] {
            return m_window.findChild<ZTDialog*>(QStringLiteral("ShowProgressDialog"));
        };
        m_server.hang();
        m_shows->exportShow(file);
        QVERIFY(!progress());
        QTRY_VERIFY(progress() && progress()->isVisible());
        test::expectWarning(QStringLiteral("Download failed:"));
        progress()->cancelButton()->click();
        QTRY_VERIFY(!progress());
        m_server.goOn();
        QTRY_VERIFY(!said().filter(QStringLiteral("Not done: Export show - It was stopped.")).isEmpty());
        QVERIFY(!QFile::exists(file));
    }

    /// A list that a silent server owes says so, and comes with its first word.
    void aListComesOnceTheServerAnswers()
    {
        m_server.hang();
        m_shows->shelf()->openEarlier();
        auto* text = m_window.findChild<ZTLabel*>(QStringLiteral("EarlierStatesDialog-text"));
        QTRY_VERIFY(text->text().contains(QStringLiteral("The server does not answer just now.")));
        m_shows->handleSaveAs(); // whose name stays, to be tried again
        auto* save = m_window.findChild<TextInputDialog*>(QStringLiteral("SaveShowAsDialog"));
        save->setValue(0, QStringLiteral("typed"));
        save->acceptButton()->click();
        QVERIFY(save->isVisible() && save->values() == QStringList(QStringLiteral("typed")));
        save->reject();
        m_server.goOn();
        auto* dialog = m_window.findChild<ShowTableDialog*>(QStringLiteral("EarlierStatesDialog"));
        QTRY_VERIFY(!dialog->model()->rows().isEmpty());
        dialog->reject();
    }

    /// What cannot be read any more cannot be loaded, and need not stay in the list for ever.
    void aDamagedShowCanBeDeleted()
    {
        const QString folder = m_server.stateFolder() + QStringLiteral("/shows");
        const QString path = folder + QStringLiteral("/broken.show");
        QFile file(path);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{") == 1);
        file.close();
        m_shows->shelf()->openShows();
        auto* dialog = m_window.findChild<ShowTableDialog*>(QStringLiteral("ShowsDialog"));
        const auto row = [dialog] {
            const auto& rows = dialog->model()->rows();
            const auto at = std::ranges::find(rows, QStringLiteral("broken"), &ShowTableModel::Row::id);
            return at == rows.end() ? -1 : int(at - rows.begin());
        };
        QTRY_VERIFY(row() >= 0);
        dialog->findChild<QTableView*>()->selectRow(row());
        QVERIFY(!dialog->acceptButton()->isEnabled());
        dialog->findChild<PushButton*>(QStringLiteral("ShowsDialog-delete-button"))->click();
        auto* question = dialog->findChild<ConfirmationDialog*>(QStringLiteral("DeleteShowDialog"));
        QVERIFY(question);
        question->acceptButton()->click();
        QTRY_VERIFY(row() < 0 && !QFile::exists(path));
        dialog->reject();
    }

    void importDialogNeedsAFileAndASection()
    {
        ImportShowDialog dialog;
        dialog.show();
        QSignalSpy confirmed(&dialog, &ImportShowDialog::importShow);
        QVERIFY(!dialog.acceptButton()->isEnabled());
        auto* path = dialog.findChild<ZTEdit*>(QStringLiteral("ImportShowDialog-path"));
        path->setText(QStringLiteral("/a.show"));
        QVERIFY(dialog.acceptButton()->isEnabled());
        QCOMPARE(dialog.imports(), (QStringList{QStringLiteral("output"), QStringLiteral("audio"),
                                                QStringLiteral("playback"), QStringLiteral("medialibrary")}));
        QTest::keyClick(path, Qt::Key_Return);
        QVERIFY(dialog.isVisible() && confirmed.isEmpty());
        const QList<ZTCheckBox*> boxes = dialog.findChildren<ZTCheckBox*>();
        for (ZTCheckBox* box : boxes)
            box->setChecked(false);
        QVERIFY(!dialog.acceptButton()->isEnabled());
        dialog.findChild<ZTCheckBox*>(QStringLiteral("ImportShowDialog-audio"))->setChecked(true);
        dialog.acceptButton()->click();
        QCOMPARE(confirmed.size(), 1);
        QCOMPARE(confirmed.at(0).at(1).toStringList(), QStringList{QStringLiteral("audio")});
        QVERIFY(!dialog.isVisible());
    }

    /// A question that a server took along is over with it, and said to be.
    void aLostServerIsNotWaitedFor()
    {
        const auto progress = [this] {
            return m_window.findChild<ZTDialog*>(QStringLiteral("ShowProgressDialog"));
        };
        m_server.hang();
        m_shows->exportShow(m_folder.filePath(QStringLiteral("lost.show")));
        QTRY_VERIFY(progress() && progress()->isVisible());
        test::expectWarning(QStringLiteral("Download failed:"));
        m_server.kill();
        QTRY_VERIFY_WITH_TIMEOUT(!progress(), 3000);
        QVERIFY(said().contains(
            QStringLiteral("Not done: Export show - The connection to the server ended meanwhile.")));
    }

    void anImportWithoutAServerMayBeTriedAgain()
    {
        m_session->connectionHandler()->disconnect();
        QTRY_VERIFY(m_session->connectionHandler()->getConnectedHost().isEmpty());
        m_shows->importShow(m_folder.filePath(QStringLiteral("gala.show")), {QStringLiteral("audio")});
        QTRY_VERIFY(m_shows->forceImportDialog()->isVisible());
        QVERIFY(m_shows->forceImportDialog()->description().startsWith(
            QStringLiteral("No server is connected.")));
        m_shows->forceImportDialog()->reject();
    }

private:
    static QStringList said()
    {
        QStringList texts;
        for (const auto& notification : NotificationManagerImpl::instance()->notifications())
            texts << notification->title() + QStringLiteral(" - ") + notification->details();
        return texts;
    }

    test::OmbraProcess m_server;
    std::unique_ptr<Session> m_session;
    QWidget m_window;
    std::unique_ptr<ShowManager> m_shows;
    QTemporaryDir m_folder;
};

HALCYRA_TEST(ShowManagerTest)
#include "showmanager.moc"

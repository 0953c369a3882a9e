#include "common/filesystem/local/localfilesystem.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/modifyoperation.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "common/filesystem/server/serverfilesystem_p.h"
#include "tests/common/filesystem/begin.h"
#include "tests/common/filesystem/scriptedclient.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel;
using namespace vantrel::test;

using State = RunnableOperation::OperationState;

/// The server's file system on a client that the test answers for.
class TestServerFileSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_factory = std::make_unique<ScriptedClientFactory>();
        m_server = std::make_unique<ServerFileSystem>(QUrl(QStringLiteral("ftp://stage")), m_factory.get());
        m_private = static_cast<ServerFileSystemPrivate*>(m_server->operationVisitor());
        m_now = QTime(23, 59, 57);
        m_private->listings().setClock([this] { return m_now; });
        client()->setConnected(true);
        m_disk = std::make_unique<QTemporaryDir>();
    }
    void cleanup() { m_server.reset(); }

    void asksOnceInFiveSeconds()
    {
        QSignalSpy changed(m_server.get(), &FileSystem::directoryChanged);
        QList<FileSystemFile> files;
        QVERIFY(!m_server->getFiles(QStringLiteral("/"), files));
        QVERIFY(!m_server->getFiles(QStringLiteral("/"), files)); // no answer is no empty directory
        client()->finishList(QStringLiteral("/"),
                             {fileEntry(QStringLiteral("/a.MOV"), 7), fileEntry(QStringLiteral("/.b.mov"), 1),
                              fileEntry(QStringLiteral("/notes.txt"), 1),
                              directoryEntry(QStringLiteral("/show/"))});
        QCOMPARE(changed.size(), 1);
        m_now = m_now.addSecs(5); // past midnight
        QVERIFY(m_server->getFiles(QStringLiteral("/"), files));
        QCOMPARE(files.size(), 1);
        QCOMPARE(files.first().sizeBytes, 7);
        QList<FileSystemDirectory> directories;
        QVERIFY(m_server->getDirectories(QStringLiteral("/"), directories));
        QCOMPARE(directories.size(), 1); // no way up from the root
        QCOMPARE(m_server->getType(QStringLiteral("/show")), FileSystem::Directory);
        QCOMPARE(m_server->getType(QStringLiteral("/notes.txt")), FileSystem::Unknown);
        QCOMPARE(client()->calls, QStringList{QStringLiteral("list /")});
        m_now = m_now.addSecs(2);
        QVERIFY(m_server->getFiles(QStringLiteral("/"), files)); // the old answer, and a new question
        QCOMPARE(client()->calls.size(), 2);
    }

    void remembersWhatTheServerRefuses()
    {
        QSignalSpy invalid(m_server.get(), &FileSystem::invalidDirectoryPathRequest);
        QList<FileSystemFile> files;
        QVERIFY(!m_server->getFiles(QStringLiteral("/gone/"), files));
        client()->finishList(QStringLiteral("/gone/"), {}, false);
        QCOMPARE(invalid.size(), 1);
        QVERIFY(!m_server->isValidDirectoryPath(QStringLiteral("/gone")));
        m_now = m_now.addSecs(10);
        QVERIFY(!m_server->getFiles(QStringLiteral("/gone/"), files));
        QCOMPARE(client()->calls.size(), 1);
        // Somebody has made it.
        know(QStringLiteral("/"), {directoryEntry(QStringLiteral("/gone/"))});
        QVERIFY(m_server->isValidDirectoryPath(QStringLiteral("/gone")));
        // A lost link says nothing of a path.
        QVERIFY(!m_server->getFiles(QStringLiteral("/other/"), files));
        client()->setConnected(false);
        client()->finishList(QStringLiteral("/other/"), {}, false);
        QVERIFY(m_server->isValidDirectoryPath(QStringLiteral("/other")));
    }

    void listsWhatWasAskedForMeanwhile()
    {
        const auto creation = make<ModifyOperation>(target(QStringLiteral("/new")), ModifyOperation::Create,
                                                    ModifyOperation::Directory);
        know(QStringLiteral("/"), {});
        creation->run();
        QCOMPARE(client()->last(), QStringLiteral("create /new/"));
        QList<FileSystemFile> files;
        QVERIFY(!m_server->getFiles(QStringLiteral("/show/"), files));
        client()->finishCreate(QStringLiteral("/new/"), true);
        QCOMPARE(creation->state(), State::Passed);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /show/"));
    }

    void uploadIsHiddenUntilItIsWhole()
    {
        const auto upload = transferUp(QByteArray(3000, 'x'), QStringLiteral("/a.mov"));
        know(QStringLiteral("/"), {});
        QSignalSpy changed(m_server.get(), &FileSystem::directoryChanged);
        QVERIFY(begin(*upload));
        const QString temporary = client()->last().section(u' ', 1);
        QVERIFY2(client()->last().startsWith(QStringLiteral("write /.halcyra-")),
                 qPrintable(client()->last()));
        client()->finishWrite(temporary, true);
        QCOMPARE(client()->last(), QStringLiteral("size ") + temporary);
        client()->finishSize(temporary, 2000); // says it has it all, and has not
        QCOMPARE(client()->last(), QStringLiteral("write ") + temporary);
        client()->finishWrite(temporary, true);
        client()->finishSize(temporary, 3000);
        QCOMPARE(client()->last(), QStringLiteral("list /")); // nothing has come there meanwhile
        client()->finishList(QStringLiteral("/"), {fileEntry(temporary, 3000)});
        QCOMPARE(client()->last(), QStringLiteral("move %1 /a.mov").arg(temporary));
        client()->finishMove(temporary, QStringLiteral("/a.mov"), true);
        QCOMPARE(upload->state(), State::Passed);
        QCOMPARE(m_server->fileSize(QStringLiteral("/a.mov")), 3000);
        QVERIFY(!changed.isEmpty());
        QVERIFY(!m_private->listings().isFresh(QStringLiteral("/")));
    }

    void uploadGoesOnAfterALostLink()
    {
        const auto upload = transferUp(QByteArray(3 << 20, 'x'), QStringLiteral("/a.mov"));
        know(QStringLiteral("/"), {});
        QVERIFY(begin(*upload));
        const QString temporary = client()->last().section(u' ', 1);
        client()->setConnected(false);
        client()->finishWrite(temporary, false);
        QVERIFY(upload->isRunning());
        client()->setConnected(true);
        QTRY_COMPARE(client()->last(), QStringLiteral("size ") + temporary);
        client()->finishSize(temporary, 2 << 20);
        QCOMPARE(client()->last(), QStringLiteral("resume %1 %2").arg(temporary).arg(1 << 20));
        // The link goes once more, while the name changes: what the server shows decides.
        client()->finishWrite(temporary, true);
        client()->finishSize(temporary, 3 << 20);
        client()->finishList(QStringLiteral("/"), {fileEntry(temporary, 3 << 20)});
        client()->setConnected(false);
        client()->finishMove(temporary, QStringLiteral("/a.mov"), false);
        client()->setConnected(true);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
        client()->finishList(QStringLiteral("/"), {fileEntry(QStringLiteral("/a.mov"), 3 << 20)});
        QCOMPARE(upload->state(), State::Passed);
    }

    void abortedUploadLeavesNothing()
    {
        const auto upload = transferUp(QByteArray(3000, 'x'), QStringLiteral("/a.mov"));
        know(QStringLiteral("/"), {});
        QVERIFY(begin(*upload));
        const QString temporary = client()->last().section(u' ', 1);
        upload->abort();
        QCOMPARE(upload->state(), State::Failed);
        QCOMPARE(client()->last(), QStringLiteral("abort"));
        QVERIFY(m_server->isLoading()); // nothing else begins before it is clean
        client()->finishWrite(temporary, false);
        QTRY_COMPARE(client()->last(), QStringLiteral("remove ") + temporary);
        client()->finishRemove(temporary, true);
        QVERIFY(!m_server->isLoading());
    }

    void meetsWhatIsThere_data()
    {
        QTest::addColumn<ConflictPolicy>("policy");
        QTest::addColumn<QString>("call");
        QTest::addColumn<State>("state");
        QTest::newRow("refuse") << ConflictPolicy::Refuse << QString() << State::Failed;
        QTest::newRow("skip") << ConflictPolicy::Skip << QString() << State::Passed;
        QTest::newRow("replace") << ConflictPolicy::Replace << QStringLiteral("write /.halcyra-")
                                 << State::Running;
        QTest::newRow("keep both") << ConflictPolicy::KeepBoth << QStringLiteral("write /.halcyra-")
                                   << State::Running;
    }
    void meetsWhatIsThere()
    {
        QFETCH(ConflictPolicy, policy);
        QFETCH(QString, call);
        for (const bool isAsked : {false, true}) {
            const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/a.mov"));
            know(QStringLiteral("/"), {fileEntry(QStringLiteral("/a.mov"), 5)});
            client()->calls.clear();
            upload->setConflictPolicy(isAsked ? ConflictPolicy::Ask : policy);
            QVERIFY(begin(*upload));
            if (isAsked) {
                QVERIFY(upload->conflict());
                QCOMPARE(upload->conflict()->path, QStringLiteral("/a.mov"));
                QCOMPARE(client()->calls, QStringList());
                upload->answerConflict(policy, false);
            }
            QTEST(upload->state(), "state");
            QCOMPARE(client()->calls.isEmpty(), call.isEmpty());
            QVERIFY2(client()->last().startsWith(call), qPrintable(client()->last()));
            QVERIFY(QFile::exists(m_disk->filePath(QStringLiteral("source.mov"))));
            if (upload->isRunning()) {
                upload->abort();
                client()->finishWrite(QString(), false);
                QTRY_VERIFY(client()->last().startsWith(QStringLiteral("remove ")));
                client()->finishRemove(QString(), true);
            }
        }
    }

    /// Somebody else was quicker, while this one was on its way.
    void meetsWhatHasComeMeanwhile()
    {
        const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/a.mov"));
        know(QStringLiteral("/"), {});
        upload->setConflictPolicy(ConflictPolicy::Ask);
        const QString temporary = sendWhole(*upload, 30);
        QCOMPARE(client()->last(), QStringLiteral("list /"));
        client()->finishList(QStringLiteral("/"),
                             {fileEntry(QStringLiteral("/a.mov"), 5), fileEntry(temporary, 30)});
        QVERIFY(upload->conflict());
        upload->answerConflict(ConflictPolicy::KeepBoth, false);
        QCOMPARE(client()->last(), QStringLiteral("move %1 /a (2).mov").arg(temporary));
    }

    /// What lies there afterwards is as long as what was sent, and was so before.
    void lostWhileItReplacesOneAsLong()
    {
        const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/a.mov"));
        const QList<ClientFileSystemInfo> there{fileEntry(QStringLiteral("/a.mov"), 30)};
        know(QStringLiteral("/"), there);
        upload->setConflictPolicy(ConflictPolicy::Replace);
        const QString temporary = sendWhole(*upload, 30);
        QCOMPARE(client()->last(), QStringLiteral("move %1 /a.mov").arg(temporary));
        client()->setConnected(false);
        client()->setConnected(true);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
        client()->finishList(QStringLiteral("/"), there);
        QCOMPARE(upload->state(), State::Running);
        QCOMPARE(client()->last(), QStringLiteral("write ") + temporary);
    }

    void replacedFileIsNeverLost_data()
    {
        QTest::addColumn<bool>("isPlaced");
        QTest::newRow("done") << true;
        QTest::newRow("refused") << false;
    }
    void replacedFileIsNeverLost()
    {
        QFETCH(bool, isPlaced);
        const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/a.mov"));
        const QList<ClientFileSystemInfo> there{fileEntry(QStringLiteral("/a.mov"), 5)};
        know(QStringLiteral("/"), there);
        upload->setConflictPolicy(ConflictPolicy::Replace);
        const QString temporary = sendWhole(*upload, 30);
        const QString placing = QStringLiteral("move %1 /a.mov").arg(temporary);
        QCOMPARE(client()->last(), placing);
        client()->errorText = QStringLiteral("550 is <there>");
        client()->finishMove(temporary, QStringLiteral("/a.mov"), false);
        client()->errorText.clear();
        client()->finishList(QStringLiteral("/"), there);
        const QString aside = client()->last().section(u' ', 2);
        QCOMPARE(client()->last(), QStringLiteral("move /a.mov ") + aside);
        client()->setConnected(false); // nobody knows whether it has stepped aside
        client()->setConnected(true);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
        client()->finishList(QStringLiteral("/"), {fileEntry(aside, 5), fileEntry(temporary, 30)});
        QCOMPARE(client()->last(), placing);
        client()->errorText = isPlaced ? QString() : QStringLiteral("550 is <full>");
        client()->finishMove(temporary, QStringLiteral("/a.mov"), isPlaced);
        client()->errorText.clear();
        if (isPlaced) {
            QCOMPARE(upload->state(), State::Passed);
            QTRY_COMPARE(client()->last(), QStringLiteral("remove ") + aside);
            return;
        }
        client()->finishList(QStringLiteral("/"), {fileEntry(aside, 5), fileEntry(temporary, 30)});
        QCOMPARE(upload->state(), State::Failed);
        const QString said = upload->errors().first().message;
        QVERIFY2(said.endsWith(QStringLiteral("550 is &lt;full&gt;")), qPrintable(said));
        QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
        client()->finishList(QStringLiteral("/"), {fileEntry(aside, 5), fileEntry(temporary, 30)});
        QTRY_COMPARE(client()->last(), QStringLiteral("remove ") + temporary);
        client()->finishRemove(temporary, true);
        QTRY_COMPARE(client()->last(), QStringLiteral("move %1 /a.mov").arg(aside));
    }

    /// The lost link may still carry out what it was asked: under another name nobody would look for it.
    void stepsAsideUnderOneName()
    {
        const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/a.mov"));
        const QList<ClientFileSystemInfo> there{fileEntry(QStringLiteral("/a.mov"), 5)};
        know(QStringLiteral("/"), there);
        upload->setConflictPolicy(ConflictPolicy::Replace);
        const QString temporary = sendWhole(*upload, 30);
        client()->finishMove(temporary, QStringLiteral("/a.mov"), false);
        client()->finishList(QStringLiteral("/"), there);
        const QString asking = client()->last();
        QVERIFY(asking.startsWith(QStringLiteral("move /a.mov /.halcyra-")));
        client()->setConnected(false);
        client()->setConnected(true);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
        client()->finishList(QStringLiteral("/"), there);
        QCOMPARE(client()->last(), asking);
    }

    /// Nobody knows how far it has come: what was stopped on its way may have been done.
    void stoppedWhileItReplaces_data()
    {
        QTest::addColumn<bool>("isPlaced");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("done all the same") << true << true;
        QTest::newRow("not done") << false << false;
        QTest::newRow("not done, and somebody else took the name") << false << true;
    }
    void stoppedWhileItReplaces()
    {
        QFETCH(bool, isPlaced);
        QFETCH(bool, isTaken);
        const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/a.mov"));
        const QList<ClientFileSystemInfo> there{fileEntry(QStringLiteral("/a.mov"), 5)};
        know(QStringLiteral("/"), there);
        upload->setConflictPolicy(ConflictPolicy::Replace);
        const QString temporary = sendWhole(*upload, 30);
        client()->finishMove(temporary, QStringLiteral("/a.mov"), false);
        client()->finishList(QStringLiteral("/"), there);
        const QString aside = client()->last().section(u' ', 2);
        QCOMPARE(client()->last(), QStringLiteral("move /a.mov ") + aside);
        upload->abort();
        client()->finishMove(QStringLiteral("/a.mov"), aside, false);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
        allowWarnings(QStringLiteral("Received invalid directory listing"));
        const qsizetype asked = client()->calls.size();
        client()->finishList(QStringLiteral("/"), {}, false); // stopped as well
        QCOMPARE(client()->calls.mid(asked), QStringList{QStringLiteral("list /")});
        QList<ClientFileSystemInfo> left{fileEntry(aside, 5)};
        if (isTaken)
            left.append(fileEntry(QStringLiteral("/a.mov"), 30));
        if (!isPlaced)
            left.append(fileEntry(temporary, 30));
        client()->finishList(QStringLiteral("/"), left);
        QTRY_COMPARE(client()->last(), QStringLiteral("remove ") + temporary);
        client()->finishRemove(temporary, true);
        QTRY_COMPARE(client()->last(), isPlaced ? QStringLiteral("remove ") + aside
                                                : QStringLiteral("move %1 /a.mov").arg(aside));
    }

    void stoppedTooLate()
    {
        const auto removal = make<ModifyOperation>(target(QStringLiteral("/show/a.mov")),
                                                   ModifyOperation::Remove, ModifyOperation::File);
        know(QStringLiteral("/show"), {fileEntry(QStringLiteral("/show/a.mov"), 5)});
        QSignalSpy changed(m_server.get(), &FileSystem::directoryChanged);
        QVERIFY(begin(*removal));
        removal->abort();
        client()->finishRemove(QStringLiteral("/show/a.mov"), false); // which it has done all the same
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.constFirst().constFirst().value<FileSystemDirectory>().fullPath,
                 QStringLiteral("/show/"));
        QVERIFY(!m_private->listings().isFresh(QStringLiteral("/show")));
    }

    /// Who shows it reads it again.
    void tellsTheFolderThatItWentInto()
    {
        const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/show/"));
        know(QStringLiteral("/"), {directoryEntry(QStringLiteral("/show/"))});
        know(QStringLiteral("/show"), {});
        QSignalSpy changed(m_server.get(), &FileSystem::directoryChanged);
        const QString temporary = sendWhole(*upload, 30);
        const QString path = QStringLiteral("/show/source.mov");
        client()->finishList(QStringLiteral("/show/"), {fileEntry(temporary, 30)});
        changed.clear();
        client()->finishMove(temporary, path, true);
        QCOMPARE(upload->state(), State::Passed);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.constFirst().constFirst().value<FileSystemDirectory>().fullPath,
                 QStringLiteral("/show/"));
    }

    void folderHasGone_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("asked");
        QTest::newRow("up") << QString() << QStringLiteral("list /show/");
        QTest::newRow("on the server") << QStringLiteral("/b.mov") << QStringLiteral("list /show/");
        QTest::newRow("down") << QStringLiteral("/b.mov") << QString();
    }
    /// What was to go into it does not take its name, while it waited in the queue.
    void folderHasGone()
    {
        QFETCH(QString, from);
        QFETCH(QString, asked);
        allowWarnings(QStringLiteral("Failed to find matching list request"));
        allowWarnings(QStringLiteral("Failed to visit operation"));
        allowWarnings(QStringLiteral("Failed to accept visitors"));
        know(QStringLiteral("/"), {fileEntry(QStringLiteral("/b.mov"), 5)});
        const auto transfer =
            from.isEmpty()
                ? transferUp(QByteArray(30, 'x'), QStringLiteral("/show/"))
                : make<FileTransferOperation>(
                      target(from),
                      asked.isEmpty() ? FileSystemTarget{&m_local, m_disk->filePath(QStringLiteral("show/"))}
                                      : target(QStringLiteral("/show/")),
                      TransferOperation::Move);
        QVERIFY(begin(*transfer));
        QCOMPARE(client()->last(), asked);
        if (!asked.isEmpty())
            client()->finishList(QStringLiteral("/show/"), {}, false);
        QCOMPARE(transfer->state(), State::Failed);
        QCOMPARE(client()->last(), asked);
    }

    /// The sizes asked for after it do not hide why a transfer has failed.
    void saysWhatTheServerSaid()
    {
        const auto upload = transferUp(QByteArray(30, 'x'), QStringLiteral("/a.mov"));
        know(QStringLiteral("/"), {});
        QVERIFY(begin(*upload));
        const QString temporary = client()->last().section(u' ', 1);
        for (int attempt = 0; upload->isRunning() && attempt < 5; ++attempt) {
            client()->errorText = QStringLiteral("552 Disk full.");
            client()->finishWrite(temporary, false);
            client()->errorText.clear();
            client()->finishSize(temporary, 10);
        }
        QCOMPARE(upload->state(), State::Failed);
        QVERIFY2(upload->errors().first().message.endsWith(QStringLiteral("552 Disk full.")),
                 qPrintable(upload->errors().first().message));
    }

    /// One that is stopped may have been carried out: then nothing is left of what it replaced.
    void replacingMoveIsStopped_data()
    {
        QTest::addColumn<bool>("isDone");
        QTest::newRow("done all the same") << true;
        QTest::newRow("not done") << false;
    }
    void replacingMoveIsStopped()
    {
        QFETCH(bool, isDone);
        const QList<ClientFileSystemInfo> there{fileEntry(QStringLiteral("/b.mov"), 5)};
        const QList<ClientFileSystemInfo> source{fileEntry(QStringLiteral("/show/b.mov"), 7)};
        const auto move = make<FileTransferOperation>(
            target(QStringLiteral("/show/b.mov")), target(QStringLiteral("/b.mov")), TransferOperation::Move);
        move->setConflictPolicy(ConflictPolicy::Replace);
        know(QStringLiteral("/"), there);
        know(QStringLiteral("/show/"), source);
        QVERIFY(begin(*move));
        client()->finishList(QStringLiteral("/"), there);
        client()->finishMove(QStringLiteral("/show/b.mov"), QStringLiteral("/b.mov"), false);
        client()->finishList(QStringLiteral("/"), there);
        const QString aside = client()->last().section(u' ', 2);
        client()->finishMove(QStringLiteral("/b.mov"), aside, true);
        QCOMPARE(client()->last(), QStringLiteral("move /show/b.mov /b.mov"));
        move->abort();
        client()->finishMove(QStringLiteral("/show/b.mov"), QStringLiteral("/b.mov"), false);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /show/"));
        client()->finishList(QStringLiteral("/show/"), isDone ? QList<ClientFileSystemInfo>() : source);
        QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
        client()->finishList(QStringLiteral("/"),
                             isDone ? QList{fileEntry(QStringLiteral("/b.mov"), 7), fileEntry(aside, 5)}
                                    : QList{fileEntry(aside, 5)});
        QTRY_COMPARE(client()->last(), isDone ? QStringLiteral("remove ") + aside
                                              : QStringLiteral("move %1 /b.mov").arg(aside));
    }

    /// What lay at the destination before does not answer for what was to come there.
    void replacingMoveSurvivesALostLink()
    {
        const QList<ClientFileSystemInfo> before{fileEntry(QStringLiteral("/a.mov"), 7),
                                                 fileEntry(QStringLiteral("/b.mov"), 5)};
        const auto move = make<FileTransferOperation>(
            target(QStringLiteral("/a.mov")), target(QStringLiteral("/b.mov")), TransferOperation::Move);
        move->setConflictPolicy(ConflictPolicy::Replace);
        know(QStringLiteral("/"), before);
        QVERIFY(begin(*move));
        client()->finishList(QStringLiteral("/"), before);
        const QString moving = QStringLiteral("move /a.mov /b.mov");
        QCOMPARE(client()->last(), moving);
        client()->setConnected(false);
        client()->setConnected(true);
        for (int i = 0; i < 2; ++i) {
            QTRY_COMPARE(client()->last(), QStringLiteral("list /"));
            client()->finishList(QStringLiteral("/"), before);
        }
        QTRY_COMPARE(client()->last(), moving);
        client()->finishMove(QStringLiteral("/a.mov"), QStringLiteral("/b.mov"), true);
        QCOMPARE(move->state(), State::Passed);
        QCOMPARE(m_server->fileSize(QStringLiteral("/b.mov")), 7);
    }

    void movedFileStaysWhenTheServerKeepsIt()
    {
        know(QStringLiteral("/"), {fileEntry(QStringLiteral("/<a>.mov"), 5)});
        const QString path = m_disk->filePath(QStringLiteral("here.mov"));
        const auto download = make<FileTransferOperation>(
            target(QStringLiteral("/<a>.mov")), FileSystemTarget{&m_local, path}, TransferOperation::Move);
        QVERIFY(begin(*download));
        QCOMPARE(client()->last(), QStringLiteral("read /<a>.mov"));
        client()->finishRead(QStringLiteral("/<a>.mov"), "12345");
        QTRY_COMPARE(client()->last(), QStringLiteral("remove /<a>.mov"));
        QCOMPARE(contentOf(path), QByteArray("12345")); // whole, and under its name, before the other goes
        client()->finishRemove(QStringLiteral("/<a>.mov"), false);
        QCOMPARE(download->state(), State::Failed);
        QCOMPARE(contentOf(path), QByteArray("12345"));
        QVERIFY(download->errors().first().message.contains(QStringLiteral("&lt;a&gt;")));
    }

    void failuresAreTold_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::newRow("create") << int(ModifyOperation::Create)
                                << QStringLiteral("Failed to create directory <code>/&lt;b&gt;/</code>");
        QTest::newRow("remove") << int(ModifyOperation::Remove) << QStringLiteral("<code>/&lt;b&gt;/</code>");
    }
    void failuresAreTold()
    {
        QFETCH(int, type);
        QFETCH(QString, text);
        know(QStringLiteral("/"), {});
        const auto change =
            make<ModifyOperation>(target(QStringLiteral("/<b>")),
                                  static_cast<ModifyOperation::ModifyType>(type), ModifyOperation::Directory);
        allowWarnings(QStringLiteral("Create operation failed for path"));
        QVERIFY(begin(*change));
        if (type == ModifyOperation::Create)
            client()->finishCreate(QStringLiteral("/<b>/"), false);
        else
            client()->finishRemove(QStringLiteral("/<b>/"), false);
        QCOMPARE(change->state(), State::Failed);
        QVERIFY2(change->errors().first().message.contains(text),
                 qPrintable(change->errors().first().message));
    }

    void credentialsHoldWhileConnected()
    {
        QSignalSpy changed(m_server.get(), &ServerFileSystem::usernameChanged);
        QVERIFY(!m_server->setUsername(QStringLiteral("a")));
        client()->setConnected(false);
        QVERIFY(m_server->setUsername(QStringLiteral("a")));
        QVERIFY(!m_server->setUsername(QStringLiteral("a")));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(client()->known.username, QStringLiteral("a"));
    }

private:
    ScriptedClient* client() const { return m_factory->client.data(); }
    FileSystemTarget target(const QString& path) { return {m_server.get(), path}; }
    void know(const QString& path, const QList<ClientFileSystemInfo>& entries)
    {
        m_private->listings().store(path, ClientListing(entries));
    }
    template <typename Operation, typename... Arguments>
    static QSharedPointer<Operation> make(Arguments&&... arguments)
    {
        return QSharedPointer<Operation>::create(std::forward<Arguments>(arguments)...);
    }
    QSharedPointer<FileTransferOperation> transferUp(const QByteArray& bytes, const QString& to)
    {
        const QString path = m_disk->filePath(QStringLiteral("source.mov"));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        return make<FileTransferOperation>(FileSystemTarget{&m_local, path}, target(to),
                                           TransferOperation::Copy);
    }
    /// Until it is to get its name; gives where it lies.
    QString sendWhole(FileTransferOperation& upload, qint64 size)
    {
        begin(upload);
        const QString temporary = client()->last().section(u' ', 1);
        client()->finishWrite(temporary, true);
        client()->finishSize(temporary, size);
        return temporary;
    }
    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<ScriptedClientFactory> m_factory;
    std::unique_ptr<ServerFileSystem> m_server;
    ServerFileSystemPrivate* m_private = nullptr;
    LocalFileSystem m_local;
    std::unique_ptr<QTemporaryDir> m_disk;
    QTime m_now;
};

HALCYRA_TEST(TestServerFileSystem)
#include "test_serverfilesystem.moc"

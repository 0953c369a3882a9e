#include "common/filesystem/ftp/ftpclient.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/schedule/clientfactory.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperationsrunner.h"
#include "common/filesystem/schedule/operationfactory.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "tests/support/ftppeer.h"
#include "tests/support/testmain.h"

#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel;
using namespace vantrel::test;
using namespace std::chrono_literals;

using State = RunnableOperation::OperationState;
using Files = QMap<QString, QByteArray>;

namespace {

constexpr int limit = 60000; // milliseconds

/// All that lies below a folder, hidden or not: files with their bytes, folders with none and a "/" at their
/// end.
Files contentOf(const QString& folder)
{
    Files files;
    QDirIterator entry(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (entry.hasNext()) {
        const QString path = entry.next();
        const QString name = path.mid(folder.size() + 1);
        if (entry.fileInfo().isDir()) {
            files.insert(name + u'/', {});
            continue;
        }
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            files.insert(name, file.readAll());
    }
    return files;
}

void write(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(path.section(u'/', 0, -2));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray noise(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(QRandomGenerator::global()->generate());
    return bytes;
}

} // namespace

/// Files on their way to a real server and back, with a look at the bytes on both disks.
class TestLiveTransfers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        // Not once for all: that would skip the classes behind this one as well.
        if (!FtpPeer::isAvailable())
            QSKIP("there is no FTP server to test with");
        allowWarnings(QStringLiteral("Failed FTP command request"));
        allowWarnings(QStringLiteral("Network error occurred"));
        allowWarnings(QStringLiteral("Aborting rest of the operations"));
        m_peer = std::make_unique<FtpPeer>();
        m_disk = std::make_unique<QTemporaryDir>();
        m_queue = std::make_unique<FileSystemOperationsRunner>(&m_operations);
    }

    void cleanup()
    {
        m_queue.reset();
        m_server.reset();
        m_peer.reset();
    }

    void treesGoUpAndDown()
    {
        QVERIFY(connectTo());
        const QStringList names{QStringLiteral("a.mov"), QStringLiteral("sub [1]/b c.mp4"),
                                QStringLiteral("sub [1]/deep/\u00e4.wav"), QStringLiteral("none.mkv"),
                                QString(251, u'x') + QStringLiteral(".mov")};
        for (const QString& name : names)
            write(disk(QStringLiteral("show/") + name), noise(name.startsWith(u'n') ? 0 : 70000));
        QDir().mkpath(disk(QStringLiteral("show/empty")));
        const Files source = contentOf(disk(QStringLiteral("show")));
        QCOMPARE(end(up(QStringLiteral("show"), QStringLiteral("/"))), State::Passed);
        QCOMPARE(contentOf(m_peer->path(QStringLiteral("show"))), source);
        // A move brings it back, and leaves nothing but what it does not know of.
        write(m_peer->path(QStringLiteral("show/sub [1]/notes.txt")), "kept");
        QDir(disk(QStringLiteral("show"))).removeRecursively();
        QVERIFY(knows(QStringLiteral("/show")));
        QCOMPARE(end(m_queue->move(m_server.get(), QStringLiteral("/show"), local(), m_disk->path())),
                 State::Passed);
        QCOMPARE(contentOf(disk(QStringLiteral("show"))), source);
        QCOMPARE(contentOf(m_peer->folder()).keys(),
                 (QStringList{QStringLiteral("show/"), QStringLiteral("show/sub [1]/"),
                              QStringLiteral("show/sub [1]/notes.txt")}));
    }

    void serverDiesInTheMiddle_data()
    {
        QTest::addColumn<bool>("isUpload");
        QTest::addColumn<bool>("isMove");
        QTest::newRow("upload") << true << false;
        QTest::newRow("download") << false << false;
        QTest::newRow("upload as a move") << true << true;
        QTest::newRow("download as a move") << false << true;
    }
    void serverDiesInTheMiddle()
    {
        QFETCH(bool, isUpload);
        QFETCH(bool, isMove);
        QVERIFY(connectTo(4 << 20));
        const QByteArray bytes = noise(6 << 20);
        const QString from = isUpload ? disk(QStringLiteral("a.mov")) : m_peer->path(QStringLiteral("a.mov"));
        const QString to = isUpload ? m_peer->path(QStringLiteral("a.mov")) : disk(QStringLiteral("a.mov"));
        write(from, bytes);
        write(disk(QStringLiteral("next.mov")), "next");
        QVERIFY(isUpload || knows(QStringLiteral("/a.mov")));
        const OperationPtr operation = isUpload ? up(QStringLiteral("a.mov"), QStringLiteral("/"), isMove)
                                                : down(QStringLiteral("/a.mov"), isMove);
        const OperationPtr next = up(QStringLiteral("next.mov"), QStringLiteral("/"));
        QTRY_VERIFY_WITH_TIMEOUT(operation->progress() > 0.3, limit);
        m_peer->kill();
        QVERIFY(!QFile::exists(to)); // what is torn looks like nothing that could be played
        QVERIFY(m_peer->start());
        QCOMPARE(end(operation), State::Passed);
        QCOMPARE(end(next), State::Passed);
        QCOMPARE(contentOf(m_peer->folder()).value(QStringLiteral("a.mov")),
                 !isUpload && isMove ? QByteArray() : bytes);
        QCOMPARE(QFile::exists(from), !isMove);
        QCOMPARE(contentOf(to.section(u'/', 0, -2)).value(QStringLiteral("a.mov")), bytes);
        QCOMPARE(contentOf(m_peer->folder()).size(), !isUpload && isMove ? 1 : 2);
        QCOMPARE(contentOf(m_disk->path()).size(), isUpload && isMove ? 1 : 2);
    }

    void cancelLeavesNothing_data()
    {
        QTest::addColumn<bool>("isUpload");
        QTest::newRow("upload") << true;
        QTest::newRow("download") << false;
    }
    void cancelLeavesNothing()
    {
        QFETCH(bool, isUpload);
        QVERIFY(connectTo(4 << 20));
        write(isUpload ? disk(QStringLiteral("show/a.mov")) : m_peer->path(QStringLiteral("show/a.mov")),
              noise(8 << 20));
        write(disk(QStringLiteral("next.mov")), "next");
        QVERIFY(isUpload || knows(QStringLiteral("/show")));
        const OperationPtr operation =
            isUpload ? up(QStringLiteral("show"), QStringLiteral("/")) : down(QStringLiteral("/show"), false);
        const OperationPtr next = up(QStringLiteral("next.mov"), QStringLiteral("/"));
        QTRY_VERIFY_WITH_TIMEOUT(operation->progress() > 0.2, limit);
        QVERIFY(m_queue->stopOperation(operation));
        QCOMPARE(end(operation), State::Failed);
        QCOMPARE(end(next), State::Passed);
        const QString there = isUpload ? m_peer->folder() : m_disk->path();
        QTRY_COMPARE(contentOf(there + QStringLiteral("/show")).size(), 0);
        QCOMPARE(contentOf(m_peer->folder()).value(QStringLiteral("next.mov")), QByteArray("next"));
        // The retry finds the folder that the first attempt has made.
        QVERIFY(m_peer->restart());
        const OperationPtr retry = m_queue->retryOperation(operation);
        QCOMPARE(end(retry), State::Passed);
        QCOMPARE(contentOf(m_peer->path(QStringLiteral("show"))), contentOf(disk(QStringLiteral("show"))));
        QCOMPARE(contentOf(there + QStringLiteral("/show")).keys(), QStringList{QStringLiteral("a.mov")});
    }

    void retrySendsOnlyWhatIsMissing()
    {
        QVERIFY(connectTo());
        for (int i = 0; i < 5; ++i)
            write(disk(QStringLiteral("show/%1.mov").arg(i)), noise(10000));
        write(m_peer->path(QStringLiteral("show/2.mov")), "another"); // in the way
        const OperationPtr operation = up(QStringLiteral("show"), QStringLiteral("/"));
        qSharedPointerCast<TransferOperation>(operation)->setConflictPolicy(ConflictPolicy::Ask);
        const auto transfer = qSharedPointerCast<TransferOperation>(operation);
        QTRY_VERIFY_WITH_TIMEOUT(transfer->conflict(), limit);
        transfer->answerConflict(ConflictPolicy::Replace, false); // the folder
        QTRY_VERIFY_WITH_TIMEOUT(transfer->conflict(), limit);
        QCOMPARE(transfer->conflict()->path, QStringLiteral("/show/2.mov"));
        transfer->answerConflict(ConflictPolicy::Refuse, false);
        QCOMPARE(end(operation), State::Failed);
        QCOMPARE(contentOf(m_peer->path(QStringLiteral("show"))).value(QStringLiteral("2.mov")),
                 QByteArray("another"));
        QFile::remove(m_peer->path(QStringLiteral("show/2.mov")));
        // What has come over is not touched again.
        const QDateTime before = QFileInfo(m_peer->path(QStringLiteral("show/0.mov"))).lastModified();
        QCOMPARE(end(m_queue->retryOperation(operation)), State::Passed);
        QCOMPARE(contentOf(m_peer->path(QStringLiteral("show"))), contentOf(disk(QStringLiteral("show"))));
        QCOMPARE(QFileInfo(m_peer->path(QStringLiteral("show/0.mov"))).lastModified(), before);
    }

    void changesOnTheServer()
    {
        QVERIFY(connectTo());
        write(m_peer->path(QStringLiteral("show/deep/a.mov")), "a");
        write(m_peer->path(QStringLiteral("show/b.mov")), "b");
        write(m_peer->path(QStringLiteral("c.mov")), "c");
        QVERIFY(knows(QStringLiteral("/c.mov")));
        QCOMPARE(end(m_queue->createDirectory(m_server.get(), QStringLiteral("/new"))), State::Passed);
        QCOMPARE(end(m_queue->rename(m_server.get(), QStringLiteral("/c.mov"), QStringLiteral("d e.mov"))),
                 State::Passed);
        QVERIFY(m_server->getType(QStringLiteral("/d e.mov")) == FileSystem::File);
        QCOMPARE(end(m_queue->rename(m_server.get(), QStringLiteral("/d e.mov"), QStringLiteral("new"))),
                 State::Failed);
        QCOMPARE(end(m_queue->move(m_server.get(), QStringLiteral("/d e.mov"), m_server.get(),
                                   QStringLiteral("/new"))),
                 State::Passed);
        QCOMPARE(end(m_queue->move(m_server.get(), QStringLiteral("/show"), m_server.get(),
                                   QStringLiteral("/new"))),
                 State::Passed);
        QCOMPARE(contentOf(m_peer->folder()).keys(),
                 (QStringList{QStringLiteral("new/"), QStringLiteral("new/d e.mov"),
                              QStringLiteral("new/show/"), QStringLiteral("new/show/b.mov"),
                              QStringLiteral("new/show/deep/"), QStringLiteral("new/show/deep/a.mov")}));
        QCOMPARE(end(m_queue->remove(m_server.get(), QStringLiteral("/new"))), State::Passed);
        QCOMPARE(contentOf(m_peer->folder()), Files());
    }

    void linksAreNotFollowed()
    {
        QVERIFY(connectTo());
        write(m_peer->path(QStringLiteral("kept/a.mov")), "a");
        write(m_peer->path(QStringLiteral("show/b.mov")), "b");
        write(m_peer->path(QStringLiteral("old/c.mov")), "c");
        for (const char* link : {"show/link", "old/link"})
            QVERIFY(
                QFile::link(m_peer->path(QStringLiteral("kept")), m_peer->path(QString::fromLatin1(link))));
        QVERIFY(knows(QStringLiteral("/show")) && knows(QStringLiteral("/old")));
        QCOMPARE(end(m_queue->move(m_server.get(), QStringLiteral("/show"), local(), m_disk->path())),
                 State::Passed);
        QCOMPARE(
            contentOf(disk(QStringLiteral("show"))).keys(),
            (QStringList{QStringLiteral("b.mov"), QStringLiteral("link/"), QStringLiteral("link/a.mov")}));
        QCOMPARE(end(m_queue->remove(m_server.get(), QStringLiteral("/old"))), State::Passed);
        QCOMPARE(contentOf(m_peer->folder()).keys(),
                 (QStringList{QStringLiteral("kept/"), QStringLiteral("kept/a.mov")}));
    }

private:
    QString disk(const QString& below) const { return m_disk->filePath(below); }
    static FileSystem* local() { return DefaultFileSystemProvider::instance()->getLocalFileSystem(); }

    bool connectTo(int bytesPerSecond = 0)
    {
        if (!m_peer->start(bytesPerSecond))
            return false;
        const QUrl address(QStringLiteral("ftp://127.0.0.1:%1").arg(m_peer->port()));
        m_server = std::make_unique<ServerFileSystem>(address, &m_clients);
        qobject_cast<FtpClient*>(m_server->client())->setReconnectUnit(5ms);
        return m_server->setUsername(m_peer->user()) && m_server->setPassword(m_peer->password()) &&
               m_server->connectToServer() &&
               QTest::qWaitFor([this] { return m_server->isReady() && !m_server->isLoading(); }, limit);
    }
    /// Has the server listed until it shows the item.
    bool knows(const QString& path)
    {
        return QTest::qWaitFor(
            [&] {
                QList<FileSystemFile> files;
                m_server->getFiles(QStringLiteral("/"), files);
                return m_server->getType(path) != FileSystem::Unknown;
            },
            limit);
    }
    OperationPtr up(const QString& name, const QString& to, bool isMove = false)
    {
        return isMove ? m_queue->move(local(), disk(name), m_server.get(), to)
                      : m_queue->copy(local(), disk(name), m_server.get(), to);
    }
    OperationPtr down(const QString& path, bool isMove)
    {
        return isMove ? m_queue->move(m_server.get(), path, local(), m_disk->path())
                      : m_queue->copy(m_server.get(), path, local(), m_disk->path());
    }
    static State end(const OperationPtr& operation)
    {
        if (!operation || !QTest::qWaitFor([&] { return operation->hasFinished(); }, limit))
            return State::NotStarted;
        const auto runnable = qSharedPointerCast<RunnableOperation>(operation);
        if (runnable->state() == State::Failed)
            for (const OperationError& error : runnable->errors())
                qInfo() << error.message;
        return runnable->state();
    }

    ClientFactory m_clients;
    OperationFactory m_operations;
    std::unique_ptr<FtpPeer> m_peer;
    std::unique_ptr<ServerFileSystem> m_server;
    std::unique_ptr<QTemporaryDir> m_disk;
    std::unique_ptr<FileSystemOperationsRunner> m_queue;
};

HALCYRA_TEST(TestLiveTransfers)
#include "test_livetransfers.moc"

#include "common/filesystem/ftp/ftpclient.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/schedule/clientfactory.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperationsrunner.h"
#include "common/filesystem/schedule/operationfactory.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "tests/support/ftpdaemon.h"
#include "tests/support/ftppeer.h"
#include "tests/support/testmain.h"

#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

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

// A server that this machine does not have is none to test with.
#define CONNECT_TO(make)                                                                                     \
    if (!choose(make))                                                                                       \
        QSKIP("this server is not unpacked (./test does), or this is not root");                             \
    QVERIFY(connectTo())

/// Files on their way to a real server and back, with a look at the bytes on both disks.
class TestLiveTransfers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!FtpPeer::isAvailable())
            QSKIP("there is no FTP server to test with");
    }

    void init()
    {
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
        m_daemon.reset();
        m_peer.reset();
    }

    void treesGoUpAndDown_data() { eachServer(); }
    void treesGoUpAndDown()
    {
        QFETCH(int, make);
        CONNECT_TO(make);
        const QStringList names{QStringLiteral("a.mov"), QStringLiteral("sub [1]/b c.mp4"),
                                QStringLiteral("sub [1]/deep/\u00e4.wav"), QStringLiteral("none.mkv"),
                                QString(251, u'x') + QStringLiteral(".mov")};
        for (const QString& name : names)
            write(disk(QStringLiteral("show/") + name), noise(name.startsWith(u'n') ? 0 : 70000));
        QDir().mkpath(disk(QStringLiteral("show/empty")));
        const Files source = contentOf(disk(QStringLiteral("show")));
        // What is no media stays, and is told of.
        write(disk(QStringLiteral("show/sub [1]/cues.pdf")), "stays");
        const auto othersOf = [](const OperationPtr& transfer) {
            return qSharedPointerCast<TransferOperation>(transfer)->otherFiles();
        };
        const OperationPtr upload = up(QStringLiteral("show"), at(QStringLiteral("/")));
        QCOMPARE(end(upload), State::Passed);
        QCOMPARE(othersOf(upload), 1);
        QCOMPARE(contentOf(there(QStringLiteral("show"))), source);
        // A move brings it back, and leaves nothing but what it does not know of.
        write(there(QStringLiteral("show/sub [1]/notes.txt")), "kept");
        QDir(disk(QStringLiteral("show"))).removeRecursively();
        own();
        QVERIFY(knows(at(QStringLiteral("/show"))));
        const OperationPtr move =
            m_queue->move(m_server.get(), at(QStringLiteral("/show")), local(), m_disk->path());
        QCOMPARE(end(move), State::Passed);
        QCOMPARE(othersOf(move), 1);
        QCOMPARE(contentOf(disk(QStringLiteral("show"))), source);
        QCOMPARE(contentOf(there({})).keys(),
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

    void diskIsFull_data()
    {
        QTest::addColumn<bool>("isUpload");
        QTest::newRow("the server's") << true;
        QTest::newRow("this computer's") << false;
    }
    void diskIsFull()
    {
        QFETCH(bool, isUpload);
        constexpr rlim_t room = 16 << 20;
        QVERIFY(connectTo(0, isUpload ? room : 0));
        write(isUpload ? disk(QStringLiteral("a.mov")) : there(QStringLiteral("a.mov")),
              QByteArray(20 << 20, 'x'));
        write(disk(QStringLiteral("next.mov")), "next");
        QVERIFY(isUpload || knows(QStringLiteral("/a.mov")));
        rlimit before{};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
        const auto giveBack = qScopeGuard([&before] { ::setrlimit(RLIMIT_FSIZE, &before); });
        if (!isUpload) {
            ::signal(SIGXFSZ, SIG_IGN);
            const rlimit full{room, before.rlim_max};
            QCOMPARE(::setrlimit(RLIMIT_FSIZE, &full), 0);
        }
        const OperationPtr operation = isUpload ? up(QStringLiteral("a.mov"), QStringLiteral("/"))
                                                : down(QStringLiteral("/a.mov"), false);
        const OperationPtr next = up(QStringLiteral("next.mov"), QStringLiteral("/"));
        QCOMPARE(end(operation), State::Failed);
        const QString expected =
            isUpload ? QStringLiteral("may have no room for more") : QStringLiteral("File too large");
        QVERIFY2(errorsOf(operation).contains(expected), qPrintable(errorsOf(operation)));
        QCOMPARE(end(next), State::Passed);
        QTRY_COMPARE(contentOf(isUpload ? there({}) : m_disk->path()).keys(),
                     QStringList{QStringLiteral("next.mov")});
    }

    void sourceChangesMeanwhile()
    {
        QVERIFY(connectTo(4 << 20));
        write(disk(QStringLiteral("a.mov")), noise(4 << 20));
        const OperationPtr operation = up(QStringLiteral("a.mov"), QStringLiteral("/"), true);
        QTRY_VERIFY_WITH_TIMEOUT(operation->progress() > 0.2, limit);
        write(disk(QStringLiteral("a.mov")), noise(4 << 20));
        QCOMPARE(end(operation), State::Failed);
        QVERIFY(errorsOf(operation).contains(QStringLiteral("changed while it was sent")));
        QTRY_COMPARE(contentOf(there({})), Files());
        QCOMPARE(contentOf(m_disk->path()).keys(), QStringList{QStringLiteral("a.mov")});
    }

    /// By another one of the same size, once while the link is gone and once while it is read.
    void fileIsReplacedMeanwhile_data()
    {
        QTest::addColumn<bool>("breaks");
        QTest::newRow("in a break") << true;
        QTest::newRow("while it is read") << false;
    }
    void fileIsReplacedMeanwhile()
    {
        QFETCH(bool, breaks);
        QVERIFY(connectTo(4 << 20));
        const QString path = there(QStringLiteral("a.mov"));
        write(path, noise(6 << 20));
        QFile aged(path);
        const QDateTime then = QDateTime::currentDateTime().addDays(-1);
        QVERIFY(aged.open(QIODevice::ReadWrite) && aged.setFileTime(then, QFileDevice::FileModificationTime));
        aged.close();
        QVERIFY(knows(QStringLiteral("/a.mov")));
        const OperationPtr operation = down(QStringLiteral("/a.mov"), false);
        QTRY_VERIFY_WITH_TIMEOUT(operation->progress() > 0.3, limit);
        const QByteArray other = noise(6 << 20);
        if (breaks)
            m_peer->kill();
        QVERIFY(QFile::remove(path));
        write(path, other);
        QVERIFY(!breaks || m_peer->start());
        QCOMPARE(end(operation), State::Passed);
        QVERIFY(contentOf(m_disk->path()).value(QStringLiteral("a.mov")) == other);
    }

    void whatIsNotAllowedIsSaid_data() { eachServer(); }
    void whatIsNotAllowedIsSaid()
    {
        QFETCH(int, make);
        if (make < 0)
            return; // it may do all that the test may
        CONNECT_TO(make);
        QVERIFY(QDir().mkpath(there(QStringLiteral("locked"))));
        write(there(QStringLiteral("secret.mov")), "secret");
        QVERIFY(QFile::setPermissions(there(QStringLiteral("secret.mov")), QFile::ReadOwner));
        write(disk(QStringLiteral("a.mov")), "a");
        QVERIFY(knows(at(QStringLiteral("/locked"))));
        const OperationPtr upload = up(QStringLiteral("a.mov"), at(QStringLiteral("/locked")));
        const OperationPtr download = down(at(QStringLiteral("/secret.mov")), false);
        for (const OperationPtr& refused : {upload, download}) {
            QCOMPARE(end(refused), State::Failed);
            const QString said = errorsOf(refused);
            QVERIFY2(said.contains(QStringLiteral("could not be ")), qPrintable(said));
        }
        QCOMPARE(contentOf(there({})).keys(),
                 (QStringList{QStringLiteral("locked/"), QStringLiteral("secret.mov")}));
        QTRY_COMPARE(contentOf(m_disk->path()).keys(), QStringList{QStringLiteral("a.mov")});
    }

    void strangeNames()
    {
        QVERIFY(connectTo());
        QString all;
        for (char character = ' '; character <= '~'; ++character)
            if (character != '/')
                all += QLatin1Char(character);
        const QString folder = QStringLiteral("  both ends  ");
        const QString name = folder + u'/' + all + QStringLiteral(".mov");
        write(disk(name), "all");
        QCOMPARE(end(up(folder, QStringLiteral("/"))), State::Passed);
        QCOMPARE(contentOf(there({})), contentOf(m_disk->path()));
        QVERIFY(QFile::remove(disk(name)) && QDir(m_disk->path()).rmdir(folder));
        QVERIFY(knows(u'/' + folder));
        QCOMPARE(end(down(u'/' + folder, true)), State::Passed);
        QCOMPARE(contentOf(m_disk->path()).value(name), QByteArray("all"));
        QCOMPARE(contentOf(there({})), Files());
        // A command ends with a line.
        write(disk(QStringLiteral("two\nlines.mov")), "two");
        const OperationPtr refused = up(QStringLiteral("two\nlines.mov"), QStringLiteral("/"));
        QCOMPARE(end(refused), State::Failed);
        QVERIFY2(errorsOf(refused).contains(QStringLiteral("line break")), qPrintable(errorsOf(refused)));
        QCOMPARE(contentOf(there({})), Files());
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
        const QByteArray other = noise(10000);
        write(m_peer->path(QStringLiteral("show/1.mov")), other); // in the way, and as long
        write(m_peer->path(QStringLiteral("show/2.mov")), "another");
        const OperationPtr operation = up(QStringLiteral("show"), QStringLiteral("/"));
        qSharedPointerCast<TransferOperation>(operation)->setConflictPolicy(ConflictPolicy::Ask);
        const auto transfer = qSharedPointerCast<TransferOperation>(operation);
        QTRY_VERIFY_WITH_TIMEOUT(transfer->conflict(), limit);
        transfer->answerConflict(ConflictPolicy::Replace, false); // the folder
        const auto asksFor = [&transfer](const QString& path) {
            return transfer->conflict() && transfer->conflict()->path == path;
        };
        QTRY_VERIFY_WITH_TIMEOUT(asksFor(QStringLiteral("/show/1.mov")), limit);
        transfer->answerConflict(ConflictPolicy::Skip, false);
        QTRY_VERIFY_WITH_TIMEOUT(asksFor(QStringLiteral("/show/2.mov")), limit);
        transfer->answerConflict(ConflictPolicy::Refuse, false);
        QCOMPARE(end(operation), State::Failed);
        QCOMPARE(contentOf(m_peer->path(QStringLiteral("show"))).value(QStringLiteral("2.mov")),
                 QByteArray("another"));
        QFile::remove(m_peer->path(QStringLiteral("show/2.mov")));
        // What has come over is not touched again.
        const QDateTime before = QFileInfo(m_peer->path(QStringLiteral("show/0.mov"))).lastModified();
        const OperationPtr retry = m_queue->retryOperation(operation);
        QCOMPARE(end(retry), State::Passed);
        // What was skipped is no arrival, and is not asked for once more.
        QCOMPARE(qSharedPointerCast<TransferOperation>(retry)->skippedCount(), 1);
        QCOMPARE(qSharedPointerCast<TransferOperation>(retry)->transferredBytes(), 40000ULL);
        Files expected = contentOf(disk(QStringLiteral("show")));
        expected[QStringLiteral("1.mov")] = other;
        QCOMPARE(contentOf(m_peer->path(QStringLiteral("show"))), expected);
        QCOMPARE(QFileInfo(m_peer->path(QStringLiteral("show/0.mov"))).lastModified(), before);
    }

    void changesOnTheServer_data() { eachServer(); }
    void changesOnTheServer()
    {
        QFETCH(int, make);
        CONNECT_TO(make);
        write(there(QStringLiteral("show/deep/a.mov")), "a");
        write(there(QStringLiteral("show/b.mov")), "b");
        write(there(QStringLiteral("c.mov")), "c");
        own();
        QVERIFY(knows(at(QStringLiteral("/c.mov"))));
        QCOMPARE(end(m_queue->createDirectory(m_server.get(), at(QStringLiteral("/new")))), State::Passed);
        QCOMPARE(
            end(m_queue->rename(m_server.get(), at(QStringLiteral("/c.mov")), QStringLiteral("d e.mov"))),
            State::Passed);
        QVERIFY(m_server->getType(at(QStringLiteral("/d e.mov"))) == FileSystem::File);
        QCOMPARE(end(m_queue->rename(m_server.get(), at(QStringLiteral("/d e.mov")), QStringLiteral("new"))),
                 State::Failed);
        QCOMPARE(end(m_queue->move(m_server.get(), at(QStringLiteral("/d e.mov")), m_server.get(),
                                   at(QStringLiteral("/new")))),
                 State::Passed);
        QCOMPARE(end(m_queue->move(m_server.get(), at(QStringLiteral("/show")), m_server.get(),
                                   at(QStringLiteral("/new")))),
                 State::Passed);
        QCOMPARE(contentOf(there({})).keys(),
                 (QStringList{QStringLiteral("new/"), QStringLiteral("new/d e.mov"),
                              QStringLiteral("new/show/"), QStringLiteral("new/show/b.mov"),
                              QStringLiteral("new/show/deep/"), QStringLiteral("new/show/deep/a.mov")}));
        QCOMPARE(end(m_queue->remove(m_server.get(), at(QStringLiteral("/new")))), State::Passed);
        QCOMPARE(contentOf(there({})), Files());
    }

    void linksAreNotFollowed_data() { eachServer(); }
    void linksAreNotFollowed()
    {
        QFETCH(int, make);
        CONNECT_TO(make);
        write(there(QStringLiteral("kept/a.mov")), "a");
        write(there(QStringLiteral("show/b.mov")), "b");
        write(there(QStringLiteral("old/c.mov")), "c");
        for (const char* link : {"show/link", "old/link"})
            QVERIFY(QFile::link(QStringLiteral("../kept"), there(QString::fromLatin1(link))));
        own();
        QVERIFY(knows(at(QStringLiteral("/show"))) && knows(at(QStringLiteral("/old"))));
        QCOMPARE(end(m_queue->move(m_server.get(), at(QStringLiteral("/show")), local(), m_disk->path())),
                 State::Passed);
        QCOMPARE(
            contentOf(disk(QStringLiteral("show"))).keys(),
            (QStringList{QStringLiteral("b.mov"), QStringLiteral("link/"), QStringLiteral("link/a.mov")}));
        QCOMPARE(end(m_queue->remove(m_server.get(), at(QStringLiteral("/old")))), State::Passed);
        QCOMPARE(contentOf(there({})).keys(),
                 (QStringList{QStringLiteral("kept/"), QStringLiteral("kept/a.mov")}));
    }

private:
    QString disk(const QString& below) const { return m_disk->path() + u'/' + below; }

    static void eachServer()
    {
        QTest::addColumn<int>("make");
        QTest::newRow("as ombra does") << -1;
        QTest::newRow("pure-ftpd") << static_cast<int>(FtpDaemon::Make::Pure);
        QTest::newRow("proftpd") << static_cast<int>(FtpDaemon::Make::Pro);
        QTest::newRow("vsftpd") << static_cast<int>(FtpDaemon::Make::Vs);
    }
    bool choose(int make)
    {
        if (make >= 0)
            m_daemon = std::make_unique<FtpDaemon>(static_cast<FtpDaemon::Make>(make));
        return !m_daemon || m_daemon->isAvailable();
    }
    /// The folder on the server in which the test works: not all let anybody write into the root.
    QString at(const QString& path) const { return (m_daemon ? QStringLiteral("/up") : QString()) + path; }
    QString there(const QString& below) const
    {
        const QString folder = m_daemon ? m_daemon->folder() + QStringLiteral("/up") : m_peer->folder();
        return below.isEmpty() ? folder : folder + u'/' + below;
    }
    /// What the test has put there is the server's.
    void own() const
    {
        QDirIterator entry(there({}), QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (m_daemon && entry.hasNext())
            QCOMPARE(::lchown(QFile::encodeName(entry.next()).constData(), 1, 1), 0);
    }
    static QString errorsOf(const OperationPtr& operation)
    {
        QStringList messages;
        for (const OperationError& error : qSharedPointerCast<RunnableOperation>(operation)->errors())
            messages << error.message;
        return messages.join(u'\n');
    }
    static FileSystem* local() { return DefaultFileSystemProvider::instance()->getLocalFileSystem(); }

    bool connectTo(int bytesPerSecond = 0, qint64 roomBytes = 0)
    {
        const bool isStarted = m_daemon ? m_daemon->start() && FtpDaemon::makeFolder(there({}))
                                        : m_peer->start(bytesPerSecond, roomBytes);
        if (!isStarted)
            return false;
        const int port = m_daemon ? m_daemon->port() : m_peer->port();
        const QUrl address(QStringLiteral("ftp://127.0.0.1:%1").arg(port));
        m_server = std::make_unique<ServerFileSystem>(address, &m_clients);
        qobject_cast<FtpClient*>(m_server->client())->setReconnectUnit(5ms);
        return m_server->setUsername(m_daemon ? m_daemon->user() : m_peer->user()) &&
               m_server->setPassword(m_peer->password()) && m_server->connectToServer() &&
               QTest::qWaitFor([this] { return m_server->isReady() && !m_server->isLoading(); }, limit);
    }
    /// Has the server listed until it shows the item.
    bool knows(const QString& path)
    {
        return QTest::qWaitFor(
            [&] {
                QList<FileSystemFile> files;
                m_server->getFiles(getParentPath(path), files);
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
    std::unique_ptr<FtpDaemon> m_daemon; // in its place
    std::unique_ptr<ServerFileSystem> m_server;
    std::unique_ptr<QTemporaryDir> m_disk;
    std::unique_ptr<FileSystemOperationsRunner> m_queue;
};

HALCYRA_TEST(TestLiveTransfers)
#include "test_livetransfers.moc"

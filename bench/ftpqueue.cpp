// Whole folders and trees as the window moves them, by the queue of file work and the storage of a server,
// beside lftp on the same pure-ftpd.
#include "bench/row.h"
#include "common/filesystem/operations/recursivedirectorylister.h"
#include "common/filesystem/operations/runnableoperation.h"
#include "common/filesystem/schedule/clientfactory.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperationsrunner.h"
#include "common/filesystem/schedule/operationfactory.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "common/ui/clicktest/uifigures.h"
#include "tests/support/ftpdaemon.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLoggingCategory>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

using namespace vantrel;
using vantrel::bench::row;
using vantrel::test::FtpDaemon;

namespace {

constexpr int folders = 20;
constexpr int filesInEach = 100;
constexpr int smallSize = 10 * 1024;
constexpr int treeFolders = 2000;
constexpr int treeFilesInEach = 10;
constexpr int limit = 300'000; // milliseconds

void fill(const QString& path, int size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(size, 'x')) != size)
        qFatal("%s cannot be written", qPrintable(path));
}

double seconds(const std::function<void()>& work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return double(clock.nsecsElapsed()) / 1e9;
}

/// The longest own standstill of the main thread while it lives, in milliseconds.
class StallWatch
{
public:
    StallWatch() { m_figures.reset(); }
    double longestMs() const { return m_figures.toJson()[QStringLiteral("longestOwnStallMs")].toDouble(); }

private:
    UiFigures m_figures{nullptr};
};

class Peer
{
public:
    Peer()
    {
        if (!m_pure.isAvailable() || !m_pure.start())
            qFatal("pure-ftpd is not there: ./test unpacks it, and it wants root");
        m_server = std::make_unique<ServerFileSystem>(
            QUrl(QStringLiteral("ftp://127.0.0.1:%1").arg(m_pure.port())), &m_clients);
        m_server->setUsername(QStringLiteral("opsadmin"));
        m_server->setPassword(QStringLiteral("tnempius"));
        m_server->connectToServer();
        if (!QTest::qWaitFor([this] { return m_server->isReady() && !m_server->isLoading(); }, 10000))
            qFatal("the server does not answer");
    }
    QString remote(const QString& below) const { return m_pure.folder() + u'/' + below; }
    QString local(const QString& below) const { return m_disk.filePath(below); }
    ServerFileSystem* server() { return m_server.get(); }

    void lftp(const QString& command) const
    {
        const QStringList arguments{QStringLiteral("-u"), QStringLiteral("opsadmin,tnempius"),
                                    QStringLiteral("-e"), command + QStringLiteral("; bye"),
                                    QStringLiteral("ftp://127.0.0.1:%1/").arg(m_pure.port())};
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(QStringLiteral("lftp"), arguments);
        if (!process.waitForFinished(limit) || process.exitCode() != 0)
            qFatal("lftp failed");
    }

    void up(const QString& name)
    {
        finish(m_queue.copy(disk(), local(name), m_server.get(), QStringLiteral("/")));
    }
    void down(const QString& name, const QString& to)
    {
        // Listed, as what is dragged has been.
        QList<FileSystemFile> files;
        if (!QTest::qWaitFor(
                [&] {
                    m_server->getFiles(QStringLiteral("/"), files);
                    return m_server->getType(u'/' + name) == FileSystem::Directory;
                },
                limit))
            qFatal("the server does not list %s", qPrintable(name));
        QDir().mkpath(to);
        finish(m_queue.copy(m_server.get(), u'/' + name, disk(), to));
    }
    void read(const QString& path)
    {
        RecursiveDirectoryLister lister(m_server.get(), path, 0);
        QEventLoop loop;
        QObject::connect(&lister, &RecursiveDirectoryLister::hasFinishedChanged, &loop, [&] {
            if (lister.hasFinished())
                loop.quit();
        });
        QTimer::singleShot(limit, &loop, [&] { loop.exit(1); });
        lister.start();
        if (loop.exec() != 0 || !lister.isValid())
            qFatal("the tree cannot be read");
    }

private:
    static FileSystem* disk() { return DefaultFileSystemProvider::instance()->getLocalFileSystem(); }

    static void finish(const OperationPtr& operation)
    {
        if (!operation)
            qFatal("the queue takes no operation");
        QEventLoop loop;
        QObject::connect(operation.get(), &BaseOperation::operationStopped, &loop, &QEventLoop::quit);
        QTimer::singleShot(limit, &loop, &QEventLoop::quit);
        if (!operation->hasFinished())
            loop.exec();
        const auto runnable = qSharedPointerCast<RunnableOperation>(operation);
        if (runnable->state() != RunnableOperation::OperationState::Passed)
            qFatal("an operation failed");
    }

    FtpDaemon m_pure{FtpDaemon::Make::Pure};
    QTemporaryDir m_disk;
    ClientFactory m_clients;
    OperationFactory m_operations;
    std::unique_ptr<ServerFileSystem> m_server;
    FileSystemOperationsRunner m_queue{&m_operations};
};

/// Nothing is removed between the rounds: for a while a disk looks at each place that has become free before
/// it takes another one, which would count for whoever comes next.
void manySmallFiles(Peer& peer)
{
    const auto nameIn = [](int round) { return QStringLiteral("small%1").arg(round); };
    for (int folder = 0; folder < folders; ++folder) {
        const QString path = peer.local(QStringLiteral("%1/%2").arg(nameIn(0)).arg(folder));
        QDir().mkpath(path);
        for (int i = 0; i < filesInEach; ++i)
            fill(QStringLiteral("%1/%2.png").arg(path).arg(i), smallSize);
    }
    double up = 1e9, down = 1e9, theirUp = 1e9, theirDown = 1e9, stall = 1e9;
    for (int round = 0; round < 3; ++round) {
        const QString name = nameIn(round);
        if (round > 0)
            QDir().rename(peer.local(nameIn(round - 1)), peer.local(name));
        const QString back = peer.local(QStringLiteral("back%1").arg(round));
        {
            const StallWatch watch;
            up = std::min(up, seconds([&] { peer.up(name); }));
            down = std::min(down, seconds([&] { peer.down(name, back); }));
            stall = std::min(stall, watch.longestMs());
        }
        const QString theirs = QStringLiteral("theirs%1").arg(round);
        theirUp = std::min(theirUp, seconds([&] {
                               peer.lftp(QStringLiteral("mirror -R %1 /%2").arg(peer.local(name), theirs));
                           }));
        theirDown = std::min(
            theirDown, seconds([&] { peer.lftp(QStringLiteral("mirror /%1 %2/%1").arg(theirs, back)); }));
    }
    row("ftp/folder-of-2000-up", "lftp mirror -R", up, theirUp, "s", 1);
    row("ftp/folder-of-2000-down", "lftp mirror", down, theirDown, "s", 1);
    row("ftp/folder-of-2000-longest-stall", "the limit of 16 ms, best of three", stall, 16, "ms", 1);
}

void tree(Peer& peer)
{
    for (int folder = 0; folder < treeFolders; ++folder) {
        const QString path = peer.remote(QStringLiteral("tree/%1/%2").arg(folder / 50).arg(folder));
        QDir().mkpath(path);
        for (int i = 0; i < treeFilesInEach; ++i)
            fill(QStringLiteral("%1/%2.mov").arg(path).arg(i), 1);
    }
    double our = 1e9, their = 1e9, stall = 1e9;
    for (int round = 0; round < 3; ++round) {
        const StallWatch watch;
        our = std::min(our, seconds([&] { peer.read(QStringLiteral("/tree")); }));
        stall = std::min(stall, watch.longestMs());
        their = std::min(their, seconds([&] { peer.lftp(QStringLiteral("find /tree")); }));
    }
    row("ftp/tree-of-20000", "lftp find", our, their, "s", 0.9);
    row("ftp/tree-of-20000-longest-stall", "the limit of 16 ms, best of three", stall, 16, "ms", 1);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false"));
    const QStringList names = application.arguments().mid(1);
    const auto isWanted = [&](const char* name) {
        return names.isEmpty() || std::ranges::any_of(names, [&](const QString& start) {
                   return QLatin1String(name).startsWith(start) || start.startsWith(QLatin1String(name));
               });
    };
    Peer peer;
    if (isWanted("ftp/folder"))
        manySmallFiles(peer);
    if (isWanted("ftp/tree"))
        tree(peer);
    return 0;
}

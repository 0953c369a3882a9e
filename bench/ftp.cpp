// Files over FTP from and to a server of another make, beside the tools that an engineer would have used: the
// time and the processor time of one large file each way, and the time for many small ones.
#include "bench/row.h"
#include "common/filesystem/ftp/clientcredentials.h"
#include "common/filesystem/ftp/ftpclient.h"
#include "tests/support/ftpdaemon.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLoggingCategory>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>
#include <sys/resource.h>

using namespace vantrel;
using vantrel::bench::row;
using vantrel::test::FtpDaemon;

namespace {

constexpr qint64 largeSize = qint64{1024} * 1024 * 1024;
constexpr int smallFiles = 2000;
constexpr int smallSize = 10 * 1024;
constexpr int limit = 300'000; // milliseconds

struct Cost
{
    double seconds = 1e9;
    double processor = 1e9; // seconds, of the client alone
};

double processorTime(int who)
{
    rusage usage{};
    ::getrusage(who, &usage);
    const auto seconds = [](const timeval& time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

Cost measured(int who, const std::function<bool()>& work)
{
    QElapsedTimer clock;
    clock.start();
    const double before = processorTime(who);
    if (!work())
        qFatal("a transfer failed");
    return {double(clock.nsecsElapsed()) / 1e9, processorTime(who) - before};
}

/// The better of a few, in turns, so that both meet the same machine.
void compare(const std::function<bool()>& ours, const std::function<bool()>& theirs, Cost& our, Cost& their)
{
    const auto keep = [](Cost& best, const Cost& one) {
        best = {std::min(best.seconds, one.seconds), std::min(best.processor, one.processor)};
    };
    for (int i = 0; i < 3; ++i) {
        keep(our, measured(RUSAGE_SELF, ours));
        keep(their, measured(RUSAGE_CHILDREN, theirs));
    }
}

bool runs(const QString& program, const QStringList& arguments)
{
    const int result = QProcess::execute(program, arguments);
    if (result != 0)
        qWarning("%s ended with %d", qPrintable(program), result);
    return result == 0;
}

bool fill(const QString& path, qint64 size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray block(int(std::min<qint64>(size, 1 << 20)), 'x');
    for (qint64 left = size; left > 0; left -= block.size())
        file.write(block);
    return true;
}

class Peer
{
public:
    Peer()
    {
        if (!m_server.isAvailable() || !m_server.start())
            qFatal("pure-ftpd is not there: ./test unpacks it, and it wants root");
        m_client.setCredentials({QStringLiteral("opsadmin"), QStringLiteral("tnempius")});
        m_client.connectToServer(QStringLiteral("127.0.0.1"), m_server.port());
        if (!QTest::qWaitFor([&] { return m_client.isServerConnected() && !m_client.isLoading(); }, 10000))
            qFatal("the server does not answer");
    }
    QString folder() const { return m_server.folder(); }
    QString url(const QString& path) const
    {
        return QStringLiteral("ftp://127.0.0.1:%1/%2").arg(m_server.port()).arg(path);
    }
    QString local(const QString& name) const { return m_folder.filePath(name); }

    bool download(const QString& name)
    {
        QFile sink(local(name));
        QSignalSpy done(&m_client, &FtpClient::readFinished);
        return sink.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
               m_client.read(QLatin1Char('/') + name, &sink, 0) &&
               QTest::qWaitFor([&] { return !done.isEmpty(); }, limit) && done.first().at(1).toBool();
    }
    bool upload(const QString& name)
    {
        QFile source(local(name));
        QSignalSpy done(&m_client, &FtpClient::writeFinished);
        return source.open(QIODevice::ReadOnly) && m_client.write(QLatin1Char('/') + name, &source, 0) &&
               QTest::qWaitFor([&] { return !done.isEmpty(); }, limit) && done.first().at(1).toBool();
    }
    /// A whole folder as a window would fetch it: a listing, then each file.
    bool downloadAll(const QString& name)
    {
        QList<ClientFileSystemInfo> entries;
        std::unique_ptr<QFile> sink;
        bool isSound = true;
        QEventLoop loop; // waiting for a condition sleeps between two looks
        const auto next = [&] {
            while (!entries.isEmpty() && entries.last().type != ClientFileSystemType::File)
                entries.removeLast();
            if (entries.isEmpty())
                return loop.quit();
            const ClientFileSystemInfo entry = entries.takeLast();
            sink = std::make_unique<QFile>(local(entry.name));
            isSound = sink->open(QIODevice::WriteOnly) && m_client.read(entry.path, sink.get(), 0) && isSound;
            if (!isSound)
                loop.quit();
        };
        QObject context;
        QObject::connect(&m_client, &FtpClient::listFinished, &context,
                         [&](const QString&, const auto& result, bool succeeded) {
                             entries = result;
                             isSound = succeeded;
                             next();
                         });
        QObject::connect(&m_client, &FtpClient::readFinished, &context, [&](const QString&, bool succeeded) {
            isSound = succeeded && isSound;
            next();
        });
        QTimer::singleShot(limit, &loop, [&] {
            isSound = false;
            loop.quit();
        });
        if (!m_client.list(QLatin1Char('/') + name))
            return false;
        loop.exec();
        return isSound;
    }

private:
    FtpDaemon m_server{FtpDaemon::Make::Pure};
    QTemporaryDir m_folder;
    FtpClient m_client;
};

void large(Peer& peer)
{
    const QString name = QStringLiteral("large.mov");
    const QStringList curl{QStringLiteral("-s"), QStringLiteral("-u"), QStringLiteral("opsadmin:tnempius")};
    fill(peer.folder() + QLatin1Char('/') + name, largeSize);
    Cost our, their;
    compare([&] { return peer.download(name); },
            [&] {
                return runs(QStringLiteral("curl"),
                            curl + QStringList{QStringLiteral("-o"), peer.local(QStringLiteral("curl.mov")),
                                               peer.url(name)});
            },
            our, their);
    row("ftp/download-1GiB", "curl", our.seconds, their.seconds, "s", 1);
    row("ftp/download-1GiB-processor", "curl", our.processor, their.processor, "s", 1);
    QFile::remove(peer.folder() + QLatin1Char('/') + name);
    QFile::remove(peer.local(QStringLiteral("curl.mov")));
    our = their = {};
    compare([&] { return peer.upload(name); },
            [&] {
                return runs(QStringLiteral("curl"),
                            curl + QStringList{QStringLiteral("-T"), peer.local(name), peer.url(name)});
            },
            our, their);
    row("ftp/upload-1GiB", "curl", our.seconds, their.seconds, "s", 1);
    row("ftp/upload-1GiB-processor", "curl", our.processor, their.processor, "s", 1);
    QFile::remove(peer.folder() + QLatin1Char('/') + name);
    QFile::remove(peer.local(name));
}

void many(Peer& peer)
{
    QDir(peer.folder()).mkpath(QStringLiteral("many"));
    for (int i = 0; i < smallFiles; ++i)
        fill(QStringLiteral("%1/many/%2.png").arg(peer.folder()).arg(i), smallSize);
    Cost our, their;
    int round = 0;
    compare([&] { return peer.downloadAll(QStringLiteral("many")); },
            [&] {
                const QString target = peer.local(QStringLiteral("lftp%1").arg(++round));
                return runs(QStringLiteral("lftp"),
                            {QStringLiteral("-u"), QStringLiteral("opsadmin,tnempius"), QStringLiteral("-e"),
                             QStringLiteral("mirror /many %1; bye").arg(target), peer.url(QString())});
            },
            our, their);
    row("ftp/2000-small-files", "lftp", our.seconds, their.seconds, "s", 1);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    Peer peer;
    large(peer);
    many(peer);
    return 0;
}

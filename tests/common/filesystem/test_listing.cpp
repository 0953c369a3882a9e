#include "common/filesystem/models/filesmodel.h"
#include "common/filesystem/schedule/clientfactory.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "tests/common/filesystem/scriptedftp.h"
#include "tests/support/testmain.h"
#include "tests/support/threadwork.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <time.h>

namespace vantrel::test {

namespace {

constexpr int names = 50'000;
constexpr double longestTurn = 32 * slowness; // milliseconds: a frame, and another for a slow machine

QByteArray listingOf(int count)
{
    QByteArray lines;
    for (int i = 0; i < count; ++i)
        lines += "-rw-r--r-- 1 media media " + QByteArray::number(1000 + i) + " Jan 10 2020 Shot " +
                 QByteArray::number((i * 7919) % count) +
                 (i % 10 == 0 ? " notes.txt\r\n" : " take one.mov\r\n");
    return lines;
}

/// A server on a thread of its own, which costs the test's nothing.
class FarServer : public QThread
{
public:
    explicit FarServer(QByteArray content)
        : m_content(std::move(content))
    {
        start();
        m_isUp.acquire();
    }
    ~FarServer() override
    {
        quit();
        wait();
    }
    quint16 port() const { return m_port; }

protected:
    void run() override
    {
        ScriptedFtp server;
        server.content = m_content;
        m_port = server.port();
        m_isUp.release();
        exec();
    }

private:
    QByteArray m_content;
    quint16 m_port = 0;
    QSemaphore m_isUp;
};

/// What other threads have this one do.
class CallCounter : public QObject
{
public:
    CallCounter() { qApp->installEventFilter(this); }
    int calls = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        calls += event->type() == QEvent::MetaCall ? 1 : 0;
        return false;
    }
};

/// The most that this thread works in one turn of its event loop. Its own time: other programs do not count.
class TurnWatch
{
public:
    TurnWatch()
    {
        QObject::connect(&m_beat, &QTimer::timeout, &m_beat, [this] {
            const double now = threadWorkMs();
            longest = std::max(longest, now - m_before);
            m_before = now;
        });
        m_beat.start(0);
    }
    double longest = 0; // milliseconds

private:
    QTimer m_beat;
    double m_before = threadWorkMs();
};

} // namespace

class TestListing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A folder of fifty thousand names does not hold up the window.
    void manyNames()
    {
        FarServer far(listingOf(names));
        ClientFactory clients;
        ServerFileSystem server(QUrl(QStringLiteral("ftp://127.0.0.1:%1").arg(far.port())), &clients);
        QVERIFY(server.connectToServer());
        QTRY_VERIFY(server.isReady() && !server.isLoading());
        FilesModel model(&server);
        for (const char* what : {"first", "again"}) {
            TurnWatch watch;
            const CallCounter counter;
            QElapsedTimer clock;
            qint64 told = 0;
            qint64 shown = 0;
            const auto onTold =
                connect(&server, &FileSystem::directoryChanged, &server, [&] { told = clock.elapsed(); });
            const auto onShown =
                connect(&model, &QAbstractItemModel::modelReset, &model, [&] { shown = clock.elapsed(); });
            clock.start();
            model.setDirectoryPath(QString::fromLatin1(what[0] == 'f' ? "/many/" : "/more/"));
            QTRY_COMPARE_WITH_TIMEOUT(model.count(), names * 9 / 10, 20000);
            qInfo("%s: the listing after %lld ms, its rows after %lld ms, longest turn %.1f ms", what,
                  static_cast<long long>(told), static_cast<long long>(shown), watch.longest);
            disconnect(onTold);
            disconnect(onShown);
            QVERIFY2(counter.calls < names / 100, qPrintable(QString::number(counter.calls)));
            QVERIFY2(watch.longest < longestTurn, qPrintable(QString::number(watch.longest)));
        }
    }
};

HALCYRA_TEST(TestListing)

} // namespace vantrel::test

#include "test_listing.moc"

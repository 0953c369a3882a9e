#include "common/session/link/connectionhandler.h"
#include "tests/support/testmain.h"
#include "tests/tarn/net/scriptedserver.h"
#include "tests/tarn/net/silentport.h"

#include <QDeadlineTimer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

namespace vantrel::test {

namespace {

const QString loopback = QStringLiteral("127.0.0.1");

/// Writes down every signal of a handler in order: "connecting 127.0.0.1".
class Recorder
{
public:
    explicit Recorder(ConnectionHandler* handler)
    {
        const auto note = [this](const char* name) {
            return [this, name](const QString& address) {
                lines << QStringLiteral("%1 %2").arg(QLatin1String(name), address);
            };
        };
        QObject::connect(handler, &ConnectionHandler::connectionAddr, handler, note("addr"));
        QObject::connect(handler, &ConnectionHandler::connecting, handler, note("connecting"));
        QObject::connect(handler, &ConnectionHandler::disconnected, handler, note("disconnected"));
        QObject::connect(handler, &ConnectionHandler::connected, handler,
                         [this] { lines << QStringLiteral("connected"); });
        QObject::connect(handler, &ConnectionHandler::reconnecting, handler,
                         [this](int time) { lines << QStringLiteral("reconnecting %1").arg(time); });
        QObject::connect(handler, &ConnectionHandler::attemptFailed, handler,
                         [this](const QString& address, const QString& reason, const QString& before) {
                             failures.append({address, reason, before});
                         });
    }
    QStringList lines;
    QList<QStringList> failures; // the server asked for, the reason, the server that is asked again
};

/// A running handler that is always brought to its end.
struct Running
{
    explicit Running(quint16 port)
        : handler(port)
        , recorder(&handler)
    {
        // Whoever hears of something may ask back, on the thread that tells it.
        const auto askBack = [this] { (void)handler.getConnectedHost(); };
        const auto tells = [&](auto signal) {
            QObject::connect(&handler, signal, &handler, askBack, Qt::DirectConnection);
        };
        tells(&ConnectionHandler::connectionAddr);
        tells(&ConnectionHandler::connecting);
        tells(&ConnectionHandler::connected);
        tells(&ConnectionHandler::disconnected);
        tells(&ConnectionHandler::reconnecting);
        tells(&ConnectionHandler::attemptFailed);
        handler.start();
    }
    ~Running() { isEnded = handler.shutDown(5000); }
    ConnectionHandler handler;
    Recorder recorder;
    bool isEnded = false;
};

const QStringList firstConnection = {QStringLiteral("connecting 127.0.0.1"), QStringLiteral("addr 127.0.0.1"),
                                     QStringLiteral("connected")};

} // namespace

class TestConnectionHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void connects()
    {
        ScriptedServer server;
        Running running(server.port());
        running.handler.connect(loopback);
        QTRY_COMPARE(running.recorder.lines, firstConnection);
        QCOMPARE(running.handler.getConnectedHost(), loopback);
        QCOMPARE(running.handler.getConnectedAddress().to_string(), std::string("127.0.0.1"));
        QTRY_COMPARE(int(server.received.size()), 1);
        QCOMPARE(server.received[0][0].op, PatchOpType::Get);
        QVERIFY(server.received[0][0].path.empty());
    }

    void hearsNothingFromASilentHost()
    {
        ScriptedServer server;
        Running running(server.port());
        QSignalSpy patches(&running.handler, &ConnectionHandler::patchAvailable);
        running.handler.connect(loopback);
        QTRY_COMPARE(server.connections, 1);
        QTRY_COMPARE(running.recorder.lines, firstConnection);
        Patch patch;
        QVERIFY(!running.handler.recvPatch(patch));
        running.handler.disconnect();
        QTRY_COMPARE(running.recorder.lines.mid(3),
                     QStringList({QStringLiteral("addr "), QStringLiteral("disconnected ")}));
        QVERIFY(running.handler.getConnectedHost().isEmpty());
        QCOMPARE(patches.count(), 0);
    }

    void neverRetriesARefusal()
    {
        quint16 port = 0;
        {
            const ScriptedServer server;
            port = server.port();
        }
        Running running(port);
        running.handler.connect(loopback);
        QTRY_COMPARE(running.recorder.lines, QStringList({QStringLiteral("connecting 127.0.0.1"),
                                                          QStringLiteral("disconnected 127.0.0.1")}));
        QVERIFY(running.handler.getConnectedHost().isEmpty());
    }

    void reportsAnUnknownName()
    {
        Running running(1);
        running.handler.connect(QStringLiteral("no-such-host.invalid"));
        QTRY_COMPARE_WITH_TIMEOUT(running.recorder.lines,
                                  QStringList({QStringLiteral("disconnected no-such-host.invalid")}), 20000);
    }

    void comesBackAfterALoss_data()
    {
        QTest::addColumn<QByteArray>("lastBytes");
        QTest::newRow("the server closes") << QByteArray();
        QTest::newRow("half a frame") << QByteArray("\0\0\0\x20[{\"op\"", 11);
        QTest::newRow("a frame that is no patch") << QByteArray("\0\0\0\2{}", 6);
        QTest::newRow("a frame above the limit") << QByteArray("\x7f\xff\xff\xff", 4);
    }
    void comesBackAfterALoss()
    {
        QFETCH(QByteArray, lastBytes);
        ScriptedServer server;
        Running running(server.port());
        QSignalSpy patches(&running.handler, &ConnectionHandler::patchAvailable);
        running.handler.connect(loopback);
        QTRY_COMPARE(int(server.received.size()), 1);
        server.socket->write(lastBytes);
        server.socket->disconnectFromHost();
        QTRY_COMPARE(running.recorder.lines.mid(3),
                     QStringList({QStringLiteral("disconnected 127.0.0.1"), QStringLiteral("addr 127.0.0.1"),
                                  QStringLiteral("reconnecting 2000")}));
        QVERIFY(running.handler.getConnectedHost().isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(server.connections, 2, 10000);
        QTRY_COMPARE(running.recorder.lines.mid(6),
                     QStringList({QStringLiteral("addr 127.0.0.1"), QStringLiteral("connected")}));
        QCOMPARE(patches.count(), 0);
    }

    void givesUpReconnectingWhenTold()
    {
        ScriptedServer server;
        Running running(server.port());
        running.handler.connect(loopback);
        QTRY_COMPARE(int(server.received.size()), 1);
        server.socket->disconnectFromHost();
        QTRY_VERIFY(running.recorder.lines.contains(QStringLiteral("reconnecting 2000")));
        running.handler.disconnect();
        QTRY_COMPARE(running.recorder.lines.last(), QStringLiteral("addr "));
        // A timer that fires now finds nothing to do.
        running.handler.handleReconnectTimeout();
        running.handler.connect(loopback);
        QTRY_COMPARE(server.connections, 2);
        QTRY_COMPARE(running.handler.getConnectedHost(), loopback);
    }

    /// What the thread said before, and the main thread hears after, is not the last word.
    void aDisconnectIsTheLastWord()
    {
        ScriptedServer server;
        Running running(server.port());
        running.handler.connect(loopback);
        QTRY_COMPARE(int(server.received.size()), 1);
        QTRY_COMPARE(running.handler.getConnectedHost(), loopback);
        server.socket->abort();
        const QDeadlineTimer limit(5000);
        while (!running.handler.getConnectedHost().isEmpty() && !limit.hasExpired())
            QThread::yieldCurrentThread(); // without the event loop: its signals wait
        running.handler.disconnect();
        QTRY_VERIFY(running.recorder.lines.contains(QStringLiteral("reconnecting 2000")));
        QTRY_COMPARE(running.recorder.lines.last(), QStringLiteral("addr "));
    }

    void leavesAConnectThatHangs()
    {
        const SilentPort silent;
        Running running(silent.port());
        running.handler.connect(loopback);
        QTRY_COMPARE(running.recorder.lines, QStringList({QStringLiteral("connecting 127.0.0.1")}));
        running.handler.disconnect();
        QTRY_COMPARE(running.recorder.lines.mid(1), QStringList({QStringLiteral("addr ")}));
        QVERIFY(running.handler.shutDown(3000));
        QCOMPARE(running.recorder.lines.size(), 2);
    }

    void endsWhileAConnectHangs()
    {
        const SilentPort silent;
        Running running(silent.port());
        running.handler.connect(loopback);
        QTRY_COMPARE(running.recorder.lines, QStringList({QStringLiteral("connecting 127.0.0.1")}));
        QVERIFY(running.handler.shutDown(3000));
    }

    /// Neither a wrong name nor one that does not answer makes it forget the server that was lost, or left
    /// for it.
    void comesBackToTheServerBefore_data()
    {
        QTest::addColumn<bool>("isLost");
        QTest::addColumn<QString>("other");
        QTest::addColumn<bool>("byHand");
        const QString unknown = QStringLiteral("no-such-host.invalid");
        QTest::newRow("lost, an unknown name") << true << unknown << false;
        QTest::newRow("changed to an unknown name") << false << unknown << false;
        QTest::newRow("changed to one that refuses") << false << QStringLiteral("127.0.0.9") << false;
        QTest::newRow("changed, and given up") << false << QStringLiteral("127.0.0.9") << true;
    }
    void comesBackToTheServerBefore()
    {
        QFETCH(bool, isLost);
        QFETCH(QString, other);
        QFETCH(bool, byHand);
        ScriptedServer server;
        Running running(server.port());
        const QList<QStringList>& failures = running.recorder.failures;
        running.handler.connect(loopback);
        QTRY_COMPARE(running.recorder.lines, firstConnection);
        if (isLost) {
            server.socket->disconnectFromHost();
            QTRY_VERIFY(running.recorder.lines.contains(QStringLiteral("reconnecting 2000")));
        }
        running.handler.connect(other);
        if (byHand)
            running.handler.goBack();
        else
            QTRY_COMPARE_WITH_TIMEOUT(failures.size(), 1, 20000);
        if (!byHand) {
            QCOMPARE(failures[0][0], other);
            QVERIFY(failures[0][1].endsWith(u'.'));
            QCOMPARE(failures[0][2], loopback);
        }
        QTRY_COMPARE_WITH_TIMEOUT(server.connections, 2, 10000);
        QTRY_COMPARE(running.handler.getConnectedHost(), loopback);
    }

    void takesTheLastOfTwoHosts()
    {
        ScriptedServer server;
        Running running(server.port());
        running.handler.connect(QStringLiteral("127.0.0.2"));
        running.handler.connect(loopback);
        QTRY_COMPARE(running.handler.getConnectedHost(), loopback);
        QTRY_VERIFY(running.recorder.lines.contains(QStringLiteral("connected")));
        QVERIFY(!running.recorder.lines.contains(QStringLiteral("addr 127.0.0.2")));
    }

    void changesTheHost()
    {
        ScriptedServer server;
        Running running(server.port());
        running.handler.connect(loopback);
        QTRY_COMPARE(running.recorder.lines, firstConnection);
        const QString other = QStringLiteral("127.1"); // the same address by a name that needs no hosts file
        running.handler.connect(other);
        QTRY_COMPARE(running.recorder.lines.mid(3),
                     QStringList({QStringLiteral("disconnected 127.1"), QStringLiteral("addr 127.1"),
                                  QStringLiteral("connected")}));
        QCOMPARE(running.handler.getConnectedHost(), other);
        QCOMPARE(running.handler.linkCount(), 2);
    }
};

HALCYRA_TEST(TestConnectionHandler)

} // namespace vantrel::test

#include "test_connectionhandler.moc"

#include "tarn/net/jsonclient.h"
#include "tarn/net/network.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"
#include "tests/tarn/net/scriptedserver.h"
#include "tests/tarn/net/silentport.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <thread>

using namespace vantrel;
using vantrel::test::LogCapture;
using vantrel::test::ScriptedServer;
using vantrel::test::SilentPort;

namespace {

const auto loopback = boost::asio::ip::make_address("127.0.0.1");
constexpr int patience = 5000; // milliseconds, for what should be immediate

/// A connection thread as the application has one: connect, run, end.
class LinkThread
{
public:
    LinkThread(JsonClient& client, quint16 port, unsigned int timeoutMs = 30000)
        : m_client(client)
        , m_thread([this, port, timeoutMs] {
            isConnected = m_client.connect(loopback, port, timeoutMs, &error);
            connectReturned = true;
            if (isConnected)
                m_client.run();
            runReturned = true;
        })
    {
    }
    ~LinkThread()
    {
        m_client.disconnect();
        m_thread.join();
    }

    std::atomic<bool> isConnected{false};
    std::atomic<bool> connectReturned{false};
    std::atomic<bool> runReturned{false};
    int error = 0; // once connect() has returned

private:
    JsonClient& m_client;
    std::thread m_thread;
};

Patch numbered(int number)
{
    Patch patch;
    patch.append({PatchOpType::Replace, Path{"n"}, {}, Json(number)});
    return patch;
}

QByteArray framed(const Patch& patch)
{
    return QByteArray::fromStdString(linkframe::encode(patch));
}

} // namespace

class TestJsonClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsRefusal();
    void givesUpInTime();
    void disconnectEndsConnecting();
    void disconnectEndsRunning_data();
    void disconnectEndsRunning();
    void carriesPatchesBothWays();
    void foldsSignsOfLife();
    void callsBackOnItsOwnThread();
    void cutsLargePatches();
    void readsOnAfterAPause();
    void endsOnMisbehaviour_data();
    void endsOnMisbehaviour();
    void startsAfreshOnReconnect();
    void dropsWithoutLink();
    void staysQuietWhenTold();
    void neverBlocksOnADeafServer();
    void survivesDisconnectAtAnyMoment();
    void resolvesNames_data();
    void resolvesNames();
};

void TestJsonClient::reportsRefusal()
{
    const LogCapture log;
    quint16 port = 0;
    {
        const ScriptedServer gone;
        port = gone.port();
    }
    JsonClient client;
    int error = 0;
    QVERIFY(!client.connect(loopback, port, 30000, &error));
    QCOMPARE(error, 111);
    QVERIFY(!client.connect(loopback, port, 0, nullptr));
    client.run(); // returns at once
    Patch patch;
    QVERIFY(!client.recvPatch(patch));
    QCOMPARE(log.lines().size(), 2);
}

void TestJsonClient::givesUpInTime()
{
    const LogCapture log;
    const SilentPort silent;
    JsonClient client;
    int error = 0;
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!client.connect(loopback, silent.port(), 300, &error));
    QCOMPARE(error, ETIMEDOUT);
    QVERIFY(clock.elapsed() >= 290 && clock.elapsed() < patience);
}

void TestJsonClient::disconnectEndsConnecting()
{
    const LogCapture log;
    const SilentPort silent;
    JsonClient client;
    LinkThread link(client, silent.port());
    // The connect may not have begun; then a later disconnect is the one that ends it.
    QTRY_VERIFY_WITH_TIMEOUT((client.disconnect(), link.runReturned.load()), patience);
    QVERIFY(!link.isConnected);
    QCOMPARE(link.error, ECANCELED);
    QCOMPARE(log.lines(), QStringList()); // asked for is no failure
}

void TestJsonClient::disconnectEndsRunning_data()
{
    QTest::addColumn<QByteArray>("greeting");
    QTest::newRow("a server that says nothing") << QByteArray();
    QTest::newRow("half a frame and stop") << QByteArray("\0\0\1\0[{\"op\":", 12);
}

void TestJsonClient::disconnectEndsRunning()
{
    QFETCH(QByteArray, greeting);
    const LogCapture log;
    ScriptedServer server;
    server.greeting = greeting;
    JsonClient client;
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(server.connections == 1 && link.isConnected, patience);
    QVERIFY(!link.runReturned);
    client.disconnect();
    QTRY_VERIFY_WITH_TIMEOUT(link.runReturned, patience);
    QTRY_COMPARE_WITH_TIMEOUT(server.socket->state(), QAbstractSocket::UnconnectedState, patience);
    QCOMPARE(log.lines(), QStringList()); // asked for is no failure
}

void TestJsonClient::carriesPatchesBothWays()
{
    ScriptedServer server;
    JsonClient client;
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(server.connections == 1 && link.isConnected, patience);
    for (int i = 0; i < 1000; ++i) {
        client.sendPatch(numbered(i));
        server.socket->write(framed(numbered(-i)));
    }
    int next = 0;
    Patch patch;
    const auto drain = [&] {
        for (; client.recvPatch(patch); ++next) {
            if (patch.size() != 1 || patch[0].value.asInt(1) != -next)
                return false;
        }
        return next == 1000;
    };
    QTRY_VERIFY_WITH_TIMEOUT(drain() && server.received.size() == 1000, patience);
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(server.received[static_cast<std::size_t>(i)][0].value.asInt(-1), i);
}

/// An empty frame is heard of, and many of them take no more room than one.
void TestJsonClient::foldsSignsOfLife()
{
    ScriptedServer server;
    for (int i = 0; i < 50; ++i)
        server.greeting += framed(i == 20 ? numbered(7) : Patch());
    server.closesAfterGreeting = true;
    const LogCapture log;
    JsonClient client;
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(link.runReturned, patience);
    QList<std::size_t> sizes;
    for (Patch patch; client.recvPatch(patch);)
        sizes.append(patch.size());
    QCOMPARE(sizes, QList<std::size_t>({0, 1}));
}

void TestJsonClient::callsBackOnItsOwnThread()
{
    struct Called
    {
        std::atomic<int> count{0};
        std::atomic<bool> isElsewhere{true};
        std::thread::id main = std::this_thread::get_id();
    } called;
    ScriptedServer server;
    server.greeting = framed(numbered(1)) + framed(numbered(2));
    JsonClient client;
    client.setRecvCallback(
        [](JsonClient*, void* user) {
            auto* self = static_cast<Called*>(user);
            self->isElsewhere = self->isElsewhere && std::this_thread::get_id() != self->main;
            ++self->count;
        },
        &called);
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(called.count > 0, patience);
    QVERIFY(called.isElsewhere);
}

void TestJsonClient::cutsLargePatches()
{
    Patch large;
    for (int i = 0; i < 1300; ++i)
        large.append(numbered(i)[0]);
    ScriptedServer server;
    server.greeting = framed(large);
    JsonClient client;
    LinkThread link(client, server.port());
    QList<std::size_t> sizes;
    std::int64_t next = 0;
    const auto drain = [&] {
        for (Patch patch; client.recvPatch(patch);) {
            sizes.append(patch.size());
            for (const PatchOp& op : patch)
                next += op.value.asInt() == next ? 1 : 1'000'000;
        }
        return next >= 1300;
    };
    QTRY_VERIFY_WITH_TIMEOUT(drain(), patience);
    QCOMPARE(next, 1300);
    QCOMPARE(sizes, QList<std::size_t>({512, 512, 276}));
}

/// More than fits under the limit and into one read: the client pauses many times, and misses nothing.
void TestJsonClient::readsOnAfterAPause()
{
    constexpr int count = 100;
    ScriptedServer server;
    const QByteArray filling(64 * 1024, 'x');
    for (int i = 0; i < count; ++i) {
        Patch patch = numbered(i);
        patch.append({PatchOpType::Replace, Path{"filling"}, {}, Json(filling.toStdString())});
        server.greeting += framed(patch);
    }
    JsonClient client(4);
    LinkThread link(client, server.port());
    int next = 0;
    const auto drain = [&] {
        for (Patch patch; client.recvPatch(patch); ++next) {
            if (patch[0].value != Json(next))
                return true; // and the count stays behind
        }
        return next == count;
    };
    QTRY_VERIFY_WITH_TIMEOUT(drain(), patience);
    QCOMPARE(next, count);
}

void TestJsonClient::endsOnMisbehaviour_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<QString>("reason");
    QTest::newRow("closes at once") << QByteArray() << true << QStringLiteral("the server closed it");
    QTest::newRow("half a frame and gone")
        << QByteArray("\0\0\1\0[{\"op\":", 12) << true << QStringLiteral("the server closed it");
    QTest::newRow("a lying length") << QByteArray("\xff\xff\xff\xff[]", 6) << false
                                    << QStringLiteral("too large");
    QTest::newRow("bad UTF-8") << QByteArray("\0\0\0\4[\"\xff\"]", 8) << false << QString();
    QTest::newRow("an unknown operation")
        << QByteArray("\0\0\0\x17[{\"op\":\"x\",\"path\":\"/a\"}]", 27) << false << QString();
}

void TestJsonClient::endsOnMisbehaviour()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, closes);
    QFETCH(QString, reason);
    const LogCapture log;
    ScriptedServer server;
    server.greeting = framed(numbered(7)) + bytes;
    server.closesAfterGreeting = closes;
    JsonClient client;
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(link.runReturned, patience);
    Patch patch;
    QVERIFY(client.recvPatch(patch)); // what came whole stays
    QCOMPARE(patch[0].value.asInt(), 7);
    QVERIFY(!client.recvPatch(patch));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines()[0].startsWith(QStringLiteral("net: The link ended: ")) &&
                 log.lines()[0].contains(reason),
             qPrintable(log.lines()[0]));
}

void TestJsonClient::startsAfreshOnReconnect()
{
    ScriptedServer server;
    server.greeting = framed(numbered(1));
    JsonClient client;
    {
        LinkThread link(client, server.port());
        QTRY_VERIFY_WITH_TIMEOUT(server.connections == 1 && link.isConnected, patience);
        client.disconnect();
        QTRY_VERIFY_WITH_TIMEOUT(link.runReturned, patience);
    }
    client.sendPatch(numbered(100)); // nobody is there
    server.greeting = framed(numbered(2)) + framed(numbered(3));
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(server.connections == 2 && link.isConnected, patience);
    client.sendPatch(PatchOp::get(""));
    QTRY_COMPARE_WITH_TIMEOUT(server.received.size(), std::size_t{1}, patience);
    QCOMPARE(server.received[0][0].op, PatchOpType::Get);
    QList<std::int64_t> values;
    const auto drain = [&] {
        for (Patch patch; client.recvPatch(patch);)
            values.append(patch[0].value.asInt());
        return values.size() >= 2;
    };
    QTRY_VERIFY_WITH_TIMEOUT(drain(), patience);
    QCOMPARE(values, QList<std::int64_t>({2, 3}));
}

void TestJsonClient::dropsWithoutLink()
{
    JsonClient client;
    client.sendPatch(numbered(1));
    client.disconnect();
    client.run();
    Patch patch;
    QVERIFY(!client.recvPatch(patch));
}

void TestJsonClient::staysQuietWhenTold()
{
    const LogCapture log;
    ScriptedServer server;
    server.closesAfterGreeting = true;
    JsonClient client;
    client.setVerbose(false);
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(link.runReturned, patience);
    QCOMPARE(log.lines(), QStringList());
}

void TestJsonClient::neverBlocksOnADeafServer()
{
    const LogCapture log;
    ScriptedServer server;
    JsonClient client;
    LinkThread link(client, server.port());
    QTRY_VERIFY_WITH_TIMEOUT(server.connections == 1 && link.isConnected, patience);
    server.socket->setReadBufferSize(1024); // and nothing of this thread's loop runs below
    Patch large;
    large.append({PatchOpType::Replace, Path{"n"}, {}, Json(std::string(16 * 1024 * 1024, 'x'))});
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 12; ++i)
        client.sendPatch(large);
    QVERIFY(clock.elapsed() < 1000);
    // What cannot be sent is not kept for ever: the link ends.
    QElapsedTimer waiting;
    waiting.start();
    while (!link.runReturned && waiting.elapsed() < 20000)
        std::this_thread::yield();
    QVERIFY(link.runReturned);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("net: The link ended: the server does not read")));
}

void TestJsonClient::survivesDisconnectAtAnyMoment()
{
    const LogCapture log;
    ScriptedServer server;
    server.greeting = framed(numbered(1));
    JsonClient client;
    for (int round = 0; round < 100; ++round) {
        LinkThread link(client, server.port());
        for (int i = 0; i < round * 20; ++i)
            client.sendPatch(numbered(i));
        Patch patch;
        while (round % 3 == 0 && !client.recvPatch(patch) && !link.connectReturned)
            QCoreApplication::processEvents();
        QElapsedTimer clock;
        clock.start();
        while (!link.runReturned && clock.elapsed() < patience) {
            client.disconnect();
            QCoreApplication::processEvents();
        }
        QVERIFY(link.runReturned);
    }
}

void TestJsonClient::resolvesNames_data()
{
    QTest::addColumn<QByteArray>("host");
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("dotted") << QByteArray("127.0.0.7") << QByteArray("127.0.0.7");
    QTest::newRow("version six") << QByteArray("::1") << QByteArray("::1");
    QTest::newRow("version six, as in a URL") << QByteArray("[::1]") << QByteArray("::1");
    QTest::newRow("nothing") << QByteArray("") << QByteArray();
    QTest::newRow("a bracket") << QByteArray("[") << QByteArray();
    QTest::newRow("no name") << QByteArray("no such host.invalid") << QByteArray();
    QTest::newRow("too many dots") << QByteArray("127.0.0..1") << QByteArray();
}

void TestJsonClient::resolvesNames()
{
    QFETCH(QByteArray, host);
    QFETCH(QByteArray, address);
    const Ref<Network> network = makeRef<Network>();
    boost::asio::ip::address out;
    QCOMPARE(network->resolve(host.toStdString(), out), !address.isEmpty());
    if (!address.isEmpty())
        QCOMPARE(out, boost::asio::ip::make_address(address.toStdString()));
}

HALCYRA_TEST(TestJsonClient)
#include "test_jsonclient.moc"

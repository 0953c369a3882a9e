#include "ombra/rest/httpserver.h"
#include "tests/ombra/liveserver.h"
#include "tests/support/testmain.h"

#include <QHostAddress>
#include <QSysInfo>

#include <algorithm>
#include <memory>
#include <vector>

using namespace vantrel;
using ombra::HttpAnswer, ombra::HttpHandlers, ombra::HttpRequest, ombra::HttpServer, ombra::RequestGuard;
using namespace vantrel::ombra::test;

namespace {

const QByteArray library = R"({"collections":{"1":{"name":"one","slots":{}}},"playlists":{}})";

} // namespace

/// Who may come in and with what, and who is kept out or waited for no longer.
class HttpDoorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(m_live.mediaFolder()));
        QVERIFY(m_live.start());
    }

    void keepsWebPagesOut_data()
    {
        QTest::addColumn<QByteArray>("fields");
        QTest::addColumn<int>("status");
        const auto row = [](const char* name, const QByteArray& host, const QByteArray& rest, int status) {
            QTest::newRow(name) << "Host: " + host + "\r\n" + rest << status;
        };
        const QByteArray machine = QSysInfo::machineHostName().toUtf8();
        row("address", "127.0.0.1", "", 200);
        row("address and port", "192.168.0.7:80", "", 200);
        row("IPv6", "[::1]", "", 200);
        row("IPv6 and port", "[fe80::1]:8080", "", 200);
        row("the machine", machine.toUpper(), "", 200);
        row("the machine on its network", machine.split('.').first() + ".local:8080", "", 200);
        row("a given name", "stage-1.Example.org.", "", 200);
        row("its own page", "localhost:81", "Origin: http://LocalHost:81\r\n", 200);
        row("another name", "evil.example", "", 403);
        row("a name that begins alike", "localhost.evil.example", "", 403);
        row("an address in a name", "127.0.0.1.evil.example", "", 403);
        row("a name behind a port", "localhost:80@evil.example", "", 403);
        row("half an address", "[::1", "", 403);
        row("two hosts", "localhost\r\nHost: evil.example", "", 403);
        row("a page elsewhere", "localhost", "Origin: http://evil.example\r\n", 403);
        row("a page on another port", "localhost", "Origin: http://localhost:3000\r\n", 403);
        row("a page of a file", "localhost", "Origin: null\r\n", 403);
        row("two origins", "localhost", "Origin: http://localhost\r\nOrigin: http://evil.example\r\n", 403);
        QTest::newRow("no host") << QByteArray() << 400;
    }

    /// Also from what stays open: the event stream and the WebSocket.
    void keepsWebPagesOut()
    {
        QFETCH(QByteArray, fields);
        QFETCH(int, status);
        const QByteArray upgrade =
            "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
            "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";
        const auto statusOf = [&](const QByteArray& request, const QByteArray& rest) {
            QTcpSocket socket;
            socket.connectToHost(QStringLiteral("127.0.0.1"), m_live.server().httpPort());
            const qsizetype space = request.indexOf(' ') + 1;
            socket.write(QByteArray(request).insert(space, "/api/brume/v1") + " HTTP/1.1\r\n" + fields +
                         rest);
            QByteArray answer;
            m_live.waitFor([&] { return (answer += socket.readAll()).contains("\r\n\r\n"); });
            return answer.mid(9, 3).toInt();
        };
        QCOMPARE(statusOf("GET /medialibrary", "\r\n"), status);
        QCOMPARE(statusOf("GET /sse", "\r\n"), status);
        QCOMPARE(statusOf("GET /events", upgrade + "\r\n"), status == 200 ? 101 : status);
        QCOMPARE(statusOf("POST /medialibrary", "Content-Type: application/json\r\nContent-Length: " +
                                                    QByteArray::number(library.size()) + "\r\n\r\n" +
                                                    library),
                 status);
    }

    void readsWhatSaysThatItIsJson_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<bool>("read");
        const QByteArray form("application/x-www-form-urlencoded");
        QTest::newRow("json") << QByteArray("/medialibrary") << QByteArray("Application/JSON ; charset=utf-8")
                              << true;
        QTest::newRow("text") << QByteArray("/medialibrary") << QByteArray("text/plain") << false;
        QTest::newRow("text that names json")
            << QByteArray("/medialibrary") << QByteArray("text/plain; application/json") << false;
        QTest::newRow("form") << QByteArray("/medialibrary") << form << false;
        QTest::newRow("nothing") << QByteArray("/playlists") << QByteArray() << false;
        QTest::newRow("show as form") << QByteArray("/show/current") << form << true;
        QTest::newRow("show as text") << QByteArray("/show/current") << QByteArray("text/plain") << false;
    }

    void readsWhatSaysThatItIsJson()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, type);
        QFETCH(bool, read);
        const QByteArray body = path == "/show/current" ? m_live.request("GET", path).body : library;
        const int status = m_live.request("POST", path, body, "Content-Type: " + type + "\r\n").status;
        QCOMPARE(status, read ? 200 : 415);
    }

    void refusesWhatIsNoRequest_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("status");
        QTest::newRow("garbage") << QByteArray("\x01\x02\x03\r\n\r\n") << QByteArray("400");
        QTest::newRow("long header") << "GET / HTTP/1.1\r\nX: " + QByteArray(40000, 'x') + "\r\n\r\n"
                                     << QByteArray("431");
        QTest::newRow("large body") << QByteArray("PATCH /api/brume/v1/medialibrary HTTP/1.1\r\n"
                                                  "Host: localhost\r\nContent-Length: 70000000\r\n\r\n[")
                                    << QByteArray("413");
        QTest::newRow("bad length") << QByteArray("GET / HTTP/1.1\r\nContent-Length: -1\r\n\r\n")
                                    << QByteArray("400");
    }

    void refusesWhatIsNoRequest()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, status);
        const QByteArray answer = m_live.exchange(bytes);
        QVERIFY2(answer.startsWith("HTTP/1.1 " + status), answer.constData());
        QCOMPARE(m_live.request("GET", "/system").status, 200);
    }

    /// What a HEAD tells of is not sent, whether it is there or not: the next answer follows at once.
    void sendsHeadersAlone()
    {
        QTcpSocket socket;
        socket.connectToHost(QStringLiteral("127.0.0.1"), m_live.server().httpPort());
        for (const QByteArray path : {"HEAD /api/brume/v1/medialibrary", "HEAD /api/brume/v1/sse",
                                      "HEAD /nothing", "GET /api/brume/v1/system"})
            socket.write(path + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
        QByteArray received;
        QVERIFY(m_live.waitFor([&] { return (received += socket.readAll()).endsWith("}"); }));
        const QList<QByteArray> heads = received.replace("\r\n\r\n", "|").split('|');
        QCOMPARE(heads.size(), 5);
        for (int i = 0; i < 4; ++i)
            QVERIFY2(heads[i].startsWith(QByteArray("HTTP/1.1 ") + (i == 0 || i == 3 ? "200"
                                                                    : i == 1         ? "405"
                                                                                     : "404")),
                     heads[i].constData());
        const QByteArray size = QByteArray::number(m_live.request("GET", "/medialibrary").body.size());
        QVERIFY2(heads[0].contains("Content-Length: " + size), heads[0].constData());
    }

    /// Headers that never end keep nobody out, and are not waited for.
    void endsHalfHeaders()
    {
        boost::asio::io_context io;
        HttpHandlers handlers{[](const HttpRequest&, const HttpAnswer& answer) { answer({.body = "{}"}); },
                              "/sse", "/events", "/show/current", RequestGuard({})};
        handlers.headerTime = std::chrono::milliseconds(1500);
        HttpServer server(io, handlers);
        std::string error;
        QVERIFY(server.listen(boost::asio::ip::address_v4::loopback(), 0, &error));
        const auto waitFor = [&](const std::function<bool()>& condition) {
            QElapsedTimer clock;
            for (clock.start(); clock.elapsed() < 10000 && !condition(); QCoreApplication::processEvents()) {
                io.restart();
                io.run_for(std::chrono::milliseconds(1));
            }
            return condition();
        };
        std::vector<std::unique_ptr<QTcpSocket>> slow;
        const auto left = [&] {
            return std::ranges::count_if(
                slow, [](const auto& socket) { return socket->state() == QAbstractSocket::ConnectedState; });
        };
        for (int i = 0; i < 600; ++i) {
            slow.push_back(std::make_unique<QTcpSocket>());
            slow.back()->connectToHost(QStringLiteral("127.0.0.1"), server.port());
            slow.back()->write("GET / HTTP/1.1\r\nHost: loc");
        }
        QTcpSocket good;
        good.connectToHost(QStringLiteral("127.0.0.1"), server.port());
        QByteArray answer;
        const auto asks = [&] {
            answer.clear();
            good.write("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n");
            return waitFor([&] { return (answer += good.readAll()).endsWith("{}"); });
        };
        QVERIFY(asks());
        QVERIFY(waitFor([&] { return left() <= 64; }));
        QVERIFY(waitFor([&] { return left() == 0; }));
        QVERIFY(asks()); // one that is kept between two requests has its time
    }

    /// A byte now and then wins no time.
    void aHeaderHasTenSeconds()
    {
        QTcpSocket slow;
        QElapsedTimer taken;
        slow.connectToHost(QStringLiteral("127.0.0.1"), m_live.server().httpPort());
        slow.write("GET / HTTP/1.1\r\nX: ");
        QVERIFY(m_live.waitFor([&] { return slow.bytesToWrite() == 0; }));
        taken.start();
        const auto isEnded = [&] {
            slow.write("x");
            return slow.state() == QAbstractSocket::UnconnectedState;
        };
        QVERIFY(!m_live.waitFor(isEnded, 9000));
        QVERIFY(m_live.waitFor(isEnded, 3000 * vantrel::test::slowness));
        QVERIFY2(taken.elapsed() > 9500, qPrintable(QString::number(taken.elapsed())));
    }

    void theFullestPeerGivesWay_data()
    {
        QTest::addColumn<int>("port");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("peers"); // each takes 32 places, all of them together every one
        QTest::newRow("links") << int(m_live.server().linkPort()) << QByteArray() << 2;
        QTest::newRow("previews") << int(m_live.server().previewPort()) << QByteArray() << 2;
        QTest::newRow("streams") << int(m_live.server().httpPort())
                                 << QByteArray("GET /api/brume/v1/sse HTTP/1.1\r\nHost: localhost\r\n\r\n")
                                 << 8;
    }

    /// A few silent peers that take every place keep nobody else out.
    void theFullestPeerGivesWay()
    {
        QFETCH(const int, port);
        QFETCH(const QByteArray, request);
        QFETCH(const int, peers);
        std::vector<std::unique_ptr<QTcpSocket>> sockets;
        const auto comes = [&](int peer) {
            sockets.push_back(std::make_unique<QTcpSocket>());
            QTcpSocket& socket = *sockets.back();
            socket.bind(QHostAddress(QStringLiteral("127.0.0.%1").arg(peer)));
            socket.connectToHost(QStringLiteral("127.0.0.1"), quint16(port));
            socket.write(request);
            return m_live.waitFor([&] {
                return socket.state() == QAbstractSocket::ConnectedState &&
                       (request.isEmpty() || socket.readAll().startsWith("HTTP/1.1 200 "));
            });
        };
        for (int i = 0; i < peers * 32; ++i)
            QVERIFY(comes(2 + i / 32));
        QVERIFY(comes(100));
        const auto isGone = [](const auto& socket) {
            return socket->state() == QAbstractSocket::UnconnectedState;
        };
        QVERIFY(m_live.waitFor([&] { return isGone(sockets.front()); }));
        QCOMPARE(std::ranges::count_if(sockets, isGone), 1);
    }

private:
    LiveServer m_live;
};

HALCYRA_TEST(HttpDoorTest)
#include "httpdoortest.moc"

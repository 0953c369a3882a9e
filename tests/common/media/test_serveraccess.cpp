#include "common/media/address/showntext.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/net/serveraccess.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QNetworkReply>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace vantrel::test {

namespace {

/// On a thread of its own: answers one request, and ends on demand when it has the head of an edit.
class DyingServer
{
public:
    DyingServer()
        : m_listener(m_io, {boost::asio::ip::address_v4::loopback(), 0})
        , m_thread([this] { serve(); })
    {
    }
    ~DyingServer()
    {
        m_mayDie = true;
        m_mayDie.notify_one();
        m_thread.join();
    }
    quint16 port() const { return m_listener.local_endpoint().port(); }
    bool hasEdit() const { return m_hasEdit; }
    /// Comes back when the client has closed its side, too.
    void die()
    {
        m_mayDie = true;
        m_mayDie.notify_one();
        m_isClosed.wait(false);
    }

private:
    void serve()
    {
        boost::system::error_code error;
        boost::asio::ip::tcp::socket socket(m_io);
        m_listener.accept(socket, error);
        std::string text;
        const auto head = boost::asio::dynamic_buffer(text);
        boost::asio::read_until(socket, head, "\r\n\r\n", error);
        const std::string_view answer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";
        boost::asio::write(socket, boost::asio::buffer(answer), error);
        text.clear();
        boost::asio::read_until(socket, head, "\r\n\r\n", error);
        m_listener.close(error);
        m_hasEdit = true;
        m_mayDie.wait(false);
        socket.shutdown(boost::asio::socket_base::shutdown_send, error);
        std::array<char, 256> rest{};
        while (!error)
            socket.read_some(boost::asio::buffer(rest), error);
        m_isClosed = true;
        m_isClosed.notify_one();
    }

    boost::asio::io_context m_io;
    boost::asio::ip::tcp::acceptor m_listener;
    std::atomic<bool> m_hasEdit{false};
    std::atomic<bool> m_mayDie{false};
    std::atomic<bool> m_isClosed{false};
    std::thread m_thread;
};

} // namespace

/// A server that would keep or lead the client where it must not go.
class TestServerAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boundsWhatAServerDoes_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("error");
        QTest::newRow("another host")
            << QByteArray("HTTP/1.1 302 Found\r\nLocation: http://127.0.0.2:1/x\r\nContent-Length: 0\r\n\r\n")
            << int(QNetworkReply::InsecureRedirectError);
        QTest::newRow("headers without end")
            << QByteArray("HTTP/1.1 200 OK\r\nX-A: ") << int(QNetworkReply::OperationCanceledError);
        QTest::newRow("well") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok")
                              << int(QNetworkReply::NoError);
    }
    void boundsWhatAServerDoes()
    {
        QFETCH(QByteArray, answer);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, this, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] {
                socket->readAll();
                socket->write(answer);
            });
            auto* drip = new QTimer(socket); // headers that go on
            connect(drip, &QTimer::timeout, socket, [socket] { socket->write("a"); });
            if (answer.endsWith("X-A: "))
                drip->start(20);
        });
        ServerAccess access;
        access.setHeaderTime(400);
        const std::unique_ptr<QNetworkReply> reply(
            access.get(QNetworkRequest(QStringLiteral("http://127.0.0.1:%1/x").arg(server.serverPort()))));
        QTRY_VERIFY(reply->isFinished());
        QTEST(int(reply->error()), "error");
    }

    /// A flood of headers ends with their time and fills nothing until then, of an edit's answer too.
    void givesUpHeadersWithoutEnd()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        qint64 sent = 0;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            const auto fill = [socket, &sent] {
                static const QByteArray line = "X-A: " + QByteArray(65536, 'a') + "\r\n";
                for (; socket->bytesToWrite() < 4 * line.size(); sent += line.size())
                    socket->write(line);
            };
            connect(socket, &QTcpSocket::readyRead, socket, [socket, fill] {
                socket->readAll();
                socket->write("HTTP/1.1 200 OK\r\n");
                fill();
            });
            connect(socket, &QTcpSocket::bytesWritten, socket, fill);
        });
        ServerAccess access;
        access.setHeaderTime(1500);
        const QUrl url(QStringLiteral("http://127.0.0.1:%1/x").arg(server.serverPort()));
        QNetworkRequest request(url);
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        for (const bool isEdit : {false, true}) {
            sent = 0;
            const std::unique_ptr<QNetworkReply> reply(
                isEdit ? access.sendCustomRequest(request, "PATCH", QByteArray("[]")) : access.get(request));
            QTRY_VERIFY_WITH_TIMEOUT(reply->isFinished(), 10000);
            QVERIFY(reply->error() != QNetworkReply::NoError);
            qInfo("%lld MiB came", sent / (1024 * 1024));
            QVERIFY(sent < 64LL * 1024 * 1024);
        }
    }

    /// A server that goes in the midst of an edit, on a connection that was kept: its thread wants the body
    /// again, and whoever drops the connections must not wait for that thread meanwhile.
    void endsUnderAnEdit()
    {
        DyingServer server;
        ServerAccess access;
        QNetworkRequest request(QStringLiteral("http://127.0.0.1:%1/x").arg(server.port()));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        const std::unique_ptr<QNetworkReply> first(access.get(request));
        QTRY_VERIFY(first->isFinished());
        QCOMPARE(first->error(), QNetworkReply::NoError);
        std::unique_ptr<QNetworkReply> edit(access.sendCustomRequest(request, "PATCH", QByteArray("[]")));
        QTRY_VERIFY(server.hasEdit());
        server.die(); // no turn of this thread until the client has seen it
        QElapsedTimer clock;
        clock.start();
        access.forgetConnections();
        QCoreApplication::processEvents();
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QTRY_VERIFY(edit->isFinished());
        QVERIFY(edit->error() != QNetworkReply::NoError);
    }

    /// An edit whose answer is lost with a kept connection is sent again by the network layer: by its key the
    /// server knows that it is the same one. The next edit has another.
    void sendsAnEditAgainAsTheSame()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QByteArrayList keys;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [socket, &keys] {
                const QByteArray request = socket->readAll();
                if (request.startsWith("PATCH")) {
                    const qsizetype start = request.indexOf("Idempotency-Key: ");
                    keys.append(request.mid(start, request.indexOf('\r', start) - start));
                    if (keys.size() == 1)
                        return socket->abort();
                }
                socket->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
            });
        });
        ServerAccess access;
        MediaLibraryApi api(QStringLiteral("127.0.0.1"), &access, nullptr);
        api.setPort(server.serverPort());
        const auto goes = [](QNetworkReply* sent) {
            const std::unique_ptr<QNetworkReply> reply(sent);
            return QTest::qWaitFor([&] { return reply->isFinished(); }) &&
                   reply->error() == QNetworkReply::NoError;
        };
        Patch patch;
        QVERIFY(Patch::parseString(R"([{"op":"remove","path":"/playlists/1"}])", patch));
        QVERIFY(goes(api.getCollections()));
        QVERIFY(goes(api.patchMediaLibrary(patch)) && goes(api.patchMediaLibrary(patch)));
        QCOMPARE(keys.size(), 3);
        QVERIFY(keys[0].size() > 30 && keys[1] == keys[0] && keys[2] != keys[0]);
    }

    /// The next session's requests go over connections of their own, and are not cut off.
    void forgetsItsConnections()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        int connections = 0;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            ++connections;
            connect(socket, &QTcpSocket::readyRead, socket, [socket] {
                if (socket->readAll().endsWith("\r\n\r\n"))
                    socket->write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
            });
        });
        ServerAccess access;
        const QNetworkRequest request(QStringLiteral("http://127.0.0.1:%1/x").arg(server.serverPort()));
        const auto asks = [&] {
            const std::unique_ptr<QNetworkReply> reply(access.get(request));
            return QTest::qWaitFor([&] { return reply->isFinished(); }) &&
                   reply->error() == QNetworkReply::NoError;
        };
        QVERIFY(asks() && asks());
        QCOMPARE(connections, 1);
        access.forgetConnections();
        QCoreApplication::processEvents();
        QVERIFY(asks());
        QCOMPARE(connections, 2);
        access.forgetConnections();
        QVERIFY(asks()); // sooner than it has come to that
        QCOMPARE(connections, 2);
    }

    void shownTextHidesNothing()
    {
        const QString turned = QStringLiteral("a\u202egpj.exe\u0000b\u2066c\nd");
        QCOMPARE(shownText(turned), QStringLiteral("agpj.exebc d"));
        const QString plain = QStringLiteral("Größe 日本 שלום");
        QCOMPARE(shownText(plain), plain);
    }
};

HALCYRA_TEST(TestServerAccess)

} // namespace vantrel::test
#include "test_serveraccess.moc"

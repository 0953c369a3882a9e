#include "common/media/address/showntext.h"
#include "common/media/net/serveraccess.h"
#include "tests/support/testmain.h"

#include <QNetworkReply>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <memory>

namespace vantrel::test {

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

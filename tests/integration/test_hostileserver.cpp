#include "common/media/net/networkaccessmanager.h"
#include "common/media/net/networkresourcecollection.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "common/ui/shell/showservice.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/testmain.h"
#include "tests/tarn/net/scriptedserver.h"

#include <QFile>
#include <QNetworkAccessManager>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

namespace vantrel::test {

namespace {

constexpr qint64 mebibyte = 1024 * 1024;

qint64 memoryInUse()
{
    QFile status(QStringLiteral("/proc/self/statm"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    return status.readAll().split(' ').value(1).toLongLong() * 4096;
}

/// A server that means harm: it answers every request with prepared bytes, and then goes on with filler for
/// as long as the client takes it.
class HostileServer : public QObject
{
public:
    HostileServer()
    {
        connect(&m_listener, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = m_listener.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                if (!socket->readAll().contains("\r\n\r\n"))
                    return;
                socket->write(answer);
                fill(socket);
            });
            connect(socket, &QTcpSocket::bytesWritten, this, [this, socket] { fill(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, [this, socket] {
                isDropped = true;
                socket->deleteLater();
            });
        });
        if (!m_listener.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }
    int port() const { return m_listener.serverPort(); }
    /// To whoever is connected.
    void drip(const QByteArray& bytes)
    {
        for (QTcpSocket* socket : m_listener.findChildren<QTcpSocket*>())
            if (socket->state() == QAbstractSocket::ConnectedState)
                socket->write(bytes);
    }

    QByteArray answer;
    qint64 filler = 0; // bytes that are left to send
    qint64 sent = 0;
    qint64 mostMemory = 0;
    bool isDropped = false;

private:
    void fill(QTcpSocket* socket)
    {
        static const QByteArray block(mebibyte, 'x');
        while (filler > 0 && socket->bytesToWrite() < block.size()) {
            socket->write(block);
            filler -= block.size();
            sent += block.size();
            mostMemory = std::max(mostMemory, memoryInUse());
        }
    }

    QTcpServer m_listener;
};

QByteArray streamHead()
{
    return "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n";
}

QByteArray answerWith(const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

} // namespace

/// What a server sends that means harm costs a line of log and bounded memory, and leaves the library as it
/// was.
class TestHostileServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void messages_data();
    void messages();
    void libraries_data();
    void libraries();
    void lineWithoutEnd();
    void bodyWithoutEnd();
    void resourceWithoutEnd();
    void resourceInDrops();
    void showWithoutEnd();

private:
    QByteArray text() const { return QByteArray::fromStdString(m_mirror->library->toJson().toString()); }

    std::unique_ptr<HostileServer> m_server;
    std::unique_ptr<MediaMirror> m_mirror;
    QByteArray m_before;
};

void TestHostileServer::init()
{
    m_server = std::make_unique<HostileServer>();
    m_mirror = std::make_unique<MediaMirror>(makeLibrary(2, 3));
    m_mirror->library->addPlaylist(1, Playlist("list"));
    m_mirror->load();
    m_mirror->api.setPort(m_server->port());
    m_before = text();
}

void TestHostileServer::messages_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("isPatch"); // else it is warned of as none
    const auto patch = [](const char* name, const QByteArray& path, const QByteArray& value) {
        QTest::newRow(name) << "[{\"op\":\"add\",\"path\":\"" + path + "\",\"value\":" + value + "}]" << true;
    };
    QTest::newRow("an object") << QByteArray("{\"op\":\"remove\",\"path\":\"/collections/1\"}") << false;
    QTest::newRow("a number") << QByteArray("17") << false;
    QTest::newRow("an unknown operation")
        << QByteArray("[{\"op\":\"drop\",\"path\":\"/collections\"}]") << false;
    QTest::newRow("no json") << QByteArray("<html>") << false;
    QTest::newRow("too deep") << QByteArray(100000, '[') << false;
    QTest::newRow("no text") << QByteArray("[{\"op\":\"remove\",\"path\":\"/collections/\xff\"}]") << false;
    patch("a name of 1 MiB", "/collections/1/name", '"' + QByteArray(mebibyte, 'n') + '"');
    patch("a collection with a name of 1 MiB", "/collections/3",
          "{\"name\":\"" + QByteArray(mebibyte, 'n') + "\",\"slots\":{}}");
    patch("an index of 1 MiB", "/collections/" + QByteArray(mebibyte, '1'), "{\"name\":\"\",\"slots\":{}}");
    patch("slot -1", "/collections/1/slots/-1", "{\"name\":\"x\"}");
    patch("slot 0", "/collections/1/slots/0", "{\"name\":\"x\"}");
    patch("slot 10000", "/collections/1/slots/10000", "{\"name\":\"x\"}");
    patch("collection -1", "/collections/-1", "{\"name\":\"x\",\"slots\":{}}");
    patch("a slot that is a number", "/collections/1/slots/1", "5");
    patch("a name that is a number", "/collections/1/name", "5");
    patch("slots that are an array", "/collections/1/slots", "[]");
    patch("a time before the beginning", "/collections/1/slots/1/inpoint", "-1");
    patch("an entry that is no address", "/playlists/1/entries/one", "{\"slotUrl\":\"\"}");
    patch("no library", "", "[]");
    QTest::newRow("half of it fits")
        << QByteArray("[{\"op\":\"replace\",\"path\":\"/collections/1/name\",\"value\":\"x\"},"
                      "{\"op\":\"remove\",\"path\":\"/collections/9\"}]")
        << true;
}

void TestHostileServer::messages()
{
    QFETCH(QByteArray, data);
    QFETCH(bool, isPatch);
    QSignalSpy changed(&m_mirror->api, &MediaLibraryApi::mediaLibraryChanged);
    if (isPatch)
        QTest::ignoreMessage(QtDebugMsg,
                             QRegularExpression(QStringLiteral("^Patch does not fit the library")));
    else
        expectWarning(QStringLiteral("Failed to parse message: "));
    // What comes behind it is read all the same, and shows that it has been read.
    m_server->answer =
        streamHead() + "data: " + data +
        "\n\ndata: [{\"op\":\"replace\",\"path\":\"/collections/2/name\",\"value\":\"end\"}]\n\n";
    m_mirror->api.listenChanges();
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(m_mirror->library->findCollection(2)->getName(), std::string("end"));
    m_mirror->library->findCollection(2)->setName("Collection 2");
    QCOMPARE(text(), m_before);
}

void TestHostileServer::libraries_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("warning");
    const QString noJson = QStringLiteral("Failed to convert  QT JSON to SDK JSON");
    const QString noLibrary = QStringLiteral("Failed to parse media library");
    QTest::newRow("no json") << QByteArray("<html></html>") << noJson;
    QTest::newRow("empty") << QByteArray() << noJson;
    QTest::newRow("cut off") << QByteArray("{\"collections\":{") << noJson;
    QTest::newRow("large and no json") << QByteArray("[" + QByteArray(mebibyte, '1')) << noJson;
    QTest::newRow("an array") << QByteArray("[]") << noLibrary;
    QTest::newRow("slot -1") << QByteArray(
                                    "{\"collections\":{\"1\":{\"slots\":{\"-1\":{}}}},\"playlists\":{}}")
                             << noLibrary;
    QTest::newRow("a name of 1 MiB") << QByteArray("{\"collections\":{\"1\":{\"name\":\"" +
                                                   QByteArray(mebibyte, 'n') + "\"}},\"playlists\":{}}")
                                     << noLibrary;
}

void TestHostileServer::libraries()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, warning);
    QSignalSpy replaced(&m_mirror->api, &MediaLibraryApi::mediaLibraryReplaced);
    m_server->answer = answerWith(body);
    expectWarning(warning);
    m_mirror->api.requestMediaLibrary();
    QTRY_VERIFY(m_mirror->api.isFetching());
    QTRY_VERIFY(!m_mirror->api.isFetching());
    QCOMPARE(replaced.size(), 0);
    QCOMPARE(text(), m_before);
}

void TestHostileServer::lineWithoutEnd()
{
    m_server->answer = streamHead() + "data: ";
    m_server->filler = 2048 * mebibyte;
    const qint64 memory = memoryInUse();
    expectWarning(QStringLiteral("Event stream sends a message without end, closing it"));
    m_mirror->api.listenChanges();
    QTRY_VERIFY_WITH_TIMEOUT(m_server->isDropped, 30000);
    QVERIFY2(m_server->sent < 256 * mebibyte, QByteArray::number(m_server->sent).constData());
    QVERIFY2(m_server->mostMemory - memory < 1024 * mebibyte,
             QByteArray::number(m_server->mostMemory - memory).constData());
    QCOMPARE(text(), m_before);
}

void TestHostileServer::bodyWithoutEnd()
{
    m_server->answer = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n\"";
    m_server->filler = 2048 * mebibyte;
    const qint64 memory = memoryInUse();
    expectWarning(QStringLiteral("Failed to get media library "));
    m_mirror->api.requestMediaLibrary();
    QTRY_VERIFY_WITH_TIMEOUT(m_server->isDropped, 30000);
    QVERIFY2(m_server->sent < 512 * mebibyte, QByteArray::number(m_server->sent).constData());
    QVERIFY2(m_server->mostMemory - memory < 1024 * mebibyte,
             QByteArray::number(m_server->mostMemory - memory).constData());
    QCOMPARE(text(), m_before);
}

void TestHostileServer::resourceWithoutEnd()
{
    m_server->answer = "HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\n\r\n";
    m_server->filler = 2048 * mebibyte;
    QNetworkAccessManager manager;
    NetworkAccessManager network(&manager);
    NetworkResourceCollection resources(&network, 1, 700);
    QSignalSpy data(&resources, &NetworkResourceCollection::dataReceived);
    const qint64 memory = memoryInUse();
    expectWarning(QStringLiteral("No reply after requesting data for url: "));
    const QString url = QStringLiteral("http://127.0.0.1:%1/x").arg(m_server->port());
    resources.fetch(url, QUrl(url));
    QTRY_VERIFY(!resources.isFetching(url));
    QCOMPARE(data.size(), 0);
    QVERIFY2(m_server->sent < 256 * mebibyte, QByteArray::number(m_server->sent).constData());
    QVERIFY2(m_server->mostMemory - memory < 256 * mebibyte,
             QByteArray::number(m_server->mostMemory - memory).constData());
    QTRY_VERIFY(m_server->isDropped);
}

void TestHostileServer::resourceInDrops()
{
    m_server->answer = "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n";
    QTimer drops;
    connect(&drops, &QTimer::timeout, this, [this] { m_server->drip("x"); });
    drops.start(20);
    QNetworkAccessManager manager;
    NetworkAccessManager network(&manager);
    NetworkResourceCollection resources(&network, 1, 300);
    expectWarning(QStringLiteral("No reply after requesting data for url: "));
    const QString url = QStringLiteral("http://127.0.0.1:%1/x").arg(m_server->port());
    resources.fetch(url, QUrl(url));
    QTRY_VERIFY(!resources.isFetching(url));
    QTRY_VERIFY(m_server->isDropped);
}

void TestHostileServer::showWithoutEnd()
{
    m_server->answer = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n{";
    m_server->filler = 512 * mebibyte;
    ScriptedServer link;
    ServerPorts ports{1, 1, 1, 1, 1};
    ports.http = quint16(m_server->port());
    ports.link = link.port();
    allowWarnings(QString()); // nothing else of that server makes sense either
    auto session = std::make_unique<Session>();
    Session::initializeWith(session.get(), ports);
    session->connectionHandler()->connect(QStringLiteral("127.0.0.1"));
    QTRY_VERIFY(session->isConnected());
    ShowService service(session.get(), this);
    QString error;
    QVERIFY(service.ask(QStringLiteral("Shows"), "GET", QStringLiteral("/shows"), {}, {},
                        [&](const ShowService::Answer& answer) { error = answer.error; }));
    QTRY_VERIFY_WITH_TIMEOUT(!error.isEmpty(), 30000);
    QVERIFY2(error.startsWith(QStringLiteral("The server sends more")), qPrintable(error));
}

} // namespace vantrel::test

using vantrel::test::TestHostileServer;
HALCYRA_TEST(TestHostileServer)
#include "test_hostileserver.moc"

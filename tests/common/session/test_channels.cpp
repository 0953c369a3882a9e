#include "common/media/net/mediadataaggregator.h"
#include "common/session/link/metadataclient.h"
#include "common/session/link/previewthread.h"
#include "common/session/link/systemproxy.h"
#include "tarn/preview/previewwire.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QWebSocket>
#include <QWebSocketServer>

namespace vantrel::test {

namespace {

/// A picture of one colour as the server sends it.
QByteArray picture(const std::string& source, int stream, std::uint8_t red, int format = Surface::formatRgb24)
{
    auto surface = makeRef<Surface>();
    surface->format = format;
    surface->width = 5;
    surface->height = 3;
    surface->bytesPerLine = 16;
    surface->pixels.assign(48, 0);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            surface->pixels[size_t(16 * y + 3 * x)] = red;
    PreviewFrame frame{source, Frame(surface.get(), 1)};
    frame.frame.setStreamIndex(stream);
    const std::string bytes = previewwire::encode(frame);
    return QByteArray(bytes.data(), qsizetype(bytes.size()));
}

/// Serves previews: keeps what the newest client is.
struct PreviewServer
{
    PreviewServer()
    {
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            ++connections;
            socket = server.nextPendingConnection();
        });
        if (!server.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }
    QTcpServer server;
    QTcpSocket* socket = nullptr;
    int connections = 0;
};

const auto loopback = boost::asio::ip::make_address("127.0.0.1");

/// A server's events channel with a client on it.
struct Events
{
    bool isOpen()
    {
        if (!server.listen(QHostAddress::LocalHost))
            return false;
        client = std::make_unique<MetadataClient>(QStringLiteral("127.0.0.1"), server.serverPort());
        if (!QTest::qWaitFor([this] { return server.hasPendingConnections(); }))
            return false;
        socket.reset(server.nextPendingConnection());
        return true;
    }

    QWebSocketServer server{QStringLiteral("events"), QWebSocketServer::NonSecureMode};
    std::unique_ptr<MetadataClient> client;
    std::unique_ptr<QWebSocket> socket;
};

} // namespace

class TestChannels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesVersions_data()
    {
        QTest::addColumn<QString>("json");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* json, const char* text) {
            QTest::newRow(json) << QString::fromLatin1(json) << QString::fromLatin1(text);
        };
        row(R"({"major": 1, "minor": "2", "patch": 3, "tag": "rc1"})", "1.2.3rc1");
        row(R"({"major": 4, "minor": 0})", "4.0.0");
        row(R"({"major": 4, "minor": 0, "patch": 12, "tag": ""})", "4.0.12");
        row(R"({})", "0.0.0");
    }
    void writesVersions()
    {
        QFETCH(QString, json);
        QTEST(SystemProxy::formatVersionString(QJsonDocument::fromJson(json.toUtf8()).object()), "text");
    }

    void tellsOnlyChangedSystemData()
    {
        SystemProxy proxy;
        QSignalSpy host(&proxy, &SystemProxy::hostnameChanged);
        QSignalSpy version(&proxy, &SystemProxy::versionChanged);
        const QJsonObject system{{QStringLiteral("hostname"), QStringLiteral("stage")}};
        proxy.setData(system);
        proxy.setData(system);
        QCOMPARE(host.count(), 1);
        QCOMPARE(version.count(), 0);
        proxy.setData({});
        QCOMPARE(host.count(), 2);
        QVERIFY(proxy.hostname().isEmpty());
    }

    void readsOnlyTheNewestServersAnswer()
    {
        const auto system = [](const char* name) {
            return ScriptedHttp::Reply{200, QByteArray("{\"hostname\":\"") + name + "\"}"};
        };
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        SystemProxy& proxy = *peer.session->systemProxy();
        QTRY_COMPARE(proxy.hostname(), QStringLiteral("stage"));
        const auto usual = peer.http.handler;
        const auto ask = [&](const ScriptedHttp::Reply& reply) {
            peer.http.handler = [reply, usual](const ScriptedHttp::Request& request) {
                return request.target.endsWith("/system") ? reply : usual(request);
            };
            proxy.onConnected();
        };
        peer.http.unanswered.clear();
        ask({0, {}});
        QTRY_COMPARE(peer.http.unanswered.size(), 1);
        ask(system("second"));
        QTRY_COMPARE(proxy.hostname(), QStringLiteral("second"));
        QSignalSpy changed(&proxy, &SystemProxy::hostnameChanged);
        if (QTcpSocket* late = peer.http.unanswered.first(); late && late->isOpen())
            ScriptedHttp::answer(late, system("first"));
        // What is no answer empties it, and an answer of any size costs no more than a line of log.
        ask({200, "<html>"});
        QTRY_COMPARE(proxy.hostname(), QString());
        ask(system("third"));
        QTRY_COMPARE(proxy.hostname(), QStringLiteral("third"));
        expectWarning(QStringLiteral("Getting system property failed:"));
        ask({200, QByteArray(8 * 1024 * 1024, 'x')});
        QTRY_COMPARE(changed.count(), 3);
        QCOMPARE(proxy.hostname(), QString());
    }

    void forgetsWhatTheEventsChannelNames()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        Events events;
        QVERIFY(events.isOpen());
        MetadataClient& client = *events.client;
        QWebSocket* socket = events.socket.get();
        QCOMPARE(socket->requestUrl().path(), QStringLiteral("/api/brume/v1/events"));
        QTRY_VERIFY(client.isKeepaliveRunning());

        QSignalSpy invalidated(peer.session->mediaDataAggregator(),
                               &MediaDataAggregator::metadataInvalidated);
        const auto event = [](const char* type) {
            return QString::fromLatin1(R"({"type":"%1","mediaUrl":"file:\/\/\/a.mp4"})")
                .arg(QLatin1String(type));
        };
        socket->sendTextMessage(event("volume-changed"));
        expectWarning(QStringLiteral("Failed to handle event: "));
        socket->sendTextMessage(QStringLiteral("{no json"));
        expectWarning(QStringLiteral("ERROR, failed to create an event"));
        socket->sendTextMessage(QStringLiteral("[1]"));
        socket->sendTextMessage(event("metadata-changed"));
        QTRY_COMPARE(invalidated.count(), 1);
        QCOMPARE(invalidated[0][0].toUrl(), QUrl(QStringLiteral("file:///a.mp4")));
        socket->sendTextMessage(event("metadata-removed"));
        QTRY_COMPARE(invalidated.count(), 2);
        QCOMPARE(peer.http.count("GET", "/metadata/"), 0);
        socket->sendTextMessage(event("metadata-added"));
        QTRY_COMPARE(peer.http.count("GET", "/metadata/?file=file%3A%2F%2F%2Fa.mp4"), 1);
        QTRY_COMPARE(peer.http.count("GET", "/thumbnails/?file=file%3A%2F%2F%2Fa.mp4"), 1);
        QCOMPARE(invalidated.count(), 2);
        // Deep nesting, and a message of any size, cost no more than a line of log.
        expectWarning(QStringLiteral("ERROR, failed to create an event"));
        socket->sendTextMessage(QString(50000, u'[') + QString(50000, u']'));
        socket->sendTextMessage(QString(4 * 1024 * 1024, u'x'));
        QTRY_VERIFY(!client.isKeepaliveRunning());
    }

    /// A folder of any size that comes or changes at once neither holds the window nor is fetched whole.
    void followsNoFlood()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        Events events;
        QVERIFY(events.isOpen());
        MetadataClient& client = *events.client;
        QWebSocket* socket = events.socket.get();
        QTRY_VERIFY(client.isKeepaliveRunning());
        QSignalSpy each(peer.session->mediaDataAggregator(), &MediaDataAggregator::metadataInvalidated);
        constexpr int count = 1000;
        for (int i = 0; i < count; ++i)
            socket->sendTextMessage(
                QStringLiteral(R"({"type":"metadata-added","mediaUrl":"file:\/\/\/many\/%1.png"})").arg(i));
        QTRY_VERIFY(each.count() >= count / 2);
        QTRY_VERIFY(peer.http.count("GET", "/metadata/") > 0);
        QVERIFY(peer.http.count("GET", "/metadata/") < count / 2);

        // Whoever shows them takes a while with each.
        connect(peer.session->mediaDataAggregator(), &MediaDataAggregator::metadataInvalidated, &client,
                [] { QThread::usleep(100); });
        const qsizetype before = each.count();
        for (int i = 0; i < 3 * MetadataClient::mostWaiting; ++i)
            socket->sendTextMessage(
                QStringLiteral(R"({"type":"metadata-changed","mediaUrl":"file:\/\/\/many\/%1.png"})").arg(i));
        socket->sendTextMessage(
            QStringLiteral(R"({"type":"metadata-removed","mediaUrl":"file:\/\/\/last.png"})"));
        QTRY_VERIFY(!each.isEmpty() && each.last()[0].toUrl() == QUrl(QStringLiteral("file:///last.png")));
        QVERIFY(each.count() - before < 3 * MetadataClient::mostWaiting);
        QVERIFY(peer.http.count("GET", "/metadata/") < count / 2);
    }

    void showsPictures()
    {
        PreviewServer server;
        PreviewThread thread(server.server.serverPort());
        QSignalSpy frames(&thread, &PreviewThread::previewFrame);
        thread.subscribe(loopback);
        QTRY_VERIFY(server.socket);
        server.socket->write(picture("/device/channels/0/preview", 3, 200, 7)); // no format that can be shown
        server.socket->write(picture("/device/channels/0/preview", 1, 200));
        QTRY_COMPARE(frames.count(), 1);
        const auto frame = frames[0][0].value<PreviewFrame>();
        QCOMPARE(frame.source, std::string("/device/channels/0/preview"));
        QCOMPARE(frame.frame.getStreamIndex(), 1);
        const QImage image = frames[0][1].value<QPixmap>().toImage();
        QCOMPARE(image.size(), QSize(5, 3));
        QCOMPARE(image.pixelColor(4, 2), QColor(200, 0, 0));
    }

    void handsOnLevelsBesidePictures()
    {
        PreviewServer server;
        PreviewThread thread(server.server.serverPort());
        QSignalSpy frames(&thread, &PreviewThread::previewFrame);
        QSignalSpy levels(&thread, &PreviewThread::levelsChanged);
        thread.subscribe(loopback);
        QTRY_VERIFY(server.socket);
        AudioLevels stereo;
        stereo.channels = {{-6, -9}, {-12, -15}};
        const auto damaged = stereo.toSurface();
        damaged->width = 3;
        for (const auto& surface : {damaged, stereo.toSurface()}) {
            const std::string bytes = previewwire::encode({"a", Frame(surface.get(), 1)});
            server.socket->write(bytes.data(), qint64(bytes.size()));
        }
        server.socket->write(picture("a", 0, 200));
        QTRY_COMPARE(frames.count(), 1);
        QTRY_COMPARE(levels.count(), 1);
        QCOMPARE(levels[0][0].value<std::string>(), std::string("a"));
        QVERIFY(levels[0][1].value<AudioLevels>() == stereo);
    }

    void keepsOnlyTheNewestWhileTheMainThreadIsBusy()
    {
        PreviewServer server;
        PreviewThread thread(server.server.serverPort());
        QSignalSpy frames(&thread, &PreviewThread::previewFrame);
        thread.subscribe(loopback);
        QTRY_VERIFY(server.socket);
        QSemaphore arrived;
        connect(
            &thread, &PreviewThread::onPendingFrames, &thread, [&] { arrived.release(); },
            Qt::DirectConnection);
        for (int i = 1; i <= 200; ++i) {
            server.socket->write(picture("a", 0, std::uint8_t(i)));
            server.socket->write(picture("b", 0, std::uint8_t(i)));
        }
        while (server.socket->bytesToWrite() > 0)
            QVERIFY(server.socket->waitForBytesWritten());
        QVERIFY(arrived.tryAcquire(1, 5000));
        // Only now does the main thread turn its event loop.
        const auto redOfLast = [&] {
            return frames.last()[1].value<QPixmap>().toImage().pixelColor(0, 0).red();
        };
        QTRY_VERIFY(frames.count() >= 2 && redOfLast() == 200);
        QVERIFY2(frames.count() < 100, qPrintable(QString::number(frames.count())));
    }

    void changesTheServer()
    {
        PreviewServer server;
        PreviewThread thread(server.server.serverPort());
        QSignalSpy frames(&thread, &PreviewThread::previewFrame);
        thread.subscribe(loopback);
        QTRY_COMPARE(server.connections, 1);
        thread.subscribe(loopback);
        QTRY_COMPARE(server.connections, 2);
        server.socket->write(picture("a", 0, 1));
        QTRY_COMPARE(frames.count(), 1);
        thread.unsubscribe();
        QVERIFY(thread.wait(3000));
        thread.unsubscribe();
        thread.subscribe(loopback);
        QTRY_COMPARE(server.connections, 3);
    }
};

HALCYRA_TEST(TestChannels)

} // namespace vantrel::test

#include "test_channels.moc"

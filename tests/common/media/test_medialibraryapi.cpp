#include "common/media/library/medialibraryapi.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/scriptedhttp.h"
#include "tests/support/testmain.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;

namespace {

/// A server of one endless answer: whoever connects gets what is sent.
class StreamServer : public QObject
{
public:
    StreamServer()
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            m_socket = m_server.nextPendingConnection();
            connect(m_socket, &QTcpSocket::readyRead, this, [this] { request += m_socket->readAll(); });
            m_socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n");
        });
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }
    int port() const { return m_server.serverPort(); }
    void send(const QByteArray& bytes)
    {
        m_socket->write(bytes);
        m_socket->flush();
    }
    QTcpSocket* socket() const { return m_socket; }

    QByteArray request;

private:
    QTcpServer m_server;
    QTcpSocket* m_socket = nullptr;
};

/// Writes down what an API tells, in order.
class Recorder : public QObject
{
public:
    explicit Recorder(const MediaLibraryApi* api)
    {
        number(api, "c~", &MediaLibraryApi::mediaCollectionChanged);
        number(api, "c-", &MediaLibraryApi::mediaCollectionRemoved);
        number(api, "c+", &MediaLibraryApi::mediaCollectionAdded);
        number(api, "p+", &MediaLibraryApi::playlistAdded);
        number(api, "p~", &MediaLibraryApi::playlistChanged);
        number(api, "p-", &MediaLibraryApi::playlistRemoved);
        address(api, "m+", &MediaLibraryApi::mediaAdded);
        address(api, "m~", &MediaLibraryApi::mediaChanged);
        address(api, "m-", &MediaLibraryApi::mediaRemoved);
        entry(api, "e+", &MediaLibraryApi::playlistEntryAdded);
        entry(api, "e~", &MediaLibraryApi::playlistEntryChanged);
        entry(api, "e-", &MediaLibraryApi::playlistEntryRemoved);
        connect(api, &MediaLibraryApi::mediaLibraryReplaced, this,
                [this] { m_told.append(QStringLiteral("replaced")); });
        connect(api, &MediaLibraryApi::mediaLibraryChanged, this,
                [this] { m_told.append(QStringLiteral("changed")); });
        connect(api, &MediaLibraryApi::mediaLibraryRequestFailed, this,
                [this] { m_told.append(QStringLiteral("failed")); });
    }
    QString told() const { return m_told.join(u' '); }
    QString take() { return std::exchange(m_told, {}).join(u' '); }
    bool isEmpty() const { return m_told.isEmpty(); }

private:
    void number(const MediaLibraryApi* api, const char* name, void (MediaLibraryApi::*told)(uint))
    {
        connect(api, told, this, [this, name](uint n) {
            m_told.append(QStringLiteral("%1%2").arg(QLatin1String(name)).arg(n));
        });
    }
    void address(const MediaLibraryApi* api, const char* name, void (MediaLibraryApi::*told)(MediaAddress))
    {
        connect(api, told, this, [this, name](MediaAddress a) {
            m_told.append(QStringLiteral("%1%2/%3").arg(QLatin1String(name)).arg(a.collection).arg(a.slot));
        });
    }
    void entry(const MediaLibraryApi* api, const char* name,
               void (MediaLibraryApi::*told)(uint, EntryAddress))
    {
        connect(api, told, this, [this, name](uint n, EntryAddress a) {
            m_told.append(QStringLiteral("%1%2/%3")
                              .arg(QLatin1String(name))
                              .arg(n)
                              .arg(QString::fromStdString(a.toString(true))));
        });
    }

    QStringList m_told;
};

QByteArray text(const MediaLibrary& library)
{
    return QByteArray::fromStdString(library.toJson().toString());
}

} // namespace

class TestMediaLibraryApi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initialFetch_data();
    void initialFetch();
    void emissionOrder();
    void patchThatDoesNotFit();
    void streamInPieces();
    void largeMessagesKeepTheirPlace();
    void streamEnds();
    void writes();

private:
    QNetworkAccessManager m_manager;
};

void TestMediaLibraryApi::initialFetch_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("warning");
    QTest::newRow("library") << 200 << text(*test::makeLibrary(2, 3)) << QStringLiteral("replaced changed")
                             << QString();
    QTest::newRow("http error") << 500 << QByteArray("{}") << QStringLiteral("failed")
                                << QStringLiteral("Failed to get media library ");
    QTest::newRow("no json") << 200 << QByteArray("{") << QString()
                             << QStringLiteral("Failed to convert  QT JSON to SDK JSON");
    QTest::newRow("no library") << 200 << QByteArray("[1]") << QStringLiteral("failed")
                                << QStringLiteral("Failed to parse media library");
}

void TestMediaLibraryApi::initialFetch()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, told);
    QFETCH(QString, warning);
    test::ScriptedHttp server;
    server.handler = [&](const auto&) { return test::ScriptedHttp::Reply{status, body}; };
    const auto library = test::makeLibrary(1, 1);
    const QByteArray before = text(*library);
    MediaLibraryApi api(QStringLiteral("127.0.0.1"), &m_manager, library.get());
    api.setPort(server.port());
    Recorder recorder(&api);
    if (!warning.isEmpty())
        test::expectWarning(warning);
    api.requestMediaLibrary();
    const QPointer<QNetworkReply> reply = m_manager.findChildren<QNetworkReply*>().last();
    QTRY_VERIFY(!reply); // it is kept no longer than it takes to read it
    QCOMPARE(recorder.take(), told);
    QCOMPARE(server.count("GET", "/api/brume/v1/medialibrary"), 1);
    QCOMPARE(text(*library), told.startsWith(QStringLiteral("replaced")) ? body : before);
}

void TestMediaLibraryApi::emissionOrder()
{
    const auto library = test::makeLibrary(3, 3);
    library->addPlaylist(1, Playlist("one"));
    library->addPlaylist(2, Playlist("two"));
    library->findPlaylist(1)->addEntry({1, 0}, PlaylistEntry());
    library->findPlaylist(1)->addEntry({2, 0}, PlaylistEntry());
    const auto edited = makeRef<MediaLibrary>(*library);
    edited->addPlaylist(3, Playlist("three"));
    edited->removePlaylist(2);
    edited->findPlaylist(1)->setName("uno");
    edited->findPlaylist(1)->addEntry({1, 5}, PlaylistEntry());
    edited->findPlaylist(1)->removeEntry({1, 0});
    edited->findPlaylist(1)->findEntry({2, 0})->setEndAction(EndAction::Stop);
    edited->removeCollection(3);
    edited->insertMediaCollection(5, MediaCollection("five"), true);
    edited->findCollection(1)->setName("uno");
    edited->findSlot(1, 2)->setInpoint(1);
    edited->findSlot(1, 2)->setOutpoint(2);
    edited->findCollection(2)->removeMediaSlot(1);
    edited->findCollection(2)->insertMediaSlot(9, test::makeSlot("nine"), true);
    Patch patch;
    Patch::diff(library->toJson(), edited->toJson(), patch);

    MediaLibraryApi api(QStringLiteral("127.0.0.1"), &m_manager, library.get());
    Recorder recorder(&api);
    api.applyMediaLibraryPatch(patch);
    QCOMPARE(recorder.take(),
             QStringLiteral("c~1 c-3 c+5 m+2/9 m~1/2 m-2/1 p+3 p~1 p-2 e+1/1.5 e~1/2 e-1/1 changed"));
    QCOMPARE(text(*library), text(*edited));
}

void TestMediaLibraryApi::patchThatDoesNotFit()
{
    const auto library = test::makeLibrary(1, 1);
    const QByteArray before = text(*library);
    MediaLibraryApi api(QStringLiteral("127.0.0.1"), &m_manager, library.get());
    Recorder recorder(&api);
    Patch patch;
    QVERIFY(Patch::parseString(R"([{"op":"replace","path":"/collections/1/name","value":"x"},
                                   {"op":"remove","path":"/collections/7"}])",
                               patch));
    api.applyMediaLibraryPatch(patch);
    QVERIFY(recorder.isEmpty());
    QCOMPARE(text(*library), before);
}

void TestMediaLibraryApi::streamInPieces()
{
    StreamServer server;
    const auto library = test::makeLibrary(2, 2);
    MediaLibraryApi api(QStringLiteral("127.0.0.1"), &m_manager, library.get());
    api.setPort(server.port());
    Recorder recorder(&api);
    api.listenChanges();
    test::expectWarning(QStringLiteral("Already listening to media library changes!"));
    api.listenChanges();
    QTRY_VERIFY(server.request.contains("\r\n\r\n"));
    QVERIFY(server.request.startsWith("GET /api/brume/v1/sse?topic=collections&topic=playlists "));

    const QByteArray message =
        R"(data: [{"op":"replace","path":"/collections/2/slots/1/name","value":"new"}])";
    server.send(message.left(20));
    server.send(message.mid(20) + "\n");
    server.send("\n");
    QTRY_COMPARE(recorder.told(), QStringLiteral("c~2 m~2/1 changed"));
    recorder.take();
    QCOMPARE(library->findSlot(2, 1)->getName(), std::string("new"));

    test::expectWarning(QStringLiteral("Failed to parse message: "));
    server.send("data: nonsense\n\n");
    server.send("data: [{\"op\":\"remove\",\"path\":\"/collections/2\"}]\n\n");
    QTRY_COMPARE(recorder.told(), QStringLiteral("c-2 changed"));
}

/// One that is read on a thread is taken before those behind it, and on top of what has come by other ways.
void TestMediaLibraryApi::largeMessagesKeepTheirPlace()
{
    constexpr int many = 1000;
    const auto library = test::makeLibrary(1, 1);
    MediaLibraryApi api(QStringLiteral("127.0.0.1"), &m_manager, library.get());
    const auto edited = makeRef<MediaLibrary>(*library);
    for (int slot = 2; slot <= many; ++slot)
        edited->findCollection(1)->insertMediaSlot(slot, test::makeSlot("many"), true);
    Patch patch;
    Patch::diff(library->toJson(), edited->toJson(), patch);
    const auto nameOf = [&library](int slot) {
        const MediaSlot* const found = std::as_const(*library).findSlot(1, slot);
        return found ? found->getName() : std::string();
    };
    api.receive(
        "data: " + QByteArray::fromStdString(patch.toString()) +
        "\n\ndata: [{\"op\":\"replace\",\"path\":\"/collections/1/slots/900/name\",\"value\":\"new\"}]\n\n");
    Patch meanwhile;
    QVERIFY(Patch::parseString(
        R"([{"op":"replace","path":"/collections/1/slots/1/name","value":"meanwhile"}])", meanwhile));
    QVERIFY(api.applyMediaLibraryPatch(meanwhile));
    QTRY_COMPARE(nameOf(900), std::string("new"));
    QCOMPARE(nameOf(1), std::string("meanwhile"));
    QCOMPARE(nameOf(many), std::string("many"));
}

void TestMediaLibraryApi::streamEnds()
{
    StreamServer server;
    MediaLibraryApi api(QStringLiteral("127.0.0.1"), &m_manager, test::makeLibrary(1, 1).get());
    api.setPort(server.port());
    api.listenChanges();
    QTRY_VERIFY(server.socket());
    const auto streams = [this] { return m_manager.findChildren<QNetworkReply*>().size(); };
    QCOMPARE(streams(), 1);
    server.socket()->disconnectFromHost();
    QTRY_COMPARE(streams(), 0);
    api.listenChanges(); // no complaint: it listens anew
    QTRY_COMPARE(streams(), 1);
    api.stopListening();
    QTRY_COMPARE(streams(), 0);
    api.stopListening();
}

void TestMediaLibraryApi::writes()
{
    test::ScriptedHttp server;
    server.handler = [](const auto&) { return test::ScriptedHttp::Reply{200, "{}"}; };
    const auto library = test::makeLibrary(1, 1);
    MediaLibraryApi api(QStringLiteral("127.0.0.1"), &m_manager, library.get());
    api.setPort(server.port());
    Patch patch;
    QVERIFY(Patch::parseString(R"([{"op":"remove","path":"/collections/1"}])", patch));
    Playlist playlist("p");
    for (QNetworkReply* reply :
         {api.patchMediaLibrary(patch), api.replaceMediaLibrary(*library), api.replacePlaylists({playlist}),
          api.getCollections(), api.getPlaylists()}) {
        QVERIFY(reply);
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(reply->request().header(QNetworkRequest::ContentTypeHeader).toByteArray(),
                 "application/json");
        delete reply;
    }
    // The requests go out side by side, so they arrive in any order.
    const auto body = [&server](const char* method, const char* target) {
        const auto found = std::ranges::find_if(server.requests, [&](const auto& request) {
            return request.method == method && request.target.endsWith(target);
        });
        return found == server.requests.end() ? QJsonDocument() : QJsonDocument::fromJson(found->body);
    };
    QCOMPARE(server.count("PATCH", "/medialibrary"), 1);
    QCOMPARE(server.count("POST", "/playlists"), 1);
    QCOMPARE(server.count("GET", "/collections"), 1);
    QCOMPARE(body("PATCH", "/medialibrary"),
             QJsonDocument::fromJson(QByteArray::fromStdString(patch.toJson().toString())));
    QCOMPARE(body("POST", "/medialibrary"), QJsonDocument::fromJson(text(*library)));
    QCOMPARE(body("POST", "/playlists").array().first().toObject().value(QStringLiteral("name")).toString(),
             QStringLiteral("p"));
}

HALCYRA_TEST(TestMediaLibraryApi)
#include "test_medialibraryapi.moc"

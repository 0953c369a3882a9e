#include "common/media/library/libraryreading.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/models/urlindex.h"
#include "tests/support/librarymaker.h"
#include "tests/support/testmain.h"

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace vantrel;

namespace {

/// Keeps a client's requests open until the test answers them.
class SlowServer : public QObject
{
public:
    SlowServer()
    {
        connect(&m_listener, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = m_listener.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                const QByteArray request = socket->readAll();
                if (request.contains("/sse"))
                    stream = socket;
                else if (request.contains("/medialibrary"))
                    fetch = socket;
            });
        });
        if (!m_listener.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }
    int port() const { return m_listener.serverPort(); }

    void openStream() { stream->write("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n"); }
    void tell(int revision, const QByteArray& operation)
    {
        stream->write("data: [{\"revision\":" + QByteArray::number(revision) + "," + operation + "}]\n\n");
    }
    void answer(const MediaLibrary& library, int revision)
    {
        const QByteArray body = QByteArray::fromStdString(library.toJson().toString());
        fetch->write("HTTP/1.1 200 OK\r\nETag: \"" + QByteArray::number(revision) +
                     "\"\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
    }

    QTcpSocket* stream = nullptr;
    QTcpSocket* fetch = nullptr;

private:
    QTcpServer m_listener;
};

QByteArray rename(const QByteArray& name)
{
    return "\"op\":\"replace\",\"path\":\"/collections/1/name\",\"value\":\"" + name + "\"";
}

} // namespace

/// No change is lost between the fetch and the stream, and none is made twice.
class TestLibraryFetch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void streamOpensFirst();
    void streamThatNeverOpens();
    void changesWhileItIsFetched_data();
    void changesWhileItIsFetched();
    void changesThatItHolds();
    void largeMessages();
    void streamThatFallsSilent();
    void urlsBySpelling_data();
    void urlsBySpelling();

private:
    std::string name() const { return m_library->findCollection(1)->getName(); }

    QNetworkAccessManager m_manager;
    std::unique_ptr<SlowServer> m_server;
    Ref<MediaLibrary> m_library;
    std::unique_ptr<MediaLibraryApi> m_api;
};

void TestLibraryFetch::init()
{
    m_server = std::make_unique<SlowServer>();
    m_library = test::makeLibrary(1, 1);
    m_api = std::make_unique<MediaLibraryApi>(QStringLiteral("127.0.0.1"), &m_manager, m_library.get());
    m_api->setPort(m_server->port());
    m_api->listenChanges();
    m_api->requestMediaLibrary();
    QTRY_VERIFY(m_server->stream);
}

void TestLibraryFetch::streamOpensFirst()
{
    QVERIFY(!m_server->fetch);
    QVERIFY(!m_api->isFetching());
    m_server->openStream();
    QTRY_VERIFY(m_server->fetch);
}

void TestLibraryFetch::streamThatNeverOpens()
{
    QTRY_VERIFY(m_server->fetch); // after a while the library is wanted all the same
}

void TestLibraryFetch::changesWhileItIsFetched_data()
{
    QTest::addColumn<int>("slotCount");
    QTest::newRow("read at once") << 2;
    QTest::newRow("read by a worker") << 5000;
}

void TestLibraryFetch::changesWhileItIsFetched()
{
    QFETCH(int, slotCount);
    m_server->openStream();
    QTRY_VERIFY(m_server->fetch);
    m_server->tell(7, rename("seven"));
    m_server->tell(8, rename("eight"));
    QTRY_COMPARE(name(), std::string("eight")); // told at once, too
    m_server->tell(9, R"("op":"add","path":"/playlists/4","value":{"name":"nine","entries":{}})");
    QTRY_VERIFY(m_library->findPlaylist(4));

    const auto fetched = test::makeLibrary(1, slotCount); // as it was after the seventh edit
    fetched->findCollection(1)->setName("seven, and then some");
    const bool isLarge = qint64(fetched->toJson().toString().size()) > LibraryReading::atOnce;
    QCOMPARE(isLarge, slotCount == 5000);
    QSignalSpy replaced(m_api.get(), &MediaLibraryApi::mediaLibraryReplaced);
    m_server->answer(*fetched, 7);
    QTRY_COMPARE(replaced.size(), 1);
    QCOMPARE(name(), std::string("eight"));
    QVERIFY(m_library->findPlaylist(4));
    QVERIFY(m_library->findSlot(1, slotCount));
}

void TestLibraryFetch::changesThatItHolds()
{
    m_server->openStream();
    QTRY_VERIFY(m_server->fetch);
    QSignalSpy replaced(m_api.get(), &MediaLibraryApi::mediaLibraryReplaced);
    m_server->answer(*test::makeLibrary(1, 1), 7);
    QTRY_COMPARE(replaced.size(), 1);
    QSignalSpy changed(m_api.get(), &MediaLibraryApi::mediaLibraryChanged);
    m_server->tell(6, rename("six"));
    m_server->tell(7, rename("seven"));
    m_server->tell(8, R"("op":"replace","path":"/collections/1/slots/1/name","value":"new")");
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(name(), std::string("Collection 1"));
    QCOMPARE(m_library->findSlot(1, 1)->getName(), std::string("new"));
}

/// A message that is too large to be read here makes the library be read anew, once more where the answer
/// that is under way may be of before it.
void TestLibraryFetch::largeMessages()
{
    const QByteArray large = rename(QByteArray(EventStream::maxMessage, 'x'));
    QSignalSpy replaced(m_api.get(), &MediaLibraryApi::mediaLibraryReplaced);
    const auto answer = [this](int slotCount, int revision) {
        m_server->answer(*test::makeLibrary(1, slotCount), revision);
        m_server->fetch = nullptr;
    };
    m_server->openStream();
    QTRY_VERIFY(m_server->fetch);
    m_server->tell(8, large);
    m_server->tell(9, rename("nine"));
    QTRY_COMPARE(name(), std::string("nine"));
    answer(1, 7);
    QTRY_VERIFY(m_server->fetch);
    answer(3, 9);
    QTRY_COMPARE(replaced.size(), 2);
    QVERIFY(m_library->findSlot(1, 3));
    QVERIFY(m_api->isCurrent());
    m_server->tell(10, large);
    QTRY_VERIFY(m_server->fetch);
    answer(4, 10);
    QTRY_VERIFY(m_library->findSlot(1, 4));
}

/// One that has said that it is there is given up when it says so no more, and with it the library; one that
/// never did is not held to it.
void TestLibraryFetch::streamThatFallsSilent()
{
    SlowServer speaking;
    const auto library = test::makeLibrary(1, 1);
    MediaLibraryApi told(QStringLiteral("127.0.0.1"), &m_manager, library.get());
    told.setPort(speaking.port());
    told.listenChanges();
    told.requestMediaLibrary();
    QTRY_VERIFY(speaking.stream);
    for (SlowServer* server : {m_server.get(), &speaking}) {
        server->openStream();
        QTRY_VERIFY(server->fetch);
        server->answer(*library, 1);
    }
    QTRY_VERIFY(m_api->isCurrent() && told.isCurrent());
    QSignalSpy lost(&told, &MediaLibraryApi::streamLost);
    QSignalSpy kept(m_api.get(), &MediaLibraryApi::streamLost);
    speaking.stream->write(":\n\n");
    QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, 10000);
    QVERIFY(!told.isCurrent());
    QVERIFY(kept.isEmpty() && m_api->isCurrent());
}

void TestLibraryFetch::urlsBySpelling_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("asked");
    const auto row = [](const char* stored, const char* asked) {
        QTest::newRow(stored) << QString::fromUtf8(stored) << QString::fromUtf8(asked);
    };
    row("file:///clips/a.mp4", "file:///clips/a.mp4");
    row("file:///a b/ü.mp4", "file:///a%20b/%C3%BC.mp4");
    row("FILE:///A.mp4", "file:///A.mp4");
    row("file:///%41%7e.mp4", "file:///A~.mp4");
    row("file:///seq/frame_%2505d.png", "file:///seq/frame_%2505d.png");
    row("file:///100%/x.mp4", "file:///100%25/x.mp4");
    row("file:///50%41%.mp4", "file:///50%2541%25.mp4");
    row("http://bücher.example/a", "http://xn--bcher-kva.example/a");
}

void TestLibraryFetch::urlsBySpelling()
{
    QFETCH(QString, stored);
    QFETCH(QString, asked);
    QCOMPARE(QUrl(stored), QUrl(asked)); // what the index must not tell apart
    UrlIndex index;
    index.insert(stored.toStdString(), {2, 3});
    index.insert(stored.toStdString(), {1, 9});
    index.insert("file:///other.mp4", {1, 1});
    const QList<MediaAddress> both{{1, 9}, {2, 3}};
    QCOMPARE(index.candidates(QUrl(asked)), both);
    index.remove(stored.toStdString(), {1, 9});
    QCOMPARE(index.candidates(QUrl(asked)), QList<MediaAddress>{MediaAddress(2, 3)});
}

HALCYRA_TEST(TestLibraryFetch)
#include "test_libraryfetch.moc"

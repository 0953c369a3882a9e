#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/mediametadata.h"
#include "tests/ombra/liveserver.h"
#include "tests/support/testmain.h"
#include "tests/support/testmedia.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <array>

using namespace vantrel;
using namespace vantrel::ombra::test;

namespace {

const QByteArray library =
    R"({"collections":{"1":{"name":"one","slots":{"1":{"name":"clip","contentUrl":"file:///a",)"
    R"("isPlayable":false}}}},)"
    R"("playlists":{"2":{"name":"list","entries":{"1.5":{"slotUrl":"brume://collections/1/slots/1"}}}}})";

const QByteArray signOfLife = ":\n\n"; // a comment

Json parsed(const QByteArray& text)
{
    Json json;
    Json::parseString(text.toStdString(), json);
    return json;
}

} // namespace

class RestApiTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(m_live.mediaFolder()));
        QVERIFY(m_live.start());
    }

    void init() { QCOMPARE(m_live.request("POST", "/medialibrary", library).status, 200); }

    void answers_data()
    {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");

        const auto row = [](const char* name, const char* method, const char* path, const char* body,
                            int status) {
            QTest::newRow(name) << QByteArray(method) << QByteArray(path) << QByteArray(body) << status;
        };
        row("rename", "PATCH", "/medialibrary",
            R"([{"op":"replace","path":"/collections/1/name","value":"x"}])", 200);
        row("nothing", "PATCH", "/medialibrary", "[]", 200);
        row("no json", "PATCH", "/medialibrary", "[{", 400);
        row("empty body", "PATCH", "/medialibrary", "", 400);
        row("object", "PATCH", "/medialibrary", "{}", 400);
        row("unknown op", "PATCH", "/medialibrary", R"([{"op":"burn","path":""}])", 400);
        row("get op", "PATCH", "/medialibrary", R"([{"op":"get","path":""}])", 400);
        row("invoke op", "PATCH", "/medialibrary", R"([{"op":"invoke","path":"/a","value":{}}])", 400);
        row("no such path", "PATCH", "/medialibrary", R"([{"op":"remove","path":"/collections/7"}])", 409);
        row("failed test", "PATCH", "/medialibrary",
            R"([{"op":"replace","path":"/collections/1/name","value":"x"},{"op":"test","path":"/collections/1/name","value":"y"}])",
            412);
        row("wrong type", "PATCH", "/medialibrary",
            R"([{"op":"replace","path":"/collections/1/name","value":7}])", 422);
        row("slot 10000", "PATCH", "/medialibrary",
            R"([{"op":"add","path":"/collections/1/slots/10000","value":{}}])", 422);
        row("no library", "PATCH", "/medialibrary", R"([{"op":"replace","path":"","value":[]}])", 422);
        row("library", "GET", "/medialibrary", "", 200);
        row("library with query", "GET", "/medialibrary?x=1", "", 200);
        row("collections", "GET", "/collections", "", 200);
        row("playlists", "GET", "/playlists", "", 200);
        row("bad replacement", "POST", "/medialibrary", R"({"collections":[]})", 422);
        row("torn replacement", "POST", "/medialibrary", R"({"collections":)", 400);
        row("new playlists", "POST", "/playlists", R"([{"name":"p","entries":{}}])", 200);
        row("playlists as object", "POST", "/playlists", "{}", 422);
        row("bad playlist", "POST", "/playlists", R"([{"entries":{"0":{}}}])", 422);
        row("wrong method", "DELETE", "/medialibrary", "", 405);
        row("post to stream", "POST", "/sse", "", 405);
        row("plain events", "GET", "/events", "", 405);
        row("unknown", "GET", "/nothing", "", 404);
        row("root", "GET", "", "", 404);
        row("deeper", "GET", "/medialibrary/collections", "", 404);
        row("missing media", "GET", "/metadata/?file=file:///none.mp4", "", 200);
        row("missing picture", "GET", "/thumbnails/?file=file:///none.mp4", "", 404);
        row("climbing out encoded", "GET", "/thumbnails/?file=file:///%252e%252e%2fetc%2fpasswd", "", 404);
        row("other scheme", "GET", "/thumbnails/?file=http://localhost/a.mp4", "", 404);
        row("no file", "GET", "/thumbnails/", "", 400);
        row("bad escape", "GET", "/metadata/?file=%zz", "", 400);
        row("bad show", "POST", "/show/current", "{}", 400);
        row("bad section", "POST", "/show/current?include=lights",
            R"({"format":"halcyra-show","version":1,"library":{},"settings":{}})", 400);
        row("other version", "POST", "/show/current",
            R"({"format":"halcyra-show","version":9,"library":{},"settings":{}})", 409);
        row("other version forced", "POST", "/show/current?include=output&force",
            R"({"format":"halcyra-show","version":9,"library":{},"settings":{}})", 200);
    }

    void answers()
    {
        QFETCH(QByteArray, method);
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        const Json before = parsed(m_live.request("GET", "/medialibrary").body);
        const LiveServer::Answer answer = m_live.request(method, path, body);
        QCOMPARE(answer.status, status);
        const Json json = parsed(answer.body);
        if (status >= 400) {
            QVERIFY2(!json.get("error").asString().empty() && json.get("error").isString(),
                     answer.body.constData());
            QVERIFY(parsed(m_live.request("GET", "/medialibrary").body) == before);
        } else {
            QVERIFY2(json.isObject(), answer.body.constData());
        }
    }

    void takesWhatIsUpToDate_data()
    {
        QTest::addColumn<QByteArray>("match"); // NOW, OLD: the tags of the library and of the one before
        QTest::addColumn<int>("status");
        QTest::newRow("now") << QByteArray("NOW") << 200;
        QTest::newRow("one of several") << QByteArray("OLD ,\tNOW") << 200;
        QTest::newRow("whatever there is") << QByteArray("*") << 200;
        QTest::newRow("old") << QByteArray("OLD") << 412;
        QTest::newRow("weak") << QByteArray("W/NOW") << 412;
        QTest::newRow("of another server") << QByteArray("\"1\"") << 412;
        QTest::newRow("no tag") << QByteArray("now") << 412;
    }

    void takesWhatIsUpToDate()
    {
        QFETCH(QByteArray, match);
        QFETCH(int, status);
        const QByteArray old = m_live.request("GET", "/medialibrary").tag;
        const QByteArray rename = R"([{"op":"replace","path":"/collections/1/name","value":"%"}])";
        const QByteArray now =
            m_live.request("PATCH", "/medialibrary", QByteArray(rename).replace('%', 'a')).tag;
        QCOMPARE(m_live.request("GET", "/medialibrary").tag, now);
        QVERIFY(!now.isEmpty() && now != old);
        const QByteArray field = "If-Match: " + match.replace("NOW", now).replace("OLD", old) + "\r\n";
        const bool taken = status == 200;
        const LiveServer::Answer answer =
            m_live.request("PATCH", "/medialibrary", QByteArray(rename).replace('%', 'b'), field);
        QCOMPARE(answer.status, status);
        QCOMPARE(!answer.tag.isEmpty(), taken);
        const LiveServer::Answer after = m_live.request("GET", "/medialibrary");
        QCOMPARE(after.tag, taken ? answer.tag : now);
        QCOMPARE(parsed(after.body).get("collections").get("1").get("name").asString(),
                 std::string(taken ? "b" : "a"));
        for (const QByteArray path : {"/medialibrary", "/playlists"})
            QCOMPARE(
                m_live
                    .request("POST", path, path == "/playlists" ? "[]" : library, "If-Match: " + old + "\r\n")
                    .status,
                412);
    }

    void takesOneOfTwo_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<int>("taken");
        QTest::newRow("two edits") << QByteArray() << 1;
        QTest::newRow("one edit, sent again") << QByteArray("Idempotency-Key: \"one\"\r\n") << 2;
    }

    /// Two edits made for the same revision, the second before the first is on the disk.
    void takesOneOfTwo()
    {
        QFETCH(QByteArray, key);
        QFETCH(int, taken);
        const QByteArray field = "If-Match: " + m_live.request("GET", "/medialibrary").tag + "\r\n";
        const QByteArray add = R"([{"op":"add","path":"/collections/9","value":{"name":"new","slots":{}}}])";
        const QByteArray edit =
            "PATCH /api/brume/v1/medialibrary HTTP/1.1\r\nHost: localhost\r\n" + field + key +
            "Content-Type: application/json\r\nContent-Length: " + QByteArray::number(add.size()) +
            "\r\n\r\n" + add;
        std::array<QTcpSocket, 2> sockets;
        std::array<QByteArray, 2> answers;
        for (QTcpSocket& socket : sockets) {
            socket.connectToHost(QStringLiteral("127.0.0.1"), m_live.server().httpPort());
            socket.write(edit);
        }
        QVERIFY(m_live.waitFor([&] {
            for (std::size_t i = 0; i < sockets.size(); ++i)
                answers[i] += sockets[i].readAll();
            return answers[0].contains("}") && answers[1].contains("}");
        }));
        QCOMPARE(answers[0].startsWith("HTTP/1.1 200") + answers[1].startsWith("HTTP/1.1 200"), taken);
        QCOMPARE(answers[0].startsWith("HTTP/1.1 412") + answers[1].startsWith("HTTP/1.1 412"), 2 - taken);
    }

    /// A request that is sent again, since its answer was lost, is the edit that was made, whatever came
    /// since; one that was refused is not.
    void countsARepeatedEditOnce()
    {
        const QByteArray bad = R"([{"op":"remove","path":"/collections/99"}])";
        QCOMPARE(m_live.request("PATCH", "/medialibrary", bad, "Idempotency-Key: \"a\"\r\n").status, 409);
        const QByteArray tag = m_live.request("GET", "/medialibrary").tag;
        const QByteArray fields = "Idempotency-Key: \"a\"\r\nIf-Match: " + tag + "\r\n";
        const QByteArray patch = R"([{"op":"add","path":"/playlists/7","value":{"name":"7","entries":{}}}])";
        const LiveServer::Answer first = m_live.request("PATCH", "/medialibrary", patch, fields);
        QCOMPARE(first.status, 200);
        const QByteArray remove = R"([{"op":"remove","path":"/playlists/7"}])";
        const LiveServer::Answer last = m_live.request("PATCH", "/medialibrary", remove);
        QCOMPARE(last.status, 200);
        const LiveServer::Answer again = m_live.request("PATCH", "/medialibrary", patch, fields);
        QCOMPARE(again.status, 200);
        QCOMPARE(again.tag, first.tag);
        QCOMPARE(m_live.request("GET", "/medialibrary").tag, last.tag);
        QCOMPARE(
            m_live
                .request("PATCH", "/medialibrary", patch, "Idempotency-Key: " + QByteArray(129, 'a') + "\r\n")
                .status,
            400);
    }

    /// Each accepted patch is one message; a client that folds blanks as the application does ends with the
    /// same library as the server.
    void streamsEachPatchOnce()
    {
        MediaLibrary mirror;
        QVERIFY(mirror.parseJson(parsed(m_live.request("GET", "/medialibrary").body)));
        QTcpSocket stream;
        const QByteArray opened = openStream(stream);
        QVERIFY2(opened.startsWith("HTTP/1.1 200") && opened.contains("text/event-stream"),
                 opened.constData());

        const QList<QByteArray> patches = {
            R"([{"op":"replace","path":"/collections/1/name","value":"two  three   \ttab\u00a0\u2003wide \\  end "}])",
            R"([{"op":"add","path":"/collections/1/slots/5","value":{"name":" x  y"}},)"
            R"({"op":"move","from":"/collections/1/slots/5","path":"/collections/1/slots/6"}])",
            R"([{"op":"add","path":"/collections/1/slots/1/outpoint","value":4}])",
            R"([{"op":"remove","path":"/nothing"}])",
            R"([{"op":"add","path":"/playlists/3","value":{"name":"\n","entries":{}}}])",
        };
        QByteArray received;
        const auto read = [&] {
            received += stream.readAll();
            return received.replace(signOfLife, "");
        };
        int accepted = 0;
        for (const QByteArray& patch : patches)
            accepted += m_live.request("PATCH", "/medialibrary", patch).status == 200;
        QCOMPARE(accepted, 4);
        QVERIFY(m_live.waitFor([&] { return read().count("\n\n") >= accepted; }));
        QCOMPARE(m_live.request("PATCH", "/medialibrary", "[]").status, 200); // changes nothing, says nothing
        const QList<QByteArray> lines = received.split('\n');
        int messages = 0;
        for (const QByteArray& line : lines) {
            if (line.isEmpty())
                continue;
            QVERIFY2(line.startsWith("data:"), line.constData());
            Patch patch;
            const QString value = QString::fromUtf8(line.mid(5)).simplified();
            QVERIFY2(Patch::parseString(value.toStdString(), patch), line.constData());
            QCOMPARE(mirror.applyDiff(patch), 0);
            ++messages;
        }
        QCOMPARE(messages, accepted);
        // The last message and the library carry the same number, so that a client can tell which was first.
        Json last;
        QVERIFY(Json::parseString(lines.at(lines.size() - 3).mid(5).toStdString(), last));
        const QByteArray revision = QByteArray::number(qlonglong(last.at(0)->get("revision").asInt(-1)));
        QVERIFY2(m_live.exchange("GET /api/brume/v1/medialibrary HTTP/1.1\r\nHost: localhost\r\n\r\n")
                     .contains("ETag: \"" + revision + "\"\r\n"),
                 revision.constData());
        QVERIFY(mirror.toJson() == parsed(m_live.request("GET", "/medialibrary").body));

        // A replaced library comes as what differs.
        QCOMPARE(m_live.request("POST", "/medialibrary", library).status, 200);
        received.clear();
        QVERIFY(m_live.waitFor([&] { return read().endsWith("\n\n"); }));
        Patch difference;
        QVERIFY(Patch::parseString(received.mid(5).trimmed().toStdString(), difference));
        QCOMPARE(mirror.applyDiff(difference), 0);
        QVERIFY(mirror.toJson() == parsed(m_live.request("GET", "/medialibrary").body));
    }

    void streamsWhatDiffers_data()
    {
        QTest::addColumn<QByteArray>("patch");
        QTest::addColumn<QByteArray>("told"); // operations and paths
        const auto row = [](const char* name, const char* patch, const char* told) {
            QTest::newRow(name) << QByteArray(patch) << QByteArray(told);
        };
        row("root",
            R"([{"op":"replace","path":"","value":{"collections":{"1":{"name":"x","slots":{)"
            R"("1":{"name":"clip","contentUrl":"file:///a","isPlayable":false}}}},"playlists":{}}}])",
            "replace /collections/1/name, remove /playlists/2");
        row("all collections",
            R"([{"op":"add","path":"/collections","value":{"3":{"name":"y","slots":{}}}}])",
            "remove /collections/1, add /collections/3");
        row("a collection added over another",
            R"([{"op":"add","path":"/collections/1","value":{"name":"one","slots":{"2":{"name":"b"}}}}])",
            "remove /collections/1/slots/1, add /collections/1/slots/2");
        row("all slots", R"([{"op":"replace","path":"/collections/1/slots","value":{}}])",
            "remove /collections/1/slots/1");
        row("moved", R"([{"op":"move","from":"/collections/1/slots/1","path":"/collections/1/slots/4"}])",
            "remove /collections/1/slots/1, add /collections/1/slots/4");
        row("copied", R"([{"op":"copy","from":"/collections/1","path":"/collections/2"}])",
            "add /collections/2");
        row("there and back",
            R"([{"op":"move","from":"/collections/1","path":"/collections/2"},)"
            R"({"op":"move","from":"/collections/2","path":"/collections/1"}])",
            "");
    }

    /// However a client puts its edit, the others read additions, removals and replacements of what changed.
    void streamsWhatDiffers()
    {
        QFETCH(QByteArray, patch);
        MediaLibrary mirror;
        const LiveServer::Answer before = m_live.request("GET", "/medialibrary");
        QVERIFY(mirror.parseJson(parsed(before.body)));
        QTcpSocket stream;
        openStream(stream);
        const LiveServer::Answer answer = m_live.request("PATCH", "/medialibrary", patch);
        QCOMPARE(answer.status, 200);
        // An edit that changes nothing is told to nobody, so that it must not make another revision.
        QCOMPARE(m_live
                     .request("PATCH", "/medialibrary",
                              R"([{"op":"add","path":"/playlists/77","value":{"name":"end"}}])")
                     .status,
                 200);
        QByteArray received;
        QVERIFY(m_live.waitFor([&] { return (received += stream.readAll()).contains("/playlists/77"); }));
        QStringList told;
        for (const QByteArray& line : received.replace(signOfLife, "").split('\n')) {
            Patch difference;
            if (line.isEmpty() || line.contains("/playlists/77"))
                continue;
            QVERIFY2(Patch::parseString(line.mid(5).toStdString(), difference), line.constData());
            QCOMPARE(mirror.applyDiff(difference), 0);
            const Json operations = difference.toJson();
            operations.forEachItem([&](const Json& op) {
                told.append(
                    QString::fromStdString(op.get("op").asString() + " " + op.get("path").asString()));
                return true;
            });
        }
        QTEST(told.join(QStringLiteral(", ")).toUtf8(), "told");
        QCOMPARE(answer.tag != before.tag, !told.isEmpty());
    }

    void saysThatItIsThere()
    {
        QTcpSocket stream;
        openStream(stream);
        QByteArray received;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(m_live.waitFor([&] { return (received += stream.readAll()).count(signOfLife) >= 3; }));
        QVERIFY2(clock.elapsed() > 1500 && clock.elapsed() < 6000,
                 qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(received.replace(signOfLife, ""), QByteArray());
    }

    void numbersNewPlaylists()
    {
        QCOMPARE(m_live.request("POST", "/playlists", R"([{"name":"a"},{"name":"b","entries":{}}])").status,
                 200);
        const Json playlists = parsed(m_live.request("GET", "/playlists").body);
        QCOMPARE(playlists.size(), std::size_t(2));
        QCOMPARE(playlists.get("2").get("name").asString(), std::string("b"));
        QCOMPARE(parsed(m_live.request("GET", "/collections").body).get("1").get("name").asString(),
                 std::string("one"));
    }

    /// A file that appears is told on the WebSocket, described, and shown; when it goes it is missing.
    void followsTheMediaFolder()
    {
        QTcpSocket socket;
        socket.connectToHost(QStringLiteral("127.0.0.1"), m_live.server().httpPort());
        socket.write("GET /api/brume/v1/events HTTP/1.1\r\nHost: localhost\r\nUpgrade: "
                     "websocket\r\nConnection: Upgrade\r\n"
                     "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
        QByteArray received;
        const auto comes = [&](const QByteArray& text) {
            return m_live.waitFor([&] {
                received += socket.readAll();
                return received.contains(text);
            });
        };
        QVERIFY(comes("s3pPLMBiTxaQ9kYGzzhZRbK+xOo="));

        const test::Quadrants colours = {Qt::red, Qt::green, Qt::blue, Qt::white};
        const QString file = m_live.mediaFolder() + QStringLiteral("/new clip & co.mp4");
        if (!test::makeClip(m_live.mediaFolder() + QStringLiteral("/.part.mp4"), colours, 2))
            QSKIP("the ffmpeg tool is missing");
        QVERIFY(QFile::rename(m_live.mediaFolder() + QStringLiteral("/.part.mp4"), file));
        const QByteArray event = R"({"mediaUrl":"file:///new%20clip%20&%20co.mp4","type":"metadata-added"})";
        QVERIFY(comes(event));

        const QByteArray query = "?file=file:///new%2520clip%2520%26%2520co.mp4";
        const LiveServer::Answer described = m_live.request("GET", "/metadata/" + query);
        MediaMetadata metadata;
        QVERIFY2(metadata.parseJson(parsed(described.body)), described.body.constData());
        QVERIFY(metadata.getIsPlayable());
        QCOMPARE(metadata.getMediaType(), MediaType::VideoFile);
        QVERIFY(metadata.getVideo() && !metadata.getImage());
        QCOMPARE(metadata.getVideo()->width.value_or(0), 320);
        QCOMPARE(metadata.getFileSize().value_or(0), QFileInfo(file).size());
        QCOMPARE(metadata.getModified().value_or(DateTime()).secondsSinceEpoch(),
                 QFileInfo(file).lastModified().toSecsSinceEpoch());
        QVERIFY(metadata.getImported().value_or(DateTime()) <= DateTime(QDateTime::currentSecsSinceEpoch()));
        QVERIFY(qAbs(metadata.getDuration().value_or(0) - 2) < 0.1);
        const QImage picture = QImage::fromData(m_live.request("GET", "/thumbnails/" + query).body, "JPG");
        QVERIFY(test::alike(test::quadrantsOf(picture), colours));

        QVERIFY(QFile::remove(file));
        QVERIFY(comes("metadata-removed"));
        QVERIFY(metadata.parseJson(parsed(m_live.request("GET", "/metadata/" + query).body)));
        QVERIFY(!metadata.getIsPlayable());
        QCOMPARE(metadata.getError(),
                 std::string("The media folder has no new clip & co.mp4. Copy it there or "
                             "give the slot another file."));
    }

    void exportsAndImportsTheShow()
    {
        const LiveServer::Answer show = m_live.request("GET", "/show/current");
        QCOMPARE(show.status, 200);
        QCOMPARE(m_live.request("POST", "/medialibrary", R"({"collections":{},"playlists":{}})").status, 200);
        QCOMPARE(m_live.request("POST", "/show/current?include=output,audio", show.body).status, 200);
        QCOMPARE(parsed(m_live.request("GET", "/collections").body).size(), std::size_t(0));
        // What is not there to be played is told by its name before anything is changed.
        const LiveServer::Answer refused =
            m_live.request("POST", "/show/current?include=medialibrary,playback", show.body);
        QCOMPARE(refused.status, 409);
        QVERIFY(refused.body.contains("One of the show's media is not on this server."));
        QCOMPARE(parsed(refused.body).get("missing").size(), std::size_t(1));
        QCOMPARE(parsed(m_live.request("GET", "/collections").body).size(), std::size_t(0));
        const LiveServer::Answer forced =
            m_live.request("POST", "/show/current?include=medialibrary,playback&force", show.body);
        QCOMPARE(forced.status, 200);
        QCOMPARE(parsed(forced.body).get("missing").size(), std::size_t(1));
        QCOMPARE(parsed(m_live.request("GET", "/collections").body).size(), std::size_t(1));
    }

private:
    QByteArray openStream(QTcpSocket& stream)
    {
        stream.connectToHost(QStringLiteral("127.0.0.1"), m_live.server().httpPort());
        stream.write(
            "GET /api/brume/v1/sse?topic=collections&topic=playlists HTTP/1.1\r\nHost: localhost\r\n\r\n");
        QByteArray head;
        m_live.waitFor([&] {
            head += stream.readAll();
            return head.contains("\r\n\r\n");
        });
        return head;
    }

    LiveServer m_live;
};

HALCYRA_TEST(RestApiTest)
#include "restapitest.moc"

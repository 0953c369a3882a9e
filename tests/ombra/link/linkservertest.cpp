#include "ombra/link/linkserver.h"

#include "ombra/link/changebatch.h"
#include "ombra/link/crossedwrites.h"
#include "ombra/outputs/outputs.h"
#include "tests/ombra/linkpeer.h"
#include "tests/support/testmain.h"
#include "tests/support/threadwork.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <chrono>

using namespace vantrel;
using namespace vantrel::ombra;
using Client = vantrel::ombra::test::LinkPeer;

namespace {

const std::string volume = "/device/channels/0/program/properties/volume";

std::string replaceOf(const std::string& path, const std::string& value)
{
    return R"([{"op":"replace","path":")" + path + R"(","value":)" + value + "}]";
}

} // namespace

class LinkServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scene = makeRef<Scene>();
        Outputs(*m_scene).build();
        m_invoked.clear();
        m_written.clear();
        m_server = std::make_unique<LinkServer>(
            m_io, *m_scene,
            LinkServer::Handlers{[this](PathView path, const Json& args, std::string* error) {
                                     m_invoked.append(
                                         QString::fromStdString(path.toString() + args.toString()));
                                     *error = "refused";
                                     return false;
                                 },
                                 [this](Object*, const PropertyInfo* property) {
                                     m_written.append(QString::fromStdString(property->name));
                                 }});
        std::string error;
        QVERIFY2(m_server->listen(boost::asio::ip::address_v4::loopback(), 0, &error), error.c_str());
    }

    void cleanup()
    {
        m_server.reset();
        m_io.restart();
        m_io.poll();
    }

    void sendsTheWholeSceneInPieces_data()
    {
        QTest::addColumn<int>("surfaces");
        QTest::addColumn<int>("nameBytes"); // of each
        QTest::newRow("many") << 2500 << 4;
        QTest::newRow("more than may wait for a client") << 2200 << 32 * 1024;
    }

    void sendsTheWholeSceneInPieces()
    {
        QFETCH(int, surfaces);
        QFETCH(int, nameBytes);
        Patch many;
        for (int i = 0; i < surfaces; ++i) {
            std::string name(std::size_t(nameBytes), 'x');
            name += std::to_string(i);
            many.append(
                {PatchOpType::Add,
                 Path("/device/surfaces/-"),
                 {},
                 Json::object({{"type", "Surface"}, {"properties", Json::object({{"name", name}})}})});
        }
        QVERIFY(m_scene->apply(many, true));
        QVERIFY(nameBytes < 1000 || std::size_t(surfaces) * std::size_t(nameBytes) > LinkClient::maxWaiting);
        Client client(m_server->port());
        client.send(R"([{"op":"get","path":""}])");
        const auto isWhole = [&] {
            const Object* last = client.scene.findObject("/device/surfaces/" + std::to_string(surfaces - 1));
            return last && Scene::toJson(client.scene.root()) == Scene::toJson(m_scene->root());
        };
        QVERIFY(waitFor(isWhole, {&client}, 30000 * vantrel::test::slowness));
        QVERIFY(client.fits);
        QVERIFY(client.frames >= 3);
        QVERIFY(client.largest <= LinkServer::operationsPerFrame);
    }

    void tellsTheOthers()
    {
        Client writer(m_server->port());
        Client reader(m_server->port());
        Client newcomer(m_server->port());
        for (Client* client : {&writer, &reader})
            client->send(R"([{"op":"get","path":""}])");
        QVERIFY(waitFor([&] { return !writer.operations.empty() && !reader.operations.empty(); },
                        {&writer, &reader}));
        writer.operations.clear();
        writer.send(replaceOf(volume, "0.25"));
        QVERIFY(waitFor([&] { return reader.value(volume) == "0.25"; }, {&writer, &reader}));
        QCOMPARE(m_written, QStringList{QStringLiteral("volume")});

        // What the server does goes to both; of its own change the writer hears nothing but what it wrote.
        m_scene->replaceProperty(m_scene->find("/device/channels/0/program/properties/mediaPosition"),
                                 Variant::from(3.5));
        const std::string position = "/device/channels/0/program/properties/mediaPosition";
        QVERIFY(waitFor([&] { return writer.value(position) == "3.5" && reader.value(position) == "3.5"; },
                        {&writer, &reader}));
        for (const PatchOp& op : writer.operations)
            QCOMPARE(op.value.asDouble(), op.path == Path(volume) ? 0.25 : 3.5);

        reader.send(R"([{"op":"add","path":"/device/surfaces/0","value":{}}])");
        QVERIFY(waitFor([&] { return writer.scene.findObject("/device/surfaces/0") != nullptr; },
                        {&writer, &reader}));
        QVERIFY(writer.fits && reader.fits);

        // Who has no scene yet hears of no change in it.
        QVERIFY(waitFor([&] { return newcomer.frames > 1; }, {&newcomer}));
        QVERIFY(newcomer.operations.empty());
        newcomer.send(R"([{"op":"get","path":""}])");
        QVERIFY(
            waitFor([&] { return Scene::toJson(newcomer.scene.root()) == Scene::toJson(m_scene->root()); },
                    {&newcomer}));
    }

    /// Somebody sends as much as a frame may hold: others go on being heard.
    void aLargeFrameHoldsNobodyUp()
    {
        Client large(m_server->port());
        Client other(m_server->port());
        other.send(R"([{"op":"get","path":""}])");
        QVERIFY(waitFor([&] { return !other.operations.empty(); }, {&large, &other}));
        const std::string text =
            R"([{"op":"test","path":"/device/surfaces/0","value":{"a":[1,2,3,4,5,6,7,8]}})";
        std::string frame = text;
        while (frame.size() < 60u * 1024 * 1024)
            frame += ',' + text.substr(1);
        frame += ",{\"op\":\"replace\",\"path\":\"" + volume + "\",\"value\":0.75}]";
        const auto length = static_cast<std::uint32_t>(frame.size());
        QByteArray bytes;
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(length >> shift & 0xff);
        large.socket.write(bytes + QByteArray::fromStdString(frame));
        m_longestTurn = 0;
        QVERIFY(waitFor([&] { return other.value(volume) == "0.75"; }, {&large, &other}));
        QVERIFY2(m_longestTurn <= 50, qPrintable(QString::number(m_longestTurn)));
    }

    /// What is announced counts, before a byte of it has come: four of 60 MiB at a time.
    void largeFramesAreBoundedTogether()
    {
        std::vector<std::unique_ptr<Client>> clients;
        for (int i = 0; i < 10; ++i) {
            clients.push_back(std::make_unique<Client>(m_server->port()));
            clients.back()->socket.write(QByteArray("\x03\xc0\0\0[", 5));
        }
        const auto ended = [&] {
            return std::ranges::count_if(clients, [](const auto& client) {
                return client->socket.state() == QAbstractSocket::UnconnectedState;
            });
        };
        QVERIFY(waitFor([&] { return ended() == 6; }, {}));
        Client other(m_server->port());
        other.send(R"([{"op":"get","path":""}])");
        QVERIFY(waitFor([&] { return !other.operations.empty(); }, {&other}));
        QCOMPARE(ended(), 6);
        clients.clear();
        Client next(m_server->port()); // and the room is there again
        QVERIFY(waitFor([&] { return next.socket.state() == QAbstractSocket::ConnectedState; }, {}));
        next.socket.write(QByteArray("\x03\xc0\0\0[", 5));
        QVERIFY(!waitFor([&] { return next.socket.state() == QAbstractSocket::UnconnectedState; }, {}, 300));
    }

    void peersLeaveRoomForOthers()
    {
        const auto peer = [](const char* address) { return boost::asio::ip::make_address(address); };
        PeerLimit limit(4, 3);
        QStringList ended;
        std::vector<PeerLimit::Place> places;
        const auto enters = [&](const char* address) {
            PeerLimit::Place place = limit.enter(peer(address));
            const QString name = QString::fromLatin1(address) + u'/' + QString::number(places.size());
            if (!place)
                return false;
            place->giveWay = [&ended, &places, name, at = places.size()] {
                ended += name;
                places[at].reset();
            };
            places.push_back(std::move(place));
            return true;
        };
        QVERIFY(enters("10.0.0.1") && enters("10.0.0.1") && enters("10.0.0.1"));
        QVERIFY(!enters("10.0.0.1")); // as many as one may have
        QVERIFY(enters("10.0.0.2"));
        QVERIFY(enters("10.0.0.3")); // the fullest gives way to one with fewer
        QCOMPARE(ended, QStringList{QStringLiteral("10.0.0.1/0")});
        QVERIFY(!enters("10.0.0.2")); // not to its like
        places.back().reset();
        QVERIFY(enters("10.0.0.4"));
    }

    /// The scene stays small, whatever clients add to it.
    void refusesWhatIsTooMuch()
    {
        Client client(m_server->port());
        const auto add = [&](const std::string& path, const Json& value) {
            Patch patch;
            patch.append({PatchOpType::Add, Path(path), {}, value});
            client.send(patch.toJson().toString());
        };
        const auto named = [](int bytes) {
            const Json name(std::string(std::size_t(bytes), 'x'));
            return Json::object({{"type", "Surface"}, {"properties", Json::object({{"name", name}})}});
        };
        const auto settles = [&] { // all that was sent before is done
            m_written.clear();
            client.send(replaceOf(volume, "0.125"));
            return waitFor([&] { return m_written.contains(QStringLiteral("volume")); }, {&client});
        };
        Json corners = Json::object(); // each of them small
        for (int i = 0; i < 2000; ++i)
            corners.set(std::to_string(i), Json::object({{"type", "Corner"}}));
        add("/device/surfaces/-", named(20'000));
        add("/device/surfaces/-", Json::object({{"type", "Surface"}, {"corners", corners}}));
        add("/device/surfaces/-", named(257));
        add("/device/surfaces/" + std::string(257, 'x'), named(1));
        QVERIFY(settles());
        QCOMPARE(m_scene->findObject("/device/surfaces")->childCount(), 0);

        Patch many;
        for (int i = 0; i < 1001; ++i)
            many.append(
                {PatchOpType::Add, Path("/device/surfaces/-"), {}, Json::object({{"type", "Surface"}})});
        client.send(many.toJson().toString());
        const std::string name = "/device/surfaces/0/properties/name";
        client.send(replaceOf(name, '"' + std::string(256, 'a') + '"'));
        client.send(replaceOf(name, '"' + std::string(257, 'b') + '"'));
        add(name, Json(std::string(257, 'c')));
        QVERIFY(settles());
        QCOMPARE(m_scene->findObject("/device/surfaces")->childCount(), 1000);
        Variant value;
        QVERIFY(m_scene->getProperty(m_scene->find(name), value));
        QCOMPARE(value.asString(), std::string(256, 'a'));
    }

    /// Who has asked for nothing, and who has got all, hear within 250 ms that the server is there.
    void saysThatItIsThere()
    {
        Client stranger(m_server->port());
        Client guest(m_server->port());
        guest.send(R"([{"op":"get","path":""}])");
        QVERIFY(
            waitFor([&] { return !guest.operations.empty() && stranger.frames > 0; }, {&guest, &stranger}));
        guest.operations.clear();
        guest.frames = stranger.frames = 0;
        QElapsedTimer clock;
        clock.start();
        QVERIFY(waitFor([&] { return std::min(guest.frames, stranger.frames) >= 8; }, {&guest, &stranger}));
        QVERIFY2(clock.elapsed() > 500 && clock.elapsed() < 8 * 250,
                 qPrintable(QString::number(clock.elapsed())));
        QVERIFY(guest.operations.empty() && stranger.operations.empty());
    }

    /// The server and a client change the same value at once, so that the two cross on the link: the client's
    /// copy ends as the scene does. While it goes on writing it is left alone.
    void endsWithTheSameValue()
    {
        Client client(m_server->port());
        client.send(R"([{"op":"get","path":""}])");
        QVERIFY(waitFor([&] { return !client.operations.empty(); }, {&client}));
        for (int i = 0; i < 20; ++i) {
            const std::string mine = "0." + std::to_string(10 + i);
            m_scene->replaceProperty(m_scene->find(volume), Variant::from(0.5));
            client.send(replaceOf(volume, mine)); // before it has read anything
            QVERIFY(client.scene.replaceProperty(client.scene.find(volume), Variant::from(std::stod(mine))));
            m_written.clear();
            QVERIFY(waitFor([&] { return !m_written.isEmpty(); }, {&client}));
        }
        Variant value;
        QVERIFY(m_scene->getProperty(m_scene->find(volume), value));
        QVERIFY(waitFor([&] { return client.value(volume) == value.asString(); }, {&client}));
        QCOMPARE(value.asString(), std::string("0.29"));
    }

    void crossedWrites()
    {
        using namespace std::chrono_literals;
        const Path path(volume);
        const CrossedWrites::Time start{1h};
        CrossedWrites writes;
        writes.written(path, start); // nothing was on its way
        QVERIFY(writes.takeDue(start + 1s).empty());
        writes.sent(path, start + 2s);
        for (const auto time : {2100ms, 2200ms, 2300ms}) {
            writes.written(path, start + time);
            writes.written(Path("/other"), start + time);
            QVERIFY(writes.takeDue(start + time + 150ms).empty()); // still at it
        }
        QCOMPARE(writes.takeDue(start + 2500ms), std::vector<Path>{path});
        QVERIFY(writes.takeDue(start + 3s).empty());
        writes.written(path, start + 8s); // it has been read by now
        QVERIFY(writes.takeDue(start + 9s).empty());
        writes.sentMuch(start + 9s);
        writes.written(Path("/other"), start + 10s);
        QCOMPARE(writes.takeDue(start + 11s), std::vector<Path>{Path("/other")});
    }

    void answersGets_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("answered");
        QTest::newRow("property") << QByteArray(volume.c_str()) << true;
        QTest::newRow("object") << QByteArray("/device/channels/0/preview") << true;
        QTest::newRow("nothing") << QByteArray("/device/channels/7") << false;
    }

    void answersGets()
    {
        QFETCH(QByteArray, path);
        QFETCH(bool, answered);
        Client client(m_server->port());
        client.send(R"([{"op":"get","path":")" + path.toStdString() +
                    R"("},{"op":"get","path":"/device/showConfiguration"}])");
        QVERIFY(waitFor([&] { return client.operations.size() == (answered ? 2u : 1u); }, {&client}));
        if (answered) {
            QVERIFY(client.operations[0].op == PatchOpType::Replace);
            QCOMPARE(client.operations[0].path.toString(), path.toStdString());
        }
    }

    /// A refused write leaves the scene alone and puts the client's copy right.
    void refusesWrites_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("value");
        const QByteArray program("/device/channels/0/program/properties/");
        QTest::newRow("volume above 1") << program + "volume" << QByteArray("1.5");
        QTest::newRow("text as volume") << program + "volume" << QByteArray("\"1\"");
        QTest::newRow("position") << program + "mediaPosition" << QByteArray("9");
        QTest::newRow("source mode") << program + "sourceMode" << QByteArray("1");
        QTest::newRow("unknown state") << program + "state" << QByteArray("\"run\"");
        QTest::newRow("output width")
            << QByteArray("/device/system/gpus/0/outputs/0/properties/width") << QByteArray("1");
        QTest::newRow("scale mode") << QByteArray("/device/channels/0/mappings/0/properties/defaultScaleMode")
                                    << QByteArray("\"huge\"");
        QTest::newRow("object") << QByteArray("/device/channels/0") << QByteArray("{}");
    }

    void refusesWrites()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, value);
        const Json before = Scene::toJson(m_scene->root());
        Client client(m_server->port());
        client.send(replaceOf(path.toStdString(), value.toStdString()));
        QVERIFY(waitFor([&] { return client.operations.size() == 1; }, {&client}));
        QCOMPARE(client.operations[0].path.toString(), path.toStdString());
        QVERIFY(Scene::toJson(m_scene->root()) == before);
        QVERIFY(m_written.isEmpty());
    }

    void passesCallsOn()
    {
        Client client(m_server->port());
        client.send(
            R"([{"op":"invoke","path":"/device/channels/0/methods/take","value":{"transitionType":0}}])");
        QVERIFY(waitFor([&] { return !m_invoked.isEmpty(); }, {&client}));
        QCOMPARE(m_invoked.first(), QStringLiteral(R"(/device/channels/0/methods/take{"transitionType":0})"));
    }

    void badBytesEndOneLinkOnly_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("too long") << QByteArray("\xff\xff\xff\xff", 4);
        QTest::newRow("no json") << QByteArray("\0\0\0\2[{", 6);
        QTest::newRow("no operations") << QByteArray("\0\0\0\2{}", 6);
        QTest::newRow("unknown operation") << QByteArray("\0\0\0\x1b[{\"op\":\"burn\",\"path\":\"/a\"}]", 31);
    }

    void badBytesEndOneLinkOnly()
    {
        QFETCH(QByteArray, bytes);
        Client good(m_server->port());
        Client bad(m_server->port());
        good.send(R"([{"op":"get","path":""}])");
        QVERIFY(waitFor([&] { return !good.operations.empty(); }, {&good}));
        bad.socket.write(bytes);
        QVERIFY(waitFor([&] { return bad.socket.state() == QAbstractSocket::UnconnectedState; }, {&bad}));
        m_scene->replaceProperty(m_scene->find(volume), Variant::from(0.5));
        QVERIFY(waitFor([&] { return good.value(volume) == "0.5"; }, {&good}));
    }

    /// While a client does not read, its changes fold; it ends with the newest values.
    void foldsForSlowClients()
    {
        Client slow(m_server->port());
        slow.socket.setReadBufferSize(4096);
        slow.send(R"([{"op":"get","path":""}])");
        QVERIFY(waitFor([&] { return !slow.operations.empty(); }, {&slow}));
        const std::string text(200'000, 'x'); // large values fill the buffers of the system soon
        for (int i = 0; i < 200; ++i) {
            m_scene->replaceProperty(m_scene->find("/device/channels/0/program/properties/media"),
                                     Variant::from(text + std::to_string(i)));
            m_io.restart();
            m_io.poll();
        }
        slow.socket.setReadBufferSize(0);
        QVERIFY(
            waitFor([&] { return slow.value("/device/channels/0/program/properties/media") == text + "199"; },
                    {&slow}));
        QVERIFY2(slow.frames < 150, qPrintable(QString::number(slow.frames)));
    }

    void batchesKeepTheOrderAroundStructure()
    {
        ChangeBatch batch;
        const auto replace = [&](const char* path, int value) {
            batch.add({PatchOpType::Replace, Path(path), {}, Json(value)});
        };
        replace("/a/0/properties/x", 1);
        replace("/a/0/properties/y", 2);
        replace("/a/0/properties/x", 3);
        batch.add({PatchOpType::Remove, Path("/a/0"), {}, {}});
        replace("/a/0/properties/x", 4);
        QVERIFY(batch.bytes() > 0);
        QCOMPARE(
            batch.take().toJson().toString(),
            std::string(
                R"([{"op":"replace","path":"/a/0/properties/x","value":3},)"
                R"({"op":"replace","path":"/a/0/properties/y","value":2},)"
                R"({"op":"remove","path":"/a/0"},{"op":"replace","path":"/a/0/properties/x","value":4}])"));
        QVERIFY(batch.empty() && batch.bytes() == 0);
    }

private:
    bool waitFor(const std::function<bool()>& condition, std::initializer_list<Client*> clients,
                 qint64 patience = 10000 * vantrel::test::slowness)
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < patience;) {
            if (condition())
                return true;
            m_io.restart();
            const double before = vantrel::test::threadWorkMs();
            m_io.run_for(std::chrono::milliseconds(1));
            m_longestTurn = std::max(m_longestTurn, vantrel::test::threadWorkMs() - before);
            QCoreApplication::processEvents();
            for (Client* client : clients)
                client->read();
        }
        return false;
    }

    boost::asio::io_context m_io;
    Ref<Scene> m_scene;
    std::unique_ptr<LinkServer> m_server;
    QStringList m_invoked;
    QStringList m_written;
    double m_longestTurn = 0; // milliseconds
};

HALCYRA_TEST(LinkServerTest)
#include "linkservertest.moc"

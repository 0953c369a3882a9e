#include "tarn/preview/audiolevels.h"
#include "tarn/preview/previewclient.h"
#include "tarn/preview/previewwire.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <atomic>
#include <random>
#include <thread>

using namespace vantrel;
using previewwire::Decoder;
using vantrel::test::LogCapture;

namespace {

constexpr int patience = 5000;

PreviewFrame picture(const std::string& source, int stream, long long time, int width = 6, int height = 4)
{
    auto* surface = new Surface;
    Frame frame(surface, time); // owns it from here
    surface->format = Surface::formatRgb24;
    surface->width = width;
    surface->height = height;
    surface->bytesPerLine = width * 3 + 2;
    surface->pixels.resize(static_cast<std::size_t>(height * surface->bytesPerLine));
    for (std::size_t i = 0; i < surface->pixels.size(); ++i)
        surface->pixels[i] = static_cast<std::uint8_t>(i * 7 + static_cast<std::size_t>(time));
    frame.setStreamIndex(stream);
    return {source, frame};
}

bool same(const PreviewFrame& a, const PreviewFrame& b)
{
    const Surface* x = a.frame.getSurface();
    const Surface* y = b.frame.getSurface();
    return a.source == b.source && a.frame.getTime() == b.frame.getTime() &&
           a.frame.getStreamIndex() == b.frame.getStreamIndex() && x && y && x->format == y->format &&
           x->width == y->width && x->height == y->height && x->bytesPerLine == y->bytesPerLine &&
           x->pixels == y->pixels;
}

/// Feeds bytes in pieces of at most the given size; the frames that came out, and how it ended.
std::vector<PreviewFrame> decode(Decoder& decoder, const std::string& bytes, std::size_t piece,
                                 Decoder::Result& result)
{
    std::vector<PreviewFrame> frames;
    result = Decoder::Result::NeedMore;
    for (std::size_t at = 0; at < bytes.size() && result != Decoder::Result::Error;) {
        const auto space = decoder.space();
        const std::size_t count = std::min({piece, space.size(), bytes.size() - at});
        std::copy_n(bytes.data() + at, count, space.data());
        at += count;
        result = decoder.commit(count);
        if (result == Decoder::Result::Frame)
            frames.push_back(decoder.take());
    }
    return frames;
}

/// One preview connection as the application has it, and the server's end of it.
struct Link
{
    Link()
    {
        if (!server.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
        thread = std::thread([this, port = server.serverPort()] {
            isConnected = client.connect({boost::asio::ip::make_address("127.0.0.1"), port}, 0, nullptr);
            client.run();
            isOver = true;
        });
        QElapsedTimer clock;
        clock.start();
        while (!(isConnected && socket) && clock.elapsed() < patience) {
            if (!socket && server.waitForNewConnection(20))
                socket = server.nextPendingConnection();
        }
    }
    ~Link()
    {
        client.disconnect();
        thread.join();
    }
    void send(const std::string& bytes) { socket->write(bytes.data(), static_cast<qint64>(bytes.size())); }

    PreviewClient client;
    QTcpServer server;
    QTcpSocket* socket = nullptr;
    std::atomic<bool> isConnected{false};
    std::atomic<bool> isOver{false};
    std::thread thread;
};

} // namespace

class TestPreview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesTheWireInAnyPieces();
    void refusesLies_data();
    void refusesLies();
    void encodesNothingThatWouldBeRefused();
    void levelsTravelAsFrames();
    void givesTheNewestOfEachStream();
    void keepsNoQueue();
    void disconnectEndsRunning();
    void endsOnLies();
    void runsAgainAfterReconnect();
    void returnsAtOnceWithoutConnection();
};

void TestPreview::survivesTheWireInAnyPieces()
{
    const PreviewFrame first = picture("/device/channels/0/preview", 0, -5);
    const PreviewFrame second = picture("", 7, 1'000'000'000'000, 1, 1);
    const std::string bytes =
        previewwire::encode(first) + previewwire::encode(second) + previewwire::encode(first);
    QCOMPARE(bytes.substr(0, 8), std::string("OPVW\1\0\x21\0", 8));
    for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{40}, std::size_t{100000}}) {
        Decoder decoder;
        Decoder::Result result;
        const auto frames = decode(decoder, bytes, piece, result);
        QCOMPARE(frames.size(), std::size_t{3});
        QVERIFY(same(frames[0], first) && same(frames[1], second) && same(frames[2], first));
    }
}

void TestPreview::refusesLies_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<quint32>("number");
    QTest::newRow("magic") << 0 << 0x31323334u;
    QTest::newRow("version") << 4 << 2u;
    QTest::newRow("no width") << 8 << 0u;
    QTest::newRow("width") << 8 << 8193u;
    QTest::newRow("negative width") << 8 << 0xffffffffu;
    QTest::newRow("width beyond its line") << 8 << 7u;
    QTest::newRow("no height") << 12 << 0u;
    QTest::newRow("height") << 12 << 8193u;
    QTest::newRow("height beyond its pixels") << 12 << 5u;
    QTest::newRow("bytes per line") << 16 << 0x80000000u;
    QTest::newRow("short lines") << 16 << 17u;
    QTest::newRow("source") << 32 << 4097u;
    QTest::newRow("pixels") << 36 << 0xffffffffu;
    QTest::newRow("a byte too few") << 36 << 79u;
}

void TestPreview::refusesLies()
{
    QFETCH(int, offset);
    QFETCH(quint32, number);
    std::string bytes = previewwire::encode(picture("s", 0, 1));
    QCOMPARE(bytes.size(), std::size_t{40 + 1 + 80});
    for (int i = 0; i < 4; ++i)
        bytes[static_cast<std::size_t>(offset + i)] = static_cast<char>(number >> 8 * i);
    Decoder decoder;
    Decoder::Result result;
    QVERIFY(decode(decoder, bytes, 1000, result).empty());
    QCOMPARE(result, Decoder::Result::Error);
    QVERIFY(!decoder.message().empty());
    QCOMPARE(decoder.commit(0), Decoder::Result::Error);
}

void TestPreview::encodesNothingThatWouldBeRefused()
{
    QVERIFY(previewwire::encode({"s", Frame()}).empty());
    QVERIFY(previewwire::encode(picture(std::string(4097, 's'), 0, 0)).empty());
    QVERIFY(previewwire::encode(picture("s", 0, 0, 8193, 1)).empty());
    PreviewFrame lying = picture("s", 0, 0);
    lying.frame.getSurface()->pixels.pop_back();
    QVERIFY(previewwire::encode(lying).empty());
}

void TestPreview::levelsTravelAsFrames()
{
    AudioLevels loud;
    loud.channels = {{-6.02, -9.03}, {AudioLevels::silence, -400}, {12.5, 0}};
    Decoder decoder;
    Decoder::Result result;
    const std::string bytes = previewwire::encode({"s", Frame(loud.toSurface().get(), 1)}) +
                              previewwire::encode({"s", Frame(AudioLevels().toSurface().get(), 2)});
    QCOMPARE(bytes.size(), std::size_t{40 + 1 + 12 + 40 + 1});
    QCOMPARE(bytes.substr(41, 8), std::string("\xa6\xfd\x79\xfc\x00\x80\x00\x80", 8));
    const auto frames = decode(decoder, bytes, 3, result);
    QCOMPARE(frames.size(), std::size_t{2});
    loud.channels[1].rms = AudioLevels::silence; // nothing is as quiet
    QVERIFY(AudioLevels::fromSurface(frames[0].frame.getSurface()) == loud);
    QCOMPARE(loud.peak(), 12.5);
    QVERIFY(AudioLevels::fromSurface(frames[1].frame.getSurface()) == AudioLevels());

    loud.channels.assign(12, {-1, -1});
    QCOMPARE(AudioLevels::fromSurface(loud.toSurface().get())->channels.size(), std::size_t{8});
    const auto damaged = loud.toSurface();
    damaged->pixels.pop_back();
    QVERIFY(!AudioLevels::fromSurface(damaged.get()));
    QVERIFY(!AudioLevels::fromSurface(picture("s", 0, 1).frame.getSurface()));
    QVERIFY(!AudioLevels::fromSurface(nullptr));
}

void TestPreview::givesTheNewestOfEachStream()
{
    Link link;
    QVERIFY(link.socket);
    std::atomic<int> told{0};
    link.client.addFrameCallback([&] { ++told; });
    std::string bytes;
    for (int i = 0; i < 50; ++i)
        bytes += previewwire::encode(picture("a", 0, i)) + previewwire::encode(picture("a", 1, i)) +
                 previewwire::encode(picture("b", 0, i));
    link.send(bytes);
    QTRY_COMPARE_WITH_TIMEOUT(told.load(), 150, patience);
    PreviewFrame frame;
    for (const auto& [source, stream] : {std::pair("a", 0), std::pair("a", 1), std::pair("b", 0)}) {
        QVERIFY(link.client.pollFrame(frame, 0));
        QVERIFY(same(frame, picture(source, stream, 49)));
    }
    QVERIFY(!link.client.pollFrame(frame, 0));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!link.client.pollFrame(frame, 30));
    QVERIFY(clock.elapsed() >= 29);
}

void TestPreview::keepsNoQueue()
{
    Link link;
    QVERIFY(link.socket);
    std::atomic<int> told{0};
    link.client.addFrameCallback([&] { ++told; });
    std::string bytes;
    for (int i = 0; i < 500; ++i)
        bytes += previewwire::encode(picture("source " + std::to_string(i), 0, i));
    link.send(bytes);
    QTRY_COMPARE_WITH_TIMEOUT(told.load(), 500, patience);
    int kept = 0;
    PreviewFrame frame;
    for (; link.client.pollFrame(frame, 0); ++kept)
        QVERIFY(frame.frame.getTime() >= 400); // the older ones went
    QVERIFY(kept > 0 && kept < 100);
}

void TestPreview::disconnectEndsRunning()
{
    const LogCapture log;
    Link link;
    QVERIFY(link.socket);
    link.send(previewwire::encode(picture("a", 0, 0)).substr(0, 70)); // and then no more
    QVERIFY(!link.isOver);
    link.client.disconnect();
    QTRY_VERIFY_WITH_TIMEOUT(link.isOver, patience);
    QCOMPARE(log.lines(), QStringList());
}

void TestPreview::endsOnLies()
{
    const LogCapture log;
    Link link;
    QVERIFY(link.socket);
    link.send(previewwire::encode(picture("a", 0, 0)) + std::string(100, 'x'));
    QTRY_VERIFY_WITH_TIMEOUT(link.isOver, patience);
    PreviewFrame frame;
    QVERIFY(link.client.pollFrame(frame, 0));
    QCOMPARE(log.lines(),
             QStringList(QStringLiteral("preview: The preview ended: no preview frame of version 1")));
}

void TestPreview::runsAgainAfterReconnect()
{
    Link link;
    QVERIFY(link.socket);
    // As the preview thread does it: end the old run in the middle of a frame, connect, run.
    link.send(previewwire::encode(picture("old", 0, 0)).substr(0, 50));
    link.client.disconnect();
    QTRY_VERIFY_WITH_TIMEOUT(link.isOver, patience);
    link.thread.join();
    link.isConnected = false;
    link.isOver = false;
    link.thread = std::thread([&link, port = link.server.serverPort()] {
        link.isConnected =
            link.client.connect({boost::asio::ip::make_address("127.0.0.1"), port}, 0, nullptr);
        link.client.run();
        link.isOver = true;
    });
    QTRY_VERIFY_WITH_TIMEOUT(link.server.hasPendingConnections(), patience);
    link.socket = link.server.nextPendingConnection();
    link.send(previewwire::encode(picture("new", 0, 3)));
    PreviewFrame frame;
    QTRY_VERIFY_WITH_TIMEOUT(frame.frame.getSurface() || link.client.pollFrame(frame, 0), patience);
    QVERIFY(same(frame, picture("new", 0, 3)));
}

void TestPreview::returnsAtOnceWithoutConnection()
{
    PreviewClient client;
    client.run();
    client.disconnect();
    QTcpServer gone;
    QVERIFY(gone.listen(QHostAddress::LocalHost));
    const quint16 port = gone.serverPort();
    gone.close();
    int error = 0;
    QVERIFY(!client.connect({boost::asio::ip::make_address("127.0.0.1"), port}, 0, &error));
    QCOMPARE(error, 111);
    client.run();
}

HALCYRA_TEST(TestPreview)
#include "test_preview.moc"

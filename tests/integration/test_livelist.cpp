#include "common/command/playback/playmediacommand.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tarn/preview/previewclient.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <atomic>
#include <cmath>
#include <mutex>
#include <thread>

namespace vantrel::test {

namespace {

constexpr double picture = 0.04; // seconds
constexpr int changesInTheSuite = 5;

/// What a picture of the stream shows: the number is none for a still, for black and for mixtures.
struct Seen
{
    QColor colour;
    std::optional<int> number;
};

QColor nearest(const QColor& colour)
{
    const auto level = [](int value) { return value < 128 ? 0 : 255; };
    return QColor(level(colour.red()), level(colour.green()), level(colour.blue()));
}

/// Every picture of program as it comes over the preview stream.
class Recorder
{
public:
    explicit Recorder(quint16 port)
    {
        const auto host = boost::asio::ip::address_v4::loopback();
        m_isConnected = m_client.connect({host, port}, 5000, nullptr);
        m_reading = std::thread([this] { m_client.run(); });
        m_polling = std::thread([this] { poll(); });
    }
    ~Recorder()
    {
        m_isOver = true;
        m_client.disconnect();
        m_reading.join();
        m_polling.join();
    }
    bool isConnected() const { return m_isConnected; }
    std::vector<Seen> taken()
    {
        const std::lock_guard lock(m_mutex);
        return m_seen;
    }

private:
    void poll()
    {
        PreviewFrame frame;
        while (!m_isOver) {
            if (!m_client.pollFrame(frame, 20) || frame.source != "/device/channels/0/program" ||
                frame.formatCode() != Surface::formatRgb24)
                continue;
            const Surface& surface = *frame.frame.getSurface();
            const QImage image(surface.pixels.data(), surface.width, surface.height, surface.bytesPerLine,
                               QImage::Format_RGB888);
            const Seen seen{nearest(markerOf(image)), frameNumberOf(image)};
            const std::lock_guard lock(m_mutex);
            m_seen.push_back(seen);
        }
    }

    PreviewClient m_client;
    bool m_isConnected = false;
    std::atomic<bool> m_isOver = false;
    std::mutex m_mutex;
    std::vector<Seen> m_seen;
    std::thread m_reading;
    std::thread m_polling;
};

} // namespace

/// A list that runs by itself on program of a live server, and what of it comes over the preview stream: each
/// picture is the one whose turn it is. HALCYRA_LIST_CHANGES sets the number of changes; then none may be
/// missing.
class TestLiveList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void everyPictureIsAccountedFor();

private:
    enum Kind { Red, Green, Blue, Still, Tone };
    static constexpr const char* files[] = {"red.mp4", "green.mp4", "blue.mp4", "white.png", "tone.wav"};
    static inline const QColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::white, Qt::black};

    /// What one of two that are mixed shows at a tick of the clock.
    struct Layer
    {
        int kind;
        int number;
        bool isNumbered() const { return kind < Still; }
        bool isShownBy(const Seen& seen) const
        {
            return seen.colour == colours[kind] && (isNumbered() ? seen.number == number : !seen.number);
        }
    };
    struct Tick
    {
        Layer on;
        std::optional<Layer> before; // goes out meanwhile
        bool isMixed() const { return before.has_value(); }
        bool isConstant() const { return !isMixed() && !on.isNumbered(); }
        bool isVague() const { return isMixed() && (!on.isNumbered() || !before->isNumbered()); }
        bool isShownBy(const Seen& seen) const
        {
            return on.isShownBy(seen) || (before && before->isShownBy(seen));
        }
    };
    struct Verdict
    {
        int shown = 0, missing = 0, wrong = 0;
        QString firstFault;
    };

    void makeShow(int changes);
    std::vector<Tick> ticks() const;
    static Verdict judge(const std::vector<Tick>& ticks, const std::vector<Seen>& seen);

    std::unique_ptr<OmbraProcess> m_server;
    Session* m_session = nullptr;
    MediaLibrary m_show;
    std::vector<std::pair<int, int>> m_runs; // kind and first number of each entry
};

void TestLiveList::init()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("HALCYRA_BIN names no folder with ombra in it");
    m_server = std::make_unique<OmbraProcess>();
    const auto file = [this](int kind) {
        return m_server->mediaFolder() + u'/' + QLatin1String(files[kind]);
    };
    for (const int kind : {Red, Green, Blue})
        QVERIFY(makeNumberedClip(file(kind), colours[kind], 100));
    const auto make = [](const char* source, const QStringList& more) {
        return QProcess::execute(QStringLiteral("ffmpeg"),
                                 QStringList{"-y", "-loglevel", "error", "-nostdin", "-f", "lavfi", "-i",
                                             QLatin1String(source)} +
                                     more) == 0;
    };
    QVERIFY(make("color=white:s=320x180", {"-frames:v", "1", file(Still)}));
    QVERIFY(make("sine=frequency=440:duration=4", {file(Tone)}));
    QVERIFY(m_server->start());
    m_session = new Session;
    Session::initializeWith(m_session, m_server->ports());
    m_session->connectionHandler()->connect(m_server->host());
    QTRY_VERIFY(m_session->sceneObjectProvider()->programPlayback()->object());
    QTRY_VERIFY(m_session->mediaLibraryProvider()->slot(MediaAddress(1, 5)));
}

void TestLiveList::cleanup()
{
    delete std::exchange(m_session, nullptr);
    m_server.reset();
}

/// Entries at random, always the same ones, in a collection and a list of their own.
void TestLiveList::makeShow(int changes)
{
    QRandomGenerator random(11);
    m_show.insertMediaCollection(2, MediaCollection("Show"), false);
    m_show.addPlaylist(1, Playlist("Show"));
    for (int i = 0; i <= changes; ++i) {
        const int kind = random.bounded(5), from = random.bounded(10, 40), length = random.bounded(18, 50);
        MediaSlot slot(files[kind], std::string("file:///") + files[kind]);
        if (kind == Still) {
            slot.setDurationType(MediaDurationType::Manual);
            slot.setCustomMediaDuration(length * picture);
        } else {
            slot.setInherentMediaDuration(4.0);
            slot.setInpoint(from * picture);
            slot.setOutpoint((from + length) * picture);
        }
        m_show.findCollection(2)->insertMediaSlot(i + 1, slot, false);
        m_show.findPlaylist(1)->addEntry({i + 1, 0}, {MediaAddress(2, i + 1).toString(), EndAction::Next,
                                                      TakeTransitionType(random.bounded(3)),
                                                      random.bounded(4, 9) * picture});
        m_runs.emplace_back(kind, from);
    }
    const std::string patch = R"([{"op":"add","path":"/collections/2","value":)" +
                              m_show.findCollection(2)->toJson().toString() +
                              R"(},{"op":"add","path":"/playlists/1","value":)" +
                              m_show.findPlaylist(1)->toJson().toString() + "}]";
    QNetworkAccessManager network;
    QNetworkRequest request(
        QUrl(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_server->ports().http)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    const std::unique_ptr<QNetworkReply> reply(
        network.sendCustomRequest(request, "PATCH", QByteArray::fromStdString(patch)));
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->error(), QNetworkReply::NoError);
    QTRY_VERIFY(std::as_const(*m_session->mediaLibrary()).findPlaylistEntry(1, {changes + 1, 0}));
}

/// By the running times of the library.
std::vector<TestLiveList::Tick> TestLiveList::ticks() const
{
    const PlaylistRuntimeInfo counted = calculatePlaylistRuntime(m_show, 1);
    const auto round = [](double seconds) { return static_cast<int>(std::lround(seconds / picture)); };
    std::vector<Tick> ticks(static_cast<std::size_t>(round(counted.totalDuration)));
    for (std::size_t entry = 0; entry < m_runs.size(); ++entry) {
        const auto [kind, from] = m_runs[entry];
        const int begin = round(counted.entries[entry].runtimeBefore);
        const int end = round(counted.entries[entry].runtimeAfter);
        const int overlapEnd = entry > 0 ? round(counted.entries[entry - 1].runtimeAfter) : 0;
        for (int i = begin; i < end; ++i) {
            Tick& tick = ticks[static_cast<std::size_t>(i)];
            tick.before = i < overlapEnd ? std::optional(tick.on) : std::nullopt;
            tick.on = {kind, from + i - begin};
        }
    }
    return ticks;
}

/// Goes through both in order. What stands is sent only now and then; where it goes over into something else
/// there is no telling of one picture from the next.
TestLiveList::Verdict TestLiveList::judge(const std::vector<Tick>& ticks, const std::vector<Seen>& seen)
{
    constexpr std::size_t furthest = 12; // that a machine may be late
    Verdict verdict;
    std::size_t next = 0; // the tick whose turn it is
    for (const Seen& one : seen) {
        std::size_t at = next;
        int passed = 0;
        const auto fits = [&](const Tick& tick) {
            return tick.isShownBy(one) || (tick.isMixed() && !one.number);
        };
        for (std::size_t counted = 0; at < ticks.size() && counted <= furthest && !fits(ticks[at]); ++at) {
            counted += !ticks[at].isConstant();
            passed += !ticks[at].isConstant() && !ticks[at].isVague();
        }
        if (at < ticks.size() && fits(ticks[at])) {
            verdict.missing += passed;
            ++verdict.shown;
            next = at + 1;
        } else if (next == 0 || next == ticks.size() || !ticks[next - 1].isShownBy(one)) {
            if (next > 0 && next < ticks.size() && verdict.wrong++ == 0)
                verdict.firstFault = QStringLiteral("at tick %1: %2 %3")
                                         .arg(next)
                                         .arg(one.colour.name())
                                         .arg(one.number.value_or(-1));
        }
    }
    for (; next < ticks.size(); ++next)
        verdict.missing += !ticks[next].isConstant() && !ticks[next].isVague();
    return verdict;
}

void TestLiveList::everyPictureIsAccountedFor()
{
    const int wanted = qEnvironmentVariableIntValue("HALCYRA_LIST_CHANGES");
    const int changes = wanted > 0 ? wanted : changesInTheSuite;
    makeShow(changes);
    const std::vector<Tick> expected = ticks();
    const GUIPlayback* program = m_session->sceneObjectProvider()->programPlayback();
    Recorder recorder(m_server->ports().preview);
    QVERIFY(recorder.isConnected());
    auto* command = new PlayMediaCommand;
    QVERIFY(command->init(false, 0, 1, EntryAddress(1, 0)));
    m_session->executeCommand(command);
    const EntryAddress last(changes + 1, 0);
    const int patience = static_cast<int>(double(expected.size()) * picture * 1000) + 20000;
    QTRY_VERIFY_WITH_TIMEOUT(
        program->playingEntryAddress() == last && program->state() == SourcePlayState::Pause, patience);
    const Verdict verdict = judge(expected, recorder.taken());
    qInfo("%d changes, %d pictures: %d shown, %d missing, %d wrong", changes, int(expected.size()),
          verdict.shown, verdict.missing, verdict.wrong);
    QVERIFY2(verdict.wrong == 0, qPrintable(verdict.firstFault));
    // Beside other programs the server may be late now and then.
    QVERIFY(verdict.missing <= (wanted > 0 ? 0 : int(expected.size()) / 5));
}

HALCYRA_TEST(TestLiveList)

} // namespace vantrel::test

#include "test_livelist.moc"

#include "ombra/decode/picturefeed.h"

#include "ombra/decode/constantreader.h"
#include "tarn/media/mediaenums.h"
#include "tests/support/testmain.h"

#include <QSemaphore>

#include <atomic>
#include <chrono>
#include <thread>

using namespace vantrel;
using namespace vantrel::ombra;

namespace {

/// Ten seconds at 25 pictures a second, each of them read when the test lets it, and no quicker than that.
class GatedReader : public PictureReader
{
public:
    explicit GatedReader(QSemaphore& gate, const std::atomic<std::chrono::milliseconds>& work = none)
        : m_gate(gate)
        , m_work(work)
    {
    }
    MediaType type() const override { return MediaType::VideoFile; }
    double fps() const override { return 25; }
    double duration() const override { return 10; }
    bool seek(double time, Picture& out) override { return read(qRound(time * 25), out); }
    bool next(Picture& out) override { return read(m_index + 1, out); }
    bool catchUp(double time, Picture& out) override { return seek(time, out); }

private:
    bool read(int index, Picture& out)
    {
        m_gate.acquire();
        std::this_thread::sleep_for(m_work.load());
        m_index = index;
        out = {makeRef<DecodedPicture>(), index / 25.0, 0.04};
        return index < 250;
    }

    static inline const std::atomic<std::chrono::milliseconds> none{};
    QSemaphore& m_gate;
    const std::atomic<std::chrono::milliseconds>& m_work; // of a picture
    int m_index = -1;
};

} // namespace

/// How a feed stays with the clock of who plays it.
class PictureFeedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void staysWithTheClock_data()
    {
        QTest::addColumn<double>("clock");
        QTest::addColumn<int>("least"); // reads until the picture of the clock is there
        QTest::addColumn<int>("most");
        QTest::newRow("a little late: nothing is passed over") << 0.08 << 2 << 2;
        QTest::newRow("far behind") << 5.0 << 2 << 3;
    }
    void staysWithTheClock()
    {
        QFETCH(double, clock);
        QFETCH(int, least);
        QFETCH(int, most);
        QSemaphore gate;
        PictureFeed feed(
            {}, 0, "gated", [] {},
            [&](const MediaSource&, const std::atomic<bool>&, std::string*) {
                return std::make_unique<GatedReader>(gate);
            });
        feed.start();
        const auto opened = qScopeGuard([&] { gate.release(20); }); // the feed ends with what it is reading
        std::optional<Picture> picture;
        const auto readOne = [&](double time) {
            gate.release();
            return QTest::qWaitFor([&] { return bool(picture = feed.take(time)); });
        };
        QVERIFY(readOne(0));
        // The feed is in the middle of the picture that follows, whatever the time is by now.
        int count = 0;
        for (double shown = 0; shown < clock - 0.001; shown = picture->time, ++count) {
            QVERIFY2(count < most, qPrintable(QString::number(shown)));
            QVERIFY(readOne(clock));
        }
        QVERIFY2(count >= least, qPrintable(QString::number(count)));
        feed.seek(1);   // and back, to the very picture
        gate.release(); // what was under way, for nobody
        QVERIFY(readOne(1));
        QCOMPARE(picture->time, 1.0);
    }

    /// What is cued plays on preview until it is taken, from its beginning: that is there at once.
    void keepsItsBeginning()
    {
        QSemaphore gate(100);
        PictureFeed feed(
            {}, 1, "gated", [] {},
            [&](const MediaSource&, const std::atomic<bool>&, std::string*) {
                return std::make_unique<GatedReader>(gate);
            });
        feed.start();
        const auto opened = qScopeGuard([&] { gate.release(100); });
        const auto shows = [&](int index) {
            const std::optional<Picture> picture = feed.take(1 + index / 25.0);
            return picture && qRound(picture->time * 25) == 25 + index;
        };
        for (int i = 0; i < 95; ++i)
            QVERIFY2(QTest::qWaitFor([&] { return shows(i); }), qPrintable(QString::number(i)));
        QTRY_COMPARE(gate.available(), 0); // the feed is in the middle of one that nobody will want
        feed.seek(1);
        for (int i = 0; i < 6; ++i)
            QVERIFY2(shows(i), qPrintable(QString::number(i)));
        gate.release(100);
        for (int i = 6; i < 30; ++i)
            QVERIFY2(QTest::qWaitFor([&] { return shows(i); }), qPrintable(QString::number(i)));
    }

    /// Pictures of 40 ms that are there at once, and some that take 30 ms each.
    void tellsHowMuchOfTheTimeItTakes()
    {
        QSemaphore gate(250);
        std::atomic<std::chrono::milliseconds> work{};
        PictureFeed feed(
            {}, 0, "gated", [] {},
            [&](const MediaSource&, const std::atomic<bool>&, std::string*) {
                return std::make_unique<GatedReader>(gate, work);
            });
        feed.start();
        const auto takeAt = [&](int picture) {
            return QTest::qWaitFor([&] { return feed.take(picture / 25.0).has_value(); });
        };
        for (int i = 0; i < 54; ++i)
            QVERIFY(takeAt(i));
        const double quick = feed.status().load;
        QVERIFY2(quick > 0 && quick < 0.3, qPrintable(QString::number(quick)));
        work = std::chrono::milliseconds(30);
        for (int i = 54; i < 114; ++i)
            QVERIFY(takeAt(i));
        QVERIFY2(feed.status().load > 0.5, qPrintable(QString::number(feed.status().load)));
    }
};

HALCYRA_TEST(PictureFeedTest)
#include "picturefeedtest.moc"

#include "ombra/sound/soundout.h"
#include "ombra/sound/soundstream.h"
#include "ombra/sound/speakers.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <cmath>
#include <numbers>
#include <random>

using namespace vantrel::ombra;

namespace {

using Clock = SoundStream::Clock;
using Seconds = std::chrono::duration<double>;

constexpr double level = 0.5;
constexpr double tone = 20.3;  // Hz
constexpr double round = 0.04; // seconds
constexpr int atOnce = 480;
/// The largest step of the tone, with some room for a device that runs slow and for what a fade adds.
constexpr double stepOfTone = level * 2 * std::numbers::pi * tone / Sound::sampleRate * 1.03;
constexpr double stepOfFade = 2.0 * level / SeamFilter::fadeFrames;

Clock::time_point at(double seconds)
{
    return Clock::time_point(std::chrono::duration_cast<Clock::duration>(Seconds(1000 + seconds)));
}

/// A mixer and a device, whose clock differs, on a clock of their own.
class Room
{
public:
    Room(int channels, double clockError, int rate = Sound::sampleRate)
        : m_channels(channels)
        , m_deviceStep(double(atOnce) / rate / (1 + clockError))
        , m_rate(rate)
        , m_stream(channels, rate, atOnce)
    {
    }

    /// What the mixer makes of the time between two samples.
    std::function<HeardMoment(std::int64_t from, std::int64_t to)> sounding = [](auto from, auto to) {
        return playing(from, to);
    };
    std::function<bool(double)> mixes = [](double) { return true; };
    std::function<double(double)> asksLate = [](double) { return 0; }; // seconds, while it plays in time
    double jitter = 0;                                                 // seconds by which rounds are late
    double told = 0;             // seconds: the largest difference from the delay in the second half
    std::vector<float> heard;    // of the first channels
    std::vector<double> heardAt; // seconds, of each device frame

    static HeardMoment playing(std::int64_t from, std::int64_t to, double frequency = tone)
    {
        HeardMoment moment;
        moment.frames = std::size_t(to - from);
        moment.gain = 1;
        Sound sound{1, {}};
        for (std::int64_t i = from; i < to; ++i)
            sound.samples.push_back(
                float(level * std::sin(2 * std::numbers::pi * frequency * double(i) / Sound::sampleRate)));
        moment.layers.push_back({std::move(sound)});
        return moment;
    }

    void run(double seconds, bool keeps = true)
    {
        std::mt19937 random(7);
        std::uniform_real_distribution<double> lateness(0, jitter);
        double mixAt = round, askAt = 0.001, mixed = 0;
        double late = lateness(random);
        std::vector<float> block(std::size_t(atOnce * m_channels));
        while (std::min(mixAt, askAt) < seconds) {
            if (mixAt + late <= askAt) {
                if (mixes(mixAt)) {
                    HeardMoment moment = sounding(Sound::sampleAt(mixed), Sound::sampleAt(mixAt));
                    moment.end = at(mixAt);
                    m_stream.play(moment);
                    mixed = mixAt;
                }
                mixAt += round;
                late = lateness(random);
                if (mixAt > seconds / 2)
                    told = std::max(told, std::abs(m_stream.late()));
                continue;
            }
            m_stream.fill(block, at(askAt + asksLate(askAt)));
            for (int i = 0; keeps && i < atOnce; ++i) {
                heard.push_back(block[std::size_t(i * m_channels)]);
                heardAt.push_back(askAt + m_deviceStep * (1 + double(i) / atOnce));
            }
            askAt += m_deviceStep;
        }
    }
    /// The largest step from one sample to the next from then on.
    double largestStep(double from) const
    {
        double largest = 0;
        for (std::size_t i = 1; i < heard.size(); ++i) {
            if (heardAt[i] > from)
                largest = std::max(largest, double(std::abs(heard[i] - heard[i - 1])));
        }
        return largest;
    }
    double loudest(double from, double to) const
    {
        double largest = 0;
        for (std::size_t i = 0; i < heard.size(); ++i) {
            if (heardAt[i] > from && heardAt[i] < to)
                largest = std::max(largest, double(std::abs(heard[i])));
        }
        return largest;
    }
    /// Seconds by which the tone is heard after the least delay and some more, at a time: by its phase,
    /// around there.
    double lateness(double time, double more = 0) const
    {
        double sine = 0, cosine = 0;
        const double delay = SoundStream::leastDelay(m_rate, atOnce) + more;
        for (std::size_t i = 0; i < heard.size(); ++i) {
            if (std::abs(heardAt[i] - time) > 0.05)
                continue;
            const double phase = 2 * std::numbers::pi * tone * (heardAt[i] - delay);
            sine += heard[i] * std::sin(phase);
            cosine += heard[i] * std::cos(phase);
        }
        return -std::atan2(cosine, sine) / (2 * std::numbers::pi * tone);
    }
    SoundStream& stream() { return m_stream; }

private:
    const int m_channels;
    const double m_deviceStep;
    const int m_rate;
    SoundStream m_stream;
};

} // namespace

/// Sound on its way to a device, with both clocks in the hand of the test.
class StreamTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheClockOfTheDevice_data()
    {
        QTest::addColumn<double>("error");
        QTest::addColumn<int>("rate");
        QTest::newRow("exact") << 0.0 << 48000;
        QTest::newRow("fast") << 0.0005 << 48000;
        QTest::newRow("slow") << -0.0005 << 48000;
        QTest::newRow("slow, of another rate") << -0.0002 << 44100;
    }

    void followsTheClockOfTheDevice()
    {
        QFETCH(double, error);
        QFETCH(int, rate);
        Room room(1, error, rate);
        room.jitter = 0.008;
        room.run(600, false); // by which such a clock is apart by more than what lies ready
        QCOMPARE(room.stream().gaps(), 0);
        QVERIFY2(room.told < 0.0008, qPrintable(QString::number(room.told)));
        QVERIFY2(std::abs(room.stream().rate() + error) < 0.0001,
                 qPrintable(QString::number(room.stream().rate())));
    }

    /// As the operator moves it against the pictures: by as much as that, however late the device asks.
    void isMovedAtOnce_data()
    {
        QTest::addColumn<double>("by"); // seconds
        QTest::newRow("later") << 0.03;
        QTest::newRow("earlier") << -0.03;
        QTest::newRow("by several rounds") << -0.25;
    }

    void isMovedAtOnce()
    {
        QFETCH(double, by);
        Room room(2, 0.0001);
        const double least = SoundStream::leastDelay(Sound::sampleRate, atOnce);
        room.stream().setDelay(least + 0.3);
        room.asksLate = [](double now) { return now > 4.9 && now < 5.1 ? 0.015 : 0; };
        bool isMoved = false;
        room.sounding = [&](std::int64_t from, std::int64_t to) {
            if (from > Sound::sampleAt(5.0) && !std::exchange(isMoved, true))
                room.stream().goTo(least + 0.3 + by);
            return Room::playing(from, to);
        };
        room.run(7);
        const double late = room.lateness(5.6, 0.3 + by);
        QVERIFY2(std::abs(late) < 0.004, qPrintable(QString::number(late)));
        QVERIFY(room.largestStep(0) < stepOfTone + stepOfFade);
    }

    void isHeardWhole()
    {
        Room room(1, 0.0003);
        room.jitter = 0.005;
        room.run(20);
        QVERIFY2(room.largestStep(0.2) < stepOfTone, qPrintable(QString::number(room.largestStep(0.2))));
        for (double time = 0.3; time < 19; time += 0.5) {
            QVERIFY(std::abs(room.loudest(time, time + 0.1) - level) < 0.005);
            QVERIFY2(std::abs(room.lateness(time)) < 0.001, qPrintable(QString::number(room.lateness(time))));
        }
    }

    void neverJumps_data()
    {
        QTest::addColumn<QString>("what");
        for (const char* what : {"muted", "stopped", "sought", "cut", "stalled", "stalled for long"})
            QTest::newRow(what) << QString::fromLatin1(what);
    }

    void neverJumps()
    {
        QFETCH(QString, what);
        constexpr double time = 2.0, back = 3.0; // where it happens, and where it is over
        constexpr std::int64_t first = std::int64_t(time * Sound::sampleRate);
        Room room(2, 0.0001);
        if (what.startsWith(u"stalled"))
            room.mixes = [&](double now) { return now < time || now > (what.size() > 8 ? 2.7 : 2.15); };
        room.sounding = [&](std::int64_t from, std::int64_t to) {
            HeardMoment moment = Room::playing(from, to);
            const bool isOver = to > Sound::sampleAt(back);
            if (from < first || what.startsWith(u"stalled"))
                return moment;
            if (what == u"muted")
                moment.gain = isOver ? 1 : 0;
            else if (what == u"stopped" && !isOver)
                moment.layers.clear();
            else if (what == u"sought")
                moment = Room::playing(from + 1000, to + 1000);
            else if (what == u"cut")
                moment = Room::playing(from + 1000, to + 1000, tone / 2);
            if (from == first || from == Sound::sampleAt(back))
                moment.seams.push_back(0);
            return moment;
        };
        room.run(6);
        QVERIFY2(room.largestStep(0) < stepOfTone + stepOfFade,
                 qPrintable(QString::number(room.largestStep(0))));
        QVERIFY(room.loudest(0, 6) < level * 1.01 && room.loudest(4, 6) > level * 0.99);
        if (what == u"muted" || what == u"stopped")
            QVERIFY(room.loudest(2.3, 3) < 1e-4);
        QVERIFY2(std::abs(room.stream().late()) < 0.005, qPrintable(QString::number(room.stream().late())));
    }

    void leavesSeamlessSoundAlone()
    {
        SeamFilter filter(1);
        std::vector<float> sound;
        for (int i = 0; i < 2000; ++i)
            sound.push_back(float(level * std::sin(2 * std::numbers::pi * tone * i / Sound::sampleRate)));
        const std::vector<float> before = sound;
        const std::vector<std::size_t> seams = {500, 1000, 1501};
        filter.pass(sound, seams);
        QCOMPARE(sound, before);
    }

    void channels_data()
    {
        QTest::addColumn<int>("medium");
        QTest::addColumn<int>("device");
        QTest::addColumn<QList<double>>(
            "heard"); // of a medium with 0.1 on its first channel, 0.2 on the next ...
        QTest::newRow("one on two") << 1 << 2 << QList<double>{0.1, 0.1};
        QTest::newRow("one on one") << 1 << 1 << QList<double>{0.1};
        QTest::newRow("two on six") << 2 << 6 << QList<double>{0.1, 0.2, 0, 0, 0, 0};
        QTest::newRow("eight on eight") << 8 << 8 << QList<double>{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8};
        // Left, right, centre, low, and those behind: centre and those behind by 0.707, low not, and the
        // whole divided by what a channel may get at most.
        const double whole = 1 + 2 * M_SQRT1_2;
        QTest::newRow("5.1 on two") << 6 << 2
                                    << QList<double>{(0.1 + M_SQRT1_2 * (0.3 + 0.5)) / whole,
                                                     (0.2 + M_SQRT1_2 * (0.3 + 0.6)) / whole};
        QTest::newRow("two on one") << 2 << 1 << QList<double>{0.15};
    }

    void channels()
    {
        QFETCH(int, medium);
        QFETCH(int, device);
        QFETCH(QList<double>, heard);
        const std::vector<float> shares = speakerShares(medium, device);
        QCOMPARE(shares.size(), std::size_t(medium * device));
        for (int c = 0; c < device; ++c) {
            double sum = 0;
            for (int i = 0; i < medium; ++i)
                sum += shares[std::size_t(c * medium + i)] * 0.1 * (i + 1);
            QVERIFY2(std::abs(sum - heard[c]) < 1e-4, qPrintable(QString::number(sum)));
        }
    }

    void picturesWaitForTheirSound_data()
    {
        QTest::addColumn<double>("offset"); // seconds
        QTest::addColumn<double>("rate");
        QTest::addColumn<double>("delay"); // in whole pictures, and never less than the sound takes
        QTest::newRow("none") << 0.0 << 0.0 << 0.08;
        QTest::newRow("60 a second") << 0.0 << 60.0 << 5 / 60.0;
        QTest::newRow("50 a second") << 0.0 << 50.0 << 4 / 50.0;
        QTest::newRow("later sound") << 0.1 << 50.0 << 4 / 50.0;
        QTest::newRow("earlier sound") << -0.1 << 50.0 << 9 / 50.0;
    }

    void picturesWaitForTheirSound()
    {
        QFETCH(double, offset);
        QFETCH(double, rate);
        qputenv("SDL_AUDIODRIVER", "dummy"); // a driver of the machine's own takes its time to end
        SoundOut out("Program", "no such device");
        out.setOffset(offset);
        QTEST(out.pictureDelay(rate), "delay");
    }

    void goesOverEvenly()
    {
        HeardMoment moment;
        moment.frames = 1000;
        moment.gain = 1;
        Sound ones{2, std::vector<float>(2000, 0.5f)};
        moment.layers = {{ones, 0, 1, 0}, {ones, 0, 0, 1}};
        SoundMix mix(2);
        mix.mix(moment); // volume has come up
        for (const float sample : mix.mix(moment))
            QVERIFY(std::abs(sample - 0.5f) < 1e-5f);
        moment.layers.pop_back();
        const std::span<const float> fading = mix.mix(moment);
        QVERIFY(std::abs(fading[1000] - 0.25f) < 0.001f && fading[1998] < 0.001f);
    }
};

HALCYRA_TEST(StreamTest)
#include "streamtest.moc"

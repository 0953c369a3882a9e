#include "ombra/decode/audiofeed.h"
#include "ombra/decode/soundprogramme.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/testmain.h"

#include <algorithm>
#include <cmath>
#include <span>

using namespace vantrel::ombra;
using namespace vantrel::test;

namespace {

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

double peakOf(std::span<const float> samples)
{
    double peak = 0;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(double(sample)));
    return peak;
}

} // namespace

/// Sound that is silent up to the second 1 and then a tone of 1 kHz at half of the full scale, in the forms
/// in which operators have it.
class AudioTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SoundProgramme> open(const char* name)
    {
        return SoundProgramme::open(m_media.file(name), m_stop, &m_error);
    }

    static std::vector<float> readAll(SoundProgramme& reader)
    {
        std::vector<float> samples;
        while (reader.next(samples)) {
        }
        return samples;
    }

    /// Frames up to the first that is loud; -1 without one.
    static int onset(const std::vector<float>& samples, int channels)
    {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            if (std::abs(samples[i]) > 0.15f)
                return int(i) / channels;
        }
        return -1;
    }

    void take(AudioFeed& feed, double from, double to, Sound& out)
    {
        out = {};
        feed.take(from, to, out);
    }

    TestMedia m_media;
    std::atomic<bool> m_stop{false};
    std::string m_error;

private Q_SLOTS:
    void initTestCase()
    {
        const QString late = QStringLiteral("gte(t,1)*0.5*sin(2*PI*1000*t)");
        const QStringList stereo = TestMedia::sound(late + u'|' + late, 2.5);
        const QStringList mono = TestMedia::sound(late, 2.5, 44100);
        const QStringList clip = TestMedia::numbered(2.5) + stereo + TestMedia::h264(12);
        QVERIFY(m_media.make(stereo, QStringLiteral("wav48.wav")));
        QVERIFY(m_media.make(mono, QStringLiteral("wav44.wav")));
        QVERIFY(m_media.make(mono, QStringLiteral("flac44.flac")));
        QVERIFY(m_media.make(mono + words("-c:a libmp3lame -b:a 128k"), QStringLiteral("mp3.mp3")));
        QVERIFY(m_media.make(clip + words("-c:a aac -b:a 192k"), QStringLiteral("aac.mp4")));
        QVERIFY(m_media.make(clip + words("-c:a libopus -b:a 128k"), QStringLiteral("opus.mkv")));
        QVERIFY(m_media.make(clip + words("-c:a aac -b:a 192k"), QStringLiteral("aac.ts")));
        QVERIFY(m_media.make(clip + words("-c:a pcm_s24le"), QStringLiteral("pcm.mov")));
        QVERIFY(m_media.make(clip + words("-c:a pcm_s16le"), QStringLiteral("sowt.mov")));
        QVERIFY(m_media.spoilSound("sowt.mov", "spoilt.mov"));
        QVERIFY(m_media.make(TestMedia::numbered(0.2) + TestMedia::h264(12), QStringLiteral("mute.mp4")));
    }

    void monoStreamsAreOneProgramme_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<double>("third"); // seconds that the third stream lasts; the others last two
        QTest::newRow("broadcast") << QByteArray("mono.mxf") << 2.0;
        QTest::newRow("one shorter") << QByteArray("mono.mov") << 1.0;
    }

    void monoStreamsAreOneProgramme()
    {
        QFETCH(QByteArray, name);
        QFETCH(double, third);
        QStringList arguments = TestMedia::numbered(2);
        for (const char* level : {"0.1", "0.2", "0.3", "0.4"})
            arguments += TestMedia::sound(QString::fromLatin1(level), level[2] == '3' ? third : 2);
        QVERIFY(m_media.make(arguments +
                                 words("-map 0 -map 1 -map 2 -map 3 -map 4 -c:v mpeg2video -c:a pcm_s16le"),
                             QString::fromLatin1(name)));
        const auto reader = open(name);
        QVERIFY2(reader, m_error.c_str());
        QCOMPARE(reader->channels(), 4);
        QVERIFY(!reader->isPartial());
        for (const double from : {0.0, 0.5, 0.0}) {
            QVERIFY(reader->seek(from));
            const std::vector<float> samples = readAll(*reader);
            QCOMPARE(samples.size() / 4, std::size_t((2 - from) * 48000));
            for (const std::size_t at : {std::size_t(100), std::size_t(60000)}) {
                for (std::size_t channel = 0; channel < 4; ++channel) {
                    const bool over = channel == 2 && from + double(at) / 48000 > third;
                    const double level = over ? 0 : 0.1 * double(channel + 1);
                    QVERIFY(std::abs(samples[at * 4 + channel] - level) < 0.01);
                }
            }
        }
    }

    void whatCannotBeMixedIsLeftOut()
    {
        QVERIFY(m_media.make(TestMedia::numbered(0.4) + TestMedia::sound(QStringLiteral("0.1|0.1"), 0.4) +
                                 TestMedia::sound(QStringLiteral("0.2|0.2"), 0.4) + TestMedia::h264(12) +
                                 words("-map 0 -map 1 -map 2 -c:a pcm_s16le"),
                             QStringLiteral("languages.mov")));
        const auto reader = open("languages.mov");
        QVERIFY2(reader && reader->isPartial(), m_error.c_str());
        QCOMPARE(reader->channels(), 2);
    }

    void findsEverySampleExactly_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("tolerance"); // samples at 48 kHz
        QTest::newRow("wav 48 kHz") << QByteArray("wav48.wav") << 2 << 24;
        QTest::newRow("wav 44.1 kHz") << QByteArray("wav44.wav") << 1 << 24;
        QTest::newRow("flac") << QByteArray("flac44.flac") << 1 << 24;
        QTest::newRow("pcm in mov") << QByteArray("pcm.mov") << 2 << 24;
        QTest::newRow("mp3") << QByteArray("mp3.mp3") << 1 << 240;
        QTest::newRow("aac in mp4") << QByteArray("aac.mp4") << 2 << 240;
        // There the tool puts the pictures 7 ms later than they were.
        QTest::newRow("opus in mkv") << QByteArray("opus.mkv") << 2 << 400;
        QTest::newRow("aac in ts") << QByteArray("aac.ts") << 2 << 240;
    }

    void findsEverySampleExactly()
    {
        QFETCH(QByteArray, name);
        QFETCH(int, channels);
        QFETCH(int, tolerance);
        const auto reader = open(name.constData());
        QVERIFY2(reader, m_error.c_str());
        QCOMPARE(reader->channels(), channels);
        const std::vector<float> whole = readAll(*reader);
        QVERIFY(std::abs(int(whole.size()) / channels - 120000) < 3000);
        QVERIFY2(std::abs(onset(whole, channels) - 48000) <= tolerance,
                 qPrintable(QString::number(onset(whole, channels))));
        QVERIFY(std::abs(peakOf(whole) - 0.5) < 0.06);

        for (const double time : {0.9, 0.0, 0.5, 0.97, 0.3, 0.98}) { // forth and back
            QVERIFY(reader->seek(time));
            const std::vector<float> samples = readAll(*reader);
            const int expected = int(std::lround((1 - time) * 48000));
            QVERIFY2(std::abs(onset(samples, channels) - expected) <= tolerance,
                     qPrintable(QString::number(onset(samples, channels) - expected)));
        }
        QVERIFY(reader->seek(1.5)); // in the tone: loud from the first millisecond on
        std::vector<float> samples;
        QVERIFY(reader->next(samples));
        QVERIFY(peakOf(std::span(samples).first(std::min(samples.size(), std::size_t(48 * channels)))) > 0.4);
        QVERIFY(reader->seek(99));
        samples.clear();
        QVERIFY(!reader->next(samples) && samples.empty());
    }

    void saysWhatItCannotRead()
    {
        QVERIFY(!open("mute.mp4"));
        QCOMPARE(m_error, std::string());
        QVERIFY(!open("missing.mp4"));
        QCOMPARE(m_error, std::string());
        QVERIFY(!open("spoilt.mov"));
        QVERIFY(!m_error.empty());
        AudioFeed spoilt(MediaSource{m_media.file("spoilt.mov")}, 0, "spoilt.mov", [] {});
        spoilt.start();
        QTRY_COMPARE(spoilt.channels(), std::optional(0));
        QVERIFY(spoilt.ready());
    }

    void keepsUpToEightChannels()
    {
        QStringList tones;
        for (int i = 0; i < 10; ++i)
            tones.append(QStringLiteral("%1*sin(2*PI*1000*t)").arg((i + 1) * 0.05));
        QVERIFY(m_media.make(TestMedia::sound(tones.join(u'|'), 0.5), QStringLiteral("ten.wav")));
        const auto reader = open("ten.wav");
        QVERIFY2(reader, m_error.c_str());
        QCOMPARE(reader->channels(), 8);
        const std::vector<float> samples = readAll(*reader);
        for (int channel = 0; channel < 8; ++channel) {
            float peak = 0;
            for (std::size_t i = std::size_t(channel); i < samples.size(); i += 8)
                peak = std::max(peak, samples[i]);
            QVERIFY(std::abs(peak - (channel + 1) * 0.05) < 0.002);
        }
    }

    void feedsAheadOfTheClock()
    {
        std::atomic<int> arrived{0};
        AudioFeed feed(MediaSource{m_media.file("aac.mp4")}, 0.5, "aac.mp4", [&] { ++arrived; });
        feed.start();
        QTRY_VERIFY(feed.ready() && arrived > 0);
        QCOMPARE(feed.channels(), std::optional(2));
        Sound sound;
        double at = 0.5;
        for (; at < 1.5; at += 0.04) { // its own buffer must be filled again on the way
            QTRY_VERIFY(feed.ready());
            take(feed, at, at + 0.04, sound);
            QCOMPARE(sound.frames(), std::size_t(1920));
            const double peak = peakOf(sound.samples);
            QVERIFY2(at < 0.95 ? peak < 0.1 : at < 1.0 || peak > 0.4, qPrintable(QString::number(at)));
        }
        take(feed, at - 0.04, at, sound); // back to a picture's start, as a pause does
        QVERIFY(peakOf(sound.samples) > 0.4);
        feed.seek(0.2);
        take(feed, 0.2, 0.24, sound);
        QVERIFY(sound.samples.empty() || peakOf(sound.samples) < 0.1); // nothing of the place before
        QTRY_VERIFY(feed.ready());
        take(feed, 0.98, 1.02, sound); // within what is at hand or not: never of another time
        QVERIFY(peakOf(sound.samples) == 0 || peakOf(sound.samples) > 0.4);
        feed.seek(2.45);
        QTRY_VERIFY(feed.ready());
        take(feed, 2.46, 4.46, sound);
        QCOMPARE(sound.frames(), std::size_t(96000)); // the end, and silence after it
        QVERIFY(peakOf(std::span(sound.samples).first(1000)) > 0.4);
        QCOMPARE(peakOf(std::span(sound.samples).subspan(20000)), 0.0);
    }
};

HALCYRA_TEST(AudioTest)
#include "audiotest.moc"

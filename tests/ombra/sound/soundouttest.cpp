#include "tests/ombra/decode/testmedia.h"
#include "tests/ombra/linkpeer.h"
#include "tests/ombra/sound/pipedevice.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <functional>
#include <numeric>

using namespace vantrel::ombra::test;
using namespace vantrel::test;

namespace {

constexpr int patience = 8000; // milliseconds
constexpr double rate = 48000;
constexpr double pi = 3.14159265358979;

/// What a device got of one channel.
class Track
{
public:
    Track(const QByteArray& bytes, int channel, int channels)
    {
        const auto* samples = reinterpret_cast<const float*>(bytes.constData());
        for (qsizetype i = channel; i < bytes.size() / qsizetype(sizeof(float)); i += channels)
            m_samples.push_back(samples[i]);
    }
    double peak(double from = 0, double to = 1e9) const
    {
        double largest = 0;
        for (double i = from * rate; i < std::min(to * rate, double(m_samples.size())); ++i)
            largest = std::max(largest, double(std::abs(m_samples[std::size_t(i)])));
        return largest;
    }
    double step() const
    {
        double largest = 0;
        for (std::size_t i = 1; i < m_samples.size(); ++i)
            largest = std::max(largest, double(std::abs(m_samples[i] - m_samples[i - 1])));
        return largest;
    }
    /// Samples that each period of what sounds takes.
    std::vector<double> periods() const
    {
        std::vector<double> result;
        double last = 0;
        bool isBelow = false;
        for (std::size_t i = 1; i < m_samples.size(); ++i) {
            isBelow = isBelow || m_samples[i] < -0.05f;
            if (!isBelow || m_samples[i] < 0)
                continue;
            isBelow = false;
            const double at = double(i) - m_samples[i] / (m_samples[i] - m_samples[i - 1]);
            result.push_back(at - std::exchange(last, at));
        }
        return result;
    }
    /// Peaks of each tenth of a second.
    std::vector<double> envelope() const
    {
        std::vector<double> result;
        for (double time = 0; time * rate < double(m_samples.size()); time += 0.1)
            result.push_back(peak(time, time + 0.1));
        return result;
    }
    /// Where nothing sounds for 5 ms or more, in seconds: two periods of what is played.
    QStringList silences() const
    {
        QStringList result;
        std::size_t quiet = 0;
        for (std::size_t i = 0; i <= m_samples.size(); ++i) {
            if (i < m_samples.size() && std::abs(m_samples[i]) < 1e-4f) {
                ++quiet;
                continue;
            }
            if (double(quiet) >= 0.005 * rate)
                result += QStringLiteral("%1+%2").arg(double(i - quiet) / rate).arg(double(quiet) / rate);
            quiet = 0;
        }
        return result;
    }
    double seconds() const { return double(m_samples.size()) / rate; }

private:
    std::vector<float> m_samples;
};

bool near(double value, double expected, double part = 0.02)
{
    return std::abs(value - expected) <= part * expected;
}

} // namespace

/// What a sound device gets from a server of its own process: SDL writes it into a file.
class SoundOutTest : public QObject
{
    Q_OBJECT

private:
    void send(const std::string& operation)
    {
        m_peer->send("[" + operation + "]");
        QVERIFY(m_peer->socket.waitForBytesWritten(patience));
    }
    void invoke(const std::string& method, const std::string& arguments)
    {
        send(R"({"op":"invoke","path":"/device/channels/0/)" + method + R"(","value":)" + arguments + "}");
    }
    void play(int slot, const std::string& side = "program")
    {
        invoke(side + "/methods/playMedia",
               R"({"mediaUrl":"brume://collections/1/slots/)" + std::to_string(slot) + "\"}");
    }
    void write(const std::string& property, const std::string& value)
    {
        send(R"({"op":"replace","path":"/device/channels/0/program/properties/)" + property +
             "\",\"value\":" + value + "}");
    }
    double position()
    {
        m_peer->read();
        return std::atof(m_peer->value("/device/channels/0/program/properties/mediaPosition").c_str());
    }
    void playsTo(double seconds) { QTRY_VERIFY_WITH_TIMEOUT(position() >= seconds, patience); }

    void start(const QStringList& options)
    {
        m_ombra = std::make_unique<OmbraProcess>();
        m_ombra->setMediaFolder(QString::fromStdString(m_media.folder()));
        m_ombra->setOptions(options);
        QVERIFY(m_ombra->start());
        m_peer = std::make_unique<LinkPeer>(m_ombra->ports().link);
        QVERIFY(m_peer->socket.waitForConnected(patience));
        m_peer->send(R"([{"op":"get","path":""}])");
    }
    void startWithDevice(int channels = 2)
    {
        m_device = std::make_unique<PipeDevice>(m_file, channels);
        qputenv("SDL_AUDIO_CHANNELS", QByteArray::number(channels));
        start({QStringLiteral("--sound")});
        hears(3.5); // the device's clock is known by then
    }

    /// Until the device got so many more seconds.
    void hears(double seconds)
    {
        const double end = m_device->seconds() + seconds;
        QTRY_VERIFY_WITH_TIMEOUT(m_device->seconds() > end, patience);
    }
    /// What the device got, when the server has ended.
    QByteArray heard()
    {
        m_ombra->stop();
        return m_device->heard();
    }

    /// Too slow for a device, which it says: with a sanitizer, or for a moment where the machine has other
    /// work.
    bool hasGaps() { return m_ombra->output().contains(" gaps"); }
    bool isTooSlow() { return slowness > 1 && hasGaps(); }

    /// What a device gets while something is played; anew where it got none in time, but no more than twice.
    QByteArray record(const std::function<void()>& playing, int channels = 2)
    {
        QByteArray all;
        for (int attempt = 0; attempt < 3 && !QTest::currentTestFailed(); ++attempt) {
            init();
            startWithDevice(channels);
            if (!QTest::currentTestFailed())
                playing();
            all = heard();
            if (!hasGaps())
                break;
        }
        return all;
    }

    const TestMedia m_media;
    const QTemporaryDir m_folder;
    const QString m_file = m_folder.filePath(QStringLiteral("device"));
    std::unique_ptr<PipeDevice> m_device;
    std::unique_ptr<OmbraProcess> m_ombra;
    std::unique_ptr<LinkPeer> m_peer;
    enum Media { Brief = 1, Left, Right, Short, Stereo };
    static constexpr double level = 0.5;
    /// The largest step of a tone, with some room for a device that is slow and what two fades add: one of
    /// the mixture's, and one where the device runs dry on a machine that is busy.
    static double steps(double frequency) { return level * (2 * pi * frequency / rate * 1.02 + 4 / 240.0); }

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with the server");
        const auto make = [this](const char* formula, const char* name, double seconds,
                                 double pictures = 20) {
            return m_media.make(TestMedia::colour(QStringLiteral("gray"), pictures) +
                                    TestMedia::sound(QString::fromLatin1(formula), seconds) +
                                    TestMedia::h264(12) +
                                    QStringList{QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")},
                                QString::fromLatin1(name));
        };
        QVERIFY(make("0.5*sin(2*PI*440*t)|0", "brief.mov", 0.8006, 2)); // breaks off at its loudest
        QVERIFY(make("0.5*sin(2*PI*440*t)|0", "left.mov", 20));
        QVERIFY(make("0|0.5*sin(2*PI*440*t)", "right.mov", 20));
        QVERIFY(make("0.5*sin(2*PI*440*t)|0", "short.mov", 0.6, 0.6)); // whole periods
        QVERIFY(make("0.5*sin(2*PI*440*t)|0.25*sin(2*PI*880*t)", "stereo.mov", 20));
        qputenv("SDL_AUDIODRIVER", "disk");
        qputenv("SDL_DISKAUDIOFILE", m_file.toLocal8Bit());
        qputenv("SDL_DISKAUDIODELAY", "0"); // the pipe makes it wait
    }
    void init()
    {
        m_device.reset();
        QFile::remove(m_file);
    }
    void cleanup() { m_ombra.reset(); }

    /// Frequency, level and order of the channels, and not a sample too many or too few.
    void playsWhatTheMediumHolds_data()
    {
        QTest::addColumn<int>("slot");
        QTest::addColumn<int>("channels");
        QTest::newRow("once") << int(Stereo) << 2;
        QTest::newRow("over and over") << int(Short) << 2;
        QTest::newRow("on six channels") << int(Stereo) << 6;
    }

    void playsWhatTheMediumHolds()
    {
        QFETCH(int, slot);
        QFETCH(int, channels);
        const auto playing = [&] {
            write("endAction", "\"repeat\"");
            play(slot);
            hears(4);
        };
        const QByteArray got = record(playing, channels);
        if (isTooSlow())
            QSKIP("a sanitizer");
        const Track left(got, 0, channels), right(got, 1, channels);
        QVERIFY2(near(left.peak(), level), qPrintable(QString::number(left.peak())));
        QVERIFY(slot == Stereo ? near(right.peak(), level / 2) : right.peak() == 0);
        for (int i = 2; i < channels; ++i)
            QCOMPARE(Track(got, i, channels).peak(), 0.0);
        const std::vector<double> periods = left.periods();
        QVERIFY2(periods.size() > 440 * 3, qPrintable(QString::number(periods.size())));
        const double all = std::accumulate(periods.begin() + 3, periods.end() - 2, 0.0);
        QVERIFY2(near(all / double(periods.size() - 5), rate / 440, 0.005), qPrintable(QString::number(all)));
        for (std::size_t i = 3; i + 2 < periods.size(); ++i) {
            QVERIFY2(std::abs(periods[i] - periods[i - 1]) < 0.1, qPrintable(QString::number(periods[i])));
        }
        QVERIFY2(left.step() < steps(440), qPrintable(QString::number(left.step())));
    }

    void neverClicks()
    {
        const QByteArray all = record([this] {
            play(Stereo);
            playsTo(0.5);
            write("muted", "true");
            playsTo(1);
            write("muted", "false");
            write("volume", "0.5");
            playsTo(1.5);
            invoke("program/methods/seekMedia", R"({"mediaPosition":10.0007})");
            playsTo(10.5);
            write("state", "\"pause\"");
            hears(0.4);
            write("state", "\"play\"");
            playsTo(11);
            play(Stereo);
            QTRY_VERIFY_WITH_TIMEOUT(position() < 5 && position() > 0.5, patience);
            write("state", "\"stop\"");
            hears(0.4);
            play(Brief);
            playsTo(1.2);
        });
        if (isTooSlow())
            QSKIP("a sanitizer");
        const Track left(all, 0, 2);
        QVERIFY2(left.step() < steps(440), qPrintable(QString::number(left.step())));
        const std::vector<double> envelope = left.envelope();
        const auto silent = std::ranges::count_if(envelope, [](double peak) { return peak < 1e-4; });
        const auto half = std::ranges::count_if(envelope, [](double peak) { return near(peak, level / 2); });
        QVERIFY(silent >= 3 + 1 + 2);
        QVERIFY(half >= 3 + 3 + 3);
        // Nothing else is silent for a moment: not the seek on air, nor the cut.
        const QStringList silences = left.silences();
        QVERIFY2(silences.size() == 5, // before, muted, paused, stopped, at the end
                 qPrintable(silences.join(u' ') + m_ombra->output()));
    }

    void crossfades()
    {
        const QByteArray all = record([this] {
            play(Left);
            playsTo(0.3);
            play(Right, "preview");
            hears(0.5);
            invoke("methods/take", R"({"transitionType":"crossfade","transitionDuration":2})");
            hears(3);
            invoke("methods/take", R"({"transitionType":"crossfade","transitionDuration":0.3})");
            hears(1);
        });
        if (isTooSlow())
            QSKIP("a sanitizer");
        const Track left(all, 0, 2), right(all, 1, 2);
        QVERIFY2(left.step() < steps(440) && right.step() < steps(440), // of the short one above all

                 qPrintable(QString::number(std::max(left.step(), right.step()))));
        const std::vector<double> out = left.envelope(), in = right.envelope();
        int mixed = 0;
        for (std::size_t i = 1; i < out.size(); ++i) {
            mixed += out[i] > 0.02 && in[i] > 0.02;
            // Peaks of a tenth of a second: each is that much of its level too large at the most.
            QVERIFY2(mixed == 0 || near(out[i] + in[i], level * 1.05, 0.06),
                     qPrintable(QString::number(out[i] + in[i])));
            if (in[i] > level * 0.99)
                break;
        }
        QVERIFY2(mixed > 15, qPrintable(QString::number(mixed)));
    }

    /// As the operator sets it, at once, and without a click.
    void isMovedAgainstThePictures()
    {
        double movedAt = 0;
        const QByteArray all = record([&] {
            play(Left);
            playsTo(0.5);
            movedAt = m_device->seconds();
            write("audioOffset", "0.03"); // little enough to be caught up by and by, which nobody waits for
            hears(1);
            write("audioOffset", "0");
            hears(1);
        });
        if (isTooSlow())
            QSKIP("a sanitizer");
        const Track left(all, 0, 2);
        QVERIFY2(left.step() < steps(440), qPrintable(QString::number(left.step())));
        const QStringList pauses = left.silences(); // before it, and the one that is put in
        QVERIFY2(pauses.size() == 2, qPrintable(pauses.join(u' ')));
        const double begin = pauses[1].section(u'+', 0, 0).toDouble();
        const double silent = pauses[1].section(u'+', 1).toDouble();
        QVERIFY2(begin > movedAt && begin < movedAt + 1, qPrintable(pauses[1]));
        // The fade takes 5 ms of it where the tone breaks off at more than a little.
        QVERIFY2(silent > 0.023 && silent < 0.032, qPrintable(pauses[1]));
    }

    /// On a device of its own, by its own volume.
    void letsPreviewBeHeard()
    {
        m_device = std::make_unique<PipeDevice>(m_file, 2);
        start({QStringLiteral("--sound-preview")});
        play(Right);
        play(Left, "preview");
        hears(4);
        const QByteArray all = heard();
        QVERIFY(near(Track(all, 0, 2).peak(), level));
        QCOMPARE(Track(all, 1, 2).peak(), 0.0);
    }

    std::string notice() { return m_peer->read(), m_peer->value("/device/system/properties/notice"); }

    /// Without a device the log says so once, all else goes on, and the sound comes with the device.
    void waitsForItsDevice()
    {
        QVERIFY(QDir().mkdir(m_file)); // nothing that a driver can open
        start({QStringLiteral("--sound")});
        play(Stereo);
        playsTo(2.5);
        QTRY_VERIFY_WITH_TIMEOUT(notice().starts_with("Program is silent"), patience);
        QVERIFY(QDir().rmdir(m_file));
        m_device = std::make_unique<PipeDevice>(m_file, 2);
        hears(1);
        QTRY_COMPARE_WITH_TIMEOUT(notice(), std::string(), patience);
        QVERIFY(near(Track(heard(), 0, 2).peak(), level));
        QCOMPARE(m_ombra->output().count("Program is silent"), 2); // and that it is over
    }

    /// What the operator sets program's sound to may be another device of the machine.
    void followsTheChoiceOfTheOperator()
    {
        m_device = std::make_unique<PipeDevice>(m_file, 2);
        start({QStringLiteral("--sound"), QStringLiteral("xlr=nonesuch")});
        play(Stereo);
        hears(1);
        const auto choose = [this](const std::string& device) {
            invoke("program/methods/selectAudioDevice", "{\"device\":\"" + device + "\"}");
        };
        choose("xlr");
        QTRY_VERIFY_WITH_TIMEOUT(notice().find("\"nonesuch\"") != std::string::npos, patience);
        const double before = m_device->seconds();
        choose("dante"); // which nobody named: heard all the same, and told
        QTRY_VERIFY_WITH_TIMEOUT(notice().find("set to Dante") != std::string::npos, patience);
        QTRY_VERIFY_WITH_TIMEOUT(notice().find("nonesuch") == std::string::npos, patience);
        hears(1);
        QVERIFY(near(Track(heard(), 0, 2).peak(before + 0.5), level));
    }

    /// Nor does a device that hangs hold up anything, the end of the server least of all.
    void leavesADeviceThatHangs()
    {
        startWithDevice();
        play(Stereo);
        playsTo(0.5);
        m_device->hang();
        QTRY_VERIFY_WITH_TIMEOUT(notice().find("does not answer") != std::string::npos, patience);
        const double at = position();
        playsTo(at + 4);
        QCOMPARE(m_ombra->output().count("Program is silent"), 1); // it was opened again, and is no better
        QElapsedTimer clock;
        clock.start();
        m_ombra->stop(10000);
        QVERIFY2(clock.elapsed() < 4000, qPrintable(QString::number(clock.elapsed())));
    }

    void playsNoneWhereThatIsWanted()
    {
        start({QStringLiteral("--sound"), QStringLiteral("--no-sound")});
        play(Stereo);
        playsTo(0.5);
        m_ombra->stop();
        QVERIFY(!QFile::exists(m_file));
    }
};

HALCYRA_TEST(SoundOutTest)
#include "soundouttest.moc"

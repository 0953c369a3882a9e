#include "ombra/engine/engine.h"
#include "ombra/engine/latewatch.h"
#include "ombra/engine/levelgauge.h"
#include "tarn/log/log.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "tarn/scene/scene.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/ombra/engine/engineprobe.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>
#include <boost/asio/io_context.hpp>

#include <cmath>
#include <map>
#include <mutex>
#include <thread>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

namespace {

const std::string previewPath = "/device/channels/0/preview";
const std::string programPath = "/device/channels/0/program";

/// Of the media below, by slot.
enum Media { Stereo = 1, Left, Mute, Spoilt, SoundOnly, Other, Short, Card };

std::string slotUrl(int slot)
{
    return MediaAddress(1, slot).toString();
}

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

/// Stands still like a disk that does not answer, until it is let go.
class StuckReader : public PictureReader
{
public:
    StuckReader(std::unique_ptr<PictureReader> reader, const std::atomic<bool>& stuck)
        : m_reader(std::move(reader))
        , m_stuck(stuck)
    {
    }
    MediaType type() const override { return m_reader->type(); }
    double fps() const override { return m_reader->fps(); }
    double duration() const override { return m_reader->duration(); }
    bool seek(double time, Picture& out) override { return m_reader->seek(time, out); }
    bool next(Picture& out) override
    {
        m_stuck.wait(true);
        return m_reader->next(out);
    }

private:
    std::unique_ptr<PictureReader> m_reader;
    const std::atomic<bool>& m_stuck;
};

} // namespace

/// What a live engine says of the sound that it plays, and how it stands its pictures.
class SoundTest : public QObject, private EngineProbe
{
    Q_OBJECT

private:
    void write(const std::string& path, const char* name, const Variant& value)
    {
        Object* object = m_scene->findObject(path);
        const PropertyInfo* info = object->findProperty(name);
        QVERIFY(object->setProperty(info, value));
        m_engine->propertyWritten(object, info);
    }
    bool invoke(const std::string& path, const Json& args)
    {
        std::string error;
        return m_engine->invoke(Path(path), args, &error);
    }
    bool play(const std::string& path, int slot)
    {
        return invoke(path + "/methods/playMedia", Json::object({{"mediaUrl", slotUrl(slot)}}));
    }
    bool listen(const std::string& path, const char* device)
    {
        return invoke(path + "/methods/selectAudioDevice", Json::object({{"device", device}}));
    }

    std::vector<AudioLevels> heard(const std::string& path)
    {
        const std::lock_guard lock(m_mutex);
        return m_heard[path];
    }
    AudioLevels levels(const std::string& path)
    {
        const std::vector<AudioLevels> all = heard(path);
        return all.empty() ? AudioLevels() : all.back();
    }
    void forget()
    {
        const std::lock_guard lock(m_mutex);
        m_heard.clear();
    }
    Ref<Surface> picture(const std::string& path)
    {
        const std::lock_guard lock(m_mutex);
        return m_pictures[path];
    }
    static bool near(double decibels, double expected)
    {
        return decibels == expected || std::abs(decibels - expected) < 0.2;
    }
    /// Two channels with these peaks; a sine has an RMS of 3 dB less.
    static bool isStereo(const AudioLevels& levels, double left, double right)
    {
        return levels.channels.size() == 2 && near(levels.channels[0].peak, left) &&
               near(levels.channels[1].peak, right) && near(levels.channels[0].rms, left - 3.01) &&
               near(levels.channels[1].rms, right - 3.01);
    }

    void startEngine()
    {
        m_engine = std::make_unique<Engine>(m_io, *m_scene, *m_library, m_config);
        m_engine->setPreviewSink([this](PreviewFrame shown) {
            const std::lock_guard lock(m_mutex);
            m_pictures[shown.source] = Ref<Surface>(shown.frame.getSurface());
        });
        m_engine->setLevelSink([this](PreviewLevels levels) {
            const std::lock_guard lock(m_mutex);
            m_heard[levels.source].push_back(std::move(levels.levels));
        });
    }

    TestMedia m_media;
    Ref<MediaLibrary> m_library;
    EngineConfig m_config;
    std::unique_ptr<Engine> m_engine;
    std::mutex m_mutex; // the sinks are called on another thread
    std::map<std::string, std::vector<AudioLevels>> m_heard;
    std::map<std::string, Ref<Surface>> m_pictures;
    static constexpr double silence = AudioLevels::silence;

private Q_SLOTS:
    void initTestCase()
    {
        const auto make = [this](const char* formula, const char* name, double seconds = 12) {
            return m_media.make(TestMedia::colour(QStringLiteral("gray"), seconds) +
                                    TestMedia::sound(QString::fromLatin1(formula), seconds) +
                                    TestMedia::h264(12) + words("-c:a pcm_s16le"),
                                QString::fromLatin1(name));
        };
        QVERIFY(make("0.5*sin(2*PI*1000*t)|0.25*sin(2*PI*1000*t)", "stereo.mov"));
        QVERIFY(make("0.5*sin(2*PI*1000*t)|0", "left.mov"));
        QVERIFY(m_media.make(TestMedia::colour(QStringLiteral("gray"), 12) + TestMedia::h264(12),
                             QStringLiteral("mute.mp4")));
        QVERIFY(m_media.spoilSound("left.mov", "spoilt.mov"));
        QVERIFY(m_media.make(TestMedia::sound(QStringLiteral("0.5*sin(2*PI*1000*t)"), 1),
                             QStringLiteral("tone.wav")));
        QVERIFY(make("0.5*sin(2*PI*3000*t)|0.5*sin(2*PI*3000*t)", "other.mov"));
        QVERIFY(make("0.5*sin(2*PI*1000*t)|0.5*sin(2*PI*1000*t)", "short.mov", 0.4));
        QVERIFY(
            m_media.make(words("-f lavfi -i color=white:s=480x480 -frames:v 1"), QStringLiteral("card.png")));
        Log::setSink([](LogLevel, const LogLoc&, std::string_view, std::string_view) {});
    }
    void cleanupTestCase() { Log::setSink({}); }

    void init()
    {
        forget();
        m_pictures.clear();
        m_scene = makeRef<Scene>();
        QVERIFY(m_scene->addObject(m_scene->find("/device/channels/0"), {}));
        MediaCollection collection("Main");
        int index = 0;
        for (const char* name : {"stereo.mov", "left.mov", "mute.mp4", "spoilt.mov", "tone.wav", "other.mov",
                                 "short.mov", "card.png"})
            QVERIFY(
                collection.insertMediaSlot(++index, MediaSlot(name, std::string("file:///") + name), false));
        m_library = makeRef<MediaLibrary>();
        QVERIFY(m_library->insertMediaCollection(1, collection, false));
        m_config = EngineConfig{m_media.folder()};
        startEngine();
    }
    void cleanup()
    {
        m_engine.reset();
        m_scene = nullptr;
    }

    void metersWhatIsHeard()
    {
        QVERIFY(play(programPath, Stereo)); // the device is still off
        QVERIFY(waitFor([&] { return number(programPath, "mediaPosition") > 0.2; }));
        QVERIFY(levels(programPath).channels.size() == 2 && levels(programPath).peak() == silence);
        QVERIFY(listen(programPath, "embedded"));
        QVERIFY(waitFor([&] { return isStereo(levels(programPath), -6.02, -12.04); }));
        forget();
        QVERIFY(waitFor([&] { return heard(programPath).size() > 15; }));
        for (const AudioLevels& moment : heard(programPath))
            QVERIFY(isStereo(moment, -6.02, -12.04));           // steady, whatever the moments' lengths
        write(programPath, "volume", Variant::from(0.5011872)); // -6 dB
        QVERIFY(waitFor([&] { return isStereo(levels(programPath), -12.02, -18.04); }));
        write(programPath, "muted", Variant::from(true));
        QVERIFY(waitFor([&] { return levels(programPath).peak() == silence; }));
        write(programPath, "muted", Variant::from(false));
        QVERIFY(waitFor([&] { return isStereo(levels(programPath), -12.02, -18.04); }));
        write(programPath, "volume", Variant::from(1.0));
        QVERIFY(play(programPath, Left));
        QVERIFY(waitFor([&] { return isStereo(levels(programPath), -6.02, silence); }));
        for (const char* state : {"pause", "stop"}) {
            write(programPath, "state", Variant::from(std::string(state)));
            QVERIFY(waitFor([&] {
                return levels(programPath).channels.size() == 2 && levels(programPath).peak() == silence;
            }));
            write(programPath, "state", Variant::from(std::string("play")));
            QVERIFY(waitFor([&] { return isStereo(levels(programPath), -6.02, silence); }));
        }
        QVERIFY(listen(programPath, "off"));
        QVERIFY(waitFor([&] { return levels(programPath).peak() == silence; }));
        QVERIFY(levels(previewPath).channels.empty()); // where nothing is loaded there is no sound
    }

    void playsOnWhereThereIsNoSound_data()
    {
        QTest::addColumn<int>("slot");
        QTest::newRow("none") << int(Mute);
        QTest::newRow("of an unknown kind") << int(Spoilt);
        QTest::newRow("still") << int(Card);
    }

    void playsOnWhereThereIsNoSound()
    {
        QFETCH(int, slot);
        QVERIFY(listen(previewPath, "embedded"));
        QVERIFY(play(previewPath, Stereo));
        QVERIFY(waitFor([&] { return levels(previewPath).channels.size() == 2; }));
        QVERIFY(play(previewPath, slot));
        QVERIFY(waitFor([&] { return levels(previewPath).channels.empty(); }));
        QVERIFY(waitFor([&] { return number(previewPath, "mediaPosition") > 0.3; }));
        QVERIFY(pixelAt(*picture(previewPath), 240, 135).green > 90);
        QVERIFY(levels(previewPath).channels.empty());
    }

    void playsSoundAlone()
    {
        QVERIFY(listen(previewPath, "xlr"));
        QVERIFY(play(previewPath, SoundOnly));
        QVERIFY(waitFor([&] { return near(levels(previewPath).peak(), -6.02); }));
        QCOMPARE(levels(previewPath).channels.size(), std::size_t(1));
        QVERIFY(waitFor([&] { return number(previewPath, "duration") == 1.0; }));
        QVERIFY(waitFor([&] { return text(previewPath, "state") == "pause"; })); // its end action
        QCOMPARE(number(previewPath, "mediaPosition"), 0.96);
        QCOMPARE(pixelAt(*picture(previewPath), 240, 135).green, 0);
        QVERIFY(invoke(previewPath + "/methods/seekMedia", Json::object({{"mediaPosition", 0.4}})));
        QVERIFY(waitFor([&] { return number(previewPath, "mediaPosition") == 0.4; }));
        QVERIFY(waitFor([&] { return levels(previewPath).peak() == silence; }));
    }

    void repeatsWithItsSound()
    {
        QVERIFY(listen(previewPath, "embedded"));
        QVERIFY(play(previewPath, Short));
        write(previewPath, "endAction", Variant::from(std::string("repeat")));
        QVERIFY(waitFor([&] { return heard(previewPath).size() > 30; }));
        const std::vector<AudioLevels> all = heard(previewPath);
        const auto loud =
            std::ranges::count_if(all, [](const AudioLevels& l) { return near(l.peak(), -6.02); });
        QVERIFY2(loud > 20, qPrintable(QString::number(loud)));
    }

    void mixesDuringATake_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<double>("quietest"); // RMS in the middle
        // Two tones of one loudness and another pitch are 3 dB less where each has half of its amplitude.
        QTest::newRow("crossfade") << QByteArray("crossfade") << -6.02 - 3.01 - 3.01;
        QTest::newRow("dip") << QByteArray("dipToColor") << silence;
    }

    void mixesDuringATake()
    {
        QFETCH(QByteArray, type);
        QFETCH(double, quietest);
        QVERIFY(listen(programPath, "embedded"));
        QVERIFY(play(programPath, Left));
        QVERIFY(play(previewPath, Other));
        QVERIFY(waitFor([&] { return isStereo(levels(programPath), -6.02, silence); }));
        QVERIFY(waitFor([&] { return number(previewPath, "mediaPosition") > 0; }));
        forget();
        QVERIFY(invoke("/device/channels/0/methods/take",
                       Json::object({{"transitionType", type.constData()}, {"transitionDuration", 0.8}})));
        QVERIFY(waitFor([&] { return isStereo(levels(programPath), -6.02, -6.02); }));
        double left = 0, right = 0; // the quietest left, the loudest right
        double before = -1000;
        const std::vector<AudioLevels> all = heard(programPath);
        QVERIFY(all.size() > std::size_t(15 / slowness));
        for (const AudioLevels& moment : all) {
            QCOMPARE(moment.channels.size(), std::size_t(2));
            left = std::min(left, moment.channels[0].rms);
            right = std::max(-1000.0, moment.channels[1].peak);
            QVERIFY2(right >= before - 0.2, "the new sound only rises");
            before = right;
        }
        if (std::isinf(quietest))
            QVERIFY2(left < -24, qPrintable(QString::number(left)));
        else
            QVERIFY2(std::abs(left - quietest) < 0.6, qPrintable(QString::number(left)));
    }

    void tellsWhereDecodingFallsBehind()
    {
        std::atomic<bool> stuck{false};
        const auto letGo = [&stuck] {
            stuck = false;
            stuck.notify_all();
        };
        const auto end = qScopeGuard([&] {
            letGo();
            m_engine.reset(); // before what holds it up goes
        });
        m_engine.reset();
        m_config.open = [&stuck](const MediaSource& source, const std::atomic<bool>& stop,
                                 std::string* error) -> std::unique_ptr<PictureReader> {
            auto reader = openReader(source, stop, error);
            return reader ? std::make_unique<StuckReader>(std::move(reader), stuck) : nullptr;
        };
        startEngine();
        const auto constrained = [&](const std::string& path) {
            return sceneValue(path, "resourceConstrained").as<bool>();
        };
        QVERIFY(play(previewPath, Stereo));
        write(previewPath, "endAction", Variant::from(std::string("repeat")));
        QVERIFY(waitFor([&] { return number(previewPath, "mediaPosition") > 0.2; }));
        QVERIFY(!constrained(previewPath));
        stuck = true;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(waitFor([&] { return constrained(previewPath); }));
        QVERIFY2(timer.elapsed() > 900 && timer.elapsed() < 3000,
                 qPrintable(QString::number(timer.elapsed())));
        QVERIFY(!constrained(programPath));
        letGo();
        timer.start();
        QVERIFY(waitFor([&] { return !constrained(previewPath); }));
        QVERIFY2(timer.elapsed() > 1900, qPrintable(QString::number(timer.elapsed())));
    }

    void latenessIsForgivenSlowly()
    {
        LateWatch watch;
        double now = 10;
        const auto pass = [&](bool late, int pictures) {
            for (int i = 0; i < pictures; ++i)
                watch.note(late, now += 0.04);
            return watch.constrained();
        };
        for (int i = 0; i < 20; ++i)
            QVERIFY(!pass(true, 10) && !pass(false, 10)); // hitches of less than half a second
        QVERIFY(!pass(true, 24));
        QVERIFY(!pass(false, 2)); // two pictures in time do not make it well
        QVERIFY(pass(true, 2));
        QVERIFY(pass(false, 49));
        QVERIFY(pass(true, 1));
        QVERIFY(pass(false, 50));
        QVERIFY(!pass(false, 2));
    }

    /// By what a preview is made of, and what is decoded already: nothing is opened for it, nor for a take to
    /// an output of another size.
    void scalesLive()
    {
        std::atomic<int> opened{0};
        m_engine.reset();
        m_config.open = [&](const MediaSource& source, const std::atomic<bool>& stop, std::string* error) {
            ++opened;
            return openReader(source, stop, error);
        };
        startEngine();
        const auto end = qScopeGuard([&] { m_engine.reset(); });
        Patch patch;
        QVERIFY(Patch::parseString(R"([
            {"op":"add","path":"/device/channels/0/mappings/0","value":{"type":"GpuMapping",
             "properties":{"target":"DP-1","defaultScaleMode":"fit"}}},
            {"op":"add","path":"/device/channels/0/mappings/1","value":{"type":"GpuMapping",
             "properties":{"target":"DP-2","defaultScaleMode":"stretch"}}},
            {"op":"add","path":"/device/system/gpus/0","value":{"type":"Gpu","outputs":[
             {"type":"Output","properties":{"name":"DP-1","width":1920,"height":1080}},
             {"type":"Output","properties":{"name":"DP-2","width":960,"height":540}}]}}])",
                                   patch));
        QVERIFY(m_scene->apply(patch, true));
        const auto covered = [&](const std::string& path) { // of 16 columns and 9 rows
            const Ref<Surface> surface = picture(path);
            QSize size(0, 0);
            for (int i = 0; surface && i < 16; ++i)
                size.rwidth() += pixelAt(*surface, i * 30 + 12, 135).green > 128;
            for (int i = 0; surface && i < 9; ++i)
                size.rheight() += pixelAt(*surface, 240, i * 30 + 12).green > 128;
            return size;
        };
        const auto set = [&](ScaleMode mode) {
            m_library->findSlot(1, Card)->setScaleMode(mode);
            m_engine->libraryChanged();
        };
        QVERIFY(play(previewPath, Card));
        QVERIFY(play(programPath, Card));
        QVERIFY(waitFor([&] { return covered(previewPath) == QSize(9, 9); })); // by the outputs' defaults
        QVERIFY(waitFor([&] { return covered(programPath) == QSize(16, 9); }));
        set(ScaleMode::Centered);
        QVERIFY(waitFor([&] { return covered(previewPath) == QSize(4, 4); })); // 120 of 480 pixels
        QVERIFY(waitFor([&] { return covered(programPath) == QSize(8, 8); })); // a smaller output
        write(previewPath, "state", Variant::from(std::string("pause")));
        set(ScaleMode::Clip);
        QVERIFY(waitFor([&] { return covered(previewPath) == QSize(16, 9); }));
        QCOMPARE(text(previewPath, "state"), std::string("pause"));
        set(ScaleMode::Default);
        QVERIFY(waitFor([&] { return covered(previewPath) == QSize(9, 9); }));
        QVERIFY(m_scene->replaceProperty(
            m_scene->find("/device/channels/0/mappings/0/properties/defaultScaleMode"),
            Variant::from(ScaleMode::Fit)));
        QVERIFY(waitFor([&] { return covered(previewPath) == QSize(9, 9); }));
        QCOMPARE(opened.load(), 2);
        QVERIFY(invoke("/device/channels/0/methods/take", Json::object()));
        QVERIFY(waitFor(
            [&] { return covered(programPath) == QSize(16, 9) && covered(previewPath) == QSize(9, 9); }));
        QCOMPARE(text(programPath, "state"), std::string("play"));
        QVERIFY(waitFor([&] { return opened == 3; })); // what was on program, for preview
    }

    void scalesWhilePlaying()
    {
        QVERIFY(play(previewPath, Stereo));
        const auto isWhole = [&] { return pixelAt(*picture(previewPath), 2, 2).green > 90; };
        QVERIFY(waitFor([&] { return number(previewPath, "mediaPosition") > 0.2; }));
        QVERIFY(isWhole());
        m_library->findSlot(1, Stereo)->setScaleMode(ScaleMode::BottomRight);
        m_engine->libraryChanged();
        const double at = number(previewPath, "mediaPosition");
        QVERIFY(waitFor([&] { return !isWhole(); }));
        QVERIFY(waitFor([&] { return number(previewPath, "mediaPosition") > at + 0.1; }));
        QCOMPARE(text(previewPath, "state"), std::string("play"));
        QVERIFY(pixelAt(*picture(previewPath), 470, 265).green > 90);
    }
};

HALCYRA_TEST(SoundTest)
#include "soundtest.moc"

#include "ombra/engine/engine.h"

#include "tarn/log/log.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tarn/scene/scene.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/ombra/engine/engineprobe.h"
#include "tests/support/testmain.h"
#include "util/clocktime.h"

#include <QElapsedTimer>
#include <QFile>
#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <mutex>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

namespace {

const std::string previewPath = "/device/channels/0/preview";
const std::string programPath = "/device/channels/0/program";

std::string slotUrl(int slot)
{
    return MediaAddress(1, slot).toString();
}

} // namespace

/// A live engine on a scene and a library of five slots: 1 numbered pictures with the in point 0.2, 2 red, 3
/// blue, 4 a damaged file, 5 a still. Playlist 1 plays 1 (up to its out point), then 3 with a crossfade.
class EngineTest : public QObject, private EngineProbe
{
    Q_OBJECT

private:
    struct Recorded
    {
        std::vector<Ref<Surface>> pictures;
        std::vector<std::pair<double, int>> positions; // as published, and the picture that was out by then
        std::vector<double> progress;
    };

    bool invoke(const std::string& path, const Json& args = Json::object())
    {
        m_error.clear();
        return m_engine->invoke(Path(path), args, &m_error);
    }
    bool play(const std::string& path, int slot)
    {
        return invoke(path + "/methods/playMedia", Json::object({{"mediaUrl", slotUrl(slot)}}));
    }
    bool seek(const std::string& path, double position)
    {
        return invoke(path + "/methods/seekMedia", Json::object({{"mediaPosition", position}}));
    }
    /// As a client's write arrives: in the scene first, then told.
    void write(const std::string& path, const char* name, const Variant& value)
    {
        Object* object = m_scene->findObject(path);
        const PropertyInfo* info = object->findProperty(name);
        QVERIFY(object->setProperty(info, value));
        m_engine->propertyWritten(object, info);
    }

    Recorded recorded(const std::string& path)
    {
        const std::lock_guard lock(m_mutex);
        return m_recorded[path];
    }
    Ref<Surface> picture(const std::string& path)
    {
        const Recorded all = recorded(path);
        return all.pictures.empty() ? Ref<Surface>() : all.pictures.back();
    }
    int pictureNumber(const std::string& path) { return numberOn(picture(path).get()); }
    void forget()
    {
        const std::lock_guard lock(m_mutex);
        m_recorded.clear();
    }

    void onChange(const SceneChange& change)
    {
        Path path;
        if (change.kind != SceneChange::PropertyChanged || !m_scene->pathOf(change.object, path))
            return;
        const std::lock_guard lock(m_mutex);
        Recorded& to = m_recorded[path.toString()];
        if (change.property->name == "mediaPosition")
            to.positions.emplace_back(change.value.as<double>(),
                                      to.pictures.empty() ? -1 : numberOn(to.pictures.back().get()));
        if (change.property->name == "takeProgress")
            to.progress.push_back(change.value.as<double>());
    }

    void fillLibrary()
    {
        MediaCollection collection("Main");
        int index = 0;
        for (const char* name : {"clip.mp4", "red.mp4", "blue.mp4", "broken.mp4", "still.png", "long.mp4"})
            QVERIFY(
                collection.insertMediaSlot(++index, MediaSlot(name, std::string("file:///") + name), false));
        collection.findMediaSlot(1)->setInpoint(0.2);
        m_library = makeRef<MediaLibrary>();
        QVERIFY(m_library->insertMediaCollection(1, collection, false));
        Playlist playlist("Show");
        playlist.addEntry({1, 0}, {slotUrl(1), EndAction::Next, TakeTransitionType::DirectCut, 0});
        playlist.addEntry({1, 5}, {slotUrl(4), EndAction::Next, TakeTransitionType::DirectCut, 0});
        playlist.addEntry({2, 0}, {slotUrl(3), EndAction::Next, TakeTransitionType::Crossfade, 0.4});
        QVERIFY(m_library->addPlaylist(1, playlist));
    }

    TestMedia m_media;
    Ref<MediaLibrary> m_library;
    std::unique_ptr<Engine> m_engine;
    std::string m_error;
    std::mutex m_mutex; // the sink and the log come from other threads
    std::map<std::string, Recorded> m_recorded;
    std::vector<std::string> m_log;
    std::vector<std::pair<double, int>> m_shown; // to the display: when, and the picture

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_media.make(TestMedia::numbered(2) + TestMedia::h264(12), QStringLiteral("clip.mp4")));
        for (const char* name : {"red", "blue"})
            QVERIFY(m_media.make(TestMedia::colour(QLatin1String(name), 2) + TestMedia::h264(12),
                                 QLatin1String(name) + QStringLiteral(".mp4")));
        QVERIFY(m_media.make(TestMedia::numbered(0.04), QStringLiteral("still.png")));
        QVERIFY(m_media.make(TestMedia::numbered(9) + TestMedia::h264(25), QStringLiteral("long.mp4")));
        QFile broken(QString::fromStdString(m_media.file("broken.mp4")));
        QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(QByteArray(4000, 'b')) == 4000);
        Log::setSink([this](LogLevel level, const LogLoc&, std::string_view, std::string_view message) {
            const std::lock_guard lock(m_mutex);
            if (level >= LogLevel::Warning)
                m_log.emplace_back(message);
        });
    }
    void cleanupTestCase() { Log::setSink({}); }

    void init()
    {
        forget();
        m_log.clear();
        m_shown.clear();
        m_scene = makeRef<Scene>();
        QVERIFY(m_scene->addObject(m_scene->find("/device/channels/0"), {}));
        fillLibrary();
        m_engine = std::make_unique<Engine>(m_io, *m_scene, *m_library, EngineConfig{m_media.folder()});
        m_engine->setPreviewSink([this](PreviewFrame picture) {
            const std::lock_guard lock(m_mutex);
            m_recorded[picture.source].pictures.push_back(Ref<Surface>(picture.frame.getSurface()));
        });
        m_scene->addChangeCallback(
            [](Scene*, int count, const SceneChange* changes, void* user) {
                for (int i = 0; i < count; ++i)
                    static_cast<EngineTest*>(user)->onChange(changes[i]);
            },
            this);
    }
    void cleanup()
    {
        m_engine.reset();
        m_scene = nullptr;
    }

    /// A display of 50 pictures a second has each of 25 twice, for just the moments that it asks for;
    /// previews keep to their rate meanwhile, and go on when it asks no more.
    void keepsToThePaceOfADisplay()
    {
        using Clock = std::chrono::steady_clock;
        m_engine->setMomentSink([this](const std::string& playback, ShownMoment moment) {
            const std::lock_guard lock(m_mutex);
            if (playback == programPath && !moment.layers.empty())
                m_shown.emplace_back(moment.time, numberOn(moment.layers.front().image));
        });
        QVERIFY2(play(programPath, 6), m_error.c_str());
        QVERIFY(waitFor([&] { return pictureNumber(programPath) > 0; }));
        forget();
        Clock::time_point beat = Clock::now();
        for (std::size_t i = 1; i <= 50; ++i) {
            beat += std::chrono::milliseconds(20);
            m_engine->pace(beat);
            QVERIFY(waitFor([&] {
                const std::lock_guard lock(m_mutex);
                return m_shown.size() == i && Clock::now() >= beat;
            }));
        }
        const std::size_t sent = recorded(programPath).pictures.size();
        QVERIFY2(sent >= 24 && sent <= 27, qPrintable(QString::number(sent)));
        for (std::size_t i = 3; i < m_shown.size(); ++i) { // the first one knows of no beat yet
            QVERIFY(std::abs(m_shown[i].first - m_shown[i - 1].first - 0.02) < 1e-6);
            QCOMPARE(m_shown[i].second, m_shown[i - 2].second + 1);
        }
        QVERIFY(waitFor([&] { return recorded(programPath).pictures.size() > sent + 5; }));
        QCOMPARE(m_shown.size(), std::size_t(50));
    }

    void publishesWhatPlays()
    {
        QVERIFY2(play(previewPath, 1), m_error.c_str());
        QCOMPARE(text(previewPath, "media"), slotUrl(1));
        QCOMPARE(sceneValue(previewPath, "sourceMode").as<int>(), int(SourceMode::Slot));
        QCOMPARE(text(previewPath, "state"), std::string("play"));
        QCOMPARE(text(previewPath, "endAction"), std::string("pause")); // a slot has no next of its own
        QVERIFY(waitFor([&] { return text(previewPath, "state") == "pause"; }));
        QCOMPARE(number(previewPath, "fps"), 25.0);
        QCOMPARE(number(previewPath, "inpoint"), 0.2);
        QCOMPARE(number(previewPath, "outpoint"), 2.0);
        QCOMPARE(number(previewPath, "duration"), 2.0);

        const Recorded all = recorded(previewPath);
        QVERIFY2(all.positions.size() > 30, "published with nearly every picture");
        for (const auto& [position, picture] : all.positions)
            QVERIFY(picture < 5 || std::abs(position * 25 - picture) < 1.1);
        QCOMPARE(pictureNumber(previewPath), 49);
        QCOMPARE(all.pictures.back()->width, 480);
        forget();
        QVERIFY2(waitFor([&] { return recorded(previewPath).pictures.size() >= 3; }), "repeats what stands");
        QCOMPARE(numberOn(picture(programPath).get()), 0);
    }

    void publishesPositionsThatCutToTheirPicture()
    {
        QVERIFY(play(previewPath, 6));
        write(previewPath, "state", Variant::from(std::string("pause")));
        for (const int frame : {201, 0, 203, 205, 99, 211}) { // as doubles, most fall a hair short
            QVERIFY(seek(previewPath, frame / 25.0));
            QVERIFY(waitFor([&] { return pictureNumber(previewPath) == frame; }));
            const auto shown = [&] {
                return clocktime::frameNumber(clocktime::fromSeconds(number(previewPath, "mediaPosition")),
                                              25);
            };
            QVERIFY(waitFor([&] { return shown() == frame; }));
        }
    }

    void followsWrites()
    {
        write(previewPath, "media", Variant::from(slotUrl(1)));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) > 6; }));
        write(previewPath, "state", Variant::from(std::string("pause")));
        QVERIFY(seek(previewPath, 1.0));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) == 25; }));
        QVERIFY(waitFor([&] { return std::abs(number(previewPath, "mediaPosition") - 1.0) < 1e-6; }));
        write(previewPath, "endAction", Variant::from(std::string("repeat")));
        write(previewPath, "state", Variant::from(std::string("play")));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) > 45; }));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) < 20; }));
        write(previewPath, "state", Variant::from(std::string("sideways")));
        QCOMPARE(text(previewPath, "state"), std::string("play"));
        write(previewPath, "state", Variant::from(std::string("stop")));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) == 5; }));

        QVERIFY(play(programPath, 2));
        QVERIFY(
            waitFor([&] { return picture(programPath) && pixelAt(*picture(programPath), 9, 9).red > 200; }));
        write(programPath, "state", Variant::from(std::string("stop")));
        QVERIFY(waitFor([&] { return pixelAt(*picture(programPath), 9, 9).red < 10; })); // off air: black
        write(programPath, "media", Variant::from(std::string()));
        QCOMPARE(text(programPath, "state"), std::string("stop"));
        QCOMPARE(sceneValue(programPath, "sourceMode").as<int>(), int(SourceMode::None));
    }

    void refusesWhatMeansNothing_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("args");
        const QByteArray preview = QByteArray::fromStdString(previewPath) + "/methods/";
        QTest::newRow("no such channel") << QByteArray("/device/channels/7/methods/take") << QByteArray("{}");
        QTest::newRow("no such child")
            << QByteArray("/device/channels/0/side/methods/step") << QByteArray("{}");
        QTest::newRow("no such method") << preview + "eject" << QByteArray("{}");
        QTest::newRow("no method") << QByteArray::fromStdString(previewPath) << QByteArray("{}");
        QTest::newRow("no argument") << preview + "seekMedia" << QByteArray("{}");
        QTest::newRow("text") << preview + "seekMedia" << QByteArray("{'mediaPosition':'1'}");
        QTest::newRow("negative") << preview + "seekMedia" << QByteArray("{'mediaPosition':-1}");
        QTest::newRow("no such slot")
            << preview + "playMedia" << QByteArray("{'mediaUrl':'brume://collections/1/slots/99'}");
        QTest::newRow("no URL") << preview + "playMedia" << QByteArray("{'mediaUrl':'/etc/passwd'}");
        QTest::newRow("no device") << preview + "selectAudioDevice" << QByteArray("{'device':'gramophone'}");
        QTest::newRow("nothing to take") << QByteArray("/device/channels/0/methods/take") << QByteArray("{}");
        QTest::newRow("bad option") << QByteArray("/device/channels/0/methods/take")
                                    << QByteArray("{'transitionType':'wipe'}");
    }

    void refusesWhatMeansNothing()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, args);
        Json value;
        QVERIFY(Json::parseString(args.replace('\'', '"').toStdString(), value));
        QVERIFY(!invoke(path.toStdString(), value));
        QVERIFY(!m_error.empty());
        QCOMPARE(text(previewPath, "media"), std::string());
    }

    void takes_data()
    {
        QTest::addColumn<bool>("swap");
        QTest::addColumn<bool>("fromPosition");
        QTest::addColumn<QByteArray>("type");
        for (const char* type : {"crossfade", "dipToColor", "directCut"}) {
            for (const bool swap : {true, false}) {
                for (const bool fromPosition : {true, false})
                    QTest::addRow("%s %s %s", type, swap ? "swap" : "copy",
                                  fromPosition ? "position" : "inpoint")
                        << swap << fromPosition << QByteArray(type);
            }
        }
    }

    void takes()
    {
        QFETCH(bool, swap);
        QFETCH(bool, fromPosition);
        QFETCH(QByteArray, type);
        QVERIFY(play(programPath, 3));
        QVERIFY(play(previewPath, 1));
        QVERIFY(seek(previewPath, 1.2));
        write(previewPath, "state", Variant::from(std::string("pause")));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) == 30; }));
        QVERIFY(waitFor([&] { return number(programPath, "mediaPosition") > 0.1; }));
        forget();

        QVERIFY2(invoke("/device/channels/0/methods/take",
                        Json::object({{"presetToggle", swap},
                                      {"playheadOption", fromPosition ? "position" : "inpoint"},
                                      {"transitionType", type.constData()},
                                      {"transitionDuration", 0.4}})),
                 m_error.c_str());
        QCOMPARE(text(programPath, "media"), slotUrl(1));
        QCOMPARE(text(previewPath, "media"), slotUrl(swap ? 3 : 1));
        QCOMPARE(text(programPath, "state"), std::string("play"));
        QCOMPARE(text(previewPath, "state"), std::string("pause"));
        const int first = fromPosition ? 30 : 5;
        QVERIFY(waitFor([&] { return number(programPath, "mediaPosition") * 25 > first + 14; }));
        QVERIFY(waitFor([&] { return number(programPath, "takeProgress") == 0; }));

        const Recorded program = recorded(programPath);
        QVERIFY(std::abs(program.positions.front().first * 25 - first) < 1.1);
        if (type == "directCut") {
            QVERIFY(std::ranges::all_of(program.progress, [](double value) { return value == 0; }));
        } else {
            QVERIFY(program.progress.size() > std::size_t(std::max(2, 6 / slowness)));
            QCOMPARE(program.progress.back(), 0.0);
            QCOMPARE(program.progress[program.progress.size() - 2], 1.0);
            QVERIFY(std::is_sorted(program.progress.begin(), program.progress.end() - 1));
        }
        if (!swap) {
            QCOMPARE(number(previewPath, "mediaPosition"), 1.2);
            QCOMPARE(recorded(previewPath).progress.size(), std::size_t(0));
        }
    }

    void mixesDuringATransition_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("crossfade") << QByteArray("crossfade");
        QTest::newRow("dip") << QByteArray("dipToColor");
    }

    void mixesDuringATransition()
    {
        QFETCH(QByteArray, type);
        QVERIFY(play(programPath, 2));
        QVERIFY(play(previewPath, 3));
        const auto shows = [&](const std::string& path, auto test) {
            const Ref<Surface> surface = picture(path);
            return surface && test(pixelAt(*surface, 240, 135));
        };
        const auto isRed = [](Rgb c) { return c.red > 200 && c.blue < 50; };
        const auto isBlue = [](Rgb c) { return c.blue > 200 && c.red < 50; };
        QVERIFY(waitFor([&] { return shows(programPath, isRed) && shows(previewPath, isBlue); }));
        forget();
        QVERIFY(invoke("/device/channels/0/methods/take",
                       Json::object({{"transitionType", type.constData()}, {"transitionDuration", 0.6}})));
        QVERIFY(waitFor([&] { return shows(programPath, isBlue) && shows(previewPath, isRed); }));

        int mixed = 0, dark = 0;
        for (const Ref<Surface>& surface : recorded(programPath).pictures) {
            const Rgb colour = pixelAt(*surface, 240, 135);
            const int sum = colour.red + colour.blue;
            mixed += colour.red > 40 && colour.blue > 40 && sum > 200 && sum < 300;
            dark += sum < 60;
        }
        const bool dips = type == "dipToColor";
        QVERIFY2(dips ? mixed == 0 && dark > 0 : mixed > 3 && dark == 0, type.constData());
    }

    void playsAListToItsEnd()
    {
        const std::string entry = entryUrl(1, {1, 0});
        QVERIFY(invoke(programPath + "/methods/playMedia", Json::object({{"mediaUrl", entry}})));
        QCOMPARE(sceneValue(programPath, "sourceMode").as<int>(), int(SourceMode::Playlist));
        QCOMPARE(text(programPath, "endAction"), std::string("next"));
        QVERIFY(seek(programPath, 1.8));
        // The damaged entry in between is passed over.
        QVERIFY(waitFor([&] { return text(programPath, "media") == entryUrl(1, {2, 0}); }));
        QVERIFY(
            waitFor([&] { return picture(programPath) && pixelAt(*picture(programPath), 9, 9).blue > 200; }));
        QCOMPARE(text(programPath, "state"), std::string("play"));
        QVERIFY(std::ranges::all_of(recorded(programPath).progress, [](double value) { return value == 0; }));
        QVERIFY(waitFor([&] { return text(programPath, "state") == "pause"; }));
        QCOMPARE(text(programPath, "media"), entryUrl(1, {2, 0}));
        QVERIFY(pixelAt(*picture(programPath), 9, 9).blue > 200);

        QVERIFY(invoke(programPath + "/methods/prevMedia"));
        QCOMPARE(text(programPath, "media"), entryUrl(1, {1, 5}));
        QVERIFY(play(previewPath, 2));
        QVERIFY(invoke(previewPath + "/methods/nextMedia"));
        QCOMPARE(text(previewPath, "media"), slotUrl(3));
        QVERIFY(play(previewPath, 6));
        QVERIFY(invoke(previewPath + "/methods/nextMedia"));
        QCOMPARE(text(previewPath, "media"), slotUrl(6));
    }

    void showsBlackForWhatIsDamaged()
    {
        QVERIFY(play(programPath, 2));
        QVERIFY(
            waitFor([&] { return picture(programPath) && pixelAt(*picture(programPath), 9, 9).red > 200; }));
        QVERIFY(play(programPath, 4));
        QVERIFY(waitFor([&] { return pixelAt(*picture(programPath), 9, 9).red < 10; }));
        QVERIFY(waitFor([&] { return text(programPath, "state") == "stop"; }));
        const std::lock_guard lock(m_mutex);
        QVERIFY(std::ranges::any_of(
            m_log, [](const std::string& line) { return line.find("broken.mp4") != std::string::npos; }));
    }

    void followsTheLibrary()
    {
        QVERIFY(play(previewPath, 1));
        m_library->findSlot(1, 1)->setOutpoint(0.6);
        m_engine->libraryChanged();
        QVERIFY(waitFor([&] { return text(previewPath, "state") == "pause"; }));
        QCOMPARE(number(previewPath, "outpoint"), 0.6);
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) == 14; }));

        const MediaSlot slot = *m_library->findSlot(1, 1);
        m_library->findCollection(1)->removeMediaSlot(1);
        m_engine->libraryChanged();
        QCOMPARE(text(previewPath, "state"), std::string("stop"));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) == 0; }));
        QCOMPARE(text(previewPath, "media"), slotUrl(1));
        m_library->findCollection(1)->insertMediaSlot(1, slot, false); // undone
        m_engine->libraryChanged();
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) == 5; }));
        m_library->findCollection(1)->insertMediaSlot(1, MediaSlot("x", "file:///red.mp4"), true);
        m_engine->libraryChanged();
        QVERIFY(waitFor([&] { return pixelAt(*picture(previewPath), 9, 9).red > 200; }));
    }

    void followsWhatMovesOnAir_data()
    {
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<QByteArray>("media");
        QTest::addColumn<bool>("fromList");
        const auto slot = [](int number) { return QByteArray::fromStdString(slotUrl(number)); };
        const auto entry = [](int list, int main) {
            return QByteArray::fromStdString(entryUrl(list, {main, 0}));
        };
        const QByteArray at = "/collections/1/slots/";
        const QByteArray list = "/playlists/1/entries/";
        QTest::newRow("moved") << "[{'op':'move','from':'" + at + "6','path':'" + at + "40'}]" << slot(40)
                               << false;
        QTest::newRow("other collection")
            << QByteArray("[{'op':'move','from':'/collections/1','path':'/collections/3'}]")
            << QByteArray::fromStdString(MediaAddress(3, 6).toString()) << false;
        QTest::newRow("exchanged") << "[{'op':'move','from':'" + at + "6','path':'" + at +
                                          "40'},{'op':'move','from':'" + at + "2','path':'" + at +
                                          "6'},{'op':'move','from':'" + at + "40','path':'" + at + "2'}]"
                                   << slot(2) << false;
        QTest::newRow("cleared") << "[{'op':'remove','path':'" + at + "6'}]" << QByteArray() << false;
        QTest::newRow("replaced") << "[{'op':'replace','path':'" + at +
                                         "6/contentUrl','value':'file:///red.mp4'}]"
                                  << QByteArray() << false;
        QTest::newRow("entry moved") << "[{'op':'move','from':'" + list + "9','path':'" + list + "12'}]"
                                     << entry(1, 12) << true;
        QTest::newRow("list renumbered")
            << QByteArray("[{'op':'move','from':'/playlists/1','path':'/playlists/4'}]") << entry(4, 9)
            << true;
        QTest::newRow("entry removed") << "[{'op':'remove','path':'" + list + "9'}]" << QByteArray() << true;
        QTest::newRow("list removed")
            << QByteArray("[{'op':'remove','path':'/playlists/1'}]") << QByteArray() << true;
    }

    void followsWhatMovesOnAir()
    {
        QFETCH(QByteArray, edit);
        QFETCH(QByteArray, media);
        QFETCH(bool, fromList);
        m_library->findPlaylist(1)->addEntry(
            {9, 0}, {slotUrl(6), EndAction::Pause, TakeTransitionType::DirectCut, 0});
        m_engine->libraryChanged();
        const std::string url = fromList ? entryUrl(1, {9, 0}) : slotUrl(6);
        QVERIFY(invoke(programPath + "/methods/playMedia", Json::object({{"mediaUrl", url}})));
        QVERIFY(waitFor([&] { return pictureNumber(programPath) > 3; }));
        forget();

        const MediaLibrary before(*m_library);
        Patch patch;
        QVERIFY(Patch::parseString(edit.replace('\'', '"').toStdString(), patch));
        QCOMPARE(m_library->applyDiff(patch), 0);
        m_engine->libraryChanged();
        QCOMPARE(text(programPath, "media"), media.toStdString());
        QCOMPARE(text(programPath, "heldMedia"),
                 media.isEmpty() ? std::string("file:///long.mp4") : std::string());
        QVERIFY(waitFor([&] { return pictureNumber(programPath) > 20; }));
        QCOMPARE(text(programPath, "state"), std::string("play"));
        int last = 0;
        for (const Ref<Surface>& shown : recorded(programPath).pictures) {
            QVERIFY2(numberOn(shown.get()) >= last, "it plays on without a break");
            last = numberOn(shown.get());
        }
        *m_library = before; // undone
        m_engine->libraryChanged();
        QCOMPARE(text(programPath, "media"), url);
        QCOMPARE(text(programPath, "heldMedia"), std::string());
        QVERIFY(waitFor([&] { return pictureNumber(programPath) > last; }));
    }

    /// A picture that stands on air stays when its slot goes, and plays on from there.
    void keepsWhatIsPausedOnAir()
    {
        QVERIFY(play(programPath, 6));
        QVERIFY(waitFor([&] { return pictureNumber(programPath) > 3; }));
        write(programPath, "state", Variant::from(std::string("pause")));
        QVERIFY(seek(programPath, 1.0));
        QVERIFY(waitFor([&] { return pictureNumber(programPath) == 25; }));
        forget();
        m_library->findCollection(1)->removeMediaSlot(6);
        m_engine->libraryChanged();
        QCOMPARE(text(programPath, "heldMedia"), std::string("file:///long.mp4"));
        QCOMPARE(text(programPath, "media"), std::string());
        QVERIFY(waitFor([&] { return recorded(programPath).pictures.size() > 10; }));
        QCOMPARE(text(programPath, "state"), std::string("pause"));
        for (const Ref<Surface>& shown : recorded(programPath).pictures)
            QCOMPARE(numberOn(shown.get()), 25);
        write(programPath, "state", Variant::from(std::string("play")));
        QVERIFY(waitFor([&] { return pictureNumber(programPath) > 30; }));
    }

    void endsAtOnce()
    {
        QVERIFY(play(previewPath, 1));
        QVERIFY(play(programPath, 2));
        QVERIFY(waitFor([&] { return pictureNumber(previewPath) > 8; }));
        QElapsedTimer timer;
        timer.start();
        m_engine.reset();
        QVERIFY(timer.elapsed() < 200);
        forget();
        m_io.restart();
        m_io.run(); // what was posted finds nobody
        QVERIFY(recorded(previewPath).pictures.empty());
    }
};

HALCYRA_TEST(EngineTest)
#include "enginetest.moc"

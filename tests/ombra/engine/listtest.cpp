#include "ombra/engine/librarysource.h"
#include "ombra/engine/playback.h"
#include "tarn/log/log.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playlistruntime.h"
#include "tarn/scene/scene.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/numberedclip.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <cmath>
#include <mutex>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

namespace {

constexpr double picture = 0.04; // seconds
const std::string path = "/device/channels/0/program";

Seen seenOn(const Ref<DecodedPicture>& picture)
{
    const Ref<Surface> surface = picture ? drawn(picture) : blackSurface({});
    const QImage image(surface->pixels.data(), surface->width, surface->height, surface->bytesPerLine,
                       QImage::Format_RGB888);
    return vantrel::test::seenOn(image);
}

std::string slotUrl(int slot)
{
    return MediaAddress(1, slot).toString();
}

} // namespace

/// Lists on a playback by a clock that the test moves, picture by picture: what is due is waited for, what
/// has to be there already is not.
class ListTest : public QObject
{
    Q_OBJECT

private:
    struct Kind
    {
        const char* file;
        QColor colour;
        bool numbered;
    };
    static inline const Kind kinds[] = {{"red.mp4", Qt::red, true},
                                        {"green.mp4", Qt::green, true},
                                        {"blue.mp4", Qt::blue, true},
                                        {"white.png", Qt::white, false},
                                        {"tone.wav", Qt::black, false}};
    enum { Red, Green, Blue, Still, Tone };

    /// What an entry plays of its kind, in pictures.
    struct Run
    {
        int kind, from, length;
        TakeTransitionType type = TakeTransitionType::DirectCut;
    };

    /// So many changes at random, always the same ones.
    std::vector<Run> fillList(int changes)
    {
        QRandomGenerator random(7);
        std::vector<Run> runs;
        for (int i = 0; i <= changes; ++i) {
            const Run run{random.bounded(5), random.bounded(10, 40), random.bounded(18, 50),
                          TakeTransitionType(random.bounded(3))};
            addEntry({i + 1, 0}, addSlot(run.kind, run.from, run.from + run.length), run.type,
                     random.bounded(4, 9) * picture); // two of them leave a picture between them
            runs.push_back(run);
        }
        edit([] {});
        return runs;
    }

    /// A slot of a kind, played from one picture up to another.
    int addSlot(int kind, int from, int to)
    {
        const int number = static_cast<int>(m_kinds.size()) + 1;
        MediaSlot slot(kinds[kind].file, std::string("file:///") + kinds[kind].file);
        if (kind == Still) {
            slot.setDurationType(MediaDurationType::Manual);
            slot.setCustomMediaDuration((to - from) * picture);
        } else {
            slot.setInherentMediaDuration(4.0);
            slot.setInpoint(from * picture);
            slot.setOutpoint(to * picture);
        }
        if (!m_library->findCollection(1)->insertMediaSlot(number, slot, false))
            qFatal("no room for a slot");
        m_kinds.push_back(kind);
        return number;
    }
    void addEntry(EntryAddress address, int slot, TakeTransitionType type = TakeTransitionType::DirectCut,
                  double seconds = 0, EndAction action = EndAction::Next)
    {
        m_library->findPlaylist(1)->addEntry(address, {slotUrl(slot), action, type, seconds});
    }
    void start(EntryAddress address = {1, 0})
    {
        m_playback->setMedia(entryUrl(1, address));
        QTRY_VERIFY((advance(), !m_playback->player().waiting()));
    }
    void edit(const std::function<void()>& change)
    {
        change();
        m_source->noteEdit();
        m_playback->libraryChanged();
    }

    Player::Moment advance()
    {
        m_playback->publish(*m_scene);
        Player::Moment moment = [&] {
            const std::lock_guard lock(m_studio->lock);
            return m_playback->player().advance(m_now);
        }();
        const std::vector<std::shared_ptr<Deck>> retired = [&] {
            const std::lock_guard lock(m_studio->lock);
            return m_playback->player().takeRetired();
        }();
        return moment;
    }
    /// What follows lies ready, if anything does: from now on nothing needs to be waited for.
    bool isFollowed()
    {
        advance();
        const std::lock_guard lock(m_studio->lock);
        std::optional<bool> prepared;
        m_playback->player().forFollowing([&](const Deck& deck, const Player::Transition&) {
            prepared = prepared.value_or(deck.prepared());
        });
        return prepared.value_or(false);
    }
    bool shows(const Ref<DecodedPicture>& image, QColor colour, std::optional<int> number)
    {
        const Seen seen = seenOn(image);
        m_why = QStringLiteral("at %1 s: %2 %3, not %4 %5")
                    .arg(m_now)
                    .arg(seen.colour.name())
                    .arg(seen.number.value_or(-1))
                    .arg(colour.name())
                    .arg(number.value_or(-1));
        return seen.colour == colour && seen.number == number;
    }
    bool shows(const Player::Moment& moment, QColor colour, std::optional<int> number)
    {
        return shows(moment.to(), colour, number);
    }
    bool isPictureOf(const Run& run, int index, const Ref<DecodedPicture>& image)
    {
        const Kind& kind = kinds[run.kind];
        return shows(image, kind.colour, kind.numbered ? std::optional(run.from + index) : std::nullopt);
    }
    bool playsUntil(int kind, int from, int to)
    {
        for (int number = from; number < to; ++number, m_now += picture) {
            if (!QTest::qWaitFor([&] { return shows(advance(), kinds[kind].colour, number); }))
                return false;
        }
        return true;
    }
    std::string property(const char* name) const
    {
        Variant value;
        m_scene->getProperty(m_scene->find(path + "/properties/" + name), value);
        return value.asString();
    }
    bool wasLogged(const std::string& part)
    {
        const std::lock_guard lock(m_logMutex);
        return std::ranges::any_of(m_log,
                                   [&](const std::string& line) { return line.find(part) != line.npos; });
    }

    TestMedia m_media;
    Ref<MediaLibrary> m_library;
    Ref<Scene> m_scene;
    std::unique_ptr<LibrarySource> m_source;
    std::unique_ptr<Studio> m_studio;
    std::unique_ptr<Playback> m_playback;
    std::vector<int> m_kinds; // by slot
    double m_now = 0;
    QString m_why;
    std::mutex m_logMutex; // decoders log on threads of their own
    std::vector<std::string> m_log;

private Q_SLOTS:
    void initTestCase()
    {
        for (const int kind : {Red, Green, Blue})
            QVERIFY(makeNumberedClip(QString::fromStdString(m_media.file(kinds[kind].file)),
                                     kinds[kind].colour, 100));
        QVERIFY(m_media.make({"-f", "lavfi", "-i", "color=white:s=320x180", "-frames:v", "1"},
                             QStringLiteral("white.png")));
        QVERIFY(m_media.make(TestMedia::sound(QStringLiteral("0.5"), 4), QStringLiteral("tone.wav")));
        QVERIFY(m_media.make(TestMedia::numbered(2) + TestMedia::sound(QStringLiteral("0.5"), 3) +
                                 TestMedia::h264(12) + QStringList{"-c:a", "pcm_s16le"},
                             QStringLiteral("long.mov")));
        QFile broken(QString::fromStdString(m_media.file("broken.mp4")));
        QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(QByteArray(4000, 'b')) == 4000);
        Log::setSink([this](LogLevel level, const LogLoc&, std::string_view, std::string_view message) {
            const std::lock_guard lock(m_logMutex);
            if (level >= LogLevel::Warning)
                m_log.emplace_back(message);
        });
    }
    void cleanupTestCase() { Log::setSink({}); }

    void init()
    {
        m_log.clear();
        m_kinds.clear();
        m_now = 0;
        m_scene = makeRef<Scene>();
        QVERIFY(m_scene->addObject(m_scene->find("/device/channels/0"), {}));
        m_library = makeRef<MediaLibrary>();
        QVERIFY(m_library->insertMediaCollection(1, MediaCollection("Main"), false));
        QVERIFY(m_library->addPlaylist(1, Playlist("Show")));
        m_source = std::make_unique<LibrarySource>(*m_library);
        m_studio = std::unique_ptr<Studio>(new Studio{*m_source, m_media.folder(), Canvas{}, [] {}});
        m_playback = std::make_unique<Playback>(*m_studio, path, true);
    }
    void cleanup()
    {
        m_playback.reset();
        m_scene = nullptr;
    }

    /// By the running times of the library, which say when each entry comes and when it is over.
    void showsEveryPictureInItsTime()
    {
        const int wanted = qEnvironmentVariableIntValue("HALCYRA_LIST_CHANGES");
        const std::vector<Run> runs = fillList(wanted > 0 ? wanted : 24);
        const PlaylistRuntimeInfo counted = calculatePlaylistRuntime(*m_library, 1);
        start();
        const auto round = [](double seconds) { return static_cast<int>(std::lround(seconds / picture)); };
        for (std::size_t on = 0; on < runs.size(); ++on) {
            const bool isLast = on + 1 == runs.size();
            const int begin = round(counted.entries[on].runtimeBefore);
            const int end = round(isLast ? counted.totalDuration : counted.entries[on + 1].runtimeBefore);
            const int before = on > 0 ? round(counted.entries[on - 1].runtimeAfter) : 0;
            for (int i = begin; i < end; ++i) {
                m_now = i * picture;
                Player::Moment moment = advance();
                const auto isRight = [&] {
                    return isPictureOf(runs[on], i - begin, moment.layers.back().image) &&
                           (i >= before || isPictureOf(runs[on - 1], runs[on - 1].length - before + i,
                                                       moment.layers.front().image));
                };
                if (i == begin) // a change waits for nothing
                    QVERIFY2(isPictureOf(runs[on], 0, moment.to()), qPrintable(m_why));
                QVERIFY2(QTest::qWaitFor([&] { return isRight() || (moment = advance(), isRight()); }),
                         qPrintable(m_why));
                QCOMPARE(moment.layers.size(), std::size_t(i < before ? 2 : 1));
                const double weight = i < before ? double(i - begin) / (before - begin) : 1;
                QVERIFY(std::abs(moment.layers.back().weight - weight) < 1e-6);
                QVERIFY(i >= before || moment.layers.back().type == runs[on].type);
                if (i == begin && !isLast)
                    QTRY_VERIFY(isFollowed());
            }
            QCOMPARE(property("media"), entryUrl(1, {static_cast<int>(on) + 1, 0}));
        }
        m_now += picture;
        QTRY_VERIFY((advance(), property("state") == "pause"));
    }

    /// The one after it begins with it, as the running times say.
    void mixesWhatIsShorterThanItsTransitions()
    {
        addEntry({1, 0}, addSlot(Red, 0, 20));
        addEntry({2, 0}, addSlot(Blue, 40, 45), TakeTransitionType::Crossfade, 0.4);
        addEntry({3, 0}, addSlot(Green, 10, 30), TakeTransitionType::Crossfade, 0.4);
        edit([] {});
        start();
        const auto areFollowed = [&] {
            int prepared = 0;
            advance();
            m_playback->player().forFollowing(
                [&](const Deck& deck, const Player::Transition&) { prepared += deck.prepared(); });
            return prepared == 2;
        };
        QTRY_VERIFY(areFollowed());
        QVERIFY2(playsUntil(Red, 0, 15), qPrintable(m_why));
        for (int i = 0; i < 5; ++i, m_now += picture) {
            Player::Moment moment = advance();
            QCOMPARE(moment.layers.size(), std::size_t(3));
            const auto areRight = [&] {
                return isPictureOf({Red, 0, 20}, 15 + i, moment.layers[0].image) &&
                       isPictureOf({Blue, 40, 5}, i, moment.layers[1].image) &&
                       isPictureOf({Green, 10, 20}, i, moment.layers[2].image);
            };
            QVERIFY2(QTest::qWaitFor([&] { return areRight() || (moment = advance(), areRight()); }),
                     qPrintable(m_why));
        }
        QCOMPARE(advance().layers.size(), std::size_t(1));
        QVERIFY2(playsUntil(Green, 15, 30), qPrintable(m_why));
    }

    /// One that is shorter than its transition begins anew in the middle of it, and the transition goes on.
    void loopsComeInWithTheirTransition()
    {
        addEntry({1, 0}, addSlot(Red, 0, 90));
        addEntry({2, 0}, addSlot(Blue, 40, 45), TakeTransitionType::Crossfade, 0.4, EndAction::Repeat);
        edit([] {});
        start();
        QVERIFY(m_playback->invoke("nextMedia", Json::object(), nullptr));
        QTRY_COMPARE(advance().layers.size(), std::size_t(2));
        for (int i = 1; i < 10; ++i) {
            QTRY_VERIFY(isFollowed());
            m_now += picture;
            QCOMPARE(advance().layers.size(), std::size_t(2));
        }
        m_now += picture;
        QCOMPARE(advance().layers.size(), std::size_t(1));
    }

    void loopsLoseNoTime_data()
    {
        QTest::addColumn<double>("inpoint");
        QTest::addColumn<double>("outpoint");
        QTest::newRow("whole pictures") << 0.4 << 1.2;
        QTest::newRow("between pictures") << 0.4 << 1.213;
        QTest::newRow("a hair over") << 0.4 << 1.20025;
        QTest::newRow("all of 2.00 s") << 0.0 << 2.0;
    }

    void loopsLoseNoTime()
    {
        QFETCH(double, inpoint);
        QFETCH(double, outpoint);
        const int hours = qEnvironmentVariableIntValue("HALCYRA_LOOP_HOURS");
        const int pictures = hours > 0 ? hours * 90'000 : 1250; // without, some sixty loops
        MediaSlot slot("long", "file:///long.mov");
        slot.setInpoint(inpoint);
        slot.setOutpoint(outpoint);
        QVERIFY(m_library->findCollection(1)->insertMediaSlot(1, slot, false));
        addEntry({1, 0}, 1, TakeTransitionType::Crossfade, 0.2, EndAction::Repeat);
        edit([] {});
        start();
        std::size_t heard = 0;
        for (int i = 1; i < pictures; ++i) {
            // A hair before its end is the end.
            const double position = inpoint + std::fmod(i * picture + 0.0006, outpoint - inpoint);
            const int number = static_cast<int>((position + 1e-7) / picture);
            QVERIFY(i % 20 != 5 || QTest::qWaitFor([&] { return isFollowed(); }));
            m_now = i * picture;
            Player::Moment moment = advance();
            heard += moment.sound.frames();
            QVERIFY2(std::ranges::all_of(moment.sound.samples, [](float value) { return value > 0.49f; }),
                     qPrintable(QString::number(m_now)));
            const auto isRight = [&] { return std::abs(numberOn(moment.to()) - number) == 0; };
            QVERIFY2(QTest::qWaitFor([&] { return isRight() || (moment = advance(), isRight()); }),
                     qPrintable(
                         QStringLiteral("%1: %2, not %3").arg(m_now).arg(numberOn(moment.to())).arg(number)));
        }
        QVERIFY2(std::abs(double(heard) - m_now * Sound::sampleRate) < 100,
                 qPrintable(QString::number(heard)));
    }

    /// Loads from a list, each of which has opened ahead what follows it, faster than files close.
    void manyLoadsStayBounded()
    {
        fillList(24);
        start();
        const auto status = [](const char* field) {
            QFile file(QStringLiteral("/proc/self/status"));
            const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            return text.mid(text.indexOf(field) + qstrlen(field))
                .trimmed()
                .split('\n')
                .value(0)
                .split(' ')
                .value(0)
                .toLongLong();
        };
        const auto threads = [&] { return status("Threads:"); };
        const auto kilobytes = [&] { return status("VmRSS:"); };
        const qint64 before = kilobytes();
        qint64 mostThreads = 0, mostKilobytes = 0;
        QElapsedTimer clock;
        clock.start();
        qint64 waited = 0;
        constexpr int loads = 3000;
        for (int i = 0; i < loads; ++i, m_now += 0.001) {
            m_playback->setMedia(entryUrl(1, {i % 24 + 1, 0}));
            advance();
            if (i % 50 == 0) { // one of them comes as far as to have the next held
                const qint64 from = clock.elapsed();
                QTRY_VERIFY(isFollowed());
                waited += clock.elapsed() - from;
            }
            mostThreads = std::max(mostThreads, threads());
            mostKilobytes = std::max(mostKilobytes, kilobytes() - before);
        }
        qInfo("%lld loads a second, at most %lld threads and %lld MiB more",
              loads * 1000 / std::max<qint64>(1, clock.elapsed() - waited), mostThreads,
              mostKilobytes / 1024);
        QVERIFY(mostThreads < 60);
        QVERIFY(mostKilobytes < 400 * 1024);
        QTRY_VERIFY((advance(), !m_playback->player().waiting())); // and the newest one plays
        QCOMPARE(property("media"), entryUrl(1, {(loads - 1) % 24 + 1, 0}));
    }

    void followsEditsToTheLast_data()
    {
        QTest::addColumn<QByteArray>("change");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("number");
        QTest::addColumn<QByteArray>("media");
        const QByteArray at = "/playlists/1/entries/", slot = "/collections/1/slots/";
        const auto entry = [](int main, int minor) {
            return QByteArray::fromStdString(entryUrl(1, {main, minor}));
        };
        QTest::newRow("inserted") << "[{'op':'copy','from':'" + at + "4','path':'" + at + "2.5'}]" << int(Red)
                                  << 60 << entry(2, 5);
        QTest::newRow("next removed")
            << "[{'op':'remove','path':'" + at + "3'}]" << int(Red) << 60 << entry(4, 0);
        QTest::newRow("itself removed")
            << "[{'op':'remove','path':'" + at + "2'}]" << int(Blue) << 40 << entry(3, 0);
        QTest::newRow("itself removed, others renumbered")
            << "[{'op':'remove','path':'" + at + "2'},{'op':'move','from':'" + at + "3','path':'" + at +
                   "2'},{'op':'move','from':'" + at + "4','path':'" + at + "3'}]"
            << int(Blue) << 40 << entry(2, 0);
        QTest::newRow("itself moved behind")
            << "[{'op':'move','from':'" + at + "2','path':'" + at + "3.5'}]" << int(Red) << 60 << entry(4, 0);
        QByteArray renumbered = "[{'op':'move','from':'/collections/1','path':'/collections/2'}";
        for (const char* number : {"1", "2", "3", "4"})
            renumbered += ",{'op':'replace','path':'" + at + number +
                          "/slotUrl','value':'brume://collections/2/slots/" + number + "'}";
        QTest::newRow("collection renumbered") << renumbered + ']' << int(Blue) << 40 << entry(3, 0);
        QTest::newRow("next has another in point")
            << "[{'op':'replace','path':'" + slot + "3/inpoint','value':2.0}]" << int(Blue) << 50
            << entry(3, 0);
        QTest::newRow("next has another medium")
            << "[{'op':'replace','path':'" + slot + "3/contentUrl','value':'file:///green.mp4'}]"
            << int(Green) << 40 << entry(3, 0);
    }

    void followsEditsToTheLast()
    {
        QFETCH(QByteArray, change);
        QFETCH(int, kind);
        QFETCH(int, number);
        QFETCH(QByteArray, media);
        addEntry({1, 0}, addSlot(Red, 0, 20));
        addEntry({2, 0}, addSlot(Green, 10, 30));
        addEntry({3, 0}, addSlot(Blue, 40, 90));
        addEntry({4, 0}, addSlot(Red, 60, 90));
        edit([] {});
        start({2, 0});
        QVERIFY2(playsUntil(Green, 10, 20), qPrintable(m_why));
        QTRY_VERIFY(isFollowed());
        edit([&] {
            Patch patch;
            QVERIFY(Patch::parseString(change.replace('\'', '"').toStdString(), patch));
            QCOMPARE(m_library->applyDiff(patch), 0);
        });
        QVERIFY2(playsUntil(Green, 20, 29), qPrintable(m_why)); // undisturbed
        QTRY_VERIFY(isFollowed());
        QVERIFY2(playsUntil(Green, 29, 30), qPrintable(m_why));
        QVERIFY2(shows(advance(), kinds[kind].colour, number), qPrintable(m_why));
        advance();
        QCOMPARE(property("media"), media.toStdString());
    }

    /// Clients are told of it long before it is opened.
    void tellsWhatComesNext()
    {
        const int red = addSlot(Red, 0, 90), unplayable = addSlot(Green, 0, 90), blue = addSlot(Blue, 0, 90);
        m_library->findSlot(1, unplayable)->setIsPlayable(false);
        const int list[] = {red, unplayable, 99, blue};
        for (int i = 0; i < 4; ++i)
            addEntry({i + 1, 0}, list[i], TakeTransitionType::DirectCut, 0, EndAction::Pause);
        edit([] {});
        start();
        advance();
        QCOMPARE(property("nextMedia"), entryUrl(1, {4, 0}));
        edit([&] { m_library->findSlot(1, unplayable)->setIsPlayable(true); });
        advance();
        QCOMPARE(property("nextMedia"), entryUrl(1, {2, 0}));
        edit([&] { m_library->findPlaylist(1)->removeEntry({1, 0}); });
        advance();
        QCOMPARE(property("media"), std::string());
        QCOMPARE(property("nextMedia"), entryUrl(1, {2, 0}));
        start({4, 0});
        advance();
        QCOMPARE(property("nextMedia"), std::string());
    }

    void passesOverWhatCannotBePlayed()
    {
        QVERIFY(
            m_library->findCollection(1)->insertMediaSlot(50, MediaSlot("b", "file:///broken.mp4"), false));
        QVERIFY(m_library->findCollection(1)->insertMediaSlot(51, MediaSlot("n", "file:///none.mp4"), false));
        const int red = addSlot(Red, 0, 10), blue = addSlot(Blue, 20, 30);
        const int list[] = {50, red, 50, 99, 51, blue, 51, 50};
        for (int i = 0; i < 8; ++i)
            addEntry({i + 1, 0}, list[i]);
        edit([] {});
        start({2, 0});
        QTRY_VERIFY(isFollowed());
        QTRY_COMPARE((advance(), property("nextMedia")), entryUrl(1, {6, 0}));
        QVERIFY2(playsUntil(Red, 0, 10), qPrintable(m_why));
        QVERIFY2(playsUntil(Blue, 20, 30), qPrintable(m_why));
        QTRY_VERIFY((shows(advance(), Qt::blue, 29), property("state") == "pause"));
        QVERIFY2(shows(advance(), Qt::blue, 29), qPrintable(m_why)); // the last picture holds
        QCOMPARE(property("media"), entryUrl(1, {6, 0}));
        QVERIFY(wasLogged("broken.mp4") && wasLogged("none.mp4") && wasLogged("passed over"));

        // By hand into what cannot be played, and nothing else in that direction: what was on air stays.
        start({2, 0});
        QVERIFY2(playsUntil(Red, 0, 3), qPrintable(m_why));
        std::string error;
        QVERIFY(m_playback->invoke("prevMedia", Json::object(), &error));
        QTRY_VERIFY((advance(), !m_playback->player().waiting()));
        QCOMPARE(property("media"), entryUrl(1, {2, 0}));
        QVERIFY2(playsUntil(Red, 3, 10), qPrintable(m_why));
        QTRY_VERIFY(shows(advance(), Qt::blue, 20));
    }

    /// The media stand, and the transition runs out, so that no mixture stays on air.
    void pausesInATransition()
    {
        addEntry({1, 0}, addSlot(Red, 0, 20));
        addEntry({2, 0}, addSlot(Blue, 40, 80), TakeTransitionType::Crossfade, 0.4);
        edit([] {});
        start();
        QTRY_VERIFY(isFollowed());
        QVERIFY2(playsUntil(Red, 0, 10), qPrintable(m_why));
        QVERIFY2(playsUntil(Blue, 40, 43), qPrintable(m_why));
        Player::Moment moment;
        QTRY_VERIFY((moment = advance(), shows(moment, Qt::blue, 43) && moment.layers.size() == 2 &&
                                             seenOn(moment.layers.front().image).number == 13));
        m_playback->setState(SourcePlayState::Pause);
        for (int i = 0; i < 20; ++i) {
            m_now += picture;
            moment = advance();
            QVERIFY2(shows(moment, Qt::blue, 43), qPrintable(m_why));
            QVERIFY(moment.layers.size() == 1 || seenOn(moment.layers.front().image).number == 13);
        }
        QCOMPARE(advance().layers.size(), std::size_t(1));
        m_playback->setState(SourcePlayState::Play);
        QVERIFY2(playsUntil(Blue, 43, 80), qPrintable(m_why));
    }

    void holdsInfiniteStills()
    {
        QVERIFY(
            m_library->findCollection(1)->insertMediaSlot(50, MediaSlot("w", "file:///white.png"), false));
        addEntry({1, 0}, 50);
        addEntry({2, 0}, addSlot(Blue, 40, 80), TakeTransitionType::Crossfade, 0.4);
        edit([] {});
        start();
        for (int i = 0; i < 1000; ++i, m_now += picture)
            QVERIFY2(shows(advance(), Qt::white, std::nullopt), qPrintable(m_why));
        std::string error;
        QVERIFY(m_playback->invoke("nextMedia", Json::object(), &error));
        QTRY_VERIFY(shows(advance(), Qt::blue, 40));
        QCOMPARE(advance().layers.size(), std::size_t(2)); // by its own transition
    }

    void soundPlaysOnBehindThePictures()
    {
        QVERIFY(m_library->findCollection(1)->insertMediaSlot(50, MediaSlot("l", "file:///long.mov"), false));
        addEntry({1, 0}, 50);
        addEntry({2, 0}, addSlot(Blue, 40, 80));
        edit([] {});
        start();
        for (int i = 1; i < 75; ++i) {
            m_now = i * picture;
            QTRY_COMPARE(numberOn(advance().to()), std::min(i, 49));
        }
        QTRY_VERIFY((advance(), std::abs(m_playback->player().deck()->position() - 74 * picture) < 1e-6));
        QCOMPARE(m_playback->player().deck()->duration(), 3.0);
        QTRY_VERIFY(isFollowed());
        m_now += picture;
        QVERIFY2(playsUntil(Blue, 40, 50), qPrintable(m_why));
    }
};

HALCYRA_TEST(ListTest)
#include "listtest.moc"

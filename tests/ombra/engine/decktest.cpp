#include "ombra/engine/deck.h"

#include "ombra/decode/picturereader.h"
#include "ombra/engine/player.h"
#include "tarn/media/playenums.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/testmain.h"

#include <pthread.h>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

/// Plays decks by a clock that the test moves: what is due at a moment is waited for, never slept for.
class DeckTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Deck> make(const char* name, MediaItem item, EndAction endAction,
                               SourcePlayState state = SourcePlayState::Play)
    {
        m_now = 0;
        auto deck = std::make_unique<Deck>(MediaSource{m_media.file(name), std::nullopt}, item, endAction,
                                           ScaleMode::Fit, std::nullopt, state, [] {});
        deck->begin();
        return deck;
    }

    int shown(Deck& deck)
    {
        deck.advance(m_now);
        return numberOn(deck.image());
    }

    static MediaItem range(double inpoint, std::optional<double> outpoint)
    {
        MediaItem item;
        item.inpoint = inpoint;
        item.outpoint = outpoint;
        return item;
    }

    TestMedia m_media;
    double m_now = 0;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_media.make(TestMedia::numbered(2) + TestMedia::h264(12), QStringLiteral("clip.mp4")));
        QVERIFY(m_media.make(TestMedia::numbered(0.04), QStringLiteral("still.png")));
    }

    void showsEveryPictureInItsTime()
    {
        const auto deck = make("clip.mp4", range(0.2, std::nullopt), EndAction::Pause);
        for (int frame = 5; frame < 50; ++frame, m_now += 0.04) {
            QTRY_COMPARE(shown(*deck), frame);
            QVERIFY(std::abs(deck->position() - frame / 25.0) < 1e-3);
        }
        m_now += 0.04;
        QTRY_COMPARE((shown(*deck), deck->state()), SourcePlayState::Pause);
        QCOMPARE(numberOn(deck->image()), 49);
        QCOMPARE(deck->status().fps, 25.0);
        QCOMPARE(deck->duration(), 2.0);
        deck->setState(SourcePlayState::Play); // at the end: once more from the in point
        QTRY_COMPARE(shown(*deck), 5);
    }

    /// It is saved as the place to go on from, when the file is there again.
    void keepsItsPlaceWithoutItsFile()
    {
        const auto deck =
            make("none.mp4", range(0.2, std::nullopt), EndAction::Pause, SourcePlayState::Pause);
        deck->seek(1.2);
        QTRY_VERIFY((deck->advance(m_now), deck->failed() && deck->landed()));
        QCOMPARE(deck->position(), 1.2);
        QCOMPARE(deck->state(), SourcePlayState::Pause);
    }

    /// No thread is to be had: the deck fails like one without its file.
    void failsWithoutThreads()
    {
        pthread_attr_t usual{}, huge{};
        QCOMPARE(pthread_getattr_default_np(&usual), 0);
        QCOMPARE(pthread_getattr_default_np(&huge), 0);
        QCOMPARE(pthread_attr_setstacksize(&huge, std::size_t(1) << 46), 0);
        QCOMPARE(pthread_setattr_default_np(&huge), 0);
        const auto deck = make("clip.mp4", range(0.2, std::nullopt), EndAction::Pause);
        QCOMPARE(pthread_setattr_default_np(&usual), 0);
        deck->advance(m_now);
        QVERIFY(deck->failed());
        QVERIFY(deck->idle());
        QCOMPARE(deck->channels(), std::optional<int>(0));
    }

    void endsAsItIsTold_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<int>("picture");
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("isFollowed");
        QTest::newRow("repeat") << int(EndAction::Repeat) << 5 << int(SourcePlayState::Play) << false;
        QTest::newRow("pause") << int(EndAction::Pause) << 9 << int(SourcePlayState::Pause) << false;
        QTest::newRow("goTo") << int(EndAction::GoTo) << 9 << int(SourcePlayState::Pause) << false;
        QTest::newRow("stop") << int(EndAction::Stop) << 5 << int(SourcePlayState::Stop) << false;
        QTest::newRow("next") << int(EndAction::Next) << 9 << int(SourcePlayState::Play) << true;
    }

    void endsAsItIsTold()
    {
        QFETCH(int, action);
        const auto deck = make("clip.mp4", range(0.2, 0.4), EndAction(action));
        for (int frame = 5; frame < 10; ++frame, m_now += 0.04)
            QTRY_COMPARE(shown(*deck), frame);
        (void)shown(*deck); // at the out point
        QTRY_VERIFY((shown(*deck), deck->landed()));
        QTEST(numberOn(deck->image()), "picture");
        QTEST(int(deck->state()), "state");
        QTEST(deck->atEnd(), "isFollowed");
        m_now += 0.04;
        if (EndAction(action) == EndAction::Repeat)
            QTRY_COMPARE(shown(*deck), 6);
        else
            QTEST(shown(*deck), "picture");
    }

    /// What fades out is over with: it neither begins again nor calls for what would come next.
    void anOutgoingDeckHoldsAtItsEnd_data()
    {
        QTest::addColumn<int>("action");
        QTest::newRow("repeat") << int(EndAction::Repeat);
        QTest::newRow("next") << int(EndAction::Next);
        QTest::newRow("stop") << int(EndAction::Stop);
    }

    void anOutgoingDeckHoldsAtItsEnd()
    {
        QFETCH(int, action);
        const std::shared_ptr<Deck> outgoing = make("clip.mp4", range(0.2, 0.4), EndAction(action));
        Player player(true);
        player.load(outgoing, {});
        QTRY_VERIFY((player.advance(m_now), !player.waiting()));
        player.load(make("clip.mp4", range(1.0, std::nullopt), EndAction::Pause),
                    {TakeTransitionType::Crossfade, 9});
        QTRY_VERIFY((player.advance(m_now), !player.waiting()));
        m_now += 0.4;
        QTRY_VERIFY((player.advance(m_now), outgoing->state() != SourcePlayState::Play));
        QCOMPARE(outgoing->state(), SourcePlayState::Pause);
        QCOMPARE(numberOn(outgoing->image()), 9);
        QVERIFY(!outgoing->atEnd());
    }

    void seeksAndStepsExactly()
    {
        const auto deck = make("clip.mp4", range(0.2, 1.6), EndAction::Pause, SourcePlayState::Stop);
        QTRY_COMPARE(shown(*deck), 5);
        deck->seek(1.0);
        QCOMPARE(deck->state(), SourcePlayState::Pause);
        QTRY_COMPARE(shown(*deck), 25);
        const std::pair<int, int> steps[] = {{1, 26},  {1, 27},   {-1, 26}, {-1, 25},   {-1, 24},
                                             {10, 34}, {-20, 14}, {99, 39}, {-1000, 5}, {-1, 5}};
        for (const auto& [step, frame] : steps) {
            deck->step(step);
            QTRY_COMPARE(shown(*deck), frame);
            QTRY_VERIFY((shown(*deck), deck->landed()));
        }
        for (int i = 0; i < 7; ++i)
            deck->step(3); // faster than they can be decoded
        QTRY_COMPARE(shown(*deck), 26);
        deck->seekOutpoint();
        QTRY_COMPARE(shown(*deck), 39);
        deck->seekInpoint();
        QTRY_COMPARE(shown(*deck), 5);
        deck->seek(99);
        QTRY_COMPARE(shown(*deck), 49);
    }

    /// Every picture forwards and back, in media whose pictures stand for differently long.
    void stepsThroughEveryPicture_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QStringList>("how");
        QTest::addColumn<QList<int>>("numbers");
        const auto only = [](const QList<int>& numbers) {
            QStringList wanted;
            for (const int number : numbers)
                wanted.append(QStringLiteral("eq(n,%1)").arg(number));
            return QStringList{QStringLiteral("-vf"), QStringLiteral("select='%1'").arg(wanted.join(u'+')),
                               QStringLiteral("-vsync"), QStringLiteral("vfr")};
        };
        const QList<int> uneven{0, 1, 2, 5, 6, 20, 21, 22, 40};
        QTest::newRow("uneven") << QByteArray("uneven.mp4") << only(uneven) << uneven;
        QTest::newRow("uneven, milliseconds") << QByteArray("uneven.mkv") << only(uneven) << uneven;
        const QList<int> few{0, 1, 2, 3, 4, 5};
        QTest::newRow("no duration") << QByteArray("live.mkv") << only(few) + QStringList{"-live", "1"}
                                     << few;
    }

    void stepsThroughEveryPicture()
    {
        QFETCH(QByteArray, name);
        QFETCH(QStringList, how);
        QFETCH(QList<int>, numbers);
        QVERIFY(m_media.make(TestMedia::numbered(2) + how + TestMedia::h264(999), QString::fromLatin1(name)));
        const auto deck =
            make(name.constData(), range(0, std::nullopt), EndAction::Pause, SourcePlayState::Pause);
        QTRY_COMPARE(shown(*deck), 0);
        const auto stepTo = [&](int direction, int number) {
            deck->step(direction);
            return QTest::qWaitFor([&] { return shown(*deck) == number && deck->landed(); });
        };
        for (const int number : numbers.mid(1))
            QVERIFY2(stepTo(1, number), qPrintable(QString::number(number)));
        QVERIFY(stepTo(1, numbers.last())); // there is none after it
        for (qsizetype i = numbers.size() - 2; i >= 0; --i)
            QVERIFY2(stepTo(-1, numbers[i]), qPrintable(QString::number(numbers[i])));
        QVERIFY(stepTo(-1, 0));
        // Also from where playing left off.
        deck->setState(SourcePlayState::Play);
        QTRY_COMPARE(shown(*deck), 0);
        m_now += numbers[2] / 25.0 + 0.001;
        QTRY_COMPARE(shown(*deck), numbers[2]);
        QVERIFY(stepTo(1, numbers[3]));
        QVERIFY(stepTo(-1, numbers[2]));
    }

    void seeksTheEndBeforeItIsKnown()
    {
        const auto deck = make("clip.mp4", range(0, std::nullopt), EndAction::Pause, SourcePlayState::Pause);
        deck->seekOutpoint();
        QTRY_COMPARE(shown(*deck), 49);
    }

    void pausesAndStops()
    {
        const auto deck = make("clip.mp4", range(0.2, std::nullopt), EndAction::Pause);
        QTRY_COMPARE(shown(*deck), 5);
        m_now += 0.4;
        QTRY_COMPARE(shown(*deck), 15);
        deck->setState(SourcePlayState::Pause);
        m_now += 10;
        QCOMPARE(shown(*deck), 15);
        deck->setState(SourcePlayState::Play);
        QCOMPARE(shown(*deck), 15);
        m_now += 0.04;
        QTRY_COMPARE(shown(*deck), 16);
        deck->setState(SourcePlayState::Stop);
        QTRY_COMPARE(shown(*deck), 5);
        deck->setItem(range(0.6, std::nullopt));
        QTRY_COMPARE(shown(*deck), 15);
    }

    void soundFollowsThePosition()
    {
        // Silent up to the second 1, then a tone.
        QVERIFY(m_media.make(
            TestMedia::numbered(2) + TestMedia::sound(QStringLiteral("gte(t,1)*0.5*sin(2*PI*1000*t)"), 2) +
                TestMedia::h264(12) + QStringList{QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")},
            QStringLiteral("late.mov")));
        const auto deck = make("late.mov", range(0.8, 1.2), EndAction::Repeat);
        double peak = 0;       // of the last piece of sound
        std::size_t heard = 0; // frames
        const auto plays = [&] {
            const int picture = shown(*deck);
            if (const Sound& sound = deck->sound(); sound.frames() > 0) {
                peak = *std::ranges::max_element(sound.samples);
                heard += sound.frames();
            }
            return picture;
        };
        for (int round = 0; round < 2; ++round) { // the second time by the loop
            QTRY_VERIFY((plays() == 20 && deck->landed()));
            heard = 0;
            for (int picture = 21; picture < 30; ++picture) {
                m_now += 0.04;
                QTRY_COMPARE(plays(), picture);
                // What sounded up to this picture: the tone is in what came with the twenty-fifth.
                QVERIFY2(picture <= 25 ? peak == 0 : std::abs(peak - 0.5) < 0.01,
                         qPrintable(QString::number(picture)));
            }
            m_now += 0.04;
            (void)plays();
            QVERIFY(std::abs(double(heard) - 0.4 * 48000) < 3); // to the out point, and no further
        }
        deck->seek(1.0);
        QTRY_VERIFY((plays() == 25 && deck->landed()));
        peak = 0;
        m_now += 0.04;
        QTRY_COMPARE(plays(), 26);
        QVERIFY(std::abs(peak - 0.5) < 0.01);
        deck->setState(SourcePlayState::Pause);
        heard = 0;
        m_now += 0.04;
        (void)plays();
        deck->step(1);
        QTRY_VERIFY((plays() == 27 && deck->landed()));
        QCOMPARE(heard, std::size_t(0));
        deck->setState(SourcePlayState::Play);
        (void)plays();
        m_now += 0.04;
        QTRY_COMPARE(plays(), 28);
        QVERIFY(std::abs(double(heard) - 1920) < 3);
    }

    void stillsStandAsLongAsTheyShould()
    {
        MediaItem item;
        item.stillDuration = 3.5;
        const auto deck = make("still.png", item, EndAction::Pause);
        QTRY_COMPARE((shown(*deck), deck->landed()), true);
        QCOMPARE(deck->outpoint(), 3.5);
        m_now = 3.48;
        QTRY_COMPARE((shown(*deck), deck->position()), 3.48);
        QCOMPARE(deck->state(), SourcePlayState::Play);
        m_now = 3.5;
        (void)shown(*deck);
        QCOMPARE(deck->state(), SourcePlayState::Pause);

        const auto endless = make("still.png", MediaItem(), EndAction::Stop);
        QTRY_COMPARE((shown(*endless), endless->landed()), true);
        m_now = 0.04;
        QTRY_COMPARE((shown(*endless), endless->position()), 0.04);
        QCOMPARE(endless->duration(), 0.0);
        QCOMPARE(endless->state(), SourcePlayState::Play);
    }
};

HALCYRA_TEST(DeckTest)
#include "decktest.moc"

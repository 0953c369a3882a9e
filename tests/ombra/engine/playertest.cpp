#include "ombra/engine/player.h"

#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tests/ombra/decode/testmedia.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <ranges>
#include <thread>
#include <vector>

using namespace vantrel;
using namespace vantrel::ombra;
using namespace vantrel::test;

namespace {

/// Where files of a test lie: whether it answers at all, and how many were opened and are open.
struct Disk
{
    std::atomic<bool> answers{true};
    std::atomic<int> opened{0};
    std::atomic<int> open{0};
    std::atomic<int> mostOpen{0};
};

/// Ten seconds of pictures, each of a surface of its own. Waits like a decoder does: until there is an answer
/// or it is told to stop.
class FakeReader : public PictureReader
{
public:
    FakeReader(Disk& disk, const std::atomic<bool>& stop)
        : m_disk(disk)
        , m_stop(stop)
    {
        ++m_disk.opened;
        m_disk.mostOpen = std::max(m_disk.mostOpen.load(), ++m_disk.open);
    }
    ~FakeReader() override { --m_disk.open; }

    MediaType type() const override { return MediaType::VideoFile; }
    double fps() const override { return 25; }
    double duration() const override { return 10; }
    bool seek(double time, Picture& out) override
    {
        m_number = static_cast<int>(time * 25 + 0.5);
        return read(out);
    }
    bool next(Picture& out) override
    {
        ++m_number;
        return read(out);
    }

private:
    bool read(Picture& out)
    {
        while (!m_disk.answers && !m_stop)
            std::this_thread::yield();
        if (m_stop || m_number >= 250)
            return false;
        out = {makeRef<DecodedPicture>(), m_number / 25.0, 0.04};
        return true;
    }

    Disk& m_disk;
    const std::atomic<bool>& m_stop;
    int m_number = 0;
};

} // namespace

/// A player by a clock that the test moves; what it loads lies on a disk that answers or on one that hangs.
class PlayerTest : public QObject
{
    Q_OBJECT

private:
    // A sequence, since that has no sound to be opened.
    static std::shared_ptr<Deck> make(Disk& disk, double position = 0, bool opens = true,
                                      std::optional<double> outpoint = std::nullopt,
                                      MediaSource source = {"fake", SequenceRun{}})
    {
        MediaItem item;
        item.contentUrl = "file:///fake";
        item.outpoint = outpoint;
        return std::make_shared<Deck>(
            std::move(source), item, EndAction::Pause, ScaleMode::Fit, position, SourcePlayState::Play, [] {},
            [&disk, opens](const MediaSource&, const std::atomic<bool>& stop, std::string*) {
                while (!opens && !disk.answers && !stop)
                    std::this_thread::yield();
                return opens ? std::make_unique<FakeReader>(disk, stop) : nullptr;
            });
    }
    Ref<DecodedPicture> moment()
    {
        const Ref<DecodedPicture> shown = m_player->advance(m_now, m_lead).to();
        (void)m_player->takeRetired();
        return shown;
    }
    /// The picture of the deck that is on air moves on with the clock.
    bool playsOn(const Deck& deck)
    {
        for (int i = 0; i < 25; ++i) {
            const double before = deck.position();
            m_now += 0.04;
            if (!QTest::qWaitFor([&] { return moment() == deck.image() && deck.position() > before; }))
                return false;
        }
        return true;
    }

    /// The same for its sound, of one level throughout: what is metered, and what the device gets.
    bool soundsOn(const Deck& deck)
    {
        const auto isWhole = [](const Sound& sound) {
            return sound.frames() == 1920 && std::ranges::all_of(sound.samples, [](float sample) {
                       return std::abs(sample - 0.5f) < 1e-3f;
                   });
        };
        for (int i = 0; i <= 25; ++i) {
            if (!QTest::qWaitFor([&] { return deck.holds(deck.position() + 0.04); }))
                return false;
            m_now += 0.04;
            const Player::Moment moment = m_player->advance(m_now);
            if (i == 0)
                continue; // the moment before may have come too early for the decoder
            if (!isWhole(moment.sound) || moment.heard.layers.size() != 1 || !moment.heard.seams.empty() ||
                !isWhole(moment.heard.layers[0].sound))
                return false;
        }
        return true;
    }

    /// Lets the decoders do what they have to for this moment.
    bool until(const std::function<bool()>& condition)
    {
        QElapsedTimer clock;
        for (clock.start(); clock.elapsed() < 10000;) {
            (void)moment();
            if (condition())
                return true;
            std::this_thread::yield();
        }
        return false;
    }
    /// What follows first.
    bool isPrepared()
    {
        bool prepared = false;
        m_player->forFollowing([&](Deck& deck, auto&) { prepared = deck.prepared(); });
        return prepared;
    }

    TestMedia m_media;
    Disk m_disk;
    Disk m_hanging;
    double m_now = 0;
    double m_lead = 0;
    std::unique_ptr<Player> m_player;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_media.make(TestMedia::sound(QStringLiteral("0.5"), 10), QStringLiteral("steady.wav")));
    }
    void init()
    {
        m_disk.opened = m_disk.mostOpen = m_hanging.opened = m_hanging.mostOpen = 0;
        m_hanging.answers = false;
        m_now = m_lead = 0;
        m_player = std::make_unique<Player>(true);
    }
    void cleanup() { m_player.reset(); }

    void goesOnUntilTheNextPictureIsThere_data()
    {
        QTest::addColumn<bool>("seeks");
        QTest::addColumn<double>("seconds");
        QTest::newRow("cut") << false << 0.0;
        QTest::newRow("crossfade") << false << 1.0;
        QTest::newRow("seek") << true << 0.0;
    }

    void goesOnUntilTheNextPictureIsThere()
    {
        QFETCH(bool, seeks);
        QFETCH(double, seconds);
        const std::shared_ptr<Deck> first =
            make(m_disk, 0, true, std::nullopt, {m_media.file("steady.wav"), std::nullopt});
        m_player->load(first, {});
        QTRY_VERIFY((moment(), !m_player->waiting()));
        QTRY_COMPARE(first->channels(), std::optional(1));
        QVERIFY(soundsOn(*first));
        const std::shared_ptr<Deck> second = make(m_hanging, 5);
        if (seeks)
            m_player->seekBy(second);
        else
            m_player->load(second, {TakeTransitionType::Crossfade, seconds});
        QCOMPARE(m_player->deck(), second);
        QVERIFY(playsOn(*first));
        QVERIFY(soundsOn(*first));
        QVERIFY(m_player->waiting());

        m_hanging.answers = true;
        Player::Moment moment;
        QTRY_VERIFY((moment = m_player->advance(m_now), !m_player->waiting()));
        QCOMPARE(moment.to(), second->image()); // its first picture, and nothing in between
        QCOMPARE(second->position(), 5.0);
        QCOMPARE(moment.layers.size(), std::size_t(seconds > 0 ? 2 : 1));
        QCOMPARE(moment.layers.front().image, seconds > 0 ? first->image() : second->image());
    }

    /// A file that is gone meanwhile: what is open seeks itself, and plays on though it was at its end.
    void playsOnWhereASecondDeckFails()
    {
        const std::shared_ptr<Deck> first = make(m_disk, 9.9);
        m_player->load(first, {});
        QTRY_VERIFY((moment(), !m_player->waiting()));
        m_player->seekBy(make(m_hanging, 5, false));
        m_now += 1;
        QTRY_VERIFY((m_now += 0.04, moment(), first->state() == SourcePlayState::Pause));
        m_hanging.answers = true;
        QTRY_VERIFY((moment(), !m_player->waiting()));
        QTRY_VERIFY((moment(), first->landed()));
        QCOMPARE(m_player->deck(), first);
        QCOMPARE(first->position(), 5.0);
        QVERIFY(playsOn(*first));
    }

    /// Takes that come faster than their transitions end mix what plays, and never a still of the preview.
    void manyTransitionsAtOnceMixWhatPlays()
    {
        std::vector<std::shared_ptr<Deck>> decks;
        std::map<DecodedPicture*, double> before; // shares, by the picture that all of a deck's are here
        for (int take = 0; take < 8; ++take) {
            decks.push_back(make(m_disk, 9.96)); // its last picture stays
            m_player->load(decks.back(), {TakeTransitionType::Crossfade, take == 0 ? 0.0 : 2.0});
            QTRY_VERIFY((moment(), !m_player->waiting()));
            for (int round = 0; round < 8; ++round) {
                m_now += 0.04;
                const Player::Moment shown = m_player->advance(m_now);
                QCOMPARE(shown.to(), decks.back()->image());
                std::map<DecodedPicture*, double> shares;
                double left = 1;
                for (const Player::Moment::Layer& layer : shown.layers | std::views::reverse) {
                    const bool isLowest = &layer == shown.layers.data();
                    shares[layer.image.get()] = isLowest ? left : left * layer.weight;
                    left *= 1 - layer.weight;
                    QVERIFY(std::ranges::any_of(
                        decks, [&](const auto& deck) { return deck->image() == layer.image; }));
                }
                for (const auto& [image, share] : before)
                    QVERIFY2(take == 0 || std::abs(share - shares[image]) < 0.2,
                             qPrintable(QString::number(take)));
                before = std::move(shares);
            }
        }
    }

    void stopsAndPausesAtOnce()
    {
        const std::shared_ptr<Deck> first = make(m_disk);
        m_player->load(first, {});
        QTRY_VERIFY((moment(), !m_player->waiting()));
        m_player->load(make(m_hanging), {});
        m_player->setState(SourcePlayState::Pause);
        QCOMPARE(first->state(), SourcePlayState::Pause);
        QCOMPARE(moment(), first->image());
        m_player->setState(SourcePlayState::Stop);
        QVERIFY(moment() != first->image()); // off air, whatever becomes of the one that waits
    }

    void opensOnlyTheNewest()
    {
        // Nothing that was opened answers, but all of it stops when it is told to.
        for (int i = 0; i < 1000; ++i) {
            m_now += 0.001;
            m_player->load(make(m_hanging), {});
            m_player->load(make(m_hanging), {}); // overtakes the one before
            (void)moment();
        }
        QVERIFY2(m_hanging.mostOpen <= 5, qPrintable(QString::number(m_hanging.mostOpen)));
        QVERIFY2(m_hanging.opened <= 1000, qPrintable(QString::number(m_hanging.opened)));
        QTRY_VERIFY((moment(), m_hanging.open <= 1)); // what was retired stopped at once
        const std::shared_ptr<Deck> newest = make(m_disk);
        m_player->load(newest, {});
        QTRY_VERIFY((moment(), !m_player->waiting() && newest->landed()));
        QTRY_COMPARE((moment(), m_hanging.open.load()), 0);
        QCOMPARE(m_disk.opened.load(), 1);
    }

    /// Entries of a list, each with those that are held to follow it.
    void listsOpenNoMoreThanTheyCanClose()
    {
        for (int i = 0; i < 1000; ++i) {
            m_now += 0.001;
            m_player->load(make(m_disk, 0, true, 1.0), {}, true);
            QTRY_VERIFY((moment(), i % 10 != 0 || !m_player->waiting()));
            while (m_player->wantsFollowing())
                m_player->follow(make(m_disk, 0, true, 1.0), {}, false);
            (void)moment();
        }
        QVERIFY2(m_disk.mostOpen <= 16, qPrintable(QString::number(m_disk.mostOpen)));
        m_player->load(nullptr, {});
        QTRY_COMPARE((moment(), m_disk.open.load()), 0);
    }

    /// What takes four seconds to open is still there two before its time.
    void whatFollowsIsThereTwoSecondsAhead()
    {
        m_player->load(make(m_disk), {});
        QVERIFY(until([this] { return !m_player->waiting(); }));
        std::optional<double> asked;
        for (int i = 0; i <= 200; ++i) {
            m_now = i / 25.0;
            QVERIFY(until([this] { return qAbs(m_player->deck()->position() - m_now) < 1e-6; }));
            if (asked || !m_player->wantsFollowing())
                continue;
            asked = m_now;
            m_player->follow(make(m_hanging), {}, false);
        }
        QVERIFY(asked && *asked < 4.1);
        m_hanging.answers = true;
        QVERIFY(until([this] { return isPrepared(); }));
        QVERIFY(m_player->deck()->remaining() > 1.99);
    }

    void aScreenOfNearlyTheSameRateShowsEachPictureOnce_data()
    {
        QTest::addColumn<double>("rate");
        QTest::newRow("a little fast") << 25.0015;
        QTest::newRow("a little slow") << 24.9985;
    }

    /// Real screens are some millionths off and threads come early and late: of clips of the same rate, one
    /// after the other, none shows a picture twice or leaves one out.
    void aScreenOfNearlyTheSameRateShowsEachPictureOnce()
    {
        QFETCH(double, rate);
        constexpr int clips = 3, pictures = 250;
        m_lead = 0.5 / rate;
        std::minstd_rand random(1);
        std::uniform_real_distribution<double> jitter(-0.005, 0.005); // seconds
        m_player->load(make(m_disk), {});
        QVERIFY(until([this] { return !m_player->waiting(); }));
        for (int i = 1; i < clips * pictures; ++i) {
            if (i % pictures == pictures / 2)
                m_player->follow(make(m_disk), {}, false);
            QVERIFY(i % pictures != pictures - 1 || i > (clips - 1) * pictures ||
                    until([this] { return isPrepared(); }));
            m_now = i / rate + jitter(random);
            const double position = i % pictures / 25.0;
            QVERIFY2(until([&] { return qAbs(m_player->deck()->position() - position) < 1e-6; }),
                     qPrintable(QStringLiteral("%1: %2").arg(i).arg(m_player->deck()->position())));
        }
    }

    /// Two decks in turn, and nothing adds up: after an hour a loop of two seconds stands where it should.
    void loopsForAnHour()
    {
        constexpr int rate = 25, loop = 2 * rate; // pictures
        m_player->load(make(m_disk, 0, true, 2.0), {});
        QVERIFY(until([&] { return !m_player->waiting(); }));
        m_player->follow(make(m_disk, 0, true, 2.0), {}, true);
        for (int i = 1; i <= 3600 * rate; ++i) {
            QVERIFY2(i % loop != loop / 2 || until([this] { return isPrepared(); }),
                     qPrintable(QString::number(m_now)));
            m_now = double(i) / rate;
            const double position = double(i % loop) / rate;
            QVERIFY2(until([&] { return qAbs(m_player->deck()->position() - position) < 1e-6; }),
                     qPrintable(QStringLiteral("%1: %2").arg(m_now).arg(m_player->deck()->position())));
        }
        QCOMPARE(m_disk.opened.load(), 2);
    }
};

HALCYRA_TEST(PlayerTest)
#include "playertest.moc"

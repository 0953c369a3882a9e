#include "common/playback/levelmeter.h"
#include "common/session/link/previewthread.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/colors.h"
#include "tests/common/playback/playerfixture.h"

#include <QMetaEnum>
#include <QPaintEvent>
#include <QSignalSpy>

using namespace vantrel;
using namespace vantrel::test;

namespace {

constexpr double silence = AudioLevels::silence;
const QString frame = QStringLiteral("#6b7a86");

AudioLevels levelsOf(std::initializer_list<double> peaks)
{
    AudioLevels levels;
    for (const double peak : peaks)
        levels.channels.push_back({peak, peak - 3});
    return levels;
}

/// Counts what is painted, and where.
class PaintSpy : public QObject
{
public:
    explicit PaintSpy(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint;
        return false;
    }
    int paints = 0;
};

} // namespace

class TestLevelMeter : public QObject
{
    Q_OBJECT

private:
    struct Meter
    {
        Meter()
        {
            widget.setClock([this] { return now; });
            widget.resize(120, 16); // two pixels a decibel
            widget.show();
        }
        QImage image() { return widget.grab().toImage(); }
        double now = 0;
        LevelMeter widget{Program};
    };

    static QString kindAt(const QImage& image, int x, int y)
    {
        const QColor color = image.pixelColor(x, y);
        for (const auto code : {colors::Zt_green, colors::Zt_orange, colors::Zt_red, colors::Slate_grey_900,
                                colors::Slate_grey_800, colors::Slate_grey_700}) {
            if (color.rgb() == colors::getColor(code).rgb())
                return QString::fromLatin1(QMetaEnum::fromType<colors::ColorCode>().valueToKey(code));
        }
        return color.name();
    }

private Q_SLOTS:
    void barsMoveByTheTime()
    {
        LevelBallistics bar;
        bar.feed(-10, 0);
        QCOMPARE(bar.level(), -10.0);
        bar.feed(silence, 500);
        QCOMPARE(bar.level(), -10 - LevelBallistics::fallPerSecond / 2);
        QCOMPARE(bar.held(), -10.0);
        bar.advance(1500);
        QCOMPARE(bar.held(), -10.0);
        bar.advance(2000);
        QCOMPARE(bar.held(), -10 - LevelBallistics::fallPerSecond / 2);
        QVERIFY(!bar.isResting());
        bar.advance(9000); // in one leap what many small steps come to
        QVERIFY(bar.isResting());
        LevelBallistics inSteps, inOne;
        inSteps.feed(-3, 0);
        inOne.feed(-3, 0);
        for (int i = 1; i <= 49; ++i)
            inSteps.advance(i * 50);
        inOne.advance(49 * 50);
        QVERIFY(std::abs(inSteps.level() - inOne.level()) < 1e-9);
        QVERIFY(std::abs(inSteps.held() - inOne.held()) < 1e-9);
        for (const double nonsense : {std::numeric_limits<double>::quiet_NaN(), silence, -500.0}) {
            LevelBallistics quiet;
            quiet.feed(nonsense, 0);
            QVERIFY(quiet.isResting());
        }
        bar.feed(40, 9000);
        QCOMPARE(bar.level(), 0.0);
    }

    void paintsEachChannelInItsZones_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("right");
        QTest::addColumn<int>("x");
        QTest::addColumn<QString>("upper"); // in the middle of the left channel's bar
        QTest::addColumn<QString>("lower");
        const auto row = [](double left, double right, int x, const char* upper, const char* lower) {
            QTest::addRow("%g %g at %d", left, right, x)
                << left << right << x << QString::fromLatin1(upper) << QString::fromLatin1(lower);
        };
        row(-30, -60, 10, "Zt_green", "Slate_grey_900");
        row(-30, -60, 57, "Zt_green", "Slate_grey_900");
        row(-30, -60, 62, "Slate_grey_900", "Slate_grey_900");
        row(-1, -12, 80, "Zt_green", "Zt_green");
        row(-1, -12, 87, "Zt_orange", "Zt_orange");
        row(-1, -12, 100, "Zt_orange", "Slate_grey_900");
        row(-1, -12, 111, "Zt_red", "Slate_grey_900");
        row(-1, -12, 119, "Slate_grey_900", "Slate_grey_900");
        row(silence, 0, 2, "Slate_grey_900", "Zt_green");
        row(silence, 0, 119, "Slate_grey_900", "Zt_red");
    }

    void paintsEachChannelInItsZones()
    {
        QFETCH(double, left);
        QFETCH(double, right);
        QFETCH(int, x);
        Meter meter;
        meter.widget.setLevels(levelsOf({left, right}));
        const QImage image = meter.image();
        QTEST(kindAt(image, x, 3), "upper");
        QTEST(kindAt(image, x, 12), "lower");
        // Between them the panel, and at the end the frame of both.
        QCOMPARE(kindAt(image, x, 8), x < 119 ? QStringLiteral("Slate_grey_800") : frame);
    }

    void marksThePeakAndFalls()
    {
        Meter meter;
        meter.widget.setLevels(levelsOf({-10, -40}));
        meter.now = 1000;
        meter.widget.setLevels(levelsOf({silence, silence}));
        QImage image = meter.image();
        QCOMPARE(kindAt(image, 40, 3), QStringLiteral("Zt_green")); // -36 dB by now
        QCOMPARE(kindAt(image, 60, 3), QStringLiteral("Slate_grey_900"));
        QCOMPARE(kindAt(image, 98, 3), QStringLiteral("Zt_orange")); // the mark rests
        QCOMPARE(kindAt(image, 38, 12), QStringLiteral("Zt_green"));
        meter.now = 2500;
        meter.widget.setLevels(levelsOf({silence, silence}));
        image = meter.image();
        QCOMPARE(kindAt(image, 98, 3), QStringLiteral("Slate_grey_900"));
        QCOMPARE(kindAt(image, 46, 3), QStringLiteral("Zt_green")); // 26 dB below
        QCOMPARE(kindAt(image, 40, 3), QStringLiteral("Slate_grey_900"));
    }

    void tellsWhatItKnows()
    {
        Meter meter;
        const auto says = [&](const char* text) {
            return meter.widget.toolTip() == QLatin1String(text) &&
                   meter.widget.accessibleName() == QLatin1String(text);
        };
        QVERIFY(says("Program level: not connected"));
        QCOMPARE(kindAt(meter.image(), 60, 8), QStringLiteral("Slate_grey_800"));
        meter.widget.setLevels(levelsOf({-40, -12.3}));
        QVERIFY(says("Program level: -12 dBFS peak"));
        meter.now = 400;
        meter.widget.setLevels(levelsOf({-3, -3}));
        QVERIFY(says("Program level: -12 dBFS peak")); // nobody reads 25 texts a second
        meter.now = 600;
        meter.widget.setLevels(levelsOf({-3, -3}));
        QVERIFY(says("Program level: -3 dBFS peak"));
        meter.now = 1200;
        meter.widget.setLevels(levelsOf({silence, silence}));
        QVERIFY(says("Program level: silence"));
        meter.widget.setLevels({});
        QVERIFY(says("Program level: the media has no sound"));
        QCOMPARE(meter.widget.state(), LevelMeter::State::NoSound);
        QCOMPARE(kindAt(meter.image(), 60, 7), frame);
        meter.widget.setMuted(true);
        QVERIFY(says("Program level: the media has no sound (muted)"));
        QCOMPARE(kindAt(meter.image(), 2, 2), QStringLiteral("Zt_red"));
        QCOMPARE(kindAt(meter.image(), 118, 14), QStringLiteral("Zt_red"));
        meter.widget.setMuted(false);
        QCOMPARE(kindAt(meter.image(), 2, 2), QStringLiteral("Slate_grey_800"));
        meter.widget.clear();
        QVERIFY(says("Program level: not connected"));
    }

    void paintsOnlyChangesAndOnlyItself()
    {
        QWidget below;
        below.resize(200, 60);
        LevelMeter meter(Program, &below);
        double now = 0;
        meter.setClock([&now] { return now; });
        meter.setGeometry(10, 10, 120, 16);
        below.show();
        QVERIFY(QTest::qWaitForWindowExposed(&below));
        PaintSpy spy(&meter), around(&below);
        meter.setLevels(levelsOf({-20, -30}));
        QTRY_COMPARE(spy.paints, 1);
        QCoreApplication::processEvents();
        const int before = around.paints;
        for (int i = 0; i < 50; ++i)
            meter.setLevels(levelsOf({-20, -30}));
        QCoreApplication::processEvents();
        QCOMPARE(spy.paints, 1);
        now = 500;
        meter.setLevels(levelsOf({-20, silence}));
        QTRY_COMPARE(spy.paints, 2);
        QCOMPARE(around.paints, before);
    }

    void keepsItsPlaceAtEveryTextSize()
    {
        Configuration settings;
        Meter meter;
        int before = 0;
        for (const FontSize size : {FontSize::Small, FontSize::Medium, FontSize::Large, FontSize::Huge}) {
            settings.setValue(TEXT_SIZE, QVariant::fromValue(size));
            QCOMPARE(meter.widget.minimumSizeHint().width(), 48);
            QVERIFY(meter.widget.sizeHint().height() >= before && meter.widget.sizeHint().height() < 48);
            before = meter.widget.sizeHint().height();
        }
        settings.resetValue(TEXT_SIZE);
        meter.widget.resize(48, 16);
        meter.widget.setLevels(levelsOf({0, 0, 0, 0, 0, 0, 0, 0}));
        const QImage image = meter.image();
        int bars = 0;
        for (int y = 1; y < image.height(); ++y)
            bars += kindAt(image, 5, y) != kindAt(image, 5, y - 1) &&
                    kindAt(image, 5, y) == QLatin1String("Zt_green");
        QVERIFY2(bars >= 7, qPrintable(QString::number(bars)));
    }

    void standsInTheFooterOfEachChannel()
    {
        PlayerFixture fixture;
        QVERIFY(fixture.connect());
        auto* program = fixture.part<LevelMeter>("Program-PlaybackWidget-Footer-Levels");
        auto* preview = fixture.part<LevelMeter>("Preview-PlaybackWidget-Footer-Levels");
        QVERIFY(program && preview);
        PreviewThread* stream = fixture.peer.session->preview();
        Q_EMIT stream->levelsChanged("/device/channels/0/program", levelsOf({-12}));
        QCOMPARE(program->state(), LevelMeter::State::Sound);
        QCOMPARE(preview->state(), LevelMeter::State::Blank);
        QSignalSpy gone(fixture.peer.session, &Session::disconnected);
        fixture.peer.link.socket->abort();
        QTRY_VERIFY(gone.count() > 0);
        QCOMPARE(program->state(), LevelMeter::State::Blank);
        Q_EMIT stream->levelsChanged("/device/channels/0/program", levelsOf({-12})); // late
        QCOMPARE(program->state(), LevelMeter::State::Blank);
    }
};

HALCYRA_TEST(TestLevelMeter)
#include "test_levelmeter.moc"

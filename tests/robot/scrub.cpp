#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cmath>
#include <numbers>

using namespace vantrel::test;

namespace {

const QString previewName = QStringLiteral("Preview-PlaybackWidget-PreviewWidget");
const QString programName = QStringLiteral("Program-PlaybackWidget-PreviewWidget");
const QString sliderName = QStringLiteral("Preview-PlaybackWidget-SeekSlider");
const QString slotsView = QStringLiteral("MediaPanel-slots-view");

constexpr int length = 1000; // frames of each clip
constexpr int moves = 180;   // of one scrub, 60 a second
constexpr int tries = 5;     // other work on the machine must not fail the test

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double longestStallMs = 200;
#else
constexpr double longestStallMs = 16;
#endif

} // namespace

/// The operator drags the playhead to and fro while both channels play.
class Scrub : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void keepsTheWindowFluid();
    void showsWhereItIs();
    void endsCleanly();

private:
    bool isPlaying(const QString& channel);
    QJsonObject scrub();

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
};

bool Scrub::isPlaying(const QString& channel)
{
    std::optional<int> first;
    return QTest::qWaitFor(
        [&] {
            const std::optional<int> frame = frameNumberOf(m_robot.grab(channel));
            if (!first)
                first = frame;
            return frame && first && *frame > *first;
        },
        10000);
}

/// The application's figures of one scrub; empty when it could not be done.
QJsonObject Scrub::scrub()
{
    // To and fro over the middle of the slider.
    std::array<QJsonObject, moves> points;
    for (int i = 0; i < moves; ++i)
        points[size_t(i)] =
            m_robot.pointOf(sliderName, 0.5 + 0.3 * std::sin(2 * std::numbers::pi * i / 90.0));
    if (!m_robot.mouse(QStringLiteral("drag_start"), points.front()))
        return {};
    m_robot.figures(true);
    QTimer pace;
    pace.setTimerType(Qt::PreciseTimer);
    size_t done = 0;
    connect(&pace, &QTimer::timeout, this, [&] {
        if (done < points.size())
            m_robot.mouse(QStringLiteral("drag_move"), points[done++]);
    });
    pace.start(1000 / 60);
    if (!QTest::qWaitFor([&] { return done == points.size(); }, 20000))
        return {};
    const QJsonObject figures = m_robot.figures();
    m_robot.mouse(QStringLiteral("drag_end"), points.back());
    return figures;
}

void Scrub::initTestCase()
{
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), length));
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), length));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
    QVERIFY(m_robot.doubleClickCell(slotsView, 0, 0));
    QVERIFY(isPlaying(previewName));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-DirectCut-Button")));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-Take-Button")));
    QVERIFY(isPlaying(programName));
    QVERIFY(m_robot.doubleClickCell(slotsView, 1, 0));
    QVERIFY(isPlaying(previewName));
}

void Scrub::keepsTheWindowFluid()
{
    double least = 1e9;
    for (int i = 0; i < tries && least >= longestStallMs; ++i) {
        const QJsonObject figures = scrub();
        qInfo() << "figures of a scrub:" << figures;
        QVERIFY(figures["previewPictures"].toInt() > 90); // program goes on, preview follows
        least = std::min(least, figures["longestStallMs"].toDouble());
    }
    QVERIFY2(least < longestStallMs, qPrintable(QStringLiteral("the window stood for %1 ms").arg(least)));
}

void Scrub::showsWhereItIs()
{
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), sliderName, 0.2));
    for (const double share : {0.75, 0.3, 0.6}) {
        QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), sliderName, share));
        const auto isThere = [&] {
            const std::optional<int> frame = frameNumberOf(m_robot.grab(previewName));
            return frame && std::abs(*frame - share * length) < length / 50;
        };
        QVERIFY2(QTest::qWaitFor(isThere, 5000), qPrintable(QString::number(share)));
    }
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), sliderName, 0.6));
    QVERIFY(isPlaying(previewName)); // as before the drag
}

void Scrub::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(Scrub)
#include "scrub.moc"

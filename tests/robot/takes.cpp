#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QDeadlineTimer>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString previewName = QStringLiteral("Preview-PlaybackWidget-PreviewWidget");
const QString programName = QStringLiteral("Program-PlaybackWidget-PreviewWidget");
const QString slotsView = QStringLiteral("MediaPanel-slots-view");
const QString durationName = QStringLiteral("TakeControls-Duration");

constexpr int fps = 25;
constexpr int length = 40 * fps;                 // frames of each clip
constexpr std::array inpoints{4 * fps, 8 * fps}; // of the two clips
constexpr int seekFrame = length / 2;

bool isRed(const QColor& marker)
{
    return marker.red() > 150 && marker.blue() < 60;
}

bool isBlue(const QColor& marker)
{
    return marker.blue() > 150 && marker.red() < 60;
}

/// What went over program's picture while it changed.
struct Passage
{
    bool mixed = false; // both clips at once
    bool dark = false;  // neither
    std::optional<int> firstFrame;
};

} // namespace

/// Every way to take, seen in the pictures of both channels. The two clips show the numbers of their frames.
class Takes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyWay_data();
    void everyWay();
    void endsCleanly();

private:
    bool setInpoints();
    bool setDuration(const QString& seconds);
    bool choose(const QString& option);
    bool cue(int clip);
    bool shows(const QString& channel, int clip, int first, int last);
    Passage watchProgram(int clip);
    static bool isOf(int clip, const QColor& marker) { return clip == 0 ? isRed(marker) : isBlue(marker); }

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
    QString m_seconds;
    int m_onAir = 0; // the clip on program
};

bool Takes::setInpoints()
{
    QByteArray patch = "[";
    for (int clip = 0; clip < 2; ++clip)
        patch += QStringLiteral(R"(%1{"op":"replace","path":"/collections/1/slots/%2/inpoint","value":%3})")
                     .arg(clip ? "," : "")
                     .arg(clip + 1)
                     .arg(inpoints[size_t(clip)] / fps)
                     .toUtf8();
    QNetworkRequest request(
        QUrl(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_ombra.ports().http)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkAccessManager network;
    const std::unique_ptr<QNetworkReply> reply(network.sendCustomRequest(request, "PATCH", patch + "]"));
    return QTest::qWaitFor([&] { return reply->isFinished(); }) && reply->error() == QNetworkReply::NoError;
}

bool Takes::setDuration(const QString& seconds)
{
    // A direct cut shows the duration, but does not let it be typed.
    if (!choose(QStringLiteral("Crossfade")) || !m_robot.doubleClick(durationName))
        return false;
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(seconds);
    m_robot.key(QStringLiteral("Enter"));
    return m_robot.text(durationName).startsWith(seconds);
}

bool Takes::choose(const QString& option)
{
    const QString button = QStringLiteral("TakeControls-%1-Button").arg(option);
    return m_robot.click(button) && m_robot.find(button)["checked"].toBool();
}

/// Cues the clip and leaves preview paused in the middle of it.
bool Takes::cue(int clip)
{
    return m_robot.doubleClickCell(slotsView, clip, 0) && shows(previewName, clip, 0, length) &&
           m_robot.click(QStringLiteral("Preview-PlaybackControls-Pause")) &&
           m_robot.mouseAt(QStringLiteral("click"), QStringLiteral("Preview-PlaybackWidget-SeekSlider"),
                           0.5) &&
           shows(previewName, clip, seekFrame - fps / 2, seekFrame + fps / 2);
}

bool Takes::shows(const QString& channel, int clip, int first, int last)
{
    const auto isThere = [&] {
        const QImage picture = m_robot.grab(channel);
        const std::optional<int> frame = frameNumberOf(picture);
        return frame && isOf(clip, markerOf(picture)) && *frame >= first && *frame <= last;
    };
    return QTest::qWaitFor(isThere, 8000);
}

/// Until program shows the clip alone.
Passage Takes::watchProgram(int clip)
{
    Passage passage;
    const QDeadlineTimer limit(8000);
    while (!passage.firstFrame && !limit.hasExpired()) {
        const QImage picture = m_robot.grab(programName);
        const QColor marker = markerOf(picture);
        passage.mixed = passage.mixed || (marker.red() > 60 && marker.blue() > 60);
        passage.dark = passage.dark || (marker.red() < 50 && marker.blue() < 50);
        if (isOf(clip, marker))
            passage.firstFrame = frameNumberOf(picture);
    }
    return passage;
}

void Takes::initTestCase()
{
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), length));
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), length));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY(setInpoints());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));

    QVERIFY(m_robot.doubleClickCell(slotsView, m_onAir, 0));
    QVERIFY(choose(QStringLiteral("DirectCut")));
    QVERIFY(shows(previewName, m_onAir, inpoints[0], length));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-Take-Button")));
    QVERIFY(shows(programName, m_onAir, inpoints[0], length));
}

void Takes::everyWay_data()
{
    QTest::addColumn<QString>("seconds");
    QTest::addColumn<QString>("transition");
    QTest::addColumn<bool>("swap");
    QTest::addColumn<bool>("fromInpoint");
    for (const char* seconds : {"0", "1.5"}) {
        for (const char* transition : {"DirectCut", "Crossfade", "Dip"}) {
            for (const bool swap : {true, false}) {
                for (const bool fromInpoint : {true, false})
                    QTest::addRow("%s, %s, %s s, %s", swap ? "swap" : "copy", transition, seconds,
                                  fromInpoint ? "from the in point" : "from the position")
                        << QString::fromLatin1(seconds) << QString::fromLatin1(transition) << swap
                        << fromInpoint;
            }
        }
    }
}

void Takes::everyWay()
{
    QFETCH(const QString, seconds);
    QFETCH(const QString, transition);
    QFETCH(const bool, swap);
    QFETCH(const bool, fromInpoint);
    const int clip = 1 - m_onAir, before = m_onAir;

    QVERIFY2(cue(clip), "the clip is not cued");
    if (seconds != m_seconds)
        QVERIFY(setDuration(seconds));
    m_seconds = seconds;
    QVERIFY(choose(transition));
    QVERIFY(choose(swap ? QStringLiteral("Swap") : QStringLiteral("Copy")));
    QVERIFY(choose(fromInpoint ? QStringLiteral("Inpoint") : QStringLiteral("Current")));
    const std::optional<int> cued = frameNumberOf(m_robot.grab(previewName));
    const std::optional<int> onAir = frameNumberOf(m_robot.grab(programName));
    QVERIFY(cued && onAir);

    QVERIFY(m_robot.click(QStringLiteral("TakeControls-Take-Button")));
    m_onAir = clip;
    const Passage passage = watchProgram(clip);
    QVERIFY2(passage.firstFrame, "program never showed the clip alone");
    const bool takesTime = transition != QLatin1String("DirectCut") && seconds != QLatin1String("0");
    QCOMPARE(passage.mixed, takesTime && transition == QLatin1String("Crossfade"));
    QCOMPARE(passage.dark, takesTime && transition == QLatin1String("Dip"));
    // The clip plays from the beginning of the transition, so that its frames tell how long that took. The
    // last tenth of it looks like its end.
    const int played = *passage.firstFrame - (fromInpoint ? inpoints[size_t(clip)] : *cued);
    const int least = takesTime ? 33 : 0;
    QVERIFY2(played >= least && played <= least + 12,
             qPrintable(QStringLiteral("%1 frames played").arg(played)));

    if (!swap)
        QVERIFY2(shows(previewName, clip, *cued, *cued), "preview lost its frame");
    else if (fromInpoint)
        QVERIFY2(shows(previewName, before, inpoints[size_t(before)], inpoints[size_t(before)]),
                 "preview does not hold at the in point what was on air");
    else
        QVERIFY2(shows(previewName, before, *onAir, *onAir + 12), "preview does not hold what was on air");
}

void Takes::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(Takes)
#include "takes.moc"

#include "tests/support/appprocess.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/serverprobe.h"
#include "tests/support/testmain.h"
#include "tests/support/testmedia.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace vantrel::test;

namespace {

const QString slotsView = QStringLiteral("MediaPanel-slots-view");
const QString player = QStringLiteral("MainNavigationBar-player-button");
constexpr int files = 500;
constexpr int tries = 3;         // the machine may be at something else
constexpr double pictureMs = 40; // of the clips: a window that stands for longer leaves one out
constexpr double share = 0.9;    // of the pictures that came before

} // namespace

/// A folder of hundreds of files is dropped on slots while both channels play: their pictures go on coming.
class DropOnAir : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void bothChannelsPlay();
    void picturesGoOnComing();
    void theNextDragBeginsAtOnce();
    void endsCleanly() { QCOMPARE(m_app.stop(), 0); }

private:
    bool makeFolder();
    bool cue();
    bool dropFolder();
    bool approve();
    double picturesIn(const QElapsedTimer& time)
    {
        return m_robot.figures()["previewPictures"].toInt() * 1000.0 / double(time.elapsed());
    }

    double m_before = 0; // pictures a second
    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    ServerProbe m_server;
    AppProcess m_app;
    RobotClient m_robot;
};

void DropOnAir::initTestCase()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("needs the built programs");
    QVERIFY(makeClip(m_media.filePath(QStringLiteral("Walk-in.mp4")),
                     {Qt::red, Qt::green, Qt::blue, Qt::white}, 120));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output());
    if (m_ombra.ports().ftp == 0)
        QSKIP("the server serves no files on this machine");
    m_server.setPorts(m_ombra.ports());
    QTRY_VERIFY(!m_server.slot(1, 1).isEmpty());
    QVERIFY(makeFolder()); // of which the server has made no slots
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
}

/// Videos and stills in turns.
bool DropOnAir::makeFolder()
{
    bool isMade = QDir(m_media.path()).mkpath(QStringLiteral("Act 1"));
    QImage still(64, 36, QImage::Format_RGB32);
    still.fill(Qt::red);
    for (int i = 0; i < files && isMade; ++i) {
        // Letters: with numbers the stills would be sequences.
        const QString name = m_media.filePath(
            QStringLiteral("Act 1/Cue %1%2").arg(QChar(u'a' + i / 26)).arg(QChar(u'a' + i % 26)));
        isMade = i % 2 ? QFile::link(QStringLiteral("../Walk-in.mp4"), name + QStringLiteral(".mp4"))
                       : still.save(name + QStringLiteral(".png"));
    }
    return isMade;
}

bool DropOnAir::cue()
{
    const QString place = QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation");
    return m_robot.doubleClickCell(slotsView, 0, 0) &&
           QTest::qWaitFor([&] { return m_robot.text(place) == QStringLiteral("1-1:"); });
}

void DropOnAir::bothChannelsPlay()
{
    QVERIFY(cue());
    m_robot.key(QStringLiteral("F12"));
    QTRY_COMPARE(m_robot.text(QStringLiteral("Program-PlaybackWidget-Header-MediaLocation")),
                 QStringLiteral("1-1:"));
    QVERIFY(cue());
    QElapsedTimer time;
    time.start();
    m_robot.figures(true);
    QTRY_VERIFY_WITH_TIMEOUT(m_robot.figures()["previewPictures"].toInt() > 100, 20000);
    m_before = picturesIn(time);
}

/// From the server's side of FILES, held over the player's button, below the last slot.
bool DropOnAir::dropFolder()
{
    const QString row = QStringLiteral("server-files-row0");
    if (!m_robot.click(QStringLiteral("MainNavigationBar-files-button")) ||
        !QTest::qWaitFor([&] { return m_robot.text(row) == QStringLiteral("Act 1"); }, 15000) ||
        !m_robot.mouseAt(QStringLiteral("drag_start"), row, 0.3))
        return false;
    for (const QString& over : {QStringLiteral("server-files-list"), player}) {
        for (const double at : {0.4, 0.5, 0.6})
            m_robot.mouseAt(QStringLiteral("drag_move"), over, at);
    }
    if (m_robot.waitFor(slotsView).isEmpty())
        return false;
    for (const double at : {0.8, 0.9})
        m_robot.mouseAt(QStringLiteral("drag_move"), slotsView, at);
    m_robot.figures(true);
    return m_robot.mouseAt(QStringLiteral("drag_end"), slotsView, 0.9);
}

/// Asks the server how far it is: the window would have to tell of each row.
bool DropOnAir::approve()
{
    const QString accept = QStringLiteral("DropDialog-accept-button");
    return !m_robot.waitFor(QStringLiteral("DropDialog"), 60000).isEmpty() &&
           QTest::qWaitFor([&] { return m_robot.find(accept)["enabled"].toBool(); }, 60000) &&
           m_robot.click(accept) &&
           QTest::qWaitFor([this] { return !m_server.slot(1, files + 1).isEmpty(); }, 30000);
}

void DropOnAir::picturesGoOnComing()
{
    double stallMs = 1e9;
    double pictures = 0;
    for (int i = 0; i < tries && (stallMs >= pictureMs || pictures < share * m_before); ++i) {
        if (i > 0)
            m_robot.key(QStringLiteral("CtrlZ"));
        QTRY_VERIFY_WITH_TIMEOUT(m_server.slot(1, 2).isEmpty(), 15000);
        QVERIFY(dropFolder());
        QElapsedTimer time;
        time.start();
        QVERIFY(approve());
        const double seconds = double(time.elapsed()) / 1000;
        pictures = std::max(pictures, picturesIn(time));
        const QJsonObject figures = m_robot.figures();
        qInfo() << files << "files were in slots after" << seconds << "s:" << figures;
        stallMs = std::min(stallMs, figures["longestOwnStallMs"].toDouble());
    }
    m_robot.restFigures();
    QVERIFY2(pictures >= share * m_before,
             qPrintable(QStringLiteral("%1 pictures a second, %2 before").arg(pictures).arg(m_before)));
    QVERIFY2(stallMs < pictureMs, qPrintable(QStringLiteral("the window stood for %1 ms").arg(stallMs)));
}

/// Though the drag before it ended on another page.
void DropOnAir::theNextDragBeginsAtOnce()
{
    QVERIFY(dropFolder());
    QVERIFY(!m_robot.waitFor(QStringLiteral("DropDialog")).isEmpty());
    QVERIFY(m_robot.click(QStringLiteral("DropDialog-cancel-button")));
}

HALCYRA_TEST(DropOnAir)
#include "droponair.moc"

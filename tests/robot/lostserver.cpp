#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString previewName = QStringLiteral("Preview-PlaybackWidget-PreviewWidget");
const QString programName = QStringLiteral("Program-PlaybackWidget-PreviewWidget");
const QString sliderName = QStringLiteral("Preview-PlaybackWidget-SeekSlider");
const QString timeName = QStringLiteral("Preview-PlaybackWidget-DurationEdit-Time");
const QString typeName = QStringLiteral("Preview-PlaybackWidget-DurationEdit-Input-%1-duration-button");
const QString takeName = QStringLiteral("TakeControls-Take-Button");
const QString slotsView = QStringLiteral("MediaPanel-slots-view");

enum Slot : int { Red, Blue, Still };

} // namespace

/// The server dies while the operator's hand is on something. When it is back the window can be used at once.
class LostServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void inATake();
    void inADragOfTheSlider();
    void inADragWhoseEndIsLost();
    void inAnEditOfATimecode();
    void inAStillsDuration();
    void withTakeHeld();
    void withTheVolumeOpen();
    void withAMenuOpen();
    void inADragOfAPoint();
    void nothingCanBeSetMeanwhile();
    void endsCleanly();

private:
    bool cue(Slot slot);
    bool shows(const QString& channel, Slot slot, int first = 0);
    bool loseServer();
    bool getServerBack();
    bool isVisible(const QString& name) { return m_robot.find(name)["visible"].toBool(); }
    bool isChecked(const QString& name) { return m_robot.find(name)["checked"].toBool(); }
    bool setDuration(const QString& seconds);
    void checkUsable();
    void resize(int width, int height);

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
};

bool LostServer::shows(const QString& channel, Slot slot, int first)
{
    const auto isThere = [&] {
        const QImage picture = m_robot.grab(channel);
        const QColor marker = markerOf(picture);
        if (slot == Still)
            return marker.green() > 150 && marker.red() < 60 && marker.blue() < 60;
        const std::optional<int> frame = frameNumberOf(picture);
        const bool isOf =
            slot == Red ? marker.red() > 150 && marker.blue() < 60 : marker.blue() > 150 && marker.red() < 60;
        return isOf && frame && *frame >= first;
    };
    return QTest::qWaitFor(isThere, 10000);
}

bool LostServer::cue(Slot slot)
{
    return m_robot.doubleClickCell(slotsView, slot, 0) && shows(previewName, slot);
}

bool LostServer::loseServer()
{
    m_ombra.kill();
    return !m_robot.waitFor(QStringLiteral("ReconnectDialog")).isEmpty();
}

bool LostServer::getServerBack()
{
    // The dialog goes with the link, the controls come back with the state that comes over it.
    const auto isBack = [this] {
        return !isVisible(QStringLiteral("ReconnectDialog")) && m_robot.find(takeName)["enabled"].toBool();
    };
    return m_ombra.restart() && QTest::qWaitFor(isBack, 15000);
}

bool LostServer::setDuration(const QString& seconds)
{
    const QString field = QStringLiteral("TakeControls-Duration");
    if (!m_robot.doubleClick(field))
        return false;
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(seconds);
    m_robot.key(QStringLiteral("Enter"));
    return m_robot.text(field).startsWith(seconds);
}

/// A clip is cued, sought and taken by the first click on each.
void LostServer::checkUsable()
{
    QVERIFY(m_robot.doubleClickCell(slotsView, Blue, 0));
    QVERIFY(shows(previewName, Blue));
    for (const char* button : {"Play", "Pause", "Stop", "SeekInpoint", "SetInpoint"})
        QTRY_VERIFY(
            m_robot.find(QStringLiteral("Preview-PlaybackControls-%1").arg(button))["enabled"].toBool());
    QVERIFY(isVisible(sliderName + QStringLiteral("-playhead")));
    QVERIFY(m_robot.mouseAt(QStringLiteral("click"), sliderName, 0.5));
    QVERIFY(shows(previewName, Blue, 240));
    QVERIFY(!m_robot.find(QStringLiteral("TakeLabel"))["property_pressed"].toBool());
    QVERIFY(!isVisible(QStringLiteral("TakeProgressBar")));
    QVERIFY(m_robot.click(takeName));
    QVERIFY(shows(programName, Blue));
    QTRY_VERIFY(!isVisible(QStringLiteral("TakeProgressBar")));
    QVERIFY(cue(Red)); // what the next loss begins with
}

void LostServer::resize(int width, int height)
{
    m_robot.ask(
        {{"operation", "resize"}, {"objectName", "MainWindow"}, {"width", width}, {"height", height}});
}

void LostServer::initTestCase()
{
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), 500));
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), 500));
    QImage still(320, 180, QImage::Format_RGB32);
    still.fill(QColor(0, 220, 0));
    QVERIFY(still.save(m_media.filePath(QStringLiteral("3 green.png"))));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
    QVERIFY(cue(Red));
}

void LostServer::inATake()
{
    QVERIFY(setDuration(QStringLiteral("4")));
    QVERIFY(m_robot.click(takeName));
    QVERIFY(!m_robot.waitFor(QStringLiteral("TakeProgressBar")).isEmpty());
    QVERIFY(loseServer());
    QVERIFY(m_robot.click(takeName)); // in vain, and not kept for later either
    QVERIFY(getServerBack());
    QTRY_VERIFY2(!isVisible(QStringLiteral("TakeProgressBar")), "the take of before still goes on");
    QVERIFY(setDuration(QStringLiteral("0.2")));
    checkUsable();
}

void LostServer::inADragOfTheSlider()
{
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), sliderName, 0.3));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), sliderName, 0.4));
    QVERIFY(loseServer());
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), sliderName, 0.5));
    QVERIFY(getServerBack());
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), sliderName, 0.6));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), sliderName, 0.6));
    checkUsable();
}

void LostServer::inADragWhoseEndIsLost()
{
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), sliderName, 0.3));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), sliderName, 0.4));
    QVERIFY(loseServer());
    QVERIFY(getServerBack());
    // The button was let go elsewhere. What the server tells moves the playhead again.
    QVERIFY(cue(Blue));
    const auto playhead = [this] {
        return m_robot.find(sliderName + QStringLiteral("-playhead"))["global_x"].toInt();
    };
    const int before = playhead();
    QTRY_VERIFY(playhead() > before);
    checkUsable();
}

void LostServer::inAnEditOfATimecode()
{
    QVERIFY(cue(Still));
    QVERIFY(m_robot.click(typeName.arg(QStringLiteral("manual"))));
    QVERIFY(!m_robot.waitFor(timeName).isEmpty());
    QTRY_VERIFY(m_robot.find(timeName)["enabled"].toBool());
    m_robot.ask({{"operation", "focus"}, {"objectName", timeName}});
    m_robot.key(QStringLiteral("Enter"));
    const QString field = timeName + QStringLiteral("-Seconds");
    QVERIFY(!m_robot.waitFor(field).isEmpty());
    m_robot.type(QStringLiteral("4"));
    QVERIFY(loseServer());
    QVERIFY(getServerBack());
    QTRY_VERIFY2(!isVisible(field), "the field is still half edited");
    checkUsable();
}

void LostServer::inAStillsDuration()
{
    const QString infinite = typeName.arg(QStringLiteral("infinite"));
    const QString manual = typeName.arg(QStringLiteral("manual"));
    QVERIFY(cue(Still));
    QTRY_VERIFY(isVisible(manual));
    const bool wasInfinite = isChecked(infinite);
    const QString other = wasInfinite ? manual : infinite;
    m_ombra.kill();
    QVERIFY(m_robot.click(other)); // nobody is there to hear it
    QVERIFY(!m_robot.waitFor(QStringLiteral("ReconnectDialog")).isEmpty());
    QVERIFY(getServerBack());
    QVERIFY(cue(Still));
    QTRY_VERIFY2(isChecked(infinite) == wasInfinite, "the window shows what the server never heard of");
    QCOMPARE(m_robot.find(timeName)["enabled"].toBool(), !wasInfinite);
    // A second try is heard.
    QVERIFY(m_robot.click(other));
    checkUsable();
    QVERIFY(cue(Still));
    QTRY_VERIFY(isChecked(other));
}

void LostServer::withTakeHeld()
{
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), takeName, 0.5));
    QVERIFY(m_robot.find(QStringLiteral("TakeLabel"))["property_pressed"].toBool());
    QVERIFY(loseServer());
    QTRY_VERIFY(!m_robot.find(QStringLiteral("TakeLabel"))["property_pressed"].toBool());
    QVERIFY(getServerBack());
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), takeName, 0.5)); // of a press that counts no more
    checkUsable();
}

void LostServer::withTheVolumeOpen()
{
    // Where there is no room for a fader, a button opens one.
    const QString popup = QStringLiteral("Preview-PlaybackWidget-Footer-VolumePopup");
    const QString button = QStringLiteral("Preview-PlaybackWidget-Footer-Volume");
    const QJsonObject window = m_robot.find(QStringLiteral("MainWindow"));
    resize(1100, 720);
    QTRY_VERIFY(isVisible(button));
    QVERIFY(m_robot.click(button));
    QVERIFY(!m_robot.waitFor(popup).isEmpty());
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), popup + QStringLiteral("-Slider"), 0.5));
    QVERIFY(loseServer());
    QTRY_VERIFY2(!isVisible(popup), "a popup that nobody can use holds the mouse");
    QVERIFY(getServerBack());
    checkUsable();
    resize(window["width"].toInt(), window["height"].toInt());
    QTRY_VERIFY(!isVisible(button));
}

void LostServer::withAMenuOpen()
{
    const QString menu = QStringLiteral("MediaPanel-slot-menu");
    QVERIFY(m_robot.mouse(QStringLiteral("context_menu"), m_robot.cells(slotsView).first().toObject()));
    QVERIFY(!m_robot.waitFor(menu).isEmpty());
    QVERIFY(loseServer());
    m_robot.key(QStringLiteral("Esc"));
    QTRY_VERIFY(!isVisible(menu));
    QVERIFY(getServerBack());
    QTRY_COMPARE(m_robot.cells(slotsView).size(), 3);
    checkUsable();
    QCOMPARE(m_robot.cells(slotsView).size(), 3);
}

void LostServer::inADragOfAPoint()
{
    const QString in = QStringLiteral("Preview-PlaybackWidget-EndpointTimecodes-Inpoint");
    const QString before = m_robot.text(in);
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), sliderName, 0.01));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), sliderName, 0.2));
    QVERIFY(loseServer());
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), sliderName, 0.3));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), sliderName, 0.3));
    QVERIFY(getServerBack());
    QVERIFY(cue(Red));
    QTRY_VERIFY2(m_robot.text(in) == before, "the window shows a point that the server never heard of");
    checkUsable();
}

/// Nor by mouse nor by key does anything look done that is not.
void LostServer::nothingCanBeSetMeanwhile()
{
    const QString pause = QStringLiteral("Preview-PlaybackControls-Pause");
    const QString mute = QStringLiteral("Program-PlaybackWidget-Header-Mute");
    QVERIFY(cue(Red));
    QTRY_VERIFY(isChecked(QStringLiteral("Preview-PlaybackControls-Play")));
    QVERIFY(loseServer());
    for (const QString& button : {pause, mute, takeName}) {
        QVERIFY(!m_robot.find(button)["enabled"].toBool());
        QVERIFY(m_robot.click(button));
    }
    for (const char* key : {"Space", "M", "F12", "I"})
        m_robot.key(QString::fromLatin1(key));
    QVERIFY(isChecked(QStringLiteral("Preview-PlaybackControls-Play")));
    QVERIFY(!isChecked(mute));
    QVERIFY(getServerBack());
    QTRY_VERIFY(m_robot.find(pause)["enabled"].toBool());
    QVERIFY(!isChecked(mute));
    checkUsable();
}

void LostServer::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(LostServer)
#include "lostserver.moc"

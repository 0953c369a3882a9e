#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString takeKey = QStringLiteral("KeyboardDialog-take-key");
const QString slotsView = QStringLiteral("MediaPanel-slots-view");

QString mediaOf(const QString& channel)
{
    return channel + QStringLiteral("-PlaybackWidget-Header-MediaLocation");
}

} // namespace

/// The operator puts the take on another key, without the mouse, and takes with it; also after a restart.
class Keyboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void opensByItsKeyAndFromTheMenu();
    void recordsWithoutFiring();
    void takesByTheNewKeyAlone();
    void swapsWithTheHolder();
    void keepsItAfterARestart();
    void endsCleanly();

private:
    bool open();
    bool close();
    bool startApp();
    QString tip(const QString& widget) { return m_robot.find(widget)["toolTip"].toString(); }
    QString onProgram() { return m_robot.text(mediaOf(QStringLiteral("Program"))); }
    bool cue(int row);

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    std::unique_ptr<AppProcess> m_app = std::make_unique<AppProcess>();
    RobotClient m_robot;
};

bool Keyboard::open()
{
    m_robot.key(QStringLiteral("F1"));
    return !m_robot.waitFor(QStringLiteral("KeyboardDialog")).isEmpty();
}

bool Keyboard::close()
{
    m_robot.key(QStringLiteral("Esc"));
    return QTest::qWaitFor(
        [this] { return !m_robot.find(QStringLiteral("KeyboardDialog"))["visible"].toBool(); }, 5000);
}

bool Keyboard::startApp()
{
    return m_app->start(AppProcess::connectTo(m_ombra.ports())) && m_robot.connectTo(m_app->uiTestPort());
}

bool Keyboard::cue(int row)
{
    const QString wanted = QStringLiteral("1-%1:").arg(row + 1);
    return m_robot.doubleClickCell(slotsView, row, 0) &&
           QTest::qWaitFor([&] { return m_robot.text(mediaOf(QStringLiteral("Preview"))) == wanted; }, 10000);
}

void Keyboard::initTestCase()
{
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), 250));
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), 250));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY2(startApp(), qPrintable(m_app->output()));
    QVERIFY(cue(0));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-DirectCut-Button")));
}

void Keyboard::opensByItsKeyAndFromTheMenu()
{
    QVERIFY(open());
    QVERIFY(m_robot.waitFor(QStringLiteral("KeyboardDialog-search"))["focus"].toBool());
    QVERIFY(close());
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-mainmenu-button")));
    QVERIFY(m_robot.clickMenuEntry(QStringLiteral("MainNavigationBar-mainmenu"), QStringLiteral("Keyboard")));
    QVERIFY(!m_robot.waitFor(takeKey).isEmpty());
    QVERIFY(close());
}

void Keyboard::recordsWithoutFiring()
{
    QVERIFY(open());
    m_robot.type(QStringLiteral("take"));
    m_robot.key(QStringLiteral("Down"));
    QTRY_VERIFY(m_robot.find(takeKey)["focus"].toBool());
    m_robot.key(QStringLiteral("Enter"));
    QTRY_VERIFY(m_robot.find(takeKey)["property_recording"].toBool());
    for (const char* live : {"F11", "Tab"})
        m_robot.key(QString::fromLatin1(live));
    QVERIFY(
        m_robot.text(QStringLiteral("KeyboardDialog-notice-text")).startsWith(QStringLiteral("Tab cannot")));
    m_robot.key(QStringLiteral("F12")); // its own: nothing changes, and nothing is taken
    QTRY_VERIFY(!m_robot.find(takeKey)["property_recording"].toBool());
    m_robot.key(QStringLiteral("Enter"));
    m_robot.key(QStringLiteral("Ctrl+Alt+K"));
    QTRY_VERIFY(m_robot.text(QStringLiteral("KeyboardDialog-notice-text"))
                    .contains(QStringLiteral("on Ctrl+Alt+K now")));
    QVERIFY(close());
    QVERIFY(onProgram() != QStringLiteral("1-1:"));
}

void Keyboard::takesByTheNewKeyAlone()
{
    QCOMPARE(tip(QStringLiteral("TakeControls-Take-Button")), QStringLiteral("Perform take (Ctrl+Alt+K)"));
    m_robot.key(QStringLiteral("F12"));
    m_robot.key(QStringLiteral("Ctrl+Alt+K"));
    QTRY_COMPARE(onProgram(), QStringLiteral("1-1:"));
    QVERIFY(cue(1));
}

void Keyboard::swapsWithTheHolder()
{
    QVERIFY(open());
    QVERIFY(m_robot.click(takeKey));
    m_robot.key(QStringLiteral("M"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("KeyboardDialog-notice-swap-button")).isEmpty());
    m_robot.key(QStringLiteral("Enter"));
    QTRY_VERIFY(m_robot.find(takeKey)["focus"].toBool());
    QVERIFY(close());
    QCOMPARE(tip(QStringLiteral("Program-PlaybackWidget-Header-Mute")).section(u'(', 1),
             QStringLiteral("Ctrl+Alt+K)"));
    m_robot.key(QStringLiteral("M"));
    QTRY_COMPARE(onProgram(), QStringLiteral("1-2:"));
}

void Keyboard::keepsItAfterARestart()
{
    QCOMPARE(m_app->restart(), 0);
    QVERIFY2(!m_app->output().contains(QStringLiteral("stored key")), qPrintable(m_app->output()));
    QVERIFY(m_robot.connectTo(m_app->uiTestPort()));
    QVERIFY(cue(0));
    QCOMPARE(tip(QStringLiteral("TakeControls-Take-Button")), QStringLiteral("Perform take (M)"));
    m_robot.key(QStringLiteral("M"));
    QTRY_COMPARE(onProgram(), QStringLiteral("1-1:"));
}

void Keyboard::endsCleanly()
{
    QCOMPARE(m_app->stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(Keyboard)
#include "keyboard.moc"

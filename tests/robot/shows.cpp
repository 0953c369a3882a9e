#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString menuButton = QStringLiteral("MainNavigationBar-mainmenu-button");
const QString slotsView = QStringLiteral("MediaPanel-slots-view");
const QString showLabel = QStringLiteral("StatusBar-Show");

} // namespace

/// A show is saved, cleared and brought back by somebody who has the window alone.
class Shows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void savesClearsAndLoads();
    void bringsAnEarlierStateBack();
    void tellsWhatIsMissingBeforeItLoads();
    void goesByKeyboard();
    void endsCleanly();

private:
    bool choose(const QString& entry)
    {
        return m_robot.click(menuButton) &&
               m_robot.click(QStringLiteral("MainNavigationBar-mainmenu-%1-action").arg(entry));
    }
    bool accept(const QString& dialog)
    {
        return !m_robot.waitFor(dialog).isEmpty() && m_robot.click(dialog + QStringLiteral("-accept-button"));
    }
    bool clear() { return choose(QStringLiteral("ClearShow")) && accept(QStringLiteral("ClearShowDialog")); }
    bool hasSlot(bool isThere)
    {
        return QTest::qWaitFor([&] { return m_robot.cells(slotsView).isEmpty() != isThere; }, 10000);
    }
    bool isOn(const QString& text)
    {
        return QTest::qWaitFor([&] { return m_robot.text(showLabel) == text; }, 10000);
    }

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
};

void Shows::initTestCase()
{
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("red.mp4")), Qt::red, 100));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
    QVERIFY(hasSlot(true));
}

void Shows::savesClearsAndLoads()
{
    QVERIFY(isOn(QStringLiteral("Show: default, not saved")));
    QVERIFY(choose(QStringLiteral("SaveShowAs")));
    QVERIFY(!m_robot.waitFor(QStringLiteral("SaveShowAsDialog-input-0")).isEmpty());
    m_robot.type(QStringLiteral("Gala"));
    m_robot.key(QStringLiteral("Enter"));
    QVERIFY(isOn(QStringLiteral("Show: Gala")));
    QVERIFY(clear() && hasSlot(false));
    QVERIFY(isOn(QStringLiteral("Show: Gala, not saved")));
    QVERIFY(choose(QStringLiteral("Shows")));
    QVERIFY(m_robot.clickCell(QStringLiteral("ShowsDialog-view"), 0, 0));
    QVERIFY(accept(QStringLiteral("ShowsDialog")) && accept(QStringLiteral("LoadShowDialog")));
    QVERIFY(hasSlot(true) && isOn(QStringLiteral("Show: Gala")));
}

void Shows::bringsAnEarlierStateBack()
{
    QVERIFY(clear() && hasSlot(false));
    QVERIFY(choose(QStringLiteral("EarlierStates")));
    QVERIFY(m_robot.clickCell(QStringLiteral("EarlierStatesDialog-view"), 0, 0));
    QVERIFY(accept(QStringLiteral("EarlierStatesDialog")) && accept(QStringLiteral("BringBackDialog")));
    QVERIFY(hasSlot(true) && isOn(QStringLiteral("Show: Gala")));
}

void Shows::tellsWhatIsMissingBeforeItLoads()
{
    QVERIFY(clear() && hasSlot(false));
    const QString clip = m_media.filePath(QStringLiteral("red.mp4"));
    QVERIFY(QFile::rename(clip, clip + QStringLiteral(".away")));
    QVERIFY(choose(QStringLiteral("Shows")));
    QVERIFY(m_robot.clickCell(QStringLiteral("ShowsDialog-view"), 0, 0));
    QVERIFY(accept(QStringLiteral("ShowsDialog")) && accept(QStringLiteral("LoadShowDialog")));
    QVERIFY(!m_robot.waitFor(QStringLiteral("ForceLoadDialog")).isEmpty());
    QCOMPARE(m_robot.cells(QStringLiteral("ForceLoadDialog-missing-view")).size(), 1);
    QVERIFY(hasSlot(false));
    QVERIFY(accept(QStringLiteral("ForceLoadDialog")) && hasSlot(true));
    QVERIFY(QFile::rename(clip + QStringLiteral(".away"), clip));
}

void Shows::goesByKeyboard()
{
    QVERIFY(isOn(QStringLiteral("Show: Gala")));
    m_robot.key(QStringLiteral("Ctrl+N"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("ClearShowDialog")).isEmpty());
    m_robot.key(QStringLiteral("Enter"));
    QVERIFY(hasSlot(false) && isOn(QStringLiteral("Show: Gala, not saved")));
    m_robot.key(QStringLiteral("Ctrl+O"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("ShowsDialog-view")).isEmpty());
    QTRY_VERIFY(m_robot.find(QStringLiteral("ShowsDialog-accept-button"))["enabled"].toBool());
    m_robot.key(QStringLiteral("Enter"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("LoadShowDialog")).isEmpty());
    m_robot.key(QStringLiteral("Enter"));
    QVERIFY(hasSlot(true) && isOn(QStringLiteral("Show: Gala")));
}

void Shows::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(Shows)
#include "shows.moc"

#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <array>

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
    void twoWindowsImportAtOnce();
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

/// One after the other, each whole: both windows end with the show that came last.
void Shows::twoWindowsImportAtOnce()
{
    AppProcess app;
    RobotClient robot;
    QVERIFY2(app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(app.output()));
    QVERIFY(robot.connectTo(app.uiTestPort()) && !robot.waitFor(showLabel).isEmpty());
    const QStringList names{QStringLiteral("Left"), QStringLiteral("Right")};
    const std::array windows{&m_robot, &robot};
    for (int i : {0, 1}) {
        QFile file(m_media.filePath(names[i] + QStringLiteral(".show")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral(R"({"format":"halcyra-show","version":1,"library":{"collections":{"1":)"
                                  R"({"name":"%1","slots":{"%2":{"name":"%1"}}}}}})")
                       .arg(names[i])
                       .arg(i + 1)
                       .toUtf8());
        file.close();
        windows[size_t(i)]->key(QStringLiteral("Ctrl+I"));
        QVERIFY(!windows[size_t(i)]->waitFor(QStringLiteral("ImportShowDialog-path")).isEmpty());
        QVERIFY(windows[size_t(i)]->click(QStringLiteral("ImportShowDialog-path")));
        windows[size_t(i)]->type(file.fileName());
    }
    for (RobotClient* window : windows)
        QVERIFY(window->click(QStringLiteral("ImportShowDialog-accept-button")));
    const auto shown = [](RobotClient* window) {
        QStringList texts;
        for (const QJsonValue& cell : window->cells(slotsView))
            texts.append(cell[QStringLiteral("text")].toString());
        return texts.join(u' ');
    };
    const auto agree = [&] {
        const QString left = shown(windows[0]), right = shown(windows[1]);
        return left == right && left.contains(names[0]) != left.contains(names[1]);
    };
    QVERIFY(QTest::qWaitFor(agree, 10000));
    QCOMPARE(app.stop(), 0);
}

void Shows::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(Shows)
#include "shows.moc"

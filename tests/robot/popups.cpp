#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString popUp = QStringLiteral("NotificationPresenter");
const QString warnings = QStringLiteral("NotificationStatusBar-count-2");

} // namespace

/// A start with settings that cannot be read: the operator is told, may miss it, and finds it later.
class PopUps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString settings = m_app.settingsFile();
        QVERIFY(QDir().mkpath(QFileInfo(settings).path()));
        QFile file(settings);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("[General]\nKEYMAP=none\n") > 0);
        file.close();
        // A server without media would have trouble of its own to tell of.
        QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("clip.mp4")), QColor(220, 0, 0), 25));
        m_ombra.setMediaFolder(m_media.path());
        QVERIFY2(m_ombra.start(), m_ombra.output().constData());
        QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
        QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
    }

    void comesAndIsCounted()
    {
        QVERIFY(!m_robot.waitFor(popUp).isEmpty());
        QCOMPARE(m_robot.text(popUp + QStringLiteral("-title")),
                 QStringLiteral("The keys are those of a new installation"));
        QCOMPARE(m_robot.text(warnings), QStringLiteral("1"));
    }

    void leavesAndIsStillCounted()
    {
        QVERIFY(QTest::qWaitFor([this] { return !isShown(popUp); }, 15000));
        QVERIFY(isShown(warnings));
        QCOMPARE(m_robot.text(warnings), QStringLiteral("1"));
    }

    void isFoundAndAcknowledged()
    {
        QVERIFY(m_robot.click(warnings));
        QVERIFY(!m_robot.waitFor(QStringLiteral("NotificationDialog-list")).isEmpty());
        QVERIFY(m_robot.click(QStringLiteral("NotificationDialog-accept-button")));
        QVERIFY(QTest::qWaitFor([this] { return !isShown(warnings); }, 5000));
        QVERIFY(!isShown(popUp));
    }

    void endsCleanly() { QCOMPARE(m_app.stop(), 0); }

private:
    bool isShown(const QString& name) { return m_robot.find(name)["visible"].toBool(); }

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
};

HALCYRA_TEST(PopUps)
#include "popups.moc"

#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString takeName = QStringLiteral("TakeControls-Take-Button");
const QString bannerName = QStringLiteral("MainNavigationBar-link-banner");
const QString slotsView = QStringLiteral("MediaPanel-slots-view");

QString mediaOf(const char* channel)
{
    return QStringLiteral("%1-PlaybackWidget-Header-MediaLocation").arg(QLatin1String(channel));
}

} // namespace

/// A server that hangs, while the operator goes on pressing: nothing of it happens when it comes back.
class HungServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void keepsNothingForLater();
    void holdsProgramUntilUnlocked();
    void takesOnceForADoubleClick();
    void takesThroughAQuestion();
    void endsCleanly();

private:
    bool shows(const char* channel, const QString& location);
    /// As the window tells them; 0 while it tells of none.
    int secondsOfSilence() { return m_robot.text(bannerName).section(u' ', 3, 3).toInt(); }
    bool isPlaying(const char* channel)
    {
        return m_robot.find(QStringLiteral("%1-PlaybackControls-Play").arg(QLatin1String(channel)))["checked"]
            .toBool();
    }

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
};

bool HungServer::shows(const char* channel, const QString& location)
{
    return QTest::qWaitFor([&] { return m_robot.text(mediaOf(channel)) == location; }, 10000);
}

void HungServer::initTestCase()
{
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), 1500));
    QVERIFY(makeNumberedClip(m_media.filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), 1500));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
    QVERIFY(m_robot.doubleClickCell(slotsView, 0, 0) && shows("Preview", QStringLiteral("1-1:")));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-DirectCut-Button")));
    QVERIFY(m_robot.click(takeName) && shows("Program", QStringLiteral("1-1:")));
    QVERIFY(m_robot.doubleClickCell(slotsView, 1, 0) && shows("Preview", QStringLiteral("1-2:")));
    QTRY_VERIFY(isPlaying("Preview"));
}

void HungServer::keepsNothingForLater()
{
    const auto places = [this] {
        QString all;
        for (const QString& name : {takeName, mediaOf("Preview"), mediaOf("Program"), slotsView}) {
            const QJsonObject item = m_robot.find(name);
            all += QStringLiteral("%1,%2 ").arg(item["global_x"].toInt()).arg(item["global_y"].toInt());
        }
        return all;
    };
    const QString before = places();
    m_ombra.hang();
    QTRY_VERIFY_WITH_TIMEOUT(!m_robot.find(takeName)["enabled"].toBool(), 10000);
    QVERIFY(m_robot.text(bannerName).startsWith(QStringLiteral("No answer for ")));
    QVERIFY(m_robot.find(takeName)["toolTip"].toString().startsWith(QStringLiteral("No answer for ")));
    QCOMPARE(m_robot.find(bannerName)["property_mode"].toString(),
             QStringLiteral("silent")); // which is amber
    QCOMPARE(places(), before);         // nothing moves under the hand
    for (int second = 2; second <= 5; ++second) {
        for (const char* key : {"F12", "Space", "M", "F12"})
            m_robot.key(QLatin1String(key));
        m_robot.click(takeName);
        m_robot.click(QStringLiteral("Preview-PlaybackControls-Stop"));
        m_robot.doubleClickCell(slotsView, 0, 0);
        QTRY_VERIFY2(secondsOfSilence() >= second, qPrintable(m_robot.text(bannerName)));
    }
    m_ombra.goOn();
    QTRY_VERIFY_WITH_TIMEOUT(m_robot.find(takeName)["enabled"].toBool(), 10000);
    QVERIFY(m_robot.text(bannerName).isEmpty());
    // A take of now comes after whatever might have been waiting, and is the only one.
    QVERIFY(isPlaying("Preview"));
    QVERIFY(!m_robot.find(QStringLiteral("Program-PlaybackWidget-Header-Mute"))["checked"].toBool());
    QCOMPARE(m_robot.text(mediaOf("Preview")), QStringLiteral("1-2:"));
    QVERIFY(m_robot.click(takeName));
    QVERIFY(shows("Program", QStringLiteral("1-2:")));
    QVERIFY(shows("Preview", QStringLiteral("1-1:")));
}

void HungServer::holdsProgramUntilUnlocked()
{
    const QString stop = QStringLiteral("Program-PlaybackControls-Stop");
    QVERIFY(!m_robot.find(stop)["enabled"].toBool());
    QTRY_VERIFY(isPlaying("Program"));
    m_robot.key(QStringLiteral("Ctrl+L"));
    QTRY_VERIFY(m_robot.find(stop)["enabled"].toBool());
    QVERIFY(m_robot.click(stop));
    QTRY_VERIFY(!isPlaying("Program"));
    m_robot.key(QStringLiteral("Ctrl+L"));
    QTRY_VERIFY(!m_robot.find(stop)["enabled"].toBool());
}

void HungServer::takesOnceForADoubleClick()
{
    QVERIFY(m_robot.doubleClick(takeName));
    QVERIFY(shows("Program", QStringLiteral("1-1:")));
    QVERIFY(m_robot.click(
        QStringLiteral("Preview-PlaybackControls-Play"))); // answered after the second, if there was one
    QTRY_VERIFY(isPlaying("Preview"));
    QCOMPARE(m_robot.text(mediaOf("Program")), QStringLiteral("1-1:"));
}

void HungServer::takesThroughAQuestion()
{
    m_robot.key(QStringLiteral("F12")); // what plays on preview, on air
    QVERIFY(shows("Program", QStringLiteral("1-2:")));
    QVERIFY(m_robot.click(QStringLiteral("Preview-PlaybackControls-Play")));
    struct Question
    {
        QString entry, dialog, word;
    };
    const QList<Question> questions{{QStringLiteral("Disconnect from server"),
                                     QStringLiteral("DisconnectDialog"),
                                     QStringLiteral("plays on without this window")},
                                    {QStringLiteral("Clear show"), QStringLiteral("ClearShowDialog"),
                                     QStringLiteral("goes black at once")},
                                    {QStringLiteral("Device Reboot"), QStringLiteral("RebootDialog"),
                                     QStringLiteral("goes black at once")}};
    QString onAir = QStringLiteral("1-2:"), next = QStringLiteral("1-1:");
    for (const Question& question : questions) {
        QTRY_VERIFY(isPlaying("Program"));
        QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-mainmenu-button")));
        QVERIFY(m_robot.clickMenuEntry(QStringLiteral("MainNavigationBar-mainmenu"), question.entry));
        QVERIFY(!m_robot.waitFor(question.dialog).isEmpty());
        const QString text = m_robot.text(question.dialog + QStringLiteral("-description"));
        QVERIFY2(text.startsWith(QStringLiteral("Program is playing")) && text.contains(question.word),
                 qPrintable(text));
        m_robot.key(QStringLiteral("F12"));
        std::swap(onAir, next);
        QVERIFY(shows("Program", onAir));
        m_robot.key(QStringLiteral("Esc"));
        QTRY_VERIFY(!m_robot.find(question.dialog)["visible"].toBool());
        QVERIFY(shows("Program", onAir) && shows("Preview", next)); // and nothing else was done
        QVERIFY(m_robot.click(QStringLiteral("Preview-PlaybackControls-Play")));
    }
    QVERIFY(m_ombra.isRunning());
}

void HungServer::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(HungServer)
#include "hungserver.moc"

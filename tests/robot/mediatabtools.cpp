#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/serverprobe.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

/// An operator checks a library before a show in the MEDIA tab: what is what, what cannot be played, what no
/// playlist plays; with the mouse first, and then with the keys alone.
class MediaTabTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void detailsSayWhatIsWrong();
    void filtersLeaveOut();
    void slotsGoToPlaylists();
    void keysDoItAll();
    void slotsAreDroppedOnTheFreePlace();
    void endsCleanly();

private:
    bool filter(const QString& choice);
    QString shown();
    QStringList played();

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
    ServerProbe m_server;
};

bool MediaTabTools::filter(const QString& choice)
{
    return m_robot.click(QStringLiteral("media-slots-filter-button")) &&
           m_robot.click(QStringLiteral("media-filter-") + choice);
}

/// The slots in view: "1 2 4".
QString MediaTabTools::shown()
{
    QStringList numbers;
    for (int slot = 1; slot <= 4; ++slot) {
        if (m_robot.find(QStringLiteral("media-slot%1").arg(slot))["visible"].toBool())
            numbers.append(QString::number(slot));
    }
    return numbers.join(u' ');
}

/// The slots that playlist 1 of the server plays, in its order.
QStringList MediaTabTools::played()
{
    QStringList urls;
    const QJsonObject entries =
        m_server.library()["playlists"].toObject()["1"].toObject()["entries"].toObject();
    for (const QJsonValue& entry : entries)
        urls.append(entry.toObject()["slotUrl"].toString().section(u'/', -1));
    return urls;
}

void MediaTabTools::initTestCase()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("needs the built programs");
    for (const char* name : {"1 Walk-in.mp4", "2 Opening.mp4", "4 Broken.mp4"})
        QVERIFY(makeNumberedClip(m_media.filePath(QString::fromLatin1(name)), QColor(220, 0, 0), 250));
    QImage plate(320, 180, QImage::Format_RGB32);
    plate.fill(Qt::blue);
    QVERIFY(plate.save(m_media.filePath(QStringLiteral("3 Plate.png"))));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output());
    m_server.setPorts(m_ombra.ports());
    QTRY_VERIFY(!m_server.slot(1, 4).isEmpty());
    QFile broken(m_media.filePath(QStringLiteral("4 Broken.mp4")));
    QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(QByteArray(40000, '\0')) == 40000);
    broken.close();
    QTRY_VERIFY(!m_server.slot(1, 4)["isPlayable"].toBool());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-media-button")));
    QVERIFY(!m_robot.waitFor(QStringLiteral("media-slot4")).isEmpty());
}

void MediaTabTools::detailsSayWhatIsWrong()
{
    QVERIFY(m_robot.click(QStringLiteral("media-slot3")));
    QTRY_COMPARE(m_robot.text(QStringLiteral("media-details-name")),
                 m_robot.text(QStringLiteral("media-slot3")));
    QVERIFY(!m_robot.find(QStringLiteral("media-details-faults"))["visible"].toBool());
    QVERIFY(m_robot.click(QStringLiteral("media-slot4")));
    QTRY_VERIFY(m_robot.text(QStringLiteral("media-details-faults")).contains(QStringLiteral("damaged")));
    QVERIFY(m_robot.click(QStringLiteral("media-slots-details-button")));
    QTRY_VERIFY(!m_robot.find(QStringLiteral("media-details-panel"))["visible"].toBool());
    QVERIFY(m_robot.click(QStringLiteral("media-slots-details-button")));
    QVERIFY(!m_robot.waitFor(QStringLiteral("media-details-faults")).isEmpty());
}

void MediaTabTools::filtersLeaveOut()
{
    QVERIFY(filter(QStringLiteral("image")));
    QTRY_COMPARE(shown(), QStringLiteral("3"));
    QVERIFY(filter(QStringLiteral("audio")));
    QTRY_COMPARE(shown(), QString());
    QVERIFY(m_robot.click(QStringLiteral("media-slots-show-all-button")));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3 4"));
    QVERIFY(filter(QStringLiteral("unusable")));
    QTRY_COMPARE(shown(), QStringLiteral("4"));
    QVERIFY(filter(QStringLiteral("unusable")));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3 4"));
}

/// What one of them plays is left out at once where only the rest is shown.
void MediaTabTools::slotsGoToPlaylists()
{
    QVERIFY(filter(QStringLiteral("unused")));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3 4"));
    QVERIFY(m_robot.click(QStringLiteral("media-slot2")));
    m_robot.key(QStringLiteral("Insert"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("media-playlist-popup-row0")).isEmpty());
    QVERIFY(m_robot.click(QStringLiteral("media-playlist-popup-row0"))); // a new one
    QTRY_COMPARE(played(), QStringList{QStringLiteral("2")});
    QTRY_COMPARE(shown(), QStringLiteral("1 3 4"));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3 4"));
    QVERIFY(filter(QStringLiteral("unused")));
}

void MediaTabTools::keysDoItAll()
{
    m_robot.key(QStringLiteral("Ctrl+F"));
    m_robot.type(QStringLiteral("open"));
    QTRY_COMPARE(shown(), QStringLiteral("2"));
    m_robot.key(QStringLiteral("Escape"));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3 4"));
    m_robot.key(QStringLiteral("Return")); // to the slots
    m_robot.key(QStringLiteral("Home"));
    m_robot.key(QStringLiteral("Shift+Right"));
    QTRY_COMPARE(m_robot.text(QStringLiteral("media-slots-panel-title")),
                 QStringLiteral("2 of 4 slots selected"));
    m_robot.key(QStringLiteral("Insert"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("media-playlist-popup-row0")).isEmpty());
    m_robot.key(QStringLiteral("Return"));
    QTRY_COMPARE(played(), (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    m_robot.key(QStringLiteral("End"));
    m_robot.key(QStringLiteral("F2"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("media-slots-rename-field")).isEmpty());
    m_robot.type(QStringLiteral("spare"));
    m_robot.key(QStringLiteral("Return"));
    QTRY_COMPARE(m_server.slot(1, 4)["name"].toString(), QStringLiteral("spare"));
    m_robot.key(QStringLiteral("Delete"));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3"));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3 4"));
    m_robot.key(QStringLiteral("Home"));
    m_robot.key(QStringLiteral("Return")); // cues
    QTRY_COMPARE(m_robot.text(QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation")),
                 QStringLiteral("1-1:"));
}

/// The first free place shows itself.
void MediaTabTools::slotsAreDroppedOnTheFreePlace()
{
    const QString place = QStringLiteral("media-place5");
    QTRY_VERIFY(m_robot.text(place).startsWith(QStringLiteral("5 ")));
    QVERIFY(m_robot.click(QStringLiteral("media-slot1")));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), QStringLiteral("media-slot1"), 0.3));
    for (const double share : {0.3, 0.4})
        QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), place, share));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), place, 0.4));
    QTRY_VERIFY(!m_server.slot(1, 5).isEmpty());
    QTRY_VERIFY(m_robot.text(QStringLiteral("media-place6")).startsWith(QStringLiteral("6 ")));
    QTRY_COMPARE(played(), (QStringList{QStringLiteral("5"), QStringLiteral("2")}));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_VERIFY(m_server.slot(1, 5).isEmpty());
    QTRY_COMPARE(played(), (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    // And to a number in the midst of it.
    QVERIFY(m_robot.click(QStringLiteral("media-slot1")));
    m_robot.key(QStringLiteral("Ctrl+M"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("MoveSlots-input-0")).isEmpty());
    m_robot.type(QStringLiteral("12"));
    m_robot.key(QStringLiteral("Return"));
    QTRY_VERIFY(!m_server.slot(1, 12).isEmpty());
    QTRY_COMPARE(played(), (QStringList{QStringLiteral("12"), QStringLiteral("2")}));
    QTRY_VERIFY(m_robot.text(QStringLiteral("media-place5")).startsWith(QStringLiteral("5 – 11")));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_COMPARE(shown(), QStringLiteral("1 2 3 4"));
}

void MediaTabTools::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
}

HALCYRA_TEST(MediaTabTools)
#include "mediatabtools.moc"

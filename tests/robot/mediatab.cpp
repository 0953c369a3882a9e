#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/serverprobe.h"
#include "tests/support/testmain.h"

#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString row = QStringLiteral("media-collection-row%1");
const QString player = QStringLiteral("MainNavigationBar-player-button");
const QString media = QStringLiteral("MainNavigationBar-media-button");

} // namespace

/// An operator puts a library in order in the MEDIA tab, by mouse and by keys, and looks at what the server
/// has made of it.
class MediaTab : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void collectionsAreMade();
    void collectionsArePutInOrder();
    void slotsGoFromCollectionToCollection();
    void whatIsCuedGoesAlong();
    void whatIsOnProgramKeepsItsNumber();
    void endsCleanly();

private:
    bool makeCollection(const QString& name);
    bool drag(const QString& from, const QStringList& over);
    QString order();

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
    ServerProbe m_server;
};

bool MediaTab::makeCollection(const QString& name)
{
    const QString dialog = QStringLiteral("MediaView-new-collection");
    if (!m_robot.click(QStringLiteral("MediaView-add-collection-button")) ||
        !m_robot.click(dialog + QStringLiteral("-input-0")))
        return false;
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(name);
    return m_robot.click(dialog + QStringLiteral("-accept-button"));
}

/// As a hand moves, and let go over the last of those.
bool MediaTab::drag(const QString& from, const QStringList& over)
{
    bool isDone = m_robot.mouseAt(QStringLiteral("drag_start"), from, 0.3);
    for (const QString& item : over) {
        for (const double share : {0.3, 0.5})
            isDone = isDone && m_robot.mouseAt(QStringLiteral("drag_move"), item, share);
    }
    return isDone && m_robot.mouseAt(QStringLiteral("drag_end"), over.last(), 0.5);
}

/// The collections that the server has: "1 Main, 2 act one".
QString MediaTab::order()
{
    QStringList all;
    const QJsonObject collections = m_server.library()["collections"].toObject();
    for (auto each = collections.begin(); each != collections.end(); ++each)
        all.append(each.key() + u' ' + each.value().toObject()["name"].toString());
    return all.join(QStringLiteral(", "));
}

void MediaTab::initTestCase()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("needs the built programs");
    for (const char* name : {"1 Walk-in.mp4", "2 Opening.mp4", "3 Closing.mp4"})
        QVERIFY(makeNumberedClip(m_media.filePath(QString::fromLatin1(name)), QColor(220, 0, 0), 250));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output());
    m_server.setPorts(m_ombra.ports());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
}

void MediaTab::collectionsAreMade()
{
    QVERIFY(m_robot.click(media));
    QVERIFY(!m_robot.waitFor(QStringLiteral("media-slot3")).isEmpty());
    QVERIFY(makeCollection(QStringLiteral("act one")));
    QTRY_COMPARE(m_robot.text(row.arg(1)), QStringLiteral("act one"));
    QVERIFY(makeCollection(QStringLiteral("act two")));
    QTRY_COMPARE(m_robot.text(row.arg(2)), QStringLiteral("act two"));
    QTRY_VERIFY(order().endsWith(QStringLiteral("2 act one, 3 act two")));
}

/// Their order is that of their numbers; what is chosen stays chosen on its way.
void MediaTab::collectionsArePutInOrder()
{
    const QString before = order();
    const QString other = QStringLiteral(", 2 act two, 3 act one");
    QVERIFY(m_robot.click(row.arg(2)));
    m_robot.key(QStringLiteral("Alt+Up"));
    QTRY_VERIFY(order().endsWith(other));
    m_robot.key(QStringLiteral("Alt+Up")); // the same one, which is chosen still
    QTRY_VERIFY(order().startsWith(QStringLiteral("1 act two, ")));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_VERIFY(order().endsWith(other));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_COMPARE(order(), before);
    m_robot.key(QStringLiteral("Alt+Up"));
    QTRY_VERIFY(order().endsWith(other));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_COMPARE(order(), before);

    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), row.arg(2), 0.3));
    for (const int over : {1, 0})
        QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), row.arg(over), 0.4));
    QTRY_COMPARE(m_robot.text(QStringLiteral("media-collections-forecast-text")),
                 QStringLiteral("3 act two becomes collection 1. 1 and 2 become 2 and 3."));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), row.arg(0), 0.4));
    QTRY_VERIFY(order().startsWith(QStringLiteral("1 act two, ")));
    QTRY_COMPARE(m_robot.text(row.arg(0)), QStringLiteral("act two"));
    QVERIFY(drag(row.arg(0), {row.arg(1), row.arg(2)}));
    QTRY_VERIFY(order().endsWith(QStringLiteral("2 act one, 3 act two")));
}

/// With both in view they are copied.
void MediaTab::slotsGoFromCollectionToCollection()
{
    QVERIFY(m_robot.click(row.arg(0)));
    QVERIFY(m_robot.click(QStringLiteral("media-slots-beside-button")));
    QTRY_VERIFY(m_robot.text(QStringLiteral("media-slots2")).isEmpty());
    QVERIFY(m_robot.click(QStringLiteral("media-slot3")));
    QVERIFY(drag(QStringLiteral("media-slot3"), {QStringLiteral("media-slots2")}));
    QTRY_COMPARE(m_server.slot(2, 1)["name"].toString(), m_server.slot(1, 3)["name"].toString());
    QVERIFY(!m_robot.waitFor(QStringLiteral("media-slots2-slot1")).isEmpty());
    // What is cut leaves where it was, in one step.
    QVERIFY(m_robot.click(QStringLiteral("media-slots2-slot1")));
    m_robot.key(QStringLiteral("Ctrl+X"));
    QVERIFY(m_robot.click(QStringLiteral("media-slot3")));
    m_robot.key(QStringLiteral("Ctrl+V"));
    QTRY_COMPARE(m_server.slot(1, 4)["name"], m_server.slot(1, 3)["name"]);
    QCOMPARE(m_server.slot(2, 1)["contentUrl"].toString(), QString());
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_COMPARE(m_server.slot(2, 1)["name"], m_server.slot(1, 3)["name"]);
    QVERIFY(m_server.slot(1, 4).isEmpty());
    QVERIFY(m_robot.click(QStringLiteral("media-slots2-close-button")));
}

void MediaTab::whatIsCuedGoesAlong()
{
    const QString cued = QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation");
    QVERIFY(m_robot.click(row.arg(1)));
    QTRY_VERIFY(m_robot.doubleClick(QStringLiteral("media-slot1")));
    QTRY_COMPARE(m_robot.text(cued), QStringLiteral("2-1:"));
    QVERIFY(m_robot.click(row.arg(1)));
    m_robot.key(QStringLiteral("Alt+Down"));
    QTRY_COMPARE(m_robot.text(cued), QStringLiteral("3-1:"));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_COMPARE(m_robot.text(cued), QStringLiteral("2-1:"));
}

void MediaTab::whatIsOnProgramKeepsItsNumber()
{
    const QString before = order();
    QVERIFY(m_robot.click(row.arg(0)));
    QVERIFY(m_robot.doubleClick(QStringLiteral("media-slot1")));
    QVERIFY(m_robot.click(player));
    QTRY_COMPARE(m_robot.text(QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation")),
                 QStringLiteral("1-1:"));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-DirectCut-Button")));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-Take-Button")));
    const QString onProgram = QStringLiteral("Program-PlaybackWidget-Header-MediaLocation");
    QTRY_COMPARE(m_robot.text(onProgram), QStringLiteral("1-1:"));
    QVERIFY(m_robot.click(media));
    QVERIFY(drag(row.arg(1), {row.arg(0)}));
    QVERIFY(m_robot.click(row.arg(1)));
    m_robot.key(QStringLiteral("Alt+Up"));
    const auto isTold = [this] { return m_app.output().contains(QStringLiteral("keeps its number")); };
    QTRY_VERIFY(isTold());
    QCOMPARE(order(), before);
}

void MediaTab::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
}

HALCYRA_TEST(MediaTab)
#include "mediatab.moc"

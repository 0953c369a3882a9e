#include "tests/support/appprocess.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"
#include "tests/support/testmedia.h"

#include <QDir>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

const QString slotsView = QStringLiteral("MediaPanel-slots-view");
const QString chooser = QStringLiteral("MediaPanel-collection-chooser");
const QString previewName = QStringLiteral("Preview-PlaybackWidget-PreviewWidget");

constexpr int firstFrame = 1, lastFrame = 12;
const QList<int> gaps{4, 5, 9};

QColor colour(int level)
{
    static const std::array colours{QColor(200, 40, 40),  QColor(40, 200, 40),  QColor(40, 40, 200),
                                    QColor(200, 200, 40), QColor(40, 200, 200), QColor(200, 40, 200)};
    return colours[size_t(level) % colours.size()];
}

/// Of each number others.
Quadrants quadrants(int number)
{
    return {colour(number), colour(number / 6), colour(number + 2), colour(number / 6 + 3)};
}

bool makePicture(const QString& file, const Quadrants& colours)
{
    QImage picture(320, 180, QImage::Format_RGB32);
    QPainter painter(&picture);
    for (int i = 0; i < 4; ++i)
        painter.fillRect(i % 2 * 160, i / 2 * 90, 160, 90, colours[size_t(i)]);
    painter.end();
    return picture.save(file);
}

QString frameName(int number)
{
    return QStringLiteral("shot_%1.png").arg(number, 4, 10, QLatin1Char('0'));
}

} // namespace

/// An operator holds a folder of this computer over the player's button, lets go over an empty collection,
/// and plays what has come of it.
class Drops : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void collectionIsEmpty();
    void folderIsDropped();
    void whatWasFoundIsApproved();
    void eachPlaysItsOwnPictures();
    void oneStepTakesItBack();
    void endsCleanly();

private:
    QString path(const QString& name) const { return m_local.filePath(QStringLiteral("Act 1/") + name); }
    Quadrants picture(const QString& name) const;
    bool shows(const Quadrants& colours);

    QTemporaryDir m_local;
    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
    QStringList m_files; // that fill a slot each, in the order of the slots; the sequence under its first one
};

/// As the file itself has it.
Quadrants Drops::picture(const QString& name) const
{
    return quadrantsOf(name.endsWith(QLatin1String(".mp4")) ? frameOf(path(name), 1) : QImage(path(name)));
}

bool Drops::shows(const Quadrants& colours)
{
    return QTest::qWaitFor([&] { return alike(quadrantsOf(m_robot.grab(previewName)), colours); }, 15000);
}

void Drops::initTestCase()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("needs the built programs");
    QVERIFY(QDir(m_local.path()).mkpath(QStringLiteral("Act 1")));
    m_files = {QStringLiteral("Closing.mp4"), QStringLiteral("Opening.mp4"), frameName(firstFrame),
               QStringLiteral("Logo.png"),    QStringLiteral("Plate.jpg"),   QStringLiteral("Title.png")};
    for (qsizetype i = 0; i < m_files.size(); ++i) {
        const Quadrants colours = quadrants(20 + int(i));
        if (m_files[i].endsWith(QLatin1String(".mp4")))
            QVERIFY(makeClip(path(m_files[i]), colours, 20));
        else
            QVERIFY(makePicture(path(m_files[i]), colours));
    }
    for (int frame = firstFrame; frame <= lastFrame; ++frame)
        QVERIFY(gaps.contains(frame) || makePicture(path(frameName(frame)), quadrants(frame)));
    QFile notes(path(QStringLiteral("Notes.txt")));
    QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("Cue 3 is late.") > 0);
    notes.close();
    QVERIFY(makePicture(m_media.filePath(QStringLiteral("Walk-in.png")), quadrants(30)));
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output());
    if (m_ombra.ports().ftp == 0)
        QSKIP("the server serves no files on this machine");
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
}

void Drops::collectionIsEmpty()
{
    QTRY_COMPARE_WITH_TIMEOUT(m_robot.cells(slotsView).size(), 1, 15000);
    QVERIFY(m_robot.doubleClickCell(slotsView, 0, 0)); // for the take
    QVERIFY(m_robot.click(QStringLiteral("MediaPanel-add-collection-button")));
    const QString dialog = QStringLiteral("MediaPanel-new-collection");
    QVERIFY(m_robot.click(dialog + QStringLiteral("-input-0")));
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(QStringLiteral("act one"));
    QVERIFY(m_robot.click(dialog + QStringLiteral("-accept-button")));
    QTRY_VERIFY(m_robot.text(chooser).contains(QStringLiteral("act one")));
    QTRY_VERIFY(m_robot.cells(slotsView).isEmpty());
}

void Drops::folderIsDropped()
{
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-files-button")));
    QVERIFY(m_robot.click(QStringLiteral("local-files-list")));
    m_robot.key(QStringLiteral("Ctrl+L"));
    m_robot.type(m_local.path());
    m_robot.key(QStringLiteral("Enter"));
    const QString row = QStringLiteral("local-files-row0");
    QTRY_COMPARE_WITH_TIMEOUT(m_robot.text(row), QStringLiteral("Act 1"), 10000);

    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), row, 0.3));
    const QString player = QStringLiteral("MainNavigationBar-player-button");
    for (const QString& over : {QStringLiteral("local-files-list"), player}) { // as a hand moves
        for (const double share : {0.4, 0.5, 0.6})
            QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), over, share));
    }
    QVERIFY(!m_robot.waitFor(slotsView).isEmpty()); // held there, the drag opens the page
    for (const double share : {0.4, 0.5})
        QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), slotsView, share));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), slotsView, 0.5));
    QVERIFY(!m_robot.waitFor(QStringLiteral("DropDialog"), 60000).isEmpty());
    QVERIFY(m_robot.cells(slotsView).isEmpty()); // nothing is stored unseen

    // What is no media is left here, and said so.
    QVERIFY(!QFile::exists(m_media.filePath(QStringLiteral("Act 1/Notes.txt"))));
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-files-button")));
    QTRY_COMPARE_WITH_TIMEOUT(m_robot.text(QStringLiteral("transfers-row0")),
                              QStringLiteral("Act 1: Done, verified; 1 file is no media and stays"), 15000);
    QVERIFY(m_robot.click(player));
}

/// By keyboard, and the show goes on beside it.
void Drops::whatWasFoundIsApproved()
{
    const QString program = QStringLiteral("Program-PlaybackWidget-Header-MediaLocation");
    QCOMPARE(m_robot.text(QStringLiteral("DropDialog-sequences-row0")),
             QStringLiteral("shot_%04d.png, 3 missing, 1 to 12, 60 fps, 00:00:00.200"));
    QCOMPARE(m_robot.text(QStringLiteral("DropDialog-description")), QStringLiteral("Slots 1 to 6 (6)."));
    QVERIFY(m_robot.click(QStringLiteral("DropDialog-rate-field-input")));
    m_robot.key(QStringLiteral("F12"));
    QTRY_COMPARE(m_robot.text(program), QStringLiteral("1-1:"));
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(QStringLiteral("25"));
    QVERIFY(m_robot.click(QStringLiteral("DropDialog-infinite-checkbox")));
    m_robot.key(QStringLiteral("Enter"));
    QTRY_COMPARE(m_robot.cells(slotsView).size(), m_files.size());
    QVERIFY(m_robot.find(QStringLiteral("DropDialog")).isEmpty());
}

void Drops::eachPlaysItsOwnPictures()
{
    for (qsizetype i = 0; i < m_files.size(); ++i) {
        QVERIFY(m_robot.doubleClickCell(slotsView, int(i), 0));
        QTRY_COMPARE(m_robot.text(QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation")),
                     QStringLiteral("2-%1:").arg(i + 1));
        if (m_files[i] != frameName(firstFrame)) {
            QVERIFY2(shows(picture(m_files[i])), qPrintable(m_files[i]));
            continue;
        }
        QVERIFY(m_robot.click(QStringLiteral("Preview-PlaybackControls-Pause")));
        m_robot.key(QStringLiteral("Home"));
        int shown = firstFrame;
        for (int frame = firstFrame; frame <= lastFrame; ++frame) {
            if (!gaps.contains(frame))
                shown = frame; // a missing one shows the one before
            QVERIFY2(shows(picture(frameName(shown))), qPrintable(frameName(frame)));
            m_robot.key(QStringLiteral("."));
        }
    }
}

/// The files stay on the server, the slots go.
void Drops::oneStepTakesItBack()
{
    QVERIFY(m_robot.clickCell(slotsView, 0, 0));
    m_robot.key(QStringLiteral("CtrlZ"));
    QTRY_VERIFY(m_robot.cells(slotsView).isEmpty());
    m_robot.key(QStringLiteral("CtrlY"));
    QTRY_COMPARE(m_robot.cells(slotsView).size(), m_files.size());
}

void Drops::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
}

HALCYRA_TEST(Drops)
#include "drops.moc"

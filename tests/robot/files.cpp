#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

constexpr int manyFiles = 300;
constexpr int clipLength = 1500; // frames
constexpr int tries = 3;         // other work on the machine must not fail the test

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double longestStallMs = 200;
#else
constexpr double longestStallMs = 16;
#endif

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Bytes that no other file has; of a file that no decoder knows, which a transfer does not mind.
QByteArray write(const QString& path, int size = 300000)
{
    QDir().mkpath(QFileInfo(path).path());
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? bytes : QByteArray();
}

using Tree = QMap<QString, QByteArray>;

Tree writeTree(const QString& folder)
{
    Tree tree;
    for (int i = 0; i < manyFiles; ++i) {
        const QString name = QStringLiteral("Scene %1/Cue %2.mov").arg(i / 30).arg(i);
        tree.insert(name, write(folder + u'/' + name, 4 * (20000 + i)));
    }
    return tree;
}

/// All that lies there, hidden names of what is half there among them.
QStringList namesIn(const QString& folder)
{
    QStringList names;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        names.append(QDir(folder).relativeFilePath(files.next()));
    names.sort();
    return names;
}

bool isThere(const QString& folder, const Tree& tree)
{
    const QStringList names = namesIn(folder);
    return names.size() == tree.size() && std::ranges::all_of(names, [&](const QString& name) {
               return tree.contains(name) && QFileInfo(folder + u'/' + name).size() == tree[name].size();
           });
}

/// How the window was while a folder went over.
struct Passage
{
    double stallMs = 0;
    double picturesPerSecond = 0;
};

} // namespace

/// The operator brings a folder to the server by mouse and another one back by keys, and looks at the bytes.
class Files : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tabShowsBothSides();
    void folderIsDraggedUp();
    void folderComesDownByKeys();
    void conflictIsAsked();
    void removalIsAsked();
    void manyFilesGoUpAndDownInAShow();
    void endsCleanly();

private:
    bool goTo(const QString& side, const QString& path);
    bool drag(const QString& row, const QString& list);
    bool isRunning(const QString& channel);
    std::optional<Passage> dragTree(const QString& from, const QString& to, const QString& name,
                                    const QString& target, const Tree& tree);
    void compare(const QString& folder, const Tree& tree);
    QString text(const QString& name) { return m_robot.find(name)["text"].toString(); }

    QTemporaryDir m_local;
    QTemporaryDir m_media;
    QTemporaryDir m_back;
    QByteArray m_up;
    QByteArray m_down;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
};

bool Files::goTo(const QString& side, const QString& path)
{
    if (!m_robot.click(side + QStringLiteral("-files-list")))
        return false;
    m_robot.key(QStringLiteral("Ctrl+L"));
    m_robot.type(path);
    m_robot.key(QStringLiteral("Enter"));
    return true;
}

bool Files::drag(const QString& row, const QString& list)
{
    bool isDone = m_robot.mouseAt(QStringLiteral("drag_start"), row, 0.3);
    for (const double share : {0.3, 0.5, 0.7}) // as a hand moves
        isDone = isDone && m_robot.mouseAt(QStringLiteral("drag_move"), list, share);
    return isDone && m_robot.mouseAt(QStringLiteral("drag_end"), list, 0.7);
}

bool Files::isRunning(const QString& channel)
{
    std::optional<int> first;
    return QTest::qWaitFor(
        [&] {
            const std::optional<int> frame =
                frameNumberOf(m_robot.grab(channel + QStringLiteral("-PlaybackWidget-PreviewWidget")));
            if (!first)
                first = frame;
            return frame && first && *frame > *first;
        },
        10000);
}

/// Drags the folder of that name from the one side to the other, where it comes to lie in target. Looks at
/// the disk and not at the window until all of it is there.
std::optional<Passage> Files::dragTree(const QString& from, const QString& to, const QString& name,
                                       const QString& target, const Tree& tree)
{
    m_robot.click(QStringLiteral("transfers-clear-button"));
    const QString row = QStringLiteral("%1-files-row0").arg(from);
    if (!QTest::qWaitFor([&] { return text(row) == name; }, 15000))
        return {};
    m_robot.figures(true);
    QElapsedTimer time;
    time.start();
    if (!drag(row, QStringLiteral("%1-files-list").arg(to)) ||
        !QTest::qWaitFor([&] { return isThere(target + u'/' + name, tree); }, 60000))
        return {};
    const double seconds = double(time.elapsed()) / 1000;
    const QJsonObject figures = m_robot.figures();
    qInfo() << name << "went to" << to << "in" << seconds << "s:" << figures;
    const auto isSaid = [&] {
        return text(QStringLiteral("transfers-row0")) == name + QStringLiteral(": Done, verified");
    };
    if (!QTest::qWaitFor(isSaid, 15000))
        return {};
    return Passage{figures["longestOwnStallMs"].toDouble(), figures["previewPictures"].toInt() / seconds};
}

void Files::compare(const QString& folder, const Tree& tree)
{
    QCOMPARE(namesIn(folder), tree.keys());
    for (auto file = tree.cbegin(); file != tree.cend(); ++file)
        QVERIFY2(read(folder + u'/' + file.key()) == file.value(), qPrintable(file.key()));
}

void Files::initTestCase()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("needs the built programs");
    QVERIFY(
        makeNumberedClip(m_media.filePath(QStringLiteral("1 Walk-in.mp4")), QColor(220, 0, 0), clipLength));
    m_up = write(m_local.filePath(QStringLiteral("Act 1/Opening.mov")));
    m_down = write(m_media.filePath(QStringLiteral("Recorded/Take.mov")));
    QVERIFY(!m_up.isEmpty() && !m_down.isEmpty());
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output());
    if (m_ombra.ports().ftp == 0)
        QSKIP("the server serves no files on this machine");
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
}

void Files::tabShowsBothSides()
{
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-files-button")));
    QVERIFY(goTo(QStringLiteral("local"), m_local.path()));
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("local-files-row0")), QStringLiteral("Act 1"), 10000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("server-files-row0")), QStringLiteral("Recorded"), 15000);
}

void Files::folderIsDraggedUp()
{
    QVERIFY(drag(QStringLiteral("local-files-row0"), QStringLiteral("server-files-list")));
    QTRY_COMPARE_WITH_TIMEOUT(read(m_media.filePath(QStringLiteral("Act 1/Opening.mov"))), m_up, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("transfers-row0")), QStringLiteral("Act 1: Done, verified"),
                              15000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("server-files-row0")), QStringLiteral("Act 1"), 15000);
}

void Files::folderComesDownByKeys()
{
    QVERIFY(m_robot.click(QStringLiteral("server-files-row1")));
    m_robot.key(QStringLiteral("Ctrl+Left"));
    QTRY_COMPARE_WITH_TIMEOUT(read(m_local.filePath(QStringLiteral("Recorded/Take.mov"))), m_down, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("transfers-row1")),
                              QStringLiteral("Recorded: Done, verified"), 15000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("local-files-row1")), QStringLiteral("Recorded"), 15000);
}

/// What is there already stays until somebody says otherwise.
void Files::conflictIsAsked()
{
    const QByteArray changed = write(m_local.filePath(QStringLiteral("Recorded/Take.mov")));
    QVERIFY(m_robot.click(QStringLiteral("server-files-row1")));
    m_robot.key(QStringLiteral("Ctrl+Left"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("conflict-skip-button")).isEmpty());
    QCOMPARE(read(m_local.filePath(QStringLiteral("Recorded/Take.mov"))), changed);
    QVERIFY(m_robot.click(QStringLiteral("conflict-skip-button")));
    QTRY_VERIFY_WITH_TIMEOUT(!m_robot.find(QStringLiteral("conflict-skip-button"))["visible"].toBool(),
                             10000);
    QCOMPARE(read(m_local.filePath(QStringLiteral("Recorded/Take.mov"))), changed);
}

void Files::removalIsAsked()
{
    const QString folder = m_local.filePath(QStringLiteral("Recorded"));
    QVERIFY(m_robot.click(QStringLiteral("local-files-row1")));
    m_robot.key(QStringLiteral("Delete"));
    QVERIFY(!m_robot.waitFor(QStringLiteral("RemoveFilesDialog-accept-button")).isEmpty());
    QVERIFY(QFileInfo::exists(folder));
    QVERIFY(m_robot.click(QStringLiteral("RemoveFilesDialog-accept-button")));
    QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo::exists(folder), 10000);
}

/// Hundreds of files go both ways in one drag each while program plays: not a byte is lost, the window does
/// not stand still, and the pictures keep coming.
void Files::manyFilesGoUpAndDownInAShow()
{
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-player-button")));
    QVERIFY(m_robot.doubleClickCell(QStringLiteral("MediaPanel-slots-view"), 0, 0));
    QVERIFY(isRunning(QStringLiteral("Preview")));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-DirectCut-Button")));
    QVERIFY(m_robot.click(QStringLiteral("TakeControls-Take-Button")));
    QVERIFY(isRunning(QStringLiteral("Program")));
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-files-button")));
    QVERIFY(goTo(QStringLiteral("server"), QStringLiteral("/Act 1")));
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("server-files-row0")), QStringLiteral("Opening.mov"),
                              15000);

    Passage best{1e9, 0};
    for (int i = 0; i < tries && (best.stallMs >= longestStallMs || best.picturesPerSecond < 24); ++i) {
        // A folder of its own each time, alone on its side.
        const QString name = QStringLiteral("Show %1").arg(i);
        const QString source = m_back.filePath(QStringLiteral("from %1").arg(i));
        const QString target = m_back.filePath(QStringLiteral("to %1").arg(i));
        const Tree tree = writeTree(source + u'/' + name);
        QVERIFY(QDir().mkpath(target));
        QVERIFY(goTo(QStringLiteral("local"), source));
        const QString onServer = m_media.filePath(QStringLiteral("Act 1"));
        const auto up = dragTree(QStringLiteral("local"), QStringLiteral("server"), name, onServer, tree);
        QVERIFY(up);
        compare(onServer + u'/' + name, tree);
        QVERIFY(goTo(QStringLiteral("local"), target));
        const auto down = dragTree(QStringLiteral("server"), QStringLiteral("local"), name, target, tree);
        QVERIFY(down);
        compare(target + u'/' + name, tree);
        if (QTest::currentTestFailed())
            return;
        best.stallMs = std::min(best.stallMs, std::max(up->stallMs, down->stallMs));
        best.picturesPerSecond =
            std::max(best.picturesPerSecond, std::min(up->picturesPerSecond, down->picturesPerSecond));
        QVERIFY(QDir(onServer + u'/' + name).removeRecursively());
        m_robot.click(QStringLiteral("server-files-refresh-button"));
    }
    m_robot.restFigures();
    QVERIFY2(best.stallMs < longestStallMs,
             qPrintable(QStringLiteral("the window stood for %1 ms").arg(best.stallMs)));
    QVERIFY2(best.picturesPerSecond >= 24,
             qPrintable(QStringLiteral("%1 pictures a second").arg(best.picturesPerSecond)));
    QVERIFY(m_robot.click(QStringLiteral("MainNavigationBar-player-button")));
    QVERIFY(isRunning(QStringLiteral("Program")));
}

void Files::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
}

HALCYRA_TEST(Files)
#include "files.moc"

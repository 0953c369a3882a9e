#include "tests/support/appprocess.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

namespace {

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Bytes that no other file has; of a file that no decoder knows, which a transfer does not mind.
QByteArray write(const QString& path)
{
    QDir().mkpath(QFileInfo(path).path());
    QByteArray bytes(300000, Qt::Uninitialized);
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? bytes : QByteArray();
}

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
    void endsCleanly();

private:
    QString text(const QString& name) { return m_robot.find(name)["text"].toString(); }

    QTemporaryDir m_local;
    QTemporaryDir m_media;
    QByteArray m_up;
    QByteArray m_down;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
};

void Files::initTestCase()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("needs the built programs");
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
    QVERIFY(m_robot.click(QStringLiteral("local-files-list")));
    m_robot.key(QStringLiteral("Ctrl+L"));
    m_robot.type(m_local.path());
    m_robot.key(QStringLiteral("Enter"));
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("local-files-row0")), QStringLiteral("Act 1"), 10000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("server-files-row0")), QStringLiteral("Recorded"), 15000);
}

void Files::folderIsDraggedUp()
{
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_start"), QStringLiteral("local-files-row0"), 0.3));
    for (const double share : {0.3, 0.5, 0.7}) // as a hand moves
        QVERIFY(m_robot.mouseAt(QStringLiteral("drag_move"), QStringLiteral("server-files-list"), share));
    QVERIFY(m_robot.mouseAt(QStringLiteral("drag_end"), QStringLiteral("server-files-list"), 0.7));
    QTRY_COMPARE_WITH_TIMEOUT(read(m_media.filePath(QStringLiteral("Act 1/Opening.mov"))), m_up, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("transfers-row0")), QStringLiteral("Act 1: Done"), 15000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("server-files-row0")), QStringLiteral("Act 1"), 15000);
}

void Files::folderComesDownByKeys()
{
    QVERIFY(m_robot.click(QStringLiteral("server-files-row1")));
    m_robot.key(QStringLiteral("Ctrl+Left"));
    QTRY_COMPARE_WITH_TIMEOUT(read(m_local.filePath(QStringLiteral("Recorded/Take.mov"))), m_down, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(text(QStringLiteral("transfers-row1")), QStringLiteral("Recorded: Done"),
                              15000);
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

void Files::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    QVERIFY(!m_app.output().contains(QLatin1String("qrc:/"))); // where a declarative view complains
}

HALCYRA_TEST(Files)
#include "files.moc"

#include "common/ui/diagnostics/logmanager.h"

#include "common/ui/diagnostics/diagnosticsmanager.h"
#include "common/ui/toolkit/errordialog.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <archive.h>
#include <archive_entry.h>

using namespace vantrel;

namespace {

constexpr qint64 mebibyte = 1024 * 1024;

qint64 folderSize(const QDir& folder)
{
    qint64 size = 0;
    for (const QFileInfo& file : folder.entryInfoList(QDir::Files))
        size += file.size();
    return size;
}

/// What a zip holds, read back by the library that reads all formats.
QMap<QString, QByteArray> unzip(const QString& path)
{
    QMap<QString, QByteArray> entries;
    archive* zip = archive_read_new();
    archive_read_support_format_zip(zip);
    archive_entry* entry = nullptr;
    if (archive_read_open_filename(zip, QFile::encodeName(path).constData(), 10240) == ARCHIVE_OK) {
        while (archive_read_next_header(zip, &entry) == ARCHIVE_OK) {
            QByteArray content;
            char buffer[4096];
            for (la_ssize_t got = 0; (got = archive_read_data(zip, buffer, sizeof buffer)) > 0;)
                content.append(buffer, got);
            entries.insert(QString::fromUtf8(archive_entry_pathname_utf8(entry)), content);
        }
    }
    archive_read_free(zip);
    return entries;
}

} // namespace

/// The log manager takes the one message handler of the process, so each test gives it back to the test run.
class LogManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_watch = qInstallMessageHandler(nullptr);
        LogManager& logs = LogManager::instance();
        logs.setLogToStdOut(false);
        logs.rotateLogs(); // closes the file of the test before
        m_folder.setPath(logs.logDir());
        emptyFolder();
        qInstallMessageHandler(m_watch);
    }

    /// Not before the first test, which meets them as they are.
    void cleanup()
    {
        LogManager::instance().setSizeLimit(52428800);
        LogManager::instance().setFileSizeLimit(10485760);
    }
    void cleanupTestCase() { emptyFolder(); }

    /// With the limits that it starts with, which an earlier run has used up.
    void aRunGoesOnInTheNextFile()
    {
        makeFile(QStringLiteral("old.txt"), 45 * mebibyte, 1);
        LogManager::instance().rotateLogs();
        const QMessageLogContext bare;
        const auto logs = [this] { return m_folder.entryInfoList({QStringLiteral("halcyra_log_*.txt")}); };
        for (int number = 0; logs().size() < 2 && number < 12'000; ++number)
            qt_message_output(QtInfoMsg, bare, QString::number(number).leftJustified(1000, u'.'));
        qInstallMessageHandler(m_watch);
        QCOMPARE(logs().size(), 2);
        const qint64 full = std::max(logs()[0].size(), logs()[1].size());
        QVERIFY2(qAbs(full - 10 * mebibyte) < 4096, qPrintable(QString::number(full)));
        QVERIFY(!m_folder.exists(QStringLiteral("old.txt"))); // 55 MiB
    }

    void keepsTheFolderWithinItsLimit_data()
    {
        QTest::addColumn<QList<qint64>>("sizes"); // oldest first
        QTest::addColumn<int>("left");
        QTest::newRow("60 MiB loses its oldest") << QList<qint64>(6, 10 * mebibyte) << 5;
        QTest::newRow("exactly the limit loses nothing") << QList<qint64>{30 * mebibyte, 20 * mebibyte} << 2;
        QTest::newRow("one byte above") << QList<qint64>{1, 30 * mebibyte, 20 * mebibyte} << 2;
        QTest::newRow("one giant goes alone") << QList<qint64>{70 * mebibyte, mebibyte} << 1;
    }

    void keepsTheFolderWithinItsLimit()
    {
        QFETCH(QList<qint64>, sizes);
        QFETCH(int, left);
        for (qsizetype i = 0; i < sizes.size(); ++i)
            makeFile(QStringLiteral("old_%1.txt").arg(i), sizes[i], sizes.size() - i);
        LogManager::instance().rotateLogs();
        qInstallMessageHandler(m_watch);
        QStringList names;
        for (qsizetype i = sizes.size() - left; i < sizes.size(); ++i)
            names.append(QStringLiteral("old_%1.txt").arg(i));
        QCOMPARE(m_folder.entryList(QDir::Files, QDir::Name), names);
        QVERIFY(folderSize(m_folder) <= 52428800);
    }

    void writesOneLineForEachMessage()
    {
        LogManager::instance().rotateLogs();
        const QMessageLogContext placed("/home/dev/Tessen/common/x.cpp", 12, "f", "vantrel.test");
        const QMessageLogContext bare;
        qt_message_output(QtDebugMsg, placed, QStringLiteral("a debug line"));
        qt_message_output(QtInfoMsg, bare, QStringLiteral("an info line"));
        qt_message_output(QtCriticalMsg, bare, QStringLiteral("a critical line"));
        qInstallMessageHandler(m_watch);
        const QStringList lines = logLines();
        QCOMPARE(lines.size(), 3);
        const QString time = QStringLiteral("^\\d\\d:\\d\\d:\\d\\d\\.\\d{3}:");
        QVERIFY(matches(lines[0],
                        time + QStringLiteral(" \\*D\\* /home/dev/Tessen/common/x.cpp:12 - a debug line$")));
        QVERIFY(matches(lines[1], time + QStringLiteral(" \\*I\\* - an info line$")));
        QVERIFY(matches(lines[2], time + QStringLiteral(" \\*C\\* - a critical line$")));
    }

    void aRunThatNeverEndsStaysWithinItsLimits()
    {
        LogManager& logs = LogManager::instance();
        logs.setSizeLimit(50000);
        logs.setFileSizeLimit(10000);
        logs.rotateLogs();
        const QMessageLogContext bare;
        int number = 0;
        QString first;
        // Names tell files apart by milliseconds: what comes within one is written to the next that opens.
        const bool isSwept = QTest::qWaitFor([&] {
            for (int i = 0; i < 20; ++i)
                qt_message_output(QtInfoMsg, bare, QStringLiteral("%1 ").arg(++number).repeated(50));
            const QStringList names = m_folder.entryList({QStringLiteral("halcyra_log_*.txt")}, QDir::Files);
            if (first.isEmpty())
                first = names.value(0);
            return !first.isEmpty() && !names.contains(first);
        });
        qInstallMessageHandler(m_watch);
        QVERIFY(isSwept);
        const QFileInfoList files = m_folder.entryInfoList(QDir::Files);
        QVERIFY2(folderSize(m_folder) <= 50000, qPrintable(QString::number(folderSize(m_folder))));
        QVERIFY(files.size() >= 4);
        for (const QFileInfo& file : files)
            QVERIFY(file.size() < 11000);
    }

    void aLineFromOutsideStaysOneAndShort()
    {
        LogManager::instance().rotateLogs();
        const QMessageLogContext bare;
        qt_message_output(QtInfoMsg, bare, QStringLiteral("a.mov\n12:00:00.000: *C* - forged"));
        qt_message_output(QtInfoMsg, bare, QString(5000, u'x'));
        for (int i = 0; i < 100; ++i)
            qt_message_output(QtWarningMsg, bare, QStringLiteral("again"));
        qInstallMessageHandler(m_watch);
        const QStringList lines = logLines();
        QCOMPARE(lines.size(), 2 + 10);
        QVERIFY(lines[0].endsWith(QStringLiteral("- a.mov\\n12:00:00.000: *C* - forged")));
        QVERIFY(lines[1].size() < 2100);
    }

    void aRunHasOneFileUntilRotation()
    {
        LogManager::instance().rotateLogs();
        const QMessageLogContext bare;
        qt_message_output(QtInfoMsg, bare, QStringLiteral("first"));
        qt_message_output(QtInfoMsg, bare, QStringLiteral("second"));
        QCOMPARE(m_folder.entryList({QStringLiteral("halcyra_log_*.txt")}).size(), 1);
        LogManager::instance().rotateLogs();
        // A file named within the same millisecond is there already; its line is lost, and the next one tries
        // again.
        const bool second = QTest::qWaitFor([&] {
            qt_message_output(QtInfoMsg, bare, QStringLiteral("third"));
            return m_folder.entryList({QStringLiteral("halcyra_log_*.txt")}).size() == 2;
        });
        qInstallMessageHandler(m_watch);
        QVERIFY(second);
    }

    void packsTheLogsAndAManifest()
    {
        makeFile(QStringLiteral("halcyra_log_one.txt"), 0, 1, QByteArrayLiteral("line one\n"));
        QVERIFY(m_folder.mkpath(QStringLiteral("inner")));
        makeFile(QStringLiteral("inner/Größe.txt"), 0, 1, QByteArrayLiteral("inside"));
        const QTemporaryDir target;
        const QString path = target.filePath(QStringLiteral("diagnostics.zip"));
        QVERIFY(DiagnosticsManager().saveDiagnostics(path));
        const QMap<QString, QByteArray> entries = unzip(path);
        QCOMPARE(entries.keys(),
                 (QStringList{QStringLiteral("halcyra_log_one.txt"), QStringLiteral("inner/Größe.txt"),
                              QStringLiteral("manifest.txt")}));
        QCOMPARE(entries.value(QStringLiteral("halcyra_log_one.txt")), QByteArray("line one\n"));
        const QStringList lines =
            QString::fromUtf8(entries.value(QStringLiteral("manifest.txt"))).split(u'\n');
        const QStringList starts = {QStringLiteral("Timestamp: "),
                                    QStringLiteral("Halcyra GUI application: "),
                                    QStringLiteral("Halcyra GUI version: "),
                                    QStringLiteral("Halcyra GUI dir path: "),
                                    QStringLiteral("System: Linux"),
                                    QStringLiteral("OS: "),
                                    QStringLiteral("Kernel: "),
                                    QStringLiteral("Version: "),
                                    QStringLiteral("Architecture: ")};
        for (qsizetype i = 0; i < starts.size(); ++i)
            QVERIFY2(lines.value(i).startsWith(starts[i]), qPrintable(lines.value(i)));
    }

    void anEmptyFolderStillGivesAManifest()
    {
        const QTemporaryDir target;
        const QString path = target.filePath(QStringLiteral("empty.zip"));
        QVERIFY(DiagnosticsManager().saveDiagnostics(path));
        QCOMPARE(unzip(path).keys(), QStringList{QStringLiteral("manifest.txt")});
    }

    void tellsOfAFailure()
    {
        test::expectWarning(QStringLiteral("Failed to create zip archive:"));
        test::expectWarning(QStringLiteral("Failed to save diagnostics"));
        QVERIFY(!DiagnosticsManager().saveDiagnostics(QStringLiteral("/nowhere/at/all.zip")));
        ErrorDialog* dialog = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets())
            dialog = dialog ? dialog : qobject_cast<ErrorDialog*>(widget);
        QVERIFY(dialog);
        QCOMPARE(dialog->description(), QStringLiteral("Failed to save diagnostics"));
        delete dialog;
    }

private:
    void emptyFolder()
    {
        QVERIFY(QDir(m_folder.path()).removeRecursively());
        QVERIFY(QDir().mkpath(m_folder.path()));
    }

    /// A sparse file, some days old.
    void makeFile(const QString& name, qint64 size, qint64 daysOld, const QByteArray& content = {})
    {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        if (size > 0)
            QVERIFY(file.resize(size));
        file.flush();
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(-daysOld),
                                 QFileDevice::FileModificationTime));
    }

    QStringList logLines() const
    {
        const QStringList names = m_folder.entryList({QStringLiteral("halcyra_log_*.txt")});
        QFile file(m_folder.filePath(names.value(0)));
        if (names.size() != 1 || !file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

    static bool matches(const QString& line, const QString& pattern)
    {
        return QRegularExpression(pattern).match(line).hasMatch();
    }

    QtMessageHandler m_watch = nullptr;
    QDir m_folder;
};

HALCYRA_TEST(LogManagerTest)
#include "logmanager.moc"

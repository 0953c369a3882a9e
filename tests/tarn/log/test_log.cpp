#include "tarn/log/logwriter.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <vector>

using namespace vantrel;
using vantrel::test::LogCapture;

class TestLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsATextFromOutsideOnItsLine_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("plain") << QByteArray("Überblick 1.mov") << QByteArray("Überblick 1.mov");
        QTest::newRow("breaks") << QByteArray("a\r\nwarning\tnet") << QByteArray("a\\r\\nwarning\\tnet");
        QTest::newRow("escape") << QByteArray("\x1b[2J\x7f") << QByteArray("\\x1b[2J\\x7f");
        QTest::newRow("breaks beyond ASCII") << QByteArray("a\u0085b\u2028c\u2029")
                                             << QByteArray("a\\xc2\\x85b\\xe2\\x80\\xa8c\\xe2\\x80\\xa9");
        QTest::newRow("no character") << QByteArray("\xc2 a\xc2") << QByteArray("\xc2 a\xc2");
        QTest::newRow("just fits") << QByteArray(2048, 'a') << QByteArray(2048, 'a');
        QTest::newRow("cut before a character")
            << QByteArray(2047, 'a') + "ü" << QByteArray(2047, 'a') + "...";
        QTest::newRow("cut before an escape") << QByteArray(2047, 'a') + "\n"
                                              << QByteArray(2047, 'a') + "...";
    }
    void keepsATextFromOutsideOnItsLine()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, line);
        const LogCapture log;
        Log::write_fmt(LogLevel::Warning, {}, "m", "%s", text.constData());
        QCOMPARE(log.lines(), QStringList{QStringLiteral("m: ") + QString::fromUtf8(line)});
    }

    void knowsWhereALineComesFrom()
    {
        std::vector<LogLoc> places;
        Log::setSink([&](LogLevel, const LogLoc& from, auto, auto) { places.push_back(from); });
        Log::write(LogLevel::Info, "m", "text");
        Log::write_fmt(LogLevel::Info, {}, "m", "%d", 1);
        [] { Log::write(LogLevel::Info, "m", "text"); }();
        Log::setSink({});
        QCOMPARE(places.size(), std::size_t{3});
        for (const LogLoc& place : places) {
            QCOMPARE(std::string(place.file), "test_log");
            QCOMPARE(std::string(place.function), "knowsWhereALineComesFrom");
            QVERIFY(place.line > 40 && place.line < 100);
        }
    }

    void countsWhatRepeats()
    {
        using namespace std::chrono_literals;
        RepeatLimit limit;
        const RepeatLimit::Clock::time_point start{};
        int written = 0;
        for (int i = 0; i < 1000; ++i)
            written += limit.admits(2, "flood", start + i * 1ms);
        QCOMPARE(written, 10);
        QVERIFY(limit.admits(3, "flood", start + 500ms)); // of another level: another line
        QVERIFY(limit.admits(2, "other", start + 500ms));
        QVERIFY(limit.takeHeld(start + 999ms).empty());
        const auto held = limit.takeHeld(start + 1s);
        QCOMPARE(held.size(), std::size_t{1});
        QCOMPARE(held[0].text(), "990 times more: flood");
        QVERIFY(limit.admits(2, "flood", start + 1s));
        QVERIFY(limit.takeHeld(start + 9s).empty()); // what was not held back is not counted

        written = 0;
        for (int i = 0; i < 1000; ++i) {
            QVERIFY(limit.admits(2, "different " + std::to_string(i), start + 10s));
            written += limit.admits(2, "between them", start + 10s);
        }
        QCOMPARE(written, 10);
    }

    /// However many lines flood at once, each of them is held.
    void countsEachOfManyFloods()
    {
        RepeatLimit limit;
        const RepeatLimit::Clock::time_point start{};
        constexpr int floods = 200;
        int written = 0;
        for (int i = 0; i < 100 * floods; ++i)
            written += limit.admits(2, "flood " + std::to_string(i % floods), start);
        QCOMPARE(written, 10 * floods);
        const auto held = limit.takeHeld(start + std::chrono::seconds(1));
        QCOMPARE(held.size(), std::size_t{floods});
        QCOMPARE(held.back().text(), "90 times more: flood 199");
    }

    /// With more at once than are told apart, those that are not have one limit among them.
    void whatIsNotToldApartIsHeldTogether()
    {
        RepeatLimit limit;
        const RepeatLimit::Clock::time_point start{};
        for (int flood = 0; flood < 3000; ++flood) {
            int written = 0;
            for (int i = 0; i < 20; ++i)
                written += limit.admits(2, std::to_string(flood), start);
            QVERIFY2(written <= 10, qPrintable(QString::number(flood)));
        }
        const auto held = limit.takeHeld(start + std::chrono::seconds(1));
        QVERIFY(held.size() < 2000);
        QVERIFY(held.back().text().ends_with(" times more: other lines, the last of them: 2999"));
        QVERIFY(limit.admits(2, "2999", start + std::chrono::seconds(1)));
    }

    /// Nothing more need be written for it.
    void tellsByItselfWhatWasHeld()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("ombra.log"));
        LogWriter writer(path.toStdString());
        const auto text = [&path] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        for (int round = 1; round <= 2; ++round) {
            for (int i = 0; i < 12; ++i)
                writer.write(LogLevel::Warning, {"file", "f", 7}, "m", "text");
            QTRY_COMPARE(text().count("2 times more: m file:7: text"), round);
        }
    }

    void aFileIsFollowedByTheNext()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("new/ombra.log"));
        LogFile file(path.toStdString(), 100, 3);
        for (int i = 0; i < 50; ++i)
            QVERIFY(file.append("line " + std::to_string(i) + std::string(30, '.')));
        const QDir logs(folder.filePath(QStringLiteral("new")));
        QCOMPARE(logs.entryList(QDir::Files, QDir::Name),
                 (QStringList{QStringLiteral("ombra.log"), QStringLiteral("ombra.log.1"),
                              QStringLiteral("ombra.log.2")}));
        QByteArray all;
        for (const char* name : {"ombra.log.2", "ombra.log.1", "ombra.log"}) {
            QFile part(logs.filePath(QLatin1StringView(name)));
            QVERIFY(part.open(QIODevice::ReadOnly));
            QVERIFY(part.size() <= 100);
            all += part.readAll();
        }
        QCOMPARE(all.count('\n'), 6);
        QVERIFY(all.startsWith("line 44.") && all.contains("line 49."));
        // Goes on where a run before has stopped, and says when nothing is taken.
        QVERIFY(LogFile(path.toStdString(), 100, 3).append("the next run"));
        QVERIFY(logs.exists(QStringLiteral("ombra.log.1")));
        QVERIFY(!LogFile("/dev/full").append("a line"));
        QVERIFY(!LogFile("/proc/no/such.log").append("a line"));
    }

    /// What a server that floods for a year leaves on the disk.
    void aLogTakesFiftyMebibytes()
    {
        constexpr qint64 mebibyte = 1024 * 1024;
        const QTemporaryDir folder;
        LogFile file(folder.filePath(QStringLiteral("ombra.log")).toStdString());
        const std::string line(mebibyte - 1, '.');
        for (int i = 0; i < 65; ++i)
            QVERIFY(file.append(line));
        const QFileInfoList files = QDir(folder.path()).entryInfoList(QDir::Files, QDir::Name);
        QCOMPARE(files.size(), 5);
        QCOMPARE(files.first().size(), 5 * mebibyte);
        for (const QFileInfo& full : files.sliced(1))
            QCOMPARE(full.size(), 10 * mebibyte);
    }

    void linesTellTheTime()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("ombra.log"));
        {
            LogWriter writer(path.toStdString());
            writer.write(LogLevel::Debug, {}, "m", "not for everyone");
            for (int i = 0; i < 12; ++i)
                writer.write(LogLevel::Warning, {"file", "f", 7}, "m", "text");
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 11);
        static const QRegularExpression pattern(
            QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} warning m file:7: text$"));
        QVERIFY2(pattern.match(lines[0]).hasMatch(), qPrintable(lines[0]));
        QVERIFY(lines.last().endsWith(QStringLiteral(" warning 2 times more: m file:7: text")));
    }
};

HALCYRA_TEST(TestLog)
#include "test_log.moc"

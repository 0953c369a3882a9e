#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QTest>

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
};

HALCYRA_TEST(TestLog)
#include "test_log.moc"

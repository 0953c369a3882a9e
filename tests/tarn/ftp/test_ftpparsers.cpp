#include "tarn/ftp/ftpaddress.h"
#include "tarn/ftp/ftplisting.h"
#include "tarn/ftp/ftppath.h"
#include "tarn/ftp/ftpreply.h"
#include "tests/support/testmain.h"

#include <QTest>

using namespace vantrel;

namespace {

constexpr FtpTime now{2026, 3, 1, 12, 0};

/// All of an entry in one line, so that a row says what is expected of it.
QByteArray told(const FtpListEntry& entry)
{
    const FtpTime& t = entry.time;
    const QByteArray kind = entry.isSymLink ? "l" : entry.isDirectory ? "d" : entry.isFile ? "-" : "?";
    return QStringLiteral("%1|%2|%3|%4|%5|%6|%7-%8-%9")
               .arg(QString::fromUtf8(kind), QString::fromStdString(entry.name))
               .arg(entry.size)
               .arg(QString::fromStdString(entry.owner), QString::fromStdString(entry.group))
               .arg(entry.permissions, 0, 8)
               .arg(t.year)
               .arg(t.month)
               .arg(t.day)
               .toUtf8() +
           QStringLiteral(" %1:%2").arg(t.hour).arg(t.minute).toUtf8() + (entry.isReadable ? " r" : " -") +
           (entry.isWritable ? "w" : "-");
}

} // namespace

class TestFtpParsers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replies_data();
    void replies();
    void endlessReply();
    void listing_data();
    void listing();
    void addresses_data();
    void addresses();
    void commands();
};

void TestFtpParsers::replies_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QList<QByteArray>>("replies");
    const auto row = [](const char* name, const char* stream, QList<QByteArray> replies) {
        QTest::newRow(name) << QByteArray(stream) << replies;
    };
    row("one line", "220 ready\r\n", {"220|ready"});
    row("two", "200 a\r\n331 b\r\n", {"200|a", "331|b"});
    row("several lines", "226-Options: -a \r\n226 0 matches total\r\n",
        {"226|Options: -a \r\n0 matches total"});
    row("lines inside", "211-Features:\r\n SIZE\r\n211-REST\r\n 212 no end\r\n211 End\r\n",
        {"211|Features:\r\n SIZE\r\nREST\r\n 212 no end\r\nEnd"});
    row("another code inside", "230-a\r\n331 b\r\n230 c\r\n", {"230|a\r\n331 b\r\nc"});
    row("without text", "200\r\n200 \r\n", {"200|", "200|"});
    row("bare line feeds", "230-a\n230 b\n", {"230|a\nb"});
    row("not ended", "226-a\r\n226 b", {});
    row("rubbish before", "\r\nhello\r\n66 x\r\n960 x\r\n270 x\r\n200 ok\r\n", {"200|ok"});
    row("an umlaut", "257 \"/B\xc3\xbchne\"\r\n", {"257|\"/B\xc3\xbchne\""});
}

void TestFtpParsers::replies()
{
    QFETCH(QByteArray, stream);
    QFETCH(QList<QByteArray>, replies);
    for (const qsizetype piece : {stream.size(), qsizetype(1)}) {
        FtpReplyReader reader;
        QList<QByteArray> found;
        for (qsizetype at = 0; at < stream.size(); at += piece) {
            QVERIFY(reader.feed(stream.mid(at, piece).toStdString()));
            for (FtpReply reply; reader.take(reply);)
                found << QByteArray::number(reply.code) + '|' + QByteArray::fromStdString(reply.text);
        }
        QCOMPARE(found, replies);
    }
}

void TestFtpParsers::endlessReply()
{
    for (const char* const piece : {"211-more and more\r\n", "no line's end "}) {
        FtpReplyReader reader;
        std::size_t fed = 0;
        for (FtpReply reply; reader.feed(piece); fed += std::strlen(piece))
            QVERIFY(!reader.take(reply) && fed <= 2 * FtpReplyReader::maxReply);
        QVERIFY(fed > FtpReplyReader::maxReply / 2);
    }
}

void TestFtpParsers::listing_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("entry"); // empty: it is none
    const auto row = [](const char* name, const QByteArray& line, const char* entry = "") {
        QTest::newRow(name) << line << QByteArray(entry);
    };
    row("file", "-rw-r--r--    1 media    users     1048576 Feb 14 09:05 clip.mov\r\n",
        "-|clip.mov|1048576|media|users|644|2026-2-14 9:5 r-");
    row("folder of last year", "drwxrwxrwx 2 0 0 4096 Dec  3  2019 Show day\r\n",
        "d|Show day|4096|0|0|777|2019-12-3 0:0 rw");
    row("blanks in front of a name", "-rw-rw-rw- 1 a b 1 Jan  1 00:00   two\r\n",
        "-|  two|1|a|b|666|2026-1-1 0:0 rw");
    row("link", "lrwxrwxrwx 1 a b 7 Jan 10 10:10 now -> /x/y\r\n", "l|now|7|a|b|777|2026-1-10 10:10 rw");
    row("arrow in a file's name", "-rw------- 1 a b 7 Jan 10 10:10 a -> b\r\n",
        "-|a -> b|7|a|b|600|2026-1-10 10:10 --");
    row("no group", "-rw-r--r-- 1 owner          12 Jan 10 10:10 x", "-|x|12|owner||644|2026-1-10 10:10 r-");
    row("access list", "drwxr-x---+ 1 a b 0 Jan 10 10:10 x", "d|x|0|a|b|750|2026-1-10 10:10 --");
    row("small month", "-rw-r--r-- 1 a b 5 jan 10 10:10 x", "-|x|5|a|b|644|2026-1-10 10:10 r-");
    row("tomorrow at most", "-rw-r--r-- 1 a b 5 Mar  2 11:59 x", "-|x|5|a|b|644|2026-3-2 11:59 r-");
    row("further ahead is last year", "-rw-r--r-- 1 a b 5 Mar  2 12:01 x", "-|x|5|a|b|644|2025-3-2 12:1 r-");
    row("no such day", "-rw-r--r-- 1 a b 5 Feb 30 10:00 x", "-|x|5|a|b|644|0-0-0 0:0 r-");
    row("years of five digits", "-rw-r--r-- 1 a b 5 Feb  1 12026 x", "-|x|5|a|b|644|0-0-0 0:0 r-");
    row("beyond 4 GiB", "-rw-r--r-- 1 a b 9223372036854775807 Jan 10 10:10 x",
        "-|x|9223372036854775807|a|b|644|2026-1-10 10:10 r-");
    row("too large", "-rw-r--r-- 1 a b 9223372036854775808 Jan 10 10:10 x");
    row("negative", "-rw-r--r-- 1 a b -5 Jan 10 10:10 x");
    row("total", "total 12\r\n");
    row("empty", "");
    row("device", "crw-rw-rw- 1 root root 5 Jan 10 10:10 null");
    row("no name", "-rw-r--r-- 1 a b 5 Jan 10 10:10 ");
    row("name leads elsewhere", "-rw-r--r-- 1 a b 5 Jan 10 10:10 ../../.bashrc");
    row("name with a zero", QByteArray("-rw-r--r-- 1 a b 5 Jan 10 10:10 a\0b", 35));
    row("cut", "-rw-r--r-- 1 a b 5 Jan");
    row("DOS file", "12-31-99  11:59PM              1234 auto.bat\r\n",
        "-|auto.bat|1234|||777|1999-12-31 23:59 rw");
    row("DOS folder", "01-02-2026  12:05AM       <DIR>          Show day\r\n",
        "d|Show day|0|||666|2026-1-2 0:5 r-");
    row("DOS link", "01-02-04  01:00PM  3 x.LNK", "l|x.LNK|3|||666|2004-1-2 13:0 rw");
    row("DOS without two blanks", "01-02-04 01:00PM  3 x");
    row("DOS leads elsewhere", "01-02-04  01:00PM  3 /etc/passwd");
}

void TestFtpParsers::listing()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, entry);
    FtpListEntry out;
    out.name = "before";
    const bool isOne = parseListLine(line.toStdString(), "someone", now, out);
    QCOMPARE(isOne ? told(out) : QByteArray(), entry);
    if (!isOne)
        QCOMPARE(out.name, std::string("before"));
}

void TestFtpParsers::addresses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("passive"); // host and port, empty: none
    QTest::addColumn<int>("extended");
    const auto row = [](const char* name, const char* text, const char* passive, int extended) {
        QTest::newRow(name) << QByteArray(text) << QByteArray(passive) << extended;
    };
    row("passive", "Entering Passive Mode (10,0,0,5,195,80)", "10.0.0.5:50000", 0);
    row("without brackets", "=127,0,0,1,0,21", "127.0.0.1:21", 0);
    row("no byte", "(300,0,0,1,1,1)", "", 0);
    row("huge", "(99999999999,0,0,1,1,1)", "", 0);
    row("port 0", "(127,0,0,1,0,0)", "", 0);
    row("five numbers", "(127,0,0,1,5)", "", 0);
    row("extended", "Extended Passive mode OK (|||50000|)", "", 50000);
    row("another delimiter", "(!!!7!)", "", 7);
    row("with an address", "(|2|::1|80|)", "", 80);
    row("no end", "(|||80", "", 0);
    row("too large", "(|||65536|)", "", 0);
    row("extended 0", "(|||0|)", "", 0);
    row("nothing", "", "", 0);
}

void TestFtpParsers::addresses()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, passive);
    QFETCH(int, extended);
    FtpAddress address;
    const bool isPassive = parsePassiveReply(text.toStdString(), address);
    QCOMPARE(isPassive ? QByteArray::fromStdString(address.host) + ':' + QByteArray::number(address.port)
                       : QByteArray(),
             passive);
    std::uint16_t port = 0;
    QCOMPARE(parseExtendedPassiveReply(text.toStdString(), port) ? int(port) : 0, extended);
}

void TestFtpParsers::commands()
{
    QCOMPARE(quoteListPath("/a b/[x]\\y"), std::string("/a\\ b/\\[x\\]\\\\y"));
    QCOMPARE(portCommand("127.0.0.1", 50000), std::string("PORT 127,0,0,1,195,80\r\n"));
    QCOMPARE(extendedPortCommand("::1", true, 21), std::string("EPRT |2|::1|21|\r\n"));
    QVERIFY(isFtpArgument("/a b") && !isFtpArgument("") && !isFtpArgument("a\r\nDELE b") &&
            !isFtpArgument("a\n") && !isFtpArgument(std::string_view("a\0b", 3)));
}

HALCYRA_TEST(TestFtpParsers)
#include "test_ftpparsers.moc"

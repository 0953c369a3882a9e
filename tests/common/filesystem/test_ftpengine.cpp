#include "common/filesystem/ftp/ftpplacing.h"
#include "common/filesystem/ftp/qftp.h"
#include "tests/common/filesystem/scriptedftp.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace vantrel;
using namespace std::chrono_literals;
using vantrel::test::allowWarnings;
using vantrel::test::expectWarning;
using vantrel::test::ScriptedFtp;

namespace {

/// A session that is logged in to a server of the test's.
struct Session
{
    explicit Session(const QHostAddress& address = QHostAddress::LocalHost)
        : server(address)
    {
        QObject::connect(&ftp, &QFtp::commandFinished, &ftp, [this](int id, bool error) {
            ended[id] = error;
            texts[id] = ftp.errorString();
        });
        ftp.setPatience(400ms);
    }
    bool open()
    {
        ftp.connectToHost(server.host(), server.port());
        return succeeds(ftp.login(QStringLiteral("me"), QStringLiteral("secret")));
    }
    bool ends(int id)
    {
        return QTest::qWaitFor([&] { return ended.contains(id); }, 8000);
    }
    bool succeeds(int id) { return ends(id) && !ended.value(id); }
    bool fails(int id) { return ends(id) && ended.value(id); }

    ScriptedFtp server;
    QFtp ftp;
    QHash<int, bool> ended;
    QHash<int, QString> texts;
};

QByteArray pattern(qsizetype size)
{
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char(i * 7 + i / 251);
    return bytes;
}

} // namespace

class TestFtpEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lines();
    void secondUserIsNotAsked();
    void listing();
    void downloads_data();
    void downloads();
    void uploads();
    void noRoom();
    void uploadCutShort();
    void placesOnlyWhereNothingIs_data();
    void placesOnlyWhereNothingIs();
    void sourceFails();
    void sinkFails();
    void silence_data();
    void silence();
    void onlyThePeer();
    void ipv6();
    void activeMode();
    void greetings_data();
    void greetings();
    void longReply();
    void lineBreaks();
    void abortAnywhere_data();
    void abortAnywhere();
    void abortOfAType();
    void lostConnection();
};

void TestFtpEngine::lines()
{
    Session s;
    QVERIFY(s.open());
    s.server.lines.clear();
    s.server.content = "-rw-r--r-- 1 a b 5 Jan 10 2020 x\r\n";
    QBuffer sink, source;
    sink.open(QIODevice::WriteOnly);
    source.setData("abc");
    s.ftp.list(QStringLiteral("/a b"));
    s.ftp.get(QStringLiteral("/x y"), &sink);
    s.ftp.put(&source, QStringLiteral("/z"));
    s.ftp.rename(QStringLiteral("/z"), QStringLiteral("/q"));
    s.ftp.mkdir(QStringLiteral("/m"));
    s.ftp.rmdir(QStringLiteral("/m"));
    s.ftp.remove(QStringLiteral("/q"));
    s.ftp.cd(QStringLiteral("/"));
    s.ftp.rawCommand(QStringLiteral("SITE x"));
    QVERIFY(s.succeeds(s.ftp.noop()));
    const QList<QByteArray> expected{"CWD /a b",  "TYPE A",  "PASV",      "LIST -a", "TYPE I",
                                     "SIZE /x y", "PASV",    "RETR /x y", "PASV",    "ALLO 3",
                                     "STOR /z",   "RNFR /z", "RNTO /q",   "MKD /m",  "RMD /m",
                                     "DELE /q",   "CWD /",   "SITE x",    "NOOP"};
    QCOMPARE(s.server.lines, expected);
    QCOMPARE(s.server.received, QByteArray("abc"));
    QCOMPARE(sink.data(), s.server.content);
    // The whole queue falls with the one that fails.
    s.server.answers["DELE"] = "550 no\r\n";
    const int bad = s.ftp.remove(QStringLiteral("/q"));
    const int behind = s.ftp.noop();
    QVERIFY(s.fails(bad));
    QCOMPARE(s.texts.value(bad), QStringLiteral("Removing file failed:\nno"));
    QVERIFY(s.succeeds(s.ftp.close()));
    QVERIFY(!s.ended.contains(behind));
    QCOMPARE(s.ftp.state(), QFtp::Unconnected);
}

void TestFtpEngine::secondUserIsNotAsked()
{
    Session s;
    s.server.answers["USER"] = "230 in\r\n";
    QVERIFY(s.open());
    QCOMPARE(s.ftp.state(), QFtp::LoggedIn);
    QCOMPARE(s.server.count("PASS"), 0);
}

void TestFtpEngine::listing()
{
    Session s;
    QVERIFY(s.open());
    s.server.content =
        "total 3\r\ndrwxr-xr-x 2 a b 9 Jan 10 2020 .\r\n-rw-r--r-- 1 a b 5 Jan 10 2020 ../x\r\n" +
        QByteArray(200000, 'x') + "\r\n-rw-r--r-- 1 a b 5 Jan 10 2020 last";
    QSignalSpy infos(&s.ftp, &QFtp::listInfo);
    QVERIFY(s.succeeds(s.ftp.list(QStringLiteral("/"))));
    QCOMPARE(infos.size(), 2);
    QCOMPARE(infos.at(0).at(0).value<QUrlInfo>().name(), QStringLiteral("."));
    QCOMPARE(infos.at(1).at(0).value<QUrlInfo>().name(), QStringLiteral("last"));
    s.server.transferEnd = "226-Options: -a \r\n226 0 matches total\r\n";
    s.server.content.clear();
    const int id = s.ftp.list(QStringLiteral("/none"));
    QVERIFY(s.fails(id));
    QVERIFY(s.texts.value(id).startsWith(QStringLiteral("Listing directory failed:\n")));
    s.server.transferEnd = "226 done\r\n";
    s.server.content = "/none: No such file or directory\r\n";
    QVERIFY(s.fails(s.ftp.list(QStringLiteral("/none"))));
    QVERIFY(s.succeeds(s.ftp.noop()));
}

void TestFtpEngine::downloads_data()
{
    QTest::addColumn<QByteArray>("size"); // answer to SIZE, empty: the usual one
    QTest::addColumn<qint64>("cutAfter");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<bool>("succeeds");
    const qint64 whole = -1;
    QTest::newRow("plain") << QByteArray() << whole << QByteArray("226 done\r\n") << true;
    QTest::newRow("250 at the end") << QByteArray() << whole << QByteArray("250 done\r\n") << true;
    QTest::newRow("no SIZE") << QByteArray("550 no\r\n") << whole << QByteArray("226 done\r\n") << true;
    QTest::newRow("strange SIZE") << QByteArray("213 many\r\n") << whole << QByteArray("226 done\r\n")
                                  << true;
    QTest::newRow("cut, and called done")
        << QByteArray() << qint64(70000) << QByteArray("226 done\r\n") << false;
    QTest::newRow("cut") << QByteArray() << qint64(70000) << QByteArray("426 cut\r\n") << false;
    QTest::newRow("no word at the end") << QByteArray() << whole << QByteArray() << false;
}

void TestFtpEngine::downloads()
{
    QFETCH(QByteArray, size);
    QFETCH(qint64, cutAfter);
    QFETCH(QByteArray, end);
    QFETCH(bool, succeeds);
    Session s;
    QVERIFY(s.open());
    s.server.content = pattern(3'000'000);
    s.server.cutAfter = cutAfter;
    s.server.transferEnd = end;
    if (!size.isEmpty())
        s.server.answers["SIZE"] = size;
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    QSignalSpy progress(&s.ftp, &QFtp::dataTransferProgress);
    const int id = s.ftp.get(QStringLiteral("/x"), &sink);
    QVERIFY(s.ends(id));
    QCOMPARE(s.ended.value(id), !succeeds);
    QCOMPARE(sink.data(), cutAfter < 0 ? s.server.content : s.server.content.left(cutAfter));
    QVERIFY(progress.size() >= 2);
    QCOMPARE(progress.first().at(0).toLongLong(), 0);
    QCOMPARE(progress.first().at(1).toLongLong(), size.isEmpty() ? s.server.content.size() : 0);
    QCOMPARE(progress.last().at(0).toLongLong(), sink.size());
    if (!end.isEmpty())
        QVERIFY(s.succeeds(s.ftp.noop()));
}

void TestFtpEngine::uploads()
{
    Session s;
    QVERIFY(s.open());
    QBuffer source;
    source.setData(pattern(9'000'000));
    QSignalSpy progress(&s.ftp, &QFtp::dataTransferProgress);
    QVERIFY(s.succeeds(s.ftp.put(&source, QStringLiteral("/x"))));
    QVERIFY(s.server.received == source.data());
    QCOMPARE(progress.first(), QVariantList({qint64(0), qint64(9'000'000)}));
    QCOMPARE(progress.last(), QVariantList({qint64(9'000'000), qint64(9'000'000)}));
    // The rest of a file, from where an earlier attempt ended.
    s.server.received.clear();
    source.seek(8'999'990);
    QVERIFY(s.succeeds(s.ftp.put(&source, QStringLiteral("/x"), QFtp::Binary, 8'999'990)));
    QCOMPARE(s.server.received, source.data().right(10));
    QCOMPARE(s.server.count("REST 8999990"), 1);
    QCOMPARE(s.server.count("ALLO 10"), 1); // what is there already needs no room
    for (const QByteArray& bytes : {QByteArray(), pattern(300'000)}) {
        s.server.received.clear();
        QVERIFY(s.succeeds(s.ftp.put(bytes, QStringLiteral("/y"))));
        QCOMPARE(s.server.received, bytes);
    }
}

/// A server that has no room says so before a byte goes; one that knows no such question is not taken at it.
void TestFtpEngine::noRoom()
{
    Session s;
    QVERIFY(s.open());
    QBuffer source;
    source.setData("abc");
    source.open(QIODevice::ReadOnly);
    for (const char* answer : {"500 what?", "502 not here", "202 no need"}) {
        s.server.answers["ALLO"] = answer + QByteArray("\r\n");
        source.seek(0);
        QVERIFY(s.succeeds(s.ftp.put(&source, QStringLiteral("/x"))));
    }
    s.server.answers["ALLO"] = "552 no room for that\r\n";
    const int sent = s.server.count("STOR");
    source.seek(0);
    const int id = s.ftp.put(&source, QStringLiteral("/x"));
    QVERIFY(s.fails(id));
    QCOMPARE(s.texts.value(id), QStringLiteral("Uploading file failed:\nno room for that"));
    QCOMPARE(s.server.count("STOR"), sent);
    QVERIFY(s.succeeds(s.ftp.noop()));
}

void TestFtpEngine::uploadCutShort()
{
    Session s;
    QVERIFY(s.open());
    QBuffer source;
    source.setData(pattern(30'000'000));
    s.server.cutAfter = 100'000; // and yet it says that all is well
    QVERIFY(s.fails(s.ftp.put(&source, QStringLiteral("/x"))));
    QVERIFY(s.succeeds(s.ftp.noop()));
    // What a server has not sent of a download that was given up is not for the file of an upload.
    s.server.cutAfter = -1;
    s.server.leftover = "of another file";
    source.open(QIODevice::ReadOnly);
    source.seek(0);
    const int id = s.ftp.put(&source, QStringLiteral("/x"));
    QVERIFY(s.fails(id));
    QVERIFY2(s.texts.value(id).contains(QStringLiteral("nobody asked for")), qPrintable(s.texts.value(id)));
    QVERIFY(s.succeeds(s.ftp.noop()));
}

namespace {

/// A disk that fails after some bytes.
class BadDisk : public QIODevice
{
public:
    explicit BadDisk(qint64 soundBytes)
        : m_left(soundBytes)
    {
    }
    bool isSequential() const override { return false; }
    qint64 size() const override { return 50'000'000; }

protected:
    qint64 take(qint64 size)
    {
        if (m_left < size) {
            setErrorString(QStringLiteral("the disk broke"));
            return -1;
        }
        m_left -= size;
        return size;
    }
    qint64 readData(char* data, qint64 size) override
    {
        std::fill_n(data, size, 'x');
        return take(size);
    }
    qint64 writeData(const char*, qint64 size) override { return take(size); }

private:
    qint64 m_left;
};

} // namespace

void TestFtpEngine::sourceFails()
{
    Session s;
    QVERIFY(s.open());
    BadDisk disk(5'000'000);
    const int id = s.ftp.put(&disk, QStringLiteral("/x"));
    QVERIFY(s.fails(id));
    QVERIFY2(s.texts.value(id).contains(QStringLiteral("the disk broke")), qPrintable(s.texts.value(id)));
    QVERIFY(s.server.received.size() < 50'000'000);
    QVERIFY(s.succeeds(s.ftp.noop()));
}

void TestFtpEngine::sinkFails()
{
    Session s;
    QVERIFY(s.open());
    s.server.content = pattern(20'000'000);
    BadDisk disk(5'000'000);
    disk.open(QIODevice::WriteOnly);
    const int id = s.ftp.get(QStringLiteral("/x"), &disk);
    QVERIFY(s.fails(id));
    QVERIFY2(s.texts.value(id).contains(QStringLiteral("the disk broke")), qPrintable(s.texts.value(id)));
    QVERIFY(s.succeeds(s.ftp.noop()));
}

void TestFtpEngine::silence_data()
{
    QTest::addColumn<QByteArray>("verb");
    for (const char* verb : {"USER", "PASS", "TYPE", "SIZE", "PASV", "RETR", "NOOP"})
        QTest::newRow(verb) << QByteArray(verb);
}

/// A server that says nothing any more is given up; the session can be begun anew.
void TestFtpEngine::silence()
{
    QFETCH(QByteArray, verb);
    Session s;
    s.server.answers[verb] = "";
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    s.ftp.connectToHost(s.server.host(), s.server.port());
    const int login = s.ftp.login(QStringLiteral("me"), QStringLiteral("secret"));
    const int get = s.ftp.get(QStringLiteral("/x"), &sink);
    const int noop = s.ftp.noop();
    const int id = verb == "USER" || verb == "PASS" ? login : verb == "NOOP" ? noop : get;
    QVERIFY(s.fails(id));
    QVERIFY2(s.texts.value(id).contains(QStringLiteral("did not answer")), qPrintable(s.texts.value(id)));
    QCOMPARE(s.ftp.state(), QFtp::Unconnected);
    s.server.answers.clear();
    QVERIFY(s.open());
}

void TestFtpEngine::onlyThePeer()
{
    Session s;
    QVERIFY(s.open());
    QTcpServer foreign;
    QVERIFY(foreign.listen(QHostAddress(QStringLiteral("127.0.0.2"))));
    const QByteArray port =
        QByteArray::number(foreign.serverPort() / 256) + ',' + QByteArray::number(foreign.serverPort() % 256);
    s.server.answers["PASV"] = "227 there (127,0,0,2," + port + ")\r\n";
    expectWarning(QStringLiteral("another host"));
    QVERIFY(s.fails(s.ftp.list()));
    QVERIFY(!foreign.hasPendingConnections() && !foreign.waitForNewConnection(0));
    for (const char* bad : {"227 nowhere\r\n", "227 (127,0,0,1,0,0)\r\n", "227 (1,2,3,4,5,999)\r\n"}) {
        s.server.answers["PASV"] = bad;
        QVERIFY(s.fails(s.ftp.list()));
    }
    s.server.answers.remove("PASV");
    QVERIFY(s.succeeds(s.ftp.list()));
}

void TestFtpEngine::ipv6()
{
    Session s{QHostAddress(QHostAddress::LocalHostIPv6)};
    QVERIFY(s.open());
    s.server.content = pattern(100'000);
    QBuffer sink;
    sink.open(QIODevice::ReadWrite);
    QVERIFY(s.succeeds(s.ftp.get(QStringLiteral("/x"), &sink)));
    QCOMPARE(sink.data(), s.server.content);
    QCOMPARE(s.server.count("EPSV"), 1);
    // A server that does not know it is asked the other way from then on.
    s.server.answers["EPSV"] = "500 what?\r\n";
    // That can only name an address of IPv4: here the same machine's.
    QVERIFY(s.succeeds(s.ftp.list()));
    QVERIFY(s.succeeds(s.ftp.list()));
    QCOMPARE(s.server.count("EPSV"), 2);
    QCOMPARE(s.server.count("PASV"), 2);
}

void TestFtpEngine::activeMode()
{
    Session s;
    QVERIFY(s.open());
    s.server.answers["PORT"] = "200 ok\r\n";
    s.server.answers["LIST"] = "150 comes\r\n";
    s.ftp.setTransferMode(QFtp::Active);
    QSignalSpy infos(&s.ftp, &QFtp::listInfo);
    const int id = s.ftp.list();
    QVERIFY(QTest::qWaitFor([&] { return s.server.count("LIST") == 1; }));
    const QList<QByteArray> numbers = s.server.lines.at(s.server.lines.size() - 2).mid(5).split(',');
    QTcpSocket data;
    data.connectToHost(s.server.host(), quint16(numbers.at(4).toInt() * 256 + numbers.at(5).toInt()));
    data.write("-rw-r--r-- 1 a b 5 Jan 10 2020 x\r\n");
    QVERIFY(data.waitForBytesWritten());
    data.disconnectFromHost();
    s.server.say("226 done\r\n");
    QVERIFY(s.succeeds(id));
    QCOMPARE(infos.size(), 1);
}

void TestFtpEngine::greetings_data()
{
    QTest::addColumn<QByteArray>("greeting");
    QTest::addColumn<bool>("isWelcome");
    QTest::newRow("at once") << QByteArray("220 hello\r\n") << true;
    QTest::newRow("a word before") << QByteArray("120 wait\r\n220-hello\r\n and\r\n220 welcome\r\n") << true;
    QTest::newRow("full") << QByteArray("421 too many\r\n") << false;
    QTest::newRow("rubbish") << QByteArray("SSH-2.0-x\r\n") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TestFtpEngine::greetings()
{
    QFETCH(QByteArray, greeting);
    QFETCH(bool, isWelcome);
    Session s;
    s.server.greeting = greeting;
    const int id = s.ftp.connectToHost(s.server.host(), s.server.port());
    QVERIFY(isWelcome ? s.succeeds(id) : s.fails(id));
    QCOMPARE(s.ftp.state(), isWelcome ? QFtp::Connected : QFtp::Unconnected);
}

void TestFtpEngine::longReply()
{
    for (const bool hasLines : {true, false}) {
        Session s;
        QVERIFY(s.open());
        QByteArray text(10'000'000, 'x');
        for (qsizetype i = 0; hasLines && i < text.size(); i += 100)
            text[i] = '\n';
        s.server.answers["NOOP"] = "200-" + text + "\r\n200 end\r\n";
        const int id = s.ftp.noop();
        QVERIFY(s.fails(id));
        QVERIFY(s.texts.value(id).contains(QStringLiteral("too long")));
        QCOMPARE(s.ftp.state(), QFtp::Unconnected);
    }
}

/// Nothing in a name becomes a command.
void TestFtpEngine::lineBreaks()
{
    Session s;
    QVERIFY(s.open());
    s.server.lines.clear();
    for (const QString& name : {QStringLiteral("a\r\nDELE b"), QStringLiteral("a\n"), QString()}) {
        QVERIFY(s.fails(s.ftp.remove(name)));
        QVERIFY(s.fails(s.ftp.rename(QStringLiteral("/a"), name)));
    }
    QVERIFY(s.fails(s.ftp.list(QStringLiteral("/a\nb"))));
    QCOMPARE(s.server.lines, QList<QByteArray>());
    QVERIFY(s.succeeds(s.ftp.noop()));
}

void TestFtpEngine::abortAnywhere_data()
{
    QTest::addColumn<QByteArray>("after");  // the line that came last
    QTest::addColumn<QByteArray>("answer"); // to ABOR
    const auto row = [](const char* name, const char* after, const char* answer) {
        QTest::newRow(name) << QByteArray(after) << QByteArray(answer);
    };
    for (const char* verb : {"TYPE", "SIZE", "PASV", "RETR", "STOR", "ALLO", "MKD"}) {
        row(verb, verb, "226 over\r\n");
        row(qPrintable(QStringLiteral("%1, two answers").arg(QLatin1String(verb))), verb,
            "426 cut\r\n226 over\r\n");
    }
    row("RETR, one more 150", "RETR", "150 comes\r\n");
    row("RETR, not known", "RETR", "502 what?\r\n");
    row("STOR, no answer at all", "STOR", "");
}

void TestFtpEngine::placesOnlyWhereNothingIs_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("isPlaced");
    QTest::newRow("nothing there") << QByteArray("550 no such file\r\n") << true;
    QTest::newRow("a file") << QByteArray("213 5\r\n") << false;
    QTest::newRow("too busy to look") << QByteArray("450 try again\r\n") << false;
    QTest::newRow("not allowed to look") << QByteArray("530 log in first\r\n") << false;
}

/// What cannot be asked for may be there, and a rename would put the upload in its place.
void TestFtpEngine::placesOnlyWhereNothingIs()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, isPlaced);
    Session s;
    QVERIFY(s.open());
    QBuffer device;
    device.setData(pattern(300));
    device.open(QIODevice::ReadOnly);
    s.server.answers["SIZE /.part"] = "213 300\r\n";
    s.server.answers["SIZE /a.mov"] = answer;
    QVERIFY(
        s.succeeds(s.ftp.put(&device, QStringLiteral("/.part"), {QStringLiteral("/a.mov"), 300, false, {}})));
    QCOMPARE(s.server.count("RNTO"), isPlaced ? 1 : 0);
    QCOMPARE(s.ftp.outcome().placed, isPlaced ? FtpOutcome::Done : FtpOutcome::No);
}

/// Whatever the server was about to say: the next command has its own answer.
void TestFtpEngine::abortAnywhere()
{
    QFETCH(QByteArray, after);
    QFETCH(QByteArray, answer);
    for (const bool isAnswered : {true, false}) {
        Session s;
        QVERIFY(s.open());
        s.ftp.setPatience(5s);
        s.server.answers["ABOR"] = answer;
        s.server.keepsDataOpen = true;
        s.server.content = pattern(3'000'000);
        s.server.transferEnd.clear();
        if (!isAnswered)
            s.server.answers[after] = "";
        QBuffer device;
        device.setData(pattern(20'000'000));
        device.open(QIODevice::ReadWrite);
        const bool isUpload = after == "STOR" || after == "ALLO";
        const int id = after == "MKD" ? s.ftp.mkdir(QStringLiteral("/m"))
                       : isUpload     ? s.ftp.put(&device, QStringLiteral("/x"))
                                      : s.ftp.get(QStringLiteral("/x"), &device);
        QVERIFY(QTest::qWaitFor([&] { return s.server.count(after) == 1; }));
        s.server.answers.remove(after);
        s.ftp.abort();
        s.ftp.abort();
        if (!isAnswered && after != "RETR" && after != "STOR")
            s.server.say("200 late\r\n");
        QVERIFY(s.ends(id));
        QVERIFY(s.ended.value(id) || after == "MKD");
        s.server.answers["SIZE"] = "213 77\r\n";
        QSignalSpy sizes(&s.ftp, &QFtp::fileSize);
        QVERIFY(s.succeeds(s.ftp.size(QStringLiteral("/x"))));
        QCOMPARE(sizes.first().first().toLongLong(), 77);
    }
}

/// A type that was asked for and never heard of is said again: the server may have taken it.
void TestFtpEngine::abortOfAType()
{
    Session s;
    QVERIFY(s.open());
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    QVERIFY(s.succeeds(s.ftp.get(QStringLiteral("/x"), &sink)));
    s.server.answers["TYPE"] = "";
    const int list = s.ftp.list(QStringLiteral("/"));
    QVERIFY(QTest::qWaitFor([&] { return s.server.lines.contains("TYPE A"); }));
    s.server.answers.remove("TYPE");
    s.ftp.abort();
    s.server.say("200 late\r\n");
    QVERIFY(s.ends(list));
    s.server.lines.clear();
    QVERIFY(s.succeeds(s.ftp.get(QStringLiteral("/x"), &sink)));
    QVERIFY(s.server.lines.contains("TYPE I"));
}

void TestFtpEngine::lostConnection()
{
    allowWarnings(QStringLiteral("Network error occurred"));
    Session s;
    QVERIFY(s.open());
    s.server.content = pattern(1'000'000);
    s.server.keepsDataOpen = true;
    s.server.transferEnd.clear();
    s.ftp.setPatience(5s);
    QBuffer sink;
    sink.open(QIODevice::WriteOnly);
    const int get = s.ftp.get(QStringLiteral("/x"), &sink);
    QVERIFY(QTest::qWaitFor([&] { return s.server.count("RETR") == 1; }));
    s.server.closeControl();
    QVERIFY(s.fails(get));
    QCOMPARE(s.ftp.state(), QFtp::Unconnected);
    QVERIFY(s.fails(s.ftp.noop()));
    QVERIFY(s.open());
}

HALCYRA_TEST(TestFtpEngine)
#include "test_ftpengine.moc"

#include "common/filesystem/ftp/clientcredentials.h"
#include "common/filesystem/ftp/commandrequest.h"
#include "common/filesystem/ftp/ftpclient.h"
#include "tests/common/filesystem/scriptedftp.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>

using namespace vantrel;
using namespace std::chrono_literals;
using vantrel::test::allowWarnings;
using vantrel::test::expectWarning;
using vantrel::test::ScriptedFtp;
using Type = ClientFileSystemType;

class TestFtpClient : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void oneThingAtATime();
    void listsAtOnce();
    void listsNextWhenFree();
    void links();
    void names();
    void comesBack();
    void staysAway();
    void wrongPassword();
    void keepsAlive();
    void listBehindKeepalive();
    void writeBehindKeepalive();
    void abortIsFailure();
    void followUps_data();
    void followUps();
    void presizes();
    void leavesDuringTransfer();
    void requestText();

private:
    bool open();
    bool isListed(const QString& path);
    bool beginsRead(QBuffer* sink);
    QThread* workerOf(QBuffer* device);
    static void awaitTurn(QThread* worker);

    std::unique_ptr<ScriptedFtp> m_server;
    std::unique_ptr<FtpClient> m_client;
};

void TestFtpClient::init()
{
    m_server = std::make_unique<ScriptedFtp>();
    m_client = std::make_unique<FtpClient>();
    m_client->setCredentials({QStringLiteral("me"), QStringLiteral("secret")});
    m_client->setPatience(2000ms);
    m_client->setReconnectUnit(10ms);
}

void TestFtpClient::cleanup()
{
    m_client.reset();
    m_server.reset();
}

bool TestFtpClient::open()
{
    QSignalSpy connected(m_client.get(), &FtpClient::isServerConnectedChanged);
    return m_client->connectToServer(m_server->host(), m_server->port()) &&
           QTest::qWaitFor([&] { return !connected.isEmpty() && connected.last().first().toBool(); });
}

bool TestFtpClient::isListed(const QString& path)
{
    QSignalSpy listed(m_client.get(), &FtpClient::listFinished);
    return m_client->list(path) && QTest::qWaitFor([&] { return !listed.isEmpty(); }) &&
           listed.first().at(2).toBool();
}

/// A download that the server never ends.
bool TestFtpClient::beginsRead(QBuffer* sink)
{
    m_server->content = QByteArray(1'000'000, 'x');
    m_server->keepsDataOpen = true;
    m_server->transferEnd.clear();
    const int before = m_server->count("RETR");
    return (sink->isOpen() || sink->open(QIODevice::WriteOnly)) &&
           m_client->read(QStringLiteral("/x"), sink, 0) &&
           QTest::qWaitFor([&] { return m_server->count("RETR") > before; });
}

/// Where devices are worked with, found out by a download; none when that fails.
QThread* TestFtpClient::workerOf(QBuffer* device)
{
    QSignalSpy read(m_client.get(), &FtpClient::readFinished);
    if (!m_client->read(QStringLiteral("/x"), device, 0))
        return nullptr;
    QThread* const worker = device->thread();
    return QTest::qWaitFor([&] { return !read.isEmpty(); }) ? worker : nullptr;
}

/// What was handed to the worker before has been taken.
void TestFtpClient::awaitTurn(QThread* worker)
{
    QObject there;
    there.moveToThread(worker);
    QMetaObject::invokeMethod(
        &there, [] {}, Qt::BlockingQueuedConnection);
}

void TestFtpClient::oneThingAtATime()
{
    QCOMPARE(m_client->defaultPort(), 21);
    QCOMPARE(m_client->credentials().username, QStringLiteral("me"));
    QVERIFY(!m_client->list(QStringLiteral("/")));
    QVERIFY(m_client->connectToServer(m_server->host(), m_server->port()));
    QVERIFY(m_client->isLoading());
    expectWarning(QStringLiteral("(connection in progress)"));
    QVERIFY(!m_client->connectToServer(m_server->host(), m_server->port()));
    QVERIFY(QTest::qWaitFor([&] { return m_client->isServerConnected() && !m_client->isLoading(); }));
    expectWarning(QStringLiteral("(connection already established)"));
    QVERIFY(!m_client->connectToServer(m_server->host(), m_server->port()));
    QSignalSpy listed(m_client.get(), &FtpClient::listFinished);
    QVERIFY(m_client->list(QStringLiteral("/")));
    QVERIFY(!m_client->list(QStringLiteral("/b")));
    QVERIFY(!m_client->size(QStringLiteral("/b")));
    QVERIFY(QTest::qWaitFor([&] { return !listed.isEmpty(); }));
    QCOMPARE(m_server->count("LIST"), 1);
    expectWarning(QStringLiteral("Unimplemented code."));
    QVERIFY(!m_client->copy(QStringLiteral("/a"), QStringLiteral("/b")));
    QVERIFY(!m_client->remove(QStringLiteral("/unknown")));
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    QVERIFY(m_client->disconnectServer());
    QVERIFY(QTest::qWaitFor([&] { return !connection.isEmpty(); }));
    QCOMPARE(connection.first().first().toBool(), false);
    QVERIFY(!m_client->disconnectServer());
}

/// Who hears that the server is there is not refused.
void TestFtpClient::listsAtOnce()
{
    QSignalSpy listed(m_client.get(), &FtpClient::listFinished);
    bool isStarted = false;
    connect(m_client.get(), &FtpClient::isServerConnectedChanged, this,
            [&](bool isConnected) { isStarted = isConnected && m_client->list(QStringLiteral("/")); });
    QVERIFY(open());
    QVERIFY(isStarted);
    QVERIFY(QTest::qWaitFor([&] { return !listed.isEmpty(); }));
    QVERIFY(listed.first().at(2).toBool());
    QVERIFY(!m_client->isLoading());
    disconnect(m_client.get(), nullptr, this, nullptr);
}

/// Who hears that the client is free and asks for the next takes nothing from whoever has asked before.
void TestFtpClient::listsNextWhenFree()
{
    QVERIFY(open());
    QStringList listed;
    connect(m_client.get(), &FtpClient::listFinished, this,
            [&](const QString& path, const auto&, bool succeeded) {
                listed << path + (succeeded ? QString() : QStringLiteral(" failed"));
            });
    bool isAsked = false;
    connect(m_client.get(), &FtpClient::isLoadingChanged, this, [&](bool isLoading) {
        isAsked = isAsked || (!isLoading && m_client->list(QStringLiteral("/b")));
    });
    QVERIFY(m_client->list(QStringLiteral("/a")));
    QTRY_COMPARE(listed, QStringList({QStringLiteral("/a"), QStringLiteral("/b")}));
    disconnect(m_client.get(), nullptr, this, nullptr);
}

void TestFtpClient::links()
{
    QVERIFY(open());
    const struct
    {
        const char* name;
        Type type;
    } links[] = {{"a.b", Type::File},       {"plain", Type::Directory}, {".hidden", Type::Directory},
                 {"end.", Type::Directory}, {"x.", Type::Directory},    {".a.b", Type::File}};
    for (const auto& link : links)
        m_server->content += QByteArray("lrwxrwxrwx 1 a b 7 Jan 10 2020 ") + link.name + " -> /far/away\r\n";
    m_server->content += "drwxr-xr-x 1 a b 7 Jan 10 2020 folder\r\n-rw-r--r-- 1 a b 7 Jan 10 2020 file\r\n";
    QSignalSpy listed(m_client.get(), &FtpClient::listFinished);
    QVERIFY(isListed(QStringLiteral("/top")));
    const auto entries = listed.first().at(1).value<QList<ClientFileSystemInfo>>();
    QCOMPARE(entries.size(), 8);
    for (qsizetype i = 0; i < qsizetype(std::size(links)); ++i) {
        QCOMPARE(entries.at(i).name, QString::fromUtf8(links[i].name));
        QCOMPARE(entries.at(i).type, links[i].type);
        QVERIFY(entries.at(i).isSymLink);
    }
    QCOMPARE(entries.at(6).path, QStringLiteral("/top/folder/"));
    QCOMPARE(entries.at(7).path, QStringLiteral("/top/file"));
    QCOMPARE(entries.at(7).sizeBytes, 7);
    // A link goes as a name, whatever it leads to; the rest by its kind, with or without the slash.
    QSignalSpy removed(m_client.get(), &FtpClient::removeFinished);
    for (const char* path : {"/top/plain/", "/top/folder", "/top/file"}) {
        removed.clear();
        QVERIFY(m_client->remove(QString::fromUtf8(path)));
        QVERIFY(QTest::qWaitFor([&] { return !removed.isEmpty(); }));
    }
    QCOMPARE(m_server->lines.mid(m_server->lines.size() - 3),
             QList<QByteArray>({"DELE /top/plain", "RMD /top/folder", "DELE /top/file"}));
}

void TestFtpClient::names()
{
    QVERIFY(open());
    QSignalSpy renamed(m_client.get(), &FtpClient::renameFinished);
    QVERIFY(m_client->rename(QStringLiteral("/top/a.mov"), QStringLiteral("b.mov")));
    QVERIFY(QTest::qWaitFor([&] { return !renamed.isEmpty(); }));
    QCOMPARE(renamed.first().first().toString(), QStringLiteral("/top/b.mov"));
    QSignalSpy moved(m_client.get(), &FtpClient::moveFinished);
    m_server->answers["RNTO"] = "553 no\r\n";
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(m_client->move(QStringLiteral("/top/b.mov"), QStringLiteral("/c.mov")));
    QVERIFY(QTest::qWaitFor([&] { return !moved.isEmpty(); }));
    QCOMPARE(moved.first().at(3).toBool(), false);
    QCOMPARE(m_client->lastErrorText(), QStringLiteral("no"));
    const QList<QByteArray> expected{"RNFR /top/a.mov", "RNTO /top/b.mov", "RNFR /top/b.mov", "RNTO /c.mov"};
    QCOMPARE(m_server->lines.mid(m_server->lines.size() - 4), expected);
}

void TestFtpClient::comesBack()
{
    allowWarnings(QStringLiteral("Network error occurred"));
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(open());
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    QSignalSpy listed(m_client.get(), &FtpClient::listFinished);
    m_server->answers["LIST"] = "";
    QVERIFY(m_client->list(QStringLiteral("/")));
    QVERIFY(QTest::qWaitFor([&] { return m_server->count("LIST") == 1; }));
    m_server->closeControl();
    QVERIFY(QTest::qWaitFor([&] { return connection.size() == 2; }));
    QCOMPARE(listed.size(), 1);
    QCOMPARE(listed.first().at(2).toBool(), false);
    QVERIFY(connection.last().first().toBool());
    m_server->answers.clear();
    QVERIFY(isListed(QStringLiteral("/")));
}

void TestFtpClient::staysAway()
{
    allowWarnings(QStringLiteral("Network error occurred"));
    QVERIFY(open());
    m_client->setReconnectUnit(200ms);
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    m_server->closeControl();
    QVERIFY(QTest::qWaitFor([&] { return !connection.isEmpty(); }));
    m_client->disconnectServer();
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!QTest::qWaitFor([&] { return m_server->connections > 1; }, 500));
    QVERIFY(clock.elapsed() >= 400);
    QVERIFY(open());
}

void TestFtpClient::wrongPassword()
{
    allowWarnings(QStringLiteral("Failed FTP command request"));
    m_server->answers["PASS"] = "530 no to PASS secret\r\n";
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    QVERIFY(m_client->connectToServer(m_server->host(), m_server->port()));
    QVERIFY(QTest::qWaitFor([&] { return m_server->connections == 3; }));
    for (const QList<QVariant>& one : connection)
        QVERIFY(!one.first().toBool());
    QCOMPARE(m_client->lastErrorText(), QStringLiteral("Login failed:\nno to PASS ***"));
    m_server->answers.clear();
    QVERIFY(QTest::qWaitFor([&] { return connection.last().first().toBool(); }));
}

void TestFtpClient::keepsAlive()
{
    QVERIFY(open());
    m_client->setKeepaliveInterval(50ms);
    QVERIFY(QTest::qWaitFor([&] { return m_server->count("NOOP") >= 2; }));
    m_server->answers["MKD"] = "";
    QSignalSpy created(m_client.get(), &FtpClient::createFinished);
    QVERIFY(m_client->create(QStringLiteral("/m"), Type::Directory));
    QVERIFY(QTest::qWaitFor([&] { return m_server->count("MKD") == 1; }));
    const int before = m_server->count("NOOP");
    QVERIFY(!QTest::qWaitFor([&] { return m_server->count("NOOP") > before; }, 300));
    m_server->say("257 made\r\n");
    QVERIFY(QTest::qWaitFor([&] { return !created.isEmpty(); }));
    QVERIFY(created.first().at(2).toBool());
}

/// An answer to what the client sent by itself ends nothing else.
void TestFtpClient::listBehindKeepalive()
{
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(open());
    QBuffer device;
    device.open(QIODevice::ReadWrite);
    QThread* const worker = workerOf(&device);
    QVERIFY(worker && worker != thread());
    QSignalSpy listed(m_client.get(), &FtpClient::listFinished);
    for (const char* answer : {"200 ok\r\n", "500 no\r\n"}) {
        listed.clear();
        m_server->answers["NOOP"] = "";
        const int before = m_server->count("NOOP");
        m_client->setKeepaliveInterval(10ms);
        QVERIFY(QTest::qWaitFor([&] { return m_server->count("NOOP") == before + 1; }));
        m_client->setKeepaliveInterval(60s);
        QVERIFY(m_client->list(QStringLiteral("/")));
        awaitTurn(worker); // it has the list behind its own question
        m_server->say(answer);
        QVERIFY(QTest::qWaitFor([&] { return !listed.isEmpty(); }));
        QCOMPARE(listed.first().at(2).toBool(), answer[0] == '2');
        QVERIFY(!m_client->isLoading());
    }
    m_server->answers.clear();
    QVERIFY(isListed(QStringLiteral("/")));
}

/// Of a keepalive that has failed the client hears when it has sent the next command already.
void TestFtpClient::writeBehindKeepalive()
{
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(open());
    QBuffer device;
    device.setData("abc");
    device.open(QIODevice::ReadWrite);
    QThread* const worker = workerOf(&device);
    QVERIFY(worker && worker != thread());
    m_server->answers["NOOP"] = "";
    m_client->setKeepaliveInterval(10ms);
    QVERIFY(QTest::qWaitFor([&] { return m_server->count("NOOP") == 1; }));
    m_client->setKeepaliveInterval(60s);
    m_server->say("500 no\r\n");
    for (int i = 0; i < 10; ++i) // the worker has read what came by then
        awaitTurn(worker);
    QSignalSpy written(m_client.get(), &FtpClient::writeFinished);
    QVERIFY(m_client->write(QStringLiteral("/y"), &device, 0));
    QVERIFY(QTest::qWaitFor([&] { return !written.isEmpty(); }));
    QVERIFY(written.first().at(1).toBool());
    QCOMPARE(device.thread(), thread());
    QCOMPARE(m_server->received, QByteArray("abc"));
}

void TestFtpClient::abortIsFailure()
{
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(open());
    QBuffer sink;
    QSignalSpy read(m_client.get(), &FtpClient::readFinished);
    QVERIFY(beginsRead(&sink));
    m_client->abort();
    QVERIFY(QTest::qWaitFor([&] { return !read.isEmpty(); }));
    QCOMPARE(read.first().at(1).toBool(), false);
    QCOMPARE(sink.thread(), thread());
    m_server->keepsDataOpen = false;
    m_server->transferEnd = "226 done\r\n";
    m_server->content.clear();
    QVERIFY(isListed(QStringLiteral("/")));
}

void TestFtpClient::followUps_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QStringList>("told");
    QTest::newRow("behind one that succeeds") << QString() << QStringList{"began", "/x well", "/y well"};
    QTest::newRow("behind one that fails") << QStringLiteral("fails") << QStringList{"/x badly", "dropped"};
    QTest::newRow("behind one that is given up")
        << QStringLiteral("abort") << QStringList{"dropped", "/x badly"};
    QTest::newRow("not wanted any more") << QStringLiteral("drop") << QStringList{"dropped", "/x well"};
}

/// One transfer may wait behind another one, and begins only where that has succeeded.
void TestFtpClient::followUps()
{
    QFETCH(QString, what);
    QFETCH(QStringList, told);
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(open());
    m_server->content = "abc";
    if (what == u"fails")
        m_server->answers["RETR"] = "550 no\r\n";
    QStringList heard;
    const QObject context;
    connect(m_client.get(), &FtpClient::followUpBegan, &context, [&] { heard << QStringLiteral("began"); });
    connect(m_client.get(), &FtpClient::followUpDropped, &context,
            [&] { heard << QStringLiteral("dropped"); });
    connect(m_client.get(), &FtpClient::readFinished, &context, [&](const QString& path, bool isWell) {
        heard << path + (isWell ? QStringLiteral(" well") : QStringLiteral(" badly"));
    });
    QBuffer first, second;
    QVERIFY(first.open(QIODevice::WriteOnly) && second.open(QIODevice::WriteOnly));
    QVERIFY(!m_client->takeFollowUp());
    QVERIFY(m_client->read(QStringLiteral("/x"), &first, 0));
    QVERIFY(m_client->takeFollowUp());
    QVERIFY(m_client->read(QStringLiteral("/y"), &second, 0));
    QVERIFY(!m_client->takeFollowUp());
    if (what == u"abort")
        m_client->abort();
    else if (what == u"drop")
        m_client->dropFollowUp();
    QVERIFY(QTest::qWaitFor([&] { return heard.size() == told.size() && !m_client->isLoading(); }));
    QCOMPARE(heard, told);
    QVERIFY(first.thread() == thread() && second.thread() == thread());
    QCOMPARE(second.data(), told.constLast() == u"/y well" ? QByteArray("abc") : QByteArray());
    m_server->content.clear();
    QVERIFY(isListed(QStringLiteral("/")));
}

/// A download has its whole size from the start; what never came is not left behind.
void TestFtpClient::presizes()
{
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(open());
    QTemporaryFile sink;
    QVERIFY(sink.open());
    m_server->content = QByteArray(1'000'000, 'x');
    m_server->cutAfter = 300'000;
    qint64 firstSize = -1;
    connect(m_client.get(), &FtpClient::readProgressed, this, [&] {
        if (firstSize < 0)
            firstSize = QFileInfo(sink.fileName()).size();
    });
    QSignalSpy read(m_client.get(), &FtpClient::readFinished);
    m_server->answers["RETR"] = "150 slowly\r\n";
    QVERIFY(m_client->read(QStringLiteral("/x"), &sink, 0));
    QVERIFY(QTest::qWaitFor([&] { return !read.isEmpty(); }));
    QVERIFY(firstSize == 1'000'000 ||
            firstSize == 300'000); // the end may be there before the first word is heard
    QCOMPARE(read.first().at(1).toBool(), false);
    QCOMPARE(QFileInfo(sink.fileName()).size(), 300'000);
    // The rest, with what is there left alone.
    m_server->cutAfter = -1;
    m_server->answers["SIZE"] = "213 1000000\r\n";
    m_server->content = QByteArray(700'000, 'y');
    read.clear();
    QVERIFY(m_client->resumeRead(QStringLiteral("/x"), &sink, 300'000));
    QVERIFY(QTest::qWaitFor([&] { return !read.isEmpty(); }));
    QCOMPARE(read.first().at(1).toBool(), true);
    QCOMPARE(m_server->count("REST 300000"), 1);
    sink.seek(0);
    const QByteArray whole = sink.readAll();
    QVERIFY(whole == QByteArray(300'000, 'x') + QByteArray(700'000, 'y'));
    disconnect(m_client.get(), nullptr, this, nullptr);
}

void TestFtpClient::leavesDuringTransfer()
{
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(open());
    QBuffer sink;
    QSignalSpy read(m_client.get(), &FtpClient::readFinished);
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    QVERIFY(beginsRead(&sink));
    QVERIFY(m_client->disconnectServer());
    QVERIFY(QTest::qWaitFor([&] { return !connection.isEmpty() && !read.isEmpty(); }));
    QCOMPARE(read.first().at(1).toBool(), false);
    QCOMPARE(m_server->count("QUIT"), 1);
    QVERIFY(!m_client->isLoading());
    // A session that is back before the end is through finds its files again.
    QVERIFY(open());
    QVERIFY(beginsRead(&sink));
    QVERIFY(m_client->disconnectServer());
    QVERIFY(open());
    // And one that is back before there was anything to leave.
    QVERIFY(m_client->disconnectServer());
    QVERIFY(QTest::qWaitFor([&] { return m_server->count("QUIT") == 3; }));
    QVERIFY(QTest::qWaitFor([&] { return !m_client->isLoading(); }));
    QVERIFY(m_client->connectToServer(m_server->host(), m_server->port()));
    QVERIFY(m_client->disconnectServer());
    QVERIFY(open());
}

void TestFtpClient::requestText()
{
    QString text;
    QDebug(&text) << CommandRequest{QFtp::Put, 7, {QStringLiteral("/a"), true}, true};
    QCOMPARE(text.trimmed(), QStringLiteral("Put - ID: 7, parameters: [/a, true] ABORTED"));
    text.clear();
    QDebug(&text) << CommandRequest{static_cast<QFtp::Command>(99), 1, {}, false};
    QCOMPARE(text.trimmed(), QStringLiteral("*invalid* - ID: 1, parameters: []"));
}

HALCYRA_TEST(TestFtpClient)
#include "test_ftpclient.moc"

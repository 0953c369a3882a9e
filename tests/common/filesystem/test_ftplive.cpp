#include "common/filesystem/ftp/clientcredentials.h"
#include "common/filesystem/ftp/ftpclient.h"
#include "tests/support/ftpdaemon.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QTimer>

#include <array>
#include <csignal>
#include <memory>
#include <unistd.h>

using namespace vantrel;
using namespace std::chrono_literals;
using vantrel::test::allowWarnings;
using vantrel::test::FtpDaemon;
using vantrel::test::OmbraProcess;
using Make = FtpDaemon::Make;
using Type = ClientFileSystemType;

/// The client against servers as they are, with a look at the bytes on the disk.
class TestFtpLive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void roundTrip_data() { servers(); }
    void roundTrip();
    void filesChange_data() { servers(); }
    void filesChange();
    void hugeFiles_data() { servers(); }
    void hugeFiles();
    void manyFiles_data() { servers(); }
    void manyFiles();
    void abortStorm_data() { servers(); }
    void abortStorm();
    void wrongPassword_data() { servers(); }
    void wrongPassword();
    void overIpv6_data();
    void overIpv6();
    void serverComesBack();
    void serverEndsWithOmbra();
    void sweepsWhatUploadsLeft();
    void ombraTellsChecksums();
    void passwordStaysSecret();
    void givenUpIsNotSentLater();

private:
    static void servers();
    static QByteArray noise();
    quint16 prepareServer(const QString& password);
    bool useServer();
    bool connectTo(const QString& host, quint16 port);
    bool isThere() const;
    template <typename Signal, typename Start>
    bool run(Signal signal, Start start, int succeededAt);
    bool list(const QString& path, QStringList* names = nullptr);
    bool put(const QString& path, const QByteArray& bytes, qint64 offset = 0);
    bool get(const QString& path, QByteArray* bytes, qint64 offset = 0);
    static qint64 fileServerOf(qint64 parent);

    OmbraProcess m_ombra;
    std::array<FtpDaemon, 3> m_others{FtpDaemon(Make::Pure), FtpDaemon(Make::Pro), FtpDaemon(Make::Vs)};
    QString m_folder;
    std::unique_ptr<FtpClient> m_client;
    QList<QVariant> m_last; // of the signal that run() waited for
};

void TestFtpLive::initTestCase()
{
    if (!OmbraProcess::isAvailable())
        QSKIP("no ombra was built");
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY(m_ombra.ports().ftp != 0);
    for (FtpDaemon& other : m_others)
        QVERIFY(!other.isAvailable() || other.start());
}

void TestFtpLive::init()
{
    m_client = std::make_unique<FtpClient>();
    m_client->setCredentials({QStringLiteral("opsadmin"), QStringLiteral("tnempius")});
    m_client->setReconnectUnit(10ms);
}

void TestFtpLive::cleanup()
{
    m_client.reset();
    if (!m_folder.isEmpty())
        QDir(m_folder).removeRecursively();
}

void TestFtpLive::cleanupTestCase()
{
    m_ombra.stop();
}

void TestFtpLive::servers()
{
    QTest::addColumn<int>("other");
    QTest::newRow("ombra") << -1;
    QTest::newRow("pure-ftpd") << 0;
    QTest::newRow("proftpd") << 1;
    QTest::newRow("vsftpd") << 2;
}

/// False for a server that is not unpacked (./test does), or that cannot run without root.
bool TestFtpLive::isThere() const
{
    QFETCH(int, other);
    return other < 0 || m_others.at(size_t(other)).port() != 0;
}

bool TestFtpLive::connectTo(const QString& host, quint16 port)
{
    QSignalSpy connected(m_client.get(), &FtpClient::isServerConnectedChanged);
    return m_client->connectToServer(host, port) &&
           QTest::qWaitFor([&] { return !connected.isEmpty() && connected.last().first().toBool(); }, 15000);
}

/// Each test works in a folder of its own. Returns the server's port, 0 when the folder cannot be made.
quint16 TestFtpLive::prepareServer(const QString& password)
{
    QFETCH(int, other);
    const FtpDaemon* server = other < 0 ? nullptr : &m_others.at(size_t(other));
    m_folder = (server ? server->folder() : m_ombra.mediaFolder()) + QStringLiteral("/t");
    m_client->setCredentials({server ? server->user() : QStringLiteral("opsadmin"), password});
    if (!(server ? FtpDaemon::makeFolder(m_folder) : QDir().mkpath(m_folder)))
        return 0;
    return server ? server->port() : m_ombra.ports().ftp;
}

bool TestFtpLive::useServer()
{
    return connectTo(QStringLiteral("127.0.0.1"), prepareServer(QStringLiteral("tnempius")));
}

/// Starts something and waits for its signal; true when it succeeded.
template <typename Signal, typename Start>
bool TestFtpLive::run(Signal signal, Start start, int succeededAt)
{
    QSignalSpy spy(m_client.get(), signal);
    if (!start() || !QTest::qWaitFor([&] { return !spy.isEmpty(); }, 30000))
        return false;
    m_last = spy.first();
    return m_last.at(succeededAt).toBool();
}

bool TestFtpLive::list(const QString& path, QStringList* names)
{
    const bool isDone = run(
        &FtpClient::listFinished, [&] { return m_client->list(path); }, 2);
    if (names) {
        names->clear();
        for (const auto& entry : m_last.at(1).value<QList<ClientFileSystemInfo>>()) {
            if (entry.name != QLatin1String(".") && entry.name != QLatin1String(".."))
                *names << entry.name;
        }
        names->sort();
    }
    return isDone;
}

bool TestFtpLive::put(const QString& path, const QByteArray& bytes, qint64 offset)
{
    QBuffer source;
    source.setData(bytes);
    source.open(QIODevice::ReadOnly);
    return run(
        &FtpClient::writeFinished,
        [&] {
            return offset ? m_client->resumeWrite(path, &source, offset) : m_client->write(path, &source, 0);
        },
        1);
}

bool TestFtpLive::get(const QString& path, QByteArray* bytes, qint64 offset)
{
    QBuffer sink(bytes);
    sink.open(QIODevice::ReadWrite);
    return run(
        &FtpClient::readFinished,
        [&] { return offset ? m_client->resumeRead(path, &sink, offset) : m_client->read(path, &sink, 0); },
        1);
}

QByteArray TestFtpLive::noise()
{
    QByteArray bytes(2'500'000, '\0');
    QRandomGenerator random(7);
    random.fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
    return bytes;
}

void TestFtpLive::roundTrip()
{
    QFETCH(int, other);
    if (!isThere())
        QSKIP("this server is not unpacked (./test does), or this is not root");
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(useServer());
    QStringList names{QStringLiteral("plain.mov"),
                      QStringLiteral("two words.mov"),
                      QStringLiteral("[1] x.mov"),
                      QStringLiteral("Bühne ünten.mov"),
                      QStringLiteral("a -> b.mov"),
                      QStringLiteral("star *?.mov"),
                      QStringLiteral("quote \"'.mov"),
                      QStringLiteral(".hidden.mov"),
                      QStringLiteral("100%41 %s.mov"),
                      QStringLiteral("  blanks before.mov"),
                      QStringLiteral("{a,b} ~$.mov"),
                      QStringLiteral("\u8f38\U0001f3ac\u0301.mov"),
                      QString(125, QChar(0xfc)) + QStringLiteral("x.mov")};
    if (other != 0) // pure-ftpd knows neither
        names << QStringLiteral("back\\slash.mov") << QStringLiteral("  both ends.mov  ");
    names.sort();
    const QByteArray bytes = noise();
    for (const QString& name : std::as_const(names)) {
        const QString path = QStringLiteral("/t/") + name;
        QVERIFY2(put(path, bytes), qPrintable(name + m_client->lastErrorText()));
        QFile onDisk(m_folder + QLatin1Char('/') + name);
        QVERIFY2(onDisk.open(QIODevice::ReadOnly) && onDisk.readAll() == bytes, qPrintable(name));
        QByteArray back;
        QVERIFY(get(path, &back) && back == bytes);
        QString folder = QString(path).replace(QLatin1String("mov"), QLatin1String("[d]"));
        if (other == 1)
            folder.remove(QLatin1Char('*')); // proftpd has files with a star, but no folders
        QVERIFY(run(
            &FtpClient::createFinished, [&] { return m_client->create(folder, Type::Directory); }, 2));
        const QString file = folder + QStringLiteral("/in.mov");
        QVERIFY(put(file, "in"));
        QStringList inside;
        QVERIFY(list(folder + QLatin1Char('/'), &inside));
        QCOMPARE(inside, QStringList{QStringLiteral("in.mov")});
        QVERIFY(run(
            &FtpClient::removeFinished, [&] { return m_client->remove(file); }, 2));
        QVERIFY(run(
            &FtpClient::removeFinished, [&] { return m_client->remove(folder + QLatin1Char('/')); }, 2));
    }
    QStringList found;
    QVERIFY(list(QStringLiteral("/t/"), &found));
    QCOMPARE(found, names);
    QVERIFY(!list(QStringLiteral("/t/none/")));
}

void TestFtpLive::filesChange()
{
    QFETCH(int, other);
    if (!isThere())
        QSKIP("this server is not unpacked (./test does), or this is not root");
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(useServer());
    const QByteArray bytes = noise();
    QVERIFY(put(QStringLiteral("/t/plain.mov"), bytes));

    // A transfer that goes on where an earlier one ended.
    QFile half(m_folder + QStringLiteral("/plain.mov"));
    QVERIFY(half.resize(1'000'000));
    QVERIFY(run(
        &FtpClient::sizeFinished, [&] { return m_client->size(QStringLiteral("/t/plain.mov")); }, 2));
    QCOMPARE(m_last.at(1).toLongLong(), 1'000'000);
    QVERIFY(put(QStringLiteral("/t/plain.mov"), bytes, 1'000'000));
    QVERIFY(half.open(QIODevice::ReadOnly) && half.readAll() == bytes);
    QByteArray begun = bytes.left(1'200'000);
    QVERIFY(get(QStringLiteral("/t/plain.mov"), &begun, 1'200'000) && begun == bytes);
    QVERIFY(put(QStringLiteral("/t/empty.mov"), QByteArray()));
    QByteArray none;
    QVERIFY(get(QStringLiteral("/t/empty.mov"), &none) && none.isEmpty());
    QCOMPARE(QFileInfo(m_folder + QStringLiteral("/empty.mov")).size(), 0);

    // A finished upload takes the place of what was there, which ombra wants out of the way first.
    QVERIFY(put(QStringLiteral("/t/.new.part"), "new"));
    const QString target = QStringLiteral("/t/plain.mov");
    const auto move = [this](const QString& from, const QString& to) {
        return run(
            &FtpClient::moveFinished, [&] { return m_client->move(from, to); }, 3);
    };
    if (other < 0) {
        QVERIFY(!move(QStringLiteral("/t/.new.part"), target));
        QVERIFY(move(target, QStringLiteral("/t/.old")));
    }
    QVERIFY(move(QStringLiteral("/t/.new.part"), target));
    QByteArray now;
    QVERIFY(get(target, &now));
    QCOMPARE(now, QByteArray("new"));
    QVERIFY(run(
        &FtpClient::renameFinished, [&] { return m_client->rename(target, QStringLiteral("n.mov")); }, 2));
    QVERIFY(QFile::exists(m_folder + QStringLiteral("/n.mov")));
    QVERIFY(run(
        &FtpClient::removeFinished, [&] { return m_client->remove(QStringLiteral("/t/n.mov")); }, 2));
    QVERIFY(!QFile::exists(m_folder + QStringLiteral("/n.mov")));
    QByteArray nothing;
    QVERIFY(!get(target, &nothing));
    QVERIFY(m_client->lastErrorText().startsWith(QStringLiteral("Downloading file failed:\n")));
    QVERIFY(!m_client->isLoading());
}

/// Their bytes are more than 32 bits count; only the end of them is sent.
void TestFtpLive::hugeFiles()
{
    if (!isThere())
        QSKIP("this server is not unpacked (./test does), or this is not root");
    QVERIFY(useServer());
    constexpr qint64 size = 5LL << 30;
    constexpr qint64 begun = size - (1 << 20);
    const QByteArray end = noise().first(size - begun);
    const QTemporaryDir desk;
    const QString path = QStringLiteral("/t/huge.mov");
    QFile source(desk.filePath(QStringLiteral("huge.mov")));
    QVERIFY(source.open(QIODevice::ReadWrite) && source.seek(begun) && source.write(end) == end.size());
    QFile there(m_folder + QStringLiteral("/huge.mov"));
    QVERIFY(there.open(QIODevice::WriteOnly) && there.resize(begun));
    QFETCH(int, other);
    QVERIFY(other < 0 || ::chown(QFile::encodeName(there.fileName()).constData(), 1, 1) == 0);
    QVERIFY(run(
        &FtpClient::writeFinished, [&] { return m_client->resumeWrite(path, &source, begun); }, 1));
    QVERIFY(run(
        &FtpClient::sizeFinished, [&] { return m_client->size(path); }, 2));
    QCOMPARE(m_last.at(1).toLongLong(), size);
    QVERIFY(list(QStringLiteral("/t")));
    for (const auto& entry : m_last.at(1).value<QList<ClientFileSystemInfo>>())
        QVERIFY(entry.type != Type::File || entry.sizeBytes == size);
    QFile back(desk.filePath(QStringLiteral("back.mov")));
    QVERIFY(back.open(QIODevice::ReadWrite) && back.resize(begun));
    QVERIFY(run(
        &FtpClient::readFinished, [&] { return m_client->resumeRead(path, &back, begun); }, 1));
    QCOMPARE(back.size(), size);
    QVERIFY(back.seek(begun) && back.readAll() == end);
}

void TestFtpLive::manyFiles()
{
    if (!isThere())
        QSKIP("this server is not unpacked (./test does), or this is not root");
    QVERIFY(useServer());
    for (int i = 0; i < 1500; ++i) {
        QFile file(m_folder + QStringLiteral("/frame %1.png").arg(i, 5, 10, QLatin1Char('0')));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(i % 100, 'x'));
    }
    QVERIFY(list(QStringLiteral("/t")));
    int files = 0;
    for (const auto& entry : m_last.at(1).value<QList<ClientFileSystemInfo>>()) {
        if (entry.type != Type::File)
            continue;
        ++files;
        QCOMPARE(entry.sizeBytes, entry.name.mid(6, 5).toInt() % 100);
    }
    QCOMPARE(files, 1500);
}

/// Whenever an operator stops something, the next thing works on the same connection. HALCYRA_ABORT_ROUNDS
/// sets how often.
void TestFtpLive::abortStorm()
{
    if (!isThere())
        QSKIP("this server is not unpacked (./test does), or this is not root");
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(useServer());
    const QByteArray large(40'000'000, 'x');
    QVERIFY(put(QStringLiteral("/t/large.mov"), large));
    QRandomGenerator random(20261125);
    const int wanted = qEnvironmentVariableIntValue("HALCYRA_ABORT_ROUNDS");
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    int cut = 0;
    for (int round = 0; round < (wanted > 0 ? wanted : 60); ++round) {
        QTimer moment;
        moment.setSingleShot(true);
        connect(&moment, &QTimer::timeout, m_client.get(), [&] { m_client->abort(); });
        moment.start(int(random.bounded(25)));
        QByteArray back;
        const auto size = [&] { return m_client->size(QStringLiteral("/t/large.mov")); };
        const bool isDone = round % 4 == 0   ? get(QStringLiteral("/t/large.mov"), &back)
                            : round % 4 == 1 ? put(QStringLiteral("/t/other.mov"), large)
                            : round % 4 == 2 ? list(QStringLiteral("/t"))
                                             : run(&FtpClient::sizeFinished, size, 2);
        moment.stop();
        cut += isDone ? 0 : 1;
        QVERIFY(round % 4 != 0 || !isDone || back == large);
        for (int i = 0; i < 2; ++i) {
            QVERIFY2(run(&FtpClient::sizeFinished, size, 2),
                     qPrintable(QStringLiteral("round %1: ").arg(round) + m_client->lastErrorText()));
            QCOMPARE(m_last.at(1).toLongLong(), large.size());
        }
    }
    QVERIFY(cut > 10);
    QCOMPARE(connection.size(), 0);
}

void TestFtpLive::wrongPassword()
{
    if (!isThere())
        QSKIP("this server is not unpacked (./test does), or this is not root");
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    QVERIFY(m_client->connectToServer(QStringLiteral("127.0.0.1"), prepareServer(QStringLiteral("wrong"))));
    QVERIFY(QTest::qWaitFor(
        [&] { return m_client->lastErrorText().startsWith(QStringLiteral("Login failed:\n")); }, 15000));
    QVERIFY(!connection.contains(QList<QVariant>{true}));
}

void TestFtpLive::overIpv6_data()
{
    QTest::addColumn<Make>("make");
    QTest::newRow("pure-ftpd") << Make::Pure;
    QTest::newRow("proftpd") << Make::Pro;
    QTest::newRow("vsftpd") << Make::Vs;
}

void TestFtpLive::overIpv6()
{
    QFETCH(Make, make);
    FtpDaemon server(make, QHostAddress::LocalHostIPv6);
    if (!server.isAvailable() || !QTcpServer().listen(QHostAddress::LocalHostIPv6))
        QSKIP("this server is not unpacked (./test does), this is not root, or it has no IPv6");
    QVERIFY(server.start());
    QVERIFY(FtpDaemon::makeFolder(server.folder() + QStringLiteral("/t")));
    m_client->setCredentials({server.user(), QStringLiteral("tnempius")});
    QVERIFY(connectTo(QStringLiteral("::1"), server.port()));
    const QByteArray bytes(300'000, 'x');
    QVERIFY(put(QStringLiteral("/t/a b.mov"), bytes));
    QByteArray back;
    QVERIFY(get(QStringLiteral("/t/a b.mov"), &back) && back == bytes);
    QStringList names;
    QVERIFY(list(QStringLiteral("/t/"), &names));
    QCOMPARE(names, QStringList{QStringLiteral("a b.mov")});
}

/// The process of the file server that has this parent; 0 when there is none.
qint64 TestFtpLive::fileServerOf(qint64 parent)
{
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& number : processes) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(number));
        if (number.toLongLong() == 0 || !stat.open(QIODevice::ReadOnly))
            continue;
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        if (fields.value(1).toLongLong() == parent && fields.value(0) != "Z")
            return number.toLongLong();
    }
    return 0;
}

void TestFtpLive::serverComesBack()
{
    allowWarnings(QStringLiteral("Network error occurred"));
    allowWarnings(QStringLiteral("Failed FTP command request"));
    QVERIFY(connectTo(QStringLiteral("127.0.0.1"), m_ombra.ports().ftp));
    QSignalSpy connection(m_client.get(), &FtpClient::isServerConnectedChanged);
    const qint64 before = fileServerOf(m_ombra.processId());
    QVERIFY(before > 0);
    ::kill(pid_t(before), SIGKILL);
    QVERIFY(
        QTest::qWaitFor([&] { return connection.size() >= 2 && connection.last().first().toBool(); }, 15000));
    const qint64 after = fileServerOf(m_ombra.processId());
    QVERIFY(after > 0 && after != before);
    QVERIFY(list(QStringLiteral("/")));
}

void TestFtpLive::serverEndsWithOmbra()
{
    OmbraProcess ombra;
    QVERIFY(ombra.start());
    const qint64 child = fileServerOf(ombra.processId());
    QVERIFY(child > 0);
    ombra.kill();
    const QString process = QStringLiteral("/proc/%1/exe").arg(child);
    QVERIFY(QTest::qWaitFor(
        [&] { return !QFileInfo(process).isSymLink() || QFile::symLinkTarget(process).isEmpty(); }, 5000));
}

/// Of ours, once nobody has come back for a day to go on with them; nothing else.
void TestFtpLive::sweepsWhatUploadsLeft()
{
    OmbraProcess ombra;
    const QTemporaryDir media;
    const QString left = QStringLiteral(".halcyra-0123456789abcdef.part");
    const QString fresh = QStringLiteral("new/") + left;
    const QString old = QStringLiteral("show/") + left;
    const QStringList kept{QStringLiteral("show/.other.part"), QStringLiteral("show/a.mov"), fresh};
    for (const char* folder : {"show", "new"})
        QVERIFY(QDir(media.path()).mkpath(QString::fromLatin1(folder)));
    for (const QString& name : kept + QStringList{old}) {
        QFile file(media.filePath(name));
        const QDateTime time = QDateTime::currentDateTime().addDays(name == fresh ? 0 : -2);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.setFileTime(time, QFileDevice::FileModificationTime));
    }
    ombra.setMediaFolder(media.path());
    QVERIFY2(ombra.start(), ombra.output().constData());
    QTRY_VERIFY(!QFile::exists(media.filePath(old)));
    for (const QString& name : kept)
        QVERIFY2(QFile::exists(media.filePath(name)), qPrintable(name));
}

/// Only what is the same on both sides may be called verified.
void TestFtpLive::ombraTellsChecksums()
{
    m_folder = m_ombra.mediaFolder() + QStringLiteral("/t");
    QVERIFY(QDir().mkpath(m_folder));
    QVERIFY(connectTo(QStringLiteral("127.0.0.1"), m_ombra.ports().ftp));
    const QString name = QStringLiteral("a \"b\".mov");
    const QString path = QStringLiteral("/t/") + name;
    QByteArray bytes = noise().repeated(12); // more than is checked in one go
    QBuffer source(&bytes);
    source.open(QIODevice::ReadOnly);
    QVERIFY(run(
        &FtpClient::writeFinished,
        [&] {
            return m_client->writeAndPlace(QStringLiteral("/t/.a.part"), &source,
                                           {path, bytes.size(), false, {}});
        },
        1));
    QCOMPARE(m_client->lastOutcome().placed, FtpOutcome::Done);
    QCOMPARE(m_client->lastOutcome().check, FtpOutcome::Same);
    QByteArray back;
    QVERIFY(get(path, &back) && back == bytes);
    QCOMPARE(m_client->lastOutcome().check, FtpOutcome::Same);

    // The file changes behind what has been read of it.
    QFile onDisk(m_folder + u'/' + name);
    QVERIFY(onDisk.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    connect(m_client.get(), &FtpClient::readProgressed, m_client.get(),
            [&](const QString&, qint64 done, qint64) {
                if (done > 0 && onDisk.seek(0))
                    onDisk.write(QByteArray(1, char(~bytes.at(0))));
            });
    m_client->setRateLimit(100'000'000);
    QVERIFY(get(path, &back));
    QCOMPARE(m_client->lastOutcome().check, FtpOutcome::Different);
}

void TestFtpLive::passwordStaysSecret()
{
    const qint64 child = fileServerOf(m_ombra.processId());
    for (const qint64 process : {child, m_ombra.processId()}) {
        for (const char* what : {"cmdline", "environ"}) {
            QFile file(QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(what)));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY(!file.readAll().contains("tnempius"));
        }
    }
    QVERIFY(!m_ombra.output().contains("tnempius"));
}

/// A download that was given up before its data connection was there does not come over the next one.
void TestFtpLive::givenUpIsNotSentLater()
{
    QFile old(m_ombra.mediaFolder() + QStringLiteral("/old.mov"));
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("of another file") > 0);
    old.close();
    QTcpSocket control;
    control.connectToHost(QHostAddress::LocalHost, m_ombra.ports().ftp);
    const auto answerTo = [&control](const char* line) {
        control.write(line + QByteArray("\r\n"));
        const bool isThere = QTest::qWaitFor([&] { return control.canReadLine(); });
        return isThere ? control.readLine() : QByteArray();
    };
    QVERIFY(QTest::qWaitFor([&] { return control.canReadLine(); }));
    QVERIFY(control.readLine().startsWith("220"));
    for (const char* line : {"USER opsadmin", "PASS tnempius", "TYPE I", "EPSV", "RETR /old.mov", "ABOR"})
        QVERIFY2(!answerTo(line).startsWith('5'), line);
    const QByteArray place = answerTo("EPSV");
    QTcpSocket data;
    data.connectToHost(QHostAddress::LocalHost,
                       place.mid(place.indexOf("(|||") + 4).split('|').first().toUShort());
    QVERIFY(data.waitForConnected());
    QVERIFY(answerTo("STOR /new.mov").startsWith('1'));
    data.write("new");
    data.disconnectFromHost();
    QVERIFY(QTest::qWaitFor([&] { return control.canReadLine(); }));
    QVERIFY(control.readLine().startsWith("226"));
    QCOMPARE(data.readAll(), QByteArray());
    QFile stored(m_ombra.mediaFolder() + QStringLiteral("/new.mov"));
    QVERIFY(stored.open(QIODevice::ReadOnly));
    QCOMPARE(stored.readAll(), QByteArray("new"));
}

HALCYRA_TEST(TestFtpLive)
#include "test_ftplive.moc"

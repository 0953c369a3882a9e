#include "common/filesystem/ftp/ftpclient.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/schedule/clientfactory.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperationsrunner.h"
#include "common/filesystem/schedule/operationfactory.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "tests/support/ftppeer.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>

using namespace vantrel;
using namespace vantrel::test;
using namespace std::chrono_literals;

namespace {

constexpr int fileCount = 12;
constexpr int operationCount = 60;
constexpr int mostBytes = 3'000'000;

/// All files below a folder, by path; hidden ones or not.
QMap<QString, QByteArray> filesIn(const QString& folder, bool areHidden)
{
    QMap<QString, QByteArray> files;
    QDirIterator entry(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entry.hasNext()) {
        QFile file(entry.next());
        if (entry.fileName().startsWith(u'.') == areHidden && file.open(QIODevice::ReadOnly))
            files.insert(file.fileName(), file.readAll());
    }
    return files;
}

} // namespace

/// Copies, moves and renamings on both sides in one queue, while some are stopped and the server dies: what
/// is seen is whole, what nobody replaced is somewhere, and nothing hidden is left.
class TestTransferStorm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!FtpPeer::isAvailable())
            QSKIP("there is no FTP server to test with");
    }
    void storm_data()
    {
        QTest::addColumn<bool>("isOmbra");
        QTest::addColumn<bool>("replaces");
        for (const bool isOmbra : {false, true}) {
            for (const bool replaces : {false, true})
                QTest::addRow("%s, %s", isOmbra ? "ombra" : "a server that replaces",
                              replaces ? "replacing" : "keeping")
                    << isOmbra << replaces;
        }
    }
    void storm();

private:
    QString pick(const QStringList& from) { return from.at(m_random.bounded(from.size())); }
    QString randomPath()
    {
        return pick({"/", "/Act 1/", "/Act 2/"}) + pick({"a.mov", "b.mov", "c.mov", "d.mov"});
    }
    QString randomFolder() { return pick({"/", "/Act 1/", "/Act 2/"}); }
    FileSystem* local() const { return DefaultFileSystemProvider::instance()->getLocalFileSystem(); }
    QString at(FileSystem* side, const QString& path) const
    {
        return side == local() ? m_disk->path() + path : path;
    }
    bool connectTo(quint16 port, const QString& user, const QString& password);
    void ask(bool replaces);
    void disturb(const std::function<void()>& kill);

    QRandomGenerator m_random;
    ClientFactory m_clients;
    OperationFactory m_factory;
    std::unique_ptr<QTemporaryDir> m_disk;
    std::unique_ptr<ServerFileSystem> m_server;
    std::unique_ptr<FileSystemOperationsRunner> m_queue;
};

bool TestTransferStorm::connectTo(quint16 port, const QString& user, const QString& password)
{
    m_server =
        std::make_unique<ServerFileSystem>(QUrl(QStringLiteral("ftp://127.0.0.1:%1").arg(port)), &m_clients);
    qobject_cast<FtpClient*>(m_server->client())->setReconnectUnit(1ms);
    return m_server->setUsername(user) && m_server->setPassword(password) && m_server->connectToServer() &&
           QTest::qWaitFor([this] { return m_server->isReady() && !m_server->isLoading(); }, 20000);
}

/// Something that somebody may want; what is not there is refused.
void TestTransferStorm::ask(bool replaces)
{
    FileSystem* const sides[] = {local(), m_server.get()};
    const int side = m_random.bounded(2);
    FileSystem* const from = sides[side];
    FileSystem* const to = m_random.bounded(4) == 0 ? from : sides[1 - side];
    const bool isFolder = m_random.bounded(6) == 0;
    const QString source = at(from, isFolder ? pick({"/Act 1", "/Act 2"}) : randomPath());
    const QString target = at(to, randomFolder());
    OperationPtr operation;
    switch (m_random.bounded(5)) {
    case 0:
        operation = m_queue->rename(from, source, pick({"a.mov", "e.mov", "Act 1", "Act 3"}));
        break;
    case 1:
    case 2:
        operation = m_queue->move(from, source, to, target);
        break;
    default:
        operation = m_queue->copy(from, source, to, target);
    }
    if (const auto transfer = operation.objectCast<TransferOperation>())
        transfer->setConflictPolicy(replaces && m_random.bounded(2) ? ConflictPolicy::Replace
                                    : m_random.bounded(2)           ? ConflictPolicy::KeepBoth
                                    : m_random.bounded(2)           ? ConflictPolicy::Skip
                                                                    : ConflictPolicy::Refuse);
}

void TestTransferStorm::disturb(const std::function<void()>& kill)
{
    const int what = m_random.bounded(20);
    if (what == 0)
        return kill();
    const OperationPtrList running = m_queue->activeOperations();
    if (what < 5 && !running.isEmpty())
        m_queue->stopOperation(running.first());
}

void TestTransferStorm::storm()
{
    QFETCH(bool, isOmbra);
    QFETCH(bool, replaces);
    for (const char* text :
         {"Failed", "Network error", "Unable", "Aborting rest", "could not", "doesn't exist", "Operation",
          "Unimplemented code", "Create operation failed", "Received invalid", "Source"})
        allowWarnings(QString::fromLatin1(text));
    const quint32 seed = qEnvironmentVariableIsSet("HALCYRA_TEST_SEED")
                             ? qEnvironmentVariable("HALCYRA_TEST_SEED").toUInt()
                             : QRandomGenerator::global()->generate();
    qInfo("seed %u", seed);
    m_random.seed(seed);
    FtpPeer peer;
    OmbraProcess ombra;
    if (isOmbra && !OmbraProcess::isAvailable())
        QSKIP("no ombra was built");
    QVERIFY(isOmbra ? ombra.start() : peer.start());
    const QString there = isOmbra ? ombra.mediaFolder() : peer.folder();
    m_disk = std::make_unique<QTemporaryDir>();
    QList<QByteArray> contents;
    for (int i = 0; i < fileCount; ++i) {
        QByteArray bytes(i == 0 ? 0 : 4 + 4 * m_random.bounded(mostBytes / 4), Qt::Uninitialized);
        m_random.fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
        QString path;
        do {
            path = (m_random.bounded(2) ? m_disk->path() : there) + randomPath();
        } while (QFile::exists(path));
        QDir().mkpath(getParentPath(path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        contents.append(bytes);
    }
    QVERIFY(connectTo(isOmbra ? ombra.ports().ftp : peer.port(), QStringLiteral("opsadmin"),
                      QStringLiteral("tnempius")));
    m_server->client()->setRateLimit(20'000'000); // so that there is a middle
    m_queue = std::make_unique<FileSystemOperationsRunner>(&m_factory);
    QTimer chaos;
    int asked = 0;
    connect(&chaos, &QTimer::timeout, this, [&] {
        QList<FileSystemFile> files;
        m_server->getFiles(randomFolder(), files); // a view
        if (asked++ < operationCount)
            ask(replaces);
        disturb([&] { isOmbra ? m_server->client()->abort() : void(peer.restart()); });
        chaos.start(m_random.bounded(40));
    });
    chaos.start(10);
    QVERIFY(QTest::qWaitFor([&] { return asked > operationCount; }, 60000));
    chaos.stop();
    const bool isIdle = QTest::qWaitFor(
        [&] {
            return m_queue->pendingOperations().isEmpty() && m_queue->activeOperations().isEmpty() &&
                   m_server->isReady() && !m_server->isLoading();
        },
        60000);
    for (const OperationPtr& operation : m_queue->allOperations())
        if (!operation->hasFinished())
            qInfo() << "hangs:" << *operation;
    QVERIFY(isIdle);
    int passed = 0;
    for (const OperationPtr& operation : m_queue->allOperations())
        passed += operation.objectCast<RunnableOperation>()->state() == RunnableOperation::Passed;
    qInfo("%lld operations, %d passed", static_cast<long long>(m_queue->allOperations().size()), passed);
    QList<QByteArray> seen;
    for (const QString& side : {m_disk->path(), there}) {
        const auto isClean = [&] { return filesIn(side, true).isEmpty(); };
        QVERIFY2(QTest::qWaitFor(isClean, 10000),
                 qPrintable(QStringLiteral("seed %1: ").arg(seed) +
                            QStringList(filesIn(side, true).keys()).join(u' ')));
        const auto files = filesIn(side, false);
        for (auto file = files.cbegin(); file != files.cend(); ++file) {
            QVERIFY2(contents.contains(file.value()),
                     qPrintable(QStringLiteral("%1: %2 bytes").arg(file.key()).arg(file.value().size())));
            seen.append(file.value());
        }
    }
    for (const QByteArray& bytes : std::as_const(contents))
        QVERIFY2(replaces || seen.contains(bytes),
                 qPrintable(QStringLiteral("%1 bytes are lost").arg(bytes.size())));
}

HALCYRA_TEST(TestTransferStorm)
#include "test_transferstorm.moc"

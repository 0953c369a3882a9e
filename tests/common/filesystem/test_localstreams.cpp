#include "common/filesystem/local/incomingfile.h"
#include "tests/common/filesystem/begin.h"
#include "tests/common/filesystem/localfixture.h"
#include "tests/common/filesystem/quietfilesystem.h"
#include "tests/support/testmain.h"

namespace vantrel::test {

namespace {

const QString remotePath = QStringLiteral("/remote.mov");

/// Ends the operation as the other side does, once both ends have reported.
void endWhenReady(FileTransferOperation& operation)
{
    QObject::connect(&operation, &RunnableOperation::targetIsReady, &operation, [&operation] {
        bool success = false;
        if (operation.isReady(&success))
            success ? operation.finish() : operation.abort();
    });
}

} // namespace

class TestLocalStreams : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesWhatIsWhole_data()
    {
        QTest::addColumn<bool>("succeeds");
        QTest::addColumn<bool>("isThere");
        QTest::addColumn<ConflictPolicy>("policy");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("whole") << true << false << ConflictPolicy::Refuse << QByteArray("incoming");
        QTest::newRow("broken") << false << false << ConflictPolicy::Refuse << QByteArray();
        QTest::newRow("there already") << true << true << ConflictPolicy::Refuse << QByteArray("there");
        QTest::newRow("replacing") << true << true << ConflictPolicy::Replace << QByteArray("incoming");
        QTest::newRow("replacing by half") << false << true << ConflictPolicy::Replace << QByteArray("there");
    }

    void takesWhatIsWhole()
    {
        QFETCH(bool, succeeds);
        QFETCH(bool, isThere);
        QFETCH(ConflictPolicy, policy);
        LocalFixture disk;
        QuietFileSystem server;
        const QString name = QStringLiteral("remote.mov");
        if (isThere)
            QVERIFY(disk.write(name, "there"));
        QSharedPointer<FileTransferOperation> operation = QSharedPointer<FileTransferOperation>::create(
            FileSystemTarget{&server, remotePath}, disk.target({}), TransferOperation::Copy);
        operation->setConflictPolicy(policy);
        endWhenReady(*operation);
        connect(operation.data(), &BaseOperation::operationStarted, operation.data(), [&] {
            QCOMPARE(operation->output()->write("incoming"), 8);
            const QByteArray meanwhile = disk.read(name);
            QCOMPARE(meanwhile, isThere ? QByteArray("there") : QByteArray());
            operation->setReady(operation->from(), succeeds);
        });
        const bool isTaken = succeeds && (!isThere || policy == ConflictPolicy::Replace);
        QCOMPARE(outcomeOf(*operation), isTaken ? RunnableOperation::Passed : RunnableOperation::Failed);
        QTEST(disk.read(name), "content");
        QTRY_COMPARE(disk.names().size(), disk.read(name).isNull() ? 0 : 1);
    }

    /// And not before, nor where one is already, nor once nobody wants it.
    void isMadeWithItsFirstByte()
    {
        LocalFixture disk;
        IncomingFile file(disk.path(QStringLiteral("a.mov")));
        QVERIFY(file.isWritable() && disk.names().isEmpty());
        QCOMPARE(file.write("12"), 2);
        file.close();
        IncomingFile second(disk.path(QStringLiteral("a.mov")));
        QCOMPARE(second.write("3"), -1);
        QCOMPARE(disk.read(QStringLiteral("a.mov")), QByteArray("12"));
        IncomingFile dropped(disk.path(QStringLiteral("b.mov")));
        dropped.drop();
        QCOMPARE(dropped.write("4"), -1);
        dropped.close();
        QCOMPARE(disk.names().size(), 1);
        IncomingFile empty(disk.path(QStringLiteral("c.mov")));
        QVERIFY(empty.make());
        QCOMPARE(disk.read(QStringLiteral("c.mov")), QByteArray(""));
    }

    void abortsWithoutATrace()
    {
        LocalFixture disk;
        QuietFileSystem server;
        const auto operation = QSharedPointer<FileTransferOperation>::create(
            FileSystemTarget{&server, remotePath}, disk.target({}), TransferOperation::Copy);
        QSignalSpy grown(&disk.files, &FileSystem::fileChanged);
        QVERIFY(begin(*operation));
        operation->output()->write("half");
        operation->setProgress(0.05);
        operation->setProgress(0.2);
        QCOMPARE(grown.count(), 1);
        QCOMPARE(grown[0][0].value<FileSystemFile>().getFullPath(), disk.path(QStringLiteral("remote.mov")));
        operation->setTotalSizeBytes(1ULL << 60); // more than the disk has room for
        QCOMPARE(operation->state(), RunnableOperation::Failed);
        QVERIFY(operation->errors()[0].message.startsWith(QStringLiteral("There is no room for")));
        QTRY_VERIFY(disk.names().isEmpty());
    }

    void keepsQuietWhileItReceives()
    {
        LocalFixture disk;
        QuietFileSystem server;
        QList<FileSystemFile> files;
        QVERIFY(disk.write(QStringLiteral("aside/x.mov"), "1"));
        QSignalSpy changed(&disk.files, &FileSystem::directoryChanged);
        disk.files.getFiles(disk.folder.path(), files);
        disk.files.getFiles(disk.path(QStringLiteral("aside")), files);
        QTRY_COMPARE(changed.count(), 2);
        const auto operation = QSharedPointer<FileTransferOperation>::create(
            FileSystemTarget{&server, remotePath}, disk.target({}), TransferOperation::Copy);
        endWhenReady(*operation);
        QVERIFY(begin(*operation));
        QCOMPARE(operation->output()->write(QByteArray(100000, 'x')), 100000);
        operation->setTransferredBytes(100000);
        changed.clear();
        QVERIFY(disk.write(QStringLiteral("other.mov"), "1"));
        // What happens after that elsewhere is told after it.
        QVERIFY(disk.write(QStringLiteral("aside/y.mov"), "1"));
        QTRY_VERIFY(!changed.isEmpty());
        QCOMPARE(changed[0][0].value<FileSystemDirectory>().name, QStringLiteral("aside"));
        QCOMPARE(changed.count(), 1);
        QSignalSpy stopped(operation.data(), &BaseOperation::operationStopped);
        operation->setReady(operation->from(), true);
        QVERIFY(stopped.wait());
        QTRY_VERIFY(disk.files.getFiles(disk.folder.path(), files) && files.size() == 2);
    }

    /// A folder above it shows what else happens there: the transfer may take an hour.
    void tellsWhatHappensAboveIt()
    {
        LocalFixture disk;
        QuietFileSystem server;
        QList<FileSystemFile> files;
        QVERIFY(disk.write(QStringLiteral("into/x.mov"), "1"));
        QSignalSpy changed(&disk.files, &FileSystem::directoryChanged);
        disk.files.getFiles(disk.folder.path(), files);
        QTRY_COMPARE(changed.count(), 1);
        const auto operation = QSharedPointer<FileTransferOperation>::create(
            FileSystemTarget{&server, remotePath}, disk.target(QStringLiteral("into")),
            TransferOperation::Copy);
        QVERIFY(begin(*operation));
        operation->setTransferredBytes(100000);
        changed.clear();
        QVERIFY(disk.write(QStringLiteral("other.mov"), "1"));
        QTRY_COMPARE(changed.count(), 1);
        operation->abort();
    }

    void removesTheSourceOfAMove_data()
    {
        QTest::addColumn<bool>("succeeds");
        QTest::addColumn<bool>("changes");
        QTest::addColumn<bool>("isRemoved");
        QTest::newRow("moved") << true << false << true;
        QTest::newRow("failed") << false << false << false;
        QTest::newRow("changed meanwhile") << true << true << false;
    }

    void removesTheSourceOfAMove()
    {
        QFETCH(bool, succeeds);
        QFETCH(bool, changes);
        QFETCH(bool, isRemoved);
        LocalFixture disk;
        QuietFileSystem server;
        const QString name = QStringLiteral("a.mov");
        QVERIFY(disk.write(name, "outgoing"));
        const auto operation = QSharedPointer<FileTransferOperation>::create(
            disk.target(name), FileSystemTarget{&server, remotePath}, TransferOperation::Move);
        endWhenReady(*operation);
        connect(operation.data(), &BaseOperation::operationStarted, operation.data(), [&] {
            QCOMPARE(operation->input()->readAll(), QByteArray("outgoing"));
            if (changes)
                QVERIFY(disk.write(name, "another take"));
            operation->setReady(operation->to(), succeeds);
        });
        QCOMPARE(outcomeOf(*operation), isRemoved ? RunnableOperation::Passed : RunnableOperation::Failed);
        QCOMPARE(disk.read(name).isNull(), isRemoved);
        QVERIFY(!operation->input());
    }
};

HALCYRA_TEST(TestLocalStreams)

} // namespace vantrel::test

#include "test_localstreams.moc"

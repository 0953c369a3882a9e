#include "common/filesystem/operations/directorytransferoperation.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/recursiveremoveoperation.h"
#include "tests/common/filesystem/quietfilesystem.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

namespace vantrel::test {

namespace {

const QString fromPath = QStringLiteral("/a.mov");
const QString toPath = QStringLiteral("/b.mov");

/// One whose clock the test turns.
class TimedTransfer : public FileTransferOperation
{
public:
    using FileTransferOperation::FileTransferOperation;
    qint64 nowMs() const override { return time; }
    qint64 time = 0;
};

} // namespace

class TestOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsOnceAndEndsOnce()
    {
        QuietFileSystem files;
        const auto operation = transfer(files, files);
        QSignalSpy started(operation.data(), &BaseOperation::operationStarted);
        QSignalSpy stopped(operation.data(), &BaseOperation::operationStopped);
        operation->finish();
        QCOMPARE(operation->state(), RunnableOperation::NotStarted);
        operation->run();
        operation->run();
        QCOMPARE(started.count(), 1);
        QCOMPARE(files.visits, QByteArrayList{"file transfer"}); // one file system, one visit
        operation->finish();
        operation->abort();
        QCOMPARE(operation->state(), RunnableOperation::Passed);
        QVERIFY(operation->errors().isEmpty());
        QCOMPARE(stopped.count(), 1);
    }

    void failsWhenRefused()
    {
        QuietFileSystem files, other;
        other.accepts = false;
        const auto operation = transfer(files, other);
        QSignalSpy started(operation.data(), &BaseOperation::operationStarted);
        QSignalSpy aborted(operation.data(), &RunnableOperation::operationAborted);
        // Who hears of the abort may abort as well.
        connect(operation.data(), &RunnableOperation::operationAborted, operation.data(),
                &RunnableOperation::abort);
        expectWarning(QStringLiteral("Failed to visit operation"));
        expectWarning(QStringLiteral("Failed to accept visitors"));
        operation->run();
        QCOMPARE(operation->state(), RunnableOperation::Failed);
        QCOMPARE(started.count(), 0);
        QCOMPARE(aborted.count(), 1);
        QCOMPARE(operation->errors().size(), 1);
        QCOMPARE(operation->errors()[0].message,
                 QStringLiteral("<b>File transfer aborted</b> at 0% of 0 bytes"));
    }

    void dispatchesToItsOwnVisit()
    {
        QuietFileSystem files;
        const FileSystemTarget from{&files, fromPath}, to{&files, toPath};
        const QList<QSharedPointer<RunnableOperation>> operations{
            QSharedPointer<DirectoryTransferOperation>::create(nullptr, from, to, TransferOperation::Copy),
            QSharedPointer<ModifyOperation>::create(from, ModifyOperation::Create, ModifyOperation::File),
            QSharedPointer<RecursiveRemoveOperation>::create(nullptr, from)};
        for (const auto& operation : operations)
            QVERIFY(operation->accept(&files));
        QCOMPARE(files.visits, QByteArrayList({"directory transfer", "modification", "recursive removal"}));
        const auto creation = operations[1].staticCast<ModifyOperation>();
        QCOMPARE(creation->newName(), QStringLiteral("a.mov"));
        QCOMPARE(ModifyOperation(from, QStringLiteral("c"), ModifyOperation::File).absolutePath(),
                 QStringLiteral("/c"));
    }

    void isReadyWhenBothEndsAre()
    {
        QuietFileSystem files, other;
        const auto operation = transfer(files, other);
        QSignalSpy ready(operation.data(), &RunnableOperation::targetIsReady);
        bool success = false;
        expectWarning(QStringLiteral("isn't part of the operation"));
        QVERIFY(!operation->setReady({&files, toPath}, true));
        QVERIFY(operation->setReady(operation->from(), false));
        expectWarning(QStringLiteral("was already set ready"));
        QVERIFY(!operation->setReady(operation->from(), true));
        QVERIFY(!operation->isReady(&success));
        QVERIFY(operation->setReady(operation->to(), true));
        QVERIFY(operation->isReady(&success) && !success);
        QVERIFY(operation->isReady(operation->to(), &success) && success);
        QCOMPARE(ready.count(), 2);
    }

    void tellsOnlyRealProgress()
    {
        QuietFileSystem files;
        const auto operation = transfer(files, files);
        QSignalSpy progressed(operation.data(), &BaseOperation::progressChanged);
        operation->setProgress(0);
        operation->setProgress(0.5);
        operation->setProgress(0.5 + 1e-15);
        operation->setProgress(qQNaN());
        QCOMPARE(progressed.count(), 1);
        QCOMPARE(progressed[0][1].toDouble(), 0.5);
    }

    void estimatesByTheMedian()
    {
        QuietFileSystem files;
        TimedTransfer operation({&files, fromPath}, {&files, toPath}, TransferOperation::Copy);
        operation.setTotalSizeBytes(100000);
        unsigned long long bytes = 0;
        for (int tick = 0; tick < 9; ++tick) {
            // A stall and a burst, which the median passes over.
            operation.time += tick == 4 ? 5010 : 501;
            operation.setTransferredBytes(bytes += tick == 6 ? 9000 : 501);
            operation.setTransferredBytes(bytes += 1); // within the same half second
        }
        QCOMPARE(operation.etaSeconds(), 0);
        operation.time += 501;
        operation.setTransferredBytes(bytes += 501);
        QVERIFY(std::abs(operation.transferSpeed() - 1000) < 10);
        QCOMPARE(operation.etaSeconds(),
                 static_cast<quint16>((100000.0 - bytes) / operation.transferSpeed()));
        operation.setTotalSizeBytes(1000ULL * 1000 * 1000);
        QCOMPARE(operation.etaSeconds(), 0); // longer than can be said
    }

    void closesItsStreamsWhereTheyLive()
    {
        QuietFileSystem files, other;
        const auto operation = transfer(files, other);
        QThread worker;
        worker.start();
        const auto buffer = QSharedPointer<QBuffer>::create();
        QVERIFY(buffer->open(QIODevice::ReadWrite));
        const QThread* closedOn = nullptr;
        std::atomic<bool> isClosed = false;
        connect(buffer.data(), &QIODevice::aboutToClose, buffer.data(), [&] {
            closedOn = QThread::currentThread();
            isClosed = true;
        });
        buffer->moveToThread(&worker);
        operation->setOutput(buffer);
        operation->run();
        operation->abort();
        QVERIFY(!operation->output());
        QTRY_VERIFY(isClosed);
        worker.quit();
        worker.wait();
        QCOMPARE(closedOn, &worker);
    }

    void meetsWhatIsThere_data()
    {
        QTest::addColumn<ConflictPolicy>("policy");
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("to");
        QTest::newRow("refuse") << ConflictPolicy::Refuse << int(RunnableOperation::Failed) << toPath;
        QTest::newRow("skip") << ConflictPolicy::Skip << int(RunnableOperation::Passed) << toPath;
        QTest::newRow("replace") << ConflictPolicy::Replace << int(RunnableOperation::Running) << toPath;
        QTest::newRow("keep both") << ConflictPolicy::KeepBoth << int(RunnableOperation::Running)
                                   << QStringLiteral("/b (3).mov");
    }

    void meetsWhatIsThere()
    {
        QFETCH(ConflictPolicy, policy);
        for (const bool isAsked : {false, true}) {
            QuietFileSystem files, other;
            other.isCareful = true;
            other.types = {{toPath, FileSystem::File}, {QStringLiteral("/b (2).mov"), FileSystem::File}};
            const auto operation = transfer(files, other);
            operation->setConflictPolicy(isAsked ? ConflictPolicy::Ask : policy);
            operation->run();
            if (isAsked) {
                QCOMPARE(operation->state(), RunnableOperation::NotStarted);
                QCOMPARE(operation->conflict(), std::optional(TransferConflict{toPath, false}));
                operation->answerConflict(policy, false);
                QVERIFY(!operation->conflict());
            }
            QTEST(int(operation->state()), "state");
            QTEST(operation->to().fullPath, "to");
            QCOMPARE(operation->replacesTarget(), policy == ConflictPolicy::Replace);
        }
    }

    void asksForItsParts()
    {
        QuietFileSystem files, other;
        other.isCareful = true;
        other.types = {{toPath, FileSystem::File}};
        const FileSystemTarget from{&files, fromPath}, to{&other, QStringLiteral("/")};
        const auto whole =
            QSharedPointer<DirectoryTransferOperation>::create(nullptr, from, to, TransferOperation::Copy);
        whole->setConflictPolicy(ConflictPolicy::Ask);
        const auto first = transfer(files, other), second = transfer(files, other);
        first->setParentOperation(whole);
        second->setParentOperation(whole);
        first->run();
        QVERIFY(whole->conflict());
        whole->answerConflict(ConflictPolicy::Skip, true);
        QCOMPARE(first->state(), RunnableOperation::Passed);
        second->run();
        QCOMPARE(second->state(), RunnableOperation::Passed);
    }

private:
    static QSharedPointer<FileTransferOperation> transfer(QuietFileSystem& from, QuietFileSystem& to)
    {
        return QSharedPointer<FileTransferOperation>::create(
            FileSystemTarget{&from, fromPath}, FileSystemTarget{&to, toPath}, TransferOperation::Copy);
    }
};

HALCYRA_TEST(TestOperations)

} // namespace vantrel::test

#include "test_operations.moc"

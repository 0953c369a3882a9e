#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperations.h"
#include "common/import/mediaarrivals.h"
#include "tests/common/filesystem/fakefilesystem.h"
#include "tests/support/patience.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <utility>

using namespace vantrel;

namespace {

/// A disk that answers when the test says so.
class SlowDisk : public test::FakeFileSystem
{
public:
    ItemType getType(QString) override { return File; }
    void whenReachable(const QString&, QObject*, std::function<void(bool)> next) override { answer = next; }

    std::function<void(bool)> answer;
};

class Disks : public FileSystemProvider
{
public:
    FileSystem* getServerFileSystem(QUrl, QString, QString) override { return &server; }
    FileSystem* getLocalFileSystem() override { return &local; }
    FileSystem* getFileSystem(QString kind) override
    {
        if (kind == QStringLiteral("local"))
            return &local;
        return isElsewhere ? &other : isConnected ? &server : nullptr;
    }

    SlowDisk local;
    test::FakeFileSystem server;
    test::FakeFileSystem other;
    bool isConnected = true;
    bool isElsewhere = false;
};

class Copy : public BaseOperation
{
public:
    bool isRunning() const override { return true; }
    bool hasFinished() const override { return false; }
    QList<FileSystemTarget> targets() const override { return {}; }
    double progress() const override { return 0; }
};

/// Begins copies and does nothing of them.
class Copies : public FileSystemOperations
{
public:
    OperationPtrList allOperations() const override { return begun; }
    OperationPtrList activeOperations() const override { return begun; }
    OperationPtrList pendingOperations() const override { return {}; }
    OperationPtrList finishedOperations() const override { return {}; }
    OperationPtrList findOperations(FileSystem*, QString) const override { return {}; }
    OperationPtr rename(FileSystem*, QString, QString) override { return {}; }
    OperationPtr remove(FileSystem*, QString) override { return {}; }
    OperationPtr createDirectory(FileSystem*, QString) override { return {}; }
    OperationPtr createFile(FileSystem*, QString) override { return {}; }
    OperationPtr move(FileSystem*, QString, FileSystem*, QString) override { return {}; }
    OperationPtr copy(FileSystem*, QString, FileSystem*, QString) override
    {
        begun.append(OperationPtr(new Copy));
        return begun.last();
    }

    OperationPtrList begun;
};

} // namespace

class TestMediaArrivals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Until a disk answers twenty seconds may pass.
    void planIsPending_data()
    {
        QTest::addColumn<bool>("isGivenUp");
        QTest::newRow("given up") << true;
        QTest::newRow("the link goes") << false;
    }
    void planIsPending()
    {
        QFETCH(bool, isGivenUp);
        Disks disks;
        Copies copies;
        MediaArrivals arrivals(&disks, &copies);
        QStringList faults;
        arrivals.plan(MediaArrivals::entriesOf({QUrl::fromLocalFile(QStringLiteral("/a.png"))}),
                      QStringLiteral("a.png"),
                      [&faults](const MediaArrivals::Plan& plan) { faults.append(plan.fault); });
        QTRY_COMPARE(arrivals.pending().text(), QStringLiteral("a.png"));
        if (isGivenUp)
            arrivals.pending().giveUp();
        else
            disks.isConnected = false;
        disks.local.answer(true);
        QCOMPARE(faults.size(), 1);
        QVERIFY2(faults.first().contains(isGivenUp ? QStringLiteral("given up") : QStringLiteral("was lost")),
                 qPrintable(faults.first()));
        QCOMPARE(arrivals.pending().text(), QString());
    }

    /// Slots name the pattern, and what arrives are its pictures.
    void sequenceArrivesAsOne()
    {
        Disks disks;
        Copies copies;
        MediaArrivals arrivals(&disks, &copies);
        const QUrl pattern = QUrl::fromLocalFile(QStringLiteral("/s.%04d.png"));
        QObject context;
        arrivals.bringFiles(
            {{QStringLiteral("/in/s.0001.png"), pattern}, {QStringLiteral("/in/s.0002.png"), pattern}},
            &context, [](const QStringList&) {});
        QTRY_COMPARE(copies.begun.size(), 2);
        Q_EMIT copies.begun[0]->progressChanged(0, 0.5);
        Q_EMIT copies.begun[0]->operationStopped();
        Q_EMIT copies.begun[1]->progressChanged(0, 0.25);
        QCOMPARE(arrivals.textOf(pattern), QStringLiteral("arriving 62 %"));
        QCOMPARE(arrivals.textOf(QUrl::fromLocalFile(QStringLiteral("/s.0002.png"))),
                 QStringLiteral("arriving 25 %"));
        Q_EMIT copies.begun[1]->operationStopped();
        QCOMPARE(arrivals.textOf(pattern), QString());
        QVERIFY(arrivals.isEmpty());
    }

    /// Thousands are sent in many turns, between which the application may turn to another server.
    void sendsToTheServerThatWasMeant()
    {
        Disks disks;
        Copies copies;
        MediaArrivals arrivals(&disks, &copies);
        QObject context;
        QList<MediaArrivals::Upload> uploads;
        for (int i = 0; i < 20000; ++i) {
            const QString name = QStringLiteral("/%1.wav").arg(i);
            uploads.append({name, QUrl::fromLocalFile(name)});
        }
        QStringList told;
        bool isSent = false;
        arrivals.bringFiles(uploads, &context, [&](const QStringList& faults) {
            told = faults;
            isSent = true;
        });
        QVERIFY(!isSent && arrivals.progressOf(uploads.last().media) == 0);
        disks.isElsewhere = true;
        QTRY_VERIFY(isSent);
        QCOMPARE(told.size() + copies.begun.size(), uploads.size());
        QVERIFY(told.value(told.size() - 1).contains(QStringLiteral("another server")));
        QCOMPARE(arrivals.progressOf(uploads.last().media), -1);
    }
};

HALCYRA_TEST(TestMediaArrivals)

#include "test_mediaarrivals.moc"

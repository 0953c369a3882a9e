#include "common/filesystem/local/removalwork.h"
#include "common/filesystem/local/systemfile.h"
#include "common/filesystem/operations/directorytransferoperation.h"
#include "tests/common/filesystem/localfixture.h"
#include "tests/support/testmain.h"

#include <QStorageInfo>

#include <cerrno>
#include <sys/stat.h>

namespace vantrel::test {

class TestLocalOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void transfers_data()
    {
        QTest::addColumn<ConflictPolicy>("policy");
        QTest::addColumn<QString>("to");
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("landed"); // where the content of the source is then
        QTest::addColumn<QByteArray>("there");
        const auto row = [](const char* what, ConflictPolicy policy, const char* to, bool isPassed,
                            const char* landed, const char* there) {
            QTest::newRow(what) << policy << QString::fromUtf8(to)
                                << int(isPassed ? RunnableOperation::Passed : RunnableOperation::Failed)
                                << QString::fromUtf8(landed) << QByteArray(there);
        };
        row("to a free name", ConflictPolicy::Refuse, "new.mov", true, "new.mov", "there");
        row("into a folder", ConflictPolicy::Refuse, "empty", true, "empty/ a\n\\.mov ", "there");
        row("onto a file", ConflictPolicy::Refuse, "there.mov", false, "", "there");
        row("replacing", ConflictPolicy::Replace, "there.mov", true, "there.mov", "source");
        row("keeping both", ConflictPolicy::KeepBoth, "there.mov", true, "there (2).mov", "there");
        row("leaving out", ConflictPolicy::Skip, "there.mov", true, "", "there");
        row("a file in place of a folder", ConflictPolicy::Replace, "full", false, "", "there");
        row("into a folder that has gone", ConflictPolicy::Refuse, "gone/", false, "", "there");
        row("into nowhere", ConflictPolicy::Refuse, "no/new.mov", false, "", "there");
    }

    void transfers()
    {
        QFETCH(ConflictPolicy, policy);
        QFETCH(QString, to);
        QFETCH(QString, landed);
        const QString source = QStringLiteral(" a\n\\.mov ");
        for (const auto type : {TransferOperation::Copy, TransferOperation::Move}) {
            LocalFixture disk;
            QVERIFY(disk.write(source, "source"));
            QVERIFY(disk.write(QStringLiteral("there.mov"), "there"));
            QVERIFY(disk.write(QStringLiteral("full/") + source + QStringLiteral("/x"), "x"));
            QVERIFY(QDir(disk.folder.path()).mkdir(QStringLiteral("empty")));
            const auto operation = disk.transfer(type, source, to);
            operation->setConflictPolicy(policy);
            allowWarnings(QStringLiteral("ile from"));
            QTEST(int(outcomeOf(*operation)), "state");
            QTEST(disk.read(QStringLiteral("there.mov")), "there");
            if (!landed.isEmpty())
                QCOMPARE(disk.read(landed), QByteArray("source"));
            const bool isGone = type == TransferOperation::Move && !landed.isEmpty();
            QCOMPARE(disk.read(source).isNull(), isGone);
            QVERIFY(disk.names().filter(QStringLiteral(".part")).isEmpty());
            if (operation->state() == RunnableOperation::Failed)
                QCOMPARE(operation->errors().size(), 2); // the reason, and how far it came
        }
    }

    void transfersWholeFolders()
    {
        LocalFixture disk;
        QVERIFY(disk.write(QStringLiteral("show/a.mov"), "a"));
        QVERIFY(disk.write(QStringLiteral("show/deep/b.mov"), "b"));
        QVERIFY(QFile::link(disk.path(QStringLiteral("show/a.mov")),
                            disk.path(QStringLiteral("show/deep/link.mov"))));
        QVERIFY(QFile::link(QStringLiteral("nothing"), disk.path(QStringLiteral("show/broken"))));
        QCOMPARE(::chmod(qPrintable(disk.path(QStringLiteral("show/deep"))), 0500), 0);
        const auto copy = QSharedPointer<DirectoryTransferOperation>::create(
            nullptr, disk.target(QStringLiteral("show")), disk.target(QStringLiteral("copy")),
            TransferOperation::Copy);
        QCOMPARE(outcomeOf(*copy), RunnableOperation::Passed);
        QCOMPARE(copy->totalSizeBytes(), 3ULL);
        QCOMPARE(copy->progress(), 1.0);
        QCOMPARE(disk.names(QStringLiteral("copy")),
                 QStringList({QStringLiteral("a.mov"), QStringLiteral("broken"), QStringLiteral("deep")}));
        QCOMPARE(disk.read(QStringLiteral("copy/deep/link.mov")), QByteArray("a"));
        QVERIFY(!QFileInfo(disk.path(QStringLiteral("copy/deep/link.mov"))).isSymLink());
        const auto move =
            disk.transfer(TransferOperation::Move, QStringLiteral("copy"), QStringLiteral("show"));
        QCOMPARE(outcomeOf(*move), RunnableOperation::Passed);
        QCOMPARE(disk.names(), QStringList(QStringLiteral("show")));
        QCOMPARE(disk.read(QStringLiteral("show/copy/deep/b.mov")), QByteArray("b"));
        QVERIFY(QFile::link(QStringLiteral("show/a.mov"), disk.path(QStringLiteral("link.mov"))));
        QCOMPARE(outcomeOf(*disk.transfer(TransferOperation::Move, QStringLiteral("link.mov"),
                                          QStringLiteral("show/copy"))),
                 RunnableOperation::Passed);
        QCOMPARE(disk.read(QStringLiteral("show/copy/link.mov")), QByteArray("a"));
        QCOMPARE(disk.names(), QStringList(QStringLiteral("show")));
    }

    void refusesWhatNeverEnds()
    {
        LocalFixture disk;
        QVERIFY(disk.write(QStringLiteral("show/deep/a.mov"), "a"));
        allowWarnings(QStringLiteral("inside a sub-directory"));
        for (const auto type : {TransferOperation::Copy, TransferOperation::Move})
            QCOMPARE(outcomeOf(*disk.transfer(type, QStringLiteral("show"), QStringLiteral("show/deep"))),
                     RunnableOperation::Failed);
        QVERIFY(QFile::link(disk.path(QStringLiteral("show")), disk.path(QStringLiteral("show/deep/again"))));
        expectWarning(QStringLiteral("Failed to copy file from"));
        QCOMPARE(outcomeOf(
                     *disk.transfer(TransferOperation::Copy, QStringLiteral("show"), QStringLiteral("copy"))),
                 RunnableOperation::Failed);
        QCOMPARE(disk.names(), QStringList(QStringLiteral("show")));
        QCOMPARE(disk.read(QStringLiteral("show/deep/a.mov")), QByteArray("a"));
    }

    void mergesItemByItem()
    {
        LocalFixture disk;
        for (const QString& name :
             {QStringLiteral("a.mov"), QStringLiteral("b.mov"), QStringLiteral("c.mov")})
            QVERIFY(disk.write(QStringLiteral("show/") + name, "new"));
        QVERIFY(disk.write(QStringLiteral("to/show/a.mov"), "old"));
        QVERIFY(disk.write(QStringLiteral("to/show/b.mov"), "old"));
        const auto move =
            disk.transfer(TransferOperation::Move, QStringLiteral("show"), QStringLiteral("to"));
        move->setConflictPolicy(ConflictPolicy::Ask);
        QStringList asked;
        connect(move.data(), &TransferOperation::conflictFound, move.data(),
                [&](const TransferConflict& conflict) {
                    asked.append(QFileInfo(conflict.path).fileName());
                    const bool isSecond = asked.size() == 2;
                    // The folder is to be merged; of its files the first answer counts for all.
                    move->answerConflict(isSecond ? ConflictPolicy::Skip : ConflictPolicy::Replace, isSecond);
                });
        QCOMPARE(outcomeOf(*move), RunnableOperation::Passed);
        QCOMPARE(asked.size(), 2);
        QCOMPARE(disk.names(QStringLiteral("show")),
                 QStringList({QStringLiteral("a.mov"), QStringLiteral("b.mov")}));
        QCOMPARE(disk.read(QStringLiteral("to/show/a.mov")), QByteArray("old"));
        QCOMPARE(disk.read(QStringLiteral("to/show/c.mov")), QByteArray("new"));
    }

    void stopsWithoutATrace()
    {
        LocalFixture disk;
        // What a killed process has left goes on the way: no process has that number.
        QFile boot(QStringLiteral("/proc/sys/kernel/random/boot_id"));
        QVERIFY(boot.open(QIODevice::ReadOnly));
        QVERIFY(disk.write(QStringLiteral(".halcyra-%1-%2-1.part/left.mov")
                               .arg(QString::fromLatin1(boot.read(8)))
                               .arg(std::numeric_limits<pid_t>::max()),
                           "left"));
        QVERIFY(disk.write(QStringLiteral("show/big.mov"), "big"));
        QVERIFY(QFile::resize(disk.path(QStringLiteral("show/big.mov")), 2LL << 30));
        const auto copy =
            disk.transfer(TransferOperation::Copy, QStringLiteral("show"), QStringLiteral("copy"));
        connect(copy.data(), &TransferOperation::transferredBytesChanged, copy.data(),
                &RunnableOperation::abort);
        QCOMPARE(outcomeOf(*copy), RunnableOperation::Failed);
        QVERIFY(copy->progress() < 1);
        QTRY_COMPARE(disk.names(), QStringList(QStringLiteral("show")));
    }

    void saysThatThereIsNoRoom()
    {
        LocalFixture disk;
        QVERIFY(disk.write(QStringLiteral("<i>big.mov"), "big"));
        if (!QFile::resize(disk.path(QStringLiteral("<i>big.mov")),
                           disk.files.availableBytes(disk.folder.path()) * 2))
            QSKIP("this disk holds no file larger than its room");
        const auto copy =
            disk.transfer(TransferOperation::Copy, QStringLiteral("<i>big.mov"), QStringLiteral("copy"));
        expectWarning(QStringLiteral("Failed to copy file from"));
        QCOMPARE(outcomeOf(*copy), RunnableOperation::Failed);
        QVERIFY(copy->errors()[0].message.startsWith(
            QStringLiteral("There is no room for <b>&lt;i&gt;big.mov</b>")));
        QCOMPARE(disk.names().size(), 1);
    }

    void movesToAnotherDisk()
    {
        LocalFixture disk;
        const QTemporaryDir other(QStringLiteral("/dev/shm/halcyra-XXXXXX"));
        if (!other.isValid() ||
            QStorageInfo(other.path()).device() == QStorageInfo(disk.folder.path()).device())
            QSKIP("there is no second disk");
        QVERIFY(disk.write(QStringLiteral("show/deep/a.mov"), "a"));
        QVERIFY(QFile::link(QStringLiteral("deep"), disk.path(QStringLiteral("show/link"))));
        const auto move = QSharedPointer<FileTransferOperation>::create(
            disk.target(QStringLiteral("show")), FileSystemTarget{&disk.files, other.path()},
            TransferOperation::Move);
        QCOMPARE(outcomeOf(*move), RunnableOperation::Passed);
        QVERIFY(disk.names().isEmpty());
        QCOMPARE(QDir(other.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList(QStringLiteral("show")));
        QVERIFY(QFileInfo(other.filePath(QStringLiteral("show/link/a.mov"))).isFile());
    }

    /// Of a move by copying only what was copied leaves its place.
    void keepsWhatCameMeanwhile()
    {
        LocalFixture disk;
        for (const char* name : {"show/a.mov", "show/b.mov", "show/sub/c.mov", "show/done/d.mov"})
            QVERIFY(disk.write(QString::fromLatin1(name), "old"));
        JobControl nobody(
            ConflictPolicy::Refuse, [] {}, [](const TransferConflict&) {});
        CopyWork work(nobody, true);
        const std::string show = systemfile::bytesOf(disk.path(QStringLiteral("show")));
        QCOMPARE(work.copy(show, show + " (2)"), 0);
        QVERIFY(disk.write(QStringLiteral("show/b.mov"), "longer"));
        QVERIFY(disk.write(QStringLiteral("show/sub/new.mov"), "new"));
        std::string left;
        QCOMPARE(RemovalWork::removeCopied(show, work.takeCopied(), left), EBUSY);
        QVERIFY(!left.empty());
        QCOMPARE(disk.names(QStringLiteral("show")),
                 (QStringList{QStringLiteral("b.mov"), QStringLiteral("sub")}));
        QCOMPARE(disk.names(QStringLiteral("show/sub")), QStringList{QStringLiteral("new.mov")});
        QCOMPARE(disk.names(QStringLiteral("show (2)")).size(), 4);
    }

    void removesNoMoreThanItShould()
    {
        LocalFixture disk;
        QVERIFY(disk.write(QStringLiteral("kept/a.mov"), "a"));
        QVERIFY(disk.write(QStringLiteral("show/deep/b.mov"), "b"));
        QVERIFY(QFile::link(disk.path(QStringLiteral("kept")), disk.path(QStringLiteral("show/link"))));
        QVERIFY(QFile::link(disk.path(QStringLiteral("kept")), disk.path(QStringLiteral("link"))));
        QFile undecodable(disk.path(QStringLiteral("show/x")));
        QVERIFY(undecodable.open(QIODevice::WriteOnly));
        QCOMPARE(::rename(qPrintable(undecodable.fileName()),
                          (disk.path(QStringLiteral("show/")).toStdString() + "\xff").c_str()),
                 0);
        for (const QString& name : {QStringLiteral("show"), QStringLiteral("link/")})
            QCOMPARE(outcomeOf(*modify(disk.target(name), ModifyOperation::Remove)),
                     RunnableOperation::Passed);
        QCOMPARE(disk.names(), QStringList(QStringLiteral("kept")));
        QCOMPARE(disk.read(QStringLiteral("kept/a.mov")), QByteArray("a"));

        const auto cautious = modify(disk.target(QStringLiteral("kept")), ModifyOperation::Remove);
        cautious->setOnlyEmpty(true);
        QCOMPARE(outcomeOf(*cautious), RunnableOperation::Passed);
        QCOMPARE(disk.names(), QStringList(QStringLiteral("kept")));
        expectWarning(QStringLiteral("Failed to remove file/directory"));
        const auto late = modify(disk.target(QStringLiteral("show")), ModifyOperation::Remove);
        QCOMPARE(outcomeOf(*late), RunnableOperation::Failed);
        QCOMPARE(late->errors().size(), 1);
        // Asked only: what these tests are wrong about must not be gone.
        for (const QString& path : {QStringLiteral("/"), QDir::homePath() + u'/', QStringLiteral("/proc")})
            QVERIFY2(!RemovalWork::protection(path).isEmpty(), qPrintable(path));
        QVERIFY(RemovalWork::protection(disk.path(QStringLiteral("kept"))).isEmpty());
    }

    void makesAndRenames()
    {
        LocalFixture disk;
        QVERIFY(disk.write(QStringLiteral("there.mov"), "there"));
        QCOMPARE(outcomeOf(*modify(disk.target(QStringLiteral("new")), ModifyOperation::Create)),
                 RunnableOperation::Passed);
        allowWarnings(QStringLiteral("Failed to create a"));
        QCOMPARE(outcomeOf(*modify(disk.target(QStringLiteral("new")), ModifyOperation::Create)),
                 RunnableOperation::Failed);
        const auto tolerant = modify(disk.target(QStringLiteral("new")), ModifyOperation::Create);
        tolerant->setAcceptsExisting(true);
        QCOMPARE(outcomeOf(*tolerant), RunnableOperation::Passed);

        allowWarnings(QStringLiteral("Failed to rename"));
        for (const QString& name : {QStringLiteral("there.mov"), QString(), QStringLiteral("a/b"),
                                    QStringLiteral(".."), QString(256, u'x')}) {
            const auto renaming = QSharedPointer<ModifyOperation>::create(disk.target(QStringLiteral("new")),
                                                                          name, ModifyOperation::Directory);
            QCOMPARE(outcomeOf(*renaming), RunnableOperation::Failed);
            QCOMPARE(renaming->errors().size(), 1);
        }
        const QString name = QStringLiteral(" \\ ") + QString(251, u'x') + u' ';
        const auto renaming = QSharedPointer<ModifyOperation>::create(disk.target(QStringLiteral("new")),
                                                                      name, ModifyOperation::Directory);
        QCOMPARE(outcomeOf(*renaming), RunnableOperation::Passed);
        QCOMPARE(disk.names(), QStringList({name, QStringLiteral("there.mov")}));
        QCOMPARE(disk.read(QStringLiteral("there.mov")), QByteArray("there"));
    }

private:
    static QSharedPointer<ModifyOperation> modify(const FileSystemTarget& target,
                                                  ModifyOperation::ModifyType type)
    {
        return QSharedPointer<ModifyOperation>::create(target, type, ModifyOperation::Directory);
    }
};

HALCYRA_TEST(TestLocalOperations)

} // namespace vantrel::test

#include "test_localoperations.moc"

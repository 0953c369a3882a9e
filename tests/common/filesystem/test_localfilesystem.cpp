#include "tests/common/filesystem/localfixture.h"
#include "tests/support/testmain.h"
#include "tests/support/threadwork.h"

namespace vantrel::test {

namespace {

template <typename Item>
QStringList namesOf(const QList<Item>& items)
{
    QStringList names;
    for (const Item& item : items)
        names.append(item.name);
    return names;
}

} // namespace

class TestLocalFileSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsWhatItShows()
    {
        LocalFixture disk;
        for (const QString& name :
             {QStringLiteral("b.MOV"), QStringLiteral("a.png"), QStringLiteral("notes.txt"),
              QStringLiteral(".hidden.mov"), QStringLiteral("mov"), QStringLiteral("sub/x.mov"),
              QStringLiteral(" blank /y.mov")})
            QVERIFY(disk.write(name, "1234"));
        QVERIFY(QFile::link(disk.path(QStringLiteral("sub")), disk.path(QStringLiteral("linked"))));
        QVERIFY(QFile::link(disk.path(QStringLiteral("nothing")), disk.path(QStringLiteral("broken.mov"))));
        QSignalSpy changed(&disk.files, &FileSystem::directoryChanged);
        QList<FileSystemDirectory> directories{{QStringLiteral("before"), {}}};
        QList<FileSystemFile> files{{}};
        QVERIFY(!disk.files.getDirectories(disk.folder.path(), directories));
        QVERIFY(!disk.files.getFiles(disk.folder.path() + u'/', files));
        QVERIFY(changed.wait());
        QCOMPARE(changed[0][0].value<FileSystemDirectory>().fullPath, disk.folder.path());
        QVERIFY(disk.files.getDirectories(disk.folder.path(), directories));
        QVERIFY(disk.files.getFiles(disk.folder.path(), files));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(namesOf(directories),
                 QStringList({QStringLiteral("before"), QStringLiteral(".."), QStringLiteral(" blank "),
                              QStringLiteral("linked"), QStringLiteral("sub")}));
        QCOMPARE(directories[1].fullPath, QFileInfo(disk.folder.path()).path() + u'/');
        QCOMPARE(namesOf(files), QStringList({QStringLiteral("a.png"), QStringLiteral("b.MOV")}));
        QCOMPARE(files[0].sizeBytes, 4);
        QCOMPARE(files[0].getFullPath(), disk.path(QStringLiteral("a.png")));
    }

    void tellsChanges()
    {
        LocalFixture disk;
        QList<FileSystemFile> files;
        QSignalSpy changed(&disk.files, &FileSystem::directoryChanged);
        disk.files.getFiles(disk.folder.path(), files);
        QVERIFY(changed.wait());
        QVERIFY(disk.write(QStringLiteral("new.mov"), "1"));
        QTRY_VERIFY(disk.files.getFiles(disk.folder.path(), files) && files.size() == 1);
        QVERIFY(QFile::remove(disk.path(QStringLiteral("new.mov"))));
        QTRY_VERIFY(disk.files.getFiles(disk.folder.path(), files) && files.isEmpty());
        QVERIFY(disk.folder.remove());
        QSignalSpy invalid(&disk.files, &FileSystem::invalidDirectoryPathRequest);
        allowWarnings(QStringLiteral("Failed to watch path"));
        expectWarning(QStringLiteral("Unable to read files from invalid path:"));
        QVERIFY(!disk.files.getFiles(disk.folder.path(), files));
        expectWarning(QStringLiteral("Unable to read directories from invalid path:"));
        QList<FileSystemDirectory> directories;
        QVERIFY(!disk.files.getDirectories(QStringLiteral("relative"), directories));
        QCOMPARE(invalid.count(), 2);
        QVERIFY(!disk.files.isValidDirectoryPath(disk.folder.path()));
        QVERIFY(disk.files.isValidDirectoryPath(disk.files.defaultRootPath()));
    }

    void watchesTheLastTen()
    {
        LocalFixture disk;
        QList<FileSystemFile> files;
        for (int number = 0; number < 11; ++number) {
            QVERIFY(disk.write(QStringLiteral("%1/x.mov").arg(number), "1"));
            disk.files.getFiles(disk.path(QString::number(number)), files);
        }
        QSignalSpy changed(&disk.files, &FileSystem::directoryChanged);
        QTRY_COMPARE(changed.count(), 11);
        changed.clear();
        QVERIFY(disk.write(QStringLiteral("0/y.mov"), "1"));
        QVERIFY(disk.write(QStringLiteral("10/y.mov"), "1"));
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(changed[0][0].value<FileSystemDirectory>().name, QStringLiteral("10"));
    }

    // Of the picture of a screen's time, by what the main thread itself has to do.
    void listsFiftyThousandBesideTheMainThread()
    {
        LocalFixture disk;
        for (int number = 0; number < 50000; ++number) {
            const QString name =
                disk.path(QStringLiteral("picture.%1.png").arg(number, 6, 10, QLatin1Char('0')));
            QVERIFY(QFile(name).open(QIODevice::WriteOnly));
        }
        QSignalSpy changed(&disk.files, &FileSystem::directoryChanged);
        double answerMs = 0;
        QList<FileSystemFile> files;
        connect(&disk.files, &FileSystem::directoryChanged, &disk.files, [&] {
            const double begin = threadWorkMs();
            QVERIFY(disk.files.getFiles(disk.folder.path(), files));
            answerMs = threadWorkMs() - begin;
        });
        const double begin = threadWorkMs();
        QVERIFY(!disk.files.getFiles(disk.folder.path(), files));
        const double askMs = threadWorkMs() - begin;
        QVERIFY(changed.wait(30000));
        QCOMPARE(files.size(), 50000);
        QVERIFY2(askMs < 16 && answerMs < 16,
                 qPrintable(QStringLiteral("%1 %2 ms").arg(askMs).arg(answerMs)));
    }
};

HALCYRA_TEST(TestLocalFileSystem)

} // namespace vantrel::test

#include "test_localfilesystem.moc"

#include "common/filesystem/model/filesystemfile.h"
#include "common/filesystem/model/localhomelocations.h"
#include "common/filesystem/model/mounttable.h"
#include "common/filesystem/model/pathhelpers.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace vantrel::test {

class TestPaths : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void helpers_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("parent");
        QTest::addColumn<QString>("normal");
        QTest::addColumn<QString>("directory");
        const auto row = [](const char* path, const char* name, const char* parent, const char* normal,
                            const char* directory) {
            QTest::newRow(path) << QString::fromUtf8(path) << QString::fromUtf8(name)
                                << QString::fromUtf8(parent) << QString::fromUtf8(normal)
                                << QString::fromUtf8(directory);
        };
        row("/", "", "/", "/", "/");
        row("a/b/", "b", "a/", "a/b/", "a/b/");
        row("/a/../b.mov", "b.mov", "/a/../", "/b.mov", "/a/../b.mov/");
        row("/a//./b", "b", "/a//./", "/a/b", "/a//./b/");
        row("/a/b/..", "..", "/a/b/", "/a/", "/a/b/../");
        row("plain", "plain", "plain", "plain", "plain/");
        row("/ two blanks ", " two blanks ", "/", "/ two blanks ", "/ two blanks /");
        row("/a\\b", "a\\b", "/", "/a\\b", "/a\\b/");
    }

    void helpers()
    {
        QFETCH(QString, path);
        QTEST(getNameInPath(path), "name");
        QTEST(getParentPath(path), "parent");
        QTEST(normalizePath(path), "normal");
        QTEST(FileSystemDirectory::fromFullPath(path).fullPath, "directory");
    }

    void joins()
    {
        QCOMPARE(createJoinedPath(QStringLiteral("/"), QStringLiteral("x"), true), QStringLiteral("/x/"));
        QCOMPARE(createJoinedPath(QStringLiteral("/a"), QStringLiteral("x"), false), QStringLiteral("/a/x"));
        const FileSystemFile atRoot{QStringLiteral("x"), 1,
                                    FileSystemDirectory::fromFullPath(QStringLiteral("/"))};
        QCOMPARE(atRoot.getFullPath(), QStringLiteral("/x"));
        QVERIFY(isSamePath(QStringLiteral("/a/b/"), QStringLiteral("/a/./b")));
        QVERIFY(isPathBelow(QStringLiteral("/a/b"), QStringLiteral("/a/")));
        QVERIFY(!isPathBelow(QStringLiteral("/ab"), QStringLiteral("/a")));
        QVERIFY(!isPathBelow(QStringLiteral("/a/"), QStringLiteral("/a")));
        QVERIFY(isMediaFile(QStringLiteral("/A.MOV")) && !isImageFile(QStringLiteral("/A.MOV")));
    }

    void numbers()
    {
        QCOMPARE(numberedPath(QStringLiteral("/a/b.c.mov"), 2), QStringLiteral("/a/b.c (2).mov"));
        QCOMPARE(numberedPath(QStringLiteral("/a/.b/"), 3), QStringLiteral("/a/.b (3)"));
        const QString longest = QString(120, QChar(0xe9)) + QStringLiteral("0123456789a.mov"); // 255 bytes
        QVERIFY(getNameInPath(numberedPath(QStringLiteral("/") + longest, 12)).toUtf8().size() <= 255);
    }

    void volumes()
    {
        const QByteArray table =
            "27 1 254:0 / / rw - ext4 /dev/vda rw\n"
            "28 27 8:1 / /media/op/My\\040Stick rw shared:1 master:2 - vfat /dev/sdb1 rw\n"
            "29 27 8:2 / /boot/efi rw - vfat /dev/sda1 rw\n"
            "30 27 0:9 / /run/user/0 rw - tmpfs tmpfs rw\n"
            "31 27 7:1 / /snap/core rw - squashfs /dev/loop1 ro\n"
            "32 27 0:50 / /mnt/share rw - nfs4 server:/media rw\n"
            "half a line";
        QCOMPARE(volumesIn(table),
                 QStringList({QStringLiteral("/media/op/My Stick"), QStringLiteral("/mnt/share")}));
    }

    void followsVolumes()
    {
        const QTemporaryDir folder;
        QFile table(folder.filePath(QStringLiteral("mounts")));
        const auto write = [&](const QByteArray& text) {
            return table.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                   table.write(text) == text.size() && (table.close(), true);
        };
        QVERIFY(write("27 1 254:0 / / rw - ext4 /dev/vda rw\n"));
        LocalHomeLocations locations(table.fileName());
        const QList<HomeLocation> before = locations.homeLocations();
        QCOMPARE(before.first().path, QStringLiteral("/"));
        const HomeLocation stick{QStringLiteral("/media/stick"), QStringLiteral("/media/stick"), 1};
        QVERIFY(write("28 27 8:1 / /media/stick rw - vfat /dev/sdb1 rw\n"));
        QTRY_COMPARE(locations.homeLocations(), before + QList{stick});
        QSignalSpy changed(&locations, &HomeLocations::homeLocationsChanged);
        locations.addHomeLocation(stick);
        QCOMPARE(changed.count(), 0);
        QVERIFY(write("27 1 254:0 / / rw - ext4 /dev/vda rw\n"));
        QTRY_COMPARE(locations.homeLocations(), before);
        QCOMPARE(changed.count(), 1);
    }
};

HALCYRA_TEST(TestPaths)

} // namespace vantrel::test

#include "test_paths.moc"

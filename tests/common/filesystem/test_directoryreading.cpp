#include "common/filesystem/operations/asyncfilesystemreader.h"
#include "common/filesystem/operations/recursivedirectorylister.h"
#include "tests/common/filesystem/fakefilesystem.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using vantrel::test::expectWarning;
using vantrel::test::FakeFileSystem;
using Item = RecursiveDirectoryLister::DirectoryItem;

namespace {

/// "name:size" of files, "name:size(...)" of directories.
QString told(const Item& item)
{
    QStringList parts;
    for (const Item& one : item.items)
        parts << told(one);
    const QString self = QStringLiteral("%1:%2").arg(item.name).arg(item.sizeBytes);
    return item.type == Item::Directory
               ? self + QLatin1Char('(') + parts.join(QLatin1Char(' ')) + QLatin1Char(')')
               : self;
}

QStringList texts(const QList<std::filesystem::path>& paths)
{
    QStringList list;
    for (const auto& path : paths)
        list << QString::fromStdString(path.string());
    return list;
}

void fill(FakeFileSystem& files)
{
    files.add(QStringLiteral("/top/a.mov"), 1);
    files.add(QStringLiteral("/top/one/b.mov"), 10);
    files.add(QStringLiteral("/top/one/two/c.mov"), 100);
    files.add(QStringLiteral("/top/other/d.mov"), 1000);
    files.add(QStringLiteral("/beside/e.mov"), 10000);
}

} // namespace

class TestDirectoryReading : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void walks_data();
    void walks();
    void waitsForTheServer();
    void refusedPath();
    void tooDeep();
    void stopped();
    void readsDirectly();
    void caches();
    void cachesOnce();
    void nearestAnswers();
};

void TestDirectoryReading::walks_data()
{
    QTest::addColumn<bool>("answersLater");
    QTest::addColumn<int>("depth");
    QTest::addColumn<QString>("tree");
    const QString all =
        QStringLiteral(".:1111(one:110(two:100(c.mov:100) b.mov:10) other:1000(d.mov:1000) a.mov:1)");
    const QString root = QStringLiteral(".:1(one:0() other:0() a.mov:1)");
    const QString two = QStringLiteral(".:1011(one:10(two:0() b.mov:10) other:1000(d.mov:1000) a.mov:1)");
    for (const bool later : {false, true}) {
        const char* const when = later ? "later" : "at once";
        QTest::addRow("all, %s", when) << later << 0 << all;
        QTest::addRow("the root, %s", when) << later << 1 << root;
        QTest::addRow("two levels, %s", when) << later << 2 << two;
    }
}

void TestDirectoryReading::walks()
{
    QFETCH(bool, answersLater);
    QFETCH(int, depth);
    QFETCH(QString, tree);
    FakeFileSystem files;
    fill(files);
    files.answersLater = answersLater;
    RecursiveDirectoryLister lister(&files, QStringLiteral("/top"), depth);
    for (int round = 0; round < 2; ++round) {
        lister.start();
        lister.start();
        QVERIFY(lister.isRunning() && !lister.hasFinished());
        QVERIFY(QTest::qWaitFor([&] { return lister.hasFinished(); }));
        QVERIFY(lister.isValid() && !lister.isRunning());
        Item item;
        QVERIFY(lister.getRootListing(item));
        QCOMPARE(told(item), tree);
        QVERIFY(!lister.getListing(QStringLiteral("/beside"), item));
        QCOMPARE(told(item), tree);
    }
    QVERIFY(!files.asked.filter(QStringLiteral("..")).size());
}

void TestDirectoryReading::waitsForTheServer()
{
    FakeFileSystem files;
    fill(files);
    files.ready = false;
    RecursiveDirectoryLister lister(&files, QStringLiteral("/top"), 0);
    lister.start();
    QVERIFY(!QTest::qWaitFor([&] { return lister.hasFinished(); }, 100));
    files.ready = true;
    QVERIFY(QTest::qWaitFor([&] { return lister.hasFinished(); }));
    QVERIFY(lister.isValid());
}

void TestDirectoryReading::refusedPath()
{
    FakeFileSystem files;
    fill(files);
    files.answersLater = true;
    files.invalid = {QStringLiteral("/top/one/two/")};
    RecursiveDirectoryLister lister(&files, QStringLiteral("/top/"), 0);
    lister.start();
    QVERIFY(QTest::qWaitFor([&] { return lister.hasFinished(); }));
    QVERIFY(!lister.isValid());
}

void TestDirectoryReading::tooDeep()
{
    FakeFileSystem files;
    files.add(QStringLiteral("/top") + QStringLiteral("/x").repeated(64) + QStringLiteral("/y/a.mov"), 1);
    RecursiveDirectoryLister lister(&files, QStringLiteral("/top"), 0);
    lister.start();
    QVERIFY(QTest::qWaitFor([&] { return lister.hasFinished(); }));
    Item item;
    QVERIFY(lister.isTooDeep() && !lister.getRootListing(item));
}

void TestDirectoryReading::stopped()
{
    auto files = std::make_unique<FakeFileSystem>();
    fill(*files);
    RecursiveDirectoryLister lister(files.get(), QStringLiteral("/top"), 0);
    QSignalSpy valid(&lister, &RecursiveDirectoryLister::isValidChanged);
    lister.start();
    lister.stop();
    QVERIFY(!lister.isValid() && lister.hasFinished() && !lister.isRunning());
    QCOMPARE(valid.size(), 2);
    lister.start();
    files.reset();
    QVERIFY(QTest::qWaitFor([&] { return lister.hasFinished(); }));
    QVERIFY(!lister.isValid());
}

void TestDirectoryReading::readsDirectly()
{
    DefaultFileSystemReader reader;
    expectWarning(QStringLiteral("because the target file system is not defined"));
    QVERIFY(reader.getFileSystemPaths(QStringLiteral("/top")).isEmpty());
    auto files = std::make_unique<FakeFileSystem>();
    fill(*files);
    reader.setFileSystem(files.get());
    const QStringList expected{QStringLiteral("/top/one/"), QStringLiteral("/top/other/"),
                               QStringLiteral("/top/a.mov")};
    QCOMPARE(texts(reader.getFileSystemPaths(QStringLiteral("/top"))), expected);
    QCOMPARE(texts(reader.getFileSystemPaths(std::filesystem::path("/top"))), expected);
    files->answersLater = true;
    expectWarning(QStringLiteral("Failed to get directories for"));
    expectWarning(QStringLiteral("Failed to get files for"));
    QVERIFY(reader.getFileSystemPaths(QStringLiteral("/top")).isEmpty());
    files.reset();
    expectWarning(QStringLiteral("empty file system"));
    QVERIFY(reader.getFileSystemPaths(QStringLiteral("/top")).isEmpty());
}

void TestDirectoryReading::caches()
{
    FakeFileSystem files;
    fill(files);
    files.answersLater = true;
    AsyncFileSystemReader reader;
    expectWarning(QStringLiteral("Aborting due empty cache directory"));
    QVERIFY(!reader.startCaching());
    reader.addCachePaths({QStringLiteral("/top"), QStringLiteral("/beside"), QStringLiteral("/top")});
    QCOMPARE(reader.cachePaths().size(), 2);
    expectWarning(QStringLiteral("Aborting due missing file system"));
    QVERIFY(!reader.startCaching());
    reader.setFileSystem(&files);
    expectWarning(QStringLiteral("is not ready"));
    QVERIFY(reader.getFileSystemPaths(QStringLiteral("/top")).isEmpty());
    QSignalSpy ready(&reader, &AsyncFileSystemReader::isReadyChanged);
    QVERIFY(reader.startCaching());
    expectWarning(QStringLiteral("Skipping request"));
    QVERIFY(!reader.startCaching());
    expectWarning(QStringLiteral("already running"));
    reader.addCachePath(QStringLiteral("/x"));
    QVERIFY(QTest::qWaitFor([&] { return reader.isReady(); }));
    QVERIFY(!reader.isCaching());
    QCOMPARE(ready.size(), 2);
    QCOMPARE(texts(reader.getFileSystemPaths(QStringLiteral("/top/one"))),
             QStringList({QStringLiteral("/top/one/two/"), QStringLiteral("/top/one/b.mov")}));
    QCOMPARE(texts(reader.getFileSystemPaths(QStringLiteral("/beside/"))),
             QStringList({QStringLiteral("/beside/e.mov")}));
    expectWarning(QStringLiteral("mismatching cache paths"));
    QVERIFY(reader.getFileSystemPaths(QStringLiteral("/topmost")).isEmpty());
    expectWarning(QStringLiteral("Unable to find paths for"));
    QVERIFY(reader.getFileSystemPaths(QStringLiteral("/top/none")).isEmpty());
    for (const char* refused : {"Unable to set search depth", "Unable to add path", "Unable to set"})
        expectWarning(QString::fromUtf8(refused));
    reader.setSearchDepth(3);
    reader.addCachePath(QStringLiteral("/x"));
    reader.setFileSystem(nullptr);
    reader.reset();
    QVERIFY(!reader.isReady() && reader.cachePaths().isEmpty());
    // One tree that cannot be read, and nothing is ready.
    files.invalid = {QStringLiteral("/nowhere/")};
    reader.addCachePaths({QStringLiteral("/nowhere"), QStringLiteral("/beside")});
    QVERIFY(reader.startCaching());
    QVERIFY(QTest::qWaitFor([&] { return !reader.isCaching(); }));
    QVERIFY(!reader.isReady());
}

/// What lies below another path is read with that one.
void TestDirectoryReading::cachesOnce()
{
    FakeFileSystem files;
    fill(files);
    AsyncFileSystemReader reader;
    reader.setFileSystem(&files);
    reader.addCachePaths(
        {QStringLiteral("/top/one"), QStringLiteral("/top"), QStringLiteral("/top/one/two/")});
    QVERIFY(reader.startCaching());
    QVERIFY(QTest::qWaitFor([&] { return reader.isReady(); }));
    QCOMPARE(files.asked.count(QStringLiteral("/top/one/two/")), 1);
    QCOMPARE(texts(reader.getFileSystemPaths(QStringLiteral("/top/one/two"))),
             QStringList({QStringLiteral("/top/one/two/c.mov")}));
}

/// What a limit has kept one from reading may be another's own.
void TestDirectoryReading::nearestAnswers()
{
    FakeFileSystem files;
    fill(files);
    AsyncFileSystemReader reader;
    reader.setFileSystem(&files);
    reader.setSearchDepth(1);
    reader.addCachePaths({QStringLiteral("/top"), QStringLiteral("/top/one")});
    QVERIFY(reader.startCaching());
    QVERIFY(QTest::qWaitFor([&] { return reader.isReady(); }));
    QCOMPARE(texts(reader.getFileSystemPaths(QStringLiteral("/top/one"))),
             QStringList({QStringLiteral("/top/one/two/"), QStringLiteral("/top/one/b.mov")}));
}

HALCYRA_TEST(TestDirectoryReading)
#include "test_directoryreading.moc"

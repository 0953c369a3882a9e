#include "common/filesystem/models/filerows.h"
#include "common/filesystem/models/filesmodel.h"
#include "common/filesystem/models/pathmodel.h"
#include "tests/support/fakefiles.h"
#include "tests/support/testmain.h"
#include "tests/support/threadwork.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

#include <ctime>
#include <malloc.h>

using namespace vantrel;
using namespace vantrel::test;

namespace {

QStringList namesOf(const FilesModel& model)
{
    QStringList names;
    for (int row = 0; row < model.count(); ++row)
        names.append(model.index(row).data(FilesModel::NameRole).toString());
    return names;
}

QVariant value(const FilesModel& model, const QString& name, int role)
{
    return model.index(model.rowOf(name)).data(role);
}

} // namespace

class TestFilesModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_files = std::make_unique<FakeFiles>(QStringLiteral("Local files"));
        for (const char* path : {"/shows/Clip 10.mov", "/shows/clip 2.mov", "/shows/Act/", "/shows/Zoom.png"})
            m_files->add(QString::fromLatin1(path));
        m_files->add(QStringLiteral("/shows/Big.wav"), 5000);
    }

    void rowsAreSortedAsPeopleRead()
    {
        FilesModel model(m_files.get(), &m_homes);
        const QAbstractItemModelTester tester(&model);
        model.setDirectoryPath(QStringLiteral("/shows"));
        QCOMPARE(model.directoryPath(), QStringLiteral("/shows/"));
        // The way up is no row: who selects all must not have it.
        const QStringList byName{"Act", "Big.wav", "clip 2.mov", "Clip 10.mov", "Zoom.png"};
        QCOMPARE(namesOf(model), byName);
        model.sortBy(FilesModel::NameRole);
        QCOMPARE(namesOf(model), (QStringList{"Act", "Zoom.png", "Clip 10.mov", "clip 2.mov", "Big.wav"}));
        model.sortBy(FilesModel::SizeRole);
        QCOMPARE(namesOf(model), (QStringList{"Act", "clip 2.mov", "Clip 10.mov", "Zoom.png", "Big.wav"}));
        model.sortBy(FilesModel::TypeTextRole);
        QCOMPARE(namesOf(model), (QStringList{"Act", "clip 2.mov", "Clip 10.mov", "Zoom.png", "Big.wav"}));
        QCOMPARE(value(model, QStringLiteral("Act"), FilesModel::AbsolutePathRole),
                 QStringLiteral("/shows/Act/"));
        QCOMPARE(value(model, QStringLiteral("Big.wav"), FilesModel::TypeTextRole), QStringLiteral("WAV"));
    }

    /// Also with letters that only a collation knows where to put.
    void namesOfAllLanguagesAreSorted()
    {
        FileRows rows{{"Zug 2.mov"}, {"Öffnung.mov"}, {"zug 10.mov"},
                      {"Paus.mov"},  {"Zug 02.wav"},  {"zug.mov"}};
        sortRows(rows, {});
        QStringList names;
        for (const FileRow& row : rows)
            names.append(row.name);
        QCOMPARE(names, (QStringList{"Öffnung.mov", "Paus.mov", "Zug 2.mov", "Zug 02.wav", "zug 10.mov",
                                     "zug.mov"}));
        FileRows plain(rows.begin() + 1, rows.end());
        sortRows(plain, {});
        names.clear();
        for (const FileRow& row : plain)
            names.append(row.name);
        QCOMPARE(names, (QStringList{"Paus.mov", "Zug 2.mov", "Zug 02.wav", "zug 10.mov", "zug.mov"}));
    }

    void changesMoveAsLittleAsTheyCan()
    {
        FilesModel model(m_files.get(), &m_homes);
        const QAbstractItemModelTester tester(&model);
        model.setDirectoryPath(QStringLiteral("/shows/"));
        const QPersistentModelIndex kept = model.index(model.rowOf(QStringLiteral("Zoom.png")));
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        m_files->remove(QStringLiteral("/shows/Big.wav"));
        m_files->add(QStringLiteral("/shows/Curtain.mov"));
        m_files->add(QStringLiteral("/shows/Clip 10.mov"), 77);
        m_files->change(QStringLiteral("/shows/"));
        QCOMPARE(namesOf(model),
                 (QStringList{"Act", "clip 2.mov", "Clip 10.mov", "Curtain.mov", "Zoom.png"}));
        QCOMPARE(value(model, QStringLiteral("Clip 10.mov"), FilesModel::SizeRole), 77);
        QCOMPARE(kept.data(FilesModel::NameRole), QStringLiteral("Zoom.png"));
        QVERIFY(resets.isEmpty());
        m_files->change(QStringLiteral("/elsewhere/")); // no business of this model
        QCOMPARE(model.count(), 5);
    }

    void placesAreTheTop()
    {
        FilesModel model(m_files.get(), &m_homes);
        const QAbstractItemModelTester tester(&model);
        model.setDirectoryPath(QStringLiteral("Drives"));
        QVERIFY(model.isAtTop());
        QCOMPARE(namesOf(model), (QStringList{"/", "STICK"}));
        QCOMPARE(value(model, QStringLiteral("STICK"), FilesModel::AbsolutePathRole),
                 QStringLiteral("/media/STICK/"));
        m_homes.places.removeLast();
        Q_EMIT m_homes.homeLocationsChanged();
        QCOMPARE(model.count(), 1);
        model.setDirectoryPath(QStringLiteral("/shows/Act/"));
        QCOMPARE(model.parentPath(), QStringLiteral("/shows/"));
        QStringList crumbs;
        for (const QVariant& crumb : model.breadcrumbs())
            crumbs.append(crumb.toMap().value(QStringLiteral("path")).toString());
        QCOMPARE(crumbs, (QStringList{"Drives", "/", "/shows/", "/shows/Act/"}));
        m_homes.places = FakeHomes().places;
    }

    /// A server answers later, and what shows meanwhile is not the directory that was there before.
    void slowAnswersAreWaitedFor()
    {
        FakeFiles server(QStringLiteral("Server files"), true);
        server.add(QStringLiteral("/a/one.mov"));
        server.add(QStringLiteral("/b/two.mov"));
        server.add(QStringLiteral("/b/"));
        FilesModel model(&server);
        const QAbstractItemModelTester tester(&model);
        model.setDirectoryPath(QStringLiteral("/a/"));
        QVERIFY(model.isWaiting());
        server.release(QStringLiteral("/a/"));
        QCOMPARE(namesOf(model), QStringList{"one.mov"});
        model.setDirectoryPath(QStringLiteral("/b/"));
        QCOMPARE(model.count(), 0);
        QVERIFY(model.isWaiting());
        server.setLoading(true);
        server.release(QStringLiteral("/b/"));
        QCOMPARE(namesOf(model), QStringList{"two.mov"}); // known, so a transfer need not end first
        server.add(QStringLiteral("/b/three.mov"));
        server.change(QStringLiteral("/b/"));
        QCOMPARE(namesOf(model), QStringList{"two.mov"}); // loading: waits
        server.setLoading(false);
        QCOMPARE(model.count(), 2);
        server.setReady(false);
        server.add(QStringLiteral("/b/four.mov"));
        server.setReady(true);
        QCOMPARE(model.count(), 3);
    }

    void badPathsChangeNothing()
    {
        FilesModel model(m_files.get(), &m_homes);
        model.setDirectoryPath(QStringLiteral("/shows/"));
        QSignalSpy refused(&model, &FilesModel::pathRefused);
        model.setDirectoryPath(QStringLiteral("/nowhere"));
        QCOMPARE(refused.size(), 1);
        QCOMPARE(model.directoryPath(), QStringLiteral("/shows/"));
        QCOMPARE(model.count(), 5);
        model.setDirectoryPath(QStringLiteral("/shows/../shows/Act"));
        QCOMPARE(model.directoryPath(), QStringLiteral("/shows/Act/"));
        // The folder goes while it is looked at: its parent takes over.
        m_files->remove(QStringLiteral("/shows/Act/"));
        m_files->change(QStringLiteral("/shows/Act/"));
        QTRY_COMPARE(model.directoryPath(), QStringLiteral("/shows/"));
    }

    void metadataIsAskedForOnce()
    {
        FakeFiles server(QStringLiteral("Server files"));
        server.add(QStringLiteral("/a.mov"));
        server.add(QStringLiteral("/b.mov"));
        FileMetadata metadata;
        metadata.durationMs = 63500;
        metadata.thumbnail = QUrl(QStringLiteral("file:///a.mov"));
        server.metadata.insert(QStringLiteral("/a.mov"), metadata);
        FilesModel model(&server);
        model.setDirectoryPath(QStringLiteral("/"));
        QCOMPARE(value(model, QStringLiteral("a.mov"), FilesModel::DurationTextRole), QStringLiteral("1:04"));
        QCOMPARE(value(model, QStringLiteral("b.mov"), FilesModel::DurationTextRole), QStringLiteral("-"));
        const QString picture = value(model, QStringLiteral("a.mov"), FilesModel::ThumbnailRole).toString();
        QVERIFY(picture.startsWith(QLatin1String("image://thumbnails/?file=")));
        QCOMPARE(value(model, QStringLiteral("a.mov"), FilesModel::ThumbnailRole).toString(), picture);
        QCOMPARE(server.asked.size(), 2);
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        metadata.durationMs = 3723000;
        Q_EMIT server.fileMetadataChanged(
            {QStringLiteral("b.mov"), 0, FileSystemDirectory::fromFullPath("/")}, metadata);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(value(model, QStringLiteral("b.mov"), FilesModel::DurationTextRole),
                 QStringLiteral("1:02:03"));
        model.sortBy(FilesModel::DurationValueMsRole);
        model.sortBy(FilesModel::DurationValueMsRole);
        QTRY_COMPARE(namesOf(model), (QStringList{"b.mov", "a.mov"}));
        QCOMPARE(server.asked.size(), 2);
    }

    /// A place in the order is found without the pictures of rows that nobody looks at.
    void sortingByDurationFetchesNoPictures()
    {
        FilesModel model(m_files.get());
        model.setDirectoryPath(QStringLiteral("/shows"));
        model.sortBy(FilesModel::DurationValueMsRole);
        QTRY_COMPARE(m_files->askedAlone.size(), 4);
        QVERIFY(m_files->asked.isEmpty());
    }

    /// Fifty thousand files: soon there, and nothing holds the window up meanwhile.
    void manyRows()
    {
        FakeFiles server(QStringLiteral("Server files"));
        for (int i = 0; i < 50000; ++i)
            server.add(QStringLiteral("/many/Camera %1 take %2.mov").arg(i * 7919 % 50000).arg(i % 9));
        FilesModel model(&server);
        const auto before = mallinfo2().uordblks;
        // Of this process alone: what else runs on the machine does not count.
        const auto work = [] { return static_cast<long>(std::clock() * 1000 / CLOCKS_PER_SEC); };
        const long start = work();
        model.setDirectoryPath(QStringLiteral("/many/"));
        QTRY_COMPARE(model.count(), 50000);
        const long shown = work() - start;
        // Of this thread alone: the one that sorts may have its turn meanwhile.
        const double held = threadWorkMs();
        model.sortBy(FilesModel::NameRole);
        const double blocked = threadWorkMs() - held;
        QTRY_COMPARE(value(model, QStringLiteral("Camera 49999 take 0.mov"), FilesModel::NumberRole).toInt() <
                         10,
                     true);
        const auto perRow = (mallinfo2().uordblks - before) / 50000;
        qInfo("50,000 rows: shown after %ld ms, sorting held %.1f ms, %zu bytes a row", shown, blocked,
              perRow);
        QVERIFY(shown < 300 * slowness);
        QVERIFY(blocked < 16 * slowness);
        QVERIFY(perRow < 600);
    }

    void changedRowsAreFound()
    {
        const FileRows from{{"a", 1, false}, {"b", 1, false}, {"c", 1, false}};
        RowChange change = changeRows(from, {{"b", 2, false}, {"c", 1, true}, {"d", 1, false}});
        QCOMPARE(change.removed, (std::vector<int>{0, 2}));
        QCOMPARE(change.inserted, (std::vector<int>{1, 2}));
        QCOMPARE(change.changed, std::vector<int>{0});
        QVERIFY(!change.isReset);
        QVERIFY(changeRows(from, {{"c", 1, false}, {"a", 1, false}}).isReset); // one moved
    }

    void pathsAreKeptOnce()
    {
        PathModel paths(m_files.get());
        const QAbstractItemModelTester tester(&paths);
        for (const char* path : {"/shows", "", "/shows", "/"})
            paths.append(QString::fromLatin1(path));
        QCOMPARE(paths.count(), 2);
        QCOMPARE(paths.index(0).data(PathModel::PathRole), QStringLiteral("/shows"));
        QCOMPARE(paths.index(1).data(PathModel::NameRole), QStringLiteral("Local files"));
    }

private:
    std::unique_ptr<FakeFiles> m_files;
    FakeHomes m_homes;
};

HALCYRA_TEST(TestFilesModel)
#include "test_filesmodel.moc"

#include "common/media/items/guimediaslot.h"
#include "common/media/items/medialibraryfunctional.h"
#include "common/media/models/collectionmodel.h"
#include "common/media/models/collectionselectormodel.h"
#include "common/media/models/sortedcollectionselectormodel.h"
#include "common/media/models/sortedlibrarymodel.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using media::MediaUtils;
using test::MediaMirror;

namespace {

/// The rows of a model as text, depth first; empty slots leave nothing.
QStringList rows(const QAbstractItemModel& model, const QModelIndex& parent = {})
{
    QStringList lines;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        const QModelIndex name = index.siblingAtColumn(MediaLibraryModel::NameColumn);
        if (name.data().isValid()) {
            lines.append(QStringLiteral("%1 %2 %3 %4")
                             .arg(index.data().toInt())
                             .arg(name.data().toString())
                             .arg(index.siblingAtColumn(MediaLibraryModel::OutpointColumn).data().toDouble())
                             .arg(index.siblingAtColumn(MediaLibraryModel::UrlColumn).data().toString()));
        }
        lines += rows(model, index);
    }
    return lines;
}

} // namespace

class TestModels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomPatches_data();
    void randomPatches();
    void slotColumns();
    void addresses();
    void indexesParse();
    void oneRowIsTold();
    void slotsOfOneEditAreToldAtOnce();
    void selectorKeepsItsChoice();
    void tenThousandSlots();
};

void TestModels::randomPatches_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 20; seed < 28; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestModels::randomPatches()
{
    QFETCH(unsigned, seed);
    test::allowWarnings(QStringLiteral("Missing slot: '")); // entries may name any slot
    test::RandomEdits random(seed);
    MediaMirror mirror(test::makeLibrary(3, 4));
    SortedLibraryModel sorted(&mirror.model);
    CollectionModel collections(&mirror.provider);
    CollectionSelectorModel selector(&mirror.provider);
    SortedCollectionSelectorModel sortedSelector(&selector);
    QList<QAbstractItemModel*> models{&mirror.model, &sorted, &collections, &selector, &sortedSelector};
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
    for (QAbstractItemModel* model : models)
        testers.push_back(std::make_unique<QAbstractItemModelTester>(
            model, QAbstractItemModelTester::FailureReportingMode::Fatal));
    for (int step = 0; step < 60; ++step) {
        if (random.below(20) == 0)
            mirror.load();
        mirror.edit([&](MediaLibrary& library) { random.edit(library); });
        const MediaMirror fresh(makeRef<MediaLibrary>(*mirror.library));
        QCOMPARE(rows(mirror.model), rows(fresh.model));
        QCOMPARE(rows(sorted), rows(fresh.model)); // no slot has the number 0
        QCOMPARE(collections.rowCount(), mirror.provider.collections().size());
        QCOMPARE(sortedSelector.rowCount(), collections.rowCount());
    }
}

void TestModels::slotColumns()
{
    MediaMirror mirror(test::makeLibrary(2, 2));
    mirror.edit([](MediaLibrary& library) {
        library.findSlot(2, 2)->setInpoint(8);
        library.findSlot(2, 2)->setOutpoint(4);
        library.findSlot(2, 2)->setScaleMode(ScaleMode::TopLeft);
        library.findSlot(2, 1)->setDurationType(MediaDurationType::Infinite);
        library.findCollection(2)->insertMediaSlot(5, MediaSlot(), true);
    });
    const QModelIndex slot = mirror.model.slotIndex({2, 2});
    const auto column = [&](int number) { return slot.siblingAtColumn(number).data(); };
    QCOMPARE(column(0), QVariant(2));
    QCOMPARE(column(4), QVariant(QStringLiteral("c2s2")));
    QCOMPARE(column(5), QVariant(10.0)); // the in point lies beyond the out point
    QCOMPARE(column(6), QVariant(true));
    QCOMPARE(column(7), QVariant(8.0));
    QCOMPARE(column(8), QVariant(4.0));
    QCOMPARE(column(9), QVariant(QStringLiteral("Top left")));
    QCOMPARE(column(10), QVariant(QStringLiteral("file:///clips/c2s2.mp4")));
    QVERIFY(!column(3).isValid());
    QCOMPARE(slot.data(MediaLibraryModel::DurationRole).toString(), QStringLiteral("00:00:10.000"));
    QCOMPARE(slot.data(MediaLibraryModel::MediaTypeRole).toInt(), static_cast<int>(MediaType::VideoFile));
    QCOMPARE(mirror.model.slotIndex({2, 1}).data(MediaLibraryModel::DurationRole).toString(),
             QStringLiteral("Infinite"));
    QVERIFY(slot.data(MediaLibraryModel::ThumbRole)
                .toString()
                .startsWith(QStringLiteral("image://thumbnails/?file=")));
    QVERIFY(!mirror.model.slotIndex({2, 5}).siblingAtColumn(1).data().isValid());
    QCOMPARE(mirror.model.headerData(4, Qt::Horizontal).toString(), QStringLiteral("Name"));
    QCOMPARE(mirror.model.roleNames().value(MediaLibraryModel::ScaleModeRole), QByteArray("scale mode"));
}

void TestModels::addresses()
{
    MediaMirror mirror(test::makeLibrary(2, 2));
    mirror.edit([](MediaLibrary& library) {
        library.addPlaylist(1, Playlist("p"));
        library.findPlaylist(1)->addEntry(
            {1, 0}, {test::slotUrl(2, 1), EndAction::Next, TakeTransitionType::DirectCut, 1});
    });
    const auto find = [&](const char* text) {
        return mirror.model.getSlotIndexFromMediaAddress(QString::fromLatin1(text));
    };
    QCOMPARE(find("brume://collections/2/slots/1"), mirror.model.slotIndex({2, 1}));
    QCOMPARE(find("brume://playlists/1/entries/1"), mirror.model.slotIndex({2, 1}));
    QVERIFY(!find("brume://collections/9/slots/1").isValid());
    test::expectWarning(QStringLiteral("No Playlist found with a number: 9"));
    QVERIFY(!find("brume://playlists/9/entries/1").isValid());
    test::expectWarning(QStringLiteral("No entry found with a address: 7"));
    QVERIFY(!find("brume://playlists/1/entries/7").isValid());
    QCOMPARE(
        mirror.model.data(QStringLiteral("brume://playlists/1/entries/1"), Qt::DisplayRole, 4).toString(),
        QStringLiteral("c2s1"));
    QVERIFY(!mirror.model.data(QStringLiteral("nothing"), Qt::DisplayRole, 4).isValid());
    QCOMPARE(MediaLibraryModel::normalizeMediaAddress(QStringLiteral("brume://collection/1/slots/1")),
             QString());

    using F = MediaLibraryFunctional;
    const MediaAddress slot =
        F::resolveMediaSlotAddress(&mirror.playlists, QStringLiteral("brume://playlists/1/entries/1"));
    QVERIFY(slot.isValid());
    QCOMPARE(slot.collection, 2);
    QVERIFY(!F::resolveMediaSlotAddress(&mirror.playlists, QStringLiteral("brume://playlists/1/entries/2"))
                 .isValid());
    QVERIFY(!F::resolveMediaSlotAddress(&mirror.playlists, QStringLiteral("x")).isValid());
}

void TestModels::indexesParse()
{
    MediaMirror mirror(test::makeLibrary(3, 3));
    mirror.edit([](MediaLibrary& library) { library.removeCollection(1); });
    SortedLibraryModel sorted(&mirror.model);
    const QModelIndex own = mirror.model.slotIndex({3, 2});
    for (const QModelIndex& index : {own, own.siblingAtColumn(6), sorted.mapFromSource(own)}) {
        const MediaAddress parsed = MediaUtils::parseCollectionIndex(index);
        QVERIFY(parsed.isValid());
        QCOMPARE(parsed.collection, 3);
        QCOMPARE(parsed.slot, 2);
    }
    test::expectWarning(QStringLiteral("parseCollectionIndex invalid index given"));
    QVERIFY(!MediaUtils::parseCollectionIndex({}).isValid());
    test::expectWarning(QStringLiteral("Failed to acquire url data at index"));
    QVERIFY(!MediaUtils::parseCollectionIndex(mirror.model.collectionIndex(3)).isValid());
}

void TestModels::oneRowIsTold()
{
    MediaMirror mirror(test::makeLibrary(1, 5));
    QSignalSpy changed(&mirror.model, &QAbstractItemModel::dataChanged);
    const auto told = [&changed] {
        QStringList list;
        for (const auto& call : std::as_const(changed))
            list.append(QString::number(call.first().toModelIndex().row()));
        changed.clear();
        return list.join(u' ');
    };
    const QString play = QStringLiteral("play");
    mirror.model.setPreviewState(0, QStringLiteral("brume://collections/1/slots/2"), play);
    QCOMPARE(told(), QStringLiteral("2"));
    mirror.model.setPreviewState(0, QStringLiteral("brume://collections/1/slots/4"), play);
    QCOMPARE(told(), QStringLiteral("2 4"));
    mirror.model.setPreviewState(0, QStringLiteral("brume://collections/1/slots/4"), play);
    QCOMPARE(told(), QString());
    mirror.model.setPreviewState(0, QString(), QStringLiteral("stop"));
    QCOMPARE(told(), QStringLiteral("4"));
    mirror.model.onThumbnailUpdate(QUrl(QStringLiteral("file:///clips/c1s3.mp4")));
    QCOMPARE(told(), QStringLiteral("3"));
    mirror.edit([](MediaLibrary& library) { library.findCollection(1)->removeMediaSlot(3); });
    QCOMPARE(told(), QStringLiteral("3"));
    mirror.model.onThumbnailUpdate(QUrl(QStringLiteral("file:///clips/c1s3.mp4")));
    QCOMPARE(told(), QString());
}

/// Views have to do with each word: a drop of thousands of slots would hold the window for ten pictures.
void TestModels::slotsOfOneEditAreToldAtOnce()
{
    MediaMirror mirror(test::makeLibrary(1, 5));
    QSignalSpy added(&mirror.model, &QAbstractItemModel::rowsInserted);
    int changes = 0;
    connect(&mirror.model, &QAbstractItemModel::dataChanged, this,
            [&changes](const QModelIndex& first) { changes += first.parent().isValid(); });
    mirror.edit([](MediaLibrary& library) {
        for (int slot = 3; slot <= 5; ++slot)
            library.findSlot(1, slot)->setName("other");
        for (int slot = 6; slot <= 300; ++slot)
            library.getCollection(1)->insertMediaSlot(slot, test::makeSlot("new"), true);
    });
    QCOMPARE(mirror.model.rowCount(mirror.model.collectionIndex(1)), 301);
    QCOMPARE(added.size(), 1);
    QCOMPARE(changes, 1);
}

void TestModels::selectorKeepsItsChoice()
{
    MediaMirror mirror(test::makeLibrary(3, 1));
    CollectionSelectorModel selector(&mirror.provider);
    QSignalSpy selected(&selector, &CollectionSelectorModel::selectionChanged);
    QCOMPARE(selector.selectedCollectionIndex(), 1);
    selector.setSelectedCollectionIndex(2);
    QCOMPARE(selected.takeFirst(), QVariantList({2, 1}));
    selector.setSelectedCollectionIndex(8);
    QCOMPARE(selector.selectedCollectionIndex(), 2);
    mirror.edit([](MediaLibrary& library) { library.removeCollection(1); });
    mirror.load();
    QCOMPARE(selector.selectedCollectionIndex(), 2);
    mirror.edit([](MediaLibrary& library) { library.removeCollection(2); });
    QCOMPARE(selector.selectedCollectionIndex(), 3);
    mirror.edit([](MediaLibrary& library) { library.removeCollection(3); });
    QCOMPARE(selector.selectedCollectionIndex(), -1);
    mirror.edit(
        [](MediaLibrary& library) { library.insertMediaCollection(7, MediaCollection("Show"), true); });
    QCOMPARE(selector.selectedCollectionIndex(), 7);
    QCOMPARE(selector.index(0, 1).data().toString(), QStringLiteral("7: Show"));
    QCOMPARE(selector.index(0, 0).data(CollectionSelectorModel::EditTextRole).toString(),
             QStringLiteral("Show"));
}

void TestModels::tenThousandSlots()
{
    MediaMirror mirror(test::makeLibrary(2, 5000));
    QElapsedTimer timer;
    timer.start();
    for (int i = 1; i <= 500; ++i) {
        mirror.edit([i](MediaLibrary& library) { library.findSlot(1, i)->setInpoint(1); });
        mirror.model.onThumbnailUpdate(QUrl(QStringLiteral("file:///clips/c2s%1.mp4").arg(i)));
    }
    // An edit costs what it touches: with a walk of all slots each this takes many seconds.
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(mirror.provider.slot({1, 500})->inpoint(), 1.0);
}

HALCYRA_TEST(TestModels)
#include "test_models.moc"

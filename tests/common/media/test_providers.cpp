#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "tarn/media/playenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/testmain.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <utility>

using namespace vantrel;
using test::MediaMirror;

namespace {

PlaylistEntry entryFor(int collection, int slot)
{
    return {test::slotUrl(collection, slot), EndAction::Next, TakeTransitionType::DirectCut, 1.0};
}

/// All that the providers hold of what exists, as text.
QStringList contents(const MediaLibraryProvider& media, const PlaylistProvider& playlists)
{
    QStringList lines;
    for (const auto& collection : media.collections()) {
        lines.append(QStringLiteral("c %1 %2").arg(collection->index()).arg(collection->name()));
        QStringList own;
        for (const auto& slot : media.slots_(static_cast<int>(collection->index()))) {
            QJsonObject json = slot->toJson();
            own.append(QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Compact)));
        }
        own.sort();
        lines += own;
    }
    for (const auto& playlist : playlists.playlists()) {
        lines.append(
            QStringLiteral("p %1 %2")
                .arg(playlist->isInfinite())
                .arg(QString::fromUtf8(QJsonDocument(playlist->toJson()).toJson(QJsonDocument::Compact))));
        for (const auto& entry : playlists.entries(playlist->number())) {
            const auto slot = playlists.entrySlot(playlist->number(), entry->address());
            lines.append(QString::fromUtf8(QJsonDocument(entry->toJson()).toJson(QJsonDocument::Compact)) +
                         QStringLiteral(" plays ") + (slot ? slot->name() : QStringLiteral("nothing")));
            if (slot && !playlists.slotEntries(slot->address()).contains(entry))
                lines.append(QStringLiteral("NOT LINKED"));
        }
    }
    return lines;
}

/// Two playlists that play slot 1/1: at 1 and 2 of the first, at 1 of the second, each with another entry
/// behind.
Ref<MediaLibrary> sharedSlot()
{
    auto library = test::makeLibrary(1, 3);
    for (int number : {1, 2})
        library->addPlaylist(number, Playlist("p"));
    library->findPlaylist(1)->addEntry({1, 0}, entryFor(1, 1));
    library->findPlaylist(1)->addEntry({2, 0}, entryFor(1, 1));
    library->findPlaylist(1)->addEntry({3, 0}, entryFor(1, 2));
    library->findPlaylist(2)->addEntry({1, 0}, entryFor(1, 1));
    return library;
}

} // namespace

class TestProviders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomPatchesLeaveAFreshLoad_data();
    void randomPatchesLeaveAFreshLoad();
    void onlyTheTouchedIsRebuilt();
    void slotThatIsNotThere();
    void collectionRemovedTwice();
    void sharedSlotChanges();
    void removedSlotComesBack();
    void entryAddedIsToldTwice();
    void oddEntries();
    void duplicatePlaylist();
    void everyMovedTimeIsTold();
};

void TestProviders::randomPatchesLeaveAFreshLoad_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 12; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestProviders::randomPatchesLeaveAFreshLoad()
{
    QFETCH(unsigned, seed);
    test::allowWarnings(QStringLiteral("Missing slot: '")); // entries may name any slot
    test::RandomEdits random(seed);
    MediaMirror mirror(test::makeLibrary(4, 6));
    for (int step = 0; step < 60; ++step) {
        mirror.edit([&](MediaLibrary& library) { random.edit(library); });
        MediaMirror fresh(makeRef<MediaLibrary>(*mirror.library));
        QCOMPARE(contents(mirror.provider, mirror.playlists), contents(fresh.provider, fresh.playlists));
    }
}

void TestProviders::onlyTheTouchedIsRebuilt()
{
    MediaMirror mirror(test::makeLibrary(2, 3));
    const auto collection = mirror.provider.collection(2);
    const auto other = mirror.provider.slot({1, 2});
    const auto touched = mirror.provider.slot({1, 1});
    QSignalSpy changed(&mirror.provider, &AbstractMediaLibraryProvider::slotChanged);
    mirror.edit([](MediaLibrary& library) { library.findSlot(1, 1)->setInpoint(3); });
    QCOMPARE(changed.size(), 1);
    QCOMPARE(mirror.provider.collection(2), collection);
    QCOMPARE(mirror.provider.slot({1, 2}), other);
    QVERIFY(mirror.provider.slot({1, 1}) != touched);
    QCOMPARE(touched->inpoint(), 0.0);
    QCOMPARE(mirror.provider.slot({1, 1})->inpoint(), 3.0);
    QCOMPARE(mirror.provider.slots_(1).size(), 3);
}

void TestProviders::slotThatIsNotThere()
{
    MediaMirror mirror(test::makeLibrary(1, 1));
    QSignalSpy added(&mirror.provider, &AbstractMediaLibraryProvider::slotAdded);
    QSignalSpy removed(&mirror.provider, &AbstractMediaLibraryProvider::slotRemoved);
    test::expectWarning(QStringLiteral("Missing slot from collection: brume://collections/1/slots/9"));
    test::expectWarning(QStringLiteral("Couldn't add slot: brume://collections/1/slots/9"));
    mirror.provider.onSlotAdded({1, 9});
    QCOMPARE(added.size(), 0);
    QCOMPARE(removed.size(), 1);
}

void TestProviders::collectionRemovedTwice()
{
    MediaMirror mirror(test::makeLibrary(2, 1));
    QSignalSpy removed(&mirror.provider, &AbstractMediaLibraryProvider::collectionRemoved);
    mirror.edit([](MediaLibrary& library) { library.removeCollection(2); });
    test::expectWarning(QStringLiteral("remove event, but collection doesn't exist."));
    mirror.provider.onCollectionRemoved(2);
    QCOMPARE(removed.size(), 1);
    QVERIFY(mirror.provider.slots_(2).isEmpty());
    QVERIFY(!mirror.provider.slot({2, 1}));
}

void TestProviders::sharedSlotChanges()
{
    MediaMirror mirror(sharedSlot());
    QSignalSpy modified(&mirror.playlists, &AbstractPlaylistProvider::entrySlotsModified);
    QSignalSpy entries(&mirror.playlists, &AbstractPlaylistProvider::entryChanged);
    QSignalSpy lists(&mirror.playlists, &AbstractPlaylistProvider::playlistChanged);
    mirror.edit([](MediaLibrary& library) { library.findSlot(1, 1)->setInherentMediaDuration(20); });
    QCOMPARE(modified.size(), 1);
    const auto pairs = modified.first().first().value<QList<std::pair<uint, EntryAddress>>>();
    QCOMPARE(pairs.size(), 3);
    QCOMPARE(entries.size(), 4); // all times of the first list move, and those of the second
    QCOMPARE(lists.size(), 2);
    QCOMPARE(mirror.playlists.playlist(1)->duration(), 50.0);
    QCOMPARE(mirror.playlists.entry(1, {3, 0})->runtimeBefore(), 40.0);
    QCOMPARE(mirror.playlists.playlist(2)->duration(), 20.0);

    // What moves no time is told of the entries only.
    mirror.edit([](MediaLibrary& library) { library.findSlot(1, 1)->setName("x"); });
    QCOMPARE(modified.size(), 2);
    QCOMPARE(entries.size(), 4);
    QCOMPARE(lists.size(), 2);
    QCOMPARE(mirror.playlists.entrySlot(2, {1, 0})->name(), QStringLiteral("x"));
    // What nobody plays is told to nobody.
    mirror.edit([](MediaLibrary& library) { library.findSlot(1, 3)->setName("x"); });
    QCOMPARE(modified.size(), 2);
}

void TestProviders::removedSlotComesBack()
{
    MediaMirror mirror(sharedSlot());
    const QString missing =
        QStringLiteral("Missing slot: 'brume://collections/1/slots/1' assigned to entry: ");
    for (int entry = 0; entry < 3; ++entry) {
        test::expectWarning(missing);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(missing)); // in this very function
    }
    mirror.edit([](MediaLibrary& library) { library.findCollection(1)->removeMediaSlot(1); });
    QVERIFY(mirror.playlists.entry(1, {1, 0}));
    QVERIFY(!mirror.playlists.entrySlot(1, {1, 0}));
    QVERIFY(mirror.playlists.slotEntries({1, 1}).isEmpty());
    QCOMPARE(mirror.playlists.playlist(1)->duration(), 10.0);

    mirror.edit([](MediaLibrary& library) {
        library.findCollection(1)->insertMediaSlot(1, test::makeSlot("back", 5), true);
    });
    QCOMPARE(mirror.playlists.entrySlot(1, {1, 0})->name(), QStringLiteral("back"));
    QCOMPARE(mirror.playlists.slotEntries({1, 1}).size(), 3);
    QCOMPARE(mirror.playlists.playlist(1)->duration(), 20.0);
}

void TestProviders::entryAddedIsToldTwice()
{
    MediaMirror mirror(sharedSlot());
    QStringList told;
    QObject::connect(&mirror.playlists, &AbstractPlaylistProvider::entryAdded, &mirror.playlists,
                     [&](uint list, EntryAddress address) {
                         told.append(
                             QStringLiteral("+%1").arg(QString::fromStdString(address.toString(true))));
                         QVERIFY(mirror.playlists.entry(list, address)->runtimeAfter() > 0);
                     });
    QObject::connect(&mirror.playlists, &AbstractPlaylistProvider::entryChanged, &mirror.playlists,
                     [&](uint, EntryAddress address) {
                         told.append(
                             QStringLiteral("~%1").arg(QString::fromStdString(address.toString(true))));
                     });
    QObject::connect(&mirror.playlists, &AbstractPlaylistProvider::playlistChanged, &mirror.playlists,
                     [&](uint list) { told.append(QStringLiteral("p%1").arg(list)); });
    mirror.edit([](MediaLibrary& library) { library.findPlaylist(1)->addEntry({2, 1}, entryFor(1, 2)); });
    QCOMPARE(told.join(u' '), QStringLiteral("+2.1 ~2.1 ~3 p1"));
    QCOMPARE(mirror.playlists.playlist(1)->entryCount(), 4U);

    told.clear();
    mirror.edit([](MediaLibrary& library) { library.findPlaylist(1)->removeEntry({2, 1}); });
    QCOMPARE(told.join(u' '), QStringLiteral("~3 p1"));
    QCOMPARE(mirror.playlists.playlist(1)->entryCount(), 3U);
}

void TestProviders::oddEntries()
{
    MediaMirror mirror(sharedSlot());
    mirror.library->findPlaylist(2)->findEntry({1, 0})->setMediaUrl("brume://playlists/1/entries/1");
    test::expectWarning(QStringLiteral("Invalid entry slot url: brume://playlists/1/entries/1"));
    mirror.playlists.onEntryChanged(2, {1, 0});
    QVERIFY(mirror.playlists.entry(2, {1, 0}));
    QVERIFY(!mirror.playlists.entrySlot(2, {1, 0}));

    QSignalSpy removed(&mirror.playlists, &AbstractPlaylistProvider::entryRemoved);
    test::expectWarning(QStringLiteral("Changed entry did not exist 2/9"));
    test::expectWarning(QStringLiteral("Couldn't change entry: 2/9"));
    mirror.playlists.onEntryChanged(2, {9, 0});
    QCOMPARE(removed.size(), 1);
    // In the library, but never told of: it is taken over.
    mirror.library->findPlaylist(2)->addEntry({9, 0}, entryFor(1, 2));
    test::expectWarning(QStringLiteral("Changed entry did not exist 2/9"));
    mirror.playlists.onEntryChanged(2, {9, 0});
    QVERIFY(mirror.playlists.entrySlot(2, {9, 0}));
}

void TestProviders::duplicatePlaylist()
{
    MediaMirror mirror(sharedSlot());
    QSignalSpy added(&mirror.playlists, &AbstractPlaylistProvider::playlistAdded);
    test::expectWarning(QStringLiteral("Playlist already existed. Invalid signaling."));
    mirror.playlists.onPlaylistAdded(1);
    QCOMPARE(added.size(), 1);
    QCOMPARE(mirror.playlists.playlist(1)->entryCount(), 3U);
    QCOMPARE(mirror.playlists.playlist(1)->duration(), 30.0);
    QCOMPARE(mirror.playlists.slotEntries({1, 1}).size(), 3);

    QSignalSpy removed(&mirror.playlists, &AbstractPlaylistProvider::playlistRemoved);
    test::expectWarning(QStringLiteral("Couldn't add playlist: 7"));
    mirror.playlists.onPlaylistAdded(7);
    QCOMPARE(removed.size(), 1);
    QCOMPARE(added.size(), 1);
}

void TestProviders::everyMovedTimeIsTold()
{
    MediaMirror mirror(sharedSlot());
    QHash<QString, double> told; // what a listener knows that asks only when it is told
    const auto ask = [&](uint list, EntryAddress address) {
        told.insert(QString::fromStdString(entryUrl(static_cast<int>(list), address)),
                    mirror.playlists.entry(list, address)->runtimeAfter());
    };
    for (const auto& entry : mirror.playlists.entries(1))
        ask(1, entry->address());
    connect(&mirror.playlists, &AbstractPlaylistProvider::entryAdded, this, ask);
    connect(&mirror.playlists, &AbstractPlaylistProvider::entryChanged, this, ask);

    const std::pair<const char*, std::function<void(MediaLibrary&)>> edits[] = {
        {"another slot",
         [](MediaLibrary& l) {
             l.insertMediaCollection(2, MediaCollection(), false);
             l.findCollection(2)->insertMediaSlot(1, test::makeSlot("long", 100), true);
             l.findPlaylist(1)->findEntry({1, 0})->setMediaUrl(test::slotUrl(2, 1));
         }},
        {"a crossfade",
         [](MediaLibrary& l) {
             l.findPlaylist(1)->findEntry({2, 0})->setTransitionType(TakeTransitionType::Crossfade);
         }},
        {"a name and a transition",
         [](MediaLibrary& l) {
             l.findPlaylist(1)->setName("renamed");
             l.findPlaylist(1)->findEntry({2, 0})->setTransitionDuration(3);
         }},
        {"the slot's out point", [](MediaLibrary& l) { l.findSlot(2, 1)->setOutpoint(7); }},
        {"an entry in front",
         [](MediaLibrary& l) {
             l.findPlaylist(1)->addEntry({1, 5}, entryFor(1, 3));
         }},
    };
    for (const auto& [what, edit] : edits) {
        mirror.edit(edit);
        const PlaylistRuntimeInfo info = mirror.library->calculateRuntimeInfo(1);
        for (const EntryRuntime& entry : info.entries) {
            const QString url = QString::fromStdString(entryUrl(1, entry.address));
            QVERIFY2(told.value(url) == entry.runtimeAfter, what);
        }
    }
}

HALCYRA_TEST(TestProviders)
#include "test_providers.moc"

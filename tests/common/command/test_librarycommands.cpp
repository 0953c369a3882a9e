#include "common/media/edit/playlist/addplaylistcommand.h"
#include "common/media/edit/playlist/editplaylistentrycommand.h"
#include "common/media/edit/playlist/removeplaylistcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/edit/slot/addmediatocollectioncommand.h"
#include "common/media/edit/slot/clearslotfromcollectioncommand.h"
#include "common/media/edit/slot/copycollectioncommand.h"
#include "common/media/edit/slot/editslotscalingcommand.h"
#include "common/media/edit/slot/insertcollectioncommand.h"
#include "common/media/edit/slot/movecollectioncommand.h"
#include "common/media/edit/slot/moveslotincollectioncommand.h"
#include "common/media/edit/slot/moveslotstocollectioncommand.h"
#include "common/media/edit/slot/pointslotsatfilecommand.h"
#include "common/media/edit/slot/removecollectioncommand.h"
#include "common/media/edit/slot/renamecollectioncommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/edit/slot/setdurationcommand.h"
#include "common/media/edit/slot/setinpointcommand.h"
#include "common/media/edit/slot/setoutpointcommand.h"
#include "common/media/items/guimediaslot.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tests/common/command/online.h"
#include "tests/support/librarymaker.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <functional>

using namespace vantrel;
using test::Make;
using test::make;
using test::Online;

namespace {

Make makeScaling(int collection, int slot, ScaleMode mode)
{
    return [=](const MediaLibrary* library, bool& ok) {
        auto command = std::make_unique<Online<EditSlotScalingCommand>>();
        ok = command->init(library, collection, slot, mode);
        return command;
    };
}

QList<GuiMediaSlot> medias(int count)
{
    QList<GuiMediaSlot> list;
    for (int i = 0; i < count; ++i) {
        GuiMediaSlot slot;
        slot.setName(QStringLiteral("new%1").arg(i));
        slot.setContentUrl(QUrl(QStringLiteral("file:///new%1.mp4").arg(i)));
        list.append(slot);
    }
    return list;
}

/// Two collections of four slots, the fourth of each empty, and a playlist with an entry. One slot has what
/// only a newer server knows.
Ref<MediaLibrary> sample()
{
    auto library = test::makeLibrary(2, 4);
    for (int collection : {1, 2})
        library->findCollection(collection)->insertMediaSlot(4, MediaSlot(), true);
    library->addPlaylist(1, Playlist("Show"));
    library->findPlaylist(1)->addEntry({1, 0}, PlaylistEntry());
    library->findPlaylist(1)->addEntry({2, 0}, {test::slotUrl(1, 3), EndAction::Next, {}, 1});
    Patch newer;
    newer.append({PatchOpType::Add, Path("/collections/1/slots/2/rating"), {}, Json(5)});
    if (library->applyDiff(newer) != 0)
        qFatal("the library takes no unknown member");
    return library;
}

} // namespace

using Check = std::function<bool(const MediaLibrary&)>;
Q_DECLARE_METATYPE(Check)

class TestLibraryCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void edits_data();
    void edits();
    void refusals_data();
    void refusals();
    void durationByContent();
    void collectionsStepAsideAsFewAsCan();
    void withoutServer();
    void ids();
};

void TestLibraryCommands::edits_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Check>("check");
    const auto row = [](const char* text, const Make& command, const Check& check) {
        QTest::newRow(text) << command << QString::fromLatin1(text) << check;
    };
    const QString slot = QStringLiteral("brume://collections/1/slots/2");
    const auto at = [](const MediaLibrary& l, int c, int s) { return l.findSlot(c, s); };
    const auto rating = [](const MediaSlot* s) { return s->toJson().get("rating").asInt(); };
    row("Set inpoint to 1.5", make<SetInpointCommand>(slot, 1.5),
        [=](const auto& l) { return at(l, 1, 2)->getInpoint() == 1.5; });
    row("Set outpoint to 2.25", make<SetOutpointCommand>(slot, std::optional(2.25)),
        [=](const auto& l) { return at(l, 1, 2)->getOutpoint() == 2.25; });
    row("Reset outpoint", make<SetOutpointCommand>(slot, std::optional<double>()),
        [=](const auto& l) { return !at(l, 1, 2)->getOutpoint(); });
    row("Add media to slot 3 in collection 2", make<AddMediaToCollectionCommand>(2, 3, medias(3)),
        [=](const auto& l) { return at(l, 2, 3)->getName() == "new0" && at(l, 2, 5)->getName() == "new2"; });
    const GuiMediaSlot copied(MediaAddress(1, 2), *at(*sample(), 1, 2));
    row("Add media to slot 9 in collection 2", make<AddMediaToCollectionCommand>(2, 9, QList{copied}),
        [=](const auto& l) { return *at(l, 2, 9) == copied.toSdkMediaSlot() && rating(at(l, 2, 9)) == 5; });
    row("Cleared slot 2 from collection 1", make<ClearSlotFromCollectionCommand>(1, 2),
        [=](const auto& l) { return at(l, 1, 2) && at(l, 1, 2)->getUrl().empty(); });
    row("Cleared slot 1, 3 from collection 1", make<ClearSlotFromCollectionCommand>(1, QList<int>{1, 3}),
        [=](const auto& l) { return at(l, 1, 1)->getUrl().empty() && at(l, 1, 3)->getUrl().empty(); });
    row("Move slot 2 to 9 in collection 1", make<MoveSlotInCollectionCommand>(1, 2, 9),
        [=](const auto& l) { return rating(at(l, 1, 9)) == 5 && at(l, 1, 2)->getUrl().empty(); });
    row("Move slot 2 to 4 in collection 1", make<MoveSlotInCollectionCommand>(1, 2, 4), // over an empty one
        [=](const auto& l) { return at(l, 1, 4)->getName() == "c1s2"; });
    // Playlists go on playing what moves, also where one of them goes to where another was.
    row("Move slot 3 to 9 in collection 1", make<MoveSlotInCollectionCommand>(1, 3, 9), [](const auto& l) {
        return l.findPlaylistEntry(1, {2, 0})->getMediaUrl() == test::slotUrl(1, 9);
    });
    row("Move 2 slots to 3 in collection 1",
        make<MoveSlotsToCollectionCommand>(QList<MediaAddress>{{1, 2}, {1, 3}}, 1, 3), [=](const auto& l) {
            return at(l, 1, 2)->getUrl().empty() && at(l, 1, 3)->getName() == "c1s2" &&
                   l.findPlaylistEntry(1, {2, 0})->getMediaUrl() == test::slotUrl(1, 4);
        });
    row("Rename collection 2", make<RenameCollectionCommand>(2, QStringLiteral("Neu")),
        [](const auto& l) { return l.findCollection(2)->getName() == "Neu"; });
    row("Rename slot 2 in collection 1", make<RenameSlotCommand>(1, 2, QStringLiteral("Neu")),
        [=](const auto& l) { return at(l, 1, 2)->getName() == "Neu"; });
    row("Set scaling to 'Fit' for slot 2 in collection 1", makeScaling(1, 2, ScaleMode::Fit),
        [=](const auto& l) { return at(l, 1, 2)->getScaleMode() == ScaleMode::Fit; });
    GuiMediaSlot file = medias(1).first();
    file.setMediaType(MediaType::VideoFile);
    file.setDuration(4);
    row("Point 2 slots at \"new0.mp4\"",
        make<PointSlotsAtFileCommand>(QList<MediaAddress>{{1, 2}, {2, 3}}, file), [=](const auto& l) {
            return at(l, 1, 2)->getUrl() == "file:///new0.mp4" &&
                   at(l, 2, 3)->getUrl() == "file:///new0.mp4" && at(l, 1, 2)->getName() == "c1s2" &&
                   at(l, 1, 2)->getEffectiveMediaDuration() == 4 && rating(at(l, 1, 2)) == 5 &&
                   at(l, 1, 1)->getUrl() != "file:///new0.mp4";
        });
    row("Set duration to 7.5", make<SetDurationCommand>(QUrl(slot), 7.5, false), [=](const auto& l) {
        return at(l, 1, 2)->getEffectiveMediaDuration() == 7.5 && at(l, 1, 2)->isFinite();
    });
    row("Set duration to 0", make<SetDurationCommand>(QUrl(slot), 0.0, true),
        [=](const auto& l) { return !at(l, 1, 2)->isFinite(); });
    row("Insert collection 7", make<InsertCollectionCommand>(7, QStringLiteral("Seven")),
        [](const auto& l) { return l.findCollection(7)->getName() == "Seven"; });
    row("Remove collection 2", make<RemoveCollectionCommand>(2),
        [](const auto& l) { return !l.findCollection(2) && l.findCollection(1); });
    row("Copy collection from 1 to 5", make<CopyCollectionCommand>(1, 5), [=](const auto& l) {
        return l.findCollection(5)->getName() == "Duplicate of Collection 1" &&
               at(l, 5, 3)->getName() == "c1s3" && rating(at(l, 5, 2)) == 5;
    });
    // Without a free number there the neighbours step aside, and what plays their slots follows.
    row("Move collection 2 in front of 1", make<MoveCollectionCommand>(2, 1), [=](const auto& l) {
        return at(l, 1, 3)->getName() == "c2s3" && at(l, 2, 3)->getName() == "c1s3" &&
               l.findCollection(1)->getName() == "Collection 2" &&
               l.findPlaylistEntry(1, {2, 0})->getMediaUrl() == test::slotUrl(2, 3);
    });
    row("Move collection 1 behind all others", make<MoveCollectionCommand>(1, -1), [=](const auto& l) {
        return at(l, 2, 3)->getName() == "c1s3" && at(l, 1, 3)->getName() == "c2s3" &&
               l.findPlaylistEntry(1, {2, 0})->getMediaUrl() == test::slotUrl(2, 3);
    });
    row("Move 2 slots to 3 in collection 2",
        make<MoveSlotsToCollectionCommand>(QList<MediaAddress>{{1, 3}, {2, 3}}, 2, 3), [=](const auto& l) {
            return at(l, 1, 3)->getUrl().empty() && at(l, 2, 3)->getName() == "c1s3" &&
                   at(l, 2, 4)->getName() == "c2s3" &&
                   l.findPlaylistEntry(1, {2, 0})->getMediaUrl() == test::slotUrl(2, 3);
        });
    row("Add new playlist 2", make<AddPlaylistCommand>(2, QStringLiteral("Second")),
        [](const auto& l) { return l.findPlaylist(2)->getName() == "Second"; });
    row("Remove playlist 1", make<RemovePlaylistCommand>(1),
        [](const auto& l) { return !l.findPlaylist(1); });
    row("Rename playlist 1", make<RenamePlaylistCommand>(1, QStringLiteral("Neu")),
        [](const auto& l) { return l.findPlaylist(1)->getName() == "Neu"; });
    const PlaylistEntry other("u", EndAction::Repeat, TakeTransitionType::DirectCut, 2.5);
    row("Edit playlist entries", make<EditPlaylistEntryCommand>(1, EntryAddress(1, 0), other),
        [other](const auto& l) {
            return *l.findPlaylistEntry(1, {1, 0}) == other;
        });
}

void TestLibraryCommands::edits()
{
    QFETCH(Make, make);
    QFETCH(Check, check);
    const auto library = sample();
    const Json before = library->toJson();
    bool ok = false;
    const auto command = make(library.get(), ok);
    QVERIFY(ok);
    QVERIFY(command->initialized());
    QVERIFY(command->isUndoSupported());
    QTEST(command->text(), "text");
    QVERIFY(library->toJson() == before); // only a rehearsal so far

    QCOMPARE(library->applyDiff(command->redoPatch()), 0);
    QVERIFY(check(*library));
    QCOMPARE(library->applyDiff(command->undoPatch()), 0);
    QVERIFY(library->toJson() == before);
    QCOMPARE(library->applyDiff(command->redoPatch()), 0);
    QVERIFY(check(*library));
}

void TestLibraryCommands::refusals_data()
{
    QTest::addColumn<Make>("make");
    QTest::addColumn<QString>("warning");
    const auto row = [](const char* name, const Make& command, const char* warning) {
        QTest::newRow(name) << command << QString::fromLatin1(warning);
    };
    const QString gone = QStringLiteral("brume://collections/1/slots/99");
    row("inpoint", make<SetInpointCommand>(gone, 1.0), "Media slot not found for setting inpoint");
    row("outpoint", make<SetOutpointCommand>(gone, std::optional(1.0)),
        "Media slot not found for setting outpoint");
    row("no media", make<AddMediaToCollectionCommand>(1, 1, medias(0)), "No medias to add to collection");
    row("no collection", make<AddMediaToCollectionCommand>(9, 1, medias(1)), "Unable to find collection");
    row("no room",
        make<AddMediaToCollectionCommand>(1, MediaCollection::getMediaSlotIndexMax() - 1, medias(3)),
        "Not enough slots to add media");
    row("no such number", make<AddMediaToCollectionCommand>(1, -1, medias(1)),
        "Not enough slots to add media");
    row("clear, collection", make<ClearSlotFromCollectionCommand>(9, 1), "Unable to find collection");
    row("clear, slot", make<ClearSlotFromCollectionCommand>(1, 9), "Unable to find slot");
    row("move, collection", make<MoveSlotInCollectionCommand>(9, 1, 2), "Unable to find collection");
    row("move, slot", make<MoveSlotInCollectionCommand>(1, 9, 10), "Unable to find source slot");
    row("move onto another", make<MoveSlotInCollectionCommand>(1, 1, 2), ""); // refused without a warning
    row("rename", make<RenameCollectionCommand>(9, QString()), "Unable to find media collection.");
    row("scaling, collection", makeScaling(9, 1, ScaleMode::Fit), "Unable to find collection");
    row("scaling, slot", makeScaling(1, 9, ScaleMode::Fit), "Unable to find slot");
    row("duration", make<SetDurationCommand>(QUrl(gone), 1.0, false), "because a slot was not found");
    row("point, slot", make<PointSlotsAtFileCommand>(QList<MediaAddress>{{1, 2}, {1, 9}}, medias(1).first()),
        "Unable to find slot");
    row("remove", make<RemoveCollectionCommand>(9), "Unable to find media collection.");
    row("copy", make<CopyCollectionCommand>(9, 10), "Unable to find source media collection.");
    row("copy onto another", make<CopyCollectionCommand>(1, 2), "Unable to copy media collection");
    row("order, collection", make<MoveCollectionCommand>(9, 1), "Unable to move collection");
    row("order, neighbour", make<MoveCollectionCommand>(1, 9), "Unable to move collection");
    row("order, as it is", make<MoveCollectionCommand>(1, 2), "Unable to move collection");
    row("move over, collection", make<MoveSlotsToCollectionCommand>(QList<MediaAddress>{{1, 3}}, 9, 3),
        "Unable to find collection");
    row("move over, slot", make<MoveSlotsToCollectionCommand>(QList<MediaAddress>{{1, 3}, {1, 9}}, 2, 3),
        "Unable to find source slot");
    row("move over, room",
        make<MoveSlotsToCollectionCommand>(QList<MediaAddress>{{1, 1}, {1, 2}}, 2,
                                           MediaCollection::getMediaSlotIndexMax()),
        "Not enough slots to move to");
    row("playlist taken", make<AddPlaylistCommand>(1, QString()),
        "Unable to build redo Patch due failed addPlaylist");
    row("no playlist", make<RemovePlaylistCommand>(9),
        "Unable to build redo Patch due failed removePlaylist");
    row("no playlist to rename", make<RenamePlaylistCommand>(9, QString()), "Unable to find playlist");
    row("no playlist to edit", make<EditPlaylistEntryCommand>(9, EntryAddress(1, 0), PlaylistEntry()),
        "Unable to find playlist");
    row("no entry to edit", make<EditPlaylistEntryCommand>(1, EntryAddress(3, 0), PlaylistEntry()),
        "Unable to find entry");
}

void TestLibraryCommands::refusals()
{
    QFETCH(Make, make);
    QFETCH(QString, warning);
    const auto library = sample();
    const Json before = library->toJson();
    if (!warning.isEmpty())
        test::expectWarning(warning);
    bool ok = true;
    const auto command = make(library.get(), ok);
    QVERIFY(!ok);
    QVERIFY(!command->initialized());
    QVERIFY(library->toJson() == before);
}

/// Two slots may hold the same file: the one that is meant changes, where the caller tells, else the first.
void TestLibraryCommands::durationByContent()
{
    const auto library = sample();
    const QUrl content(QString::fromStdString(library->findSlot(1, 2)->getUrl()));
    library->findCollection(2)->insertMediaSlot(7, *library->findSlot(1, 2), true);
    Online<SetDurationCommand> first;
    QVERIFY(first.init(library.get(), content, 8, false));
    QCOMPARE(library->applyDiff(first.redoPatch()), 0);
    QCOMPARE(library->findSlot(1, 2)->getEffectiveMediaDuration(), 8.0);
    Online<SetDurationCommand> second;
    QVERIFY(second.init(library.get(), content, 9, false, MediaAddress(2, 7)));
    QCOMPARE(library->applyDiff(second.redoPatch()), 0);
    QCOMPARE(library->findSlot(1, 2)->getEffectiveMediaDuration(), 8.0);
    QCOMPARE(library->findSlot(2, 7)->getEffectiveMediaDuration(), 9.0);
    // What stands there now is something else.
    Online<SetDurationCommand> third;
    QVERIFY(third.init(library.get(), content, 10, false, MediaAddress(1, 3)));
    QCOMPARE(library->applyDiff(third.redoPatch()), 0);
    QCOMPARE(library->findSlot(1, 2)->getEffectiveMediaDuration(), 10.0);
}

void TestLibraryCommands::collectionsStepAsideAsFewAsCan()
{
    const int last = MediaLibrary::getCollectionIndexMax();
    MediaLibrary library;
    for (const int number : {3, 4, 5, 8, 9, last - 1, last})
        library.insertMediaCollection(number, MediaCollection(), false);
    using Numbers = std::map<int, int>;
    const auto numbers = [&](int collection, int before) {
        return MoveCollectionCommand::numbersFor(library, collection, before);
    };
    QCOMPARE(numbers(9, 8), (Numbers{{9, 6}})); // between 5 and 8 there is room
    QCOMPARE(numbers(9, 3), (Numbers{{9, 2}}));
    QCOMPARE(numbers(9, 4), (Numbers{{9, 4}, {4, 5}, {5, 6}}));
    QCOMPARE(numbers(3, 9), (Numbers{{3, 8}, {8, 7}}));
    QCOMPARE(numbers(3, 5), (Numbers{{3, 4}, {4, 3}}));
    QCOMPARE(numbers(5, -1), (Numbers{{5, last}, {last, last - 1}, {last - 1, last - 2}}));
    QCOMPARE(numbers(last, -1), Numbers());
    library.removeCollection(last);
    library.removeCollection(last - 1);
    QCOMPARE(numbers(3, -1), (Numbers{{3, 10}}));
    QCOMPARE(numbers(8, -1), (Numbers{{8, 9}, {9, 8}}));
}

void TestLibraryCommands::withoutServer()
{
    const auto library = sample();
    RenameCollectionCommand command;
    test::expectWarning(QStringLiteral("No api available, check connection?"));
    QVERIFY(!command.init(library.get(), 1, QStringLiteral("x")));
    QVERIFY(!command.initialized());
}

void TestLibraryCommands::ids()
{
    QCOMPARE(RemoveCollectionCommand().id(), 33);
    QCOMPARE(InsertCollectionCommand().id(), 34);
    QCOMPARE(CopyCollectionCommand().id(), 35);
    QCOMPARE(RenameCollectionCommand().id(), -1);
}

HALCYRA_TEST(TestLibraryCommands)
#include "test_librarycommands.moc"

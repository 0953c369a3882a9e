#include "common/import/mediadrop.h"
#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/newplaylistandmediacommand.h"
#include "common/media/edit/slot/movecollectioncommand.h"
#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/library/playlistprovider.h"
#include "common/qml/qmlmanager.h"
#include "tests/common/views/droppinghand.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QNetworkReply>
#include <QUndoStack>

namespace vantrel::test {

/// What the desktop's file manager drags onto the slots of a live server.
class TestSlotDrops : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
        allowWarnings(QStringLiteral("Getting system property failed"));
        allowWarnings(QStringLiteral("Failed to get media library"));
    }
    void cleanupTestCase() { QMLManager::instance()->deinitialize(); }

    void bringsLocalFiles()
    {
        DroppingHand hand;
        QVERIFY(hand.isReady());
        Session* const session = hand.live.session.get();
        const QTemporaryDir& local = hand.local;
        const OmbraProcess& server = hand.server;
        SlotDrops& drops = *hand.drops;
        for (const char* name : {"logo.png", "shots/s.0001.png", "shots/s.0002.png", "notes.txt"})
            hand.makePicture(QString::fromLatin1(name));
        const qsizetype told = NotificationManagerImpl::instance()->notifications().size();
        const int steps = session->getQUndoStack()->index();
        // Nothing is stored or sent before the operator has seen it.
        QVERIFY(hand.drop({QStringLiteral("logo.png"), QStringLiteral("notes.txt")}, 3));
        QTRY_VERIFY(hand.reviewed());
        hand.reviewed()->reject();
        QTRY_VERIFY(!hand.reviewed());
        QCOMPARE(session->getQUndoStack()->index(), steps);
        QVERIFY(!QFile::exists(server.mediaFolder() + QStringLiteral("/logo.png")));

        QVERIFY(hand.drop({QStringLiteral("logo.png"), QStringLiteral("notes.txt")}, 3));
        QVERIFY(hand.approve());
        QTRY_VERIFY(hand.slot(3));
        QCOMPARE(session->getQUndoStack()->index(), steps + 1);
        QTRY_VERIFY(hand.slot(3)->isPlayable()); // the server has it
        QTRY_VERIFY(drops.arrivals().isEmpty());
        QVERIFY(QFile::exists(server.mediaFolder() + QStringLiteral("/logo.png")));
        QTRY_COMPARE(NotificationManagerImpl::instance()->notifications().size(), told + 1); // of notes.txt

        // A folder becomes what it holds once it is there.
        QVERIFY(hand.drop({QStringLiteral("shots")}, 5));
        QVERIFY(hand.approve());
        QTRY_VERIFY(hand.slot(5));
        QTRY_VERIFY(hand.slot(5)->isPlayable());
        QCOMPARE(hand.slot(5)->lastFrame().value_or(0), 2);

        // What has only its name is not played in its place.
        hand.makePicture(QStringLiteral("logo.png"));
        QVERIFY(hand.drop({QStringLiteral("logo.png")}, 9));
        QTRY_COMPARE(NotificationManagerImpl::instance()->notifications().size(), told + 2);
        QVERIFY(!hand.slot(9));

        // Somebody else was faster with the name: their file is not played in the place of this one.
        QFile late(local.filePath(QStringLiteral("late.mov"))); // takes a while
        QVERIFY(late.open(QIODevice::WriteOnly) && late.resize(200 * 1024 * 1024));
        QVERIFY(hand.drop({QStringLiteral("late.mov")}, 12));
        QTRY_VERIFY(hand.slot(12));
        QVERIFY(QFile::copy(local.filePath(QStringLiteral("logo.png")),
                            server.mediaFolder() + QStringLiteral("/late.mov")));
        QTRY_VERIFY(drops.arrivals().isEmpty());
        QTRY_VERIFY(hand.slot(12)->contentUrl().isEmpty());
        QVERIFY(hand.told().contains(QStringLiteral("Slot 12 of collection 7 was cleared")));
        session->getQUndoStack()->undo();
        session->getQUndoStack()->undo();
        QTRY_VERIFY(!hand.slot(12));

        // Slots move in one edit, also onto each other's places, and playlists go on playing them.
        const auto urlOf = [](int slot) {
            return media::MediaUtils::toSlotAddress(LiveSession::collection, slot);
        };
        const auto nameAt = [&hand](int slot) {
            const auto one = hand.slot(slot);
            return one ? one->name() : QString();
        };
        const QString shots = nameAt(5);
        auto list = std::make_unique<NewPlaylistAndMediaCommand>();
        QVERIFY(list->init(&session->getMediaLibraryApi()->library(), QList<QString>{urlOf(5)}, 1));
        session->executeCommand(list.release());
        const auto played = [session] {
            const auto entries = session->playlistProvider()->entries(1);
            return entries.isEmpty() ? QString() : entries.first()->slotUrl();
        };
        QTRY_COMPARE(played(), urlOf(5));
        QMimeData two;
        two.setData(QStringLiteral("application/type"), "slot");
        two.setData(QStringLiteral("application/json"), R"({"slots":[3,5]})");
        QVERIFY(hand.drop(two, 5));
        QTRY_COMPARE(nameAt(6), shots);
        QCOMPARE(nameAt(5), QStringLiteral("logo.png"));
        QVERIFY(hand.slot(3)->contentUrl().isEmpty());
        QTRY_COMPARE(played(), urlOf(6));
        session->getQUndoStack()->undo();
        QTRY_VERIFY(nameAt(3) == QStringLiteral("logo.png") && nameAt(5) == shots && !hand.slot(6));
        QTRY_COMPARE(played(), urlOf(5));

        session->getQUndoStack()->undo();
        session->getQUndoStack()->undo();
        session->getQUndoStack()->undo();
        QTRY_VERIFY(!hand.slot(3) && !hand.slot(5));
    }

    /// What is asked is asked of the library as it is, however long the question stands.
    void tellsWhatOthersPutThere()
    {
        DroppingHand hand;
        QVERIFY(hand.isReady());
        hand.makePicture(QStringLiteral("logo.png"));
        QVERIFY(hand.drop({QStringLiteral("logo.png")}, 3));
        QTRY_VERIFY(hand.reviewed());
        QCOMPARE(hand.reviewed()->acceptButton()->text(), QStringLiteral("ADD"));
        GuiMediaSlot other;
        other.setName(QStringLiteral("Walk-in"));
        other.setContentUrl(QUrl(QStringLiteral("file:///walk-in.mov")));
        hand.live.manager.addMedias(LiveSession::collection, 3, {other});
        QTRY_COMPARE(hand.reviewed()->acceptButton()->text(), QStringLiteral("OVERWRITE"));
        QVERIFY(hand.reviewed()->description().contains(QStringLiteral("3 Walk-in")));
        hand.reviewed()->reject();
    }

    /// A question that others have overtaken is asked anew.
    void asksAgainWhatHasChanged()
    {
        DroppingHand hand;
        QVERIFY(hand.isReady());
        for (const char* name : {"sounds/a.wav", "sounds/b.wav"})
            hand.makeSound(QString::fromLatin1(name));
        const auto put = [&hand](int slot, const char* name) {
            GuiMediaSlot other;
            other.setName(QString::fromLatin1(name));
            other.setContentUrl(QUrl(QStringLiteral("file:///other.mov")));
            hand.live.manager.addMedias(LiveSession::collection, slot, {other});
            return QTest::qWaitFor([&] { return bool(hand.slot(slot)); }, longestWait);
        };
        QVERIFY(put(3, "Walk-in"));
        QVERIFY(hand.drop({QStringLiteral("sounds")}, 3));
        QTRY_VERIFY(hand.reviewed());
        DropDialog* const question = hand.reviewed();
        QVERIFY(!question->isModal()); // the show goes on
        QVERIFY(!question->description().contains(QStringLiteral("Interval")));
        QVERIFY(put(4, "Interval"));
        QTRY_VERIFY(question->description().contains(QStringLiteral("Interval")));
        question->acceptButton()->click(); // nobody has read that yet
        QCOMPARE(hand.slot(4)->name(), QStringLiteral("Interval"));
        QTRY_VERIFY(!hand.reviewed() || (question->acceptButton()->click(), false));
        QTRY_COMPARE(hand.slot(4)->name(), QStringLiteral("b.wav"));
    }

    /// What the operator has made of a drop waits for the server, and is said to be stored only when it is.
    void waitsForTheServer_data()
    {
        QTest::addColumn<bool>("isKilled");
        QTest::newRow("that hangs") << false;
        QTest::newRow("that is gone") << true;
    }
    void waitsForTheServer()
    {
        QFETCH(bool, isKilled);
        DroppingHand hand;
        QVERIFY(hand.isReady());
        hand.makePicture(QStringLiteral("logo.png"));
        MediaDrop* drop = nullptr;
        connect(hand.drops->handler(), &MediaSlotDropHandler::mediaDropCreated, this,
                [&drop](MediaDrop* made) { drop = made; });
        QVERIFY(hand.drop({QStringLiteral("logo.png")}, 3));
        QTRY_VERIFY(hand.reviewed() && hand.reviewed()->acceptButton()->isEnabled());
        images::ImagesResult still = drop->imageResults().constFirst();
        still.setStillImageDuration(4.5);
        drop->setImageResults({still});
        if (isKilled)
            hand.server.kill();
        else
            hand.server.hang();
        QTRY_VERIFY(!hand.reviewed()->acceptButton()->isEnabled());
        QVERIFY2(hand.reviewed()->description().contains(QStringLiteral("is kept until it can be added")),
                 qPrintable(hand.reviewed()->description()));
        QSignalSpy saved(drop, &MediaDrop::saved);
        drop->save(); // whoever else asks for it
        QVERIFY(saved.isEmpty() && hand.reviewed());
        QVERIFY(hand.drops->arrivals().isEmpty());
        if (isKilled)
            QVERIFY(hand.server.restart());
        else
            hand.server.goOn();
        QVERIFY(hand.approve());
        QTRY_VERIFY(hand.slot(3));
        QCOMPARE(hand.slot(3)->duration(), 4.5);
        QTRY_VERIFY(hand.slot(3)->isPlayable());
    }

    /// What a folder holds is known late, and there may be no room for it.
    void saysThatThereIsNoRoom()
    {
        expectWarning(QStringLiteral("No room for 2 slot(s)"));
        DroppingHand hand;
        QVERIFY(hand.isReady());
        for (const char* name : {"sounds/a.wav", "sounds/b.wav"})
            hand.makeSound(QString::fromLatin1(name));
        QVERIFY(hand.drop({QStringLiteral("sounds")}, 9999));
        QTRY_VERIFY(hand.wasTold(QStringLiteral("There is no room for 2 slots from slot 9999 on.")));
        QVERIFY(!hand.slot(9999));
    }

    /// What its slot names is no file: how far it is tells of all its pictures.
    void sequenceSaysHowFarItIs()
    {
        DroppingHand hand;
        QVERIFY(hand.isReady());
        const QStringList frames{QStringLiteral("s.0001.png"), QStringLiteral("s.0002.png")};
        for (const QString& frame : frames) {
            QFile large(hand.local.filePath(frame)); // takes a while
            QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(100 * 1024 * 1024));
        }
        QVERIFY(hand.drop(frames, 3));
        QVERIFY(hand.approve());
        QTRY_VERIFY(hand.slot(3));
        const MediaArrivals& arrivals = hand.drops->arrivals();
        QVERIFY(arrivals.textOf(hand.slot(3)->contentUrl()).startsWith(QStringLiteral("arriving")));
        QTRY_VERIFY(arrivals.isEmpty());
    }

    /// A drop goes into the collection that it was dropped on, whatever number that has by now.
    void followsItsCollection_data()
    {
        QTest::addColumn<bool>("isOfOthers");
        QTest::newRow("renumbered here") << false;
        QTest::newRow("renumbered by others") << true;
    }
    void followsItsCollection()
    {
        QFETCH(bool, isOfOthers);
        DroppingHand hand;
        QVERIFY(hand.isReady());
        Session* const session = hand.live.session.get();
        QVERIFY(hand.live.manager.insertCollection(6, QStringLiteral("Six")) &&
                hand.live.manager.insertCollection(8, QStringLiteral("Eight")));
        QTRY_VERIFY(hand.live.library()->collection(8));
        hand.makePicture(QStringLiteral("logo.png"));
        QVERIFY(hand.drop({QStringLiteral("logo.png")}, 3));
        QTRY_VERIFY(hand.reviewed() && hand.reviewed()->acceptButton()->isEnabled());
        auto swap = std::make_unique<MoveCollectionCommand>();
        QVERIFY(swap->init(session->mediaLibrary(), 8, 7));
        std::unique_ptr<QNetworkReply> reply;
        if (isOfOthers)
            reply.reset(session->getMediaLibraryApi()->patchMediaLibrary(swap->redoPatch()));
        else
            session->executeCommand(swap.release());
        QTRY_COMPARE(hand.reviewed()->title(), QStringLiteral("Drop on slot 3 of collection 8"));
        QVERIFY(hand.approve());
        QTRY_VERIFY(hand.live.library()->slot({8, 3}));
        QCOMPARE(hand.live.library()->collection(8)->name(), QStringLiteral("Seven"));
        QVERIFY(!hand.slot(3));
    }

    /// What a folder holds is there to be looked at before the server has told of any of it.
    void showsWhatIsNotToldYet()
    {
        constexpr int count = 30;
        DroppingHand hand;
        hand.makeSound(QStringLiteral("s.wav"));
        const QString folder = hand.server.mediaFolder() + QStringLiteral("/act");
        QVERIFY(QDir().mkpath(folder));
        for (int i = 0; i < count; ++i)
            QVERIFY(QFile::copy(hand.local.filePath(QStringLiteral("s.wav")),
                                folder + QStringLiteral("/Door %1 slam.wav").arg(i)));
        QVERIFY(hand.isReady());
        QTRY_VERIFY(hand.live.session->serverFilesModel()->fileSystem()->isReady());
        hand.server.hang(); // its files can be listed all the same
        QMimeData data;
        data.setData(QStringLiteral("application/type"), "media");
        data.setData(
            QStringLiteral("application/json"),
            R"([{"path":"/act","fileSystem":"server","name":"act","duration":0,"isDirectory":true,"isPlayable":true}])");
        QVERIFY(hand.drop(data, 3));
        QTRY_VERIFY(hand.reviewed());
        QVERIFY(!hand.reviewed()->acceptButton()->isEnabled());
        QVERIFY2(hand.reviewed()->description().contains(QString::number(count)),
                 qPrintable(hand.reviewed()->description()));
        hand.server.goOn();
        QVERIFY(hand.approve());
        QTRY_VERIFY(hand.slot(3) && hand.slot(2 + count));
    }

    /// Folders come behind what was stored of the files beside them, one behind the other, in one step.
    void bringsFoldersTogether()
    {
        DroppingHand hand;
        QVERIFY(hand.isReady());
        for (const char* name : {"s.0001.png", "s.0002.png", "s.0003.png", "b/logo.png", "b/plate.png",
                                 "a/logo.png", "a/title.png"})
            hand.makePicture(QString::fromLatin1(name));
        const QStringList frames{QStringLiteral("s.0001.png"), QStringLiteral("s.0002.png"),
                                 QStringLiteral("s.0003.png")};
        const QStringList all = frames + QStringList{QStringLiteral("b"), QStringLiteral("a")};
        QUndoStack* const stack = hand.live.session->getQUndoStack();
        const int steps = stack->index();
        QVERIFY(hand.drop(all, 3));
        QTRY_VERIFY(hand.reviewed());
        hand.reviewed()->reject();
        QTRY_VERIFY(hand.wasTold(QStringLiteral("The folders that came with it were not sent either.")));

        MediaDrop* drop = nullptr;
        connect(hand.drops->handler(), &MediaSlotDropHandler::mediaDropCreated, this,
                [&drop](MediaDrop* made) { drop = made; });
        QVERIFY(hand.drop(all, 3));
        QTRY_VERIFY(hand.reviewed());
        QList<images::ImagesResult> stills = drop->imageResults();
        QCOMPARE(stills.size(), 1);
        stills.first().setType(images::ImageResultType::StillImage);
        drop->setImageResults(stills);
        QVERIFY(hand.approve());
        QTRY_VERIFY(hand.slot(5) && hand.reviewed());
        QVERIFY(!hand.slot(6));
        QVERIFY(hand.approve());
        const auto paths = [&hand] {
            QStringList found;
            for (int slot = 3; slot <= 10; ++slot) {
                if (const auto one = hand.slot(slot))
                    found.append(one->contentUrl().toLocalFile().mid(1));
            }
            return found;
        };
        const QStringList folders{QStringLiteral("b/logo.png"), QStringLiteral("b/plate.png"),
                                  QStringLiteral("a/logo.png"), QStringLiteral("a/title.png")};
        QTRY_COMPARE(paths(), frames + folders);
        QCOMPARE(stack->index(), steps + 2);
        stack->undo();
        QTRY_COMPARE(paths(), frames);
        QVERIFY(!hand.reviewed());
    }
};

} // namespace vantrel::test

using vantrel::test::TestSlotDrops;
HALCYRA_TEST(TestSlotDrops)
#include "test_slotdrops.moc"

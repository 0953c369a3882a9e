#include "common/command/commandgate.h"
#include "common/command/libraryeditcommand.h"
#include "common/media/edit/playlist/addmediatoplaylistcommand.h"
#include "common/media/edit/playlist/renumberplaylistcommand.h"
#include "common/media/edit/slot/addmediatocollectioncommand.h"
#include "common/media/edit/slot/insertcollectioncommand.h"
#include "common/media/edit/slot/renamecollectioncommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/library/aside.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/notification/notificationmanagerimpl.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tests/common/command/scriptedlibrary.h"
#include "tests/support/testmain.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

/// Edits of one window beside a server that another window edits too.
class TestEditQueue : public QObject
{
    Q_OBJECT

private:
    using Server = ScriptedLibrary;

    static QStringList said()
    {
        QStringList titles;
        for (const auto& notification : NotificationManagerImpl::instance()->notifications())
            titles << notification->title();
        return titles;
    }

private Q_SLOTS:
    void init() { NotificationManagerImpl::instance()->clear(); }

    /// What was clicked in a row leaves in a row, each made on what the one before will have made.
    void leavesOneByOne()
    {
        Server server;
        QVERIFY(server.connect());
        for (int i = 0; i < 5; ++i)
            QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("name %1").arg(i)));
        for (int i = 0; i < 3; ++i)
            server.peer.session->getQUndoStack()->undo();
        QVERIFY(server.peer.http.count("PATCH", "/medialibrary") <= 1);
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(server.name(1), QStringLiteral("name 1"));
        QCOMPARE(server.peer.http.count("PATCH", "/medialibrary"), 8);
        QCOMPARE(said(), QStringList());
    }

    /// An edit of many slots is worked out on a thread, and keeps its place among the others all the same.
    void manySlotsKeepTheirPlace()
    {
        constexpr int many = 1000;
        QList<GuiMediaSlot> medias(many);
        for (GuiMediaSlot& media : medias)
            media.setName(QStringLiteral("mine"));
        Server server;
        QVERIFY(server.connect());
        const auto nameOf = [&server](int slot) {
            const MediaSlot* const found = std::as_const(*server.library).findSlot(1, slot);
            return found ? QString::fromStdString(found->getName()) : QString();
        };
        QUndoStack* const stack = server.peer.session->getQUndoStack();
        QVERIFY(server.run<AddMediaToCollectionCommand>(1, 1, medias));
        QVERIFY(server.run<RenameSlotCommand>(1, many, QStringLiteral("last")));
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(nameOf(1), QStringLiteral("mine"));
        QCOMPARE(nameOf(many), QStringLiteral("last"));
        stack->undo();
        stack->undo();
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(nameOf(1), QString());
        stack->redo();
        stack->undo(); // before that is worked out
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(nameOf(1), QString());
        expectWarning(QStringLiteral("Redo failed! "));
        QSemaphore theirsIsThere; // before it is worked out
        aside::edits().start([&theirsIsThere] { theirsIsThere.tryAcquire(1, longestWait); });
        QVERIFY(server.run<AddMediaToCollectionCommand>(1, 1, medias));
        server.edit(R"([{"op":"add","path":"/collections/1/slots/9","value":{"name":"theirs"}}])");
        theirsIsThere.release();
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(nameOf(9), QStringLiteral("theirs"));
        QCOMPARE(nameOf(1), QString());
    }

    /// Somebody else is faster: what has still a meaning is done, what would overwrite is refused aloud.
    void givesWay()
    {
        Server server;
        QVERIFY(server.connect());
        server.isMute = true; // the first one holds the others up
        QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("mine")));
        QTRY_COMPARE(server.peer.http.count("PATCH", "/medialibrary"), 1);
        QVERIFY(server.run<InsertCollectionCommand>(2, QStringLiteral("two")));
        QVERIFY(server.run<InsertCollectionCommand>(3, QStringLiteral("three")));
        expectWarning(QStringLiteral("Unable to find media collection."));
        QVERIFY(!server.run<RenameCollectionCommand>(4, QStringLiteral("four")));
        server.isMute = false;
        server.breaksMine = true; // also what is sent once more
        server.edit(R"([{"op":"replace","path":"/collections/1/name","value":"theirs"},
                        {"op":"add","path":"/collections/2","value":{"name":"theirs","slots":{}}}])");
        expectWarning(QStringLiteral("Failed due network error: "));
        expectWarning(QStringLiteral("Redo failed! "));
        server.peer.http.breakOpen();
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(server.name(1), QStringLiteral("theirs"));
        QCOMPARE(server.name(2), QStringLiteral("theirs"));
        QCOMPARE(server.name(3), QStringLiteral("three"));
        QCOMPARE(said().size(), 2);
        QVERIFY(said()[0].contains(QStringLiteral("Nobody knows")));
        QVERIFY(said()[1].contains(QStringLiteral("Insert collection 2")));
    }

    /// Whatever comes between an addition at the end of a list and its turn, it goes behind it.
    void addsBehindWhatCameMeanwhile()
    {
        using Add = AddMediaToPlaylistCommand;
        allowWarnings(QStringLiteral("Invalid entry slot url"));
        Server server;
        server.library->addPlaylist(1, Playlist("list"));
        QVERIFY(server.connect());
        const auto add = [&](const char* url) {
            return server.run<Add>(1, Add::AtEnd, EntryAddress(), QList<QString>{QString::fromLatin1(url)});
        };
        QVERIFY(add("a") && add("b")); // within one round trip
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(server.entries(1), QStringLiteral("1=a 2=b"));
        server.isMute = true; // holds the others up
        QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("mine")));
        QTRY_COMPARE(server.peer.http.count("PATCH", "/medialibrary"), 3);
        QVERIFY(add("c") && add("d"));
        server.edit(R"([{"op":"add","path":"/playlists/1/entries/3","value":{"slotUrl":"theirs"}}])");
        server.isMute = false;
        server.breaksMine = true;
        expectWarning(QStringLiteral("Failed due network error: "));
        server.peer.http.breakOpen();
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(server.entries(1), QStringLiteral("1=a 2=b 3=theirs 4=c 5=d"));
        server.peer.session->getQUndoStack()->undo();
        QTRY_COMPARE(server.entries(1), QStringLiteral("1=a 2=b 3=theirs 4=c"));
    }

    /// What somebody else sets while entries get other numbers stays with its entry, and is not overwritten
    /// by the undo of that either.
    void settingsStayWithTheirEntries()
    {
        allowWarnings(QStringLiteral("Invalid entry slot url"));
        Server server;
        Playlist list("list");
        for (int i = 1; i <= 3; ++i)
            list.addEntry({i, 0}, {std::string(1, char('a' + i - 1)), EndAction::Next,
                                   TakeTransitionType::Crossfade, 1});
        server.library->addPlaylist(1, list);
        QVERIFY(server.connect());
        const auto pausesAt = [&](int address) {
            const PlaylistEntry* entry = std::as_const(*server.library).findPlaylistEntry(1, {address, 0});
            return entry && entry->getEndAction() == EndAction::Pause;
        };
        server.isMute = true; // holds the renumbering up
        QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("mine")));
        QTRY_COMPARE(server.peer.http.count("PATCH", "/medialibrary"), 1);
        QVERIFY(server.run<RenumberPlaylistCommand>(1, EntryAddress(2, 0),
                                                    QList<EntryAddress>{{1, 0}, {2, 0}, {3, 0}}));
        server.edit(R"([{"op":"replace","path":"/playlists/1/entries/3/endAction","value":"pause"}])");
        server.isMute = false;
        server.breaksMine = true;
        expectWarning(QStringLiteral("Failed due network error: "));
        server.peer.http.breakOpen();
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(server.entries(1), QStringLiteral("2=a 3=b 4=c"));
        QVERIFY(pausesAt(4) && !pausesAt(3));
        server.edit(R"([{"op":"replace","path":"/playlists/1/entries/2/endAction","value":"pause"}])");
        QTRY_VERIFY(server.isIdle());
        expectWarning(QStringLiteral("Undo failed! "));
        const auto told = said().size();
        server.peer.session->getQUndoStack()->undo();
        QTRY_COMPARE(said().size(), told + 1);
        QCOMPARE(server.entries(1), QStringLiteral("2=a 3=b 4=c"));
        QVERIFY(pausesAt(2) && pausesAt(4));
    }

    /// What was refused is not undone, and what others wrote over is not undone either.
    void undoesOnlyItsOwn()
    {
        Server server;
        QVERIFY(server.connect());
        QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("mine")));
        QTRY_VERIFY(server.isIdle());
        server.edit(R"([{"op":"replace","path":"/collections/1/name","value":"theirs"}])");
        expectWarning(QStringLiteral("Undo failed! "));
        server.peer.session->getQUndoStack()->undo();
        QTRY_COMPARE(said().size(), 1);
        QCOMPARE(server.name(1), QStringLiteral("theirs"));
        QCOMPARE(server.peer.http.count("PATCH", "/medialibrary"), 1);
    }

    /// An undo that failed can be tried again: what is done stays known as done.
    void undoesAfterAFailedUndo()
    {
        Server server;
        QVERIFY(server.connect());
        QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("mine")));
        QTRY_VERIFY(server.isIdle());
        QUndoStack* const stack = server.peer.session->getQUndoStack();
        server.refusal = 507;
        expectWarning(QStringLiteral("Undo failed! "));
        stack->undo();
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(server.name(1), QStringLiteral("mine"));
        server.refusal = 0;
        stack->redo();
        stack->undo();
        QTRY_COMPARE(server.name(1), QStringLiteral("one"));
        QCOMPARE(said().size(), 1);
    }

    /// What is refused because the server is silent says nothing of what the server has in hand.
    void aClosedGateLeavesWhatIsUnderWay()
    {
        Server server;
        server.library->getCollection(1)->insertMediaSlot(1, MediaSlot(), true);
        QVERIFY(server.connect());
        MediaLibraryProvider* const provider = server.peer.session->mediaLibraryProvider();
        QSignalSpy settled(provider, &AbstractMediaLibraryProvider::editsSettled);
        server.isMute = true;
        QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("mine")));
        QTRY_COMPARE(server.peer.http.count("PATCH", "/medialibrary"), 1);
        auto* const gate = server.peer.session->getQUndoStack()->findChild<CommandGate*>();
        const auto refuse = [&] {
            gate->setReason(QStringLiteral("The server does not answer."));
            provider->setInpoint({1, 1}, 2);
            QCoreApplication::processEvents();
        };
        refuse();
        QCOMPARE(said().size(), 1);
        QCOMPARE(settled.size(), 0);
        gate->setReason({});
        server.isMute = false;
        allowWarnings(QStringLiteral("Failed due network error: "));
        allowWarnings(QStringLiteral("Redo failed! "));
        server.peer.http.breakOpen();
        QTRY_VERIFY(server.isIdle());
        settled.clear();
        refuse();
        QCOMPARE(settled.size(), 1);
    }

    /// A server that takes an edit and says nothing holds up neither the next ones nor the truth.
    void givesUpWhatIsNotAnswered()
    {
        Server server;
        QVERIFY(server.connect());
        QCOMPARE(server.api()->answerTime(), 10000);
        server.api()->setAnswerTime(300);
        server.isMute = true;
        QVERIFY(server.run<RenameCollectionCommand>(1, QStringLiteral("one more")));
        QTRY_COMPARE(server.peer.http.count("PATCH", "/medialibrary"), 1);
        server.isMute = false; // to those behind it
        QVERIFY(server.run<InsertCollectionCommand>(2, QStringLiteral("two")));
        expectWarning(QStringLiteral("Failed due network error: "));
        QTRY_COMPARE(said().size(), 1);
        QVERIFY2(said()[0].contains(QStringLiteral("Nobody knows")), qPrintable(said()[0]));
        QTRY_VERIFY(server.isIdle());
        QCOMPARE(server.name(2), QStringLiteral("two"));
    }

    /// Nor does one that never sends the library.
    void readsAgainWhatNeverComes()
    {
        Server server;
        QVERIFY(server.connect());
        MediaLibraryApi* const api = server.api();
        api->setAnswerTime(300);
        server.hoardsLibrary = true;
        allowWarnings(QStringLiteral("Failed to get media library"));
        api->requestMediaLibrary();
        QTRY_COMPARE(api->reading(), MediaLibraryApi::Reading::Failed);
        server.hoardsLibrary = false;
        QTRY_VERIFY(api->isCurrent());
    }

    /// Without the library there is nothing to edit; it is read again until it is there.
    void waitsForTheLibrary()
    {
        Server server;
        server.isBroken = true;
        allowWarnings(QStringLiteral("Failed to get media library"));
        QVERIFY(server.peer.connect());
        // It waits longer than the second that a server may be without a word.
        QTRY_VERIFY(!server.peer.link.received.empty());
        server.peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        MediaLibraryApi* const api = server.peer.session->getMediaLibraryApi();
        QVERIFY(!server.run<InsertCollectionCommand>(1, QStringLiteral("over it")));
        QTRY_COMPARE(api->reading(), MediaLibraryApi::Reading::Failed);
        QVERIFY(!server.run<InsertCollectionCommand>(1, QStringLiteral("over it")));
        QCOMPARE(said().size(), 2);
        server.isBroken = false;
        QTRY_VERIFY(server.peer.session->getMediaLibraryApi()->isCurrent());
        QVERIFY(server.run<InsertCollectionCommand>(2, QStringLiteral("two")));
        QTRY_COMPARE(server.name(2), QStringLiteral("two"));
        QCOMPARE(server.name(1), QStringLiteral("one"));
    }
};

HALCYRA_TEST(TestEditQueue)

} // namespace vantrel::test

#include "test_editqueue.moc"

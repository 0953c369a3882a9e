#include "common/command/libraryeditcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/edit/slot/insertcollectioncommand.h"
#include "common/media/edit/slot/renamecollectioncommand.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/notification/notificationmanagerimpl.h"
#include "tarn/media/medialibrary.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

/// Edits of one window beside a server that another window edits too.
class TestEditQueue : public QObject
{
    Q_OBJECT

private:
    /// A server with the library's rules: it takes what fits its revision, and tells of it when it is told
    /// to.
    struct Server
    {
        Server()
        {
            library = makeRef<MediaLibrary>();
            library->insertMediaCollection(1, MediaCollection("one"), true);
            peer.http.handler = [this, rest = peer.http.handler](const ScriptedHttp::Request& request) {
                if (!request.target.endsWith("/medialibrary"))
                    return rest(request);
                return request.method == "PATCH" ? patch(request) : get();
            };
        }
        ScriptedHttp::Reply get()
        {
            return {isBroken ? 500 : 200, QByteArray::fromStdString(library->toJson().toString())};
        }
        ScriptedHttp::Reply patch(const ScriptedHttp::Request& request)
        {
            if (breaksMine && request.body.contains("\"mine\""))
                return {-1, {}};
            if (isMute)
                return {0, {}};
            if (refusal != 0)
                return {refusal, R"({"error":"the disk is full"})"};
            Patch patch;
            if (!Patch::parseString(request.body.toStdString(), patch) || library->applyDiff(patch) != 0)
                return {409, R"({"error":"it does not fit"})"};
            tell(patch);
            return {200, "{}"};
        }
        /// On the event stream.
        void tell(const Patch& patch) { peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(patch); }
        /// Somebody else's edit.
        void edit(const char* text)
        {
            Patch patch;
            if (!Patch::parseString(text, patch) || library->applyDiff(patch) != 0)
                qFatal("bad patch in a test");
            tell(patch);
        }
        bool connect()
        {
            return peer.connect() &&
                   QTest::qWaitFor([this] { return peer.session->getMediaLibraryApi()->isCurrent(); });
        }
        template <typename Command, typename... Args>
        bool run(Args... args)
        {
            auto command = std::make_unique<Command>();
            if (!command->init(peer.session->mediaLibrary(), args...))
                return false;
            peer.session->executeCommand(command.release());
            return true;
        }
        bool isIdle() { return peer.session->getMediaLibraryApi()->edits()->isEmpty(); }
        QString name(int collection)
        {
            const MediaCollection* found = std::as_const(*library).findCollection(collection);
            return found ? QString::fromStdString(found->getName()) : QString();
        }

        Ref<MediaLibrary> library;
        ScriptedPeer peer;
        int refusal = 0; // the status of every answer
        bool isMute = false;
        bool breaksMine = false;
        bool isBroken = false;
    };

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

    /// Without the library there is nothing to edit; it is read again until it is there.
    void waitsForTheLibrary()
    {
        Server server;
        server.isBroken = true;
        allowWarnings(QStringLiteral("Failed to get media library"));
        QVERIFY(server.peer.connect());
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

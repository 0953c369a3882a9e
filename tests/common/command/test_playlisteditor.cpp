#include "common/media/edit/slot/addmediatocollectioncommand.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/items/mimedata.h"
#include "common/media/library/aside.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "tarn/scene/scene.h"
#include "tests/common/command/scriptedlibrary.h"
#include "tests/support/librarymaker.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSemaphore>

namespace vantrel::test {

/// What an operator does to a list, by the session's own model, beside a server and another window.
class TestPlaylistEditor : public QObject
{
    Q_OBJECT

private:
    static constexpr int slotCount = 8;
    using Failure = QAbstractItemModelTester::FailureReportingMode;

    /// Playlist 1 with entries 1, 2, 3 of slots 1, 2, 3.
    struct Editor
    {
        Editor()
        {
            *server.library = *makeLibrary(1, slotCount);
            Playlist list("Show");
            for (const int i : {1, 2, 3})
                list.addEntry({i, 0}, {slotUrl(1, i), EndAction::Next, TakeTransitionType::Crossfade, 1.0});
            server.library->addPlaylist(1, list);
        }
        bool connect()
        {
            if (!server.connect())
                return false;
            model = server.peer.session->previewPlaylistEditorModel();
            model->setPlaylistNumber(1);
            return model->rowCount() == 3;
        }
        QModelIndex row(int row) const { return model->index(row, 0); }
        QString shown() const
        {
            QStringList texts;
            for (int i = 0; i < model->rowCount(); ++i)
                texts << model->index(i, PlaylistModel::NumberColumn).data().toString() + u'=' +
                             model->index(i, PlaylistModel::MediaColumn).data().toString().mid(2);
            return texts.join(u' ');
        }
        QUndoStack* stack() const { return server.peer.session->getQUndoStack(); }
        /// When the server has all edits, and the window what became of them.
        bool settle()
        {
            const auto isDone = [this] {
                QCoreApplication::sendPostedEvents(model); // gestures that wait for their turn
                return server.isIdle();
            };
            return QTest::qWaitFor(isDone, longestWait) &&
                   server.library->toJson() == server.peer.session->mediaLibrary()->toJson();
        }

        ScriptedLibrary server;
        PlaylistEditorModel* model = nullptr;
    };

    static QList<QString> urls(const QList<int>& numbers)
    {
        QList<QString> urls;
        for (const int number : numbers)
            urls << QString::fromStdString(slotUrl(1, number));
        return urls;
    }
    static int saidCount() { return int(NotificationManagerImpl::instance()->notifications().size()); }

private Q_SLOTS:
    void init() { NotificationManagerImpl::instance()->clear(); }

    void buildsAList()
    {
        Editor e;
        QVERIFY(e.connect());
        const QAbstractItemModelTester tester(e.model, Failure::Fatal);
        PlaylistSelectionModel selection(e.model);
        e.server.peer.session->setPlaylistSelection(&selection);
        selection.select(e.row(1), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        e.model->doInsertBefore(urls({4}));
        QVERIFY(e.settle());
        QCOMPARE(e.shown(), QStringLiteral("1=s1 1.1=s4 2=s2 3=s3"));
        e.model->doInsertAfter(urls({5}));
        e.model->doInsertEnd(urls({6, 7}));
        e.model->doReplace(urls({8}));
        QVERIFY(e.settle());
        QCOMPARE(e.shown(), QStringLiteral("1=s1 1.1=s4 2=s8 2.1=s5 3=s3 4=s6 5=s7"));
        QCOMPARE(e.model->getEntryAddresses(selection.sortedSelectedRows()), QList{EntryAddress(2, 0)});
        expectWarning(QStringLiteral("Failed to create initial address"));
        e.model->doMoveUp({e.row(2)});
        QCOMPARE(saidCount(), 1); // no room between 1 and 1.1
        QVERIFY(!e.model->isRoomForInsertBefore({e.row(2)}, 1));
        QVERIFY(e.model->isRoomForInsertAfter({e.row(2)}, 1));
        expectWarning(QStringLiteral("Unable to acquire valid numbering plan for renumbering"));
        QCOMPARE(e.model->doRenumber({2, 0}, {{1, 0}, {1, 1}, {2, 0}}), 4);
        expectWarning(QStringLiteral("Failed to find 9"));
        QCOMPARE(e.model->doRenumber({10, 0}, {{9, 0}}), 3);
        QCOMPARE(e.model->doRenumber({10, 0}, {{1, 1}, {2, 0}}), 0);
        QVERIFY(e.settle());
        QCOMPARE(e.shown(), QStringLiteral("1=s1 2.1=s5 3=s3 4=s6 5=s7 10=s4 11=s8"));
        while (e.stack()->canUndo())
            e.stack()->undo();
        QVERIFY(e.settle());
        QCOMPARE(e.shown(), QStringLiteral("1=s1 2=s2 3=s3"));
    }

    /// What is selected stays selected when it moves, and becomes nothing else when others edit.
    /// To cue an entry is no step, and takes nothing from what may be redone.
    void cuesBesideWhatMayBeRedone()
    {
        Editor e;
        QVERIFY(e.connect());
        e.server.peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        QTRY_VERIFY(e.server.peer.session->getScene()->findObject("/device/channels/0"));
        e.model->doClear();
        QVERIFY(e.settle() && e.model->rowCount() == 0);
        e.stack()->undo();
        QVERIFY(e.settle() && e.model->rowCount() == 3);
        e.model->doDirectPlayPreviewWithAddress({2, 0}, 0);
        QTRY_COMPARE(e.server.peer.lastReceived().begin()->path.toString(),
                     std::string("/device/channels/0/preview/methods/playMedia"));
        QVERIFY(e.stack()->canRedo());
        e.stack()->redo();
        QVERIFY(e.settle() && e.model->rowCount() == 0);
    }

    void keepsTheSelection()
    {
        Editor e;
        QVERIFY(e.connect());
        const QAbstractItemModelTester tester(e.model, Failure::Fatal);
        PlaylistSelectionModel selection(e.model);
        selection.select(e.row(1), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        const auto selected = [&] { return e.model->getEntryAddresses(selection.sortedSelectedRows()); };
        e.model->doMoveUp(selection.sortedSelectedRows());
        QVERIFY(e.settle());
        QCOMPARE(selected(), QList{EntryAddress(0, 999)});
        e.server.edit("[{\"op\":\"add\",\"path\":\"/playlists/1/entries/0.5\","
                      "\"value\":{\"slotUrl\":\"brume://collections/1/slots/8\"}},"
                      "{\"op\":\"remove\",\"path\":\"/playlists/1/entries/1\"}]");
        QCOMPARE(e.shown(), QStringLiteral("0.5=s8 0.999=s2 3=s3"));
        QCOMPARE(selected(), QList{EntryAddress(0, 999)});
        e.model->sort(PlaylistModel::MediaColumn, Qt::DescendingOrder);
        QCOMPARE(e.shown(), QStringLiteral("0.5=s8 3=s3 0.999=s2"));
        QCOMPARE(selected(), QList{EntryAddress(0, 999)});
        e.model->sort(PlaylistModel::NumberColumn, Qt::DescendingOrder);
        e.model->doDropInsert(selection.sortedSelectedRows(), QModelIndex()); // the top of the screen
        QVERIFY(e.settle());
        QCOMPARE(e.shown(), QStringLiteral("4=s2 3=s3 0.5=s8"));
        QCOMPARE(selected(), QList{EntryAddress(4, 0)});
    }

    void editsCells()
    {
        Editor e;
        QVERIFY(e.connect());
        const QModelIndex duration = e.model->index(0, PlaylistModel::TransitionDurationColumn);
        const QModelIndex transition = e.model->index(0, PlaylistModel::TransitionColumn);
        QVERIFY(duration.flags().testFlag(Qt::ItemIsEditable));
        QVERIFY(e.model->setData(duration, 2.5));
        QVERIFY(e.settle());
        QCOMPARE(duration.data().toDouble(), 2.5);
        const QList<QModelIndex> all{transition, transition.siblingAtRow(1), transition.siblingAtRow(2)};
        const int steps = e.stack()->count();
        QVERIFY(e.model->setSelectedData(all, static_cast<int>(TakeTransitionType::DirectCut)));
        QVERIFY(!e.model->setSelectedData(all, 17));
        QVERIFY(!e.model->setSelectedData(all, QStringLiteral("fade")));
        QVERIFY(e.settle());
        QCOMPARE(e.stack()->count(), steps + 1);
        QVERIFY(!duration.flags().testFlag(Qt::ItemIsEditable));
        QVERIFY(!e.model->setData(duration, 3.0));
        QCOMPARE(all[2].data(Qt::EditRole).toInt(), static_cast<int>(TakeTransitionType::DirectCut));
    }

    /// The second of two quick edits of an entry leaves the first one alone, whichever way it was made.
    void editsBesideAnEdit()
    {
        Editor e;
        QVERIFY(e.connect());
        const auto cut = TakeTransitionType::DirectCut;
        e.model->setTransition(e.row(0), cut);
        e.model->setEndAction(e.row(0), EndAction::Pause);
        e.model->setEndAction(e.row(1), EndAction::Pause);
        e.model->setEndAction(e.row(1), EndAction::Next); // what the screen shows still
        QVERIFY(e.settle());
        QCOMPARE(e.model->getEntry(e.row(0))->transitionType(), cut);
        QCOMPARE(e.model->getEntry(e.row(0))->endAction(), EndAction::Pause);
        QCOMPARE(e.model->getEntry(e.row(1))->endAction(), EndAction::Next);
        QCOMPARE(saidCount(), 0);
    }

    /// Nobody waits at the window for what thousands of slots come to.
    void movesBesideAnEditOfThousands()
    {
        Editor e;
        QVERIFY(e.connect());
        QSemaphore isDone;
        aside::edits().start([&isDone] { isDone.tryAcquire(1, longestWait); }); // holds the edit's thread
        QVERIFY(e.server.run<AddMediaToCollectionCommand>(1, 20, QList<GuiMediaSlot>(1000)));
        e.model->doMoveDown({e.row(0)});
        QVERIFY(e.server.api()->edits()->isMaking());
        isDone.release();
        QVERIFY(e.settle());
        QTRY_COMPARE(e.shown(), QStringLiteral("2=s2 2.1=s1 3=s3"));
    }

    /// A move that is held down goes on with the entry; what else is done to an entry on its way is refused.
    void gesturesBesideAMove()
    {
        Editor e;
        QVERIFY(e.connect());
        e.model->doInsertEnd(urls({4, 5}));
        QVERIFY(e.settle());
        e.model->sort(PlaylistModel::NumberColumn, Qt::DescendingOrder);
        const QPersistentModelIndex moved(e.row(0));
        for (int i = 0; i < 3; ++i)
            e.model->doMoveDown({moved});
        QCOMPARE(saidCount(), 0);
        e.model->doRemove({moved});
        QCOMPARE(saidCount(), 1);
        e.model->setEndAction(moved, EndAction::Stop);
        QCOMPARE(saidCount(), 2);
        e.model->setEndAction(e.row(4), EndAction::Stop); // not on its way anywhere
        QVERIFY(e.settle());
        QCOMPARE(moved.row(), 3);
        QCOMPARE(e.shown().section(u'=', -1), QStringLiteral("s1"));
        QCOMPARE(e.model->getEntry(e.row(4))->endAction(), EndAction::Stop);
        e.model->sort(PlaylistModel::MediaColumn);
        e.model->doMoveUp({moved});
        e.model->doInsertEnd(urls({6})); // the end is the end, whatever the order on the screen
        QVERIFY(e.settle());
        QCOMPARE(saidCount(), 3);
        QCOMPARE(e.model->rowCount(), 6);
    }

    /// The library is read anew: the selection and the row of what stays are as they were.
    void survivesAReading()
    {
        Editor e;
        QVERIFY(e.connect());
        const QAbstractItemModelTester tester(e.model, Failure::Fatal);
        const QPersistentModelIndex kept(e.row(1));
        const QPersistentModelIndex removed(e.row(2));
        e.server.library->findPlaylist(1)->removeEntry({3, 0});
        e.server.library->findPlaylist(1)->addEntry({1, 5}, {slotUrl(1, 7), {}, {}, 0});
        e.server.library->findSlot(1, 2)->setName("renamed2");
        e.server.peer.session->getMediaLibraryApi()->requestMediaLibrary();
        QVERIFY(QTest::qWaitFor([&] { return e.model->indexOf({1, 5}).isValid(); }));
        QCOMPARE(e.model->getEntryAddress(kept), EntryAddress(2, 0));
        QCOMPARE(kept.sibling(kept.row(), PlaylistModel::MediaColumn).data().toString(),
                 QStringLiteral("renamed2"));
        QVERIFY(!removed.isValid());
    }

    /// Entries go between lists with all that they are; what is no such payload changes nothing.
    void pastes()
    {
        Editor e;
        QVERIFY(e.connect());
        QVERIFY(e.model->setData(e.model->index(1, PlaylistModel::EndActionColumn), int(EndAction::Stop)));
        QVERIFY(e.settle());
        e.server.edit(
            R"([{"op":"add","path":"/playlists/1/entries/2/note","value":{"of":"a later version"}}])");
        const std::unique_ptr<QMimeData> payload(e.model->copyEntries({e.row(2), e.row(1)}));
        QVERIFY(PlaylistEditorModel::canPaste(payload.get()));
        QVERIFY(e.model->doPaste(payload.get(), e.row(0)));
        e.model->setPlaylistNumber(5); // there is none
        QVERIFY(!e.model->hasPlaylist());
        QVERIFY(e.model->doPaste(payload.get(), {}));
        QVERIFY(e.settle());
        QVERIFY(e.model->hasPlaylist());
        QCOMPARE(e.shown(), QStringLiteral("1=s2 2=s3"));
        QVERIFY(*e.server.library->findPlaylistEntry(5, {1, 0}) ==
                *e.server.library->findPlaylistEntry(1, {2, 0}));
        e.model->setPlaylistNumber(1);
        QCOMPARE(e.shown(), QStringLiteral("1=s1 1.1=s2 1.2=s3 2=s2 3=s3"));
        const int steps = e.stack()->count();
        for (const QByteArray json :
             {"[{}]", "no json", "[]", "[{\"slotUrl\":\"brume://playlists/1/entries/1\"}]",
              "[{\"slotUrl\":\"brume://collections/1/slots/2\",\"playlistIndex\":1,\"endAction\":99,"
              "\"transitionType\":0,\"transitionDuration\":1}]"}) {
            QMimeData bad;
            bad.setData(mimeformat::json, json);
            bad.setData(mimeformat::category, "2");
            bad.setData(mimeformat::type, "4");
            QVERIFY(!e.model->doPaste(&bad, {}));
        }
        QCOMPARE(e.stack()->count(), steps);
    }

    void addsToAListThatIsNotThere()
    {
        Editor e;
        QVERIFY(e.connect());
        const PlaylistLibraryModel* lists = e.server.peer.session->playlistLibraryModel();
        const QAbstractItemModelTester tester(const_cast<PlaylistLibraryModel*>(lists), Failure::Fatal);
        QCOMPARE(lists->nextFreeNumber(), 2);
        e.model->setPlaylistNumber(2);
        e.model->doInsertEnd(urls({4}));
        e.model->doInsertEnd(urls({5})); // while the list is on its way
        QVERIFY(e.settle());
        QCOMPARE(e.shown(), QStringLiteral("1=s4 2=s5"));
        QCOMPARE(lists->index(1, PlaylistLibraryModel::NameColumn).data().toString(),
                 QStringLiteral("2: New playlist 2"));
        QCOMPARE(lists->index(1, PlaylistLibraryModel::CountColumn).data().toInt(), 2);
        QCOMPARE(lists->index(1, PlaylistLibraryModel::DurationColumn).data().toDouble(), 19.0);
        e.stack()->undo();
        e.stack()->undo();
        QVERIFY(e.settle());
        QVERIFY(!e.model->hasPlaylist());
        QCOMPARE(e.model->rowCount() + lists->rowCount(), 1);
    }

    /// Random gestures in this window and edits of another one: this window ends with the server's list, in
    /// its order, and every row is found by its address.
    void staysInStep()
    {
        Editor e;
        QVERIFY(e.connect());
        allowWarnings(QString());
        const QAbstractItemModelTester tester(e.model, Failure::Fatal);
        const QAbstractItemModelTester program(e.server.peer.session->programPlaylistEditorModel(),
                                               Failure::Fatal);
        e.server.peer.session->programPlaylistEditorModel()->setPlaylistNumber(1);
        RandomEdits random(20261125);
        for (int round = 0; round < 150; ++round) {
            gesture(e, random);
            if (random.below(3) == 0)
                otherWindow(e, random);
            if (random.below(4) == 0)
                QVERIFY(e.settle());
        }
        QVERIFY(e.settle());
        for (PlaylistEditorModel* model : {e.model, e.server.peer.session->programPlaylistEditorModel()}) {
            model->sort(PlaylistModel::NumberColumn);
            const Playlist* list = std::as_const(*e.server.library).findPlaylist(1);
            QVERIFY(list);
            QCOMPARE(model->rowCount(), int(list->getEntries().size()));
            int row = 0;
            for (const auto& [address, entry] : list->getEntries()) {
                QCOMPARE(model->indexOf(address).row(), row);
                QVERIFY(model->getEntry(model->index(row, 0))->toSdkEntry() == entry);
                ++row;
            }
        }
    }

private:
    static QList<QModelIndex> someRows(const PlaylistEditorModel* model, RandomEdits& random)
    {
        QList<QModelIndex> rows;
        for (int row = 0; row < model->rowCount(); ++row) {
            if (random.below(4) == 0)
                rows.append(model->index(row, 0));
        }
        return rows;
    }

    static void gesture(Editor& e, RandomEdits& random)
    {
        PlaylistEditorModel* const model = e.model;
        const QList<QModelIndex> rows = someRows(model, random);
        const QModelIndex target = model->index(random.below(model->rowCount() + 1) - 1, 0);
        switch (random.below(12)) {
        case 0:
        case 1:
            model->doInsertEnd(urls({1 + random.below(slotCount)}));
            break;
        case 2:
            model->doDropCollection(urls({1, 2}), target, AddMediaToPlaylistCommand::After);
            break;
        case 3:
            model->doDropInsert(rows, target);
            break;
        case 4:
            model->doDropReplace(rows, target);
            break;
        case 5:
            model->doMoveUp(rows);
            break;
        case 6:
            model->doMoveDown(rows);
            break;
        case 7:
            if (model->rowCount() > 12)
                model->doRemove(rows);
            break;
        case 8:
            model->doRenumber({1 + random.below(20), 0}, model->getEntryAddresses(rows));
            break;
        case 9:
            model->setSelectedData(rows.isEmpty() ? rows : QList{rows.first().siblingAtColumn(1)},
                                   random.below(4));
            break;
        case 10:
            random.below(2) ? e.stack()->undo() : e.stack()->redo();
            break;
        default:
            model->sort(random.below(4) ? PlaylistModel::NumberColumn
                                        : random.below(PlaylistModel::ColumnCount),
                        random.below(2) ? Qt::AscendingOrder : Qt::DescendingOrder);
        }
    }

    static void otherWindow(Editor& e, RandomEdits& random)
    {
        const auto edited = makeRef<MediaLibrary>(*e.server.library);
        Playlist* list = edited->findPlaylist(1);
        if (!list && edited->addPlaylist(1, Playlist("again")))
            list = edited->findPlaylist(1);
        for (int i = random.below(4); i >= 0; --i) {
            const EntryAddress address(random.below(20), random.below(3));
            if (!list->removeEntry(address))
                list->addEntry(address, {slotUrl(1, 1 + random.below(slotCount)), EndAction::Pause,
                                         TakeTransitionType::DirectCut, 0.5});
        }
        if (MediaSlot* slot = edited->findSlot(1, 1 + random.below(slotCount)))
            slot->setName("s" + std::to_string(random.below(9)));
        Patch patch;
        Patch::diff(e.server.library->toJson(), edited->toJson(), patch);
        e.server.library->applyDiff(patch);
        e.server.tell(patch);
    }
};

HALCYRA_TEST(TestPlaylistEditor)

} // namespace vantrel::test

#include "test_playlisteditor.moc"

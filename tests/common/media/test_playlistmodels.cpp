#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "tarn/media/mediaenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

namespace vantrel::test {

class TestPlaylistModels : public QObject
{
    Q_OBJECT

private:
    using Failure = QAbstractItemModelTester::FailureReportingMode;

    /// Playlist 1: 1 = slot 3, 2 = slot 1 (which never ends), 2.5 = a slot that is not there, 3 = slot 2.
    struct Fixture
    {
        Fixture()
            : mirror(library())
            , model(&mirror.playlists, nullptr, nullptr, nullptr, {}, nullptr)
            , tester(&model, Failure::Fatal)
        {
            model.setPlaylistNumber(1);
        }
        static Ref<MediaLibrary> library()
        {
            auto library = makeLibrary(1, 3);
            library->findSlot(1, 1)->setDurationType(MediaDurationType::Infinite);
            library->findSlot(1, 2)->setInpoint(4);
            Playlist list("Show");
            const auto add = [&](EntryAddress address, int slot, TakeTransitionType type, double seconds) {
                list.addEntry(address, {slotUrl(1, slot), EndAction::Next, type, seconds});
            };
            add({1, 0}, 3, TakeTransitionType::DirectCut, 1);
            add({2, 0}, 1, TakeTransitionType::Crossfade, 3);
            add({2, 5}, 9, TakeTransitionType::DipToColor, 2);
            add({3, 0}, 2, TakeTransitionType::DirectCut, 0);
            library->addPlaylist(1, list);
            return library;
        }
        QString column(int column, int role = Qt::DisplayRole) const
        {
            QStringList texts;
            for (int row = 0; row < model.rowCount(); ++row)
                texts << model.index(row, column).data(role).toString();
            return texts.join(u'|');
        }

        MediaMirror mirror;
        PlaylistModel model;
        QAbstractItemModelTester tester;
    };

private Q_SLOTS:
    void init() { allowWarnings(QStringLiteral("Missing slot: ")); }

    void cells()
    {
        Fixture f;
        QCOMPARE(f.column(PlaylistModel::NumberColumn), QStringLiteral("1|2|2.5|3"));
        QCOMPARE(f.column(PlaylistModel::TransitionColumn),
                 QStringLiteral("Direct cut|Crossfade|Dip to color|Direct cut"));
        QCOMPARE(f.column(PlaylistModel::RuntimeBeforeColumn),
                 QStringLiteral("00:00:00|00:00:00|00:00:00|00:00:00"));
        QCOMPARE(f.column(PlaylistModel::RuntimeBeforeColumn, Qt::EditRole), QStringLiteral("0|7|inf|inf"));
        QCOMPARE(f.column(PlaylistModel::MediaColumn), QStringLiteral("c1s3|c1s1||c1s2"));
        QVERIFY(!f.model.index(2, PlaylistModel::MediaColumn).data().isValid());
        QCOMPARE(f.column(PlaylistModel::DurationColumn), QStringLiteral("10|inf|0|6"));
        QCOMPARE(f.column(PlaylistModel::TransitionDurationColumn), QStringLiteral("1|3|2|0"));
        QCOMPARE(f.column(PlaylistModel::SizeColumn), QStringLiteral("0 B|0 B|0 B|0 B"));
        QCOMPARE(f.column(PlaylistModel::EndActionColumn, PlaylistModel::PlayableRole),
                 QStringLiteral("true|true|false|true"));
        QCOMPARE(f.model.headerData(8, Qt::Horizontal).toString(), QStringLiteral("TransDur"));
        const QUrl url(QStringLiteral("file:///clips/c1s2.mp4"));
        QCOMPARE(f.model.getEntriesUsingMediaUrl(url), QList{EntryAddress(3, 0)});
        expectWarning(QStringLiteral("Invalid index"));
        QVERIFY(!f.model.getEntryAddress({}).isValid());
    }

    /// What others wrote is shown without what would make it look like something else, and edited as it is.
    void namesHideNothing()
    {
        const std::string turned = "a\u202egpj";
        Fixture f;
        f.mirror.edit([&](MediaLibrary& library) {
            library.findSlot(1, 3)->setName(turned);
            library.findPlaylist(1)->setName(turned);
        });
        QCOMPARE(f.model.index(0, PlaylistModel::MediaColumn).data().toString(), QStringLiteral("agpj"));
        const PlaylistLibraryModel lists(&f.mirror.playlists);
        QCOMPARE(lists.index(0, PlaylistLibraryModel::NameColumn).data().toString(),
                 QStringLiteral("1: agpj"));
        QCOMPARE(lists.index(0, PlaylistLibraryModel::PlainNameColumn).data(Qt::EditRole).toString(),
                 QString::fromStdString(turned));
    }

    void orders_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("ascending");
        QTest::addColumn<QString>("descending");
        const auto row = [](int column, const char* ascending, const char* descending) {
            QTest::addRow("%d", column)
                << column << QString::fromLatin1(ascending) << QString::fromLatin1(descending);
        };
        row(PlaylistModel::NumberColumn, "1|2|2.5|3", "3|2.5|2|1");
        row(PlaylistModel::TransitionColumn, "2|2.5|1|3", "1|3|2.5|2");
        row(PlaylistModel::RuntimeBeforeColumn, "1|2|2.5|3", "1|2|2.5|3");
        row(PlaylistModel::MediaColumn, "2.5|2|3|1", "1|3|2|2.5");
        row(PlaylistModel::DurationColumn, "2.5|3|1|2", "2|1|3|2.5");
        row(PlaylistModel::TransitionDurationColumn, "3|1|2.5|2", "2|2.5|1|3");
    }
    void orders()
    {
        QFETCH(int, column);
        Fixture f;
        const QPersistentModelIndex kept(f.model.indexOf({2, 5}));
        f.model.sort(column);
        QTEST(f.column(PlaylistModel::NumberColumn), "ascending");
        f.model.sort(column, Qt::DescendingOrder);
        QTEST(f.column(PlaylistModel::NumberColumn), "descending");
        QCOMPARE(f.model.getEntryAddress(kept), EntryAddress(2, 5));
    }

    /// Another name leaves the rows where they are until something is added.
    void orderIsKept()
    {
        Fixture f;
        f.model.sort(PlaylistModel::MediaColumn);
        f.mirror.edit([](MediaLibrary& library) { library.findSlot(1, 3)->setName("a"); });
        QCOMPARE(f.column(PlaylistModel::MediaColumn), QStringLiteral("|c1s1|c1s2|a"));
        f.mirror.edit([](MediaLibrary& library) {
            library.findPlaylist(1)->addEntry({9, 0}, PlaylistEntry(slotUrl(1, 2), {}, {}, 0));
        });
        QCOMPARE(f.column(PlaylistModel::MediaColumn), QStringLiteral("|a|c1s1|c1s2|c1s2"));
    }

    /// A patch is taken over as a whole: one signal for the entries, one for the times of all behind them.
    void takesAPatchAtOnce()
    {
        Fixture f;
        f.mirror.edit([](MediaLibrary& library) {
            Playlist* list = library.findPlaylist(1);
            list->removeEntry({2, 0});
            list->removeEntry({2, 5});
            for (int i = 10; i < 60; ++i)
                list->addEntry({i, 0}, PlaylistEntry(slotUrl(1, 2), {}, TakeTransitionType::DirectCut, 0));
        });
        QCOMPARE(f.model.rowCount(), 52);
        const QPersistentModelIndex last(f.model.indexOf({59, 0}));
        QSignalSpy changed(&f.model, &QAbstractItemModel::dataChanged);
        QSignalSpy added(&f.model, &PlaylistModel::entriesAdded);
        QSignalSpy removed(&f.model, &PlaylistModel::entriesRemoved);
        QSignalSpy inserted(&f.model, &QAbstractItemModel::rowsInserted);
        f.mirror.edit([](MediaLibrary& library) {
            Playlist* list = library.findPlaylist(1);
            list->removeEntry({1, 0});
            list->removeEntry({10, 0});
            for (int i = 1; i < 6; ++i)
                list->addEntry({20, i}, PlaylistEntry(slotUrl(1, 3), {}, TakeTransitionType::DipToColor, 0));
            list->findEntry({59, 0})->setEndAction(EndAction::Stop);
        });
        QCOMPARE(f.model.rowCount(), 55);
        QCOMPARE(added.count(), 1);
        QCOMPARE(added[0][1].value<QList<EntryAddress>>().size(), 5);
        QCOMPARE(removed.count(), 1);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(changed.count(), 2); // the entry, and the times
        QCOMPARE(f.model.getEntryAddress(last), EntryAddress(59, 0));
        const auto entry = f.model.getEntry(last);
        QCOMPARE(entry->endAction(), EndAction::Stop);
        QCOMPARE(entry->runtimeAfter(), 50 * 6 + 5 * 10.0);
    }

    /// Entries that take each other's addresses stay who they are.
    void followsARenumbering()
    {
        Fixture f;
        QList<QPersistentModelIndex> kept;
        for (int row = 0; row < 4; ++row)
            kept.append(f.model.index(row, 0));
        f.mirror.edit([](MediaLibrary& library) {
            Playlist* list = library.findPlaylist(1);
            for (const auto& [from, to] : {std::pair(EntryAddress(3, 0), EntryAddress(9, 0)),
                                           std::pair(EntryAddress(2, 5), EntryAddress(3, 0)),
                                           std::pair(EntryAddress(2, 0), EntryAddress(2, 5)),
                                           std::pair(EntryAddress(1, 0), EntryAddress(2, 0))})
                list->moveEntry(from, to);
            list->addEntry({1, 0}, {slotUrl(1, 1), EndAction::Stop, TakeTransitionType::DirectCut, 0});
            list->findEntry({9, 0})->setEndAction(EndAction::Repeat); // another entry for all one can tell
        });
        QCOMPARE(f.model.rowCount(), 5);
        QCOMPARE(f.model.getEntryAddress(kept[0]), EntryAddress(2, 0));
        QCOMPARE(f.model.getEntryAddress(kept[1]), EntryAddress(2, 5));
        QCOMPARE(f.model.getEntryAddress(kept[2]), EntryAddress(3, 0));
        QVERIFY(!kept[3].isValid());
    }

    /// Of a file that is missing the slot still knows what it was.
    void theKindIsTheSlots()
    {
        auto library = makeLibrary(1, 3);
        library->findSlot(1, 2)->setMediaType(MediaType::AudioFile);
        library->addPlaylist(1, Playlist("p"));
        for (const int slot : {1, 2, 9})
            library->findPlaylist(1)->addEntry(
                {slot, 0}, {slotUrl(1, slot), EndAction::Next, TakeTransitionType::DirectCut, 1});
        allowWarnings(QStringLiteral("Missing slot"));
        MediaMirror mirror(library);
        PlaylistModel model(&mirror.playlists, nullptr, nullptr, nullptr, {}, nullptr);
        model.setPlaylistNumber(1);
        QCOMPARE(model.rowCount(), 3);
        const auto kind = [&model](int row) { return model.knownType(*model.getEntry(model.index(row, 0))); };
        QCOMPARE(kind(0), MediaType::Unknown);
        QCOMPARE(kind(1), MediaType::AudioFile);
        QVERIFY(!kind(2)); // nothing is drawn for no medium
    }

    /// Whatever is edited, the times of each list are those of the library, and the model shows the list.
    void followsRandomEdits()
    {
        allowWarnings(QString());
        MediaMirror mirror(makeLibrary(4, 8));
        PlaylistModel model(&mirror.playlists, nullptr, nullptr, nullptr, {}, nullptr);
        PlaylistModel sorted(&mirror.playlists, nullptr, nullptr, nullptr, {}, nullptr);
        const QAbstractItemModelTester tester(&model, Failure::Fatal);
        const QAbstractItemModelTester sortedTester(&sorted, Failure::Fatal);
        model.setPlaylistNumber(2);
        sorted.setPlaylistNumber(2);
        sorted.sort(PlaylistModel::MediaColumn, Qt::DescendingOrder);
        RandomEdits random(11);
        for (int round = 0; round < 1500; ++round) {
            mirror.edit([&](MediaLibrary& library) { random.edit(library); });
            const PlaylistRuntimeInfo info = mirror.library->calculateRuntimeInfo(2);
            QCOMPARE(model.rowCount(), int(info.entries.size()));
            QCOMPARE(sorted.rowCount(), model.rowCount());
            for (int row = 0; row < model.rowCount(); ++row) {
                const auto entry = model.getEntry(model.index(row, 0));
                const EntryRuntime& expected = info.entries[std::size_t(row)];
                QCOMPARE(entry->address(), expected.address);
                QCOMPARE(entry->runtimeBefore(), expected.runtimeBefore);
                QCOMPARE(entry->runtimeAfter(), expected.runtimeAfter);
                QCOMPARE(sorted.getEntry(sorted.indexOf(expected.address)), entry);
            }
            const auto list = mirror.playlists.playlist(2);
            QVERIFY(!list ||
                    (list->duration() == info.totalDuration && list->isInfinite() == info.isInfinite &&
                     list->entryCount() == info.entries.size()));
        }
    }
};

HALCYRA_TEST(TestPlaylistModels)

} // namespace vantrel::test

#include "test_playlistmodels.moc"

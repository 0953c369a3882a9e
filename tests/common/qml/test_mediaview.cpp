#include "common/filesystem/models/filesmodel.h"
#include "common/qml/qmlmanager.h"
#include "common/qml/rowspeech.h"
#include "common/qml/selectionmodel.h"
#include "common/session/settings/configuration.h"
#include "common/ui/clicktest/nameditem.h"
#include "common/ui/style/stylesheet.h"
#include "common/views/media/collectionpanes.h"
#include "common/views/media/mediaview.h"
#include "common/views/media/sequencesearch.h"
#include "common/views/media/slotdetails.h"
#include "common/views/media/slotgridmodel.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/fakefiles.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/patience.h"
#include "tests/support/testmain.h"
#include "tests/support/threadwork.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWidget>
#include <QTest>

using namespace vantrel;
using namespace vantrel::test;

class TestMediaView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { StyleSheet::apply(*qApp); }
    void cleanupTestCase()
    {
        QMLManager::instance()->deinitialize();
        qApp->setStyleSheet({});
    }

    /// Edits come and go row by row, whatever the filters let through.
    void rowsFollowTheLibrary()
    {
        MediaMirror mirror(makeLibrary(2, 6));
        const auto isUsed = [](const MediaAddress& slot) { return slot.slot % 2 == 0; };
        SlotGridModel model(&mirror.model, isUsed);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.setCollection(1);
        QTRY_COMPARE(shown(model), QStringLiteral("1 2 3 4 5 6 [7 – 9999 free]"));
        const QPersistentModelIndex last = model.index(5);
        mirror.edit([](MediaLibrary& library) {
            library.getCollection(1)->removeMediaSlot(2);
            library.getCollection(1)->insertMediaSlot(5, MediaSlot(), true); // cleared
            library.getCollection(1)->insertMediaSlot(20, makeSlot("far"), true);
        });
        QTRY_COMPARE(shown(model),
                     QStringLiteral("1 [2 free] 3 4 [5 · empty] 6 [7 – 19 free] 20 [21 – 9999 free]"));
        QCOMPARE(last.row(), 5);
        QCOMPARE(model.count(), 5);
        QCOMPARE(model.rowHolding(12), 6);
        // What is on a place or goes over it is none of what is selected.
        SelectionModel selection;
        selection.setRowModel(&model);
        selection.pick(1, 0);
        QCOMPARE(selection.selectedCount(), 0);
        QCOMPARE(selection.currentRow(), 1);
        selection.pick(5, Qt::ShiftModifier);
        QCOMPARE(model.slotsAt(selection.rows()), (QList<int>{3, 4, 6}));
        mirror.edit([](MediaLibrary& library) {
            library.getCollection(1)->insertMediaSlot(9, makeSlot("nine"), true);
            library.getCollection(1)->removeMediaSlot(20);
        });
        QTRY_COMPARE(shown(model),
                     QStringLiteral("1 [2 free] 3 4 [5 · empty] 6 [7 – 8 free] 9 [10 – 9999 free]"));
        QCOMPARE(model.slotsAt(selection.rows()), (QList<int>{3, 4, 6}));
        model.setUnusedOnly(true);
        QTRY_COMPARE(shown(model), QStringLiteral("1 3 9")); // what is left out is not free
        QCOMPARE(model.total(), 5);
        model.setUnusedOnly(false);
        QTRY_VERIFY(shown(model).endsWith(QStringLiteral("9 [10 – 9999 free]")) && model.count() == 5);
        mirror.edit([](MediaLibrary& library) {
            library.getCollection(1)->insertMediaSlot(9, MediaSlot(), true); // one alone
        });
        QTRY_COMPARE(model.count(), 4);
        mirror.edit([](MediaLibrary& library) {
            library.getCollection(1)->insertMediaSlot(9, makeSlot("nine"), true);
        });
        model.setSearchText(QStringLiteral("4"));
        QTRY_VERIFY(shown(model).contains(u'4') && !shown(model).contains(u'6'));
        model.setSearchText({});
        QTRY_COMPARE(model.count(), 5);
        model.setCollection(7); // there is none
        QTRY_COMPARE(model.rowCount(), 0);
    }

    /// A selection never goes over to another medium that has the number by now.
    void whatIsSelectedStaysWhatItWas()
    {
        MediaMirror mirror(makeLibrary(2, 200));
        SlotGridModel model(&mirror.model, {});
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.setCollection(1);
        QTRY_COMPARE(model.count(), 200);
        SelectionModel selection;
        selection.setRowModel(&model);
        const auto chosen = [&] { return model.slotsAt(selection.rows()); };
        const auto put = [](MediaLibrary& library, int slot, const char* name) {
            MediaSlot* const there = library.findSlot(1, slot);
            if (name)
                there->setName(name);
            there->setUrl("file:///" + std::string(name ? name : "moved") + ".mov");
        };
        // Another client's edits.
        for (const int row : {1, 2, 3})
            selection.toggle(row);
        mirror.edit([&](MediaLibrary& library) {
            put(library, 2, nullptr); // its file has moved
            put(library, 3, "other");
            library.findSlot(1, 4)->setName("renamed");
        });
        QTRY_COMPARE(chosen(), (QList<int>{2, 4}));
        // Another show, which has some of the same media in the same slots.
        put(*mirror.library, 4, nullptr);
        mirror.load();
        QCOMPARE(chosen(), QList<int>{2});
        selection.selectAll();
        for (int slot = 1; slot <= 200; slot += 2)
            put(*mirror.library, slot, "next");
        mirror.load();
        QCOMPARE(chosen().size(), 100);
        QCOMPARE(chosen().first(), 2);
        mirror.edit([&](MediaLibrary& library) {
            for (int slot = 2; slot <= 190; slot += 2)
                put(library, slot, "after");
        });
        QTRY_COMPARE(chosen(), (QList<int>{192, 194, 196, 198, 200}));
        // A collection of the same number.
        mirror.edit([&](MediaLibrary& library) { library.removeCollection(1); });
        mirror.edit([&](MediaLibrary& library) {
            library.insertMediaCollection(1, *std::as_const(library).findCollection(2), true);
        });
        QTRY_COMPARE(model.count(), 200);
        QVERIFY(chosen().isEmpty());
    }

    /// No turn of a look through many slots keeps the window waiting.
    void manySlotsAreLookedThroughInTurns()
    {
        MediaMirror mirror(makeLibrary(1, MediaCollection::slotIndexMax));
        SlotGridModel model(&mirror.model, {});
        model.setCollection(1);
        double longest = 0;
        QElapsedTimer whole;
        whole.start();
        while (model.count() == 0 && whole.elapsed() < 20000) {
            const double before = threadWorkMs();
            QCoreApplication::processEvents(QEventLoop::AllEvents, 0);
            longest = std::max(longest, threadWorkMs() - before);
        }
        qInfo("all slots stand after %lld ms, the longest turn took %.1f ms",
              static_cast<long long>(whole.elapsed()), longest);
        QCOMPARE(model.count(), MediaCollection::slotIndexMax);
        QCOMPARE(model.rowCount(), MediaCollection::slotIndexMax); // nothing is free
        QVERIFY(longest < 16 * slowness);
    }

    void keysAndFiltersDoWhatTheySay()
    {
        MediaMirror mirror(makeLibrary(3, 40));
        MediaView view({.library = &mirror.model, .provider = &mirror.provider});
        view.selectCollection(2); // before it is shown
        view.resize(1268, 600);
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        QCOMPARE(view.quickWidget()->status(), QQuickWidget::Ready);
        const SlotGridModel* model = panes(view)->slotModel();
        QCOMPARE(model->collection(), 2);
        QTRY_COMPARE(model->count(), 40);
        QQuickItem* pane = item(view, "media-slots");
        item(view, "media-slots-grid")->forceActiveFocus();
        const auto chosen = [pane] {
            QVariant list;
            QMetaObject::invokeMethod(pane, "selectedSlots", Q_RETURN_ARG(QVariant, list));
            QStringList numbers;
            for (const QVariant& number : list.toList())
                numbers.append(number.toString());
            return numbers.join(u' ');
        };
        const auto key = [&view](Qt::Key pressed, Qt::KeyboardModifiers held = Qt::NoModifier) {
            QTest::keyClick(view.quickWidget(), pressed, held);
        };
        key(Qt::Key_Home);
        key(Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(chosen(), QStringLiteral("1 2"));
        const int columns = pane->property("columns").toInt();
        QVERIFY(columns > 2);
        // The last slot, and then the place behind it, which says what a drop would take of it.
        key(Qt::Key_End);
        QCOMPARE(chosen(), QStringLiteral("40"));
        key(Qt::Key_End);
        QVERIFY(chosen().isEmpty());
        QTRY_COMPARE(item(view, "media-place41")->property("text").toString(),
                     QStringLiteral("41 – 9999 free"));
        const QVariantMap aimed{{QStringLiteral("isPossible"), true},
                                {QStringLiteral("first"), 41},
                                {QStringLiteral("last"), 42},
                                {QStringLiteral("text"), QString()}};
        pane->setProperty("aimed", aimed);
        QCOMPARE(item(view, "media-place41")->property("text").toString(), QStringLiteral("41 – 42 free"));
        // Where what is between the slots is left out, a line stands for it.
        QQuickItem* search = item(view, "media-slots-search");
        search->setProperty("text", QStringLiteral("c2s"));
        const QQuickItem* line = item(view, "media-slots-drop-line");
        QTRY_COMPARE(model->rowCount(), 40);
        pane->setProperty("aimed", aimed);
        QVERIFY(line->isVisible());
        item(view, "media-slots-grid")->setProperty("contentY", 0);
        const int bands = (40 + columns - 1) / columns;
        const qreal cellHeight = item(view, "media-slots-grid")->property("cellHeight").toReal();
        QCOMPARE(line->y(), (bands - 1) * cellHeight);
        search->setProperty("text", QString());
        QTRY_COMPARE(model->rowCount(), 41);
        pane->setProperty("aimed", QVariant::fromValue(nullptr));
        key(Qt::Key_Home);
        key(Qt::Key_Down);
        QCOMPARE(chosen(), QString::number(1 + columns));
        key(Qt::Key_3);
        key(Qt::Key_3);
        QCOMPARE(chosen(), QStringLiteral("33"));
        // A field in a slot keeps its keys from the slots around it.
        pane->setProperty("renamingSlot", 33);
        QTRY_VERIFY(item(view, "media-slots-rename-field"));
        key(Qt::Key_Return);
        QTRY_COMPARE(pane->property("renamingSlot").toInt(), -1);
        QVERIFY(item(view, "media-slots-grid")->hasActiveFocus());
        key(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(chosen().count(u' '), 39);
        key(Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(view.quickWidget(), QStringLiteral("no such name"));
        QTRY_COMPARE(model->count(), 0);
        QVERIFY(item(view, "media-slots-show-all-button")->isVisible());
        key(Qt::Key_Escape);
        QTRY_COMPARE(model->count(), 40);
    }

    /// Each has its own selection, and the list of collections and the details mean the one with the keys.
    void collectionsStandSideBySide()
    {
        MediaMirror mirror(makeLibrary(3, 12));
        MediaView view({.library = &mirror.model, .provider = &mirror.provider});
        view.selectCollection(1);
        view.resize(1900, 900);
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        CollectionPanes& shown = *panes(view);
        while (shown.count() > 1)
            shown.close(1);
        item(view, "media-slots-beside-button")->forceActiveFocus();
        QTest::keyClick(view.quickWidget(), Qt::Key_Return);
        QCOMPARE(shown.count(), 2);
        QCOMPARE(shown.slotModel()->collection(), 2); // the next one, which is chosen now
        QTRY_VERIFY(item(view, "media-slots2-slot12"));
        QVERIFY(item(view, "media-slot12")->isVisible());
        QQuickItem* list = item(view, "media-collections");
        list->forceActiveFocus();
        QTest::keyClick(view.quickWidget(), Qt::Key_Down);
        QTRY_COMPARE(shown.slotModel()->collection(), 3);
        QTRY_COMPARE(shown.slotModel()->count(), 12);
        const auto details = [&view] {
            return view.quickWidget()
                ->rootContext()
                ->contextProperty(QStringLiteral("slotDetails"))
                .value<QObject*>()
                ->property("shown")
                .value<ShownSlots>();
        };
        item(view, "media-slots2-grid")->forceActiveFocus();
        QTest::keyClick(view.quickWidget(), Qt::Key_End);
        QTRY_COMPARE(details().slot, 12);
        QCOMPARE(details().collection, 3);
        QTest::keyClick(view.quickWidget(), Qt::Key_F6);
        QCOMPARE(shown.current(), 0);
        QVERIFY(item(view, "media-slots-grid")->hasActiveFocus());
        QTest::keyClick(view.quickWidget(), Qt::Key_Home);
        QTRY_COMPARE(details().collection, 1);
        list->forceActiveFocus();
        QTest::keyClick(view.quickWidget(), Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(shown.count(), 3);
        save(view, QStringLiteral("media-beside"));
        // What has no room any more is back once there is room again.
        view.resize(948, 430);
        QTRY_VERIFY(!item(view, "media-slots-panel")->isVisible());
        QVERIFY(item(view, "media-slots-panel2")->isVisible());
        view.resize(1900, 900);
        QTRY_VERIFY(item(view, "media-slots-panel")->isVisible());
        mirror.edit([](MediaLibrary& library) { library.removeCollection(3); });
        QTRY_VERIFY(!item(view, "media-slots3-slot12"));
        item(view, "media-slots3-grid")->forceActiveFocus();
        for (int left = 2; left > 0; --left) {
            QTest::keyClick(view.quickWidget(), Qt::Key_W, Qt::ControlModifier);
            QCOMPARE(shown.count(), left);
        }
        QTest::keyClick(view.quickWidget(), Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(shown.count(), 1);
        QVERIFY(item(view, "media-slots-grid")->hasActiveFocus());
    }

    /// Of one slot what plays it and where else its file stands; of several what they come to, also when they
    /// change.
    void detailsTellOfTheSelection()
    {
        MediaMirror mirror(makeLibrary(2, 400));
        mirror.edit([](MediaLibrary& library) {
            MediaSlot twin = *library.findSlot(1, 3);
            twin.setIsPlayable(false);
            library.getCollection(2)->insertMediaSlot(7, twin, true);
            library.addPlaylist(1, Playlist("Gala"));
            library.findPlaylist(1)->addEntry(
                {5, 0}, {slotUrl(1, 3), EndAction::Next, TakeTransitionType::DirectCut, 1.0});
        });
        SlotGridModel model(&mirror.model, {});
        SelectionModel selection;
        selection.setRowModel(&model);
        SlotDetails details(
            {.library = &mirror.model, .provider = &mirror.provider, .playlists = &mirror.playlists});
        details.follow(&selection);
        model.setCollection(1);
        QTRY_COMPARE(model.count(), 400);
        selection.pick(2, 0);
        QTRY_COMPARE(details.shown().slot, 3);
        QCOMPARE(details.shown().uses, QStringList{QStringLiteral("1: Gala - 5")});
        QCOMPARE(details.shown().twins, QStringList{QStringLiteral("2: Collection 2, slot 7")});
        QCOMPARE(details.shown().file.fileName(), QStringLiteral("c1s3.mp4"));
        selection.selectAll();
        QTRY_COMPARE(details.shown().count, 400);
        QCOMPARE(fact(details, "Duration:"), QStringLiteral("01:06:40"));
        QCOMPARE(fact(details, "In no playlist:"), QStringLiteral("399"));
        QCOMPARE(fact(details, "Not playable:"), QString());
        QVERIFY(details.shown().file.isEmpty());
        mirror.edit([](MediaLibrary& library) { library.findSlot(1, 9)->setIsPlayable(false); });
        QTRY_COMPARE(fact(details, "Not playable:"), QStringLiteral("1"));
        model.setCollection(2);
        QTRY_COMPARE(details.shown().count, 0);
    }

    /// A picture stands for its sequence in a folder of any size, and the window waits for no part of it.
    void sequencesAreFoundInTurns()
    {
        FakeFiles files(QStringLiteral("Server files"));
        for (int frame = 0; frame < 50000; ++frame) {
            files.add(QStringLiteral("/shots/fly.%1.png").arg(frame + 10, 6, 10, QLatin1Char('0')));
            files.add(QStringLiteral("/shots/plate %1.mov").arg(frame));
        }
        files.add(QStringLiteral("/shots/alone.png"));
        FilesModel model(&files);
        model.setDirectoryPath(QStringLiteral("/shots/"));
        QTRY_COMPARE_WITH_TIMEOUT(model.count(), 100001, 20000);
        QStringList found;
        const auto note = [&found](const std::optional<ImageSequenceInfo>& sequence) {
            found.append(sequence ? QStringLiteral("%1 %2 %3")
                                        .arg(QString::fromStdString(sequence->format.toString()))
                                        .arg(sequence->firstFrame)
                                        .arg(sequence->lastFrame)
                                  : QStringLiteral("none"));
        };
        SequenceSearch search;
        search.begin(&model, QStringLiteral("/shots/fly.000042.png"), note);
        search.begin(&model, QStringLiteral("/shots/fly.000043.png"), note); // in the place of the first
        double longest = 0;
        for (QElapsedTimer whole = started(); found.isEmpty() && whole.elapsed() < 20000;) {
            const double before = threadWorkMs();
            QCoreApplication::processEvents(QEventLoop::AllEvents, 0);
            longest = std::max(longest, threadWorkMs() - before);
        }
        qInfo("the longest turn took %.1f ms", longest);
        QCOMPARE(found, QStringList{QStringLiteral("/shots/fly.%06d.png 10 50009")});
        QVERIFY(longest < 16 * slowness);
        search.begin(&model, QStringLiteral("/shots/alone.png"), note);
        QTRY_COMPARE(found.last(), QStringLiteral("none"));
    }

    /// Arrows lead from row to row of views that keep the keyboard: each is told as it becomes current.
    void rowsAreToldToWhoListens()
    {
        MediaMirror mirror(makeLibrary(2, 3));
        mirror.edit([](MediaLibrary& library) { library.getCollection(1)->removeMediaSlot(2); });
        MediaView view({.library = &mirror.model, .provider = &mirror.provider});
        view.resize(1268, 600);
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        QTRY_VERIFY(item(view, "media-slot3"));
        QStringList told;
        connect(view.quickWidget()
                    ->rootContext()
                    ->contextProperty(QStringLiteral("rowSpeech"))
                    .value<RowSpeech*>(),
                &RowSpeech::told, this, [&told](QQuickItem* row) {
                    const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(row);
                    told.append(!spoken                   ? QStringLiteral("nothing")
                                : spoken->state().focused ? spoken->text(QAccessible::Name)
                                                          : QStringLiteral("not where the keys are"));
                });
        item(view, "media-slots-grid")->forceActiveFocus();
        QTest::keyClick(view.quickWidget(), Qt::Key_Home);
        QTRY_COMPARE(told.join(u'|'), QStringLiteral("Slot 1, c1s1, 00:00:10.000"));
        for (const char* next : {"Slot 2, free", "Slot 3, c1s3, 00:00:10.000", "Slots 4 to 9999, free"}) {
            QTest::keyClick(view.quickWidget(), Qt::Key_Right);
            QTRY_COMPARE(told.last(), QLatin1String(next));
        }
        item(view, "media-collections")->forceActiveFocus();
        QTRY_COMPARE(told.last(), QStringLiteral("Collection 1, Collection 1"));
        QTest::keyClick(view.quickWidget(), Qt::Key_Down);
        QTRY_COMPARE(told.last(), QStringLiteral("Collection 2, Collection 2"));
    }

    /// Nothing is wider than what holds it.
    void layoutHolds()
    {
        MediaMirror mirror(makeLibrary(3, 12));
        mirror.edit([](MediaLibrary& library) {
            library.getCollection(1)->removeMediaSlot(3);
            library.getCollection(1)->insertMediaSlot(5, MediaSlot(), true);
            library.getCollection(1)->insertMediaSlot(120, makeSlot("far"), true);
        });
        MediaView view({.library = &mirror.model, .provider = &mirror.provider});
        view.resize(1268, 600);
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        QQuickItem* root = view.quickWidget()->rootObject();
        for (int text = 0; text < 4; ++text) {
            m_settings->setValue(TEXT_SIZE, QVariant::fromValue(static_cast<FontSize>(text)));
            for (const QSize size : {QSize(1268, 600), QSize(948, 430), QSize(1900, 960)}) {
                for (const bool isTable : {false, true}) {
                    QObject* actions = view.quickWidget()
                                           ->rootContext()
                                           ->contextProperty(QStringLiteral("mediaActions"))
                                           .value<QObject*>();
                    actions->setProperty("isTable", isTable);
                    view.resize(size);
                    QTRY_COMPARE(root->width(), qreal(size.width()));
                    const auto fits = [&view] {
                        for (QQuickItem* tool :
                             {item(view, "media-slots-search"), item(view, "media-slots-table-button"),
                              item(view, "media-slot1")}) {
                            const QQuickItem* panel = item(view, "media-slots-panel");
                            const QRectF box = tool->mapRectToItem(panel, tool->boundingRect());
                            if (tool->width() <= 0 || box.left() < 0 || box.right() > panel->width())
                                return false;
                        }
                        return true;
                    };
                    QTRY_VERIFY(item(view, "media-slot1") && fits());
                    save(view, QStringLiteral("media-%1-%2-%3")
                                   .arg(text)
                                   .arg(size.width())
                                   .arg(isTable ? QStringLiteral("table") : QStringLiteral("grid")));
                }
            }
        }
    }

private:
    static QElapsedTimer started()
    {
        QElapsedTimer clock;
        clock.start();
        return clock;
    }
    static QString fact(const SlotDetails& details, const char* label)
    {
        for (const QVariant& each : details.shown().facts) {
            if (each.toMap().value(QStringLiteral("label")) == QLatin1String(label))
                return each.toMap().value(QStringLiteral("value")).toString();
        }
        return {};
    }
    static QString shown(const SlotGridModel& model)
    {
        QStringList numbers;
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row);
            numbers.append(model.isSlotAt(row) ? index.data(SlotGridModel::SlotRole).toString()
                                               : u'[' + index.data().toString() + u']');
        }
        return numbers.join(u' ');
    }
    static void save(const MediaView& view, const QString& name)
    {
        const QByteArray folder = qgetenv("HALCYRA_PICTURES");
        if (!folder.isEmpty())
            view.quickWidget()->grabFramebuffer().save(QString::fromLocal8Bit(folder) + u'/' + name +
                                                       QStringLiteral(".png"));
    }
    static CollectionPanes* panes(const MediaView& view)
    {
        return qobject_cast<CollectionPanes*>(view.quickWidget()
                                                  ->rootContext()
                                                  ->contextProperty(QStringLiteral("collectionPanes"))
                                                  .value<QObject*>());
    }
    static QQuickItem* item(const MediaView& view, const char* name)
    {
        return namedItem(view.quickWidget()->rootObject(), QString::fromLatin1(name));
    }

    TestSettings m_settings;
};

HALCYRA_TEST(TestMediaView)

#include "test_mediaview.moc"

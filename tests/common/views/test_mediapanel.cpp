#include "common/media/items/guimediaslot.h"
#include "common/media/items/mimedata.h"
#include "common/media/models/collectionselectormodel.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/session/mirror/guiplayback.h"
#include "common/views/mediapanelmodel.h"
#include "tarn/media/mediaenums.h"
#include "tests/common/views/slotpanel.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mocknetworkaccessmanager.h"
#include "tests/support/patience.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QDialog>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using test::MediaMirror;
using test::Panel;

class TestMediaPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheLibrary();
    void goesToItsOwnCollectionAlone();
    void offersEditingWhereItIsFollowed();
    void searches_data();
    void searches();
    void searchingModelIsSound();
    void playsWhatIsActivated();
    void enterInTheSearchCues_data();
    void enterInTheSearchCues();
    void aNumberIsNoPartOfAnother();
    void enterInAnEditorStaysInIt();
    void emptyTexts();
    void dragPayloadReadsBack();
    void takesDrops();
    void movesIntoGaps_data();
    void movesIntoGaps();
    void reachesAnyNumber();
    void asksOnlyForWhatIsSeen();
    void marksWhatPlays();
    void marksLeaveTheNumberFree();
};

namespace {

/// Preview holds slot 1, program slot 2.
struct Marked
{
    Marked()
        : panel(test::makeLibrary(1, 3))
        , preview(&panel.mirror.playlists, &panel.mirror.provider)
        , program(&panel.mirror.playlists, &panel.mirror.provider)
        , states(&preview, &program, &panel.mirror.playlists, &panel.mirror.provider, nullptr)
    {
        preview.init();
        program.init();
        panel.mirror.model.setMediaStateProvider(&states);
        preview.setMedia(QStringLiteral("brume://collections/1/slots/1"));
        program.setMedia(QStringLiteral("brume://collections/1/slots/2"));
        states.reset();
    }

    /// How many of a row's pixels between two columns are of a channel's colour.
    int coloured(const QImage& image, int row, bool red, int from, int to) const
    {
        const QRect rect = panel.view->visualRect(panel.row(row)).intersected(image.rect());
        int count = 0;
        for (int y = rect.top(); y < rect.bottom(); ++y) {
            for (int x = rect.left() + from; x < std::min(rect.left() + to, rect.right()); ++x) {
                const QColor colour = image.pixelColor(x, y);
                const int own = red ? colour.red() : colour.green();
                count += own > 80 && own > 2 * (red ? colour.green() : colour.red());
            }
        }
        return count;
    }

    Panel panel;
    GUIPlayback preview;
    GUIPlayback program;
    MediaStateProvider states;
};

} // namespace

void TestMediaPanel::goesToItsOwnCollectionAlone()
{
    Panel panel(test::makeLibrary(3, 3));
    QAction* duplicate = nullptr;
    for (QAction* action : panel.widget.findChild<QMenu*>(QStringLiteral("MediaPanel-menu"))->actions()) {
        if (action->text() == QStringLiteral("Duplicate collection"))
            duplicate = action;
    }
    QVERIFY(duplicate);
    const auto comes = [&](int number) {
        panel.mirror.edit([=](MediaLibrary& library) {
            library.insertMediaCollection(number, MediaCollection("new"), true);
        });
    };
    duplicate->trigger();
    comes(4);
    QCOMPARE(panel.widget.selectedCollection(), 4);
    duplicate->trigger();
    Q_EMIT panel.mirror.provider.editsSettled(); // it was refused
    comes(5);
    QCOMPARE(panel.widget.selectedCollection(), 4);
}

void TestMediaPanel::offersEditingWhereItIsFollowed()
{
    Panel panel(test::makeLibrary(2, 1));
    const auto* menu = panel.widget.findChild<QMenu*>(QStringLiteral("MediaPanel-menu"));
    QAction* edit = nullptr;
    for (QAction* action : menu->actions()) {
        if (action->text() == QLatin1String("Edit collection"))
            edit = action;
    }
    QVERIFY(edit && !edit->isVisible());
    panel.widget.setCollectionsEditable(true);
    QVERIFY(edit->isVisible());
    panel.widget.selectCollection(2);
    QSignalSpy asked(&panel.widget, &MediaPanelWidget::collectionEditRequested);
    edit->trigger();
    QCOMPARE(asked.value(0).value(0).toInt(), 2);
}

void TestMediaPanel::followsTheLibrary()
{
    Panel panel(test::makeLibrary(3, 3));
    QCOMPARE(panel.chooser->currentText(), QStringLiteral("1: Collection 1"));
    QCOMPARE(panel.listed(), QStringLiteral("1 2 3"));
    panel.widget.selectCollection(2);
    QCOMPARE(panel.chooser->currentText(), QStringLiteral("2: Collection 2"));
    panel.mirror.edit([](MediaLibrary& library) {
        library.findCollection(2)->insertMediaSlot(7, test::makeSlot("seven"), true);
        library.findCollection(2)->insertMediaSlot(2, MediaSlot(), true); // cleared
        library.findCollection(2)->setName("Zwei");
    });
    QTRY_COMPARE(panel.listed(), QStringLiteral("1 [2 · empty] 3 [4 – 6 free] 7"));
    QCOMPARE(panel.chooser->currentText(), QStringLiteral("2: Zwei"));
    panel.mirror.load();
    QTRY_COMPARE(panel.listed(), QStringLiteral("1 [2 · empty] 3 [4 – 6 free] 7"));
    QCOMPARE(panel.chooser->currentText(), QStringLiteral("2: Zwei"));
    panel.mirror.edit([](MediaLibrary& library) {
        library.findCollection(2)->removeMediaSlot(3);
        library.findCollection(2)->insertMediaSlot(5, test::makeSlot("five"), true);
    });
    QTRY_COMPARE(panel.listed(), QStringLiteral("1 [2 · empty] [3 – 4 free] 5 [6 free] 7"));
    panel.mirror.edit([](MediaLibrary& library) { library.findCollection(2)->removeMediaSlot(7); });
    QTRY_COMPARE(panel.listed(), QStringLiteral("1 [2 · empty] [3 – 4 free] 5")); // the rest is below them
    panel.mirror.edit([](MediaLibrary& library) { library.removeCollection(2); });
    QTRY_COMPARE(panel.chooser->currentText(), QStringLiteral("3: Collection 3"));
    QTRY_COMPARE(panel.listed(), QStringLiteral("1 2 3"));

    panel.chooser->setCurrentIndex(0);
    Q_EMIT panel.chooser->activated(0);
    QCOMPARE(panel.widget.selectedCollection(), 1);
}

void TestMediaPanel::searches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("listed");
    QTest::newRow("nothing") << QString() << QStringLiteral("1 2 3 4 5 6 7 8 9 10 11 12");
    QTest::newRow("number's beginning") << QStringLiteral("1") << QStringLiteral("1 10 11 12");
    QTest::newRow("name, case ignored") << QStringLiteral("LOGO") << QStringLiteral("3");
    QTest::newRow("file") << QStringLiteral("intro") << QStringLiteral("5");
    QTest::newRow("file with extension") << QStringLiteral("intro.mov") << QStringLiteral("5");
    QTest::newRow("no extension alone") << QStringLiteral("4") << QStringLiteral("4");
    QTest::newRow("blanks around") << QStringLiteral(" logo ") << QStringLiteral("3");
    QTest::newRow("no pattern") << QStringLiteral(".*") << QString();
}

void TestMediaPanel::searches()
{
    QFETCH(QString, text);
    Panel panel(test::makeLibrary(1, 12));
    panel.mirror.edit([](MediaLibrary& library) {
        for (int slot = 1; slot <= 12; ++slot) {
            library.findSlot(1, slot)->setName(slot == 3 ? "The logo" : "x");
            library.findSlot(1, slot)->setUrl(slot == 5 ? "file:///a/intro.mov" : "file:///a/y.mp4");
        }
    });
    panel.search->setText(text);
    QTEST(panel.listed(), "listed");
    panel.search->clear();
    QCOMPARE(panel.listed(), QStringLiteral("1 2 3 4 5 6 7 8 9 10 11 12"));
}

void TestMediaPanel::searchingModelIsSound()
{
    test::allowWarnings(QStringLiteral("Missing slot: '")); // entries may name any slot
    MediaMirror mirror(test::makeLibrary(2, 20));
    MediaPanelModel model(&mirror.model);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    test::RandomEdits random(99);
    for (int step = 0; step < 60; ++step) {
        model.setSearchText(QString::number(random.below(3)));
        const QModelIndex root = model.mapFromSource(mirror.model.collectionIndex(1));
        for (int row = 0; row < model.rowCount(root); ++row)
            QVERIFY(!model.index(row, 0, root).data(MediaLibraryModel::UrlRole).toUrl().isEmpty());
        mirror.edit([&](MediaLibrary& library) { random.edit(library); });
    }
    // The places are those that a model of the library as it is by now has.
    const auto rowsOf = [&mirror](const MediaPanelModel& shown) {
        QStringList texts;
        const QModelIndex root = shown.mapFromSource(mirror.model.collectionIndex(1));
        for (int row = 0; row < shown.rowCount(root); ++row)
            texts.append(Panel::textOf(shown.index(row, 0, root)));
        return texts;
    };
    model.setSearchText({});
    for (int step = 0; step < 60; ++step) {
        mirror.edit([&](MediaLibrary& library) { random.edit(library); });
        QCoreApplication::processEvents();
        const MediaPanelModel anew(&mirror.model);
        QTRY_COMPARE(rowsOf(model), rowsOf(anew));
    }
}

void TestMediaPanel::playsWhatIsActivated()
{
    Panel panel(test::makeLibrary(2, 5));
    panel.widget.show();
    panel.widget.selectCollection(2);
    panel.search->setText(QStringLiteral("4"));
    QSignalSpy played(&panel.widget, &MediaPanelWidget::directPlayRequested);
    const auto slot = [&played] {
        const QModelIndex index = played.takeFirst().first().toModelIndex();
        const MediaAddress address = media::MediaUtils::parseCollectionIndex(index);
        return address.isValid() ? address.collection * 100 + address.slot : -1;
    };
    const QPoint place = panel.view->visualRect(panel.row(0)).center();
    QTest::mouseClick(panel.view->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(panel.view->viewport(), Qt::LeftButton, {}, place);
    QCOMPARE(played.size(), 1);
    QCOMPARE(slot(), 204);

    // Nothing to copy is no matter for the log.
    panel.view->setCurrentIndex({});
    QTest::keyClick(panel.view, Qt::Key_C, Qt::ControlModifier);

    panel.search->clear();
    QTest::keyClick(panel.search, Qt::Key_Down);
    panel.view->setCurrentIndex(panel.row(1));
    QTest::keyClick(panel.view, Qt::Key_Return);
    QCOMPARE(played.size(), 1);
    QCOMPARE(slot(), 202);
    // Text typed on the list searches.
    QTest::keyClicks(panel.view, QStringLiteral("5"));
    QCOMPARE(panel.search->text(), QStringLiteral("5"));
    QCOMPARE(panel.listed(), QStringLiteral("5"));
}

void TestMediaPanel::enterInTheSearchCues_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("cued"); // 0 for none
    QTest::addColumn<QString>("left");
    QTest::newRow("a number among its like") << "1" << 1 << "";
    QTest::newRow("a longer one") << "12" << 12 << "";
    QTest::newRow("one hit by name") << "c1s7" << 7 << "c1s7";
    QTest::newRow("several hits") << "c1s" << 0 << "c1s";
    QTest::newRow("no such slot") << "99" << 0 << "99";
    QTest::newRow("nothing typed") << "" << 0 << "";
}

void TestMediaPanel::enterInTheSearchCues()
{
    QFETCH(QString, typed);
    Panel panel(test::makeLibrary(1, 12));
    panel.widget.show();
    QSignalSpy played(&panel.widget, &MediaPanelWidget::directPlayRequested);
    QTest::keyClicks(panel.search, typed);
    QTest::keyClick(panel.search, Qt::Key_Return);
    const QModelIndex index = played.isEmpty() ? QModelIndex() : played.first().first().toModelIndex();
    QCOMPARE(played.size(), index.isValid() ? 1 : 0);
    QTEST(index.isValid() ? media::MediaUtils::parseCollectionIndex(index).slot : 0, "cued");
    QTEST(panel.search->text(), "left");
}

/// Of a slot that is not there nothing is cued, however often Enter is pressed.
void TestMediaPanel::aNumberIsNoPartOfAnother()
{
    Panel panel(test::makeLibrary(1, 9));
    panel.mirror.edit([](MediaLibrary& library) {
        library.findCollection(1)->insertMediaSlot(3, MediaSlot(), true);
        library.findSlot(1, 7)->setName("Act 3");
    });
    panel.widget.show();
    QSignalSpy played(&panel.widget, &MediaPanelWidget::directPlayRequested);
    NotificationManagerImpl* told = NotificationManagerImpl::instance();
    told->clear();
    QTest::keyClicks(panel.search, QStringLiteral("3"));
    QCOMPARE(panel.listed(), QStringLiteral("7"));
    QTest::keyClick(panel.search, Qt::Key_Return);
    QCOMPARE(told->notifications().size(), 1);
    QVERIFY(told->notifications().first()->details().contains(QStringLiteral("nothing in slot 3.")));
    QVERIFY(!panel.view->currentIndex().isValid());
    QTest::keyClick(panel.search, Qt::Key_Return);
    QCOMPARE(played.size(), 0);
    // The next number takes its place.
    QTest::keyClicks(panel.search, QStringLiteral("07"));
    QTest::keyClick(panel.search, Qt::Key_Return);
    QCOMPARE(played.size(), 1);
    QCOMPARE(media::MediaUtils::parseCollectionIndex(played[0][0].toModelIndex()).slot, 7);
}

void TestMediaPanel::enterInAnEditorStaysInIt()
{
    Panel panel(test::makeLibrary(1, 3));
    panel.widget.show();
    QSignalSpy played(&panel.widget, &MediaPanelWidget::directPlayRequested);
    panel.view->setCurrentIndex(panel.row(1));
    QTest::keyClick(panel.view, Qt::Key_F2);
    auto* editor = panel.view->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!panel.view->findChild<QLineEdit*>() || !panel.view->findChild<QLineEdit*>()->isVisible());
    QCOMPARE(played.size(), 0);
}

void TestMediaPanel::emptyTexts()
{
    Panel panel(makeRef<MediaLibrary>());
    QVERIFY(panel.view->emptyText().startsWith(QStringLiteral("There are no collections yet.")));
    panel.widget.setConnected(false);
    QCOMPARE(panel.view->emptyText(),
             QStringLiteral("No server connected. Connect from the menu to see its media."));
    panel.mirror.edit(
        [](MediaLibrary& library) { library.insertMediaCollection(1, MediaCollection("c"), true); });
    QTRY_VERIFY(panel.view->emptyText().startsWith(QStringLiteral("This collection is empty.")));
    panel.search->setText(QStringLiteral("<b>x"));
    QCOMPARE(panel.view->emptyText(), QStringLiteral("No slot matches \"<b>x\"."));
}

void TestMediaPanel::dragPayloadReadsBack()
{
    Panel panel(test::makeLibrary(1, 3));
    panel.mirror.edit([](MediaLibrary& library) {
        library.findSlot(1, 2)->setMediaType(MediaType::ImageSequence);
        library.findSlot(1, 2)->setFrameRate(30);
        library.findSlot(1, 2)->setFirstFrameNum(1001);
        library.findSlot(1, 2)->setLastFrameNum(1240);
    });
    const std::unique_ptr<QMimeData> mime(
        panel.view->model()->mimeData({panel.row(1), panel.row(0), panel.row(1).siblingAtColumn(0)}));
    const QList<QJsonObject> objects = jsonFromMimeData(mime.get());
    QCOMPARE(objects.size(), 2);
    const auto item = std::dynamic_pointer_cast<GuiMediaSlot>(mediaItemFromMimeData(mime.get(), objects[1]));
    QVERIFY(item);
    QVERIFY(item->address() == MediaAddress(1, 2));
    QCOMPARE(item->frameRate().value_or(0), 30.0);
    QCOMPARE(item->firstFrame().value_or(0), 1001);
    QCOMPARE(item->lastFrame().value_or(0), 1240);
    QCOMPARE(mime->data(mimeformat::type), QByteArray("slot")); // what a slot takes,
    mime->setData(mimeformat::type, "2");                       // and what was written before
    QVERIFY(mediaItemFromMimeData(mime.get(), objects[1]));
}

void TestMediaPanel::takesDrops()
{
    Panel panel(test::makeLibrary(1, 3));
    panel.widget.show();
    const std::unique_ptr<QMimeData> data(panel.view->model()->mimeData({panel.row(0), panel.row(2)}));
    const auto drag = [&panel](QMimeData* mime, const QPoint& at) {
        QWidget* const target = panel.view->viewport();
        QDragEnterEvent enter(at, Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &enter);
        if (!enter.isAccepted())
            return false;
        QDragMoveEvent move(at, Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &move);
        target->grab();
        QDropEvent drop(at, Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &drop);
        return true;
    };
    QMimeData text;
    text.setText(QStringLiteral("text"));
    QVERIFY(!drag(&text, QPoint(20, 20)));
    // Below the last row: the slots after it.
    QVERIFY(drag(data.get(), QPoint(20, panel.view->visualRect(panel.row(2)).bottom() + 20)));
    QTRY_COMPARE(panel.manager.asked.join(u'|'), QStringLiteral("move 1/1 to 4|move 1/3 to 5"));
    // Nothing is written while there is nothing to write to.
    panel.manager.asked.clear();
    panel.widget.setConnected(false);
    const qsizetype told = NotificationManagerImpl::instance()->notifications().size();
    QVERIFY(drag(data.get(), panel.view->visualRect(panel.row(1)).center()));
    QCoreApplication::processEvents();
    QVERIFY(panel.manager.asked.isEmpty());
    QCOMPARE(NotificationManagerImpl::instance()->notifications().size(), told + 1);
}

void TestMediaPanel::movesIntoGaps_data()
{
    QTest::addColumn<int>("beforeRow");
    QTest::addColumn<QString>("asked");
    QTest::newRow("no gap") << 1 << QString();
    QTest::newRow("gap") << 2 << QStringLiteral("move 1/1 to 3");
    QTest::newRow("behind its place") << 3 << QStringLiteral("move 1/1 to 3");
    QTest::newRow("end") << 4 << QStringLiteral("move 1/1 to 8");
    QTest::newRow("front") << 0 << QString();
}

void TestMediaPanel::movesIntoGaps()
{
    QFETCH(int, beforeRow);
    Panel panel(test::makeLibrary(1, 2));
    panel.mirror.edit([](MediaLibrary& library) {
        library.findCollection(1)->insertMediaSlot(7, test::makeSlot("seven"), true);
    });
    Q_EMIT panel.view->moveRequested(panel.row(0), beforeRow);
    QTEST(panel.manager.asked.join(u' '), "asked");
}

/// By a number that is typed, on a place between slots, and from the clipboard to where such a place begins.
void TestMediaPanel::reachesAnyNumber()
{
    Panel panel(test::makeLibrary(1, 4));
    panel.mirror.edit([](MediaLibrary& library) {
        library.findCollection(1)->insertMediaSlot(21, test::makeSlot("far"), true);
    });
    QCOMPARE(panel.listed(), QStringLiteral("1 2 3 4 [5 – 20 free] 21"));
    panel.widget.show();
    const auto asked = [&panel] { return panel.manager.asked.join(u'|'); };
    const auto typeNumber = [&panel](const QString& number, const QString& told) {
        QTest::keyClick(panel.view, Qt::Key_M, Qt::ControlModifier);
        auto* dialog = panel.widget.findChild<QDialog*>(QStringLiteral("MoveSlots"));
        auto* field = dialog ? dialog->findChild<QLineEdit*>() : nullptr;
        if (!field)
            return false;
        QTest::keyClicks(field, number);
        const QList<QLabel*> labels = dialog->findChildren<QLabel*>();
        const bool isTold =
            std::ranges::any_of(labels, [&told](const QLabel* label) { return label->text() == told; });
        QTest::keyClick(field, Qt::Key_Return);
        dialog->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return isTold;
    };
    panel.view->setCurrentIndex(panel.row(1));
    QVERIFY(typeNumber(QStringLiteral("12"), QStringLiteral("Slot 12.")));
    QTRY_COMPARE(asked(), QStringLiteral("move 1/2 to 12"));
    QVERIFY(typeNumber(QStringLiteral("0"), QStringLiteral("A number from 1 to 9999.")));
    QCoreApplication::processEvents();
    QCOMPARE(asked(), QStringLiteral("move 1/2 to 12"));
    QTest::keyClick(panel.view, Qt::Key_X, Qt::ControlModifier);
    QTest::keyClick(panel.view, Qt::Key_End);
    QTest::keyClick(panel.view, Qt::Key_Up); // the place, which has nothing to be moved or played
    QCOMPARE(panel.view->currentIndex().row(), 4);
    QVERIFY(panel.widget.selectedMedia().isEmpty());
    QSignalSpy played(&panel.widget, &MediaPanelWidget::directPlayRequested);
    QTest::keyClick(panel.view, Qt::Key_Return);
    QCOMPARE(played.size(), 0);
    QTest::keyClick(panel.view, Qt::Key_V, Qt::ControlModifier);
    QTRY_COMPARE(asked(), QStringLiteral("move 1/2 to 12|move 1/2 to 5"));
}

void TestMediaPanel::asksOnlyForWhatIsSeen()
{
    Panel panel(test::makeLibrary(1, 5000));
    test::MockNetworkAccessManager network;
    network.knowsNothing = true; // only a few are asked for at a time, the rest follows with the answers
    MetadataProvider metadata(QStringLiteral("h"), &network, 1000);
    ThumbnailProvider thumbnails(QStringLiteral("h"), &network, 100);
    MediaStateProvider states(nullptr, nullptr, &panel.mirror.playlists, &panel.mirror.provider, &metadata);
    MediaDataAggregator aggregator(&metadata, &thumbnails, &states);
    panel.mirror.model.setMediaDataAggregator(&aggregator);
    panel.mirror.model.setMediaStateProvider(&states);
    panel.widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel.widget));
    panel.view->viewport()->repaint();
    const auto asked = [&network] { return QSet<QUrl>(network.urls.begin(), network.urls.end()).size(); };
    const auto askedInTheEnd = [&] {
        for (qsizetype before = -1; before != asked(); QCoreApplication::processEvents())
            before = asked();
        return asked();
    };
    const qsizetype seen = askedInTheEnd();
    QVERIFY(seen > 0);
    QVERIFY2(seen <= 2 * 30, qPrintable(QString::number(seen)));
    // What flies past is not asked for; what stays is.
    QScrollBar* bar = panel.view->verticalScrollBar();
    for (int value = 0; value < bar->maximum(); value += bar->maximum() / 50) {
        bar->setValue(value);
        panel.view->viewport()->repaint();
    }
    QCOMPARE(asked(), seen);
    QTRY_VERIFY(asked() > seen);
    QVERIFY(askedInTheEnd() <= 2 * seen + 4);
    panel.search->setText(QStringLiteral("s49"));
    QVERIFY(!panel.listed().isEmpty());
    QVERIFY(asked() <= 2 * seen + 4);
}

void TestMediaPanel::marksWhatPlays()
{
    Marked marked;
    marked.panel.widget.show();
    const QImage image = marked.panel.view->viewport()->grab().toImage();
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(marked.coloured(image, row, false, 4, 5) > 20, row == 0);
        QCOMPARE(marked.coloured(image, row, true, 4, 5) > 20, row == 1);
    }
    marked.panel.widget.setStale(true); // nobody knows whether that is so still
    const QImage stale = marked.panel.view->viewport()->grab().toImage();
    const auto edge = [&](int row) {
        return stale.pixel(4, marked.panel.view->visualRect(marked.panel.row(row)).center().y());
    };
    QVERIFY(edge(0) == edge(1) && edge(0) != edge(2)); // what it was last is told all the same
    for (int row = 0; row < 3; ++row)
        QCOMPARE(marked.coloured(stale, row, false, 0, 300) + marked.coloured(stale, row, true, 0, 300), 0);
}

void TestMediaPanel::marksLeaveTheNumberFree()
{
    Marked marked;
    Panel& panel = marked.panel;
    QFont huge = panel.view->font();
    huge.setPixelSize(24);
    panel.view->setFont(huge);
    panel.widget.setMinimumWidth(0);
    panel.widget.resize(150, 400);
    panel.widget.show();
    const QImage image = panel.view->viewport()->grab().toImage();
    const int nameLeft = 8 + 2 + 2 * QFontMetrics(huge).horizontalAdvance(u'0') + 8;
    for (const bool red : {false, true}) {
        const int row = red ? 1 : 0, width = panel.view->visualRect(panel.row(row)).width();
        QCOMPARE(marked.coloured(image, row, red, 8, nameLeft), 0);
        QVERIFY(marked.coloured(image, row, red, nameLeft, width) > 50);
    }
}

HALCYRA_TEST(TestMediaPanel)
#include "test_mediapanel.moc"

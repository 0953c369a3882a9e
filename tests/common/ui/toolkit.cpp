#include "common/ui/gallery/gallerywindow.h"
#include "common/ui/inspect/inspectorwidget.h"
#include "common/ui/shell/mainwindow.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/accordion.h"
#include "common/ui/toolkit/collapse.h"
#include "common/ui/toolkit/colorbox.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/uncovered.h"
#include "common/ui/toolkit/uncoveredwatch.h"
#include "common/ui/toolkit/ztdropdownmenu.h"
#include "common/ui/toolkit/ztmenu.h"
#include "common/ui/toolkit/ztsplitter.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QAbstractItemView>
#include <QColorDialog>
#include <QDialog>
#include <QHoverEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>

using namespace vantrel;

namespace {

class PaintCounter : public QWidget
{
public:
    using QWidget::QWidget;
    int paints = 0;

private:
    void paintEvent(QPaintEvent*) override { ++paints; }
};

void hover(QWidget* widget)
{
    QHoverEvent enter(QEvent::HoverEnter, QPointF(2, 2), QPointF(2, 2), QPointF(-1, -1));
    QCoreApplication::sendEvent(widget, &enter);
    QCoreApplication::processEvents();
}

} // namespace

class ToolkitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// What a dialog asks about is seen beside it, where the window has room.
    void dialogsOpenBesideWhatTheyAskAbout()
    {
        QWidget window;
        window.resize(1300, 700);
        QWidget picture(&window);
        picture.setGeometry(420, 100, 460, 500);
        keepUncovered(&picture);
        window.show();
        ZTDialog dialog(QStringLiteral("Keep this video mode?"), &window);
        dialog.setDescription(QStringLiteral("It goes back by itself."));
        dialog.setBeside();
        dialog.show();
        QVERIFY(dialog.width() < 400);
        const QRect shown(picture.mapToGlobal(QPoint()), picture.size());
        QVERIFY(!dialog.geometry().intersects(shown));
        QVERIFY(window.frameGeometry().contains(dialog.geometry()));
    }

    void accordionOpensOneAtATime()
    {
        Accordion accordion;
        for (int i = 0; i < 3; ++i)
            accordion.addSection(QString::number(i), new QWidget);
        QSignalSpy changed(&accordion, &Accordion::openIndexChanged);
        QCOMPARE(accordion.openIndex(), 0);
        accordion.setOpenIndex(2);
        QVERIFY(!accordion.section(0)->isOpen());
        accordion.section(1)->findChild<PushButton*>()->click();
        QCOMPARE(accordion.openIndex(), 1);
        accordion.setOpenIndex(-1);
        QCOMPARE(accordion.openIndex(), -1);
        QCOMPARE(changed.size(), 3);
    }

    void popupsLeaveFreeWhatIsWatched_data()
    {
        QTest::addColumn<QRect>("watched");
        QTest::addColumn<QRect>("part"); // of something else
        QTest::addColumn<QPoint>("place");
        QTest::newRow("nothing") << QRect() << QRect() << QPoint(150, 260);
        QTest::newRow("in the middle") << QRect(200, 100, 20, 170) << QRect() << QPoint(8, 260);
        QTest::newRow("all the lower end") << QRect(0, 200, 400, 80) << QRect() << QPoint(150, 280);
        QTest::newRow("and what is below it") << QRect(0, 200, 400, 100) << QRect() << QPoint(150, 180);
        QTest::newRow("all of it") << QRect(0, 0, 400, 300) << QRect() << QPoint(150, 280);
        QTest::newRow("times of a list")
            << QRect(0, 0, 400, 200) << QRect(200, 150, 100, 150) << QPoint(8, 260);
        QTest::newRow("all else") << QRect(0, 0, 400, 255) << QRect(0, 250, 400, 50) << QPoint(150, 260);
    }
    void popupsLeaveFreeWhatIsWatched()
    {
        QFETCH(QRect, watched);
        QFETCH(QRect, part);
        QWidget window;
        window.resize(400, 300);
        QWidget between(&window);
        between.setGeometry(0, 0, 400, 300);
        keepUncovered(&between, [part] { return part; });
        for (const bool isHidden : {false, true}) { // what is not seen is in nobody's way
            auto* widget = new QWidget(&between);
            widget->setGeometry(isHidden ? QRect(0, 0, 400, 300) : watched);
            widget->setVisible(!isHidden);
            keepUncovered(widget);
        }
        window.show();
        QTEST(uncoveredPlace(window, QSize(100, 20), 280), "place");
    }

    /// Where all is watched, what is on air is covered last.
    void popupsDoLeastHarm()
    {
        QWidget window;
        window.resize(400, 300);
        QWidget all(&window);
        all.setGeometry(0, 0, 400, 300);
        keepUncovered(&all);
        QWidget onAir(&all);
        onAir.setGeometry(130, 20, 270, 280);
        neverCover(&onAir);
        window.show();
        for (const QSize size : {QSize(100, 20), QSize(200, 12)})
            QVERIFY(!onAir.geometry().intersects(QRect(uncoveredPlace(window, size, 280), size)));
    }

    /// Also what only moves along with what it lies in.
    void whatMovesUnderAPopupIsTold()
    {
        QWidget window;
        window.resize(400, 300);
        auto* splitter = new ZTSplitter(Qt::Vertical, &window);
        splitter->resize(400, 300);
        auto* lower = new QWidget;
        auto* watched = new QWidget(lower);
        watched->resize(20, 20);
        keepUncovered(watched);
        splitter->addWidget(new QWidget);
        splitter->addWidget(lower);
        window.show();
        UncoveredWatch watch(&window);
        QSignalSpy moved(&watch, &UncoveredWatch::moved);
        watch.follow();
        QCoreApplication::processEvents();
        moved.clear();
        splitter->setSizes({200, 100});
        splitter->setSizes({250, 50});
        QTRY_COMPARE(moved.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(moved.size(), 1);
    }

    /// A lost link disables what they belong to, and must not lock the window.
    void menusAndDialogsOutliveWhatTheyBelongTo()
    {
        QWidget window;
        auto* panel = new QWidget(&window);
        auto* dialog = new ConfirmationDialog(QStringLiteral("Reset"), {}, QStringLiteral("RESET"), panel);
        dialog->acceptButton()->setEnabled(false);
        dialog->open();
        panel->setEnabled(false);
        QVERIFY(!dialog->acceptButton()->isEnabled());
        QTest::mouseClick(dialog->cancelButton(), Qt::LeftButton);
        QVERIFY(!dialog->isVisible());
        panel->setEnabled(true);

        auto* menu = new ZTMenu(panel);
        menu->addAction(QStringLiteral("Reset"));
        window.show();
        menu->popup(window.mapToGlobal(QPoint(5, 5)));
        QTRY_COMPARE(QApplication::activePopupWidget(), menu);
        panel->setEnabled(false);
        QVERIFY(!menu->isVisible());
        QVERIFY(!QApplication::activePopupWidget());
    }

    /// It goes upwards, since the status bar below it is to stay in sight.
    void aDialogThatGrowsLeavesTheStatusBar()
    {
        QWidget window;
        window.resize(700, 600);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        ConfirmationDialog dialog(&window);
        auto* more = new QWidget(&dialog);
        more->setFixedHeight(200);
        more->hide();
        dialog.contentLayout()->addWidget(more);
        dialog.open();
        const int bottom = dialog.geometry().bottom();
        const int height = dialog.height();
        QVERIFY(bottom < window.geometry().bottom() - 20);
        more->show();
        dialog.fitToContent();
        QVERIFY(dialog.height() > height + 100);
        QCOMPARE(dialog.geometry().bottom(), bottom);
    }

    void dropdownTellsOfChoiceAndCancel_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("chosen");
        QTest::addColumn<int>("cancelled");
        QTest::newRow("Return") << int(Qt::Key_Return) << 1 << 0; // on what was chosen before
        QTest::newRow("Escape") << int(Qt::Key_Escape) << 0 << 1;
    }

    void dropdownTellsOfChoiceAndCancel()
    {
        QFETCH(int, key);
        ZTDropdownMenu menu;
        menu.addItems({QStringLiteral("a"), QStringLiteral("b")});
        menu.show();
        QSignalSpy chosen(&menu, &ZTDropdownMenu::chosen);
        QSignalSpy cancelled(&menu, &ZTDropdownMenu::cancelled);
        menu.showPopup();
        QTRY_VERIFY(menu.view()->isVisible());
        QTest::keyClick(menu.view(), static_cast<Qt::Key>(key));
        QTRY_COMPARE(chosen.size() + cancelled.size(), 1);
        QTEST(int(chosen.size()), "chosen");
        QTEST(int(cancelled.size()), "cancelled");
    }

    void colorBoxChooses()
    {
        ColorBox box(Qt::red);
        QSignalSpy changed(&box, &ColorBox::colorChanged);
        QSignalSpy edited(&box, &ColorBox::colorEdited);
        box.setColor(QColor());
        box.setColor(Qt::red);
        QCOMPARE(changed.size(), 0);
        box.show();
        box.click();
        auto* chooser = box.findChild<QColorDialog*>();
        QVERIFY(chooser && chooser->isVisible());
        chooser->setCurrentColor(QColor(0, 128, 255, 60));
        chooser->accept();
        QCOMPARE(box.color(), QColor(0, 128, 255, 60));
        QCOMPARE(edited.size(), 1);
    }

    /// No text of the gallery is cut, at any text size.
    void galleryCutsNothing_data()
    {
        QTest::addColumn<FontSize>("size");
        QTest::newRow("small") << FontSize::Small;
        QTest::newRow("medium") << FontSize::Medium;
        QTest::newRow("large") << FontSize::Large;
        QTest::newRow("huge") << FontSize::Huge;
    }

    void galleryCutsNothing()
    {
        QFETCH(FontSize, size);
        const test::TestSettings settings;
        StyleSheet::apply(*qApp);
        GalleryWindow gallery;
        gallery.show();
        settings->setValue(TEXT_SIZE, QVariant::fromValue(size));
        QStringList cut;
        const auto look = [&] {
            cut.clear();
            for (const QLabel* label : gallery.findChildren<QLabel*>()) {
                const bool mayElide = qobject_cast<const ElidedLabel*>(label);
                if (label->isVisible() && !mayElide && !label->wordWrap() &&
                    (label->width() < label->sizeHint().width() ||
                     label->height() < qMin(label->fontMetrics().height(), label->sizeHint().height())))
                    cut.append(label->text());
            }
            for (const QAbstractButton* button : gallery.findChildren<QAbstractButton*>()) {
                if (button->isVisible() && button->width() < button->minimumSizeHint().width())
                    cut.append(button->text());
            }
            return cut.isEmpty();
        };
        QTRY_VERIFY2(look(), qPrintable(cut.join(QStringLiteral(", "))));
        qApp->setStyleSheet({});
    }

    void inspectorsOpenByKey()
    {
        test::allowWarnings(QStringLiteral("Failed due network error"));
        test::ScriptedPeer peer;
        MainWindow window(peer.session);
        window.show();
        const auto find = [](const char* name) -> QWidget* {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->objectName() == QLatin1String(name))
                    return widget;
            }
            return nullptr;
        };
        QTest::keyClick(&window, Qt::Key_F10);
        QWidget* list = find("NotificationInspector");
        QVERIFY(list && list->isVisible());
        list->close();
        QTest::keyClick(&window, Qt::Key_F11);
        QTest::keyClick(&window, Qt::Key_F11); // the one that is open comes up again
        QPointer<QWidget> inspector = find("InspectorWidget");
        QVERIFY(inspector && inspector->isVisible());
        QCOMPARE(
            std::ranges::count_if(QApplication::topLevelWidgets(),
                                  [](const QWidget* w) { return qobject_cast<const InspectorWidget*>(w); }),
            1);
        inspector->close();
        QTRY_VERIFY(!inspector);
    }

    /// One beside a modal dialog takes no mouse: it waits until that is closed, and comes no more when there
    /// is a connection by then.
    void failureWaitsForTheDialogThatIsOpen()
    {
        test::allowWarnings(QStringLiteral("Failed due network error"));
        test::ScriptedPeer peer;
        MainWindow window(peer.session);
        window.show();
        const auto isFailureShown = [&window] {
            const auto* dialog = window.findChild<QDialog*>(QStringLiteral("ConnectDialog"));
            return dialog && dialog->isVisible();
        };
        QDialog open(&window);
        open.open();
        QTRY_COMPARE(QApplication::activeModalWidget(), &open);
        Q_EMIT peer.session->connectionHandler()->attemptFailed(QStringLiteral("h"), QStringLiteral("why"),
                                                                {});
        QCoreApplication::processEvents();
        QVERIFY(!isFailureShown());
        open.close();
        QTRY_VERIFY(isFailureShown());
    }

    void theMousePaintsAHandleAlone()
    {
        StyleSheet::apply(*qApp); // which has a splitter hover
        ZTSplitter splitter(Qt::Horizontal);
        auto* inside = new PaintCounter;
        splitter.addWidget(inside);
        splitter.addWidget(new QWidget);
        splitter.resize(400, 200);
        splitter.show();
        QVERIFY(QTest::qWaitForWindowExposed(&splitter));
        QTRY_VERIFY(inside->paints > 0);
        const auto handle = [&splitter] { return splitter.handle(1)->grab().toImage(); };
        QCoreApplication::processEvents();
        const int before = inside->paints;
        const QImage atRest = handle();
        hover(&splitter);
        QCOMPARE(inside->paints, before);
        hover(splitter.handle(1));
        QVERIFY(handle() != atRest);
    }
};

HALCYRA_TEST(ToolkitTest)
#include "toolkit.moc"

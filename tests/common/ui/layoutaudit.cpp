#include "tests/support/layoutaudit.h"

#include "common/media/library/medialibraryprovider.h"
#include "common/playback/endactionbutton.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/takecontrols.h"
#include "common/player/linkbanner.h"
#include "common/qml/qmlmanager.h"
#include "common/session/link/linkhealth.h"
#include "common/ui/shell/mainnavigationbar.h"
#include "common/ui/shell/mainwindow.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/uncovered.h"
#include "common/ui/toolkit/ztlabel.h"
#include "common/ui/toolkit/ztsplitter.h"
#include "tests/common/playback/playerfixture.h"

#include <QApplication>
#include <QBuffer>
#include <QDateTime>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QStyleOptionButton>

#include <array>
#include <cmath>

using namespace vantrel;
using namespace vantrel::test;

/// The whole main window at every text size and at the sizes of real screens: nothing cut, nothing covered,
/// nothing nameless.
class LayoutAudit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_fixture = std::make_unique<PlayerFixture>();
        m_fixture->view.reset(); // the window has a player tab of its own
        QBuffer thumbnail;
        QImage picture(160, 90, QImage::Format_RGB32);
        picture.fill(Qt::magenta);
        QVERIFY(picture.save(&thumbnail, "JPG"));
        m_fixture->peer.http.handler = [rest = m_fixture->peer.http.handler, bytes = thumbnail.data()](
                                           const ScriptedHttp::Request& request) -> ScriptedHttp::Reply {
            if (request.target.contains("/thumbnails/"))
                return {200, bytes, "image/jpeg"};
            return rest(request);
        };
        StyleSheet::apply(*qApp);
        m_window = std::make_unique<MainWindow>(m_fixture->peer.session);
        m_window->resize(1600, 1000);
        m_window->show();
        QStringList faults;
        const bool isSound =
            QTest::qWaitFor([&] { return (faults = layoutFaults(m_window.get())).isEmpty(); }, 2000);
        QVERIFY2(isSound, qPrintable(faults.join(u'\n'))); // without a server, too
        QVERIFY(m_fixture->peer.connect());
        QTRY_VERIFY(!m_fixture->peer.link.received.empty());
        m_fixture->peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        QTRY_VERIFY(channel());
        QTRY_VERIFY(m_fixture->peer.session->mediaLibraryProvider()->slot({1, 2}));
        for (const char* playback : {"preview", "program"})
            m_fixture->set(playback, "sourceMode", "1");
    }
    void cleanupTestCase()
    {
        configuration()->resetValue(TEXT_SIZE);
        m_window.reset();
        QMLManager::instance()->deinitialize();
        m_fixture.reset();
        qApp->setStyleSheet({});
    }

    void windowHoldsEverything_data()
    {
        QTest::addColumn<int>("text");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("slot"); // 1 is a video, 2 a still
        const char* const names[] = {"small", "medium", "large", "huge"};
        for (int text = 0; text < 4; ++text) {
            // The second is the first with a window manager's frame around it.
            for (const QSize size :
                 {QSize(1280, 720), QSize(1272, 684), QSize(1600, 1000), QSize(1920, 1080)}) {
                for (const int slot : {1, 2})
                    QTest::addRow("%s %dx%d %s", names[text], size.width(), size.height(),
                                  slot == 1 ? "video" : "still")
                        << text << size << slot;
            }
        }
        QTest::newRow("medium, 1920x1080 at 200 %") << 1 << QSize(960, 540) << 1;
    }
    void windowHoldsEverything()
    {
        QFETCH(int, text);
        QFETCH(QSize, size);
        QFETCH(int, slot);
        show(text, size, slot);
        if (QTest::currentTestFailed())
            return;
        QStringList faults; // the layout follows the sizes a moment later
        const bool isSound =
            QTest::qWaitFor([&] { return (faults = layoutFaults(m_window.get())).isEmpty(); }, 2000);
        QVERIFY2(isSound, qPrintable(faults.join(u'\n')));
        const auto* area = m_window->findChild<QScrollArea*>(QStringLiteral("PlayerTab-scroll-area"));
        QTRY_COMPARE(area->horizontalScrollBar()->maximum(), 0);
        QTRY_COMPARE(area->verticalScrollBar()->maximum(), 0);

        QVERIFY(
            m_window->findChild<QWidget*>(QStringLiteral("Program-PlaybackWidget-Header-Mute"))->isVisible());
        const auto timeLeft = [this](const char* channel) {
            const auto* time = m_window->findChild<QWidget*>(
                QLatin1String(channel) + QStringLiteral("-PlaybackWidget-PlaybackTimecodes-Remaining"));
            return time->fontInfo().pixelSize();
        };
        QCOMPARE(timeLeft("Program"), 2 * timeLeft("Preview"));

        // Both channels in the same place, and pictures that can be made out.
        const PlaybackWidget* preview = channel()->previewWidget();
        const PlaybackWidget* program = channel()->programWidget();
        QTRY_COMPARE(preview->height(), program->height());
        QCOMPARE(preview->preview()->y(), program->preview()->y());
        QVERIFY(std::abs(preview->width() - program->width()) <= 1);
        // A still has a row more, which takes its room from the picture.
        const double whole = size.height() < 600 ? 90 : size.height() < 700 ? 110 : 150;
        const double least = slot == 1 ? whole : whole - 20;
        for (const PlaybackWidget* column : {preview, program})
            QTRY_VERIFY2(column->preview()->pictureRect().height() >= least,
                         qPrintable(QString::number(column->preview()->pictureRect().height())));
    }

    /// Where there is room the picture fills its place from edge to edge.
    void pictureTakesItsShape()
    {
        show(1, {1600, 1000}, 1);
        const PlaybackPreview* preview = channel()->previewWidget()->preview();
        QTRY_COMPARE(qRound(preview->pictureRect().height()), preview->height());
        QCOMPARE(qRound(preview->pictureRect().width()), preview->width());
    }

    /// The words of the end actions, in what the style leaves of their segments.
    void wordsHaveTheirRoom()
    {
        show(1, {1600, 1000}, 1);
        const auto words = [this] {
            QList<EndActionButton*> found = m_window->findChildren<EndActionButton*>();
            found.removeIf([](const EndActionButton* each) {
                return !each->isVisible() || each->property("class") != QLatin1String("segment");
            });
            return found;
        };
        QTRY_COMPARE(words().size(), 10);
        const auto hasRoom = [](const EndActionButton* each) {
            QStyleOptionButton option;
            option.initFrom(each);
            const QRect room = each->style()->subElementRect(QStyle::SE_PushButtonContents, &option, each);
            return room.width() >= each->fontMetrics().horizontalAdvance(each->text());
        };
        for (const EndActionButton* each : words()) // once they are laid out
            QTRY_VERIFY2(hasRoom(each), qPrintable(each->text()));
    }

    void smallestWindows_data()
    {
        QTest::addColumn<int>("text");
        QTest::addColumn<QSize>("size");
        for (int text = 0; text < 4; ++text)
            QTest::addRow("text %d, 1280x720", text) << text << QSize(1280, 720);
        QTest::newRow("text 1, 1600x1000") << 1 << QSize(1600, 1000);
    }

    /// Where room is shortest, slots still show their pictures, and end actions say what they are.
    void smallestWindows()
    {
        QFETCH(int, text);
        QFETCH(QSize, size);
        show(text, size, 1);
        const auto labels = [this] {
            QList<ZTLabel*> found = m_window->findChildren<ZTLabel*>();
            found.removeIf([](const ZTLabel* each) {
                return !each->isVisible() || each->text() != QLatin1String("At end");
            });
            return found;
        };
        QTRY_COMPARE(labels().size(), 2);
        for (const ZTLabel* label : labels()) {
            const auto* actions = label->parentWidget()->findChild<EndActionWidget*>();
            QTRY_VERIFY(label->width() >= label->fontMetrics().horizontalAdvance(label->text()));
            QTRY_VERIFY(actions->isVisible() && actions->x() > label->geometry().right() &&
                        actions->x() < label->geometry().right() + 16);
        }
        const auto* view = m_window->findChild<QListView*>(QStringLiteral("MediaPanel-slots-view"));
        for (int row = 0; row < 3; ++row) {
            QSize picture;
            QTRY_VERIFY2((picture = pictureIn(view, row), picture.width() >= 28 && picture.height() >= 14),
                         qPrintable(QStringLiteral("%1x%2").arg(picture.width()).arg(picture.height())));
        }
    }

    /// What is on preview is marked in one green, on every page and in everything that is drawn.
    /// However the window is divided, a message finds a place beside TAKE and the picture on air.
    void messagesLeaveWhatIsOnAirFree_data()
    {
        QTest::addColumn<QString>("tab");
        for (const char* tab : {"player", "media", "outputs"})
            QTest::newRow(tab) << QString::fromLatin1(tab);
    }
    void messagesLeaveWhatIsOnAirFree()
    {
        QFETCH(QString, tab);
        auto* button =
            m_window->findChild<QAbstractButton*>(QStringLiteral("MainNavigationBar-%1-button").arg(tab));
        button->click();
        for (const int text : {0, 1, 3}) {
            const QSize window = text == 1 ? QSize(960, 540) : QSize(1280, 720);
            show(text, window, 1);
            QList<ZTSplitter*> splitters = m_window->findChildren<ZTSplitter*>();
            splitters.removeIf([](const ZTSplitter* each) { return !each->isVisible(); });
            const auto divisions = static_cast<int>(std::pow(3, splitters.size()));
            for (int division = 0; division < divisions; ++division) {
                int rest = division;
                for (ZTSplitter* splitter : splitters) {
                    static constexpr std::array shares{10, 50, 90};
                    const int share = shares.at(static_cast<std::size_t>(rest % 3));
                    rest /= 3;
                    QList<int> sizes(splitter->count(), (100 - share) * 10);
                    sizes[0] = share * 10;
                    splitter->setSizes(sizes);
                }
                QCoreApplication::sendPostedEvents();
                for (const QSize size : {QSize(320, 80), QSize(window.width() / 2, 120),
                                         QSize(window.width() / 2, window.height() / 3)}) {
                    const QRect place(uncoveredPlace(*m_window, size, m_window->height() - 30), size);
                    for (const char* name :
                         {"TakeControls-Take-Button", "Program-PlaybackWidget-PreviewWidget"}) {
                        const auto* watched = m_window->findChild<QWidget*>(QLatin1String(name));
                        const QRect box(watched->mapTo(m_window.get(), QPoint()), watched->size());
                        QVERIFY2(!watched->isVisible() || !box.intersects(place),
                                 qPrintable(QStringLiteral("%1 below %2x%3, text %4, division %5")
                                                .arg(QLatin1String(name))
                                                .arg(size.width())
                                                .arg(size.height())
                                                .arg(text)
                                                .arg(division)));
                    }
                }
            }
        }
        m_window->findChild<QAbstractButton*>(QStringLiteral("MainNavigationBar-player-button"))->click();
    }

    void previewHasOneGreen()
    {
        show(1, {1600, 1000}, 1);
        m_fixture->set("program", "media", quoted("brume://collections/1/slots/3"));
        m_fixture->set("preview", "state", quoted("play"));
        m_fixture->peer.send(R"([
            {"op":"add","path":"/device/channels/0/mappings/0","value":{"type":"GpuMapping",
             "properties":{"target":"DP-1"}}},
            {"op":"add","path":"/device/channels/0/mappings/1","value":{"type":"GpuMapping",
             "properties":{"target":"DP-2"}}},
            {"op":"add","path":"/device/system/gpus/0","value":{"type":"Gpu","outputs":[
             {"type":"Output","properties":{"name":"DP-1","width":1920,"height":1080}},
             {"type":"Output","properties":{"name":"DP-2","width":1920,"height":1080}}]}}])");
        auto* bar = m_window->findChild<MainNavigationBar*>();
        const auto* pages = m_window->findChild<QStackedWidget*>(QStringLiteral("MainTabs"));
        const QRgb green = colors::getColor(colors::Green_green).rgb();
        QCOMPARE(pages->count(), 4);
        constexpr int filesPage = 1; // where nothing plays
        for (int page = 0; page < pages->count(); ++page) {
            bar->setActiveTab(page);
            QHash<QRgb, int> seen;
            const auto isMarked = [&] { return (seen = greensOf(pages)).value(green) > 100; };
            QVERIFY2(page == filesPage || QTest::qWaitFor(isMarked), qPrintable(QString::number(page)));
            for (auto it = seen.cbegin(); it != seen.cend(); ++it)
                QVERIFY2(it.value() < 60 || isBlended(it.key(), green),
                         qPrintable(QStringLiteral("page %1: %2").arg(page).arg(it.key(), 0, 16)));
        }
        bar->setActiveTab(pages->count() - 1);
        m_fixture->set("preview", "state", quoted("stop"));
        // Nor does the sheet know another one, for states that are not on the screen now.
        static const QRegularExpression rules(QStringLiteral("([^{}]*)\\{([^}]*)\\}"));
        static const QRegularExpression colour(QStringLiteral("rgba\\((\\d+),(\\d+),(\\d+),"));
        int greens = 0;
        for (const QRegularExpressionMatch& rule : rules.globalMatch(StyleSheet::load(FontSize::Medium))) {
            if (!rule.captured(1).contains(QStringLiteral("preview")))
                continue;
            for (const QRegularExpressionMatch& used : colour.globalMatch(rule.captured(2))) {
                const auto part = [&used](int i) { return used.captured(i).toInt(); };
                if (part(2) < 40 + std::max(part(1), part(3)))
                    continue;
                ++greens;
                QVERIFY2(qRgb(part(1), part(2), part(3)) == green, qPrintable(rule.captured()));
            }
        }
        QVERIFY(greens > 2);
    }

    /// Nothing shows through below what is typed.
    void anEditorCoversTheName()
    {
        show(1, {1280, 720}, 1);
        auto* view = m_window->findChild<QListView*>(QStringLiteral("MediaPanel-slots-view"));
        const QModelIndex slot = view->model()->index(0, view->modelColumn(), view->rootIndex());
        view->setCurrentIndex(slot);
        view->edit(slot);
        auto* editor = view->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor && !editor->text().isEmpty());
        editor->clear();
        constexpr int cursor = 12; // pixels in which it stands, and the frame of the others
        const QImage below = view->viewport()->grab(editor->geometry().adjusted(cursor, 3, -3, -3)).toImage();
        QVERIFY(below.width() > 50);
        QImage plain(below.size(), below.format());
        plain.fill(below.pixelColor(0, 0));
        QCOMPARE(below, plain);
        QTest::keyClick(editor, Qt::Key_Escape);
    }

    void tabGoesOnward()
    {
        show(1, {1600, 1000}, 1);
        QStringList faults;
        for (QWidget* part : std::initializer_list<QWidget*>{
                 m_window->findChild<QWidget*>(QStringLiteral("PlayerTab-mediapanel-widget")),
                 channel()->previewWidget(), channel()->takeControls(), channel()->programWidget()})
            faults += tabOrderFaults(part);
        // And from part to part.
        const QList<QWidget*> order = tabOrder(channel());
        const auto first = [&order](const QWidget* part) {
            return std::ranges::find_if(order, [part](const QWidget* w) { return part->isAncestorOf(w); }) -
                   order.begin();
        };
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
        QVERIFY(first(channel()->previewWidget()) < first(channel()->takeControls()));
        QVERIFY(first(channel()->takeControls()) < first(channel()->programWidget()));
    }

    /// Every control looks different once Tab has reached it.
    void focusIsVisible()
    {
        show(1, {1600, 1000}, 1);
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QStringList unseen;
        const QList<QWidget*> controls = tabOrder(m_window.get());
        QVERIFY(controls.size() > 30);
        for (QWidget* control : controls) {
            m_window->setFocus();
            QCoreApplication::processEvents();
            const QImage before = control->grab().toImage();
            control->setFocus(Qt::TabFocusReason);
            QCoreApplication::processEvents();
            if (control->hasFocus() && control->grab().toImage() == before)
                unseen.append(QString::fromLatin1(control->metaObject()->className()) + u' ' +
                              control->objectName());
        }
        QVERIFY2(unseen.isEmpty(), qPrintable(unseen.join(u'\n')));
    }

    void auditSeesFaults()
    {
        QWidget window;
        window.resize(200, 100);
        QPushButton first(QStringLiteral("First"), &window);
        QPushButton second(QStringLiteral("Second"), &window);
        QPushButton third(&window);
        first.setToolTip(QStringLiteral("The first"));
        second.setToolTip(QStringLiteral("The second"));
        first.setGeometry(0, 0, 90, 40);
        second.setGeometry(100, 0, 90, 40);
        third.setGeometry(100, 50, 90, 40);
        third.setAccessibleName(QStringLiteral("Third"));
        window.show();
        QCOMPARE(layoutFaults(&window), QStringList{QStringLiteral("no tooltip: QPushButton ")});
        third.setToolTip(QStringLiteral("The third"));
        QVERIFY(layoutFaults(&window).isEmpty());
        QVERIFY(tabOrderFaults(&window).isEmpty());

        third.setAccessibleName({});
        QCOMPARE(layoutFaults(&window).value(0), QStringLiteral("no accessible name: QPushButton "));
        third.setAccessibleName(QStringLiteral("Third"));
        second.move(80, 0);
        QCOMPARE(layoutFaults(&window).value(0).section(u':', 0, 0), QStringLiteral("overlap"));
        second.move(150, 0);
        QCOMPARE(layoutFaults(&window).value(0).section(u':', 0, 0), QStringLiteral("cut"));
        second.setGeometry(100, 0, 20, 40);
        QCOMPARE(layoutFaults(&window).value(0).section(u':', 0, 0), QStringLiteral("squeezed"));
        second.setGeometry(100, 0, 90, 40);
        first.move(0, 60);
        QCOMPARE(tabOrderFaults(&window).size(), 1);
    }

    /// The longest, in windows as narrow as there are; and nothing gives way to it.
    void whatIsSaidOfTheLinkIsWhole_data()
    {
        QTest::addColumn<int>("text");
        QTest::addColumn<QSize>("size");
        const char* const names[] = {"small", "medium", "large", "huge"};
        for (int text = 0; text < 4; ++text)
            for (const QSize size : {QSize(960, 540), QSize(1280, 720)})
                QTest::addRow("%s %d", names[text], size.width()) << text << size;
    }
    void whatIsSaidOfTheLinkIsWhole()
    {
        QFETCH(int, text);
        QFETCH(QSize, size);
        show(text, size, 1);
        if (QTest::currentTestFailed())
            return;
        auto* banner = m_window->findChild<LinkBanner*>();
        // Over both channels, of which the narrowest windows scroll.
        const auto* area = m_window->findChild<QScrollArea*>(QStringLiteral("PlayerTab-scroll-area"));
        const auto placeOf = [this](const QWidget* part) {
            return QRect(part->mapTo(m_window.get(), QPoint()), part->size());
        };
        QTRY_VERIFY(placeOf(banner).left() <= placeOf(channel()->previewWidget()).left() &&
                    placeOf(banner).right() >=
                        std::min(placeOf(channel()->programWidget()).right(), placeOf(area).right()));
        QRect before;
        const auto isLaidOut = [&] {
            const QRect now = placeOf(area);
            return std::exchange(before, now) == now;
        };
        QTRY_VERIFY(isLaidOut());
        LinkHealth* health = m_fixture->peer.session->linkHealth();
        QElapsedTimer clock;
        clock.start();
        health->setClock([&clock] { return clock.elapsed() + 3600000; });
        const auto asBefore = qScopeGuard([health] {
            health->setLibraryCurrent(true);
            health->setClock([] { return QDateTime::currentMSecsSinceEpoch(); });
        });
        health->setLibraryCurrent(false);
        health->setClock([&clock] { return clock.elapsed() + 7200000; });
        QTRY_VERIFY(banner->text().contains(QStringLiteral("edits are refused")));
        const QStringList cut = layoutFaults(m_window.get()).filter(QStringLiteral("elided"));
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(u'\n')));
        QCOMPARE(placeOf(area), before);
    }

private:
    /// Of a slot's row in the panel: what the server has sent is magenta.
    static QSize pictureIn(const QListView* view, int row)
    {
        const QModelIndex slot = view->model()->index(row, view->modelColumn(), view->rootIndex());
        const QImage image = view->viewport()->grab(view->visualRect(slot)).toImage();
        QRect picture;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                if (colour.red() > 200 && colour.blue() > 200 && colour.green() < 60)
                    picture |= QRect(x, y, 1, 1);
            }
        }
        return picture.size();
    }

    /// Whether it is that colour, with some of a panel's dark shining through.
    static bool isBlended(QRgb colour, QRgb whole)
    {
        const QRgb darkest = colors::getColor(colors::Slate_grey_900).rgb();
        constexpr int lighter = 32; // than the darkest are other panels
        for (const int shift : {0, 8, 16}) {
            const auto part = [shift](QRgb of) { return int(of >> shift & 0xff); };
            if (part(colour) < part(darkest) || part(colour) > std::max(part(whole), part(darkest) + lighter))
                return false;
        }
        return true;
    }

    /// How often each strong green is there.
    static QHash<QRgb, int> greensOf(const QStackedWidget* pages)
    {
        QHash<QRgb, int> counts;
        const QImage image = pages->currentWidget()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                if (colour.hue() > 90 && colour.hue() < 170 && colour.saturation() > 150 &&
                    colour.value() > 120)
                    ++counts[colour.rgb()];
            }
        }
        return counts;
    }

    ChannelWidget* channel() const { return m_window->findChild<ChannelWidget*>(); }

    void show(int text, QSize size, int slot)
    {
        configuration()->setValue(TEXT_SIZE, QVariant::fromValue(static_cast<FontSize>(text)));
        m_window->resize(size);
        const QByteArray media = "\"brume://collections/1/slots/" + QByteArray::number(slot) + '"';
        for (const char* playback : {"preview", "program"})
            m_fixture->set(playback, "media", media);
        const auto* edit =
            m_window->findChild<QWidget*>(QStringLiteral("Program-PlaybackWidget-DurationEdit"));
        QTRY_COMPARE(edit->isVisible(), slot == 2);
    }

    std::unique_ptr<PlayerFixture> m_fixture;
    std::unique_ptr<MainWindow> m_window;
};

/// A window that comes to a server which plays: positions come before the library that says how long.
class LayoutOfWhatPlays : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qApp->setStyleSheet({}); }

    void timesHaveTheirRoom_data()
    {
        QTest::addColumn<int>("text");
        const char* const names[] = {"small", "medium", "large", "huge"};
        for (int text = 0; text < 4; ++text)
            QTest::newRow(names[text]) << text;
    }
    void timesHaveTheirRoom()
    {
        QFETCH(int, text);
        PlayerFixture fixture;
        fixture.view.reset();
        allowWarnings(QStringLiteral("Failed to get media library"));
        bool isRead = false;
        fixture.peer.http.handler = [&, rest = fixture.peer.http.handler](const auto& request) {
            const bool isAhead = !isRead && request.target.endsWith("/medialibrary");
            return isAhead ? ScriptedHttp::Reply{503, {}} : rest(request);
        };
        const auto asBefore = qScopeGuard([] { configuration()->resetValue(TEXT_SIZE); });
        StyleSheet::apply(*qApp);
        configuration()->setValue(TEXT_SIZE, QVariant::fromValue(static_cast<FontSize>(text)));
        MainWindow window(fixture.peer.session);
        window.resize(1272, 684);
        window.show();
        QVERIFY(fixture.peer.connect());
        fixture.peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        const auto time = [&window](const char* channel, const char* name) {
            return window.findChild<TimecodeDisplay*>(QLatin1String(channel) +
                                                      QStringLiteral("-PlaybackWidget-PlaybackTimecodes-") +
                                                      QLatin1String(name));
        };
        QTRY_VERIFY(time("Program", "Remaining"));
        for (const char* playback : {"preview", "program"}) {
            fixture.set(playback, "media", quoted("brume://collections/1/slots/1"));
            fixture.set(playback, "mediaPosition", "3.2");
        }
        const auto rows = [&](const char* channel) {
            return time(channel, "Remaining")->geometry().center().y() >
                   time(channel, "Playhead")->geometry().bottom();
        };
        QTRY_COMPARE(time("Program", "Remaining")->text(), QStringLiteral("--:--:--"));
        window.resize(1280, 720); // so that all is laid out by what is known now
        QTRY_COMPARE(rows("Program"), rows("Preview"));
        const bool before = rows("Program");
        isRead = true;
        QTRY_COMPARE(time("Program", "Remaining")->text(), QStringLiteral("00:00:04.800"));
        QStringList faults;
        const bool isSound =
            QTest::qWaitFor([&] { return (faults = layoutFaults(&window)).isEmpty(); }, 2000);
        QVERIFY2(isSound, qPrintable(faults.join(u'\n')));
        for (const char* channel : {"Preview", "Program"})
            QCOMPARE(rows(channel), before);
    }
};

HALCYRA_TEST(LayoutAudit)
HALCYRA_TEST(LayoutOfWhatPlays)
#include "layoutaudit.moc"

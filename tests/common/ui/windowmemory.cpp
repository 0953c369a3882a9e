#include "common/session/settings/configuration.h"
#include "common/session/settings/keymap.h"
#include "common/session/settings/storedvalue.h"
#include "common/ui/shell/mainnavigationbar.h"
#include "common/ui/shell/mainwindow.h"
#include "common/ui/style/stylesheet.h"
#include "tests/common/playback/playerfixture.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QComboBox>
#include <QScreen>
#include <QSplitter>
#include <QTest>

using namespace vantrel;

namespace {

/// Those that stand around a channel and within it.
QList<QSplitter*> splitters(ChannelWidget* channel)
{
    QList<QSplitter*> found = channel->findChildren<QSplitter*>();
    for (QWidget* above = channel->parentWidget(); above; above = above->parentWidget()) {
        if (auto* splitter = qobject_cast<QSplitter*>(above))
            found << splitter;
    }
    return found;
}

/// Takes it by hand to another place.
void dragHandle(QSplitter& splitter)
{
    QWidget* handle = splitter.handle(1);
    const QPoint from = handle->rect().center();
    const QPoint to = from + (splitter.orientation() == Qt::Vertical ? QPoint(0, 60) : QPoint(30, 0));
    const QList<int> before = splitter.sizes();
    QTest::mousePress(handle, Qt::LeftButton, {}, from);
    QTest::mouseMove(handle, to);
    QTest::mouseRelease(handle, Qt::LeftButton, {}, to);
    QVERIFY(splitter.sizes() != before);
}

} // namespace

/// The window is as the operator left it, and its size is theirs alone.
class WindowMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comesBackAsItWasLeft()
    {
        test::allowWarnings(QStringLiteral("Failed due network error"));
        test::ScriptedPeer peer;
        QSize left;
        {
            MainWindow window(peer.session);
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.resize(1111, 666);
            window.navigationBar()->setActiveTab(0);
            QTRY_COMPARE(window.size(), QSize(1111, 666));
            left = window.size();
            window.close();
        }
        MainWindow again(peer.session);
        again.show();
        QVERIFY(QTest::qWaitForWindowExposed(&again));
        QTRY_COMPARE(again.size(), left);
        QCOMPARE(again.navigationBar()->activeTab(), 0);
        again.navigationBar()->setActiveTab(3);
    }

    void staysWhereItIsMoved()
    {
        test::allowWarnings(QStringLiteral("Failed due network error"));
        test::ScriptedPeer peer;
        MainWindow window(peer.session);
        window.show();
        const auto isKept = [&window] {
            return storedValue(QStringLiteral("Window/Geometry")).toByteArray() == window.saveGeometry();
        };
        QTRY_VERIFY(isKept());
        const QRect screen = window.screen()->availableGeometry();
        QVERIFY(screen.contains(window.frameGeometry()));
        const QPoint overTheEdge = screen.center();
        window.move(overTheEdge);
        QTRY_VERIFY(isKept());
        QCOMPARE(window.pos(), overTheEdge);
    }

    void textNeverResizesIt()
    {
        test::allowWarnings(QStringLiteral("Failed due network error"));
        test::ScriptedPeer peer;
        StyleSheet::apply(*qApp);
        MainWindow window(peer.session);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (const QSize size : {QSize(1600, 1000), QSize(960, 540)}) {
            window.resize(size);
            QTRY_COMPARE(window.size(), size);
            for (const FontSize text : {FontSize::Huge, FontSize::Small, FontSize::Medium}) {
                configuration()->setValue(TEXT_SIZE, QVariant::fromValue(text));
                QCoreApplication::processEvents();
                QCOMPARE(window.size(), size);
            }
        }
        qApp->setStyleSheet({});
    }

    void keyTogglesFullScreen()
    {
        test::allowWarnings(QStringLiteral("Failed due network error"));
        test::ScriptedPeer peer;
        MainWindow window(peer.session);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::keySequence(&window,
                           defaultKeymap().value(QStringLiteral("fullscreen")).value<QKeySequence>());
        QTRY_VERIFY(window.isFullScreen());
        QTest::keySequence(&window,
                           defaultKeymap().value(QStringLiteral("fullscreen")).value<QKeySequence>());
        QTRY_VERIFY(!window.isFullScreen());
    }

    void comesBackInFullScreen()
    {
        test::allowWarnings(QStringLiteral("Failed due network error"));
        test::ScriptedPeer peer;
        QSize usual;
        for (const bool wasFull : {false, true, false}) {
            MainWindow window(peer.session);
            window.show();
            QVERIFY(QTest::qWaitForWindowActive(&window));
            QTRY_COMPARE(window.isFullScreen(), wasFull);
            if (!wasFull && usual.isEmpty())
                usual = window.size();
            QTest::keySequence(&window,
                               defaultKeymap().value(QStringLiteral("fullscreen")).value<QKeySequence>());
            QTRY_COMPARE(window.isFullScreen(), !wasFull);
            if (wasFull) // what it was before it was full
                QTRY_COMPARE(window.size(), usual);
            window.close();
        }
        storeValue(QStringLiteral("Window/Geometry"), QByteArray());
    }

    /// What is divided by hand, and the collection that was chosen.
    void comesBackAsItWasDivided()
    {
        QList<QList<int>> divided;
        for (const bool isAgain : {false, true}) {
            test::PlayerFixture fixture;
            fixture.view.reset(); // the window has a player of its own
            fixture.library.replace(R"({"collections":{)",
                                    R"({"collections":{"2":{"name":"Second","slots":{}},)");
            MainWindow window(fixture.peer.session);
            window.resize(1600, 1000);
            window.show();
            QVERIFY(fixture.peer.connect());
            QTRY_VERIFY(!fixture.peer.link.received.empty());
            fixture.peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
            QTRY_VERIFY(window.findChild<ChannelWidget*>());
            const QList<QSplitter*> all = splitters(window.findChild<ChannelWidget*>());
            QCOMPARE(all.size(), 3);
            const auto sizes = [&all] {
                QList<QList<int>> found;
                for (const QSplitter* splitter : all)
                    found << splitter->sizes();
                return found;
            };
            auto* chooser = window.findChild<QComboBox*>(QStringLiteral("MediaPanel-collection-chooser"));
            QTRY_COMPARE(chooser->count(), 2);
            if (isAgain) {
                QTRY_COMPARE(sizes(), divided);
                QTRY_COMPARE(chooser->currentText(), QStringLiteral("2: Second"));
                break;
            }
            for (QSplitter* splitter : all)
                dragHandle(*splitter);
            divided = sizes();
            chooser->setCurrentIndex(1);
            Q_EMIT chooser->activated(1);
            window.close();
        }
    }
};

HALCYRA_TEST(WindowMemoryTest)
#include "windowmemory.moc"

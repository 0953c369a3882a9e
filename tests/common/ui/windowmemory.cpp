#include "common/session/settings/configuration.h"
#include "common/session/settings/keymap.h"
#include "common/session/settings/storedvalue.h"
#include "common/ui/shell/mainnavigationbar.h"
#include "common/ui/shell/mainwindow.h"
#include "common/ui/style/stylesheet.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QScreen>
#include <QTest>

using namespace vantrel;

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
};

HALCYRA_TEST(WindowMemoryTest)
#include "windowmemory.moc"

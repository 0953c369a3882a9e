#include "common/ui/hotkeys.h"

#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QShortcut>
#include <QTest>
#include <QWidget>

using namespace vantrel;

namespace {

int calls = 0;

} // namespace

class HotkeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void remapsLiveShortcuts()
    {
        const test::TestSettings settings;
        QWidget window;
        Hotkeys hotkeys(&window);
        calls = 0;
        QShortcut* copy = hotkeys.addShortcut(QStringLiteral("copy"), [] { ++calls; });
        QVERIFY(copy);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.activateWindow();
        QTRY_VERIFY(window.isActiveWindow());
        QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
        QTRY_COMPARE(calls, 1);
        hotkeys.remap(QStringLiteral("copy"), QKeySequence(QStringLiteral("Ctrl+K")));
        QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
        QTest::keyClick(&window, Qt::Key_K, Qt::ControlModifier);
        QTRY_COMPARE(calls, 2);
    }

    void undoFollowsTheMapAndItsDefaults()
    {
        const test::TestSettings settings;
        QWidget window;
        Hotkeys hotkeys(&window);
        QCOMPARE(hotkeys.shortcut(QStringLiteral("undo"))->key(), QKeySequence(QKeySequence::Undo));
        hotkeys.remap(QStringLiteral("undo"), QKeySequence(QStringLiteral("Ctrl+U")));
        QCOMPARE(hotkeys.shortcut(QStringLiteral("undo"))->key(), QKeySequence(QStringLiteral("Ctrl+U")));
        hotkeys.setDefaults();
        QCOMPARE(hotkeys.shortcut(QStringLiteral("undo"))->key(), QKeySequence(QKeySequence::Undo));
        QCOMPARE(hotkeys.shortcuts().value(QStringLiteral("undo")).size(), 1);
    }

    void unknownNamesGiveNoShortcut()
    {
        QWidget window;
        Hotkeys hotkeys(&window);
        QVERIFY(!hotkeys.addShortcut(QStringLiteral("launch"), [] {}));
        QVERIFY(!hotkeys.hasMapping(QStringLiteral("launch")));
        hotkeys.addMapping(QStringLiteral("launch"), QKeySequence(QStringLiteral("F9")));
        QShortcut* shortcut = hotkeys.addShortcut(QStringLiteral("launch"), [] {});
        QVERIFY(shortcut);
        delete shortcut;
        hotkeys.remap(QStringLiteral("launch"),
                      QKeySequence(QStringLiteral("F8"))); // must not touch the dead one
        QVERIFY(!hotkeys.shortcut(QStringLiteral("launch")));
    }

    void keymapSurvivesARestart()
    {
        test::TestSettings settings;
        QWidget window;
        Hotkeys first(&window);
        first.remap(QStringLiteral("redo"), QKeySequence(QStringLiteral("Ctrl+R")));
        first.saveKeymap();
        settings.reopen();
        Hotkeys second(&window);
        second.loadKeymapFromConfiguration();
        QCOMPARE(second.shortcut(QStringLiteral("redo"))->key(), QKeySequence(QStringLiteral("Ctrl+R")));
        QCOMPARE(second.mapping(QStringLiteral("undo")), QKeySequence(QKeySequence::Undo));
    }
};

HALCYRA_TEST(HotkeysTest)
#include "hotkeys.moc"

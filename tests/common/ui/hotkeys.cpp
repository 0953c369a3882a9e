#include "common/ui/keyboard/hotkeys.h"

#include "common/session/settings/keymap.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QFile>
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
        first.remap(QStringLiteral("redo"), QKeySequence(QStringLiteral("Ctrl+Shift+Y")));
        first.saveKeymap();
        settings.reopen();
        Hotkeys second(&window);
        QCOMPARE(second.loadKeymapFromConfiguration(), QString());
        QCOMPARE(second.shortcut(QStringLiteral("redo"))->key(),
                 QKeySequence(QStringLiteral("Ctrl+Shift+Y")));
        QCOMPARE(second.mapping(QStringLiteral("undo")), QKeySequence(QKeySequence::Undo));
    }

    void uselessStoredKeysGiveDefaults_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("fault"); // none: the keys are used
        const auto keys = [](std::initializer_list<std::pair<const char*, QVariant>> some) {
            QMap<QString, QVariant> map{{QStringLiteral("undo"), QKeySequence(QStringLiteral("F8"))}};
            for (const auto& [name, value] : some)
                map.insert(QLatin1String(name), value);
            return QVariant(map);
        };
        const QKeySequence f9(Qt::Key_F9);
        QTest::newRow("sound") << keys({{"take", f9}}) << QString();
        QTest::newRow("a text that is a key") << keys({{"take", QStringLiteral("F9")}}) << QString();
        QTest::newRow("none at all") << keys({{"take", QKeySequence()}, {"cue", QKeySequence()}})
                                     << QString();
        QTest::newRow("one that nothing answers to") << keys({{"back", f9}, {"take", f9}}) << QString();
        QTest::newRow("of an older version") << keys({{"take", QKeySequence(Qt::Key_F1)}}) << QString();
        QTest::newRow("twice")
            << keys({{"take", f9}, {"cue", f9}})
            << "\"Take\" and \"Cue the slot or entry on preview\" have the same stored key, F9.";
        QTest::newRow("reserved") << keys({{"take", QKeySequence(Qt::Key_Escape)}})
                                  << "The stored key of \"Take\" is reserved.";
        QTest::newRow("a number") << keys({{"take", 12.5}}) << "The stored key of \"Take\" is none.";
        QTest::newRow("nonsense") << keys({{"take", QStringLiteral("Banana")}})
                                  << "The stored key of \"Take\" is none.";
        QTest::newRow("no map") << QVariant(QStringLiteral("Ctrl+Z")) << "The stored keys cannot be read.";
    }

    void uselessStoredKeysGiveDefaults()
    {
        QFETCH(QVariant, stored);
        QFETCH(QString, fault);
        test::TestSettings settings;
        settings->setValue(KEYMAP, stored);
        settings.reopen();
        QWidget window;
        Hotkeys hotkeys(&window);
        if (!fault.isEmpty())
            test::expectWarning(fault);
        const QString told = hotkeys.loadKeymapFromConfiguration();
        QVERIFY2(fault.isEmpty() ? told.isEmpty() : told.startsWith(fault), qPrintable(told));
        QCOMPARE(hotkeys.keymap() == defaultKeymap(), !fault.isEmpty());
        if (fault.isEmpty()) {
            QCOMPARE(hotkeys.shortcut(QStringLiteral("undo"))->key(), QKeySequence(Qt::Key_F8));
            // Whatever the file left out, no two actions share a key.
            for (const KeyAction& action : keyActions())
                QVERIFY(!keyHolder(hotkeys.keymap(), hotkeys.mapping(action.name), action.name));
        }
    }

    void damagedFileGivesDefaults_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("fault");
        QTest::newRow("a map cut short") << QByteArray("[General]\nKEYMAP=\"@Variant(\\0\\0\\0\\b\\0\\0)\"\n")
                                         << "The stored keys cannot be read.";
        QTest::newRow("an unknown type") << QByteArray("[General]\nKEYMAP=@Variant(\\0\\0\\xf0\\0\\0)\n")
                                         << "The stored keys cannot be read.";
        QTest::newRow("no settings") << QByteArray("\x7f"
                                                   "ELF\0\1\2\nnothing here\n",
                                                   22)
                                     << "The settings file ";
        QTest::newRow("empty") << QByteArray() << QString();
    }

    void damagedFileGivesDefaults()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, fault);
        test::TestSettings settings;
        settings->setValue(PREVIEW_QUALITY, QStringLiteral("low"));
        settings->sync();
        QFile file(settings->fileName());
        settings.close();
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        test::allowWarnings(QStringLiteral("invalid type")); // of the toolkit, on bytes that are no value
        settings.reopen();
        QWidget window;
        Hotkeys hotkeys(&window);
        if (!fault.isEmpty())
            test::expectWarning(fault);
        const QString told = hotkeys.loadKeymapFromConfiguration();
        QVERIFY2(fault.isEmpty() ? told.isEmpty() : told.startsWith(fault), qPrintable(told));
        QCOMPARE(hotkeys.keymap(), defaultKeymap());
    }
};

HALCYRA_TEST(HotkeysTest)
#include "hotkeys.moc"

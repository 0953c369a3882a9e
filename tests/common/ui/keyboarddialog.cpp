#include "common/ui/keyboard/keyboarddialog.h"

#include "common/session/settings/keymap.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/keyfield.h"
#include "common/ui/keyboard/keynotice.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztedit.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QScrollArea>
#include <QShortcut>
#include <QTest>

using namespace vantrel;

namespace {

QKeySequence key(const char* text)
{
    return QKeySequence(QString::fromLatin1(text));
}

/// The dialog over a window whose hotkeys count what they do.
class Desk
{
public:
    Desk()
        : hotkeys(&window)
        , dialog(&hotkeys, &window)
    {
        for (const char* name : {"take", "keyboard"})
            hotkeys.addShortcut(
                QLatin1String(name), &window, [this] { ++calls; }, Qt::ApplicationShortcut);
        window.resize(1280, 720);
        window.show();
        dialog.open();
        dialog.activateWindow();
    }

    bool isReady() { return QTest::qWaitForWindowActive(&dialog); }
    KeyField* field(const QString& action) { return part<KeyField>(action + QStringLiteral("-key")); }
    template <typename Widget>
    Widget* part(const QString& name)
    {
        return dialog.findChild<Widget*>(QStringLiteral("KeyboardDialog-") + name);
    }
    KeyNotice* notice() { return part<KeyNotice>(QStringLiteral("notice")); }
    void click(const QString& name) { part<QAbstractButton>(name + QStringLiteral("-button"))->click(); }

    /// As from the keyboard, to what has the focus.
    static void press(const QKeySequence& sequence)
    {
        QTest::keyClick(QApplication::focusWidget(), sequence[0].key(), sequence[0].keyboardModifiers());
    }
    void record(const QString& action, const QKeySequence& sequence)
    {
        field(action)->setFocus();
        press(key("Return"));
        QVERIFY(field(action)->isRecording());
        press(sequence);
    }

    test::TestSettings settings;
    QWidget window;
    Hotkeys hotkeys;
    KeyboardDialog dialog;
    int calls = 0;
};

} // namespace

class KeyboardDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { StyleSheet::apply(*qApp); }

    void init()
    {
        m_desk = std::make_unique<Desk>();
        QVERIFY(m_desk->isReady());
    }
    void cleanup() { m_desk.reset(); }

    void recordsAKey_data()
    {
        QTest::addColumn<QString>("pressed");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::addColumn<bool>("stillRecording");
        QTest::addColumn<QString>("told");
        const auto row = [](const char* pressed, const char* after, bool recording, const char* told) {
            QTest::newRow(pressed) << pressed << "F12" << after << recording << told;
        };
        row("F9", "F9", false, "\"Take\" is on F9 now.");
        row("Ctrl+Alt+T", "Ctrl+Alt+T", false, "\"Take\" is on Ctrl+Alt+T now.");
        row("Enter", "F12", true, "Enter cannot be used: it ends what is typed. Press another key, or Esc.");
        row("Tab", "F12", true, "Tab cannot be used: it goes from one control to the next.");
        row("Shift+Tab", "F12", true, "it goes from one control to the next");
        row("Down", "F12", true, "Down cannot be used: it moves in lists and sliders.");
        row("7", "F12", true, "7 cannot be used: digits find a slot by its number.");
        row("Ctrl+V", "F12", true, "Ctrl+V cannot be used: it edits what is typed.");
        row("F11", "F12", true, "F11 cannot be used: it opens a window for service.");
        row("Esc", "F12", false, "Click a key");
        row("Backspace", "", false, "\"Take\" has no key now.");
        row("Del", "", false, "\"Take\" has no key now.");
        row("F12", "F12", false, "\"Take\" is on F12 now.");
        row("F1", "F12", false, "F1 belongs to \"Show and change the keys\". Swap the two,");
    }

    void recordsAKey()
    {
        QFETCH(QString, pressed);
        QFETCH(QString, after);
        QFETCH(bool, stillRecording);
        QFETCH(QString, told);
        m_desk->record(QStringLiteral("take"), QKeySequence(pressed));
        QCOMPARE(m_desk->field(QStringLiteral("take"))->isRecording(), stillRecording);
        QVERIFY2(m_desk->notice()->text().contains(told), qPrintable(m_desk->notice()->text()));
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("take")), QKeySequence(after));
        QCOMPARE(m_desk->hotkeys.shortcut(QStringLiteral("take"))->key(), QKeySequence(after));
        QCOMPARE(m_desk->field(QStringLiteral("take"))->key(), QKeySequence(after));
        QVERIFY(m_desk->dialog.isVisible());
        QCOMPARE(m_desk->calls, 0); // no live key fired
    }

    void resolvesAConflict_data()
    {
        QTest::addColumn<QString>("button"); // none: Escape
        QTest::addColumn<QString>("take");
        QTest::addColumn<QString>("mute");
        QTest::newRow("swap") << "swap"
                              << "M"
                              << "F12";
        QTest::newRow("take over") << "takeover"
                                   << "M"
                                   << "";
        QTest::newRow("keep") << "keep"
                              << "F12"
                              << "M";
        QTest::newRow("escape") << ""
                                << "F12"
                                << "M";
    }

    void resolvesAConflict()
    {
        QFETCH(QString, button);
        QFETCH(QString, take);
        QFETCH(QString, mute);
        m_desk->record(QStringLiteral("take"), key("M"));
        QCOMPARE(m_desk->notice()->text(),
                 QStringLiteral("M belongs to \"Mute program\". Swap the two, or take it "
                                "over and leave that without a key?"));
        if (button.isEmpty())
            Desk::press(key("Esc"));
        else
            m_desk->click(QStringLiteral("notice-") + button);
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("take")), QKeySequence(take));
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("mute_program")), QKeySequence(mute));
        QVERIFY(m_desk->field(QStringLiteral("take"))->hasFocus() && m_desk->dialog.isVisible());
    }

    void anotherKeyEndsTheQuestion()
    {
        m_desk->record(QStringLiteral("take"), key("M"));
        QVERIFY(!m_desk->field(QStringLiteral("undo"))->isEnabled());
        m_desk->field(QStringLiteral("take"))->click();
        QVERIFY(!m_desk->notice()->isAsking() && m_desk->field(QStringLiteral("undo"))->isEnabled());
        m_desk->field(QStringLiteral("take"))->setFocus();
        m_desk->field(QStringLiteral("take"))->setRecording(true);
        Desk::press(key("F9"));
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("take")), key("F9"));
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("mute_program")), key("M"));
    }

    void offersNoSwapThatIsReserved()
    {
        m_desk->record(QStringLiteral("cue"), key("M")); // Enter is for the list alone
        QVERIFY(m_desk->notice()->isAsking());
        QVERIFY(m_desk->part<QWidget>(QStringLiteral("notice-swap-button"))->isHidden());
        Desk::press(key("Return")); // the focus is on "take over"
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("cue")), key("M"));
        QVERIFY(m_desk->hotkeys.mapping(QStringLiteral("mute_program")).isEmpty());
    }

    void resetsOneAndAll()
    {
        m_desk->record(QStringLiteral("take"), key("F9"));
        m_desk->record(QStringLiteral("undo"), key("F8"));
        m_desk->click(QStringLiteral("take-reset"));
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("take")), key("F12"));
        QVERIFY(!m_desk->part<QWidget>(QStringLiteral("take-reset-button"))->isEnabled());

        // A default that another holds by now is a conflict like any other.
        m_desk->record(QStringLiteral("take"), key("F9"));
        m_desk->record(QStringLiteral("mute_program"), key("F12"));
        m_desk->click(QStringLiteral("take-reset"));
        QVERIFY(m_desk->notice()->isAsking());
        m_desk->click(QStringLiteral("mute_program-reset")); // which ends the question
        QVERIFY(!m_desk->notice()->isAsking());
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("mute_program")), key("M"));
        QVERIFY(m_desk->field(QStringLiteral("undo"))->isEnabled());

        m_desk->click(QStringLiteral("reset-all"));
        QCOMPARE(m_desk->hotkeys.mapping(QStringLiteral("undo")), key("F8")); // not before the yes
        m_desk->click(QStringLiteral("reset-all-accept"));
        QCOMPARE(m_desk->hotkeys.keymap(), defaultKeymap());
        m_desk->settings.reopen();
        QCOMPARE(m_desk->settings->value(KEYMAP).toMap(), defaultKeymap());
    }

    void keepsKeysInTheSettings()
    {
        m_desk->record(QStringLiteral("take"), key("F9"));
        m_desk->record(QStringLiteral("play_pause"), key("Backspace"));
        m_desk->settings.reopen();
        Hotkeys later(&m_desk->window);
        QCOMPARE(later.loadKeymapFromConfiguration(), QString());
        QCOMPARE(later.mapping(QStringLiteral("take")), key("F9"));
        QVERIFY(later.mapping(QStringLiteral("play_pause")).isEmpty());
        QCOMPARE(later.mapping(QStringLiteral("undo")), QKeySequence(QKeySequence::Undo));
    }

    void searchesByActionGroupAndKey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("action") << "mute" << QStringList{"mute_program"};
        QTest::newRow("key") << "f12" << QStringList{"take"};
        QTest::newRow("keys") << "ctrl+f" << QStringList{"find"};
        QTest::newRow("group") << "library" << QStringList{"cue",  "rename", "delete", "move_slots",
                                                           "find", "undo",   "redo"};
        QTest::newRow("nothing") << "zzz" << QStringList{};
    }

    void searchesByActionGroupAndKey()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, shown);
        auto* search = m_desk->part<ZTEdit>(QStringLiteral("search"));
        QTest::keyClicks(search, text);
        QStringList found;
        for (const KeyAction& action : keyActions()) {
            if (m_desk->field(action.name)->isVisible())
                found.append(action.name);
        }
        QCOMPARE(found, shown);
        QCOMPARE(m_desk->part<QWidget>(QStringLiteral("nothing"))->isVisible(), shown.isEmpty());
        Desk::press(key("Down"));
        QCOMPARE(shown.isEmpty() ? nullptr : m_desk->field(shown.first()),
                 qobject_cast<KeyField*>(QApplication::focusWidget()));
        search->setFocus(); // with the text of before in it
        Desk::press(key("Esc"));
        QVERIFY(search->text().isEmpty() && m_desk->dialog.isVisible());
        Desk::press(key("Esc"));
        QVERIFY(!m_desk->dialog.isVisible());
    }

    void arrowsWalkTheRows()
    {
        m_desk->field(keyActions().first().name)->setFocus();
        for (const KeyAction& action : keyActions()) {
            QVERIFY(m_desk->field(action.name)->hasFocus());
            QVERIFY(!m_desk->field(action.name)->visibleRegion().isEmpty());
            Desk::press(key("Down"));
        }
    }

    /// Nothing is cut in the smallest window, whatever the text size.
    void fitsTheSmallestWindow_data()
    {
        QTest::addColumn<FontSize>("size");
        for (const FontSize size : {FontSize::Small, FontSize::Medium, FontSize::Large, FontSize::Huge})
            QTest::newRow(qPrintable(toString(size))) << size;
    }

    void fitsTheSmallestWindow()
    {
        QFETCH(FontSize, size);
        m_desk->dialog.close();
        m_desk->settings->setValue(TEXT_SIZE, QVariant::fromValue(size));
        m_desk->dialog.open();
        QVERIFY(m_desk->isReady());
        const QSize dialog = m_desk->dialog.size();
        m_desk->record(QStringLiteral("take"), key("M")); // a question takes its room from the list
        QCoreApplication::processEvents();
        QCOMPARE(m_desk->dialog.size(), dialog);
        const auto* area = m_desk->part<QScrollArea>(QStringLiteral("scroll-area"));
        const int pageWidth = area->widget()->minimumSizeHint().width();
        const int room = area->viewport()->width();
        QVERIFY2(dialog.width() <= 1280 && dialog.height() <= 720,
                 qPrintable(QStringLiteral("%1x%2").arg(dialog.width()).arg(dialog.height())));
        QVERIFY2(pageWidth <= room, qPrintable(QStringLiteral("%1 in %2").arg(pageWidth).arg(room)));
        QVERIFY(area->viewport()->height() >= 100);
    }

private:
    std::unique_ptr<Desk> m_desk;
};

HALCYRA_TEST(KeyboardDialogTest)
#include "keyboarddialog.moc"

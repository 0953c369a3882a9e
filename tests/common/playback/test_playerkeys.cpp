#include "common/media/library/medialibraryprovider.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/takebutton.h"
#include "common/session/session.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/keyboardfocus.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/views/slotlistview.h"
#include "tests/common/playback/playerfixture.h"

#include <QLineEdit>
#include <QShortcut>
#include <QVBoxLayout>

using namespace vantrel;
using test::PlayerFixture;

namespace {

/// The player in a window with hotkeys and a text field, both channels loaded.
class KeysFixture : public PlayerFixture
{
public:
    KeysFixture()
        : hotkeys(&window)
        , field(new QLineEdit(&window))
    {
        peer.session->setHotkeys(&hotkeys);
        view = std::make_unique<PlayerPlaybackView>(peer.session, &window);
        view->setModel(peer.session->objectTreeModel()->index(QStringLiteral("/device/channels")));
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(field);
        layout->addWidget(view.get());
        new KeyboardFocus(&window);
        window.resize(1400, 900);
        window.show();
        window.activateWindow();
    }
    ~KeysFixture()
    {
        view.reset();
        peer.session->setHotkeys(nullptr);
    }

    bool load()
    {
        const auto provider = peer.session->mediaLibraryProvider();
        if (!connect() || !QTest::qWaitFor([&] { return provider->slot({1, 1}) != nullptr; }))
            return false;
        channel()->programWidget()->lockButton()->click();
        for (const char* playback : {"preview", "program"}) {
            set(playback, "media", "\"brume://collections/1/slots/1\"");
            set(playback, "mediaPosition", "5.0");
        }
        return QTest::qWaitFor([&] {
            return channel()->programWidget()->controls()->isEnabled() &&
                   channel()->previewWidget()->controls()->canSetPoints() && window.isActiveWindow();
        });
    }

    /// Gives the focus to a widget by name, or to none.
    void focus(const QString& name, Qt::FocusReason reason)
    {
        if (QWidget* had = QApplication::focusWidget())
            had->clearFocus();
        if (name.isEmpty())
            return;
        if (QWidget* widget = name == QStringLiteral("field") ? field : window.findChild<QWidget*>(name))
            widget->setFocus(reason);
    }

    void press(const QKeySequence& key)
    {
        QWidget* target = QApplication::focusWidget();
        QTest::keySequence(target ? target : &window, key);
    }

    QWidget window;
    Hotkeys hotkeys;
    QLineEdit* field;
};

const QString preview = QStringLiteral("/device/channels/0/preview/");
const QString program = QStringLiteral("/device/channels/0/program/");
const QString takeLine = QStringLiteral("invoke /device/channels/0/methods/take");

} // namespace

class TestPlayerKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<KeysFixture>();
        configuration()->clear();
        QVERIFY(m_fixture->load());
        m_fixture->focus({}, Qt::OtherFocusReason); // the window gave it to the field
    }
    void cleanup() { m_fixture.reset(); }

    void keysReachTheirChannel_data()
    {
        QTest::addColumn<QString>("focus");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("sent"); // the beginning of it; empty for nothing
        const QString onProgram = QStringLiteral("Program-PlaybackWidget");
        const QString field = QStringLiteral("field");
        const auto row = [](const char* name, const QString& focus, const char* key, const QString& sent) {
            QTest::newRow(name) << focus << QString::fromLatin1(key) << sent;
        };
        const auto step = [](const QString& channel, int frames) {
            return QStringLiteral("invoke %1methods/step {\"frameCount\":%2}").arg(channel).arg(frames);
        };
        row("play", {}, "Space", "replace " + preview + "properties/state \"play\"");
        row("play program", onProgram, "Space", "replace " + program + "properties/state \"play\"");
        row("to in", {}, "Home", "invoke " + preview + "methods/seekInpoint");
        row("to out", {}, "End", "invoke " + preview + "methods/seekOutpoint");
        row("to in of program", onProgram, "Home", "invoke " + program + "methods/seekInpoint");
        row("a frame back", {}, ",", step(preview, -1));
        row("a frame on", {}, ".", step(preview, 1));
        row("a frame on, program", onProgram, ".", step(program, 1));
        row("take", {}, "F12", takeLine);
        row("take while typing", field, "F12", takeLine);
        row("mute", {}, "M", "replace " + program + "properties/muted true");
        row("mute from program", onProgram, "M", "replace " + program + "properties/muted true");
        row("a blank in a field", field, "Space", {});
        row("a letter in a field", field, "M", {});
        row("a comma in a field", field, ",", {});
        row("home in a field", field, "Home", {});
    }

    void keysReachTheirChannel()
    {
        QFETCH(QString, focus);
        QFETCH(QString, key);
        QFETCH(QString, sent);
        m_fixture->focus(focus, Qt::MouseFocusReason);
        m_fixture->takeSent();
        m_fixture->press(QKeySequence(key));
        if (sent.isEmpty())
            m_fixture->press(QKeySequence(Qt::Key_F12)); // so that there is something to wait for
        const QString got = m_fixture->waitForSent();
        QVERIFY2(got.startsWith(sent.isEmpty() ? takeLine : sent), qPrintable(got));
        QCOMPARE(got.count(u'\n'), 0);
        if (focus == QStringLiteral("field") && key == QStringLiteral("Space"))
            QCOMPARE(m_fixture->field->text(), QStringLiteral(" "));
    }

    /// Once it is locked again, no key moves program, nor preview in its stead.
    void lockedProgramStands()
    {
        m_fixture->press(QKeySequence(Qt::CTRL | Qt::Key_L));
        m_fixture->focus(QStringLiteral("Program-PlaybackWidget"), Qt::MouseFocusReason);
        m_fixture->takeSent();
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Home, Qt::Key_End, Qt::Key_Period, Qt::Key_F12})
            m_fixture->press(QKeySequence(key));
        const QString got = m_fixture->waitForSent();
        QVERIFY2(got.startsWith(takeLine) && got.count(u'\n') == 0, qPrintable(got));
    }

    /// What is on air by then may be another server's.
    void eachConnectionBeginsLocked()
    {
        const PlaybackWidget* program = m_fixture->channel()->programWidget();
        QVERIFY(!program->isLocked());
        m_fixture->peer.session->connectionHandler()->disconnect();
        QTRY_VERIFY(!m_fixture->peer.session->isConnected());
        QVERIFY(m_fixture->connect());
        program = m_fixture->channel()->programWidget();
        QTRY_VERIFY(program->isLocked());
        QVERIFY(program->lockButton()->isChecked());
        QVERIFY(!m_fixture->channel()->previewWidget()->isLocked());
    }

    void spacePressesAButtonAfterTabOnly_data()
    {
        QTest::addColumn<Qt::FocusReason>("reason");
        QTest::addColumn<QString>("state");
        QTest::newRow("tab") << Qt::TabFocusReason << "stop";
        QTest::newRow("backtab") << Qt::BacktabFocusReason << "stop";
        QTest::newRow("mouse") << Qt::MouseFocusReason << "pause";
        QTest::newRow("code") << Qt::OtherFocusReason << "pause";
    }

    void spacePressesAButtonAfterTabOnly()
    {
        QFETCH(Qt::FocusReason, reason);
        QFETCH(QString, state);
        m_fixture->set("preview", "state", "\"play\"");
        const PlaybackControls* controls = m_fixture->channel()->previewWidget()->controls();
        QTRY_COMPARE(controls->state(), QStringLiteral("play"));
        m_fixture->focus(QStringLiteral("Preview-PlaybackControls-Stop"), reason);
        m_fixture->takeSent();
        m_fixture->press(QKeySequence(Qt::Key_Space));
        QCOMPARE(m_fixture->waitForSent(),
                 QStringLiteral("replace %1properties/state \"%2\"").arg(preview, state));
    }

    /// The focus that a window gets back is still the one that Tab gave.
    void tabFocusOutlivesTheWindowsAbsence()
    {
        m_fixture->focus(QStringLiteral("TakeControls-Take-Button"), Qt::TabFocusReason);
        QWidget other;
        other.show();
        other.activateWindow();
        QTRY_VERIFY(!m_fixture->window.isActiveWindow());
        m_fixture->window.activateWindow();
        QTRY_VERIFY(m_fixture->window.isActiveWindow() && QApplication::focusWidget());
        m_fixture->takeSent();
        m_fixture->press(QKeySequence(Qt::Key_Space));
        QVERIFY(m_fixture->waitForSent().startsWith(takeLine));
    }

    void pointsAreSetOnPreviewAlone()
    {
        m_fixture->focus(QStringLiteral("Program-PlaybackWidget"), Qt::MouseFocusReason);
        m_fixture->press(QKeySequence(Qt::Key_I));
        m_fixture->press(QKeySequence(Qt::Key_O));
        m_fixture->focus({}, Qt::OtherFocusReason);
        m_fixture->press(QKeySequence(Qt::Key_I));
        QTRY_COMPARE(m_fixture->patches.size(), 1);
        QVERIFY(m_fixture->patches[0].contains("/collections/1/slots/1/inpoint"));
        m_fixture->press(QKeySequence(Qt::Key_O));
        QTRY_COMPARE(m_fixture->patches.size(), 2);
        QVERIFY(m_fixture->patches[1].contains("/collections/1/slots/1/outpoint"));
    }

    void aHeldKeyTakesOnce()
    {
        m_fixture->takeSent();
        for (int i = 0; i < 5; ++i) // as the system repeats a key: presses without releases
            QTest::simulateEvent(&m_fixture->window, true, Qt::Key_F12, Qt::NoModifier, {}, i > 0);
        QTest::simulateEvent(&m_fixture->window, false, Qt::Key_F12, Qt::NoModifier, {}, false);
        m_fixture->press(QKeySequence(Qt::Key_Period));
        QString sent;
        QTRY_VERIFY((sent += m_fixture->takeSent()).contains(QStringLiteral("step")));
        QCOMPARE(sent.count(takeLine), 1);
    }

    /// Nor does the blank on the button that Tab came to.
    void aHeldBlankTakesOnce()
    {
        auto* take = m_fixture->part<TakeButton>("TakeControls-Take-Button");
        m_fixture->focus(take->objectName(), Qt::TabFocusReason);
        m_fixture->takeSent();
        for (int i = 0; i < 5; ++i)
            QTest::simulateEvent(take, true, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), i > 0);
        QTest::simulateEvent(take, false, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), false);
        m_fixture->press(QKeySequence(Qt::Key_Period));
        QString sent;
        QTRY_VERIFY((sent += m_fixture->takeSent()).contains(QStringLiteral("step")));
        QCOMPARE(sent.count(takeLine), 1);
    }

    void nothingLoadedNothingPlayed()
    {
        m_fixture->set("preview", "media", "\"\"");
        QTRY_VERIFY(!m_fixture->channel()->previewWidget()->controls()->isEnabled());
        m_fixture->takeSent();
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Home, Qt::Key_Period, Qt::Key_I, Qt::Key_F12})
            m_fixture->press(QKeySequence(key));
        QVERIFY(m_fixture->waitForSent().startsWith(takeLine));
        QVERIFY(m_fixture->patches.isEmpty());
    }

    void followsTheKeyMap()
    {
        const auto* take = m_fixture->part<TakeButton>("TakeControls-Take-Button");
        QCOMPARE(take->toolTip(), QStringLiteral("Perform take (F12)"));
        m_fixture->hotkeys.remap(QStringLiteral("take"), QKeySequence(Qt::Key_F9));
        QCOMPARE(take->toolTip(), QStringLiteral("Perform take (F9)"));
        m_fixture->takeSent();
        m_fixture->press(QKeySequence(Qt::Key_F12));
        m_fixture->press(QKeySequence(Qt::Key_F9));
        const QString sent = m_fixture->waitForSent();
        QCOMPARE(sent.count(takeLine), 1);
    }

    void enterCuesTheSlot()
    {
        auto* list = m_fixture->view->findChild<SlotListView*>();
        QTRY_VERIFY(list->model() && list->model()->rowCount(list->rootIndex()) >= 2);
        list->setCurrentIndex(list->model()->index(1, list->modelColumn(), list->rootIndex()));
        list->setFocus(Qt::TabFocusReason);
        m_fixture->takeSent();
        const QString cue = QStringLiteral("invoke %1methods/playMedia "
                                           "{\"mediaUrl\":\"brume://collections/1/slots/2\"}")
                                .arg(preview);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            m_fixture->press(QKeySequence(key));
            QCOMPARE(m_fixture->waitForSent(), cue);
        }
        m_fixture->hotkeys.remap(QStringLiteral("cue"), QKeySequence(Qt::Key_C));
        m_fixture->press(QKeySequence(Qt::Key_Return));
        m_fixture->press(QKeySequence(Qt::Key_C));
        QCOMPARE(m_fixture->waitForSent(), cue);
    }

private:
    std::unique_ptr<KeysFixture> m_fixture;
};

HALCYRA_TEST(TestPlayerKeys)
#include "test_playerkeys.moc"

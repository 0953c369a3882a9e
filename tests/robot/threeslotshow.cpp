#include "tests/support/appprocess.h"
#include "tests/support/numberedclip.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/serverprobe.h"
#include "tests/support/testmain.h"

#include <QKeySequence>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace vantrel::test;

namespace {

const QString preview = QStringLiteral("Preview");
const QString program = QStringLiteral("Program");
const QString slotsView = QStringLiteral("MediaPanel-slots-view");
const QString slider = QStringLiteral("Preview-PlaybackWidget-SeekSlider");
const QString takeDuration = QStringLiteral("TakeControls-Duration");
const QString stillTime = QStringLiteral("Preview-PlaybackWidget-DurationEdit-Time");
const QString volumeButton = QStringLiteral("Program-PlaybackWidget-Footer-Volume");
const QString volumePopup = QStringLiteral("Program-PlaybackWidget-Footer-VolumePopup");

const QString swapButton = QStringLiteral("TakeControls-Swap-Button");
const QString copyButton = QStringLiteral("TakeControls-Copy-Button");
const QString durationType = QStringLiteral("Preview-PlaybackWidget-DurationEdit-Input-%1-duration-button");
const QString endAction = QStringLiteral("Preview-PlaybackWidget-Footer-EndAction-%1-button");

QString transition(const QString& name)
{
    return QStringLiteral("TakeControls-%1-Button").arg(name);
}

const QStringList transitions{transition(QStringLiteral("DirectCut")),
                              transition(QStringLiteral("Crossfade")), transition(QStringLiteral("Dip"))};

constexpr int fps = 25;
constexpr int length = 20 * fps; // frames of each clip

enum Slot : int { Red, Blue, Green };

enum class Hand { Mouse, Keyboard, OtherKeys };

/// As the README tells them.
const QMap<QString, QKeySequence> defaultKeys{{QStringLiteral("play_pause"), QKeySequence(Qt::Key_Space)},
                                              {QStringLiteral("set_inpoint"), QKeySequence(Qt::Key_I)},
                                              {QStringLiteral("set_outpoint"), QKeySequence(Qt::Key_O)},
                                              {QStringLiteral("seek_inpoint"), QKeySequence(Qt::Key_Home)},
                                              {QStringLiteral("seek_outpoint"), QKeySequence(Qt::Key_End)},
                                              {QStringLiteral("prev_frame"), QKeySequence(Qt::Key_Comma)},
                                              {QStringLiteral("next_frame"), QKeySequence(Qt::Key_Period)},
                                              {QStringLiteral("cue"), QKeySequence(Qt::Key_Return)},
                                              {QStringLiteral("take"), QKeySequence(Qt::Key_F12)},
                                              {QStringLiteral("mute_program"), QKeySequence(Qt::Key_M)}};

/// Where the keys are in the show whose key map was changed in the settings file.
const QMap<QString, QKeySequence> otherKeys{{QStringLiteral("play_pause"), QKeySequence(Qt::Key_K)},
                                            {QStringLiteral("set_inpoint"), QKeySequence(Qt::Key_Q)},
                                            {QStringLiteral("set_outpoint"), QKeySequence(Qt::Key_W)},
                                            {QStringLiteral("next_frame"), QKeySequence(Qt::Key_L)},
                                            {QStringLiteral("cue"), QKeySequence(Qt::Key_C)},
                                            {QStringLiteral("take"), QKeySequence(Qt::Key_F9)},
                                            {QStringLiteral("mute_program"), QKeySequence(Qt::Key_S)}};

bool isOf(Slot slot, const QColor& marker)
{
    const std::array parts{marker.red(), marker.blue(), marker.green()};
    for (int i = 0; i < 3; ++i) {
        if (i == slot ? parts[size_t(i)] < 150 : parts[size_t(i)] > 60)
            return false;
    }
    return true;
}

} // namespace

/// A show of three slots, two clips and a still, run by somebody who has the window alone: once with nothing
/// but the mouse, once with nothing but the keyboard, once with keys of the operator's own.
class ThreeSlotShow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void show_data();
    void show();
    void cleanup();

private:
    bool start(Hand hand);
    bool isMouse() const { return m_hand == Hand::Mouse; }
    void press(const QString& action) { m_robot.key(m_keys.value(action).toString()); }
    bool tabTo(const QString& widget);
    bool push(const QString& button);
    bool choose(const QString& option, const QStringList& others);
    bool cue(Slot slot);
    void take();
    bool toStart();
    bool fill(const QString& field, const QString& text);
    bool shows(const QString& channel, Slot slot, int first = 0, int last = length);
    std::optional<int> frameOn(const QString& channel);
    QJsonValue sceneOf(const QString& channel, const char* property);

    void beginsEmpty();
    void firstSlotGoesOnAir();
    void secondSlotIsTrimmed();
    void markPoint(const QString& action, double share, int frames);
    void stillGetsItsDuration();
    void secondSlotRepeatsAndIsMixedIn();
    void stillIsDippedTo();
    void soundIsMutedAndTurnedDown();
    void turnDownBesideTheMeter();
    void blankGoesWhereTheClickWas();

    Hand m_hand = Hand::Mouse;
    QMap<QString, QKeySequence> m_keys;
    std::unique_ptr<QTemporaryDir> m_media;
    std::unique_ptr<OmbraProcess> m_ombra;
    std::unique_ptr<AppProcess> m_app;
    std::unique_ptr<ServerProbe> m_server;
    RobotClient m_robot;
};

bool ThreeSlotShow::start(Hand hand)
{
    m_hand = hand;
    m_media = std::make_unique<QTemporaryDir>();
    m_ombra = std::make_unique<OmbraProcess>();
    m_app = std::make_unique<AppProcess>();
    m_server = std::make_unique<ServerProbe>();
    QImage still(320, 180, QImage::Format_RGB32);
    still.fill(QColor(0, 220, 0));
    if (!makeNumberedClip(m_media->filePath(QStringLiteral("1 red.mp4")), QColor(220, 0, 0), length) ||
        !makeNumberedClip(m_media->filePath(QStringLiteral("2 blue.mp4")), QColor(0, 0, 220), length) ||
        !still.save(m_media->filePath(QStringLiteral("3 green.png"))))
        return false;
    m_keys = defaultKeys;
    if (hand == Hand::OtherKeys) {
        QMap<QString, QVariant> stored;
        for (auto key = otherKeys.cbegin(); key != otherKeys.cend(); ++key)
            stored.insert(key.key(), QVariant::fromValue(*key));
        m_keys.insert(otherKeys);
        QSettings(m_app->settingsFile(), QSettings::IniFormat).setValue(QStringLiteral("KEYMAP"), stored);
    }
    m_ombra->setMediaFolder(m_media->path());
    if (!m_ombra->start() || !m_app->start(AppProcess::connectTo(m_ombra->ports())))
        return false;
    m_server->setPorts(m_ombra->ports());
    return m_robot.connectTo(m_app->uiTestPort());
}

/// From wherever the focus is.
bool ThreeSlotShow::tabTo(const QString& widget)
{
    for (int i = 0; i < 80; ++i) {
        if (m_robot.find(widget)["focus"].toBool())
            return true;
        m_robot.key(QStringLiteral("Tab"));
    }
    return false;
}

/// A button, by a click or by Tab and Space.
bool ThreeSlotShow::push(const QString& button)
{
    if (isMouse())
        return m_robot.click(button);
    if (!tabTo(button))
        return false;
    m_robot.key(QStringLiteral("Space"));
    return true;
}

/// One of a row of which one is chosen: Tab comes to the row, the arrows go through it.
bool ThreeSlotShow::choose(const QString& option, const QStringList& others)
{
    if (isMouse())
        return m_robot.click(option);
    const auto hasFocus = [this](const QString& name) { return m_robot.find(name)["focus"].toBool(); };
    for (int i = 0; i < 80 && !hasFocus(option) && std::ranges::none_of(others, hasFocus); ++i)
        m_robot.key(QStringLiteral("Tab"));
    for (const char* arrow : {"Left", "Right"}) {
        for (qsizetype i = 0; i < others.size() && !hasFocus(option); ++i)
            m_robot.key(QString::fromLatin1(arrow));
    }
    m_robot.key(QStringLiteral("Space"));
    return hasFocus(option) && m_robot.find(option)["checked"].toBool();
}

bool ThreeSlotShow::cue(Slot slot)
{
    if (isMouse())
        return m_robot.doubleClickCell(slotsView, slot, 0) && shows(preview, slot);
    if (!tabTo(slotsView))
        return false;
    for (int i = 0; i < 3; ++i)
        m_robot.key(QStringLiteral("Up"));
    for (int i = 0; i < slot; ++i)
        m_robot.key(QStringLiteral("Down"));
    press(QStringLiteral("cue"));
    return shows(preview, slot);
}

void ThreeSlotShow::take()
{
    if (isMouse())
        m_robot.click(QStringLiteral("TakeControls-Take-Button"));
    else
        press(QStringLiteral("take"));
}

/// Seeks preview to its in point.
bool ThreeSlotShow::toStart()
{
    if (isMouse())
        return m_robot.click(QStringLiteral("Preview-PlaybackControls-SeekInpoint"));
    press(QStringLiteral("seek_inpoint"));
    return true;
}

/// Types into a number field and ends with Return.
bool ThreeSlotShow::fill(const QString& field, const QString& text)
{
    if (isMouse() ? !m_robot.doubleClick(field) : !tabTo(field))
        return false;
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(text);
    m_robot.key(QStringLiteral("Enter"));
    return m_robot.text(field).startsWith(text) && !m_robot.find(field)["focus"].toBool();
}

bool ThreeSlotShow::shows(const QString& channel, Slot slot, int first, int last)
{
    const auto isThere = [&] {
        const QImage picture = m_robot.grab(channel + QStringLiteral("-PlaybackWidget-PreviewWidget"));
        if (!isOf(slot, markerOf(picture)))
            return false;
        const std::optional<int> frame = slot == Green ? 0 : frameNumberOf(picture);
        return frame && *frame >= first && *frame <= last;
    };
    return QTest::qWaitFor(isThere, 10000);
}

std::optional<int> ThreeSlotShow::frameOn(const QString& channel)
{
    return frameNumberOf(m_robot.grab(channel + QStringLiteral("-PlaybackWidget-PreviewWidget")));
}

QJsonValue ThreeSlotShow::sceneOf(const QString& channel, const char* property)
{
    return m_server->property(QStringLiteral("/device/channels/0/%1/properties/%2")
                                  .arg(channel.toLower(), QLatin1String(property)));
}

void ThreeSlotShow::show_data()
{
    QTest::addColumn<Hand>("hand");
    QTest::newRow("mouse") << Hand::Mouse;
    QTest::newRow("keyboard") << Hand::Keyboard;
    QTest::newRow("keys of one's own") << Hand::OtherKeys;
}

void ThreeSlotShow::show()
{
    QFETCH(Hand, hand);
    QVERIFY(start(hand));
    for (const auto step :
         {&ThreeSlotShow::beginsEmpty, &ThreeSlotShow::firstSlotGoesOnAir,
          &ThreeSlotShow::secondSlotIsTrimmed, &ThreeSlotShow::stillGetsItsDuration,
          &ThreeSlotShow::secondSlotRepeatsAndIsMixedIn, &ThreeSlotShow::stillIsDippedTo,
          &ThreeSlotShow::soundIsMutedAndTurnedDown, &ThreeSlotShow::blankGoesWhereTheClickWas}) {
        (this->*step)();
        if (QTest::currentTestFailed())
            return;
    }
    QCOMPARE(m_app->stop(), 0);
    m_ombra->stop();
}

void ThreeSlotShow::cleanup()
{
    m_app.reset();
    m_ombra.reset();
}

/// An empty channel says how something gets there.
void ThreeSlotShow::beginsEmpty()
{
    for (const QString& channel : {preview, program})
        QVERIFY(!m_robot.waitFor(channel + QStringLiteral("-PlaybackWidget-Hint")).isEmpty());
}

void ThreeSlotShow::firstSlotGoesOnAir()
{
    QVERIFY(cue(Red));
    QVERIFY(!m_robot.find(QStringLiteral("Preview-PlaybackWidget-Hint"))["visible"].toBool());
    QCOMPARE(m_robot.text(QStringLiteral("Preview-PlaybackWidget-Header-MediaLocation")),
             QStringLiteral("1-1:"));
    QVERIFY(choose(transition(QStringLiteral("DirectCut")), transitions));
    QVERIFY(choose(copyButton, {swapButton}));
    take();
    QVERIFY(shows(program, Red));
    QTRY_COMPARE(sceneOf(program, "media").toString(), QStringLiteral("brume://collections/1/slots/1"));
    QTRY_COMPARE(sceneOf(program, "state").toString(), QStringLiteral("play"));
}

/// Brings preview, which is paused, some way on, and sets a point there.
void ThreeSlotShow::markPoint(const QString& action, double share, int frames)
{
    const std::optional<int> before = frameOn(preview);
    QVERIFY(before);
    if (isMouse()) {
        QVERIFY(m_robot.mouseAt(QStringLiteral("click"), slider, share));
        const int wanted = int(share * length);
        QVERIFY(shows(preview, Blue, wanted - fps / 2, wanted + fps / 2));
        QVERIFY(m_robot.click(action == QStringLiteral("set_inpoint")
                                  ? QStringLiteral("Preview-PlaybackControls-SetInpoint")
                                  : QStringLiteral("Preview-PlaybackControls-SetOutpoint")));
        return;
    }
    for (int i = 0; i < frames; ++i)
        press(QStringLiteral("next_frame"));
    QVERIFY(shows(preview, Blue, *before + frames, *before + frames));
    press(action);
}

void ThreeSlotShow::secondSlotIsTrimmed()
{
    QVERIFY(cue(Blue));
    if (isMouse())
        QVERIFY(m_robot.click(QStringLiteral("Preview-PlaybackControls-Pause")));
    else
        press(QStringLiteral("play_pause"));
    QTRY_COMPARE(sceneOf(preview, "state").toString(), QStringLiteral("pause"));
    QVERIFY(toStart());
    QVERIFY(shows(preview, Blue, 0, 0));

    markPoint(QStringLiteral("set_inpoint"), 0.25, 5);
    QTRY_VERIFY(m_server->slot(1, 2)["inpoint"].toDouble() > 0.0);
    const std::optional<int> first = frameOn(preview);
    QVERIFY(first);
    markPoint(QStringLiteral("set_outpoint"), 0.75, 10);
    QTRY_VERIFY(m_server->slot(1, 2)["outpoint"].isDouble());
    const std::optional<int> last = frameOn(preview);
    QVERIFY(last && *last > *first);
    if (!isMouse()) {
        press(QStringLiteral("seek_outpoint"));
        press(QStringLiteral("prev_frame"));
        press(QStringLiteral("prev_frame"));
        QVERIFY2(shows(preview, Blue, *last - 3, *last - 2), "two frames back from the out point");
    }
    const QJsonObject slot = m_server->slot(1, 2);
    QCOMPARE(int(std::floor(slot["inpoint"].toDouble() * fps + 1e-6)), *first);
    QCOMPARE(int(std::floor(slot["outpoint"].toDouble() * fps + 1e-6)), *last);
    QVERIFY(toStart());
    QVERIFY2(shows(preview, Blue, *first, *first), "the in point is not where it was set");
}

void ThreeSlotShow::stillGetsItsDuration()
{
    QVERIFY(cue(Green));
    QVERIFY(
        choose(durationType.arg(QStringLiteral("manual")), {durationType.arg(QStringLiteral("infinite"))}));
    QTRY_VERIFY(m_robot.find(stillTime)["enabled"].toBool());
    QTRY_COMPARE(m_server->slot(1, 3)["durationType"].toString(), QStringLiteral("manual"));
    if (isMouse()) {
        QVERIFY(m_robot.doubleClick(stillTime + QStringLiteral("-SecondsLabel")));
    } else {
        QVERIFY(tabTo(stillTime));
        m_robot.key(QStringLiteral("Enter"));
    }
    QVERIFY(!m_robot.waitFor(stillTime + QStringLiteral("-Seconds")).isEmpty());
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(QStringLiteral("7"));
    m_robot.key(QStringLiteral("Enter"));
    QTRY_COMPARE(int(m_server->slot(1, 3)["duration"].toDouble()), 7);
    QCOMPARE(m_server->slot(1, 1)["duration"], QJsonValue::Null);
}

void ThreeSlotShow::secondSlotRepeatsAndIsMixedIn()
{
    QVERIFY(cue(Blue));
    QVERIFY(choose(endAction.arg(QStringLiteral("repeat")),
                   {endAction.arg(QStringLiteral("pause")), endAction.arg(QStringLiteral("stop"))}));
    QTRY_COMPARE(sceneOf(preview, "endAction").toString(), QStringLiteral("repeat"));
    QVERIFY(choose(transition(QStringLiteral("Crossfade")), transitions));
    QVERIFY(fill(takeDuration, QStringLiteral("1.5")));
    QVERIFY(choose(swapButton, {copyButton}));
    QTRY_COMPARE(sceneOf(program, "state").toString(), QStringLiteral("play"));
    take();
    bool isMixed = false; // both clips at once
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            const QColor marker =
                markerOf(m_robot.grab(QStringLiteral("Program-PlaybackWidget-PreviewWidget")));
            isMixed = isMixed || (marker.red() > 60 && marker.blue() > 60);
            return isOf(Blue, marker);
        }(),
        10000);
    QVERIFY2(isMixed, "the cross fade was none");
    QVERIFY(shows(preview, Red)); // swapped
    QTRY_COMPARE(sceneOf(program, "media").toString(), QStringLiteral("brume://collections/1/slots/2"));
    QCOMPARE(sceneOf(program, "endAction").toString(), QStringLiteral("repeat"));
}

void ThreeSlotShow::stillIsDippedTo()
{
    QVERIFY(cue(Green));
    QVERIFY(choose(transition(QStringLiteral("Dip")), transitions));
    take();
    bool isDark = false; // neither picture
    QTRY_VERIFY_WITH_TIMEOUT(
        [&] {
            const QColor marker =
                markerOf(m_robot.grab(QStringLiteral("Program-PlaybackWidget-PreviewWidget")));
            isDark = isDark || (marker.green() < 50 && marker.blue() < 50);
            return isOf(Green, marker);
        }(),
        10000);
    QVERIFY2(isDark, "the dip was none");
    QTRY_COMPARE(sceneOf(program, "media").toString(), QStringLiteral("brume://collections/1/slots/3"));
}

/// In a column with room the fader stands open.
void ThreeSlotShow::turnDownBesideTheMeter()
{
    const QString fader = QStringLiteral("Program-PlaybackWidget-Footer-Fader");
    if (isMouse()) {
        QVERIFY(m_robot.click(fader)); // on the groove, below its upper end
        QTRY_VERIFY(sceneOf(program, "volume").toDouble() < 0.5);
    } else {
        m_robot.ask({{"operation", "focus"}, {"objectName", fader}});
        for (int i = 0; i < 6; ++i)
            m_robot.key(QStringLiteral("Left"));
        QTRY_COMPARE(sceneOf(program, "volume").toDouble(), std::pow(10.0, -6 / 20.0));
    }
    QCOMPARE(sceneOf(preview, "volume").toDouble(), 1.0);
}

void ThreeSlotShow::soundIsMutedAndTurnedDown()
{
    for (const bool muted : {true, false}) {
        if (isMouse())
            QVERIFY(m_robot.click(QStringLiteral("Program-PlaybackWidget-Header-Mute")));
        else
            press(QStringLiteral("mute_program"));
        QTRY_COMPARE(sceneOf(program, "muted").toBool(!muted), muted);
    }
    QCOMPARE(sceneOf(program, "volume").toDouble(), 1.0);
    if (!m_robot.find(volumeButton)["visible"].toBool()) {
        turnDownBesideTheMeter();
        return;
    }
    QVERIFY(push(volumeButton));
    QVERIFY(!m_robot.waitFor(volumePopup).isEmpty());
    if (isMouse()) {
        QVERIFY(m_robot.click(volumePopup + QStringLiteral("-Slider"))); // in the middle of it
        QTRY_VERIFY(sceneOf(program, "volume").toDouble() < 0.1);
        QVERIFY(sceneOf(program, "volume").toDouble() > 0.0);
    } else {
        for (int i = 0; i < 6; ++i)
            m_robot.key(QStringLiteral("Down"));
        QTRY_COMPARE(sceneOf(program, "volume").toDouble(), std::pow(10.0, -6 / 20.0));
    }
    m_robot.key(QStringLiteral("Esc"));
    QTRY_VERIFY(!m_robot.find(volumePopup)["visible"].toBool());
    QCOMPARE(sceneOf(preview, "volume").toDouble(), 1.0);
}

/// After a click the key of play and pause is the clicked channel's, wherever inside it the click was; in a
/// text field a blank is a blank.
void ThreeSlotShow::blankGoesWhereTheClickWas()
{
    const auto state = [this](const QString& channel) { return sceneOf(channel, "state").toString(); };
    const QString picture = QStringLiteral("%1-PlaybackWidget-PreviewWidget");
    const QString search = QStringLiteral("MediaPanel-search");
    QVERIFY(cue(Red));
    QVERIFY(choose(transition(QStringLiteral("DirectCut")), transitions));
    QVERIFY(choose(copyButton, {swapButton}));
    take();
    QVERIFY(shows(program, Red));
    m_robot.key(QStringLiteral("Ctrl+L")); // locked, program would take neither click nor key
    QTRY_VERIFY(m_robot.find(program + QStringLiteral("-PlaybackControls-Play"))["enabled"].toBool());
    for (const QString& channel : {program, preview}) {
        for (const QString& spot :
             {picture.arg(channel), channel + QStringLiteral("-PlaybackControls-Pause")}) {
            QVERIFY(m_robot.click(channel + QStringLiteral("-PlaybackControls-Play")));
            QTRY_COMPARE(state(channel), QStringLiteral("play"));
            QVERIFY(m_robot.click(spot));
            const bool isPaused = spot != picture.arg(channel);
            QTRY_COMPARE(state(channel), isPaused ? QStringLiteral("pause") : QStringLiteral("play"));
            press(QStringLiteral("play_pause"));
            QTRY_COMPARE(state(channel), isPaused ? QStringLiteral("play") : QStringLiteral("pause"));
        }
    }
    const QString before = state(preview);
    QVERIFY(m_robot.click(search));
    m_robot.type(QStringLiteral("m k"));
    QCOMPARE(m_robot.text(search), QStringLiteral("m k"));
    QCOMPARE(state(preview), before);
    QVERIFY(!sceneOf(program, "muted").toBool());
}

HALCYRA_TEST(ThreeSlotShow)
#include "threeslotshow.moc"

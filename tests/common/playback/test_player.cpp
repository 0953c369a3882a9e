#include "common/media/guimediaslot.h"
#include "common/media/medialibraryprovider.h"
#include "common/media/playbackmodel.h"
#include "common/playback/audiooutputitem.h"
#include "common/playback/durationeditwidget.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/mutebutton.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/seekslider.h"
#include "common/playback/takebutton.h"
#include "common/playback/takecontrols.h"
#include "common/playback/timecodedisplay.h"
#include "common/playback/timecodeedit.h"
#include "common/session/guiplayback.h"
#include "common/session/sceneobjectprovider.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/doubleedit.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/switchselect.h"
#include "tarn/media/medialibrary.h"
#include "tests/common/playback/playerfixture.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QUndoStack>

using namespace vantrel;
using namespace vantrel::test;

namespace {

QByteArray quoted(const char* text)
{
    return QByteArray("\"") + text + '"';
}

/// The names of the widgets that were painted since the last call, in order.
class PaintedWidgets : public QObject
{
public:
    PaintedWidgets() { qApp->installEventFilter(this); }
    QStringList take() { return std::exchange(m_names, {}); }

private:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && watched->isWidgetType())
            m_names.append(watched->objectName());
        return false;
    }

    QStringList m_names;
};

} // namespace

class TestPlayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PlayerFixture>();
        configuration()->clear();
    }
    void cleanup() { m_fixture.reset(); }

    void saysThatThereIsNoServer()
    {
        const auto titles = [this] {
            QStringList texts;
            for (const ZTLabel* label : m_fixture->view->findChildren<ZTLabel*>())
                if (label->isVisible())
                    texts.append(label->text());
            return texts;
        };
        QVERIFY(titles().contains(QStringLiteral("Not connected")));
        QVERIFY(m_fixture->connect());
        QTRY_VERIFY(m_fixture->channel()->isVisible());
        QVERIFY(!titles().contains(QStringLiteral("Not connected")));
        const ChannelWidget* channel = m_fixture->channel();
        m_fixture->peer.send("[{\"op\":\"remove\",\"path\":\"/device/channels/0\"}]");
        QTRY_VERIFY(!m_fixture->channel());
        QVERIFY(titles().contains(QStringLiteral("Waiting for the server")));
        // A channel that comes in its place need not be built.
        m_fixture->peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        QTRY_COMPARE(m_fixture->channel(), channel);
        m_fixture->peer.send(R"([{"op":"remove","path":"/device/channels/0"},
                                 {"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        m_fixture->set("program", "muted", "true");
        QTRY_VERIFY(channel->programWidget()->muteButton()->isMuted());
        QVERIFY(!channel->isHidden());
    }

    void headerNamesWhatPlays_data()
    {
        QTest::addColumn<QByteArray>("media");
        QTest::addColumn<QString>("location");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        QTest::newRow("slot") << quoted("brume://collections/1/slots/1") << "1-1:"
                              << "Walk-in" << true;
        QTest::newRow("entry") << quoted("brume://playlists/2/entries/5.1") << "5.1:"
                               << "Walk-in" << true;
        QTest::newRow("no name") << quoted("brume://collections/1/slots/3") << "1-3:"
                                 << "Unnamed media" << true;
        QTest::newRow("no such slot") << quoted("brume://collections/7/slots/1") << ""
                                      << "" << false;
        QTest::newRow("nothing") << quoted("") << ""
                                 << "" << false;
    }
    void headerNamesWhatPlays()
    {
        QFETCH(QByteArray, media);
        QVERIFY(connectWithLibrary());
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/2"));
        QTRY_VERIFY(m_fixture->channel()->previewWidget()->hasValidMedia());
        m_fixture->set("preview", "media", media);
        const auto* label = m_fixture->part<ZTLabel>("Preview-PlaybackWidget-Header-MediaLocation");
        const auto* nameLabel = m_fixture->part<ElidedLabel>("Preview-PlaybackWidget-Header-MediaName");
        QFETCH(QString, location);
        QFETCH(QString, name);
        QFETCH(bool, valid);
        QTRY_COMPARE(nameLabel->text(), name);
        QCOMPARE(label->text(), location);
        QCOMPARE(m_fixture->channel()->previewWidget()->hasValidMedia(), valid);
        QCOMPARE(m_fixture->channel()->previewWidget()->controls()->isEnabled(), valid);
    }

    void timesReachTheWidgets()
    {
        QVERIFY(connectWithLibrary());
        m_fixture->set("program", "mediaPosition", "7.5"); // before its media: the range comes late
        m_fixture->set("program", "media", quoted("brume://collections/1/slots/1"));
        const SeekSlider* slider = m_fixture->channel()->programWidget()->slider();
        QTRY_COMPARE(slider->outpoint(), 8.0);
        QCOMPARE(slider->inpoint(), 1.0);
        QCOMPARE(slider->duration(), 10.0);
        QTRY_COMPARE(slider->position(), 7.5);
        const auto* left =
            m_fixture->part<TimecodeDisplay>("Program-PlaybackWidget-PlaybackTimecodes-Remaining");
        QCOMPARE(left->text(), QStringLiteral("00:00:00.500"));
    }

    void aPictureRepaintsNothingElse()
    {
        StyleSheet::apply(*qApp);
        QVERIFY(m_fixture->connect());
        auto* picture = m_fixture->part<PlaybackPreview>("Preview-PlaybackWidget-PreviewWidget");
        QVERIFY(QTest::qWaitForWindowExposed(m_fixture->view.get()));
        PaintedWidgets painted;
        PreviewFrame frame;
        frame.source = "/device/channels/0/preview";
        const auto onlyThePicture = [&] { // once the window has come to rest
            painted.take();
            picture->onFrame(frame, QPixmap(480, 270));
            QStringList names;
            return QTest::qWaitFor([&] {
                       names += painted.take();
                       return names.contains(picture->objectName());
                   }) &&
                   !names.contains(QStringLiteral("Preview-PlaybackWidget"));
        };
        QVERIFY(QTest::qWaitFor(onlyThePicture));
        qApp->setStyleSheet({});
    }

    void takeCarriesTheOptions_data()
    {
        QTest::addColumn<QStringList>("buttons");
        QTest::addColumn<double>("duration");
        QTest::addColumn<QString>("arguments");
        QTest::newRow("as installed") << QStringList() << 1.0
                                      << "{\"playheadOption\":\"inpoint\",\"presetToggle\":true,"
                                         "\"transitionDuration\":1.0,\"transitionType\":\"crossfade\"}";
        QTest::newRow("direct cut from current")
            << QStringList{QStringLiteral("DirectCut"), QStringLiteral("Current")} << 2.5
            << "{\"playheadOption\":\"position\",\"presetToggle\":true,\"transitionDuration\":2.5,"
               "\"transitionType\":\"directCut\"}";
        QTest::newRow("dip and copy") << QStringList{QStringLiteral("Dip"), QStringLiteral("Copy")} << 99.0
                                      << "{\"playheadOption\":\"inpoint\",\"presetToggle\":false,"
                                         "\"transitionDuration\":10.0,\"transitionType\":\"dipToColor\"}";
    }
    void takeCarriesTheOptions()
    {
        QFETCH(QStringList, buttons);
        QFETCH(double, duration);
        QFETCH(QString, arguments);
        QVERIFY(m_fixture->connect());
        m_fixture->channel()->takeControls()->setTakeDuration(duration);
        for (const QString& name : buttons)
            m_fixture->part<QAbstractButton>(qPrintable(QStringLiteral("TakeControls-%1-Button").arg(name)))
                ->click();
        m_fixture->takeSent();
        m_fixture->part<TakeButton>("TakeControls-Take-Button")->click();
        QCOMPARE(m_fixture->waitForSent(),
                 QStringLiteral("invoke /device/channels/0/methods/take ") + arguments);
        QVERIFY(!m_fixture->peer.session->getQUndoStack()->canUndo()); // time cannot be undone
    }

    void takeProgressComesFromTheProgram()
    {
        QVERIFY(m_fixture->connect());
        m_fixture->set("program", "takeProgress", "0.5");
        QTRY_COMPARE(m_fixture->part<TakeButton>("TakeControls-Take-Button")->takeProgress(), 0.5);
    }

    void takeOptionsStandInTheirGroup()
    {
        {
            TakeControls controls;
            QCOMPARE(controls.getConfigGroup(), QStringLiteral("Playback_default"));
            QCOMPARE(controls.takeTransition(), TakeTransitionType::Crossfade);
            QCOMPARE(controls.transitionFrom(), PlayheadOption::FromInpoint);
            QCOMPARE(controls.takeDuration(), 1.0);
            QVERIFY(controls.takePreset());
            controls.findChild<QAbstractButton*>(QStringLiteral("TakeControls-Dip-Button"))->click();
            controls.findChild<QAbstractButton*>(QStringLiteral("TakeControls-Copy-Button"))->click();
            controls.setTakeDuration(3.5);
        }
        configuration()->sync();
        TakeControls controls; // reads what the file holds
        QCOMPARE(controls.takeTransition(), TakeTransitionType::DipToColor);
        QVERIFY(!controls.takePreset());
        QCOMPARE(controls.takeDuration(), 3.5);

        const Ref<Object> channel(TypeInfo::instantiate("Channel"));
        controls.setObject(channel.get(), m_fixture->peer.session->getScene());
        QCOMPARE(controls.getConfigGroup(), QStringLiteral("Playback_0"));
        QCOMPARE(controls.takeTransition(), TakeTransitionType::Crossfade);
        QVERIFY(controls.takePreset());

        configuration()->beginGroup(QStringLiteral("Playback_0"));
        configuration()->setValue(TAKE_TRANSITION, 17); // no such transition
        configuration()->endGroup();
        controls.setTransitionType(TakeTransitionType::DirectCut);
        controls.restoreButtonStates();
        QCOMPARE(controls.takeTransition(), TakeTransitionType::DirectCut);
    }

    void directCutHasNoDuration()
    {
        TakeControls controls;
        const auto* duration = controls.findChild<DoubleEdit*>(QStringLiteral("TakeControls-Duration"));
        controls.setTakeDuration(4.0);
        const auto* summary = controls.findChild<ZTLabel*>(QStringLiteral("TakeControls-Summary"));
        QCOMPARE(summary->text(), QStringLiteral("Crossfade\nfrom in point"));
        controls.findChild<QAbstractButton*>(QStringLiteral("TakeControls-DirectCut-Button"))->click();
        QCOMPARE(summary->text(), QStringLiteral("Direct cut\nfrom in point"));
        QVERIFY(duration->isReadOnly());
        controls.findChild<QAbstractButton*>(QStringLiteral("TakeControls-Crossfade-Button"))->click();
        QVERIFY(!duration->isReadOnly());
        QCOMPARE(controls.takeDuration(), 4.0);
    }

    void returnLeavesTheDuration()
    {
        TakeControls controls;
        controls.show();
        controls.activateWindow();
        auto* duration = controls.findChild<DoubleEdit*>(QStringLiteral("TakeControls-Duration"));
        duration->setFocus(Qt::TabFocusReason);
        QTRY_VERIFY(duration->hasFocus());
        QTest::keyClicks(duration, QStringLiteral("2"));
        QTest::keyClick(duration, Qt::Key_Return);
        QVERIFY(!duration->hasFocus());
        QCOMPARE(duration->text(), QStringLiteral("2.0 s"));
        QCOMPARE(controls.takeDuration(), 2.0);
    }

    /// What the server tells of itself is not sent back when the focus leaves what shows it.
    void tellsTheServerNothingOfItself()
    {
        QVERIFY(m_fixture->connect());
        m_fixture->view->activateWindow();
        m_fixture->set("program", "takeProgress", "1.5");
        m_fixture->set("program", "resourceConstrained", "true");
        auto* take = m_fixture->part<TakeButton>("TakeControls-Take-Button");
        QTRY_COMPARE(take->takeProgress(), 1.0);
        QWidget* program = m_fixture->channel()->programWidget();
        m_fixture->takeSent();
        for (QWidget* widget : {static_cast<QWidget*>(take), program}) {
            widget->setFocus(Qt::TabFocusReason);
            QTRY_VERIFY(widget->hasFocus());
            QTest::keyClick(widget, Qt::Key_Tab);
            QTRY_VERIFY(!widget->hasFocus());
        }
        take->click();
        const QString sent = m_fixture->waitForSent();
        QVERIFY2(sent.startsWith(QStringLiteral("invoke")) && !sent.contains(u'\n'), qPrintable(sent));
    }

    /// While there is no server nothing can be set, and what was being done ends.
    void lostServerTakesTheControlsAway()
    {
        QVERIFY(connectWithLibrary());
        m_fixture->view->activateWindow();
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        m_fixture->set("preview", "state", quoted("play"));
        PlaybackWidget* preview = m_fixture->channel()->previewWidget();
        QTRY_VERIFY(preview->hasValidMedia());
        QTRY_COMPARE(preview->slider()->outpoint(), 8.0);
        auto* take = m_fixture->part<TakeButton>("TakeControls-Take-Button");
        take->setFocus(Qt::TabFocusReason);
        QTRY_VERIFY(take->hasFocus());
        QTest::mousePress(take, Qt::LeftButton);
        auto* popup = m_fixture->part<QWidget>("Preview-PlaybackWidget-Footer-VolumePopup");
        popup->show();

        QSignalSpy sought(preview->slider(), &SeekSlider::seekEnding);
        QTest::mousePress(preview->slider(), Qt::LeftButton, {}, preview->slider()->rect().center());
        m_fixture->peer.link.socket->disconnectFromHost();
        QTRY_VERIFY(!take->isEnabled());
        QVERIFY(!take->isDown());
        QVERIFY(!popup->isVisible());
        QCOMPARE(sought.size(), 1);
        QVERIFY(!QApplication::focusWidget());
        QVERIFY(!preview->controls()->isEnabled());
        QVERIFY(hasText(QStringLiteral("Connection lost. What you see is the last known state.")));

        // Only with the new state in place.
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->peer.session->isConnected(), 10000);
        QTRY_VERIFY(hasText(QStringLiteral("Connected again. Reading the state of the server.")));
        QVERIFY(!m_fixture->part<TakeButton>("TakeControls-Take-Button")->isEnabled());
        m_fixture->peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        QTRY_VERIFY(m_fixture->part<TakeButton>("TakeControls-Take-Button")->isEnabled());
    }

    void takeWithoutAChannelIsLogged()
    {
        TakeControls controls;
        allowWarnings(QStringLiteral("object"));
        expectWarning(QStringLiteral("Failed to init take command"));
        controls.handleTake();
    }

    void transportGoesToTheScene_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("sent");
        QTest::newRow("play") << "Play"
                              << "replace /device/channels/0/preview/properties/state \"play\"";
        QTest::newRow("pause") << "Pause"
                               << "replace /device/channels/0/preview/properties/state \"pause\"";
        QTest::newRow("previous") << "Previous"
                                  << "invoke /device/channels/0/preview/methods/prevMedia {}";
        QTest::newRow("next") << "Next"
                              << "invoke /device/channels/0/preview/methods/nextMedia {}";
        QTest::newRow("to in") << "SeekInpoint"
                               << "invoke /device/channels/0/preview/methods/seekInpoint {}";
        QTest::newRow("to out") << "SeekOutpoint"
                                << "invoke /device/channels/0/preview/methods/seekOutpoint {}";
    }
    void transportGoesToTheScene()
    {
        QFETCH(QString, button);
        QVERIFY(connectWithLibrary());
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        auto* target = m_fixture->part<QAbstractButton>(
            qPrintable(QStringLiteral("Preview-PlaybackControls-%1").arg(button)));
        QTRY_VERIFY(target->isEnabled());
        m_fixture->takeSent();
        target->click();
        QTEST(m_fixture->waitForSent(), "sent");
    }

    void commandsWithoutAChannelAreLogged()
    {
        PlaybackControls controls(Preview);
        allowWarnings(QStringLiteral("No object set"));
        using Slot = void (PlaybackControls::*)();
        for (const auto& [slot, name] : std::initializer_list<std::pair<Slot, const char*>>{
                 {&PlaybackControls::handleSeekInpoint, "seek inpoint"},
                 {&PlaybackControls::handleSeekOutpoint, "seekOutpoint"},
                 {&PlaybackControls::handlePrevious, "prevMedia"},
                 {&PlaybackControls::handleNext, "nextMedia"},
                 {&PlaybackControls::handleNextFrame, "StepCommand"}}) {
            expectWarning(QStringLiteral("Failed to init ") + QLatin1String(name));
            (controls.*slot)();
        }
        expectWarning(QStringLiteral("Failed to init SeekCommand"));
        controls.handleSeekPosition(1.0);
    }

    void emptyChannelsSayWhatToDo()
    {
        QVERIFY(connectWithLibrary());
        const auto* hint = m_fixture->part<QWidget>("Preview-PlaybackWidget-Hint");
        QVERIFY(hint->isVisible());
        QCOMPARE(hint->size(), hint->parentWidget()->size());
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        QTRY_VERIFY(!hint->isVisible());
        QVERIFY(m_fixture->part<QWidget>("Program-PlaybackWidget-Hint")->isVisible());
    }

    void playedSlotIsThatOfTheEntry()
    {
        QVERIFY(connectWithLibrary());
        const PlaybackWidget* preview = m_fixture->channel()->previewWidget();
        QVERIFY(preview->getPlayedSlotUrl().isEmpty());
        m_fixture->set("preview", "media", quoted("brume://playlists/2/entries/5.1"));
        QTRY_VERIFY(preview->hasValidMedia());
        QVERIFY(preview->getPlayedSlotUrl().isEmpty()); // of no source mode yet
        m_fixture->set("preview", "sourceMode", "2");
        QTRY_COMPARE(preview->getPlayedSlotUrl(), QUrl(QStringLiteral("brume://collections/1/slots/1")));
        m_fixture->set("preview", "sourceMode", "1");
        QTRY_COMPARE(preview->getPlayedSlotUrl(), QUrl(QStringLiteral("brume://playlists/2/entries/5.1")));
    }

    void framesStep()
    {
        QVERIFY(m_fixture->connect());
        m_fixture->takeSent();
        m_fixture->channel()->previewWidget()->controls()->handlePrevFrame();
        QCOMPARE(m_fixture->waitForSent(),
                 QStringLiteral("invoke /device/channels/0/preview/methods/step {\"frameCount\":-1}"));
    }

    void stateComesFromTheScene()
    {
        QVERIFY(m_fixture->connect());
        PlaybackControls* controls = m_fixture->channel()->programWidget()->controls();
        const auto* play = m_fixture->part<QAbstractButton>("Program-PlaybackControls-Play");
        const auto* stop = m_fixture->part<QAbstractButton>("Program-PlaybackControls-Stop");
        QVERIFY(stop->isChecked());
        m_fixture->set("program", "state", quoted("play"));
        QTRY_VERIFY(play->isChecked());
        QVERIFY(!stop->isChecked());
        QSignalSpy done(controls, &PlaybackControls::stateChangeDone);
        expectWarning(QStringLiteral("Unknown state \"bogus\""));
        controls->setState(QStringLiteral("bogus"));
        QCOMPARE(done.size(), 1);
        QVERIFY(play->isChecked());
        QVERIFY(!m_fixture->part<QAbstractButton>("Program-PlaybackControls-SetInpoint")->isVisible());
    }

    void seekGestureKeepsPlaying_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("play") << "play"
                              << "play";
        QTest::newRow("pause") << "pause"
                               << "pause";
        QTest::newRow("stop") << "stop"
                              << "pause";
    }
    void seekGestureKeepsPlaying()
    {
        QFETCH(QString, before);
        PlaybackControls controls(Preview);
        controls.setState(before);
        QSignalSpy told(&controls, &PlaybackControls::stateChanged);
        controls.handleSeekStarting();
        QCOMPARE(controls.state(), QStringLiteral("pause"));
        controls.handleSeekEnding();
        QTEST(controls.state(), "after");
        QCOMPARE(told.size(), 2);
    }

    void sliderSeeks()
    {
        QVERIFY(connectWithLibrary());
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        SeekSlider* slider = m_fixture->channel()->previewWidget()->slider();
        QTRY_COMPARE(slider->outpoint(), 8.0);
        m_fixture->takeSent();
        Q_EMIT slider->seekPosition(5.0);
        QCOMPARE(
            m_fixture->waitForSent(),
            QStringLiteral("invoke /device/channels/0/preview/methods/seekMedia {\"mediaPosition\":5.0}"));
    }

    void muteIsACommand()
    {
        QVERIFY(m_fixture->connect());
        auto* mute = m_fixture->view->findChild<MuteButton*>();
        m_fixture->takeSent();
        mute->click();
        QCOMPARE(m_fixture->waitForSent(),
                 QStringLiteral("replace /device/channels/0/program/properties/muted true"));
        m_fixture->peer.session->getQUndoStack()->undo();
        QVERIFY(!mute->isMuted());
        m_fixture->set("program", "muted", "true");
        QTRY_VERIFY(mute->isMuted());
    }

    void stillsHaveTheirOwnControls()
    {
        QVERIFY(connectWithLibrary());
        m_fixture->set("preview", "sourceMode", "1");
        for (const char* channel : {"preview", "program"})
            m_fixture->set(channel, "media", quoted("brume://collections/1/slots/2"));
        auto* edit = m_fixture->part<DurationEditWidget>("Preview-PlaybackWidget-DurationEdit");
        const auto* programEdit = m_fixture->part<DurationEditWidget>("Program-PlaybackWidget-DurationEdit");
        QTRY_VERIFY(edit->isVisible());
        QTRY_VERIFY(programEdit->isVisible());
        QVERIFY(edit->isEnabled());
        QVERIFY(!programEdit->isEnabled());
        QCOMPARE(programEdit->durationSeconds(), 12.3);
        QVERIFY(!m_fixture->part<QWidget>("Preview-PlaybackWidget-EndpointTimecodes")->isVisible());
        QVERIFY(!m_fixture->part<QWidget>("Preview-PlaybackControls-SeekInpoint")->isEnabled());

        QSignalSpy told(m_fixture->channel()->previewWidget(), &PlaybackWidget::stillImageDurationChanged);
        m_fixture->part<QAbstractButton>("Preview-PlaybackWidget-DurationEdit-Input-infinite-duration-button")
            ->click();
        QTRY_COMPARE(m_fixture->patches.size(), 1);
        QVERIFY2(m_fixture->patches.first().contains("infinite"), m_fixture->patches.first().constData());
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.first().at(1).toBool(), true);
    }

    void infiniteStillsHaveNoEnd()
    {
        m_fixture->stillDurationType = "infinite";
        QVERIFY(connectWithLibrary());
        m_fixture->set("preview", "sourceMode", "1");
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/2"));
        const auto* edit = m_fixture->part<DurationEditWidget>("Preview-PlaybackWidget-DurationEdit");
        QTRY_VERIFY(edit->isVisible());
        QCOMPARE(edit->durationType(), DurationTypeWidget::Infinite);
        QVERIFY(!m_fixture->part<QWidget>("Preview-PlaybackWidget-PlaybackTimecodes-Remaining")->isVisible());
        QVERIFY(
            !m_fixture->part<QWidget>("Preview-PlaybackWidget-Footer-EndAction-stop-button")->isEnabled());
        QVERIFY(!m_fixture->part<QWidget>("Preview-PlaybackWidget-SeekSlider-inMarker")->isVisible());
    }

    void constrainedPreviewRefusesDrops()
    {
        QVERIFY(connectWithLibrary());
        m_fixture->set("preview", "resourceConstrained", "true");
        m_fixture->set("program", "resourceConstrained", "true");
        PlaybackWidget* preview = m_fixture->channel()->previewWidget();
        QTRY_VERIFY(preview->preview()->isResourceConstrained());
        m_fixture->takeSent();
        auto slot = std::make_shared<GuiMediaSlot>();
        slot->setAddress({1, 2});
        preview->handleDragAndDrop(slot);
        m_fixture->channel()->programWidget()->handleDragAndDrop(slot); // never refused
        QCOMPARE(m_fixture->waitForSent(),
                 QStringLiteral("invoke /device/channels/0/program/methods/playMedia "
                                "{\"mediaUrl\":\"brume://collections/1/slots/2\"}"));
    }

    void audioDevicesAreChosen()
    {
        AudioOutputItem item;
        item.show();
        auto* program = item.findChild<SwitchSelect*>(QStringLiteral("programAudioOutputSwitch"));
        const auto* message = item.findChild<QWidget*>(QStringLiteral("danteEnabledMessage"));
        QVERIFY(!program->isEnabled());
        QVERIFY(m_fixture->connect());
        QVERIFY(program->isEnabled());
        QVERIFY(item.title().contains(QStringLiteral("127.0.0.1")));
        m_fixture->set("program", "audioDevice", quoted("xlr"));
        QTRY_COMPARE(program->value().toInt(), 2);
        QVERIFY(!message->isVisible());
        m_fixture->takeSent();
        program->button(3)->click();
        QCOMPARE(m_fixture->waitForSent(),
                 QStringLiteral(
                     "invoke /device/channels/0/program/methods/selectAudioDevice {\"device\":\"dante\"}"));
        QVERIFY(message->isVisible());
    }

    void endActionOfAPlayingEntryIsAlsoThePlaylists()
    {
        QVERIFY(connectWithLibrary());
        PlaybackModel* model = m_fixture->peer.session->previewPlaybackModel();
        QVERIFY(QMetaType::fromName("EndActionMode").isValid());
        m_fixture->set("preview", "media", quoted("brume://playlists/2/entries/5.1"));
        m_fixture->set("preview", "sourceMode", "2");
        QTRY_COMPARE(model->index(0, PlaybackModel::SourceModeColumn).data().toInt(), 2);
        const auto endAction = model->index(0, PlaybackModel::EndActionColumn);
        m_fixture->set("preview", "endAction", quoted("pause")); // what the server tells is no edit
        QTRY_COMPARE(endAction.data().toInt(), 1);
        m_fixture->part<QAbstractButton>("Preview-PlaybackWidget-Footer-EndAction-repeat-button")->click();
        QTRY_COMPARE(m_fixture->patches.size(), 1);
        QVERIFY2(m_fixture->patches.first().contains("/playlists/2/entries/5.1") &&
                     m_fixture->patches.first().contains("repeat"),
                 m_fixture->patches.first().constData());
        QCOMPARE(endAction.data().toInt(), 3);

        // The numbers of the playing entry are put aside from outside, one by one.
        QVERIFY(model->setData(model->index(0, PlaybackModel::PlaylistNumberColumn), {}));
        QVERIFY(model->setData(model->index(0, PlaybackModel::EntryAddressColumn), {}));
        QCOMPARE(model->index(0, PlaybackModel::PlaylistNumberColumn).data().toUInt(), 0u);
        QCOMPARE(model->index(0, PlaybackModel::EntryAddressColumn).data().toString(), QString());
    }

    void bothEndPointsMoveAtOnce()
    {
        QVERIFY(connectWithLibrary());
        m_fixture->set("preview", "sourceMode", "1");
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1")); // 1 to 8 of 10 s
        const auto* slider = m_fixture->part<SeekSlider>("Preview-PlaybackWidget-SeekSlider");
        QTRY_COMPARE(slider->outpoint(), 8.0);
        // The new in point lies behind the earlier out point, which is still there when it comes.
        MediaLibrary* library = m_fixture->peer.session->mediaLibraryProvider()->mediaLibrary();
        library->findSlot(1, 1)->setInpoint(8.5);
        library->findSlot(1, 1)->setOutpoint(9.5);
        m_fixture->peer.session->mediaLibraryProvider()->onSlotChanged({1, 1});
        QTRY_COMPARE(slider->outpoint(), 9.5);
        QCOMPARE(slider->inpoint(), 8.5);
    }

    void modelJoinsSceneAndLibrary()
    {
        QVERIFY(connectWithLibrary());
        PlaybackModel* model = m_fixture->peer.session->previewPlaybackModel();
        QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        const auto cell = [model](int column) { return model->index(0, column).data(); };
        QCOMPARE(cell(PlaybackModel::EndActionModeColumn).toInt(), int(PlaybackModel::DISABLED));
        m_fixture->set("preview", "sourceMode", "2");
        m_fixture->set("preview", "endAction", quoted("stop"));
        m_fixture->set("preview", "media", quoted("brume://playlists/2/entries/5.1"));
        QTRY_COMPARE(cell(PlaybackModel::EntryAddressColumn).toString(), QStringLiteral("5.1"));
        QCOMPARE(cell(PlaybackModel::PlaylistNumberColumn).toUInt(), 2u);
        QCOMPARE(cell(PlaybackModel::EndActionColumn).toInt(), 2);
        QCOMPARE(cell(PlaybackModel::EndActionModeColumn).toInt(), int(PlaybackModel::ENTRY));
        QCOMPARE(cell(PlaybackModel::OutpointColumn).toDouble(), 8.0);
        QVERIFY(!cell(PlaybackModel::ReservedColumn).isValid());

        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/3"));
        m_fixture->set("preview", "sourceMode", "1");
        QTRY_COMPARE(cell(PlaybackModel::EndActionModeColumn).toInt(), int(PlaybackModel::SLOT));
        QTRY_COMPARE(cell(PlaybackModel::OutpointColumn).toDouble(),
                     4.0); // the duration where no out point is
        QCOMPARE(cell(PlaybackModel::PlaylistNumberColumn).toUInt(), 0u);

        QVERIFY(model->setData(model->index(0, PlaybackModel::EndActionColumn), 3)); // a slot has none
        QCOMPARE(m_fixture->peer.session->sceneObjectProvider()->previewPlayback()->endAction(),
                 EndAction::Repeat);
        QVERIFY(model->setData(model->index(0, PlaybackModel::InpointColumn), 1.5));
        QTRY_COMPARE(m_fixture->patches.size(), 1); // and nothing of what the server told before
        QVERIFY(!model->setData(model->index(0, PlaybackModel::DurationColumn), 1.0));
    }

private:
    bool hasText(const QString& text) const
    {
        const QList<ZTLabel*> labels = m_fixture->view->findChildren<ZTLabel*>();
        return std::ranges::any_of(
            labels, [&](const ZTLabel* label) { return label->isVisible() && label->text() == text; });
    }

    /// Connected, with the library read.
    bool connectWithLibrary()
    {
        return m_fixture->connect() && QTest::qWaitFor([this] {
                   return m_fixture->peer.session->mediaLibraryProvider()->slot({1, 1}) != nullptr;
               });
    }

    std::unique_ptr<PlayerFixture> m_fixture;
};

HALCYRA_TEST(TestPlayer)
#include "test_player.moc"

#include "common/command/setcommand.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/models/playbackmodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/outputs/audiooutputitem.h"
#include "common/playback/durationeditwidget.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/mutebutton.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/seekslider.h"
#include "common/playback/volumeslider.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/ui/timecode/timecodeedit.h"
#include "common/ui/toolkit/doubleedit.h"
#include "common/ui/toolkit/switchselect.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tests/common/playback/playerfixture.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QUndoStack>

#include <algorithm>

using namespace vantrel;
using namespace vantrel::test;

/// What a channel's controls do to the scene and the library, and what those make of the controls.
class TestChannelControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PlayerFixture>();
        configuration()->clear();
    }
    void cleanup() { m_fixture.reset(); }

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
        QVERIFY(m_fixture->connectWithLibrary());
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        auto* target = m_fixture->part<QAbstractButton>(
            qPrintable(QStringLiteral("Preview-PlaybackControls-%1").arg(button)));
        QTRY_VERIFY(target->isEnabled());
        m_fixture->takeSent();
        target->click();
        QFETCH(QString, sent);
        QStringList all; // what is late of the connection may come first
        QVERIFY2(QTest::qWaitFor([&] {
                     all += m_fixture->takeSent().split(u'\n', Qt::SkipEmptyParts);
                     return all.contains(sent);
                 }),
                 qPrintable(QStringLiteral("%1, button enabled: %2")
                                .arg(all.join(QStringLiteral(" | ")))
                                .arg(target->isEnabled())));
    }

    /// Its steps are on their way at once, and one step back undoes them all; the next gesture is another.
    void aGestureOfTheVolumeIsOneStepBack()
    {
        QVERIFY(m_fixture->connect());
        const QString volume = QStringLiteral("replace /device/channels/0/program/properties/volume ");
        auto* slider = m_fixture->part<VolumeSlider>("Program-PlaybackWidget-Footer-VolumePopup-Slider");
        QUndoStack* stack = m_fixture->peer.session->getQUndoStack();
        m_fixture->takeSent();
        for (const int decibels : {-6, -12, -60})
            slider->setValue(decibels);
        QString sent;
        QTRY_COMPARE((sent += m_fixture->takeSent() + u'\n').count(volume), 3);
        QCOMPARE(stack->count(), 1);
        const auto* gesture = dynamic_cast<const SetCommand*>(stack->command(0));
        QVERIFY(gesture && gesture->isMergeable());
        QTRY_VERIFY(!gesture->isMergeable()); // it has ended
        slider->setValue(-20);
        QCOMPARE(stack->count(), 2);
        stack->undo();
        QCOMPARE(slider->value(), -60);
        stack->undo();
        QCOMPARE(slider->value(), 0);
        QTRY_VERIFY((sent += m_fixture->takeSent()).endsWith(volume + QStringLiteral("1.0")));
        QVERIFY(!stack->canUndo());
    }

    void commandsWithoutAChannelAreLogged()
    {
        PlaybackControls controls(Preview, m_fixture->peer.session->getQUndoStack());
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
        QVERIFY(m_fixture->connectWithLibrary());
        const auto* hint = m_fixture->part<QWidget>("Preview-PlaybackWidget-Hint");
        QVERIFY(hint->isVisible());
        QCOMPARE(hint->size(), hint->parentWidget()->size());
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        QTRY_VERIFY(!hint->isVisible());
        QVERIFY(m_fixture->part<QWidget>("Program-PlaybackWidget-Hint")->isVisible());
    }

    void playedSlotIsThatOfTheEntry()
    {
        QVERIFY(m_fixture->connectWithLibrary());
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
        PlaybackControls controls(Preview, m_fixture->peer.session->getQUndoStack());
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
        QVERIFY(m_fixture->connectWithLibrary());
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
        QVERIFY(m_fixture->connectWithLibrary());
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

    /// What the server refuses may be asked for again, and until then the screen shows what there is.
    void refusedEditsDoNotStand()
    {
        allowWarnings(QStringLiteral("Redo failed!"));
        m_fixture->refusal = 507;
        QVERIFY(m_fixture->connectWithLibrary());
        m_fixture->set("preview", "sourceMode", "1");
        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/1"));
        m_fixture->set("preview", "mediaPosition", "3.0");
        const auto* slider = m_fixture->part<SeekSlider>("Preview-PlaybackWidget-SeekSlider");
        auto* setOutpoint = m_fixture->part<QAbstractButton>("Preview-PlaybackControls-SetOutpoint");
        // By the answer itself: a library that is read anew would mend it as well.
        const auto reads = [this] { return m_fixture->peer.http.count("GET", "/medialibrary"); };
        const int readsBefore = reads();
        QSignalSpy settled(m_fixture->peer.session->mediaLibraryProvider(),
                           &AbstractMediaLibraryProvider::editsSettled);
        for (int times = 1; times <= 2; ++times) {
            QTRY_VERIFY(slider->outpoint() == 8.0 && slider->position() == 3.0 && setOutpoint->isEnabled());
            setOutpoint->click();
            QCOMPARE(slider->outpoint(), 3.0);
            QTRY_COMPARE(settled.size(), times);
            QTRY_COMPARE(slider->outpoint(), 8.0);
            QCOMPARE(reads(), readsBefore);
        }
        QCOMPARE(m_fixture->patches.size(), 2);

        m_fixture->set("preview", "media", quoted("brume://collections/1/slots/2"));
        const auto* edit = m_fixture->part<DurationEditWidget>("Preview-PlaybackWidget-DurationEdit");
        QTRY_VERIFY(edit->isVisible());
        m_fixture->part<QAbstractButton>("Preview-PlaybackWidget-DurationEdit-Input-infinite-duration-button")
            ->click();
        QCOMPARE(edit->durationType(), DurationTypeWidget::Infinite);
        QTRY_COMPARE(settled.size(), 3);
        QCOMPARE(edit->durationType(), DurationTypeWidget::Manual);
    }

    void infiniteStillsHaveNoEnd()
    {
        m_fixture->stillDurationType = "infinite";
        QVERIFY(m_fixture->connectWithLibrary());
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
        QVERIFY(m_fixture->connectWithLibrary());
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

    void anEmptyPlaylistSaysSo()
    {
        QVERIFY(m_fixture->connectWithPlaylists({{"3", PlayerFixture::playlistOf("<i>Late", {})}}));
        m_fixture->takeSent();
        m_fixture->channel()->programWidget()->handleDragAndDrop(
            std::make_shared<GuiPlaylist>(QStringLiteral("<i>Late"), 3));
        const auto notifications = NotificationManagerImpl::instance()->notifications();
        QVERIFY(!notifications.isEmpty());
        const QString text = notifications.last()->title() + notifications.last()->details();
        QVERIFY2(text.contains(QStringLiteral("&lt;i&gt;Late")), qPrintable(text));
        auto slot = std::make_shared<GuiMediaSlot>();
        slot->setAddress({1, 2});
        m_fixture->channel()->programWidget()->handleDragAndDrop(slot);
        QVERIFY(m_fixture->waitForSent().contains(QStringLiteral("slots/2"))); // and nothing before
    }

    void audioDevicesAreChosen()
    {
        AudioOutputItem item(m_fixture->peer.session);
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

    void soundIsMovedAgainstThePicture()
    {
        AudioOutputItem item(m_fixture->peer.session);
        item.show();
        auto* delay = item.findChild<DoubleEdit*>(QStringLiteral("programAudioDelay"));
        QVERIFY(m_fixture->connect());
        QVERIFY(delay->isEnabled());
        m_fixture->set("program", "audioOffset", "0.04");
        QTRY_COMPARE(delay->text(), QStringLiteral("40 ms"));
        m_fixture->takeSent();
        QTest::keyClick(delay, Qt::Key_Up);
        QCOMPARE(m_fixture->waitForSent(),
                 QStringLiteral("replace /device/channels/0/program/properties/audioOffset 0.041"));
    }

    void endActionOfAPlayingEntryIsAlsoThePlaylists()
    {
        QVERIFY(m_fixture->connectWithLibrary());
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
        QVERIFY(m_fixture->connectWithLibrary());
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
        QVERIFY(m_fixture->connectWithLibrary());
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

        QSignalSpy changed(model, &QAbstractItemModel::dataChanged);
        m_fixture->set("preview", "endAction", quoted("pause"));
        QTRY_COMPARE(cell(PlaybackModel::EndActionColumn).toInt(), 1);
        const QModelIndex endAction = model->index(0, PlaybackModel::EndActionColumn);
        QVERIFY(std::any_of(changed.cbegin(), changed.cend(), [&](const QList<QVariant>& cells) {
            return cells.at(0).toModelIndex() == endAction;
        }));

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
    std::unique_ptr<PlayerFixture> m_fixture;
};

HALCYRA_TEST(TestChannelControls)
#include "test_channelcontrols.moc"

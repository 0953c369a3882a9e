#include "common/media/library/medialibraryprovider.h"
#include "common/playback/durationeditwidget.h"
#include "common/playback/endactionwidget.h"
#include "common/playback/mutebutton.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/seekslider.h"
#include "common/playback/takebutton.h"
#include "common/playback/takecontrols.h"
#include "common/player/linkbanner.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/doubleedit.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/views/slotdelegate.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tests/common/playback/playerfixture.h"

#include <QSignalSpy>
#include <QUndoStack>

using namespace vantrel;
using namespace vantrel::test;

namespace {

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
        QVERIFY(m_fixture->connectWithLibrary());
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
        QVERIFY(m_fixture->connectWithLibrary());
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
            TakeControls controls(m_fixture->peer.session->getQUndoStack());
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
        TakeControls controls(m_fixture->peer.session->getQUndoStack()); // reads what the file holds
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
        TakeControls controls(m_fixture->peer.session->getQUndoStack());
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
        TakeControls controls(m_fixture->peer.session->getQUndoStack());
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

    /// A server that tells of thousands of channels, by fault or malice, leaves a window that works.
    void manyChannelsDoNotStopTheWindow()
    {
        QVERIFY(m_fixture->connect());
        Patch patch;
        for (int i = 1; i <= 10000; ++i) {
            const std::string text = "[{\"op\":\"add\",\"path\":\"/device/channels/" + std::to_string(i) +
                                     "\",\"value\":{\"type\":\"Channel\"}}]";
            Patch one;
            QVERIFY(Patch::parseString(text, one));
            m_fixture->peer.send(one);
        }
        auto* tree = m_fixture->peer.session->objectTreeModel();
        const auto rows = [&] { return tree->rowCount(tree->index(QStringLiteral("/device/channels"))); };
        QTRY_COMPARE_WITH_TIMEOUT(rows(), 10001, 30000);
        QCOMPARE(m_fixture->view->findChildren<ChannelWidget*>().size(), 8);
    }

    /// While there is no server nothing can be set, and what was being done ends.
    void lostServerTakesTheControlsAway()
    {
        const LinkBanner banner(m_fixture->peer.session);
        QVERIFY(m_fixture->connectWithLibrary());
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
        QVERIFY2(banner.text().startsWith(QStringLiteral("Lost for 00:0")), qPrintable(banner.text()));
        QCOMPARE(banner.property("mode").toString(), QStringLiteral("lost")); // which is red

        // Only with the new state in place.
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->peer.session->isConnected(), 10000);
        QTRY_COMPARE(banner.text(), QStringLiteral("Connected again. Reading the state of the server."));
        QVERIFY(!m_fixture->part<TakeButton>("TakeControls-Take-Button")->isEnabled());
        QVERIFY(!m_fixture->view->findChild<SlotDelegate*>()->setStale(true)); // nothing new to it
        m_fixture->peer.send(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        QTRY_VERIFY(m_fixture->part<TakeButton>("TakeControls-Take-Button")->isEnabled());
    }

    void takeWithoutAChannelIsLogged()
    {
        TakeControls controls(m_fixture->peer.session->getQUndoStack());
        allowWarnings(QStringLiteral("object"));
        expectWarning(QStringLiteral("Failed to init take command"));
        controls.handleTake();
    }

private:
    std::unique_ptr<PlayerFixture> m_fixture;
};

HALCYRA_TEST(TestPlayer)
#include "test_player.moc"

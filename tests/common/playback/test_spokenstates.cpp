#include "common/playback/levelmeter.h"
#include "common/playback/picturenotice.h"
#include "common/playback/playbackcontrols.h"
#include "common/playback/playbackpreview.h"
#include "common/playback/playbackwidget.h"
#include "common/playback/seekslider.h"
#include "common/playback/takebutton.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/ztlabel.h"
#include "common/views/mediapanelwidget.h"
#include "common/views/playlist/playlistview.h"
#include "common/views/slotlistview.h"
#include "tests/common/playback/playerfixture.h"
#include "tests/support/testmain.h"

#include <QComboBox>

using namespace vantrel;
using namespace vantrel::test;

/// What the player says by itself when something is not as it should be, or soon will not be.
class TestSpokenStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PlayerFixture>();
        m_fixture->library.replace("\"outpoint\":8.0", "\"outpoint\":20.0");
        m_fixture->library.replace("\"mediaDuration\":10.0", "\"mediaDuration\":30.0");
        m_fixture->peer.http.handler = [this, rest = m_fixture->peer.http.handler](
                                           const ScriptedHttp::Request& request) -> ScriptedHttp::Reply {
            if (request.target.contains("/metadata/") && request.target.contains("b.mp4"))
                return {200, metadata};
            return rest(request);
        };
        QVERIFY(m_fixture->connectWithLibrary());
    }
    void cleanup() { m_fixture.reset(); }

    /// On both channels by one rule.
    void timeLeft_data()
    {
        QTest::addColumn<QByteArray>("channel");
        QTest::addColumn<QByteArray>("position");
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<QString>("urgency");
        QTest::addColumn<bool>("hasEnded");
        for (const char* channel : {"Program", "Preview"}) {
            const auto row = [channel](const char* position, const char* state, const char* urgency,
                                       bool hasEnded) {
                QTest::addRow("%s %s %s", channel, position, state)
                    << QByteArray(channel) << QByteArray(position) << QByteArray(state)
                    << QString::fromLatin1(urgency) << hasEnded;
            };
            row("9.9", "play", "", false);
            row("10.1", "play", "soon", false);
            row("15.1", "play", "now", false);
            row("19.98", "play", "now", false);
            row("19.98", "pause", "now", true);
            row("5.0", "pause", "", false);
        }
    }
    void timeLeft()
    {
        QFETCH(QByteArray, channel);
        QFETCH(QByteArray, position);
        QFETCH(QByteArray, state);
        QFETCH(QString, urgency);
        QFETCH(bool, hasEnded);
        StyleSheet::apply(*qApp);
        const auto end = qScopeGuard([] { qApp->setStyleSheet({}); });
        const QByteArray playback = channel.toLower();
        cue(playback, 1);
        m_fixture->set(playback, "state", '"' + state + '"');
        m_fixture->set(playback, "mediaPosition", position);
        const QByteArray times = channel + "-PlaybackWidget-PlaybackTimecodes";
        auto* left = m_fixture->part<QWidget>(times + "-Remaining");
        const auto* ended = m_fixture->part<ZTLabel>(times + "-Ended");
        QVERIFY(left && ended);
        QTRY_COMPARE(ended->isVisible(), hasEnded);
        QTRY_COMPARE(left->property("urgency").toString(), urgency);
        QCOMPARE(left->isVisible(), !hasEnded);
        QCOMPARE(ended->text(), QStringLiteral("Ended, holding"));
        // And it is seen: white, then amber, then red.
        const QColor colour = left->palette().color(QPalette::WindowText);
        const QString seen = colour.saturation() < 40                 ? QString()
                             : colour.hue() > 15 && colour.hue() < 60 ? QStringLiteral("soon")
                                                                      : QStringLiteral("now");
        QVERIFY2(seen == urgency, qPrintable(colour.name()));
    }

    void repeatStandsBesideTheName()
    {
        cue("program", 1);
        const auto* mark = m_fixture->part<QWidget>("Program-PlaybackWidget-Header-Repeat");
        QVERIFY(!mark->isVisible());
        m_fixture->set("program", "endAction", quoted("repeat"));
        QTRY_VERIFY(mark->isVisible());
    }

    /// With the times of what plays on, which the library knows no more.
    void heldMediaAreNamed()
    {
        cue("program", 1);
        const auto* left = time("PlaybackTimecodes-Remaining");
        QTRY_COMPARE(left->text(), QStringLiteral("00:00:20.000"));
        m_fixture->channel()->programWidget()->lockButton()->setChecked(false);
        const SeekSlider* slider = m_fixture->channel()->programWidget()->slider();
        QVERIFY(slider->isMovable());
        for (const auto& [property, value] :
             {std::pair("duration", "40.0"), std::pair("inpoint", "2.0"), std::pair("outpoint", "30.0"),
              std::pair("mediaPosition", "5.0")})
            m_fixture->set("program", property, value);
        m_fixture->set("program", "heldMedia", quoted("file:///clips/go%E2%80%AEne.mp4"));
        const auto* name = m_fixture->part<ZTLabel>("Program-PlaybackWidget-Header-MediaName");
        m_fixture->set("program", "media", quoted(""));
        QTRY_COMPARE(name->text(), QStringLiteral("No longer in the library: gone.mp4"));
        QTRY_COMPARE(left->text(), QStringLiteral("00:00:25.000"));
        QTRY_COMPARE(time("Header-Duration")->text(), QStringLiteral("00:00:40.000"));
        QTRY_COMPARE(time("EndpointTimecodes-Inpoint")->text(), QStringLiteral("00:00:02.000"));
        QTRY_COMPARE(time("EndpointTimecodes-Outpoint")->text(), QStringLiteral("00:00:30.000"));
        m_fixture->set("program", "outpoint", "15.0");
        QTRY_COMPARE(left->text(), QStringLiteral("00:00:10.000"));
        // Its playhead is seen to run, and is nobody's to move.
        const auto* playhead = m_fixture->part<QWidget>("Program-PlaybackWidget-SeekSlider-playhead");
        QVERIFY(playhead->isVisible() && !slider->isMovable());
        const int before = playhead->x();
        m_fixture->set("program", "mediaPosition", "12.0");
        QTRY_VERIFY(playhead->x() > before);
        // Its slot is back, and the slot's points with it.
        m_fixture->set("program", "heldMedia", quoted(""));
        cue("program", 1);
        QTRY_COMPARE(left->text(), QStringLiteral("00:00:08.000"));
        QVERIFY(slider->isMovable());
    }

    void unplayableCuesGreyTheTake()
    {
        metadata = R"({"type":"videoFile","isPlayable":false,"error":"The file is empty. Copy it again."})";
        cue("preview", 3);
        auto* take = m_fixture->part<TakeButton>("TakeControls-Take-Button");
        QTRY_VERIFY(!take->isEnabled());
        QVERIFY2(notice("Preview")->text().contains(QStringLiteral("The file is empty.")),
                 qPrintable(notice("Preview")->text()));
        QVERIFY2(take->toolTip().contains(QStringLiteral("Preview cannot be taken")),
                 qPrintable(take->toolTip()));
        QVERIFY2(!take->accessibleDescription().isEmpty() && take->toolTip() == take->accessibleDescription(),
                 qPrintable(take->toolTip()));
        cue("preview", 1);
        QTRY_VERIFY(take->isEnabled());
        QVERIFY(notice("Preview")->text().isEmpty());
    }

    /// What was opened before plays on, and is seen; what never was shows nothing in any state.
    void whatPlaysOnIsSeen()
    {
        metadata = R"({"type":"videoFile","isPlayable":false,"error":"The folder is gone."})";
        auto* picture = m_fixture->part<PlaybackPreview>("Preview-PlaybackWidget-PreviewWidget");
        const auto says = [this, picture](const char* words) {
            return QTest::qWaitFor([this, picture, words] {
                picture->onFrame({"/device/channels/0/preview", {}}, QPixmap(160, 90));
                return notice("Preview")->text() == QLatin1String(words);
            });
        };
        m_fixture->set("preview", "state", quoted("play"));
        cue("preview", 3);
        QVERIFY2(says("This medium cannot be played.\nThe folder is gone."),
                 qPrintable(notice("Preview")->text()));
        m_fixture->set("preview", "fps", "25.0");
        QVERIFY2(says("Plays on. The folder is gone."), qPrintable(notice("Preview")->text()));
        QVERIFY(!m_fixture->part<TakeButton>("TakeControls-Take-Button")->isEnabled());
        m_fixture->set("preview", "state", quoted("pause"));
        QVERIFY2(says("Held on preview. The folder is gone."), qPrintable(notice("Preview")->text()));
        m_fixture->set("preview", "state", quoted("stop"));
        QVERIFY2(says("This medium cannot be played.\nThe folder is gone."),
                 qPrintable(notice("Preview")->text()));
    }

    void soundAloneShowsItsLevel()
    {
        metadata = R"({"type":"audioFile","isPlayable":true})";
        QVERIFY(!notice("Preview")->levels()->isVisible());
        cue("preview", 3);
        QTRY_VERIFY(notice("Preview")->levels()->isVisible());
    }

    /// Of a file that is gone nothing is known but what its slot was: a note and a level, never black.
    void soundPlaysOnWithoutItsFile()
    {
        m_fixture = nullptr; // one session at a time
        m_fixture = std::make_unique<PlayerFixture>();
        const qsizetype third = m_fixture->library.lastIndexOf("videoFile");
        m_fixture->library.replace(third, 9, "audioFile");
        m_fixture->peer.http.handler = [this, rest = m_fixture->peer.http.handler](
                                           const ScriptedHttp::Request& request) -> ScriptedHttp::Reply {
            if (request.target.contains("/metadata/") && request.target.contains("b.mp4"))
                return {200, R"({"type":"unknown","isPlayable":false,"error":"The file is gone."})"};
            return rest(request);
        };
        QVERIFY(m_fixture->connectWithLibrary());
        auto* picture = m_fixture->part<PlaybackPreview>("Preview-PlaybackWidget-PreviewWidget");
        const auto shown = [this, picture](const char* state, bool isHeard) {
            m_fixture->set("preview", "state", quoted(state));
            return QTest::qWaitFor([&] {
                picture->onFrame({"/device/channels/0/preview", {}}, QPixmap(160, 90));
                return notice("Preview")->text().contains(QStringLiteral("The file is gone.")) &&
                       notice("Preview")->levels()->isVisible() == isHeard;
            });
        };
        m_fixture->set("preview", "fps", "25.0");
        cue("preview", 3);
        QVERIFY(shown("play", true));
        QVERIFY(shown("stop", false)); // the sentence alone
        QVERIFY(shown("pause", true));
    }

    /// The free place below the slots goes with the edits, at once.
    void onlyWhatIsTakenIsInvited()
    {
        /// Sees what is painted by itself.
        struct Painted : QObject
        {
            bool eventFilter(QObject* watched, QEvent* event) override
            {
                times += event->type() == QEvent::Paint ? 1 : 0;
                return QObject::eventFilter(watched, event);
            }
            int times = 0;
        } painted;
        auto* view = m_fixture->part<SlotListView>("MediaPanel-slots-view");
        view->setStyleSheet(QStringLiteral("background: black"));
        const auto isInviting = [view] {
            const QModelIndex last = view->model()->index(2, view->modelColumn(), view->rootIndex());
            const QRect row = view->visualRect(last);
            const QImage place =
                view->viewport()->grab(row.translated(0, row.height()).adjusted(6, 6, -6, -6)).toImage();
            QImage plain(place.size(), place.format());
            plain.fill(place.pixelColor(0, 0));
            return place != plain;
        };
        QTRY_VERIFY(view->model() && view->model()->rowCount(view->rootIndex()) == 3 && isInviting());
        view->viewport()->installEventFilter(&painted);
        const auto paint = [] { QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest); };
        paint(); // what is due for other reasons
        painted.times = 0;
        m_fixture->peer.link.socket->disconnectFromHost();
        QTRY_VERIFY((paint(), painted.times > 0));
        QTRY_VERIFY(!isInviting());
    }

    void libraryThatIsNotRead_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("brief");
        QTest::addColumn<QString>("text");
        QTest::newRow("none yet") << 0 << QStringLiteral("Loading ...")
                                  << QStringLiteral("Loading the library from the server");
        QTest::newRow("refused") << 503 << QStringLiteral("Not read")
                                 << QStringLiteral(
                                        "The library could not be read from the server: it answers "
                                        "\"503 Scripted\". It is tried again");
    }
    /// Nobody says that there are no collections before that is known.
    void libraryThatIsNotRead()
    {
        QFETCH(int, status);
        QFETCH(QString, brief);
        QFETCH(QString, text);
        allowWarnings(QStringLiteral("Failed to get media library"));
        m_fixture = nullptr; // one session at a time
        m_fixture = std::make_unique<PlayerFixture>();
        bool isWell = false;
        m_fixture->peer.http.handler = [&, rest = m_fixture->peer.http.handler](
                                           const ScriptedHttp::Request& request) -> ScriptedHttp::Reply {
            return request.target.endsWith("/medialibrary") && !isWell ? ScriptedHttp::Reply{status, {}}
                                                                       : rest(request);
        };
        QVERIFY(m_fixture->connect());
        const auto* view = m_fixture->part<SlotListView>("MediaPanel-slots-view");
        QTRY_VERIFY2(view->emptyText().startsWith(text), qPrintable(view->emptyText()));
        QVERIFY(!m_fixture->part<QWidget>("MediaPanel-add-collection-button")->isEnabled());
        const auto* collections = m_fixture->part<QComboBox>("MediaPanel-collection-chooser");
        QCOMPARE(collections->placeholderText(), brief);
        QCOMPARE(m_fixture->part<QComboBox>("Preview-PlaylistEditor-dropdown")->placeholderText(), brief);
        for (const char* name : {"Preview-PlaylistContainer-playlist", "Program-PlaylistContainer-playlist"})
            QCOMPARE(m_fixture->part<PlaylistView>(name)->placeholderText(), view->emptyText());
        // What the server plays is played and stopped from here, whether or not its name is known.
        cue("preview", 9);
        const auto* location = m_fixture->part<ZTLabel>("Preview-PlaybackWidget-Header-MediaLocation");
        QTRY_COMPARE(location->text(), QStringLiteral("1-9:"));
        const auto* in = m_fixture->part<ZTLabel>("Preview-PlaybackWidget-EndpointTimecodes-Inpoint");
        const auto* out = m_fixture->part<ZTLabel>("Preview-PlaybackWidget-EndpointTimecodes-Outpoint");
        QCOMPARE(in->text(), QStringLiteral("--:--:--"));
        QCOMPARE(out->text(), QStringLiteral("--:--:--"));
        const auto* mark = m_fixture->part<QWidget>("Preview-PlaybackWidget-SeekSlider-inMarker");
        QVERIFY(mark->isHidden());
        const PlaybackControls* controls = m_fixture->channel()->previewWidget()->controls();
        QVERIFY(controls->isEnabled() && !controls->canSetPoints());
        isWell = true;
        m_fixture->peer.http.breakOpen();
        QTRY_VERIFY_WITH_TIMEOUT(view->model() && view->model()->rowCount(view->rootIndex()) == 3, 10000);
        QTRY_VERIFY(!controls->isEnabled()); // there is no ninth slot
        QCOMPARE(collections->placeholderText(), QStringLiteral("No collections"));
        cue("preview", 1);
        QTRY_COMPARE(in->text(), QStringLiteral("00:00:01.000"));
        QTRY_COMPARE(out->text(), QStringLiteral("00:00:08.000"));
        QVERIFY(mark->isVisible());
    }

    /// From the link's return to its scene there is a reason for what is grey.
    void readingTheStateIsAReason()
    {
        auto* take = m_fixture->part<TakeButton>("TakeControls-Take-Button");
        m_fixture->peer.link.socket->disconnectFromHost();
        QTRY_VERIFY(take->toolTip().startsWith(QStringLiteral("Lost for")));
        QTRY_VERIFY_WITH_TIMEOUT(m_fixture->peer.session->isConnected(), 10000);
        QTRY_VERIFY2(take->toolTip().contains(QStringLiteral("is being read")), qPrintable(take->toolTip()));
    }

private:
    const TimecodeDisplay* time(const char* ofProgram) const
    {
        return m_fixture->part<TimecodeDisplay>(
            qPrintable(QStringLiteral("Program-PlaybackWidget-") + QLatin1String(ofProgram)));
    }
    void cue(const char* playback, int slot) const
    {
        const QByteArray url = "brume://collections/1/slots/" + QByteArray::number(slot);
        m_fixture->set(playback, "sourceMode", "1");
        m_fixture->set(playback, "media", '"' + url + '"');
    }
    PictureNotice* notice(const char* channel) const
    {
        return m_fixture->part<PictureNotice>(
            qPrintable(QString::fromLatin1(channel) + QStringLiteral("-PlaybackWidget-Notice")));
    }

    QByteArray metadata = R"({"type":"videoFile","isPlayable":true})"; // of the third slot
    std::unique_ptr<PlayerFixture> m_fixture;
};

HALCYRA_TEST(TestSpokenStates)
#include "test_spokenstates.moc"

#include "common/command/removecommand.h"
#include "common/session/link/connectionprovider.h"
#include "common/session/link/systemproxy.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/session/window/mainwindowhandle.h"
#include "tarn/scene/scene.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>
#include <QWidget>

namespace vantrel::test {

namespace {

const char* const smallScene = R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel",
    "preview":{"type":"Playback","properties":{"media":"brume:\/\/collections/1/slots/1"}}}}])";

int surfaceCount(const Session* session)
{
    const auto* surfaces = dynamic_cast<ObjectArray*>(session->getScene()->findObject("/device/surfaces"));
    return surfaces ? surfaces->size() : -1;
}

Patch surfaces(int count)
{
    Patch patch;
    for (int i = 0; i < count; ++i) {
        PatchOp op;
        op.path = Path("/device/surfaces/-");
        op.value = Json::object({{"type", Json("Surface")}});
        patch.append(op);
    }
    return patch;
}

/// Whether the window's updates were on at each change of the scene.
struct UpdatesProbe
{
    UpdatesProbe(Scene* watched, const QWidget* window)
        : scene(watched)
        , m_window(window)
    {
        scene->addChangeCallback(&UpdatesProbe::onChange, this);
    }
    ~UpdatesProbe() { scene->removeChangeCallback(&UpdatesProbe::onChange, this); }
    static void onChange(Scene*, int, const SceneChange*, void* user)
    {
        auto* self = static_cast<UpdatesProbe*>(user);
        self->seen.insert(self->m_window->updatesEnabled());
    }
    Ref<Scene> scene;
    QSet<bool> seen;

private:
    const QWidget* m_window;
};

} // namespace

class TestSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setMainWindowWidget(nullptr); }

    void followsTheServersScene()
    {
        ScriptedPeer peer;
        QVERIFY(!peer.session->isConnected());
        QVERIFY(!peer.session->getMediaLibraryApi());
        QSignalSpy connected(peer.session, &Session::connected);
        QSignalSpy loaded(peer.session, &Session::sceneLoaded);
        QVERIFY(peer.connect());
        QCOMPARE(connected.value(0).value(0).toString(), QStringLiteral("127.0.0.1"));
        QCOMPARE(peer.session->connectionProvider()->hostAddress(), QStringLiteral("127.0.0.1"));
        QTRY_COMPARE(peer.session->systemProxy()->version(), QStringLiteral("1.2.3"));
        QVERIFY(peer.http.count("GET", "/sse?topic=collections&topic=playlists") == 1);
        peer.send(smallScene);
        QTRY_COMPARE(loaded.count(), 1);
        QCOMPARE(peer.session->sceneObjectProvider()->previewPlayback()->media(),
                 QStringLiteral("brume://collections/1/slots/1"));
    }

    void keepsTheSceneUntilTheNextOneCame()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        peer.send(surfaces(3));
        QTRY_COMPARE(surfaceCount(peer.session), 3);
        QSignalSpy gone(peer.session, &Session::disconnected);
        peer.link.socket->disconnectFromHost();
        QTRY_COMPARE(gone.count(), 1);
        QVERIFY(!peer.session->getMediaLibraryApi());
        QCOMPARE(surfaceCount(peer.session), 3);
        QTRY_VERIFY_WITH_TIMEOUT(peer.session->isConnected() && peer.session->getMediaLibraryApi(), 10000);
        QCOMPARE(surfaceCount(peer.session), 3);
        QSignalSpy loaded(peer.session, &Session::sceneLoaded);
        int came = 0;
        const QObject here; // a spy would count on the thread that tells
        connect(peer.session->connectionHandler(), &ConnectionHandler::patchAvailable, &here,
                [&came] { ++came; });
        peer.send(Patch()); // a sign of life is no scene
        QTRY_COMPARE(came, 1);
        QCOMPARE(surfaceCount(peer.session), 3);
        QCOMPARE(loaded.count(), 0);
        peer.send(surfaces(1));
        QTRY_COMPARE(surfaceCount(peer.session), 1);
    }

    void sendsOnlyLocalChanges()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        peer.send(smallScene);
        peer.send(surfaces(1));
        QTRY_COMPARE(surfaceCount(peer.session), 1);
        QTRY_COMPARE(int(peer.link.received.size()), 1);

        Scene* scene = peer.session->getScene();
        peer.session->sceneObjectProvider()->previewPlayback()->setVolume(0.5);
        QTRY_COMPARE(describe(peer.lastReceived()),
                     QStringLiteral("replace /device/channels/0/preview/properties/volume 0.5"));
        QVERIFY(scene->addObject(scene->find("/device/surfaces/1"), {{"name", Variant::from("side")}}));
        QTRY_COMPARE(peer.lastReceived().size(), std::size_t(1));
        QTRY_COMPARE(peer.lastReceived().begin()->path.toString(), std::string("/device/surfaces/1"));
        QCOMPARE(peer.lastReceived().begin()->value.get("properties").get("name").asString(),
                 std::string("side"));
        QVERIFY(scene->removeObject(scene->find("/device/surfaces/0")));
        QTRY_COMPARE(describe(peer.lastReceived()), QStringLiteral("remove /device/surfaces/0"));
        // The three answers above are all that came: what the server sent was not echoed.
        QCOMPARE(int(peer.link.received.size()), 4);

        // What an undo brings back comes with all that it had.
        auto* remove = new RemoveCommand;
        remove->init(Path("/device/surfaces/0"));
        peer.session->getQUndoStack()->push(remove);
        QTRY_COMPARE(int(peer.link.received.size()), 5);
        peer.session->getQUndoStack()->undo();
        QTRY_COMPARE(int(peer.link.received.size()), 6);
        QCOMPARE(peer.lastReceived().begin()->value.get("properties").get("name").asString(),
                 std::string("side"));
    }

    void holdsRepaintsOfLargePatches_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("paints");
        QTest::newRow("20 operations") << 20 << true;
        QTest::newRow("21 operations") << 21 << false;
    }
    void holdsRepaintsOfLargePatches()
    {
        QFETCH(int, size);
        QFETCH(bool, paints);
        ScriptedPeer peer;
        QWidget window;
        setMainWindowWidget(&window);
        QVERIFY(peer.connect());
        peer.send(surfaces(1));
        QTRY_COMPARE(surfaceCount(peer.session), 1);
        QVERIFY(window.updatesEnabled());
        const UpdatesProbe probe(peer.session->getScene(), &window);
        peer.send(surfaces(size));
        QTRY_COMPARE(surfaceCount(peer.session), size + 1);
        QCOMPARE(probe.seen, QSet<bool>{paints});
        QTRY_VERIFY(window.updatesEnabled());
    }

    /// The request to paint comes while updates are off; nothing else is painted for it.
    void paintsWhatWasAskedForInBetween()
    {
        class Painted : public QWidget
        {
        public:
            using QWidget::QWidget;
            int times = 0;

        protected:
            void paintEvent(QPaintEvent*) override { ++times; }
        };
        Painted window;
        setMainWindowWidget(&window);
        window.show();
        QTRY_VERIFY(window.times > 0);
        window.update();
        setMainWindowUpdatesEnabled(false);
        QCoreApplication::sendPostedEvents(&window, QEvent::UpdateRequest);
        const int before = window.times;
        setMainWindowUpdatesEnabled(true);
        QTRY_VERIFY(window.times > before);

        Painted changes(&window), stays(&window);
        changes.setGeometry(0, 0, 20, 20);
        stays.setGeometry(30, 0, 20, 20);
        for (Painted* part : {&changes, &stays}) {
            part->setAttribute(Qt::WA_OpaquePaintEvent);
            part->show();
            QTRY_VERIFY(part->times > 0);
        }
        const auto timesAfter = [&](const auto& happens) {
            changes.times = stays.times = window.times = 0;
            setMainWindowUpdatesEnabled(false);
            happens();
            QCoreApplication::sendPostedEvents(&window, QEvent::UpdateRequest);
            const bool isHeld = changes.times + stays.times + window.times == 0;
            setMainWindowUpdatesEnabled(true);
            return isHeld;
        };
        QVERIFY(timesAfter([&] { changes.update(); }));
        QTRY_COMPARE(changes.times, 1);
        QCOMPARE(stays.times + window.times, 0);
        QVERIFY(timesAfter([&] { changes.move(60, 0); }));
        QTRY_VERIFY(window.times > 0); // where it was
        std::unique_ptr<Painted> newcomer;
        QVERIFY(timesAfter([&] {
            newcomer = std::make_unique<Painted>(&window);
            newcomer->show();
        }));
        QTRY_VERIFY(newcomer->times > 0);
        QVERIFY(timesAfter([&] { newcomer->update(); }));
        QTRY_VERIFY(newcomer->times > 1);
    }

    void loadsALargeSceneInSlices()
    {
        ScriptedPeer peer;
        QWidget window;
        setMainWindowWidget(&window);
        QVERIFY(peer.connect());
        QSignalSpy loaded(peer.session, &Session::sceneLoaded);
        const UpdatesProbe probe(peer.session->getScene(), &window);
        QSet<int> sizesSeen; // between two slices
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] { sizesSeen.insert(surfaceCount(peer.session)); });
        timer.start(0);
        peer.send(surfaces(60000));
        QTRY_COMPARE_WITH_TIMEOUT(loaded.count(), 1, 30000);
        QCOMPARE(surfaceCount(peer.session), 60000);
        QVERIFY2(sizesSeen.size() > 3, "the event loop never turned while the scene was loading");
        QCOMPARE(probe.seen, QSet<bool>{false});
        QVERIFY(window.updatesEnabled());
        QCOMPARE(int(peer.link.received.size()), 1);
    }

    void endsPromptlyWhileConnected()
    {
        auto peer = std::make_unique<ScriptedPeer>();
        QVERIFY(peer->connect());
        QElapsedTimer clock;
        clock.start();
        peer.reset();
        QVERIFY(clock.elapsed() < 1500);
        QVERIFY(!Session::instance());
    }
};

HALCYRA_TEST(TestSession)

} // namespace vantrel::test

#include "test_session.moc"

#include "common/command/commandgate.h"
#include "common/command/playback/playmediacommand.h"
#include "common/command/playback/setvolumecommand.h"
#include "common/filesystem/models/filesmodel.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/outputs/outputpicture.h"
#include "common/outputs/outputview.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/link/metadataclient.h"
#include "common/session/link/previewthread.h"
#include "common/session/link/systemproxy.h"
#include "common/session/mirror/guimapping.h"
#include "common/session/mirror/guioutput.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/switchselect.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/playenums.h"
#include "tarn/scene/scene.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QImage>
#include <QNetworkInterface>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

namespace {

const char* const library = R"([{"op":"add","path":"/collections/7","value":{"name":"Main","slots":{"1":{
    "name":"Red","contentUrl":"file:\/\/\/red.png","inpoint":0,"outpoint":null,"duration":5,"mediaDuration":null,
    "scaleMode":"fit","isPlayable":true,"durationType":"manual","imageSequence":null,"type":"imageFile"}}}}])";

/// A second operator's program, reduced to its copy of the scene.
class SecondClient
{
public:
    explicit SecondClient(quint16 port)
        : handler(port)
        , scene(makeRef<Scene>())
    {
        QObject::connect(&handler, &ConnectionHandler::patchAvailable, &handler, [this] {
            Patch patch;
            while (handler.recvPatch(patch))
                scene->apply(patch, false);
        });
        handler.start();
        handler.connect(QStringLiteral("127.0.0.1"));
    }
    ~SecondClient() { handler.shutDown(5000); }
    double volume() const { return property("preview/properties/volume").as<double>(); }
    std::string audioDevice() const { return property("program/properties/audioDevice").asString(); }
    Variant property(const std::string& path) const
    {
        Variant value;
        scene->getProperty(scene->find("/device/channels/0/" + path), value);
        return value;
    }
    ConnectionHandler handler;
    Ref<Scene> scene;
};

} // namespace

/// The session beside a live server.
class TestLiveSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
    }
    void init()
    {
        // Requests in flight when a server is killed fail; what they say is not the subject here.
        allowWarnings(QStringLiteral("Getting system property failed"));
        allowWarnings(QStringLiteral("Failed to get media library"));
        QVERIFY(begin(QStringLiteral("127.0.0.1")));
    }
    void cleanup()
    {
        delete std::exchange(m_session, nullptr);
        m_server.reset();
    }

    void loadsSceneAndLibrary()
    {
        QVERIFY(connectAndLoad());
        const SceneObjectProvider* objects = m_session->sceneObjectProvider();
        QCOMPARE(objects->previewPlayback()->object(), at("/device/channels/0/preview"));
        QCOMPARE(objects->programPlayback()->object(), at("/device/channels/0/program"));
        QTRY_COMPARE(objects->programMapping()->object(), at("/device/channels/0/mappings/1"));
        QTRY_COMPARE(objects->output1()->object(), at("/device/system/gpus/0/outputs/0"));
        QVERIFY(!objects->modelines(0)->isEmpty());
        QTRY_VERIFY(!m_session->systemProxy()->version().isEmpty());
        QVERIFY(addSlot());
    }

    void showsAnOthersChanges()
    {
        QVERIFY(connectAndLoad());
        const SecondClient second(m_server->ports().link);
        QTRY_COMPARE(second.volume(), 1.0);
        using ByChannel = bool (SetVolumeCommand::*)(int, bool, double, double);
        auto* command = new SetVolumeCommand;
        QVERIFY((command->*static_cast<ByChannel>(&SetVolumeCommand::init))(0, false, 0.25, 1.0));
        m_session->executeCommand(command);
        QTRY_COMPARE(second.volume(), 0.25);
        m_session->getQUndoStack()->undo();
        QTRY_COMPARE(second.volume(), 1.0);
    }

    void choosesAudioDevices()
    {
        OutputView view(m_session);
        view.show();
        auto* program = view.findChild<SwitchSelect*>(QStringLiteral("programAudioOutputSwitch"));
        QVERIFY(program && !program->isEnabled());
        QVERIFY(connectAndLoad());
        QTRY_VERIFY(program->isEnabled());
        SecondClient second(m_server->ports().link);
        QTRY_VERIFY(!second.audioDevice().empty());
        program->button(int(AudioPlaybackDevice::Dante))->click();
        QTRY_COMPARE(second.audioDevice(), std::string("dante"));
        QTRY_VERIFY(view.findChild<QWidget*>(QStringLiteral("danteEnabledMessage"))->isVisible());
        QTRY_COMPARE(m_session->sceneObjectProvider()->programPlayback()->audioDevice(),
                     AudioPlaybackDevice::Dante);

        second.handler.sendPatch(PatchOp::invoke(Path("/device/channels/0/program/methods/selectAudioDevice"),
                                                 {{"device", "xlr"}}));
        QTRY_COMPARE(program->value().toInt(), int(AudioPlaybackDevice::Xlr));
        QTRY_VERIFY(!view.findChild<QWidget*>(QStringLiteral("danteEnabledMessage"))->isVisible());

        // A choice that is refused does not look taken.
        auto* gate = m_session->getQUndoStack()->findChild<CommandGate*>();
        gate->setReason(QStringLiteral("The server does not answer."));
        program->button(int(AudioPlaybackDevice::Off))->click();
        QCOMPARE(program->value().toInt(), int(AudioPlaybackDevice::Xlr));
        gate->setReason({});

        // The show keeps the choice; without the link nothing can be chosen, and what stands there stays.
        m_server->stop();
        QTRY_VERIFY(!program->isEnabled());
        QCOMPARE(program->value().toInt(), int(AudioPlaybackDevice::Xlr));
        QVERIFY(m_server->start());
        QTRY_VERIFY_WITH_TIMEOUT(program->isEnabled(), 20000);
        QTRY_COMPARE(program->value().toInt(), int(AudioPlaybackDevice::Xlr));
    }

    void tellsThatAMediumIsGone()
    {
        QVERIFY(connectAndLoad());
        QVERIFY(addSlot());
        const OutputView view(m_session);
        OutputPicture picture(1, m_session, view.model(1));
        picture.show();
        const auto* medium = picture.findChild<ElidedLabel*>(QStringLiteral("Mapping-output2-medium"));
        auto* command = new PlayMediaCommand;
        QVERIFY(command->init(false, 0, 7, 1));
        m_session->executeCommand(command);
        QTRY_VERIFY(medium->text().startsWith(QStringLiteral("Red")));
        QVERIFY(edit(R"([{"op":"remove","path":"/collections/7"}])"));
        QTRY_COMPARE(medium->text(), QStringLiteral("No longer in the library: red.png"));
    }

    void playsAndShowsThePicture_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("typed");
        QTest::newRow("IPv4") << "127.0.0.1"
                              << "127.0.0.1";
        QTest::newRow("IPv6 only") << "::1"
                                   << "::1";
        QTest::newRow("IPv6, as in a URL") << "::1"
                                           << "[::1]";
        for (const QHostAddress& address : QNetworkInterface::allAddresses()) {
            if (address.isLinkLocal() && address.protocol() == QAbstractSocket::IPv6Protocol) {
                QTest::newRow("IPv6 of a link alone") << address.toString() << address.toString();
                break; // not every machine has one
            }
        }
    }

    void playsAndShowsThePicture()
    {
        QFETCH(QString, host);
        QFETCH(QString, typed);
        cleanup();
        QVERIFY(begin(host));
        QVERIFY(connectAndLoad(typed));
        QVERIFY(addSlot());
        QColor seen;
        connect(m_session->preview(), &PreviewThread::previewFrame, this,
                [&](const PreviewFrame& frame, const QPixmap& pixmap) {
                    if (frame.source.find("/preview") != std::string::npos)
                        seen = pixmap.toImage().pixelColor(pixmap.width() / 2, pixmap.height() / 2);
                });
        auto* command = new PlayMediaCommand;
        QVERIFY(command->init(true, 0, 7, 1));
        m_session->executeCommand(command);
        const GUIPlayback* playback = m_session->sceneObjectProvider()->previewPlayback();
        QTRY_COMPARE(playback->playingSlotAddress(), MediaAddress(7, 1));
        QTRY_COMPARE(playback->state(), SourcePlayState::Play);
        QTRY_COMPARE(playback->duration(), 5.0);
        QTRY_VERIFY(seen.red() > 180 && seen.green() < 60 && seen.blue() < 60);
        // The other ways to the same server: its events, its files and what it says of itself.
        QTRY_VERIFY(m_session->metadataClient()->isKeepaliveRunning());
        m_session->serverFilesModel()->setDirectoryPath(QStringLiteral("/"));
        QTRY_COMPARE(m_session->serverFilesModel()->count(), 1);
        QTRY_VERIFY(!m_session->systemProxy()->version().isEmpty());
    }

    void comesBackAfterTheServerWasKilled()
    {
        QVERIFY(connectAndLoad());
        QVERIFY(addSlot());
        QSignalSpy gone(m_session, &Session::disconnected);
        QSignalSpy loaded(m_session, &Session::sceneLoaded);
        m_server->kill();
        QTRY_COMPARE(gone.count(), 1);
        QVERIFY(m_session->getScene()->findObject("/device/channels/0"));
        QVERIFY(m_session->mediaLibraryProvider()->slot(MediaAddress(7, 1)));
        QSignalSpy reset(m_session->mediaLibraryProvider(), &MediaLibraryProvider::reset);
        QVERIFY(m_server->start());
        QTRY_COMPARE_WITH_TIMEOUT(loaded.count(), 1, 20000);
        QVERIFY(m_session->isConnected());
        QCOMPARE(m_session->sceneObjectProvider()->previewPlayback()->object(),
                 at("/device/channels/0/preview"));
        QTRY_COMPARE(reset.count(), 1);
        QVERIFY(m_session->mediaLibraryProvider()->slot(MediaAddress(7, 1)));
    }

private:
    bool begin(const QString& host)
    {
        m_server = std::make_unique<OmbraProcess>();
        m_server->setHost(host);
        QImage red(64, 36, QImage::Format_RGB32);
        red.fill(QColor(220, 10, 10));
        if (!red.save(m_server->mediaFolder() + QStringLiteral("/red.png")) || !m_server->start())
            return false;
        m_session = new Session;
        Session::initializeWith(m_session, m_server->ports());
        return true;
    }
    bool connectAndLoad() { return connectAndLoad(m_server->host()); }
    bool connectAndLoad(const QString& host)
    {
        QSignalSpy loaded(m_session, &Session::sceneLoaded);
        m_session->connectionHandler()->connect(host);
        return loaded.count() > 0 || loaded.wait(15000);
    }
    bool edit(const char* text)
    {
        Patch patch;
        if (!Patch::parseString(text, patch) || !m_session->getMediaLibraryApi())
            return false;
        QNetworkReply* reply = m_session->getMediaLibraryApi()->patchMediaLibrary(patch);
        connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
        return true;
    }
    bool addSlot()
    {
        return edit(library) && QTest::qWaitFor([this] {
                   return m_session->mediaLibraryProvider()->slot(MediaAddress(7, 1)) != nullptr;
               });
    }
    Object* at(const char* path) const { return m_session->getScene()->findObject(path); }

    std::unique_ptr<OmbraProcess> m_server;
    Session* m_session = nullptr;
};

HALCYRA_TEST(TestLiveSession)

} // namespace vantrel::test

#include "test_livesession.moc"

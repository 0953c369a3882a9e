#include "common/media/edit/trimcommands.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/session/mirror/guichannel.h"
#include "common/session/mirror/guimapping.h"
#include "common/session/mirror/guimodeline.h"
#include "common/session/mirror/guioutput.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/guishowconfiguration.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/mirror/servernotices.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>

namespace vantrel::test {

namespace {

const char* const library = R"({
    "collections": {"1": {"name": "Main", "slots": {"2": {"name": "clip", "contentUrl": "file:\/\/\/a.mp4", "inpoint": 1.5,
        "outpoint": OUT, "duration": null, "mediaDuration": 30, "scaleMode": "fit", "isPlayable": true,
        "durationType": "manual", "imageSequence": null, "type": "videoFile"}}}},
    "playlists": {"3": {"name": "Show", "entries": {"1": {"slotUrl": "brume:\/\/collections/1/slots/2",
        "endAction": "next", "transitionType": "directCut", "transitionDuration": 0}}}}})";

/// A library, its providers and the mirrors on a scene, without a session.
struct Stage
{
    Stage()
        : scene(makeRef<Scene>())
        , media(makeRef<MediaLibrary>())
        , slotProvider(media)
        , playlistProvider(media, &slotProvider)
    {
        tree.setScene(scene.get());
        slotProvider.setTrimCommands(&makeInpointCommand, &makeOutpointCommand);
        QObject::connect(&slotProvider, &MediaLibraryProvider::reset, &playlistProvider,
                         &PlaylistProvider::onReset);
        mirrors = std::make_unique<SceneObjectProvider>(&tree, &playlistProvider, &slotProvider);
    }

    bool apply(const char* text)
    {
        Patch patch;
        return Patch::parseString(text, patch) && scene->apply(patch, true);
    }
    bool load(const char* outpoint)
    {
        Json json;
        const bool parsed = Json::parseString(QString::fromLatin1(library)
                                                  .replace(QStringLiteral("OUT"), QLatin1String(outpoint))
                                                  .toStdString(),
                                              json) &&
                            media->parseJson(json);
        slotProvider.onReset();
        return parsed;
    }

    Ref<Scene> scene;
    Ref<MediaLibrary> media;
    ObjectTreeModel tree;
    MediaLibraryProvider slotProvider;
    PlaylistProvider playlistProvider;
    std::unique_ptr<SceneObjectProvider> mirrors;
};

const char* const channel = R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel",
    "preview":{"properties":{"media":"brume:\/\/collections/1/slots/2","volume":0.25,"endAction":"repeat","state":"pause"}},
    "mappings":[{"type":"GpuMapping","properties":{"target":"out1"}},{"type":"GpuMapping","properties":{"target":"out2"}}]}}])";

} // namespace

class TestMirrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsOnPlaceholdersWithoutAServer()
    {
        const Stage stage;
        const GUIPlayback* playback = stage.mirrors->previewPlayback();
        QVERIFY(playback && playback->object());
        QCOMPARE(playback->volume(), 1.0);
        QCOMPARE(playback->state(), SourcePlayState::Stop);
        QCOMPARE(playback->media(), QString());
        QVERIFY(stage.mirrors->modelines(1)->isEmpty());
        QVERIFY(!stage.mirrors->modelines(2));
        QCOMPARE(stage.mirrors->showConfiguration()->object(),
                 stage.scene->findObject("/device/showConfiguration"));
    }

    /// What the server has trouble with is told once, line by line, and never as markup.
    void tellsTheServersTrouble()
    {
        Stage stage;
        NotificationManagerImpl* const manager = NotificationManagerImpl::instance();
        manager->clear();
        const ServerNotices notices(stage.scene.get(), manager);
        const auto toldAfter = [&](const char* notice) {
            const QByteArray patch =
                "[{\"op\":\"replace\",\"path\":\"/device/system/properties/notice\",\"value\":\"" +
                QByteArray(notice) + "\"}]";
            if (!stage.apply(patch.constData()))
                return QStringLiteral("no such notice");
            QStringList lines;
            for (const auto& each : manager->notifications())
                lines << each->details();
            return lines.join(u'|');
        };
        QCOMPARE(toldAfter("The disk is full."), QStringLiteral("The disk is full."));
        QCOMPARE(toldAfter("The disk is full.\\n<b>x\\u202ey is gone."),
                 QStringLiteral("The disk is full.|&lt;b&gt;xy is gone."));
        QCOMPARE(toldAfter(""), QStringLiteral("The disk is full.|&lt;b&gt;xy is gone."));
        manager->clear();
        QCOMPARE(toldAfter("The disk is full."), QStringLiteral("The disk is full.")); // again
    }

    void movesToTheChannelAndBack()
    {
        Stage stage;
        GUIPlayback* playback = stage.mirrors->previewPlayback();
        QSignalSpy reset(playback, &GUIPlayback::reset);
        QVERIFY(stage.apply(channel));
        QCOMPARE(reset.count(), 1);
        QCOMPARE(playback->volume(), 0.25);
        QCOMPARE(playback->endAction(), EndAction::Repeat);
        QCOMPARE(playback->state(), SourcePlayState::Pause);
        QCOMPARE(stage.mirrors->previewMapping()->target(), QStringLiteral("out1"));
        QCOMPARE(stage.mirrors->programMapping()->target(), QStringLiteral("out2"));
        QCOMPARE(stage.mirrors->channel()->object(), stage.scene->findObject("/device/channels/0"));
        stage.scene->clear();
        QCOMPARE(reset.count(), 2);
        QCOMPARE(playback->volume(), 1.0);
        QCOMPARE(stage.mirrors->previewMapping()->target(), QString());
    }

    void looksAgainForLateMappings()
    {
        Stage stage;
        QSignalSpy reset(stage.mirrors->previewPlayback(), &GUIPlayback::reset);
        bool applied =
            stage.apply(R"([{"op":"add","path":"/device/channels/0","value":{"type":"Channel"}}])");
        QVERIFY(applied);
        QCOMPARE(reset.count(), 1);
        // One retry later: to the placeholder and back.
        QTRY_COMPARE(reset.count(), 3);
        QVERIFY(stage.apply(
            R"([{"op":"add","path":"/device/channels/0/mappings/0","value":{"properties":{"target":"a"}}},
                                {"op":"add","path":"/device/channels/0/mappings/1","value":{"properties":{"target":"b"}}}])"));
        QTRY_COMPARE(stage.mirrors->programMapping()->target(), QStringLiteral("b"));
        QCOMPARE(stage.mirrors->previewMapping()->target(), QStringLiteral("a"));
        QCOMPARE(reset.count(), 5);
    }

    void followsOutputsAndTheirModes()
    {
        Stage stage;
        bool applied =
            stage.apply(R"([{"op":"add","path":"/device/system/gpus/0","value":{"type":"Gpu","outputs":[
            {"properties":{"name":"DP-1","width":1920,"connected":true},
             "modelines":[{"properties":{"id":"m1","refreshRate":50.0}},{"properties":{"id":"m2"}}]}]}}])");
        QVERIFY(applied);
        QCOMPARE(stage.mirrors->output1()->name(), QStringLiteral("DP-1"));
        QCOMPARE(stage.mirrors->output1()->width(), 1920);
        QVERIFY(stage.mirrors->output1()->connected());
        QCOMPARE(stage.mirrors->output2()->name(), QString());
        const auto modes = stage.mirrors->modelines(0);
        QCOMPARE(modes->size(), 2);
        QCOMPARE(modes->at(0)->id(), QStringLiteral("m1"));
        QCOMPARE(modes->at(0)->refreshRate(), 50.0);
        QVERIFY(stage.apply(
            R"([{"op":"add","path":"/device/system/gpus/0/outputs/0/modelines/2","value":{"properties":{"id":"m3"}}}])"));
        QCOMPARE(modes->size(), 3);
        applied = stage.apply(R"([{"op":"remove","path":"/device/system/gpus/0/outputs/0/modelines/1"}])");
        QVERIFY(applied);
        QVERIFY(modes->isEmpty());
        stage.scene->clear();
        QCOMPARE(stage.mirrors->output1()->name(), QString());
    }

    void takesOutputsThatComeInPieces()
    {
        Stage stage;
        const SceneObjectProvider& mirrors = *stage.mirrors;
        bool applied = stage.apply(R"([{"op":"add","path":"/device/system/gpus/0","value":{"type":"Gpu"}}])");
        QVERIFY(applied);
        QCOMPARE(mirrors.output1()->name(), QString());
        applied = stage.apply(R"([
            {"op":"add","path":"/device/system/gpus/0/outputs/0","value":{"properties":{"name":"DP-1"}}},
            {"op":"add","path":"/device/system/gpus/0/outputs/0/modelines/0","value":{"properties":{"id":"m1"}}},
            {"op":"add","path":"/device/system/gpus/0/outputs/1","value":{"properties":{"name":"DP-2"},
             "modelines":[{"properties":{"id":"n1"}}]}}])");
        QVERIFY(applied);
        QCOMPARE(mirrors.output1()->name(), QStringLiteral("DP-1"));
        QCOMPARE(mirrors.output2()->name(), QStringLiteral("DP-2"));
        QCOMPARE(mirrors.modelines(0)->size(), 1);
        QCOMPARE(mirrors.modelines(1)->size(), 1);
        applied = stage.apply(R"([{"op":"remove","path":"/device/system/gpus/0/outputs/1"}])");
        QVERIFY(applied);
        QCOMPARE(mirrors.output2()->name(), QString());
        QVERIFY(mirrors.modelines(1)->isEmpty());
        QCOMPARE(mirrors.modelines(0)->size(), 1);
        // The modes go with the whole GPU, too.
        QSignalSpy modes(&mirrors, &SceneObjectProvider::modelinesChanged);
        applied = stage.apply(R"([{"op":"remove","path":"/device/system/gpus/0"}])");
        QVERIFY(applied);
        QCOMPARE(mirrors.output1()->name(), QString());
        QVERIFY(mirrors.modelines(0)->isEmpty());
        QCOMPARE(modes.count(), 1);
    }

    void writesThroughToTheScene()
    {
        Stage stage;
        QVERIFY(stage.apply(channel));
        GUIPlayback* playback = stage.mirrors->previewPlayback();
        QSignalSpy volume(playback, &GUIPlayback::volumeChanged);
        int changes = 0;
        const Scene::ChangeCallback count = [](Scene*, int, const SceneChange*, void* user) {
            ++*static_cast<int*>(user);
        };
        stage.scene->addChangeCallback(count, &changes);
        playback->setVolume(0.25);
        QCOMPARE(changes, 0);
        playback->setVolume(0.75);
        playback->setEndAction(EndAction::Stop);
        playback->setAudioDevice(AudioPlaybackDevice::Dante);
        QCOMPARE(changes, 3);
        QCOMPARE(volume.count(), 1);
        Variant value;
        QVERIFY(stage.scene->getProperty(
            stage.scene->find("/device/channels/0/preview/properties/audioDevice"), value));
        QCOMPARE(value.asString(), std::string("dante"));
        QVERIFY(stage.scene->getProperty(stage.scene->find("/device/channels/0/preview/properties/endAction"),
                                         value));
        QCOMPARE(value.asString(), std::string("stop"));
        // The scaling has another name in the scene and therefore no signal of its own.
        QSignalSpy scaling(stage.mirrors->previewMapping().get(), &GUIMapping::scalingChanged);
        stage.mirrors->previewMapping()->setScaling(QStringLiteral("stretch"));
        QCOMPARE(changes, 4);
        QCOMPARE(scaling.count(), 0);
        stage.scene->removeChangeCallback(count, &changes);
    }

    void handsTheValueOfAChangeOn()
    {
        Stage stage;
        QVERIFY(stage.apply(channel));
        QSignalSpy position(stage.mirrors->previewPlayback(), &GUIPlayback::mediaPositionChanged);
        QVERIFY(stage.apply(
            R"([{"op":"replace","path":"/device/channels/0/preview/properties/mediaPosition","value":2}])"));
        QCOMPARE(position.count(), 1);
        QCOMPARE(position.at(0).at(0).toDouble(), 2.0);
    }

    void knowsWhatPlays()
    {
        Stage stage;
        QVERIFY(stage.load("null"));
        QVERIFY(stage.apply(channel));
        GUIPlayback* playback = stage.mirrors->previewPlayback();
        QVERIFY(playback->playingSlot());
        QCOMPARE(playback->playingSlotAddress(), MediaAddress(1, 2));
        QVERIFY(!playback->playingEntry());
        QCOMPARE(playback->inpoint(), 1.5);
        QVERIFY(!playback->outpoint());
        QCOMPARE(playback->duration(), 30.0);

        playback->setMedia(QStringLiteral("brume://playlists/3/entries/1"));
        QCOMPARE(playback->playingEntryAddress(), EntryAddress(1, 0));
        QVERIFY(playback->playingEntry());
        QCOMPARE(playback->playingSlotAddress(), MediaAddress(1, 2));
        playback->setMedia(QStringLiteral("no address"));
        QVERIFY(!playback->playingEntry() && !playback->playingSlot());
        QCOMPARE(playback->duration(), 0.0);
    }

    void tellsChangedPointsAfterThePatch()
    {
        Stage stage;
        QVERIFY(stage.load("20"));
        QVERIFY(stage.apply(channel));
        GUIPlayback* playback = stage.mirrors->previewPlayback();
        QSignalSpy in(playback, &GUIPlayback::inpointChanged);
        QSignalSpy out(playback, &GUIPlayback::outpointChanged);
        QSignalSpy duration(playback, &GUIPlayback::durationChanged);
        QCOMPARE(in.count() + out.count() + duration.count(), 0);
        QTRY_COMPARE(out.count(), 1);
        QCOMPARE(in.count(), 1);
        QCOMPARE(duration.count(), 1);
        QCOMPARE(playback->outpoint(), std::optional<double>(20));
        // From a value to none.
        QVERIFY(stage.load("null"));
        QTRY_COMPARE(out.count(), 2);
        QVERIFY(!playback->outpoint());
        QCOMPARE(in.count(), 1);
        QCOMPARE(duration.count(), 1);
    }

    void sendsChangedPointsToTheLibrary()
    {
        Stage stage;
        QVERIFY(stage.load("20"));
        QVERIFY(stage.apply(channel));
        GUIPlayback* playback = stage.mirrors->previewPlayback();
        QSignalSpy in(playback, &GUIPlayback::inpointChanged);
        QTRY_COMPARE(in.count(), 1);
        // Without a session there is no library service to take the command.
        expectWarning(QStringLiteral("No api available, check connection?"));
        playback->setInpoint(4);
        playback->setInpoint(4);
        QCOMPARE(in.count(), 2);
        QCOMPARE(playback->inpoint(), 4.0);
        QTRY_COMPARE(in.count(), 3); // nothing was sent, so it does not stand
        QCOMPARE(playback->inpoint(), 1.5);
    }

    void forgetsTheSlotOfACollectionThatGoes()
    {
        Stage stage;
        QVERIFY(stage.load("20"));
        QVERIFY(stage.apply(channel));
        GUIPlayback* playback = stage.mirrors->previewPlayback();
        QVERIFY(playback->playingSlot());
        allowWarnings(QStringLiteral("Missing slot: ")); // an entry plays it too
        stage.media->removeCollection(1);
        stage.slotProvider.onCollectionRemoved(1);
        QVERIFY(!playback->playingSlot());
        playback->setOutpoint(7);
        QTRY_VERIFY(!playback->outpoint()); // a point of nothing
    }
};

HALCYRA_TEST(TestMirrors)

} // namespace vantrel::test

#include "test_mirrors.moc"

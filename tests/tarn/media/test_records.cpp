#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "tarn/media/playenums.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <cmath>
#include <map>
#include <random>

using namespace vantrel;

namespace {

Json parsed(const QByteArray& text)
{
    Json json;
    std::string error;
    if (!Json::parseString(text.toStdString(), json, &error))
        qFatal("%s", error.c_str());
    return json;
}

std::string textAt(Json json, const char* path)
{
    for (const PathElement& element : Path(std::string_view(path)))
        json = json.get(element.text());
    return json.toString();
}

/// With a member that this version does not know at each place.
constexpr const char* laterLibrary = R"({
    "venue": {"hall": 3},
    "collections": {"1": {"name": "c", "colour": "red", "slots": {"2": {"name": "s", "tags": ["a"],
        "imageSequence": {"framerate": 25, "proxy": true}}}}},
    "playlists": {"1": {"name": "p", "locked": true, "entries": {"1": {"note": {"by": "me"}}}}}})";

MediaSlot slotOf(double duration, double inpoint = 0, std::optional<double> outpoint = {})
{
    MediaSlot slot("clip", "file:///clip.mp4");
    slot.setInherentMediaDuration(duration);
    slot.setInpoint(inpoint);
    slot.setOutpoint(outpoint);
    return slot;
}

} // namespace

class TestRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sharedMapEqualsAnOrderedMap()
    {
        std::mt19937 random(11);
        std::map<int, int> model;
        SharedMap<int, int> map;
        SharedMap<int, int> frozen;
        std::map<int, int> frozenModel;
        for (int step = 0; step < 20000; ++step) {
            const int key = static_cast<int>(random() % 900);
            switch (random() % 5) {
            case 0:
            case 1:
                QCOMPARE(map.erase(key), model.erase(key) == 1);
                break;
            case 2:
                if (int* value = map.edit(key))
                    *value = model[key] = step;
                break;
            default:
                map.set(key, step);
                model[key] = step;
            }
            if (step % 1000 == 500) {
                frozen = map;
                frozenModel = model;
            }
        }
        QCOMPARE(map.size(), model.size());
        QVERIFY(std::equal(map.begin(), map.end(), model.begin(), [](const auto& a, const auto& b) {
            return a.first == b.first && a.second == b.second;
        }));
        QVERIFY(std::equal(
            frozen.begin(), frozen.end(), frozenModel.begin(), frozenModel.end(),
            [](const auto& a, const auto& b) { return a.first == b.first && a.second == b.second; }));
        for (int key = -1; key < 902; ++key) {
            const auto expected = model.lower_bound(key);
            const auto found = map.lower_bound(key);
            QCOMPARE(found == map.end(), expected == model.end());
            if (expected != model.end())
                QCOMPARE(found->first, expected->first);
        }
    }

    void refusesBadContent_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("no object") << QByteArray("[]");
        QTest::newRow("neither part") << QByteArray(R"({"shows": {}})");
        QTest::newRow("too many levels") << QByteArray(
            "{\"playlists\": {}, \"venue\": " + QByteArray(65, '[') + QByteArray(65, ']') + '}');
        QTest::newRow("collection zero") << QByteArray(R"({"collections": {"0": {}}})");
        QTest::newRow("collection 10000") << QByteArray(R"({"collections": {"10000": {}}})");
        QTest::newRow("leading zero") << QByteArray(R"({"collections": {"01": {}}})");
        QTest::newRow("array of slots") << QByteArray(R"({"collections": {"1": {"slots": []}}})");
        QTest::newRow("number as name") << QByteArray(R"({"collections": {"1": {"name": 1}}})");
        QTest::newRow("slot 10000") << QByteArray(R"({"collections": {"1": {"slots": {"10000": {}}}}})");
        QTest::newRow("text as in point")
            << QByteArray(R"({"collections": {"1": {"slots": {"1": {"inpoint": "1"}}}}})");
        QTest::newRow("null in point")
            << QByteArray(R"({"collections": {"1": {"slots": {"1": {"inpoint": null}}}}})");
        QTest::newRow("negative") << QByteArray(
            R"({"collections": {"1": {"slots": {"1": {"outpoint": -0.5}}}}})");
        QTest::newRow("endless") << QByteArray(
            R"({"collections": {"1": {"slots": {"1": {"duration": 1e300}}}}})");
        QTest::newRow("scale mode") << QByteArray(
            R"({"collections": {"1": {"slots": {"1": {"scaleMode": "FIT"}}}}})");
        QTest::newRow("sequence") << QByteArray(
            R"({"collections": {"1": {"slots": {"1": {"imageSequence": {"framerate": 0}}}}}})");
        QTest::newRow("half frame") << QByteArray(
            R"({"collections": {"1": {"slots": {"1": {"imageSequence": {"firstFrame": 1.5}}}}}})");
        QTest::newRow("playlist zero") << QByteArray(R"({"playlists": {"0": {}}})");
        QTest::newRow("entry zero") << QByteArray(R"({"playlists": {"1": {"entries": {"0": {}}}}})");
        QTest::newRow("entry 5.0") << QByteArray(R"({"playlists": {"1": {"entries": {"5.0": {}}}}})");
        QTest::newRow("end action") << QByteArray(
            R"({"playlists": {"1": {"entries": {"1": {"endAction": 0}}}}})");
    }

    void refusesBadContent()
    {
        QFETCH(QByteArray, text);
        MediaLibrary library;
        library.insertMediaCollection(3, MediaCollection("kept"), true);
        const Json before = library.toJson();
        std::string error;
        QVERIFY(!library.parseJson(parsed(text), &error));
        QVERIFY(!error.empty());
        QVERIFY(library.toJson().sameNode(before));
        // The same content by a patch.
        Patch patch;
        QVERIFY(Patch::parseString(
            "[{\"op\":\"replace\",\"path\":\"\",\"value\":" + text.toStdString() + "}]", patch));
        QCOMPARE(library.applyDiff(patch), MediaLibrary::invalidContent);
        QVERIFY(library.toJson().sameNode(before));
    }

    /// What a later version writes stays where it is through edits of the stream and of this version.
    void keepsUnknownMembers()
    {
        MediaLibrary library;
        std::string error;
        QVERIFY2(library.parseJson(parsed(laterLibrary), &error), error.c_str());
        const Json read = library.toJson();
        QCOMPARE(textAt(read, "/venue"), std::string(R"({"hall":3})"));
        QCOMPARE(textAt(read, "/collections/1/colour"), std::string(R"("red")"));
        QCOMPARE(textAt(read, "/collections/1/slots/2/tags"), std::string(R"(["a"])"));
        QCOMPARE(textAt(read, "/collections/1/slots/2/imageSequence/proxy"), std::string("true"));
        QCOMPARE(textAt(read, "/playlists/1/locked"), std::string("true"));
        QCOMPARE(textAt(read, "/playlists/1/entries/1/note"), std::string(R"({"by":"me"})"));

        for (const char* operation : {
                 R"({"op":"replace","path":"/venue/hall","value":4})",
                 R"({"op":"add","path":"/era","value":null})",
                 R"({"op":"replace","path":"/collections/1/colour","value":"blue"})",
                 R"({"op":"add","path":"/collections/1/slots/2/tags/-","value":"b"})",
                 R"({"op":"add","path":"/collections/1/slots/2/rating","value":5})",
                 R"({"op":"replace","path":"/playlists/1/locked","value":false})",
                 R"({"op":"add","path":"/playlists/1/entries/1/note/at","value":7})",
             }) {
            Patch patch;
            QVERIFY(Patch::parseString("[" + std::string(operation) + "]", patch));
            Json expected = library.toJson();
            QVERIFY(patch.apply(expected));
            QVERIFY2(library.applyDiff(patch, &error) == 0, error.c_str());
            QVERIFY2(library.toJson() == expected, operation);
        }

        const Json before = library.toJson();
        library.findSlot(1, 2)->setName("renamed");
        library.findSlot(1, 2)->setFirstFrameNum(1);
        library.findCollection(1)->setName("renamed");
        QVERIFY(library.copyCollection(1, 5));
        const MediaSlot moved = *library.findSlot(5, 2);
        QVERIFY(library.findCollection(5)->insertMediaSlot(9, moved, false));
        QVERIFY(library.findCollection(5)->removeMediaSlot(2));
        library.findPlaylistEntry(1, {1, 0})->setEndAction(EndAction::Stop);
        QVERIFY(library.findPlaylist(1)->moveEntry({1, 0}, {2, 1}));
        QVERIFY(library.movePlaylist(1, 3));
        const Json after = library.toJson();
        QCOMPARE(textAt(after, "/venue"), std::string(R"({"hall":4})"));
        QCOMPARE(textAt(after, "/collections/1/slots/2/tags"), std::string(R"(["a","b"])"));
        QCOMPARE(textAt(after, "/collections/5/colour"), std::string(R"("blue")"));
        QCOMPARE(textAt(after, "/collections/5/slots/9/rating"), std::string("5"));
        QCOMPARE(textAt(after, "/collections/5/slots/9/imageSequence/proxy"), std::string("true"));
        QCOMPARE(textAt(after, "/playlists/3/locked"), std::string("false"));
        QCOMPARE(textAt(after, "/playlists/3/entries/2.1/note"), std::string(R"({"at":7,"by":"me"})"));

        Patch undo;
        Patch::diff(after, before, undo);
        QVERIFY2(library.applyDiff(undo, &error) == 0, error.c_str());
        QCOMPARE(library.toJson().toString(), before.toString());
    }

    void writesAllKeys()
    {
        MediaLibrary library;
        QVERIFY(library.parseJson(parsed(R"({"collections": {"1": {"slots": {"2": {"name": "a"}}}}})")));
        const Json slot = library.toJson().get("collections").get("1").get("slots").get("2");
        QCOMPARE(slot.size(), std::size_t(11));
        QVERIFY(slot.find("outpoint") && slot.get("outpoint").isNull());
        QCOMPARE(slot.get("durationType").asString(), std::string("manual"));
        MediaLibrary again;
        QVERIFY(again.parseJson(library.toJson()));
        QVERIFY(again.toJson() == library.toJson());
    }

    void slotDurations()
    {
        QCOMPARE(slotOf(10, 2, 7).getTrimmedDuration(), 5.0);
        QCOMPARE(slotOf(10, 2, 70).getTrimmedDuration(), 8.0); // the media ends first
        QCOMPARE(slotOf(10, 12).getTrimmedDuration(), 0.0);
        MediaSlot slot = slotOf(10);
        slot.setCustomMediaDuration(4);
        QCOMPARE(slot.getEffectiveMediaDuration(), 4.0);
        MediaSlot sequence;
        sequence.setFrameRate(25);
        sequence.setFirstFrameNum(1);
        sequence.setLastFrameNum(50);
        QCOMPARE(sequence.getEffectiveMediaDuration(), 2.0);
        slot.setInpoint(std::nan(""));
        QCOMPARE(slot.getInpoint(), 0.0);
    }

    void stillsStandForEverUntilTheyAreTimed()
    {
        MediaSlot still("Logo", "file:///logo.png");
        QVERIFY(still.isFinite());
        still.setMediaType(MediaType::ImageFile);
        QVERIFY(!still.isFinite());
        still.setCustomMediaDuration(0);
        QVERIFY(!still.isFinite());
        still.setCustomMediaDuration(4);
        QVERIFY(still.isFinite());
        still.setDurationType(MediaDurationType::Infinite);
        QVERIFY(!still.isFinite());
    }

    void runtimes()
    {
        MediaLibrary library;
        MediaCollection collection("c");
        collection.insertMediaSlot(1, slotOf(10), true);
        collection.insertMediaSlot(2, slotOf(20, 5), true);
        MediaSlot infinite = slotOf(3);
        infinite.setDurationType(MediaDurationType::Infinite);
        collection.insertMediaSlot(3, infinite, true);
        library.insertMediaCollection(1, collection, true);
        Playlist playlist;
        const auto add = [&](int number, int slot, TakeTransitionType type, double duration) {
            playlist.addEntry({number, 0},
                              {MediaAddress(1, slot).toString(), EndAction::Next, type, duration});
        };
        add(1, 1, TakeTransitionType::Crossfade, 2);   // nothing before it to overlap
        add(2, 2, TakeTransitionType::Crossfade, 2);   // 8 to 23
        add(3, 1, TakeTransitionType::DirectCut, 2);   // 23 to 33
        add(4, 1, TakeTransitionType::DipToColor, 99); // no longer than the clips: 23 to 33
        add(5, 9, TakeTransitionType::Crossfade, 2);   // no slot
        library.addPlaylist(1, playlist);
        PlaylistRuntimeInfo info = library.calculateRuntimeInfo(1);
        QCOMPARE(info.entries.size(), std::size_t(5));
        const double expected[][2] = {{0, 10}, {8, 23}, {23, 33}, {23, 33}, {33, 33}};
        for (std::size_t i = 0; i < 5; ++i) {
            QCOMPARE(info.entries[i].runtimeBefore, expected[i][0]);
            QCOMPARE(info.entries[i].runtimeAfter, expected[i][1]);
        }
        QCOMPARE(info.totalDuration, 33.0);
        QVERIFY(!info.isInfinite);

        library.findPlaylistEntry(1, {2, 0})->setMediaUrl(MediaAddress(1, 3).toString());
        info = library.calculateRuntimeInfo(1);
        QVERIFY(info.isInfinite);
        QCOMPARE(info.totalDuration, 8.0);
        QVERIFY(std::isinf(info.entries[1].runtimeAfter) && std::isinf(info.entries[4].runtimeBefore));
        QVERIFY(library.calculateRuntimeInfo(7).entries.empty());
    }

    void refusesWhatIsTakenOrOutOfRange()
    {
        MediaLibrary library;
        QVERIFY(library.insertMediaCollection(9999, MediaCollection("a"), false));
        QVERIFY(!library.insertMediaCollection(9999, MediaCollection("b"), false));
        QVERIFY(!library.insertMediaCollection(10000, MediaCollection("b"), true));
        QVERIFY(!library.insertMediaCollection(0, MediaCollection("b"), true));
        QVERIFY(library.copyCollection(9999, 1));
        QVERIFY(!library.copyCollection(9999, 1));
        QVERIFY(!library.copyCollection(5, 2));
        QCOMPARE(library.findCollection(1)->getName(), std::string("a"));
        QVERIFY(!library.findCollection(1)->insertMediaSlot(10000, MediaSlot(), true));
        QVERIFY(library.addPlaylist(1, Playlist("p")));
        QVERIFY(!library.addPlaylist(1, Playlist("q")));
        QVERIFY(library.addPlaylist(2, Playlist("q")));
        QVERIFY(!library.movePlaylist(1, 2));
        QVERIFY(library.movePlaylist(1, 3));
        QVERIFY(!library.findPlaylist(1));
        Playlist* playlist = library.findPlaylist(3);
        QVERIFY(playlist->addEntry({1, 0}, PlaylistEntry()));
        QVERIFY(!playlist->addEntry({1, 0}, PlaylistEntry()));
        QVERIFY(!playlist->addEntry({0, 0}, PlaylistEntry()));
        QVERIFY(!playlist->moveEntry({2, 0}, {3, 0}));
        QVERIFY(playlist->moveEntry({1, 0}, {1, 1}));
        QCOMPARE(library.toJson().get("playlists").get("3").get("entries").size(), std::size_t(1));
    }

    void findsSlotsByEachKindOfUrl()
    {
        MediaLibrary library;
        MediaCollection collection("c");
        collection.insertMediaSlot(4, MediaSlot("a", "file:///a.mp4"), true);
        library.insertMediaCollection(2, collection, true);
        Playlist playlist;
        playlist.addEntry(
            {1, 1}, {"brume://collection/2/slots/4", EndAction::Next, TakeTransitionType::DirectCut, 0});
        playlist.addEntry(
            {2, 0}, {"brume://collections/2/slots/5", EndAction::Next, TakeTransitionType::DirectCut, 0});
        library.addPlaylist(1, playlist);
        for (const char* url :
             {"brume://collections/2/slots/4", "brume://playlists/1/entries/1.1", "file:///a.mp4"})
            QCOMPARE(library.resolveSlot(url), MediaAddress(2, 4));
        for (const char* url :
             {"", "brume://playlists/1/entries/2", "brume://collections/2/slots/5", "file:///b.mp4"})
            QVERIFY(!library.findSlot(std::string_view(url)));
        const auto [entry, slot] = library.findEntryAndSlot("brume://playlists/1/entries/2");
        QVERIFY(entry && !slot);
    }
};

HALCYRA_TEST(TestRecords)
#include "test_records.moc"

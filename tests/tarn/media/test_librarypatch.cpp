#include "tarn/json/jsoncounters.h"
#include "tarn/media/medialibrary.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <random>

using namespace vantrel;

namespace {

constexpr int bigCollections = 20;
constexpr int bigSlots = 5000;

const MediaLibrary& bigLibrary()
{
    static const MediaLibrary* const library = [] {
        auto* made = new MediaLibrary;
        for (int c = 1; c <= bigCollections; ++c) {
            MediaCollection collection("Collection " + std::to_string(c));
            for (int s = 1; s <= bigSlots; ++s)
                collection.insertMediaSlot(s, MediaSlot("clip " + std::to_string(s), "file:///clip.mp4"),
                                           true);
            made->insertMediaCollection(c, collection, true);
        }
        made->toJson();
        return made;
    }();
    return *library;
}

Patch patchOf(const std::string& text)
{
    Patch patch;
    std::string error;
    if (!Patch::parseString(text, patch, &error))
        qFatal("%s", error.c_str());
    return patch;
}

/// What the typed maps say, written anew without any node that the library kept.
QString spelled(const MediaLibrary& library)
{
    QString text;
    for (const auto& [index, collection] : library.getCollections()) {
        text += QStringLiteral("c%1 %2\n").arg(index).arg(QString::fromStdString(collection.getName()));
        for (const auto& [number, slot] : collection.getSlots())
            text +=
                QStringLiteral(" %1 %2\n").arg(number).arg(QString::fromStdString(slot.toJson().toString()));
    }
    for (const auto& [number, playlist] : library.getPlaylists()) {
        text += QStringLiteral("p%1 %2\n").arg(number).arg(QString::fromStdString(playlist.getName()));
        for (const auto& [address, entry] : playlist.getEntries())
            text +=
                QString::fromStdString(" " + address.toString(true) + " " + entry.toJson().toString() + "\n");
    }
    return text;
}

/// Operations of which most fit a library with the indexes 1 to 3.
class RandomEdits
{
public:
    explicit RandomEdits(unsigned seed)
        : m_random(seed)
    {
    }

    std::string operation()
    {
        static constexpr const char* ops[] = {"add",     "add",    "add",  "replace",
                                              "replace", "remove", "move", "copy"};
        const std::string op = ops[m_random() % std::size(ops)];
        const Place place = pick();
        std::string text = R"({"op":")" + op + R"(","path":")" + place.path + "\"";
        if (op == "move" || op == "copy")
            text += R"(,"from":")" + pick().path + "\"";
        else if (op != "remove")
            text += ",\"value\":" + (m_random() % 8 ? place.value : pick().value);
        return text + "}";
    }

private:
    struct Place
    {
        std::string path, value;
    };
    std::string number() { return std::to_string(m_random() % 12 ? 1 + m_random() % 3 : 0); } // 0 is no index
    Place pick()
    {
        const std::string collection = "/collections/" + number();
        const std::string playlist = "/playlists/" + number();
        const std::string entry = playlist + "/entries/" + number() + (m_random() % 2 ? ".2" : "");
        const std::string seconds = std::to_string(m_random() % 9);
        const Place places[] = {
            {collection, R"({"name":"n","slots":{"1":{"inpoint":3},"2":{}}})"},
            {collection + "/name", R"("name )" + seconds + "\""},
            {collection + "/slots", R"({"2":{"name":"x"}})"},
            {collection + "/slots/" + number(), R"({"name":"slot","outpoint":)" + seconds + "}"},
            {collection + "/slots/" + number(), R"({})"},
            {collection + "/slots/" + number() + "/inpoint", seconds},
            {playlist, R"({"entries":{"1.2":{"slotUrl":"u"},"2":{}}})"},
            {playlist + "/name", R"("list")"},
            {entry, R"({"slotUrl":"v"})"},
            {entry + "/transitionDuration", seconds},
            {collection + "/colour", seconds},
            {collection + "/slots/" + number() + "/tags", R"(["a"])"},
            {playlist + "/locked", "true"},
            {entry + "/note", seconds},
            {"/venue", R"({"hall":1})"},
            {m_random() % 3 ? "/playlists" : "", R"({"collections":{"2":{}},"playlists":{}})"},
        };
        return places[m_random() % std::size(places)];
    }

    std::mt19937 m_random;
};

} // namespace

class TestLibraryPatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// After any patch the typed records, the library's JSON and a whole reading of the patched document
    /// agree, and a refused patch leaves all as it was.
    void equalsAWholeReading()
    {
        RandomEdits edits(3);
        MediaLibrary library;
        int applied = 0;
        int broken = 0;
        const Patch seed =
            patchOf(R"([{"op":"replace","path":"","value":{"collections":{"1":{"slots":{"1":{},"3":{}}},
            "2":{"slots":{"1":{"inpoint":1}}}},"playlists":{"1":{"entries":{"1":{},"2.2":{}}},"2":{"entries":{}}}}}])");
        for (int round = 0; round < 8000; ++round) {
            if (round % 40 == 0)
                QCOMPARE(library.applyDiff(seed), 0);
            std::string text = "[" + edits.operation();
            for (int more = round % 3; more > 0; --more)
                text += "," + edits.operation();
            const Patch patch = patchOf(text + "]");
            Json document = library.toJson();
            const Json before = document;
            const QString wordsBefore = spelled(library);
            const bool fits = static_cast<bool>(patch.apply(document));
            MediaLibrary whole;
            const bool valid = fits && whole.parseJson(document);
            const int code = library.applyDiff(patch);
            QVERIFY2((code == 0) == valid, text.c_str());
            if (!valid) {
                QVERIFY2(library.toJson().sameNode(before), text.c_str());
                QCOMPARE(spelled(library), wordsBefore);
                broken += fits;
                continue;
            }
            ++applied;
            QVERIFY2(spelled(library) == spelled(whole), text.c_str());
            QVERIFY2(library.toJson() == whole.toJson(), text.c_str());
            MediaLibrary reread;
            Json copy;
            QVERIFY(Json::parseString(library.toJson().toString(), copy) && reread.parseJson(copy));
            QCOMPARE(spelled(reread), spelled(library));
        }
        QVERIFY2(applied > 1000 && broken > 300,
                 qPrintable(QStringLiteral("%1 %2").arg(applied).arg(broken)));
    }

    void sharesWhatIsUnchanged()
    {
        MediaLibrary copy(bigLibrary());
        const Json before = bigLibrary().toJson();
        QVERIFY(copy.toJson().sameNode(before));
        copy.findSlot(3, 4000)->setInpoint(1);
        const Json after = copy.toJson();
        QVERIFY(!after.sameNode(before));
        QVERIFY(bigLibrary().toJson().sameNode(before));
        QCOMPARE(bigLibrary().findSlot(3, 4000)->getInpoint(), 0.0);
        QCOMPARE(after.get("collections").get("3").get("slots").get("4000").get("inpoint").asDouble(), 1.0);
        QVERIFY(after.get("collections").get("4").sameNode(before.get("collections").get("4")));
        QVERIFY(after.get("collections")
                    .get("3")
                    .get("slots")
                    .get("3999")
                    .sameNode(before.get("collections").get("3").get("slots").get("3999")));
        Patch redo;
        Patch::diff(before, after, redo);
        QCOMPARE(redo.toJson().toString(),
                 std::string(R"([{"op":"replace","path":"/collections/3/slots/4000/inpoint","value":1.0}])"));
    }

    /// The steps of a rehearsed edit on 100,000 slots: they may touch the way to the slot, never the library.
    void costsWhatTheEditCosts()
    {
        const Json before = bigLibrary().toJson();
        const Patch patch =
            patchOf(R"([{"op":"replace","path":"/collections/7/slots/77/inpoint","value":2.5}])");
        JsonCounters::start();
        MediaLibrary rehearsal;
        QVERIFY(rehearsal.parseJson(before));
        rehearsal.findSlot(7, 77)->setInpoint(2.5);
        const Json after = rehearsal.toJson();
        MediaLibrary second;
        QVERIFY(second.parseJson(after));
        QCOMPARE(second.applyDiff(patch), 0);
        QVERIFY(second.toJson() == after);
        JsonCounters::stop();
        QVERIFY2(JsonCounters::nodesMade < 120, qPrintable(QString::number(JsonCounters::nodesMade)));
        QVERIFY2(JsonCounters::nodesVisited < 400, qPrintable(QString::number(JsonCounters::nodesVisited)));
    }

    void removesAnOptionalMember()
    {
        MediaLibrary library;
        QCOMPARE(library.applyDiff(patchOf(R"([{"op":"add","path":"/collections/1","value":{"name":"c"}},
            {"op":"add","path":"/collections/1/slots/4","value":{"outpoint":5}}])")),
                 static_cast<int>(
                     PatchError::PathNotFound)); // "slots" is filled in only when the patch is through
        QCOMPARE(library.applyDiff(
                     patchOf(R"([{"op":"add","path":"/collections/1","value":{"name":"c","slots":{}}},
            {"op":"add","path":"/collections/1/slots/4","value":{"outpoint":5}}])")),
                 0);
        QCOMPARE(library.findSlot(1, 4)->getOutpoint().value_or(0), 5.0);
        QCOMPARE(library.applyDiff(patchOf(R"([{"op":"remove","path":"/collections/1/slots/4/outpoint"}])")),
                 0);
        QVERIFY(!library.findSlot(1, 4)->getOutpoint());
        QVERIFY(library.toJson().get("collections").get("1").get("slots").get("4").find("outpoint"));
        QCOMPARE(library.applyDiff(patchOf(R"([{"op":"test","path":"/collections/1/name","value":"d"}])")),
                 static_cast<int>(PatchError::TestFailed));
    }
};

HALCYRA_TEST(TestLibraryPatch)
#include "test_librarypatch.moc"

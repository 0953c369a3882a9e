#include "tarn/json/jsontree.h"

#include "tarn/json/jsoncounters.h"
#include "tarn/json/patch.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <map>
#include <random>
#include <thread>
#include <vector>

using namespace vantrel;

namespace {

/// A library of one collection, or of collections of 100 slots.
Json library(int slots, bool wide)
{
    Json collections = Json::object();
    for (int first = 0; first < slots; first += wide ? slots : 100) {
        Json below = Json::object();
        for (int i = 0; i < (wide ? slots : 100); ++i) {
            const std::string name = "slot " + std::to_string(first + i);
            below.set(std::to_string(i + 1),
                      Json::object({{"name", name}, {"inpoint", 0}, {"isPlayable", true}}));
        }
        collections.set(std::to_string(first / 100 + 1), Json::object({{"name", "one"}, {"slots", below}}));
    }
    return Json::object({{"collections", collections}, {"playlists", Json::object()}});
}

template <typename Model>
bool matches(const Json& json, const Model& model)
{
    if (json.size() != model.size() || !JsonTree::fault(json).empty())
        return false;
    auto expected = model.begin();
    bool good = true;
    const auto next = [&](const Json& value, int wanted) { good = good && value.asInt(-1) == wanted; };
    if constexpr (std::is_same_v<Model, std::vector<int>>) {
        json.forEachItem([&](const Json& value) { next(value, *expected++); });
        for (std::size_t i = 0; i < model.size(); i += 7)
            next(*json.at(i), model[i]);
    } else {
        json.forEachMember([&](std::string_view key, const Json& value) {
            good = good && key == expected->first;
            next(value, expected++->second);
        });
        for (const auto& [key, value] : model)
            next(json.get(key), value);
    }
    return good && expected == model.end();
}

std::string randomKey(std::mt19937& random, unsigned span)
{
    // Inline and long names, and names that differ only late.
    const unsigned number = random() % span;
    return number % 3 == 0 ? "a rather long member name " + std::to_string(number) : std::to_string(number);
}

} // namespace

class JsonTreeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void objectsBehaveAsOrderedMaps_data()
    {
        QTest::addColumn<unsigned>("span");
        for (const unsigned span : {20u, 60u, 700u, 20000u})
            QTest::addRow("%u names", span) << span;
    }
    void objectsBehaveAsOrderedMaps()
    {
        QFETCH(unsigned, span);
        std::mt19937 random(span);
        Json json = Json::object();
        std::map<std::string, int> model;
        std::vector<std::pair<Json, std::map<std::string, int>>> history;
        for (int i = 0; i < 12000; ++i) {
            const std::string key = randomKey(random, span);
            const bool growing = (i / 3000) % 2 == 0;
            if (random() % 10 < (growing ? 8u : 2u)) {
                json.set(key, i);
                model[key] = i;
            } else {
                QCOMPARE(json.erase(key), model.erase(key) > 0);
            }
            if (i % 600 == 0) {
                QVERIFY2(matches(json, model), JsonTree::fault(json).c_str());
                history.emplace_back(json, model);
            }
        }
        // What shared nodes with later versions is as it was.
        for (const auto& [version, expected] : history)
            QVERIFY(matches(version, expected));
        for (auto it = model.begin(); it != model.end(); it = model.erase(it))
            QVERIFY(json.erase(it->first));
        QVERIFY2(json.size() == 0 && JsonTree::fault(json).empty(), "emptied");
    }

    void arraysBehaveAsVectors_data()
    {
        QTest::addColumn<unsigned>("where"); // 0: anywhere, 1: at the front, 2: at the end
        QTest::newRow("anywhere") << 0u;
        QTest::newRow("at the front") << 1u;
        QTest::newRow("at the end") << 2u;
    }
    void arraysBehaveAsVectors()
    {
        QFETCH(unsigned, where);
        std::mt19937 random(where + 5);
        Json json = Json::array();
        std::vector<int> model;
        std::vector<std::pair<Json, std::vector<int>>> history;
        const auto place = [&](std::size_t room) {
            return where == 1 ? 0 : where == 2 ? room - 1 : random() % room;
        };
        for (int i = 0; i < 8000; ++i) {
            const bool growing = (i / 2000) % 2 == 0;
            if (random() % 10 < (growing ? 8u : 2u)) {
                const std::size_t at = place(model.size() + 1);
                json.insert(at, i);
                model.insert(model.begin() + static_cast<std::ptrdiff_t>(at), i);
            } else if (!model.empty()) {
                const std::size_t at = place(model.size());
                QVERIFY(json.erase(at));
                model.erase(model.begin() + static_cast<std::ptrdiff_t>(at));
                if (!model.empty()) {
                    json.set(at / 2, -i);
                    model[at / 2] = -i;
                }
            }
            if (i % 400 == 0) {
                QVERIFY2(matches(json, model), JsonTree::fault(json).c_str());
                history.emplace_back(json, model);
            }
        }
        for (const auto& [version, expected] : history)
            QVERIFY(matches(version, expected));
    }

    void readingBuildsSoundTrees_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {0, 1, 31, 32, 33, 48, 49, 767, 768, 769, 1025, 20000})
            QTest::addRow("%d", size) << size;
    }
    void readingBuildsSoundTrees()
    {
        QFETCH(int, size);
        std::string members = "{";
        std::string items = "[";
        std::map<std::string, int> object;
        std::vector<int> array;
        for (int i = 0; i < size; ++i) {
            const std::string comma = i ? "," : "";
            members +=
                comma + "\"" + std::to_string(size - i) + "\":" + std::to_string(i); // not in byte order
            items += comma + std::to_string(i);
            object[std::to_string(size - i)] = i;
            array.push_back(i);
        }
        Json json;
        QVERIFY(Json::parseString(members + "}", json));
        QVERIFY2(matches(json, object), JsonTree::fault(json).c_str());
        QVERIFY(Json::parseString(items + "]", json));
        QVERIFY2(matches(json, array), JsonTree::fault(json).c_str());
    }

    void anEditSharesAllThatItDoesNotTouch()
    {
        const Json before = library(5000, true);
        Json after = before;
        QVERIFY(after.sameNode(before));
        after.edit("collections")->edit("1")->edit("slots")->edit("77")->set("inpoint", 2);
        QVERIFY(!after.sameNode(before));
        QVERIFY(after.get("playlists").sameNode(before.get("playlists")));
        const Json oldSlots = before.get("collections").get("1").get("slots");
        const Json newSlots = after.get("collections").get("1").get("slots");
        int changed = 0;
        newSlots.forEachMember(
            [&](std::string_view key, const Json& slot) { changed += !slot.sameNode(*oldSlots.find(key)); });
        QCOMPARE(changed, 1);
        QCOMPARE(oldSlots.get("77").get("inpoint").asInt(-1), 0);
        QCOMPARE(newSlots.get("77").get("inpoint").asInt(-1), 2);
    }

    void threadsEditTheirOwnCopies()
    {
        const Json shared = library(2000, true);
        std::vector<Json> results(4);
        std::vector<std::thread> threads;
        for (unsigned t = 0; t < results.size(); ++t) {
            threads.emplace_back([&shared, &results, t] {
                std::mt19937 random(t);
                std::vector<Json> versions{shared};
                for (int i = 0; i < 400; ++i) {
                    Json next = versions[random() % versions.size()];
                    Json* slots = next.edit("collections")->edit("1")->edit("slots");
                    slots->set("a long name of thread " + std::to_string(t), i);
                    slots->erase(std::to_string(random() % 2000 + 1));
                    versions.push_back(std::move(next));
                    if (versions.size() > 20)
                        versions.erase(versions.begin() + 1);
                }
                results[t] = versions.back();
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QVERIFY(shared == library(2000, true));
        for (unsigned t = 0; t < results.size(); ++t) {
            const Json slots = results[t].get("collections").get("1").get("slots");
            QVERIFY2(JsonTree::fault(slots).empty(), JsonTree::fault(slots).c_str());
            QCOMPARE(slots.get("a long name of thread " + std::to_string(t)).asInt(-1), 399);
        }
    }

    /// The cost of an edit command, in nodes: it holds on any machine.
    void anEditCostsItsPathAndNotTheLibrary_data()
    {
        QTest::addColumn<int>("slots");
        QTest::addColumn<bool>("wide");
        QTest::addColumn<unsigned>("mostMade");
        QTest::addColumn<unsigned>("mostVisited");
        // Made: root, collections, collection, slots, slot, each by the height of its tree; a visit is one a
        // side.
        QTest::newRow("1,000 slots of 100") << 1000 << false << 6u << 12u;
        QTest::newRow("1,000 slots in one") << 1000 << true << 7u << 14u;
        QTest::newRow("100,000 slots of 100") << 100000 << false << 8u << 16u;
        QTest::newRow("100,000 slots in one") << 100000 << true << 9u << 18u;
    }
    void anEditCostsItsPathAndNotTheLibrary()
    {
        QFETCH(int, slots);
        QFETCH(bool, wide);
        QFETCH(unsigned, mostMade);
        QFETCH(unsigned, mostVisited);
        const Json before = library(slots, wide);
        const std::string collection = wide ? "1" : std::to_string(slots / 200);
        Json after = before;
        JsonCounters::start();
        after.edit("collections")->edit(collection)->edit("slots")->edit("50")->set("name", "another");
        const auto made = JsonCounters::nodesMade.load();
        Patch redo;
        Patch undo;
        Patch::diff(before, after, redo, undo);
        const auto visited = JsonCounters::nodesVisited.load();
        // A second edit of the same version is made in place.
        after.edit("collections")->edit(collection)->edit("slots")->edit("50")->set("name", "a third");
        JsonCounters::stop();
        QCOMPARE(redo.size(), 1u);
        QCOMPARE(undo.size(), 1u);
        QVERIFY2(made <= mostMade && made >= 5, std::to_string(made).c_str());
        QVERIFY2(visited <= mostVisited && visited >= 10, std::to_string(visited).c_str());
        QCOMPARE(JsonCounters::nodesMade.load(), made);
    }

    /// An added or removed member moves the borders of leaves, but only near it.
    void aDiffOfAddedAndRemovedMembersStaysLocal()
    {
        std::mt19937 random(4);
        const Json before = library(100000, true);
        for (int round = 0; round < 50; ++round) {
            Json after = before;
            Json* slots = after.edit("collections")->edit("1")->edit("slots");
            std::size_t expected = 0;
            for (int i = 0; i < 10; ++i) {
                slots->set("new " + std::to_string(random() % 10), i);
                slots->erase(std::to_string(random() % 100000 + 1));
            }
            slots->forEachMember(
                [&](std::string_view key, const Json&) { expected += key.starts_with("new"); });
            expected += 100000 + expected - slots->size();
            JsonCounters::start();
            Patch redo;
            Patch undo;
            Patch::diff(before, after, redo, undo);
            JsonCounters::stop();
            QCOMPARE(redo.size(), expected);
            QVERIFY2(JsonCounters::nodesVisited < 250, std::to_string(JsonCounters::nodesVisited).c_str());
        }
    }

    void aDiffOfALongArrayStaysLocal()
    {
        Json before;
        for (int i = 0; i < 100000; ++i)
            before.append(i);
        for (const std::size_t at : {0u, 50000u, 100000u}) {
            Json after = before;
            after.insert(at, "new");
            JsonCounters::start();
            Patch redo;
            Patch undo;
            Patch::diff(before, after, redo, undo);
            JsonCounters::stop();
            QCOMPARE(redo.size(), 1u);
            QCOMPARE(QByteArray::fromStdString(redo[0].path.toString()),
                     "/" + QByteArray::number(qulonglong(at)));
            QVERIFY2(JsonCounters::nodesVisited < 80, std::to_string(JsonCounters::nodesVisited).c_str());
            QVERIFY(undo.apply(after) && after == before);
        }
    }
};

HALCYRA_TEST(JsonTreeTest)
#include "jsontreetest.moc"

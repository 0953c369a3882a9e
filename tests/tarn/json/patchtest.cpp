#include "tarn/json/patch.h"

#include "tests/support/testmain.h"

#include <QFile>
#include <QTest>

#include <random>

using namespace vantrel;

namespace {

Json parsed(const QByteArray& text)
{
    Json json;
    std::string error;
    if (!Json::parseString(text.toStdString(), json, &error))
        qFatal("%s: %s", text.constData(), error.c_str());
    return json;
}

/// Of the patch, which is that of its tree.
QByteArray text(const Patch& patch)
{
    const std::string text = patch.toString();
    if (text != patch.toJson().toString())
        qFatal("The text differs from the tree's: %s", text.c_str());
    return QByteArray::fromStdString(text);
}

/// Random documents and edits of them, with names that need escapes and containers of more than one node.
class RandomDocument
{
public:
    explicit RandomDocument(unsigned seed)
        : m_random(seed)
    {
    }

    unsigned draw(unsigned below) { return m_random() % below; }

    Json value(int depth)
    {
        const unsigned kind = draw(depth > 0 ? 10 : 6);
        if (kind >= 6)
            return container(depth, kind >= 8, draw(8) == 0 ? draw(150) : draw(6));
        const Json scalars[] = {Json(), draw(2) == 0, int(draw(5)), draw(5) * 0.5, word(), long(draw(3)) - 1};
        return scalars[kind];
    }

    Json container(int depth, bool object, unsigned size)
    {
        Json json = object ? Json::object() : Json::array();
        for (unsigned i = 0; i < size; ++i) {
            if (object)
                json.set(word(), value(depth - 1));
            else
                json.append(value(depth - 1));
        }
        return json;
    }

    void edit(Json& json, int depth)
    {
        const auto size = static_cast<unsigned>(json.size());
        if (depth > 0 && size > 0 && draw(3) > 0) {
            if (json.isArray())
                edit(*json.edit(draw(size)), depth - 1);
            else
                edit(*json.edit(memberAt(json, draw(size))), depth - 1);
        } else if (json.isObject()) {
            if (draw(2) == 0 && size > 0)
                json.erase(memberAt(json, draw(size)));
            else
                json.set(word(), value(depth));
        } else if (json.isArray()) {
            if (draw(2) == 0 && size > 0)
                json.erase(draw(size));
            else
                json.insert(draw(size + 1), value(depth));
        } else {
            json = value(depth);
        }
    }

private:
    static std::string memberAt(const Json& json, unsigned index)
    {
        std::string name;
        json.forEachMember([&](std::string_view key, const Json&) { return name = key, index-- > 0; });
        return name;
    }
    std::string word()
    {
        static const std::string words[] = {"",  "a", "a/b", "m~n", "~1", "夜景", "transitionDuration",
                                            "0", "-"};
        return draw(2) ? words[draw(9)] : words[draw(9)] + std::to_string(draw(90));
    }

    std::mt19937 m_random;
};

} // namespace

class PatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void conformance_data()
    {
        QTest::addColumn<QByteArray>("json");
        for (const char* name : {"tests.json", "spec_tests.json"}) {
            QFile file(QFINDTESTDATA(QStringLiteral("tarn/json/conformance/") + QLatin1String(name)));
            QVERIFY(file.open(QIODevice::ReadOnly));
            int number = 0;
            parsed(file.readAll()).forEachItem([&](const Json& one) {
                QTest::addRow("%s %d: %s", name, number++, one.get("comment").asString().c_str())
                    << QByteArray::fromStdString(one.toString());
            });
            QVERIFY(number > 10);
        }
    }
    void conformance()
    {
        QFETCH(QByteArray, json);
        const Json one = parsed(json);
        const Json before = one.get("doc");
        Json document = before;
        Patch patch;
        std::string error;
        bool good = Patch::fromJson(one.get("patch"), patch, &error);
        if (good) {
            const PatchResult result = patch.apply(document);
            good = bool(result);
            error = result.message;
            QCOMPARE(result.message.empty(), good);
        }
        QVERIFY2(good == !one.find("error"), (error + " " + one.get("error").asString()).c_str());
        if (!good)
            QVERIFY(document.sameNode(before));
        else if (const Json* expected = one.find("expected"))
            QCOMPARE(QByteArray::fromStdString(document.toString()),
                     QByteArray::fromStdString(expected->toString()));
    }

    void applies_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QByteArray>("patch");
        QTest::addColumn<QByteArray>("expected"); // empty: refused
        QTest::addColumn<PatchError>("error");
        const auto good = [](const char* name, const char* document, const char* patch,
                             const char* expected) {
            QTest::newRow(name) << QByteArray(document) << QByteArray(patch) << QByteArray(expected)
                                << PatchError::None;
        };
        const auto bad = [](const char* name, const char* document, const char* patch, PatchError error) {
            QTest::newRow(name) << QByteArray(document) << QByteArray(patch) << QByteArray() << error;
        };
        using enum PatchError;
        good("add replaces a member", R"({"a":1})", R"([{"op":"add","path":"/a","value":{}}])",
             R"({"a":{}})");
        good("add replaces the root", R"({"a":1})", R"([{"op":"add","path":"","value":null}])", "null");
        good("add at the length", "[1]", R"([{"op":"add","path":"/1","value":2}])", "[1,2]");
        good("- appends", "[[1]]", R"([{"op":"add","path":"/0/-","value":2}])", "[[1,2]]");
        good("- is a name in an object", "{}", R"([{"op":"add","path":"/-","value":2}])", R"({"-":2})");
        good("the empty name", R"({"":{"":1}})", R"([{"op":"replace","path":"//","value":2}])",
             R"({"":{"":2}})");
        good("digits are a name in an object", R"({"01":1})", R"([{"op":"remove","path":"/01"}])", "{}");
        good("remove null", R"({"a":null})", R"([{"op":"remove","path":"/a"}])", "{}");
        good("test equal numbers", R"({"a":[1,2.0]})", R"([{"op":"test","path":"/a","value":[1.0,2]}])",
             R"({"a":[1,2.0]})");
        good("replace the root twice", "1",
             R"([{"op":"replace","path":"","value":[]},{"op":"add","path":"/0","value":3}])", "[3]");
        good("move within an array counts after the removal", "[1,2,3]",
             R"([{"op":"move","from":"/0","path":"/2"}])", "[2,3,1]");
        good("move to the end", "[1,2,3]", R"([{"op":"move","from":"/0","path":"/-"}])", "[2,3,1]");
        good("move onto itself", R"({"a":1})", R"([{"op":"move","from":"/a","path":"/a"}])", R"({"a":1})");
        good("move up over its parent", R"({"a":{"b":{"c":1}}})",
             R"([{"op":"move","from":"/a/b","path":"/a"}])", R"({"a":{"c":1}})");
        good("move to the root", R"({"a":{"b":1}})", R"([{"op":"move","from":"/a","path":""}])",
             R"({"b":1})");
        good("move beside a name that begins alike", R"({"a":1})",
             R"([{"op":"move","from":"/a","path":"/ab"}])", R"({"ab":1})");
        good("copy into its own child", R"({"a":{"b":1}})", R"([{"op":"copy","from":"/a","path":"/a/c"}])",
             R"({"a":{"b":1,"c":{"b":1}}})");
        good("copies are apart", R"({"a":[1]})",
             R"([{"op":"copy","from":"/a","path":"/b"},{"op":"add","path":"/b/-","value":2}])",
             R"({"a":[1],"b":[1,2]})");
        good("members that mean nothing here", "{}",
             R"([{"op":"add","path":"/a","value":1,"from":7,"x":[]}])", R"({"a":1})");
        good("an index in another's name", R"([{"0":5}])", R"([{"op":"test","path":"/0/0","value":5}])",
             R"([{"0":5}])");

        bad("add below nothing", "{}", R"([{"op":"add","path":"/a/b","value":1}])", PathNotFound);
        bad("add below a scalar", R"({"a":"text"})", R"([{"op":"add","path":"/a/0","value":1}])",
            InvalidTarget);
        bad("add past the end", "[1]", R"([{"op":"add","path":"/2","value":1}])", InvalidIndex);
        bad("add at a leading zero", "[1]", R"([{"op":"add","path":"/00","value":1}])", InvalidIndex);
        bad("add at minus one", "[1]", R"([{"op":"add","path":"/-1","value":1}])", InvalidIndex);
        bad("add at a vast index", "[1]", R"([{"op":"add","path":"/18446744073709551617","value":1}])",
            InvalidIndex);
        bad("replace a missing member", "{}", R"([{"op":"replace","path":"/a","value":1}])", PathNotFound);
        bad("replace at the length", "[1]", R"([{"op":"replace","path":"/1","value":1}])", InvalidIndex);
        bad("replace -", "[1]", R"([{"op":"replace","path":"/-","value":1}])", InvalidIndex);
        bad("remove a missing member", "{}", R"([{"op":"remove","path":"/a"}])", PathNotFound);
        bad("remove -", "[1]", R"([{"op":"remove","path":"/-"}])", InvalidIndex);
        bad("remove a leading zero", "[1,2]", R"([{"op":"remove","path":"/01"}])", InvalidIndex);
        bad("remove the root", "[1]", R"([{"op":"remove","path":""}])", InvalidTarget);
        bad("remove below a scalar", "1", R"([{"op":"remove","path":"/a"}])", InvalidTarget);
        bad("test a missing member against null", "{}", R"([{"op":"test","path":"/a","value":null}])",
            PathNotFound);
        bad("test through -", "[[1]]", R"([{"op":"test","path":"/-/0","value":1}])", InvalidIndex);
        bad("test true against 1", "[true]", R"([{"op":"test","path":"/0","value":1}])", TestFailed);
        bad("test a longer array", "[[1]]", R"([{"op":"test","path":"/0","value":[1,2]}])", TestFailed);
        bad("move nothing", "{}", R"([{"op":"move","from":"/a","path":"/b"}])", PathNotFound);
        bad("move into its own child", R"({"a":{"b":1}})", R"([{"op":"move","from":"/a","path":"/a/b"}])",
            InvalidTarget);
        bad("move the root into itself", R"({"a":1})", R"([{"op":"move","from":"","path":"/b"}])",
            InvalidTarget);
        bad("move past the end that it leaves", "[1,2]", R"([{"op":"move","from":"/0","path":"/2"}])",
            InvalidIndex);
        bad("move to nowhere", R"({"a":1})", R"([{"op":"move","from":"/a","path":"/b/c"}])", PathNotFound);
        bad("copy nothing", "[]", R"([{"op":"copy","from":"/0","path":"/-"}])", InvalidIndex);
        bad("get", "{}", R"([{"op":"get","path":""}])", Unsupported);
        bad("invoke", "{}", R"([{"op":"invoke","path":"/methods/take","value":{}}])", Unsupported);
        bad("all or nothing", R"({"a":{"b":[1]}})",
            R"([{"op":"add","path":"/a/b/-","value":2},{"op":"remove","path":"/a/b/0"},)"
            R"({"op":"test","path":"/a/b/0","value":1}])",
            TestFailed);
    }
    void applies()
    {
        QFETCH(QByteArray, document);
        QFETCH(QByteArray, patch);
        QFETCH(QByteArray, expected);
        QFETCH(PatchError, error);
        Json json = parsed(document);
        Patch operations;
        QVERIFY(Patch::parseString(patch.toStdString(), operations));
        const PatchResult result = operations.apply(json);
        QVERIFY2(result.error == error, result.message.c_str());
        QCOMPARE(QByteArray::fromStdString(json.toString()), expected.isEmpty() ? document : expected);
        if (error != PatchError::None) {
            const Path& path = operations[operations.size() - 1].path;
            QVERIFY(result.message.find("\"" + path.toString() + "\"") != std::string::npos);
        }
        // What is written reads back as the same operations.
        Patch again;
        QVERIFY(Patch::fromJson(operations.toJson(), again));
        QCOMPARE(text(again), text(operations));
    }

    void refusesText_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("error");
        const auto row = [](const char* text, const char* error) {
            QTest::newRow(text) << QByteArray(text) << QByteArray(error);
        };
        row("{}", "must be an array");
        row("[1]", "operation 0: no object");
        row("[[]]", "no object");
        row(R"([{"path":"/a","value":1}])", "unknown operation");
        row(R"([{"op":"Add","path":"/a","value":1}])", "unknown operation");
        row(R"([{"op":0,"path":"/a","value":1}])", "unknown operation");
        row(R"([{"op":"remove","path":"/a"},{"op":"spam","path":"/a"}])", "operation 1: unknown operation");
        row(R"([{"op":"remove"}])", "no valid path");
        row(R"([{"op":"remove","path":null}])", "no valid path");
        row(R"([{"op":"remove","path":"a"}])", "no valid path");
        row(R"([{"op":"remove","path":"/a~"}])", "no valid path");
        row(R"([{"op":"remove","path":"/a~2b"}])", "no valid path");
        row(R"([{"op":"add","path":"/a"}])", "no value");
        row(R"([{"op":"replace","path":"/a"}])", "no value");
        row(R"([{"op":"test","path":"/a"}])", "no value");
        row(R"([{"op":"move","path":"/a"}])", "no valid from");
        row(R"([{"op":"copy","path":"/a","from":"b"}])", "no valid from");
        row(R"([{"op":"copy","path":"/a","from":["b"]}])", "no valid from");
        row(R"([{"op":"invoke","path":"/a","value":[1]}])", "no object");
        row(R"([{"op":"add","path":"/a","value":1,"op":"remove"}])", "given twice");
        row(R"([{"op":"add","path":"/a","path":"/b","value":1}])", "given twice");
        row(R"([{"op":"remove","path":"/a"}] [])", "text after the value");
    }
    void refusesText()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, error);
        Patch patch;
        patch.append(PatchOp::get(""));
        std::string said;
        QVERIFY(!Patch::parseString(text.toStdString(), patch, &said));
        QVERIFY(patch.empty());
        QVERIFY2(QByteArray::fromStdString(said).contains(error), said.c_str());
    }

    void requestsHaveTheFormOfTheLink()
    {
        Patch patch;
        patch.append(PatchOp::get(""));
        patch.append(
            PatchOp::invoke(Path("/device/channels/0/methods/take"), {{"presetToggle", true}, {"n", 2}}));
        QCOMPARE(
            text(patch),
            QByteArray(R"([{"op":"get","path":""},{"op":"invoke",)"
                       R"("path":"/device/channels/0/methods/take","value":{"n":2,"presetToggle":true}}])"));
    }

    /// A copy costs a pointer, so a few of them could make a document that nobody can write down or read.
    void copiesCannotGrowWithoutBound()
    {
        Json document = parsed(R"({"a":[1]})");
        Patch doubling;
        Patch deepening;
        for (int i = 0; i < 60; ++i) {
            const Path to("/x" + std::to_string(i));
            doubling.append({PatchOpType::Copy, to, Path(), Json()});
            const Path name("/" + std::to_string(i));
            deepening.append({PatchOpType::Copy, name, Path(), Json()});
            deepening.append({PatchOpType::Replace, Path("/a"), Path(), Json()});
        }
        QCOMPARE(doubling.apply(document).error, PatchError::InvalidTarget);
        Json deep = 0;
        for (int i = 0; i < Json::maxDepth - 1; ++i)
            deep = Json::object({{"a", deep}});
        Patch add;
        add.append({PatchOpType::Add, Path("/b"), Path(), deep});
        QCOMPARE(bool(add.apply(document)), true);
        Json again;
        QVERIFY(Json::parseString(document.toString(), again));
        Patch tooDeep;
        tooDeep.append({PatchOpType::Add, Path("/a/0"), Path(), deep});
        QCOMPARE(tooDeep.apply(document).error, PatchError::InvalidTarget);
        QVERIFY(document == again);
    }

    void diffs_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QByteArray>("redo");
        QTest::addColumn<QByteArray>("undo");
        const auto row = [](const char* name, const char* from, const char* to, const char* redo,
                            const char* undo) {
            QTest::newRow(name) << QByteArray(from) << QByteArray(to) << QByteArray(redo) << QByteArray(undo);
        };
        row("nothing", R"({"a":[1,{"b":2}]})", R"({"a":[1,{"b":2.0}]})", "[]", "[]");
        row("a member's value", R"({"a":1,"b":1})", R"({"a":1,"b":null})",
            R"([{"op":"replace","path":"/b","value":null}])", R"([{"op":"replace","path":"/b","value":1}])");
        row("a member more", R"({"a":1})", R"({"a":1,"b/~":[1]})",
            R"([{"op":"add","path":"/b~1~0","value":[1]}])", R"([{"op":"remove","path":"/b~1~0"}])");
        row("another type", R"({"a":{}})", R"({"a":[]})", R"([{"op":"replace","path":"/a","value":[]}])",
            R"([{"op":"replace","path":"/a","value":{}}])");
        row("the root", "[1]", "{}", R"([{"op":"replace","path":"","value":{}}])",
            R"([{"op":"replace","path":"","value":[1]}])");
        row("an item in the middle goes", "[1,2,3,4]", "[1,2,4]", R"([{"op":"remove","path":"/2"}])",
            R"([{"op":"add","path":"/2","value":3}])");
        row("items come in the middle", "[1,4]", "[1,2,3,4]",
            R"([{"op":"add","path":"/1","value":2},{"op":"add","path":"/2","value":3}])",
            R"([{"op":"remove","path":"/2"},{"op":"remove","path":"/1"}])");
        row("inside an item", R"([1,{"a":1},2])", R"([1,{"a":5},2])",
            R"([{"op":"replace","path":"/1/a","value":5}])", R"([{"op":"replace","path":"/1/a","value":1}])");
        row("one changed, two gone", "[1,2,3,4,5]", "[1,9,5]",
            R"([{"op":"replace","path":"/1","value":9},{"op":"remove","path":"/3"},)"
            R"({"op":"remove","path":"/2"}])",
            R"([{"op":"replace","path":"/1","value":2},{"op":"add","path":"/2","value":4},)"
            R"({"op":"add","path":"/2","value":3}])");
        row("all equal items", "[1,1,1]", "[1,1]", R"([{"op":"remove","path":"/2"}])",
            R"([{"op":"add","path":"/2","value":1}])");
    }
    void diffs()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QByteArray, redo);
        QFETCH(QByteArray, undo);
        Patch forth;
        Patch back;
        Patch alone;
        Patch::diff(parsed(from), parsed(to), forth, back);
        Patch::diff(parsed(from), parsed(to), alone);
        QCOMPARE(text(forth), redo);
        QCOMPARE(text(back), undo);
        QCOMPARE(text(alone), redo);
    }

    /// Diffs of random edits lead there and back, whether the versions share their nodes or not, and nothing
    /// that was written before changes.
    void randomEditsLeadThereAndBack()
    {
        for (unsigned seed = 0; seed < 2000; ++seed) {
            RandomDocument source(seed);
            const Json before = source.container(3, seed % 4 != 0, seed % 10 == 0 ? 200 : source.draw(8));
            const std::string textBefore = before.toString();
            Json after = before;
            for (unsigned i = source.draw(12); i-- > 0;)
                source.edit(after, 3);
            const std::string textAfter = after.toString();
            Json apart;
            QVERIFY(Json::parseString(textAfter, apart));
            for (const Json& target : {after, apart}) {
                Patch redo;
                Patch undo;
                Patch::diff(before, target, redo, undo);
                QCOMPARE(redo.empty(), before == target);
                Json document = before;
                QVERIFY2(redo.apply(document), text(redo).constData());
                QVERIFY2(document == target, text(redo).constData());
                QVERIFY2(undo.apply(document), text(undo).constData());
                QVERIFY2(document == before, text(undo).constData());
            }
            QCOMPARE(before.toString(), textBefore);
            QCOMPARE(after.toString(), textAfter);
        }
    }
};

HALCYRA_TEST(PatchTest)
#include "patchtest.moc"

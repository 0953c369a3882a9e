#include "tarn/scene/scene.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QTest>

#include <cmath>

using namespace vantrel;

namespace {

/// What a scene told, one text a change.
struct Recorder
{
    explicit Recorder(Scene& scene)
        : scene(scene)
    {
        scene.addChangeCallback(&Recorder::onChange, this);
    }
    ~Recorder() { scene.removeChangeCallback(&Recorder::onChange, this); }

    static void onChange(Scene* scene, int count, const SceneChange* changes, void* user)
    {
        auto* self = static_cast<Recorder*>(user);
        self->batches.append(count);
        for (int i = 0; i < count; ++i) {
            const SceneChange& change = changes[i];
            Path path;
            if (!scene->pathOf(change.object, path))
                self->lines.append(QStringLiteral("lost"));
            const char mark = change.kind == SceneChange::Added     ? '+'
                              : change.kind == SceneChange::Removed ? '-'
                                                                    : '=';
            QString line = QLatin1Char(mark) + QString::fromStdString(path.toString());
            if (change.property)
                line += QStringLiteral(" %1 %2").arg(QString::fromStdString(change.property->name),
                                                     QString::fromStdString(change.value.asString()));
            self->lines.append(line);
        }
    }

    QStringList take() { return std::exchange(lines, {}); }

    Scene& scene;
    QStringList lines;
    QList<int> batches;
};

Patch parsed(const char* text)
{
    Patch patch;
    std::string why;
    if (!Patch::parseString(text, patch, &why))
        qFatal("%s: %s", text, why.c_str());
    return patch;
}

void build(Scene& scene)
{
    QVERIFY(scene.apply(parsed(R"([
        {"op": "add", "path": "/device/channels/0", "value": {"type": "Channel",
            "preview": {"properties": {"media": "slot 2", "volume": 0.5}},
            "mappings": [{"properties": {"target": "a"}}, {"properties": {"target": "b"}}]}},
        {"op": "add", "path": "/device/surfaces/-", "value": {"properties": {"name": "wall"},
            "corners": {"topLeft": {"properties": {"x": 0.25}}}}},
        {"op": "add", "path": "/device/surfaces/-", "value": {}}
    ])"),
                        true));
}

} // namespace

class TestScene : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsWhatIsThere_data();
    void findsWhatIsThere();
    void keepsTheSkeletonOnClear();
    void tellsPathsOnlyOfItsOwn();
    void editsAndTells();
    void refusesEdits();
    void movesAndCopies();
    void appliesInBatches();
    void patchesEveryKindOfPlace_data();
    void patchesEveryKindOfPlace();
    void skipsWhatDoesNotFit_data();
    void skipsWhatDoesNotFit();
    void stopsWhenStrict();
    void keepsTheLogShort();
    void replacesKeepingIdentity();
    void rebuildsFromItsSnapshot();
    void listenersMayComeAndGo();
    void listenersMayEdit();
    void declaresItsTypes();
};

void TestScene::findsWhatIsThere_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("what");
    const auto row = [](const char* path, const char* type, const char* what = "object") {
        QTest::newRow(path) << QByteArray(path) << QString::fromLatin1(type) << QString::fromLatin1(what);
    };
    row("", "Scene");
    row("/device/channels", "ObjectArray");
    row("/device/channels/0/preview", "Playback");
    row("/device/channels/0/mappings/1", "GpuMapping");
    row("/device/channels/0/preview/properties/media", "Playback", "property");
    row("/device/channels/0/methods/take", "Channel", "method");
    row("/device/surfaces/0/corners/topLeft", "Corner");
    row("/device/channels/1", "", "nothing");
    row("/device/channels/-", "", "nothing");
    row("/device/channels/00", "", "nothing");
    row("/device/channels/0/preview/properties", "", "nothing");
    row("/device/channels/0/preview/properties/none", "", "nothing");
    row("/device/channels/0/methods/none", "", "nothing");
    row("/device/channels/9/preview", "", "nothing");
    row("/nowhere/at/all", "", "nothing");
}

void TestScene::findsWhatIsThere()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, type);
    QFETCH(QString, what);
    Scene scene;
    build(scene);
    const ScenePointer at = scene.find(path.toStdString());
    QCOMPARE(at.deref() ? QString::fromStdString(at.deref()->getTypeName()) : QString(), type);
    QCOMPARE(at.property() != nullptr, what == QStringLiteral("property"));
    QCOMPARE(at.method() != nullptr, what == QStringLiteral("method"));
    QCOMPARE(scene.findObject(path.toStdString()) != nullptr, what == QStringLiteral("object"));
}

void TestScene::keepsTheSkeletonOnClear()
{
    Scene scene;
    const QList<const char*> skeleton = {"/device/channels", "/device/system/gpus",
                                         "/device/showConfiguration", "/device/surfaces"};
    QList<Object*> before;
    for (const char* path : skeleton)
        before.append(scene.findObject(path));
    QVERIFY(!before.contains(nullptr));
    const Json blank = Scene::toJson(scene.root());

    build(scene);
    QVERIFY(scene.replaceProperty(scene.find("/device/showConfiguration/properties/autoSave"),
                                  Variant::from(true)));
    Recorder recorder(scene);
    scene.clear();
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("-/device/surfaces/1"), QStringLiteral("-/device/surfaces/0"),
                          QStringLiteral("=/device/showConfiguration autoSave false"),
                          QStringLiteral("-/device/channels/0")}));
    for (int i = 0; i < skeleton.size(); ++i)
        QCOMPARE(scene.findObject(skeleton[i]), before[i]);
    QCOMPARE(Scene::toJson(scene.root()), blank);
}

void TestScene::tellsPathsOnlyOfItsOwn()
{
    Scene scene;
    build(scene);
    const Ref<Object> stranger(TypeInfo::instantiate("Playback"));
    Path path{"left", "over"};
    QVERIFY(!scene.pathOf(stranger.get(), path));
    QVERIFY(path.empty());
    QVERIFY(!scene.pathOf(nullptr, path));
    QVERIFY(!scene.pathOf(stranger.get(), stranger->findProperty("media"), path));

    Object* program = scene.findObject("/device/channels/0/program");
    QVERIFY(scene.pathOf(program, program->findProperty("volume"), path));
    QCOMPARE(path.toString(), std::string("/device/channels/0/program/properties/volume"));
    QVERIFY(scene.pathOf(program, program->getType()->findMethod("step"), path));
    QCOMPARE(path.toString(), std::string("/device/channels/0/program/methods/step"));

    const Ref<Object> gone(scene.findObject("/device/channels/0"));
    QVERIFY(scene.removeObject(scene.find("/device/channels/0")));
    QVERIFY(!scene.pathOf(program, path));
    QVERIFY(path.empty());
}

void TestScene::editsAndTells()
{
    Scene scene;
    Recorder recorder(scene);
    QVERIFY(scene.addObject(scene.find("/device/surfaces/-"), {{"name", Variant::from("a")}}));
    QVERIFY(scene.addObject(scene.find("/device/surfaces/0"), {{"name", Variant::from("b")}}));
    QVERIFY(scene.addObject(scene.find("/device/surfaces/0/corners/left"), {{"x", Variant::from(1)}}));
    QVERIFY(scene.replaceProperty(scene.find("/device/surfaces/1/properties/x"), Variant::from(2)));
    QVERIFY(
        scene.replaceProperty(scene.find("/device/surfaces/1/properties/x"), Variant::from(2.0))); // no news
    VariantMap properties;
    QVERIFY(scene.getProperties(scene.find("/device/surfaces/1"), properties));
    QCOMPARE(properties.at("name"), Variant::from("a"));
    QCOMPARE(properties.at("x"), Variant::from(2.0));
    QVERIFY(scene.removeObject(scene.find("/device/surfaces/0")));
    QVERIFY(scene.addObject(scene.find("/device/surfaces/1"), properties));
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("+/device/surfaces/0"), QStringLiteral("+/device/surfaces/0"),
                          QStringLiteral("+/device/surfaces/0/corners/left"),
                          QStringLiteral("=/device/surfaces/1 x 2"), QStringLiteral("-/device/surfaces/0"),
                          QStringLiteral("+/device/surfaces/1")}));

    // As the mirrors write: the object first, then the telling.
    Object* surface = scene.findObject("/device/surfaces/0");
    const PropertyInfo* width = surface->findProperty("width");
    QVERIFY(surface->setProperty(width, Variant::from(3)));
    QCOMPARE(recorder.take(), QStringList());
    scene.notifyPropertyChange(surface, width, Variant::from(3.0));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("=/device/surfaces/0 width 3")));
}

void TestScene::refusesEdits()
{
    Scene scene;
    build(scene);
    const Json before = Scene::toJson(scene.root());
    Recorder recorder(scene);
    QVERIFY(!scene.addObject(scene.find("/device/surfaces/3"), {}));
    QVERIFY(!scene.addObject(scene.find("/device/system"), {}));
    QVERIFY(!scene.addObject(scene.find("/device/surfaces/-"), {{"name", Variant::from(5)}}));
    QVERIFY(!scene.addObject(scene.find("/device/surfaces/-"), {{"nonsense", Variant::from(5)}}));
    QVERIFY(!scene.addObject(scene.find("/device/surfaces/-"), {{"type", Variant::from("Channel")}}));
    QVERIFY(!scene.addObject(scene.find("/device/surfaces/0/corners/"), {}));
    QVERIFY(!scene.removeObject(scene.find("/device/channels")));
    QVERIFY(!scene.removeObject(scene.find("/device/channels/0/preview")));
    QVERIFY(!scene.removeObject(scene.find("/device/surfaces/0/properties/name")));
    QVERIFY(!scene.removeObject(ScenePointer()));
    QVERIFY(!scene.replaceProperty(scene.find("/device/surfaces/0/properties/x"), Variant::from("1")));
    QVERIFY(
        !scene.replaceProperty(scene.find("/device/surfaces/0/properties/x"), Variant::from(std::nan(""))));
    QVERIFY(!scene.replaceProperty(scene.find("/device/surfaces/0"), Variant::from(1)));
    QVERIFY(!scene.moveObject(scene.find("/device/surfaces/0"), scene.find("/device/channels/-")));
    QVERIFY(!scene.moveObject(scene.find("/device/surfaces/0"), scene.find("/device/surfaces/2")));
    QVERIFY(!scene.copyObject(scene.find("/device/surfaces/0"), scene.find("/device/channels/0/preview")));
    QVERIFY(!scene.copyObject(ScenePointer(), ScenePointer()));
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(Scene::toJson(scene.root()), before);
}

void TestScene::movesAndCopies()
{
    Scene scene;
    build(scene);
    Recorder recorder(scene);
    Object* wall = scene.findObject("/device/surfaces/0");
    QVERIFY(scene.moveObject(scene.find("/device/surfaces/0"), scene.find("/device/surfaces/-")));
    QCOMPARE(scene.findObject("/device/surfaces/1"), wall);
    QVERIFY(scene.moveObject(scene.find("/device/surfaces/1"), scene.find("/device/surfaces/0")));
    QVERIFY(scene.moveObject(scene.find("/device/surfaces/0"), scene.find("/device/surfaces/0")));
    QCOMPARE(scene.findObject("/device/surfaces/0"), wall);
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("-/device/surfaces/0"), QStringLiteral("+/device/surfaces/1"),
                          QStringLiteral("-/device/surfaces/1"), QStringLiteral("+/device/surfaces/0")}));

    QVERIFY(scene.copyObject(scene.find("/device/surfaces/0"), scene.find("/device/surfaces/2")));
    QCOMPARE(Scene::toJson(scene.findObject("/device/surfaces/2")), Scene::toJson(wall));
    QVERIFY(
        scene.copyObject(scene.find("/device/channels/0/preview"), scene.find("/device/channels/0/program")));
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("+/device/surfaces/2"),
                                           QStringLiteral("=/device/channels/0/program media slot 2"),
                                           QStringLiteral("=/device/channels/0/program volume 0.5")}));
    QVERIFY(scene.moveObject(scene.find("/device/surfaces/0/corners/topLeft"),
                             scene.find("/device/surfaces/1/corners/bottom")));
    QVERIFY(scene.findObject("/device/surfaces/1/corners/bottom"));
    QVERIFY(!scene.findObject("/device/surfaces/0/corners/topLeft"));
}

void TestScene::appliesInBatches()
{
    Scene scene;
    build(scene);
    Recorder recorder(scene);
    QVERIFY(scene.apply(parsed(R"([
        {"op": "replace", "path": "/device/surfaces/0/properties/x", "value": 1},
        {"op": "replace", "path": "/device/surfaces/0/properties/y", "value": 2},
        {"op": "add", "path": "/device/surfaces/0", "value": {"properties": {"x": 7},
            "corners": {"a": {}, "b": {}}}},
        {"op": "replace", "path": "/device/surfaces/0/properties/x", "value": 7},
        {"op": "replace", "path": "/device/surfaces/0/properties/x", "value": 8},
        {"op": "replace", "path": "/device/surfaces/0/properties/x", "value": 9}
    ])"),
                        false));
    QCOMPARE(
        recorder.take(),
        QStringList({QStringLiteral("=/device/surfaces/0 x 1"), QStringLiteral("=/device/surfaces/0 y 2"),
                     QStringLiteral("+/device/surfaces/0"), QStringLiteral("=/device/surfaces/0 x 8"),
                     QStringLiteral("=/device/surfaces/0 x 9")}));
    QCOMPARE(recorder.batches, QList<int>({2, 1, 2}));
    QCOMPARE(scene.findObject("/device/surfaces/0/corners")->childCount(), 2);
}

void TestScene::patchesEveryKindOfPlace_data()
{
    QTest::addColumn<QByteArray>("patch");
    QTest::addColumn<QStringList>("told");
    const auto row = [](const char* name, const char* patch, const QStringList& told) {
        QTest::newRow(name) << QByteArray(patch) << told;
    };
    row("read-only is for clients",
        R"([{"op":"replace","path":"/device/channels/0/preview/properties/sourceMode","value":2}])",
        {QStringLiteral("=/device/channels/0/preview sourceMode 2")});
    row("add of a property replaces",
        R"([{"op":"add","path":"/device/channels/0/preview/properties/muted","value":true}])",
        {QStringLiteral("=/device/channels/0/preview muted true")});
    row("all properties, the rest to its defaults",
        R"([{"op":"replace","path":"/device/channels/0/preview/properties","value":{"muted":true}}])",
        {QStringLiteral("=/device/channels/0/preview media "),
         QStringLiteral("=/device/channels/0/preview volume 1"),
         QStringLiteral("=/device/channels/0/preview muted true")});
    row("a fixed part",
        R"([{"op":"add","path":"/device/channels/0/program","value":{"properties":{"fps":25}}}])",
        {QStringLiteral("=/device/channels/0/program fps 25")});
    row("a whole array",
        R"([{"op":"replace","path":"/device/surfaces","value":[{"properties":{"name":"x"}}]}])",
        {QStringLiteral("-/device/surfaces/1"), QStringLiteral("=/device/surfaces/0 name x"),
         QStringLiteral("-/device/surfaces/0/corners/topLeft")});
    row("a whole map", R"([{"op":"add","path":"/device/surfaces/0/corners","value":{"a":{},"topLeft":{}}}])",
        {QStringLiteral("+/device/surfaces/0/corners/a"),
         QStringLiteral("=/device/surfaces/0/corners/topLeft x 0")});
    row("an item of a map again", R"([{"op":"add","path":"/device/surfaces/0/corners/topLeft","value":{}}])",
        {QStringLiteral("-/device/surfaces/0/corners/topLeft"),
         QStringLiteral("+/device/surfaces/0/corners/topLeft")});
    row("copy of a property",
        R"([{"op":"copy","from":"/device/surfaces/0/properties/name","path":"/device/surfaces/1/properties/source"}])",
        {QStringLiteral("=/device/surfaces/1 source wall")});
    row("move into what stands elsewhere once it has left",
        R"([{"op":"copy","from":"/device/surfaces/0","path":"/device/surfaces/0"},
            {"op":"move","from":"/device/surfaces/0","path":"/device/surfaces/1"}])",
        {QStringLiteral("+/device/surfaces/0"), QStringLiteral("-/device/surfaces/0"),
         QStringLiteral("+/device/surfaces/1")});
    row("a test that holds, and what a newer server knows",
        R"([{"op":"test","path":"/device/surfaces/0/properties/name","value":"wall"},
            {"op":"add","path":"/device/surfaces/-","value":{"properties":{"glow":1},"pixels":{}}}])",
        {QStringLiteral("+/device/surfaces/2")});
    row("the whole document", R"([{"op":"replace","path":"","value":{"device":{"surfaces":[{},{}]}}}])",
        {QStringLiteral("-/device/channels/0"), QStringLiteral("=/device/surfaces/0 name "),
         QStringLiteral("-/device/surfaces/0/corners/topLeft")});
}

void TestScene::patchesEveryKindOfPlace()
{
    QFETCH(QByteArray, patch);
    QFETCH(QStringList, told);
    const test::LogCapture log;
    Scene scene;
    build(scene);
    Recorder recorder(scene);
    QVERIFY(scene.apply(parsed(patch.constData()), false));
    QCOMPARE(recorder.take(), told);
    QCOMPARE(log.lines(), QStringList());
}

void TestScene::skipsWhatDoesNotFit_data()
{
    QTest::addColumn<QByteArray>("op");
    for (
        const char* op : {
            R"({"op":"add","path":"/device/surfaces/3","value":{}})",
            R"({"op":"add","path":"/device/surfaces/01","value":{}})",
            R"({"op":"add","path":"/device/surfaces/0/corners/","value":{}})",
            R"({"op":"add","path":"/device/nothing","value":{}})",
            R"({"op":"add","path":"/device/surfaces/-","value":7})",
            R"({"op":"add","path":"/device/surfaces/-","value":{"type":"Channel"}})",
            R"({"op":"add","path":"/device/surfaces/-","value":{"type":7}})",
            R"({"op":"add","path":"/device/surfaces/-","value":{"properties":{"x":"1"}}})",
            R"({"op":"add","path":"/device/surfaces/-","value":{"properties":[]}})",
            R"({"op":"add","path":"/device/surfaces/-","value":{"corners":[]}})",
            R"({"op":"add","path":"/device/surfaces/-","value":{"corners":{"a":{"properties":{"x":null}}}}})",
            R"({"op":"replace","path":"/device/surfaces/0/properties/x","value":"1"})",
            R"({"op":"replace","path":"/device/surfaces/0/properties/locked","value":1})",
            R"({"op":"replace","path":"/device/surfaces/0/properties","value":{"x":1,"y":"2"}})",
            R"({"op":"replace","path":"/device/surfaces/0/properties/none","value":1})",
            R"({"op":"replace","path":"/device/surfaces/2","value":{}})",
            R"({"op":"replace","path":"/device/surfaces/-","value":{}})",
            R"({"op":"replace","path":"/device/system","value":{"type":"Channel"}})",
            R"({"op":"replace","path":"/device","value":{"surfaces":{}}})",
            R"({"op":"replace","path":"/device/channels/0/methods/take","value":{}})",
            R"({"op":"remove","path":"/device/surfaces/2"})",
            R"({"op":"remove","path":"/device/system"})",
            R"({"op":"remove","path":""})",
            R"({"op":"remove","path":"/device/surfaces/0/properties/x"})",
            R"({"op":"move","from":"/device/surfaces/0","path":"/device/channels/0"})",
            R"({"op":"move","from":"/device/surfaces/0","path":"/device/surfaces/0/corners/a"})",
            R"({"op":"move","from":"/device/surfaces/0","path":"/device/surfaces/2"})",
            R"({"op":"move","from":"/device/system","path":"/device/surfaces/0"})",
            R"({"op":"copy","from":"/device/surfaces/5","path":"/device/surfaces/0"})",
            R"({"op":"copy","from":"/device/surfaces/0/properties/name","path":"/device/surfaces/0/properties/x"})",
            R"({"op":"copy","from":"/device/surfaces/0","path":"/device/surfaces/0/properties/x"})",
            R"({"op":"test","path":"/device/surfaces/0/properties/name","value":"roof"})",
            R"({"op":"test","path":"/device/surfaces/7","value":null})",
            R"({"op":"get","path":""})",
            R"({"op":"invoke","path":"/device/channels/0/methods/take","value":{}})",
        })
        QTest::newRow(op) << QByteArray(op);
}

void TestScene::skipsWhatDoesNotFit()
{
    QFETCH(QByteArray, op);
    const test::LogCapture log;
    Scene scene;
    build(scene);
    const Json before = Scene::toJson(scene.root());
    Recorder recorder(scene);
    const QByteArray patch =
        "[" + op + R"(,{"op":"replace","path":"/device/surfaces/1/properties/y","value":4}])";
    QVERIFY(!scene.apply(parsed(patch.constData()), false));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("=/device/surfaces/1 y 4")));
    QCOMPARE(log.lines().size(), 1);
    QVERIFY2(log.lines()[0].startsWith(QStringLiteral("scene: Skipping ")), qPrintable(log.lines()[0]));
    QVERIFY(scene.replaceProperty(scene.find("/device/surfaces/1/properties/y"), Variant::from(0)));
    QCOMPARE(Scene::toJson(scene.root()), before);
}

void TestScene::stopsWhenStrict()
{
    const test::LogCapture log;
    Scene scene;
    QVERIFY(!scene.apply(parsed(R"([{"op":"add","path":"/device/surfaces/-","value":{}},
        {"op":"remove","path":"/device/surfaces/9"},{"op":"add","path":"/device/surfaces/-","value":{}}])"),
                         true));
    QCOMPARE(scene.findObject("/device/surfaces")->childCount(), 1);
    QCOMPARE(log.lines().size(), 1);
}

void TestScene::keepsTheLogShort()
{
    const test::LogCapture log;
    Scene scene;
    Patch patch;
    for (int i = 0; i < 1000; ++i)
        patch.append({PatchOpType::Remove, Path("/device/surfaces/7"), {}, {}});
    QVERIFY(!scene.apply(patch, false));
    QVERIFY(log.lines().size() < 20);
}

void TestScene::replacesKeepingIdentity()
{
    Scene scene;
    build(scene);
    Object* const channel = scene.findObject("/device/channels/0");
    Object* const mapping = scene.findObject("/device/channels/0/mappings/1");
    Recorder recorder(scene);
    Patch whole;
    whole.append({PatchOpType::Add, {}, {}, Scene::toJson(scene.root())});
    QVERIFY(scene.apply(whole, true));
    QCOMPARE(recorder.take(), QStringList()); // the same document is no news
    QCOMPARE(scene.findObject("/device/channels/0"), channel);
    QCOMPARE(scene.findObject("/device/channels/0/mappings/1"), mapping);
}

void TestScene::rebuildsFromItsSnapshot()
{
    Scene scene;
    build(scene);
    QVERIFY(scene.replaceProperty(scene.find("/device/showConfiguration/properties/autoStartShow"),
                                  Variant::from("opening")));
    Patch received;
    QVERIFY(Patch::parseString(scene.snapshot().toJson().toString(), received));
    Scene other;
    QVERIFY(other.apply(received, true));
    QCOMPARE(Scene::toJson(other.root()), Scene::toJson(scene.root()));
}

void TestScene::listenersMayComeAndGo()
{
    struct Counter
    {
        int count = 0;
        bool leaves = false;
        bool brings = false;
        Counter* other = nullptr;
        static void onChange(Scene* scene, int, const SceneChange*, void* user)
        {
            auto* self = static_cast<Counter*>(user);
            ++self->count;
            if (self->leaves)
                scene->removeChangeCallback(&Counter::onChange, self);
            if (self->brings && self->other)
                scene->addChangeCallback(&Counter::onChange, std::exchange(self->other, nullptr));
            else if (self->other)
                scene->removeChangeCallback(&Counter::onChange, self->other);
        }
    };
    Counter newcomer;
    Counter victim;
    Counter once{.leaves = true};
    Counter killer{.other = &victim};
    Counter host{.brings = true, .other = &newcomer};
    Scene scene;
    scene.removeChangeCallback(&Counter::onChange, &victim); // never added
    for (Counter* counter : {&once, &killer, &victim, &host})
        scene.addChangeCallback(&Counter::onChange, counter);
    const auto change = [&](int value) {
        QVERIFY(scene.addObject(scene.find("/device/surfaces/-"), {{"x", Variant::from(value)}}));
    };
    change(1);
    change(2);
    QCOMPARE(once.count, 1);
    QCOMPARE(victim.count, 0);
    QCOMPARE(killer.count, 2);
    QCOMPARE(host.count, 2);
    QCOMPARE(newcomer.count, 1);
    scene.removeChangeCallback(&Counter::onChange, nullptr); // the same function, another user
    change(3);
    QCOMPARE(host.count, 3);
}

void TestScene::listenersMayEdit()
{
    // Answers each new surface by a corner and each name by the removal of the first surface.
    const auto answer = [](Scene* scene, int count, const SceneChange* changes, void*) {
        for (int i = 0; i < count; ++i) {
            const SceneChange& change = changes[i];
            if (change.kind == SceneChange::Added && change.object->getTypeName() == "Surface") {
                Path path;
                QVERIFY(scene->pathOf(change.object, path));
                QVERIFY(scene->addObject(scene->find(PathView(path + Path{"corners", "made"})), {}));
            } else if (change.property && change.property->name == "name") {
                QVERIFY(scene->removeObject(scene->find("/device/surfaces/0")));
            }
        }
    };
    Scene scene;
    scene.addChangeCallback(answer, nullptr);
    Recorder recorder(scene);
    QVERIFY(scene.apply(parsed(R"([
        {"op": "add", "path": "/device/surfaces/-", "value": {}},
        {"op": "add", "path": "/device/surfaces/-", "value": {}},
        {"op": "replace", "path": "/device/surfaces/1/properties/name", "value": "a"},
        {"op": "replace", "path": "/device/surfaces/0/properties/name", "value": "b"}
    ])"),
                        false));
    QCOMPARE(scene.findObject("/device/surfaces")->childCount(), 0);
    QCOMPARE(recorder.lines.filter(QStringLiteral("corners/made")).size(), 2);
    QCOMPARE(recorder.lines.filter(QStringLiteral("-/device/surfaces/0")).size(), 2);
}

void TestScene::declaresItsTypes()
{
    struct Case
    {
        const char* type;
        const char* property;
        const char* method;
        const char* def;
    };
    for (const Case& c :
         {Case{"Playback", "volume", "seekMedia", "1"}, Case{"Playback", "state", "step", "stop"},
          Case{"Playback", "endAction", "selectAudioDevice", "next"},
          Case{"GpuMapping", "backgroundColor", "selectBackgroundColor", "#000000"},
          Case{"Output", "dsc", "setEdidOverride", "false"},
          Case{"ShowConfiguration", "autoStartShowList", "saveShow", ""}}) {
        const Ref<Object> object(TypeInfo::instantiate(c.type));
        QVERIFY2(object, c.type);
        Variant value;
        QVERIFY2(object->getProperty(c.property, value), c.property);
        QCOMPARE(value.asString(), std::string(c.def));
        QVERIFY2(object->getType()->findMethod(c.method), c.method);
        QVERIFY(!object->getProperty("none", value));
    }
    QVERIFY(!TypeInfo::instantiate("Nonsense"));
    QVERIFY(!TypeInfo::instantiate("ObjectArray"));
    const Ref<Object> channel(TypeInfo::instantiate("Channel"));
    QVERIFY(!channel->findChildByName("modelines", true));
    QCOMPARE(channel->findChildByName("mappings", false)->getParent(), channel.get());
    QCOMPARE(channel->childIndex(channel->findChildByName("program", false)), 1);
}

HALCYRA_TEST(TestScene)
#include "test_scene.moc"

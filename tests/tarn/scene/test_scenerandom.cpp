#include "tarn/scene/scene.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QTest>

#include <random>

using namespace vantrel;

namespace {

/// Makes operations on a scene that mean the same to it and to its plain JSON document: values are complete,
/// and what fails fails on both.
class Generator
{
public:
    Generator(const Scene& scene, unsigned seed)
        : m_scene(scene)
        , m_random(seed)
    {
    }

    PatchOp next()
    {
        switch (pick(8)) {
        case 0:
        case 1:
            return {PatchOpType::Add, place(), {}, value()};
        case 2:
            return {PatchOpType::Remove, item(), {}, {}};
        case 3:
            return {PatchOpType::Move, place(), item(), {}};
        case 4:
            return {PatchOpType::Copy, place(), item(), {}};
        case 5:
            return {PatchOpType::Replace, item(), {}, value()};
        default:
            return {PatchOpType::Replace, item() + Path{"properties", chance() ? "x" : "name"}, {}, {}};
        }
    }

    /// Fits the value to what stands at the path, so that the scene has no reason of its own to refuse it.
    void complete(PatchOp& op)
    {
        const bool isCorner = op.path.size() >= 5;
        if (op.op == PatchOpType::Replace && op.path.size() % 2 == 1 &&
            op.path[op.path.size() - 2].text() == "properties") {
            if (op.path.back().text() == "x")
                op.value = Json(pick(1000) / 8.0);
            else if (isCorner && op.path.size() == 7)
                op.path = op.path.parent() + Path{"y"};
            if (op.path.back().text() == "name")
                op.value = Json("n" + std::to_string(pick(5)));
            else
                op.value = Json(pick(100));
            return;
        }
        const Ref<Object> object(TypeInfo::instantiate(isCorner ? "Corner" : "Surface"));
        object->setProperty(object->findProperty("x"), Variant::from(pick(1000)));
        op.value = Scene::toJson(object.get());
    }

    bool inCorners(const Path& path) const { return path.size() >= 5; }

private:
    int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(m_random); }
    bool chance() { return pick(2) == 0; }
    int surfaces() const { return m_scene.findObject("/device/surfaces")->childCount(); }
    std::string surface() { return std::to_string(pick(surfaces() + 2)); } // now and then out of range
    std::string corner() { return std::string(1, static_cast<char>('a' + pick(6))); }
    Path item() { return chance() ? Path{"device", "surfaces", surface()} : cornerPath(); }
    Path place()
    {
        if (chance())
            return Path{"device", "surfaces", pick(4) == 0 ? std::string("-") : surface()};
        return cornerPath();
    }
    Path cornerPath() { return Path{"device", "surfaces", surface(), "corners", corner()}; }
    Json value() { return {}; }

    const Scene& m_scene;
    std::mt19937 m_random;
};

/// Follows a scene by what it tells, as a peer over the link or an item model would.
class Follower : public SceneStructureObserver
{
public:
    explicit Follower(Scene& scene)
        : document(Scene::toJson(scene.root()))
    {
        scene.addChangeCallback(&Follower::onChange, this);
        scene.addStructureObserver(this);
    }

    static void onChange(Scene* scene, int count, const SceneChange* changes, void* user)
    {
        auto* self = static_cast<Follower*>(user);
        for (int i = 0; i < count; ++i)
            self->follow(*scene, changes[i]);
    }

    void follow(const Scene& scene, const SceneChange& change)
    {
        Path path;
        Patch patch;
        if (change.kind == SceneChange::PropertyChanged) {
            faults += !scene.pathOf(change.object, change.property, path);
            Json value;
            Json::fromVariant(change.value, value);
            patch.append({PatchOpType::Replace, path, {}, value});
        } else {
            faults += !scene.pathOf(change.object, path);
            Path parent;
            faults += !scene.pathOf(change.parent, parent) || parent != path.parent();
            if (change.kind == SceneChange::Added) {
                faults += change.parent->childAt(change.index) != change.object;
                patch.append({PatchOpType::Add, path, {}, Scene::toJson(change.object)});
            } else {
                faults += change.object->getParent() != nullptr;
                patch.append({PatchOpType::Remove, path, {}, {}});
            }
        }
        faults += !patch.apply(document);
    }

    void rowAboutToBeInserted(Object* parent, int) override { rows = parent->childCount(); }
    void rowInserted(Object* parent, int) override { faults += parent->childCount() != rows + 1; }
    void rowAboutToBeRemoved(Object* parent, int row) override
    {
        rows = parent->childCount();
        faults += parent->childAt(row) == nullptr;
    }
    void rowRemoved(Object* parent, int) override { faults += parent->childCount() != rows - 1; }

    Json document;
    int rows = 0;
    int faults = 0;
};

bool indexesHold(const Object* object)
{
    for (int i = 0; i < object->childCount(); ++i) {
        const Object* child = object->childAt(i);
        if (object->childIndex(child) != i || child->getParent() != object || !indexesHold(child))
            return false;
    }
    return true;
}

} // namespace

class TestSceneRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithTheDocument_data();
    void agreesWithTheDocument();
};

void TestSceneRandom::agreesWithTheDocument_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 20; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestSceneRandom::agreesWithTheDocument()
{
    QFETCH(unsigned, seed);
    const test::LogCapture quiet;
    Scene scene;
    Follower follower(scene);
    Json document = Scene::toJson(scene.root());
    Generator generator(scene, seed);
    int applied = 0;
    for (int step = 0; step < 400; ++step) {
        PatchOp op = generator.next();
        // A corner is no surface: the document would take it, the scene rightly not.
        if ((op.op == PatchOpType::Move || op.op == PatchOpType::Copy) &&
            generator.inCorners(op.path) != generator.inCorners(op.from))
            continue;
        if (op.op == PatchOpType::Add || op.op == PatchOpType::Replace)
            generator.complete(op);
        Patch patch;
        patch.append(op);
        const bool fits = static_cast<bool>(patch.apply(document));
        const bool fitted = scene.apply(patch, false);
        applied += fits;
        const QByteArray text = QByteArray::fromStdString(patch.toString());
        QVERIFY2(fits == fitted, text.constData());
        QVERIFY2(Scene::toJson(scene.root()) == document, text.constData());
        QVERIFY2(follower.document == document, text.constData());
        QCOMPARE(follower.faults, 0);
        QVERIFY(indexesHold(scene.root()));
    }
    QVERIFY(applied > 60);
}

HALCYRA_TEST(TestSceneRandom)
#include "test_scenerandom.moc"

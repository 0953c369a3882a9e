#include "common/session/mirror/objecttreemodel.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QIdentityProxyModel>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

namespace vantrel::test {

namespace {

Patch patchOf(const char* text)
{
    Patch patch;
    if (!Patch::parseString(text, patch))
        qFatal("bad patch in a test: %s", text);
    return patch;
}

const char* const sampleScene = R"([
    {"op":"add","path":"/device/channels/0","value":{"type":"Channel"}},
    {"op":"add","path":"/device/surfaces/0","value":{"type":"Surface"}},
    {"op":"add","path":"/device/surfaces/0/corners/left","value":{"type":"Corner"}},
    {"op":"add","path":"/device/surfaces/0/corners/above","value":{"type":"Corner"}}])";

/// The tree with names that stay: the tester takes it for a fault when a row's text changes as those before
/// it come and go, which is just what the index of an array's item does.
class StableNames : public QIdentityProxyModel
{
public:
    explicit StableNames(ObjectTreeModel* tree) { setSourceModel(tree); }
    QVariant data(const QModelIndex& index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(quintptr(mapToSource(index).internalPointer()))
                                       : QIdentityProxyModel::data(index, role);
    }
};

/// The model's rows must be the tree's children, all the way down.
int compareDown(const ObjectTreeModel& model, const QModelIndex& index, const Object* object)
{
    const auto children = object->getChildren();
    if (model.rowCount(index) != int(children.size()))
        return -1;
    int total = 1;
    for (int row = 0; row < int(children.size()); ++row) {
        const QModelIndex child = model.index(row, 0, index);
        if (model.object(child) != children[row] || model.index(children[row]) != child)
            return -1;
        const int below = compareDown(model, child, children[row]);
        if (below < 0)
            return -1;
        total += below;
    }
    return total;
}

} // namespace

class TestObjectTreeModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheScene()
    {
        const auto scene = makeRef<Scene>();
        ObjectTreeModel model;
        StableNames names(&model);
        const QAbstractItemModelTester tester(&names, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.setScene(scene.get());
        QVERIFY(scene->apply(patchOf(sampleScene), true));
        QVERIFY(compareDown(model, {}, scene->root()) > 10);

        const QModelIndex channel = model.index(QStringLiteral("/device/channels/0"));
        QCOMPARE(channel.data().toString(), QStringLiteral("0"));
        QCOMPARE(channel.data(Qt::ToolTipRole).toString(), QStringLiteral("Channel"));
        QCOMPARE(channel.data(ObjectTreeModel::ObjectRole).value<Object*>(),
                 scene->findObject("/device/channels/0"));
        QCOMPARE(channel.data(ObjectTreeModel::SceneRole).value<Scene*>(), scene.get());
        QCOMPARE(channel.parent(), model.index(QStringLiteral("/device/channels")));
        QCOMPARE(model.index(QStringLiteral("preview"), channel).data().toString(),
                 QStringLiteral("preview"));
        // A map's children stand in the order of their keys.
        const QModelIndex corners = model.index(QStringLiteral("/device/surfaces/0/corners"));
        QCOMPARE(model.index(0, 0, corners).data().toString(), QStringLiteral("above"));
        QCOMPARE(model.index(1, 0, corners).data().toString(), QStringLiteral("left"));
    }

    void refusesWhatIsNotThere()
    {
        const auto scene = makeRef<Scene>();
        ObjectTreeModel model;
        model.setScene(scene.get());
        QVERIFY(scene->apply(patchOf(sampleScene), true));
        expectWarning(QStringLiteral("index out of range"));
        QVERIFY(!model.index(1, 0, model.index(QStringLiteral("/device/channels"))).isValid());
        expectWarning(QStringLiteral("child row out of range"));
        QVERIFY(!model.index(1, 0).isValid());
        expectWarning(QStringLiteral("Could not find /device/nothing"));
        QVERIFY(!model.index(QStringLiteral("/device/nothing")).isValid());
        const Ref<Object> stranger(TypeInfo::instantiate("Channel"));
        expectWarning(QStringLiteral("Child not found in parent array"));
        QVERIFY(!model.index(stranger.get()).isValid());
    }

    void staysInStepUnderRandomEdits()
    {
        const auto scene = makeRef<Scene>();
        ObjectTreeModel model;
        StableNames names(&model);
        const QAbstractItemModelTester tester(&names, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.setScene(scene.get());
        QRandomGenerator random(20240611);
        auto* surfaces = dynamic_cast<ObjectArray*>(scene->findObject("/device/surfaces"));
        QVERIFY(surfaces);
        const auto surface = [](int index) { return "/device/surfaces/" + std::to_string(index); };
        int removals = 0;
        for (int step = 0; step < 600; ++step) {
            const int size = surfaces->size();
            const int at = size > 0 ? int(random.bounded(size)) : 0;
            switch (size < 3 ? 0 : random.bounded(6)) {
            case 0:
            case 1:
                QVERIFY(scene->addObject(scene->find(surface(int(random.bounded(size + 1)))), {}));
                break;
            case 2:
                QVERIFY(scene->removeObject(scene->find(surface(at))));
                ++removals;
                break;
            case 3:
                QVERIFY(scene->moveObject(scene->find(surface(at)),
                                          scene->find(surface(int(random.bounded(size))))));
                break;
            case 4:
                QVERIFY(scene->copyObject(scene->find(surface(at)), scene->find(surface(size))));
                break;
            default:
                scene->addObject(scene->find(surface(at) + "/corners/" + std::to_string(random.bounded(4))),
                                 {});
            }
            if (step % 50 == 0)
                QVERIFY(compareDown(model, {}, scene->root()) > 0);
        }
        QVERIFY(removals > 20);
        QVERIFY(compareDown(model, {}, scene->root()) > 0);
        scene->clear();
        QCOMPARE(model.rowCount(model.index(QStringLiteral("/device/surfaces"))), 0);
    }

    /// Quadratic cost would take minutes here.
    void takesAHundredThousandObjects()
    {
        const auto scene = makeRef<Scene>();
        ObjectTreeModel model;
        model.setScene(scene.get());
        QElapsedTimer clock;
        clock.start();
        constexpr int count = 100000;
        for (int i = 0; i < count; ++i)
            scene->addObject(scene->find("/device/surfaces/-"), {});
        const QModelIndex surfaces = model.index(QStringLiteral("/device/surfaces"));
        QCOMPARE(model.rowCount(surfaces), count);
        for (int i = count - 1; i >= 0; i -= 7)
            QCOMPARE(model.index(model.object(model.index(i, 0, surfaces))).row(), i);
        scene->clear();
        QCOMPARE(model.rowCount(surfaces), 0);
        QVERIFY2(clock.elapsed() < 20000, qPrintable(QString::number(clock.elapsed())));
    }
};

HALCYRA_TEST(TestObjectTreeModel)

} // namespace vantrel::test

#include "test_objecttreemodel.moc"

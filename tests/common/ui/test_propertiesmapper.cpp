#include "common/session/mirror/objecttreemodel.h"
#include "common/ui/binding/propertiesmapper.h"
#include "common/ui/binding/widgetmapper.h"
#include "common/ui/inspect/propertiesmodel.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QVBoxLayout>

namespace vantrel::test {

namespace {

/// A slider as the mapper may meet it: whole numbers, and with what limits the type has.
class Slider : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int decoy READ value)
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(double min MEMBER min)
    Q_PROPERTY(double max MEMBER max)
    Q_PROPERTY(double def MEMBER def)

public:
    double value() const { return m_value; }
    void setValue(double value)
    {
        m_value = qRound(value * 10) / 10.0;
        Q_EMIT valueChanged();
    }
    double min = -1;
    double max = -1;
    double def = -1;

Q_SIGNALS:
    void valueChanged();

private:
    double m_value = 0;
};

class OnlyMax : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double value MEMBER value)
    Q_PROPERTY(double max MEMBER max)

public:
    double value = 0;
    double max = -1;
};

class Row : public QLabel
{
    Q_OBJECT

public:
    Q_INVOKABLE Row() {}
};

struct Sample
{
    Sample()
        : scene(makeRef<Scene>())
    {
        scene->addObject(scene->find("/device/surfaces/0"),
                         {{"name", Variant::from("left")}, {"opacity", Variant::from(0.5)}});
        surface = scene->findObject("/device/surfaces/0");
    }
    Variant get(const char* name) const
    {
        Variant value;
        surface->getProperty(name, value);
        return value;
    }
    void set(const std::string& name, const Variant& value)
    {
        scene->replaceProperty(scene->find("/device/surfaces/0/properties/" + name), value);
    }
    Ref<Scene> scene;
    Object* surface = nullptr;
};

} // namespace

class TestPropertiesMapper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bindsBothWays()
    {
        Sample sample;
        Slider slider;
        QLineEdit edit;
        PropertiesMapper mapper;
        ObjectTreeModel tree;
        tree.setScene(sample.scene.get());
        mapper.setObject(tree.index(QStringLiteral("/device/surfaces/0")));
        QCOMPARE(mapper.object(), sample.surface);
        mapper.addMapping(QStringLiteral("opacity"), &slider);
        mapper.addMapping(QStringLiteral("name"), &edit, "text");
        QCOMPARE(slider.value(), 0.5);
        QCOMPARE(edit.text(), QStringLiteral("left"));
        slider.setValue(0.8);
        QCOMPARE(sample.get("opacity").as<double>(), 0.8);
        // What the scene brings is not written back, though the target rounds it.
        sample.set("opacity", Variant::from(0.34));
        QCOMPARE(slider.value(), 0.3);
        QCOMPARE(sample.get("opacity").as<double>(), 0.34);
        mapper.removeMapping(&slider);
        sample.set("opacity", Variant::from(1.0));
        QCOMPARE(slider.value(), 0.3);
        slider.setValue(0.1);
        QCOMPARE(sample.get("opacity").as<double>(), 1.0);
    }

    void writesOnKeysAndLossOfFocus_data()
    {
        QTest::addColumn<int>("key");
        for (const int key : {Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Enter})
            QTest::addRow("key %x", unsigned(key)) << key;
        QTest::newRow("focus out") << 0;
    }
    void writesOnKeysAndLossOfFocus()
    {
        QFETCH(int, key);
        Sample sample;
        OnlyMax target; // without a notify signal
        PropertiesMapper mapper;
        mapper.setObject(sample.scene.get(), sample.surface);
        mapper.addMapping(QStringLiteral("opacity"), &target, "value");
        QCOMPARE(target.value, 0.5);
        target.value = 0.75;
        QKeyEvent other(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
        QCoreApplication::sendEvent(&target, &other);
        QCOMPARE(sample.get("opacity").as<double>(), 0.5);
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QFocusEvent focusOut(QEvent::FocusOut);
        QCoreApplication::sendEvent(&target, key ? static_cast<QEvent*>(&press) : &focusOut);
        QCOMPARE(sample.get("opacity").as<double>(), 0.75);
    }

    void givesLimits()
    {
        Sample sample;
        Slider slider;
        OnlyMax target;
        PropertiesMapper mapper;
        mapper.setObject(sample.scene.get(), sample.surface);
        mapper.addMapping(QStringLiteral("opacity"), &slider, "value");
        mapper.addMapping(QStringLiteral("opacity"), &target, "value");
        QCOMPARE(slider.min, 1.0);
        QCOMPARE(slider.max, -1.0);
        QCOMPARE(slider.def, 1.0);
        QCOMPARE(target.max, -1.0);
        // No limits, nothing to give.
        Slider free;
        mapper.addMapping(QStringLiteral("x"), &free, "value");
        QCOMPARE(free.min, -1.0);
    }

    void warnsOfWhatDoesNotFit()
    {
        Sample sample;
        Slider slider;
        QObject plain;
        PropertiesMapper mapper;
        expectWarning(QStringLiteral("Object not set"));
        mapper.addMapping(QStringLiteral("opacity"), &slider, "value");
        mapper.setObject(sample.scene.get(), sample.surface);
        expectWarning(QStringLiteral("No such property gain on Surface"));
        mapper.addMapping(QStringLiteral("gain"), &slider, "value");
        expectWarning(QStringLiteral("dstProperty gain is not valid"));
        mapper.addMapping(QStringLiteral("opacity"), &slider, "gain");
        expectWarning(QStringLiteral(" does not have USER property"));
        mapper.addMapping(QStringLiteral("opacity"), &plain);
        QLineEdit edit;
        mapper.addMapping(QStringLiteral("x"), &edit, "text");
        expectWarning(QStringLiteral("Could not convert from QVariant to Variant"));
        edit.setText(QStringLiteral("no number"));
        QCOMPARE(sample.get("x").as<double>(), 0.0);
    }

    void listsProperties()
    {
        Sample sample;
        PropertiesModel model;
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.setObject(sample.scene.get(), sample.surface);
        const auto cell = [&](const char* name) {
            const auto found = model.match(model.index(0, 0), Qt::DisplayRole, QString::fromLatin1(name), 1,
                                           Qt::MatchExactly);
            return found.value(0).siblingAtColumn(PropertiesModel::ValueColumn);
        };
        sample.set("opacity", Variant::from(0.123456));
        QCOMPARE(cell("opacity").data().toString(), QStringLiteral("0.123"));
        QCOMPARE(cell("opacity").data(Qt::EditRole).toDouble(), 0.123456);
        QSignalSpy changed(&model, &PropertiesModel::dataChanged);
        int writes = 0;
        const Scene::ChangeCallback count = [](Scene*, int, const SceneChange*, void* user) {
            ++*static_cast<int*>(user);
        };
        sample.scene->addChangeCallback(count, &writes);
        QVERIFY(!model.setData(cell("name"), QStringLiteral("left")));
        QCOMPARE(writes, 0);
        QVERIFY(model.setData(cell("name"), QStringLiteral("right")));
        QVERIFY(model.setData(cell("locked"), true));
        QCOMPARE(writes, 2);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed[0][0].toModelIndex(), cell("name"));
        expectWarning(QStringLiteral("Could not convert double variant"));
        QVERIFY(!model.setData(cell("x"), QStringLiteral("wide")));
        sample.scene->removeChangeCallback(count, &writes);
        model.setObject(nullptr, nullptr);
        QCOMPARE(model.rowCount(), 0);
    }

    void keepsReadOnlyPropertiesAsTheyAre()
    {
        const auto scene = makeRef<Scene>();
        scene->addObject(scene->find("/device/channels/0"), {});
        Object* preview = scene->findObject("/device/channels/0/preview");
        PropertiesModel model;
        model.setObject(scene.get(), preview);
        const auto found = model.match(model.index(0, 0), Qt::DisplayRole, QStringLiteral("sourceMode"), 1,
                                       Qt::MatchExactly);
        QVERIFY(!found.isEmpty());
        const QModelIndex value = found[0].siblingAtColumn(PropertiesModel::ValueColumn);
        QVERIFY(!value.flags().testFlag(Qt::ItemIsEditable));
        QVERIFY(!model.setData(value, 1));
        Slider slider;
        PropertiesMapper mapper;
        mapper.setObject(scene.get(), preview);
        mapper.addMapping(QStringLiteral("sourceMode"), &slider, "value");
        slider.setValue(30);
        Variant mode;
        preview->getProperty("sourceMode", mode);
        QCOMPARE(mode.as<int>(), 0);
    }

    void keepsAWidgetForEachRow()
    {
        QStandardItemModel model;
        auto* root = new QStandardItem;
        model.appendRow(root);
        root->appendRow(new QStandardItem(QStringLiteral("a")));
        QWidget window;
        auto* layout = new QVBoxLayout(&window);
        WidgetMapper mapper;
        expectWarning(QStringLiteral("No layout set"));
        mapper.setModel(root->index());
        mapper.setLayout(layout);
        QSignalSpy added(&mapper, &WidgetMapper::widgetAdded);
        QSignalSpy removed(&mapper, &WidgetMapper::widgetRemoved);
        expectWarning(QStringLiteral("Object type is not a widget type"));
        mapper.setObjectType(&Slider::staticMetaObject);
        mapper.setModel(root->index());
        QCOMPARE(added.count(), 0);
        mapper.setObjectType(&Row::staticMetaObject);
        mapper.setModel(root->index());
        QCOMPARE(added.count(), 1);
        QCOMPARE(layout->count(), 1);
        root->appendRow(new QStandardItem(QStringLiteral("b")));
        QCOMPARE(layout->count(), 2);
        root->removeRow(0);
        QCOMPARE(removed.count(), 1);
        QCOMPARE(layout->count(), 1);
        // Who hears of a widget may place it himself, however deep.
        auto* nested = new QVBoxLayout;
        layout->addLayout(nested);
        connect(&mapper, &WidgetMapper::widgetAdded, nested,
                [nested](QWidget* widget) { nested->addWidget(widget); });
        root->appendRow(new QStandardItem(QStringLiteral("c")));
        QCOMPARE(nested->count(), 1);
    }
};

HALCYRA_TEST(TestPropertiesMapper)

} // namespace vantrel::test

#include "test_propertiesmapper.moc"

#include "common/notification/notificationmanagerimpl.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/ui/inspect/inspector.h"
#include "common/ui/inspect/inspectorwidget.h"
#include "common/ui/inspect/propertiesmodel.h"
#include "common/ui/inspect/sceneinspector.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>
#include <QTreeView>

namespace vantrel::test {

namespace {

struct Sample
{
    Sample()
        : scene(makeRef<Scene>())
    {
        for (const char* name : {"left", "middle", "right"})
            scene->addObject(scene->find("/device/surfaces/-"),
                             {{"name", Variant::from(name)}, {"opacity", Variant::from(0.123456)}});
        inspector.setObjectNames(QStringLiteral("I"));
        inspector.inspect(scene.get(), surface(1));
        inspector.show();
    }
    Object* surface(int i) const { return scene->findObject("/device/surfaces/" + std::to_string(i)); }
    QTableView* table() const { return inspector.findChild<QTableView*>(QStringLiteral("I-table")); }
    QString path() const { return inspector.findChild<QLabel*>(QStringLiteral("I-path"))->text(); }
    QModelIndex cell(const char* name) const
    {
        const QAbstractItemModel* model = table()->model();
        return model
            ->match(model->index(0, 0), Qt::DisplayRole, QString::fromLatin1(name), 1, Qt::MatchExactly)
            .value(0)
            .siblingAtColumn(PropertiesModel::ValueColumn);
    }
    template <typename Editor>
    Editor* edit(const char* name) const
    {
        table()->setCurrentIndex(cell(name));
        table()->edit(cell(name));
        return table()->viewport()->findChild<Editor*>();
    }
    static Variant get(const Object* object, const char* name)
    {
        Variant value;
        object->getProperty(name, value);
        return value;
    }
    Ref<Scene> scene;
    Inspector inspector;
};

/// A type made up for a test, with one property for each value.
std::unique_ptr<TypeInfo> typeOf(const std::vector<Variant>& values)
{
    auto type = std::make_unique<TypeInfo>();
    type->name = "Sample";
    for (const Variant& value : values) {
        PropertyInfo info;
        info.index = static_cast<int>(type->properties.size());
        info.name = "p" + std::to_string(info.index);
        info.type = value.type();
        info.def = value;
        type->properties.push_back(info);
    }
    return type;
}

template <typename T>
T* topLevel(const QString& name)
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == name && widget->isVisible())
            return qobject_cast<T*>(widget);
    }
    return nullptr;
}

} // namespace

class TestInspectors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsEveryKindOfValue()
    {
        const auto type = typeOf(
            {Variant::from(true), Variant::from(-7), Variant::from(std::int64_t(1) << 40),
             Variant::from(2.0 / 3), Variant::from("<b>text</b>"),
             Variant::from(std::vector<std::uint8_t>{1, 254}), Variant::from(ColorValue{1, 2, 3, 255})});
        const auto object = makeRef<Object>(type.get());
        const auto scene = makeRef<Scene>();
        PropertiesModel model;
        model.setObject(scene.get(), object.get());
        const auto shown = [&](int row) { return model.index(row, PropertiesModel::ValueColumn).data(); };
        QCOMPARE(shown(0), QVariant(true));
        QCOMPARE(shown(1), QVariant(-7));
        QCOMPARE(shown(2), QVariant(qlonglong(1) << 40));
        QCOMPARE(shown(3), QVariant(QStringLiteral("0.667")));
        QCOMPARE(shown(4), QVariant(QStringLiteral("<b>text</b>")));
        for (const int row : {5, 6}) {
            QCOMPARE(shown(row).typeId(), int(QMetaType::QString));
            QVERIFY(!shown(row).toString().isEmpty());
            // There is no way to write these.
            expectWarning(QStringLiteral("Could not convert"));
            QVERIFY(!model.setData(model.index(row, PropertiesModel::ValueColumn), shown(row)));
        }
    }

    void editsByTheTablesEditors()
    {
        Sample sample;
        auto* name = sample.edit<QLineEdit>("name");
        QVERIFY(name);
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("centre"));
        QTest::keyClick(name, Qt::Key_Return);
        QTRY_COMPARE(Sample::get(sample.surface(1), "name").asString(), std::string("centre"));

        auto* locked = sample.edit<QComboBox>("locked");
        QVERIFY(locked);
        locked->setCurrentIndex(1);
        QTest::keyClick(locked, Qt::Key_Return);
        QTRY_VERIFY(Sample::get(sample.surface(1), "locked").asBool());

        // A number that is only looked at keeps all its digits.
        auto* opacity = sample.edit<QLineEdit>("opacity");
        QVERIFY(opacity);
        QTest::keyClick(opacity, Qt::Key_Return);
        QTRY_VERIFY(!sample.table()->viewport()->findChild<QLineEdit*>());
        QCOMPARE(Sample::get(sample.surface(1), "opacity").as<double>(), 0.123456);
        opacity = sample.edit<QLineEdit>("opacity");
        QVERIFY(opacity);
        opacity->setText(QStringLiteral("0.0625"));
        QTest::keyClick(opacity, Qt::Key_Return);
        QTRY_COMPARE(Sample::get(sample.surface(1), "opacity").as<double>(), 0.0625);
        opacity = sample.edit<QLineEdit>("opacity");
        QVERIFY(opacity);
        opacity->setText(QStringLiteral("half"));
        expectWarning(QStringLiteral("Could not convert double variant"));
        QTest::keyClick(opacity, Qt::Key_Return);
        QTRY_VERIFY(!sample.table()->viewport()->findChild<QLineEdit*>());
        QCOMPARE(Sample::get(sample.surface(1), "opacity").as<double>(), 0.0625);
    }

    void followsItsObject()
    {
        Sample sample;
        QCOMPARE(sample.path(), QStringLiteral("/device/surfaces/1"));
        sample.scene->removeObject(sample.scene->find("/device/surfaces/0"));
        QTRY_COMPARE(sample.path(), QStringLiteral("/device/surfaces/0"));
        sample.scene->moveObject(sample.scene->find("/device/surfaces/0"),
                                 sample.scene->find("/device/surfaces/1"));
        QTRY_COMPARE(sample.path(), QStringLiteral("/device/surfaces/1"));
        QCOMPARE(sample.cell("name").data().toString(), QStringLiteral("middle"));
        sample.scene->replaceProperty(sample.scene->find("/device/surfaces/1/properties/name"),
                                      Variant::from("new"));
        QCOMPARE(sample.cell("name").data().toString(), QStringLiteral("new"));
    }

    void showsNoMoreOfWhatIsGone_data()
    {
        QTest::addColumn<bool>("editing");
        QTest::newRow("at rest") << false;
        QTest::newRow("while it is edited") << true;
    }
    void showsNoMoreOfWhatIsGone()
    {
        QFETCH(bool, editing);
        Sample sample;
        QPointer<QLineEdit> editor = editing ? sample.edit<QLineEdit>("name") : nullptr;
        QCOMPARE(!editor.isNull(), editing);
        const Ref<Object> gone(sample.surface(1));
        sample.scene->clear();
        if (editor) {
            editor->setText(QStringLiteral("too late"));
            QTest::keyClick(editor, Qt::Key_Return);
        }
        QTRY_COMPARE(sample.table()->model()->rowCount(), 0);
        QCOMPARE(sample.path(), QStringLiteral("/device/surfaces/1 is gone"));
        QCOMPARE(Sample::get(gone.get(), "name").asString(), std::string("middle"));
        QVERIFY(!sample.table()->viewport()->findChild<QLineEdit*>());
        sample.scene->addObject(sample.scene->find("/device/surfaces/0"), {});
        sample.inspector.inspect(sample.scene.get(), sample.surface(0));
        QCOMPARE(sample.path(), QStringLiteral("/device/surfaces/0"));
    }

    /// What is quadratic, or measures each row, takes minutes here.
    void takesAHundredThousandProperties()
    {
        constexpr int count = 100000;
        const auto type = typeOf(std::vector<Variant>(count, Variant::from(0.5)));
        const auto object = makeRef<Object>(type.get());
        const auto scene = makeRef<Scene>();
        Inspector inspector;
        inspector.show();
        QElapsedTimer clock;
        clock.start();
        inspector.inspect(scene.get(), object.get());
        QCOMPARE(inspector.findChild<QTableView*>()->model()->rowCount(), count);
        QCoreApplication::processEvents();
        QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
        clock.restart();
        for (const PropertyInfo& property : type->properties)
            scene->notifyPropertyChange(object.get(), &property, Variant::from(0.25));
        QCoreApplication::processEvents();
        QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    }

    void walksTheScene()
    {
        const auto scene = makeRef<Scene>();
        ObjectTreeModel tree;
        tree.setScene(scene.get());
        scene->addObject(scene->find("/device/surfaces/0"), {{"name", Variant::from("left")}});
        for (const char* type : {"device", "device/surfaces", "device/channels", "device/surfaces/0"})
            QVERIFY2(!tree.index(QStringLiteral("/") + QLatin1String(type))
                          .data(Qt::DecorationRole)
                          .value<QIcon>()
                          .isNull(),
                     type);
        QPointer<QWidget> window = InspectorWidget::showScene(&tree);
        QVERIFY(window && window->isVisible());
        auto* view = window->findChild<QTreeView*>();
        const auto* path = window->findChild<QLabel*>(QStringLiteral("SceneInspector-properties-path"));
        QVERIFY(view && path);
        view->setCurrentIndex(tree.index(QStringLiteral("/device/surfaces/0")));
        QCOMPARE(path->text(), QStringLiteral("/device/surfaces/0"));
        QVERIFY(window->findChild<QTableView*>()->model()->rowCount() > 5);
        scene->removeObject(scene->find("/device/surfaces/0"));
        QTRY_VERIFY(path->text() != QStringLiteral("/device/surfaces/0"));
        window->close();
        QTRY_VERIFY(!window);
    }

    void namesTheWidgetUnderTheCursor()
    {
        QPushButton button(QStringLiteral("target"));
        button.setObjectName(QStringLiteral("The-Target"));
        button.setGeometry(400, 400, 200, 100);
        button.show();
        QVERIFY(QTest::qWaitForWindowExposed(&button));
        NotificationManagerImpl manager;
        InspectorWidget inspector(nullptr, &manager);
        inspector.setGeometry(0, 0, 200, 200);
        inspector.show();
        qApp->installEventFilter(&inspector);
        const auto text = [&](const char* name) {
            return inspector.findChild<QLabel*>(QLatin1String(name))->text();
        };
        QCursor::setPos(button.mapToGlobal(button.rect().center()));
        QTest::mouseMove(&button, button.rect().center());
        QTRY_COMPARE(text("InspectorWidget-name"), QStringLiteral("The-Target"));
        QCOMPARE(text("InspectorWidget-class"), QStringLiteral("QPushButton"));
        // Without a session there is no scene to show.
        QVERIFY(!inspector.findChild<QPushButton*>(QStringLiteral("InspectorWidget-scene"))->isEnabled());

        inspector.findChild<QPushButton*>(QStringLiteral("InspectorWidget-notifications"))->click();
        auto* list = topLevel<QTableWidget>(QStringLiteral("NotificationInspector"));
        QVERIFY(list);
        QCOMPARE(list->rowCount(), 0);
        const auto added = manager.createNotification(
            Notification::WarningMessage, QStringLiteral("<i>title</i>"), QStringLiteral("details"));
        QTRY_COMPARE(list->rowCount(), 1);
        QCOMPARE(list->item(0, 1)->text(), QStringLiteral("WarningMessage"));
        QCOMPARE(list->item(0, 2)->text(), QStringLiteral("<i>title</i>"));
        added->setIsAccepted(true);
        QTRY_COMPARE(list->item(0, 4)->text(), QStringLiteral("yes"));
        list->close();
        qApp->removeEventFilter(&inspector);
    }
};

HALCYRA_TEST(TestInspectors)

} // namespace vantrel::test

#include "test_inspectors.moc"

#include "common/ui/keyboard/pressguard.h"

#include "common/ui/keyboard/hotkeys.h"
#include "tests/support/testmain.h"

#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWidget>
#include <QShortcut>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

namespace vantrel::test {

namespace {

/// A key that goes down or up at a time, in milliseconds of the window system.
struct Stroke
{
    QEvent::Type type;
    quint64 at;
    bool isRepeat = false;
};

constexpr auto down = QEvent::ShortcutOverride;
constexpr auto up = QEvent::KeyRelease;

} // namespace

class TestPressGuard : public QObject
{
    Q_OBJECT

    /// Presses M so often within 60 ms; returns how many presses come through to the widget.
    static int bounce(QWidget* widget, int times)
    {
        int passed = 0;
        for (int i = 0; i < times; ++i) {
            for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
                QKeyEvent event(type, Qt::Key_M, Qt::NoModifier, QStringLiteral("m"));
                event.setTimestamp(1000 + 20 * i);
                event.ignore();
                QCoreApplication::sendEvent(widget, &event);
                passed += type == down && !event.isAccepted() ? 1 : 0;
            }
        }
        return passed;
    }

private Q_SLOTS:
    void oneActionForOnePress_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QList<Stroke>>("strokes");
        QTest::addColumn<int>("actions");
        const QList<Stroke> held{{down, 1000}, {up, 1600},   {down, 1600},
                                 {up, 1633},   {down, 1633}, {up, 1666}};
        for (const int key : {Qt::Key_F12, Qt::Key_M, Qt::Key_Space, Qt::Key_I, Qt::Key_O})
            QTest::addRow("key %x held, told as pairs", key) << key << held << 1;
        QTest::newRow("held, told as repeats")
            << int(Qt::Key_F12)
            << QList<Stroke>{{down, 1000}, {down, 1500, true}, {down, 1530, true}, {up, 1540}} << 1;
        QTest::newRow("bounced at the beginning")
            << int(Qt::Key_F12) << QList<Stroke>{{down, 1000}, {up, 1004}, {down, 1009}, {up, 1200}} << 1;
        QTest::newRow("bounced at the end")
            << int(Qt::Key_F12) << QList<Stroke>{{down, 1000}, {up, 1300}, {down, 1399}, {up, 1400}} << 1;
        QTest::newRow("two presses") << int(Qt::Key_F12)
                                     << QList<Stroke>{{down, 1000}, {up, 1050}, {down, 1150}, {up, 1200}}
                                     << 2;
        QTest::newRow("its release went to another window")
            << int(Qt::Key_F12) << QList<Stroke>{{down, 1000}, {up, 1010}, {down, 1020}, {down, 3000}} << 2;
        QTest::newRow("a key that steps") << int(Qt::Key_Comma) << held << 3;
    }
    void oneActionForOnePress()
    {
        QFETCH(int, key);
        QFETCH(QList<Stroke>, strokes);
        QWidget window;
        Hotkeys hotkeys(&window);
        new PressGuard(&hotkeys, &window);
        int actions = 0;
        for (const Stroke& stroke : strokes) {
            QKeyEvent event(stroke.type, key, Qt::NoModifier, QString(), stroke.isRepeat);
            event.setTimestamp(stroke.at);
            event.ignore();
            QCoreApplication::sendEvent(&window, &event);
            // What is accepted here is not asked of the shortcuts any more.
            actions += stroke.type == down && !event.isAccepted() ? 1 : 0;
        }
        QTEST(actions, "actions");
    }

    void whatIsTypedIsTheFields()
    {
        QWidget window;
        QLineEdit field(&window);
        QQuickWidget declared(&window);
        QQmlComponent component(declared.engine());
        component.setData("import QtQuick\nTextInput { focus: true }", {});
        declared.setContent({}, &component, component.create());
        Hotkeys hotkeys(&window);
        new PressGuard(&hotkeys, &window);
        window.show();
        window.activateWindow();
        for (QWidget* each : std::initializer_list<QWidget*>{&field, &declared}) {
            each->setFocus();
            QTRY_VERIFY(each->hasFocus());
            bounce(each, 3);
        }
        QCOMPARE(field.text(), QStringLiteral("mmm"));
        QCOMPARE(declared.rootObject()->property("text").toString(), QStringLiteral("mmm"));
    }

    /// A list of names has the focus for most of a show; only their editor is typed into.
    void aListOfNamesIsNoField()
    {
        QWidget window;
        QStandardItemModel model;
        model.appendRow(new QStandardItem(QStringLiteral("Walk-in")));
        QListView view(&window);
        view.setModel(&model);
        view.setCurrentIndex(model.index(0, 0));
        Hotkeys hotkeys(&window);
        new PressGuard(&hotkeys, &window);
        window.show();
        window.activateWindow();
        view.setFocus();
        QTRY_VERIFY(view.hasFocus());
        QVERIFY(view.testAttribute(Qt::WA_InputMethodEnabled));
        QCOMPARE(bounce(&view, 3), 1);

        view.edit(model.index(0, 0));
        auto* editor = view.viewport()->findChild<QLineEdit*>();
        QTRY_VERIFY(editor && editor->hasFocus());
        bounce(editor, 3);
        QCOMPARE(editor->text(), QStringLiteral("mmm"));
    }

    void theTakeGoesThroughDialogs()
    {
        QWidget window;
        Hotkeys hotkeys(&window);
        QShortcut* take = hotkeys.addShortcut(QStringLiteral("take"), &window, [] {});
        new PressGuard(&hotkeys, &window);
        QSignalSpy taken(take, &QShortcut::activated);
        QDialog dialog(&window);
        QLineEdit field(&dialog);
        dialog.open();
        QTest::keyClick(&field, Qt::Key_F12);
        QCOMPARE(taken.size(), 1);

        /// Records keys, as the list of keys does.
        struct Recorder : QWidget
        {
            using QWidget::QWidget;
            void keyPressEvent(QKeyEvent* event) override { event->accept(); }
        } recorder(&dialog);
        hotkeys.remap(QStringLiteral("take"), QKeySequence(Qt::Key_F9)); // no bounce of the press before
        QTest::keyClick(&recorder, Qt::Key_F9);
        QCOMPARE(taken.size(), 1);
    }
};

HALCYRA_TEST(TestPressGuard)

} // namespace vantrel::test

#include "pressguard.moc"

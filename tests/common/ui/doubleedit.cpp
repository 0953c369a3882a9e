#include "common/ui/toolkit/doubleedit.h"

#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace vantrel;

class DoubleEditTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesWhatIsTyped_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "2.5" << 2.5;
        QTest::newRow("above the range") << "99" << 10.0;
        QTest::newRow("below the range") << "-3" << 0.0;
        QTest::newRow("rounded to the decimals") << "1.27" << 1.3;
        QTest::newRow("with its unit") << "4 s" << 4.0;
        QTest::newRow("with a comma") << "2,5" << 2.5;
        QTest::newRow("no finite number") << "inf" << 1.0;
        QTest::newRow("no number at all") << "nan" << 1.0;
        QTest::newRow("nonsense keeps the value") << "abc" << 1.0;
        QTest::newRow("nothing keeps the value") << "" << 1.0;
    }

    void takesWhatIsTyped()
    {
        QFETCH(QString, typed);
        QFETCH(double, value);
        DoubleEdit edit(0.0, 10.0, QStringLiteral("s"));
        edit.setValue(1.0);
        show(edit);
        QSignalSpy changed(&edit, &DoubleEdit::valueChanged);
        QSignalSpy edited(&edit, &DoubleEdit::valueEdited);
        edit.setFocus(Qt::TabFocusReason);
        edit.selectAll();
        QTest::keyClick(&edit, Qt::Key_Backspace);
        QTest::keyClicks(&edit, typed);
        QCOMPARE(changed.size(), 0); // nothing counts before Return
        QTest::keyClick(&edit, Qt::Key_Return);
        QCOMPARE(edit.value(), value);
        QCOMPARE(changed.size(), value == 1.0 ? 0 : 1);
        QCOMPARE(edited.size(), changed.size());
        edit.clearFocus();
        QCOMPARE(edit.text(), edit.locale().toString(value, 'f', 1) + QStringLiteral(" s"));
    }

    void stepsByKeysWithinTheRange()
    {
        DoubleEdit edit(0.0, 1.0, QString());
        show(edit);
        edit.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&edit, Qt::Key_Up);
        QCOMPARE(edit.value(), 0.1);
        QTest::keyClick(&edit, Qt::Key_Up, Qt::ShiftModifier);
        QCOMPARE(edit.value(), 1.0);
        QTest::keyClick(&edit, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(&edit, Qt::Key_Down);
        QCOMPARE(edit.value(), 0.0);
    }

    void escapeTakesBackWhatWasTyped()
    {
        DoubleEdit edit(0.0, 10.0, QStringLiteral("s"));
        edit.setValue(3.0);
        show(edit);
        edit.setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&edit, QStringLiteral("77"));
        QTest::keyClick(&edit, Qt::Key_Escape);
        edit.clearFocus();
        QCOMPARE(edit.value(), 3.0);
    }

    void dragRoundsAsConfigured_data()
    {
        QTest::addColumn<bool>("rounding");
        QTest::addColumn<double>("value");
        // 22 pixels from 1.05 at four pixels a step of 0.1 are 0.55 further.
        QTest::newRow("to steps") << true << 1.6;
        QTest::newRow("exact") << false << 1.6 - 0.02;
    }

    void dragRoundsAsConfigured()
    {
        QFETCH(bool, rounding);
        QFETCH(double, value);
        const test::TestSettings settings;
        settings->setValue(DRAGGER_ROUND_TO_STEP_SIZE, rounding);
        DoubleEdit edit(0.0, 10.0, QStringLiteral("s"));
        edit.setDecimals(2);
        edit.setValue(1.03);
        show(edit);
        drag(edit, 22);
        QVERIFY2(std::abs(edit.value() - value) < 1e-9, qPrintable(QString::number(edit.value(), 'g', 12)));
    }

    void dragStopsAtTheEndsAndNeverStartsWhenReadOnly()
    {
        const test::TestSettings settings;
        DoubleEdit edit(0.0, 10.0, QStringLiteral("s"));
        edit.setValue(9.5);
        show(edit);
        drag(edit, 4000);
        QCOMPARE(edit.value(), 10.0);
        drag(edit, -8000);
        QCOMPARE(edit.value(), 0.0);
        edit.setReadOnly(true);
        drag(edit, 400);
        QTest::keyClick(&edit, Qt::Key_Up);
        QCOMPARE(edit.value(), 0.0);
    }

    void bindsByItsUserProperty()
    {
        DoubleEdit edit(0.0, 10.0, QString());
        QCOMPARE(QString::fromLatin1(edit.metaObject()->userProperty().name()), QStringLiteral("value"));
        QSignalSpy changed(&edit, &DoubleEdit::valueChanged);
        edit.setProperty("value", 12.0);
        edit.setValue(std::nan(""));
        QCOMPARE(edit.value(), 10.0);
        QCOMPARE(changed.size(), 1);
    }

private:
    static void show(QWidget& widget)
    {
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        widget.activateWindow();
        QTRY_VERIFY(widget.isActiveWindow());
        widget.clearFocus();
    }

    static void drag(DoubleEdit& edit, int pixels)
    {
        edit.clearFocus();
        const QPointF from(edit.rect().center());
        const QPointF to = from + QPointF(pixels, 0);
        send(edit, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        send(edit, QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
        send(edit, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    }

    static void send(QWidget& widget, QEvent::Type type, const QPointF& at, Qt::MouseButton button,
                     Qt::MouseButtons held)
    {
        QMouseEvent event(type, at, widget.mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &event);
    }
};

HALCYRA_TEST(DoubleEditTest)
#include "doubleedit.moc"

#include "common/outputs/outputview.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/pushbutton.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QScrollArea>
#include <QTest>

using namespace vantrel;

class TestOutputView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsEveryDevice_data()
    {
        QTest::addColumn<FontSize>("size");
        QTest::addColumn<int>("width");
        QTest::newRow("small") << FontSize::Small << 270;
        QTest::newRow("medium") << FontSize::Medium << 360;
        QTest::newRow("large") << FontSize::Large << 540;
        QTest::newRow("huge") << FontSize::Huge << 720;
    }

    void showsEveryDevice()
    {
        QFETCH(FontSize, size);
        QFETCH(int, width);
        const auto session = std::make_unique<Session>();
        Session::initializeWith(session.get());
        StyleSheet::apply(*qApp);
        OutputView view(session.get());
        configuration()->setValue(TEXT_SIZE, QVariant::fromValue(size));
        QCOMPARE(view.minimumWidth(), width);
        view.resize(view.sizeHint().width(), 600);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        for (const char* channel : {"preview", "program"}) {
            for (const char* device : {"embedded", "xlr", "dante", "off"}) {
                const auto name = QStringLiteral("%1AudioOutputSwitch-%2").arg(channel, device);
                auto* button = view.findChild<PushButton*>(name);
                QVERIFY2(button, qPrintable(name));
                view.findChild<QScrollArea*>()->ensureWidgetVisible(button);
                QTRY_COMPARE(button->visibleRegion().boundingRect(), button->rect());
                QVERIFY(!button->toolTip().isEmpty() && !button->isEnabled()); // there is no server
            }
        }
        configuration()->resetValue(TEXT_SIZE);
        qApp->setStyleSheet({});
    }
};

HALCYRA_TEST(TestOutputView)
#include "test_outputview.moc"

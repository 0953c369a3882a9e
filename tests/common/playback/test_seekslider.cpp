#include "common/playback/seekslider.h"
#include "tests/support/testmain.h"

#include <QCursor>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

using namespace vantrel;

namespace {

/// A slider 211 pixels wide, so that 10 seconds are 20 pixels each, in the middle of which the points stand.
class Slider : public SeekSlider
{
public:
    Slider()
    {
        setObjectNames(QStringLiteral("S"));
        resize(6 + 200 + 6, height());
        show();
        setDuration(10.0);
        setOutpoint(8.0);
        setInpoint(2.0);
        setPosition(5.0);
    }

    QWidget* part(const char* name) const
    {
        return findChild<QWidget*>(QStringLiteral("S-") + QLatin1String(name));
    }
    QPoint at(double seconds) const { return {timecodeToPixelPos(seconds), height() / 2}; }
    void press(double seconds) { QTest::mousePress(this, Qt::LeftButton, {}, at(seconds)); }
    void drag(double seconds) { QTest::mouseMove(this, at(seconds)); }
    void release(double seconds) { QTest::mouseRelease(this, Qt::LeftButton, {}, at(seconds)); }
    int playheadPixel() const { return part("playhead")->geometry().center().x(); }
};

} // namespace

class TestSeekSlider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pixelsAndTimes_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("pixel");
        QTest::newRow("start") << 0.0 << 6;
        QTest::newRow("middle") << 5.0 << 106;
        QTest::newRow("end") << 10.0 << 206;
        QTest::newRow("cut to whole pixels") << 0.049 << 6;
    }
    void pixelsAndTimes()
    {
        QFETCH(double, seconds);
        QFETCH(int, pixel);
        Slider slider;
        QCOMPARE(slider.timecodeToPixelPos(seconds), pixel);
        QVERIFY(qAbs(slider.pixelPosToTimecode(pixel) - seconds) < 0.05);
        QCOMPARE(slider.pixelPosToTimecode(5), 0.0);
        QCOMPARE(slider.pixelPosToTimecode(207), 10.0);
    }

    void withoutADurationAllIsZero()
    {
        Slider slider;
        slider.setDuration(0.0);
        slider.setOutpoint(0.0);
        slider.setInpoint(0.0);
        QCOMPARE(slider.timecodeToPixelPos(3.0), 6);
        QCOMPARE(slider.pixelPosToTimecode(100), 0.0);
        slider.setDuration(std::numeric_limits<double>::quiet_NaN());
        slider.setPosition(std::numeric_limits<double>::infinity());
        QCOMPARE(slider.timecodeToPixelPos(3.0), 6);
    }

    void valuesAreLimited()
    {
        Slider slider;
        slider.setInpoint(9.0);
        QCOMPARE(slider.inpoint(), 8.0);
        slider.setOutpoint(11.0);
        QCOMPARE(slider.outpoint(), 10.0);
        slider.setInpoint(4.0);
        slider.setPosition(1.0);
        QCOMPARE(slider.position(), 4.0);
        QCOMPARE(slider.playheadPixel(), slider.timecodeToPixelPos(4.0));
    }

    void pressSeeksAndDragFollows()
    {
        Slider slider;
        QSignalSpy start(&slider, &SeekSlider::seekStarting);
        QSignalSpy end(&slider, &SeekSlider::seekEnding);
        QSignalSpy seek(&slider, &SeekSlider::seekPosition);
        slider.press(6.0);
        QCOMPARE(start.size(), 1);
        QCOMPARE(seek.takeFirst().at(0).toDouble(), 6.0);
        QCOMPARE(slider.cursor().shape(), Qt::ClosedHandCursor);
        slider.drag(7.0);
        QCOMPARE(seek.takeFirst().at(0).toDouble(), 7.0);

        const int pixel = slider.playheadPixel();
        slider.setPosition(3.0); // the server lags behind
        QCOMPARE(slider.playheadPixel(), pixel);
        slider.release(7.0);
        QCOMPARE(end.size(), 1);
        QCOMPARE(slider.position(), 3.0);
    }

    void pressBeforeTheInpointSeeksToIt()
    {
        Slider slider;
        QSignalSpy seek(&slider, &SeekSlider::seekPosition);
        slider.press(0.2);
        QCOMPARE(seek.takeFirst().at(0).toDouble(), 2.0);
        slider.release(0.2);
    }

    void markersDrag_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("to");
        QTest::addColumn<double>("inpoint");
        QTest::addColumn<double>("outpoint");
        QTest::newRow("in") << 2.0 << 3.0 << 3.0 << -1.0;
        QTest::newRow("out") << 8.0 << 9.0 << -1.0 << 9.0;
    }
    void markersDrag()
    {
        QFETCH(double, from);
        QFETCH(double, to);
        Slider slider;
        QSignalSpy in(&slider, &SeekSlider::inpointSet);
        QSignalSpy out(&slider, &SeekSlider::outpointSet);
        QSignalSpy start(&slider, &SeekSlider::seekStarting);
        slider.press(from);
        slider.drag(to);
        slider.setInpoint(0.5); // the hand wins over the echo
        slider.setOutpoint(9.5);
        slider.release(to);
        QFETCH(double, inpoint);
        QFETCH(double, outpoint);
        QCOMPARE(in.isEmpty() ? -1.0 : in.last().at(0).toDouble(), inpoint);
        QCOMPARE(out.isEmpty() ? -1.0 : out.last().at(0).toDouble(), outpoint);
        QCOMPARE(start.size(), 0);
    }

    void inpointPushesThePlayheadAlong()
    {
        Slider slider;
        QSignalSpy start(&slider, &SeekSlider::seekStarting);
        QSignalSpy end(&slider, &SeekSlider::seekEnding);
        QSignalSpy seek(&slider, &SeekSlider::seekPosition);
        slider.press(2.0);
        slider.drag(6.0);
        QCOMPARE(start.size(), 1);
        QCOMPARE(slider.position(), 6.0);
        slider.drag(7.0);
        QCOMPARE(seek.last().at(0).toDouble(), 7.0);
        QCOMPARE(start.size(), 1);
        slider.drag(3.0);
        QCOMPARE(end.size(), 1);
        slider.setPosition(4.0);
        QCOMPARE(slider.position(), 4.0); // follows the server again
        slider.release(3.0);
        QCOMPARE(end.size(), 1);
        QCOMPARE(slider.inpoint(), 3.0);
    }

    void outpointPullsThePlayheadBack()
    {
        Slider slider;
        QSignalSpy start(&slider, &SeekSlider::seekStarting);
        QSignalSpy end(&slider, &SeekSlider::seekEnding);
        slider.press(8.0);
        slider.drag(4.0);
        QCOMPARE(start.size(), 1);
        QCOMPARE(slider.position(), 4.0);
        slider.hide(); // the release never comes: the pair must be closed all the same
        QCOMPARE(end.size(), 1);
    }

    void buttonsOnlyNarrow()
    {
        Slider slider;
        QSignalSpy in(&slider, &SeekSlider::inpointSet);
        QSignalSpy out(&slider, &SeekSlider::outpointSet);
        slider.handleInpointSetting();
        QCOMPARE(in.takeFirst().at(0).toDouble(), 5.0);
        slider.setPosition(7.0);
        slider.handleOutpointSetting();
        QCOMPARE(out.takeFirst().at(0).toDouble(), 7.0);
        slider.setOutpoint(10.0);
        slider.setPosition(9.0);
        slider.setOutpoint(8.0);
        slider.handleOutpointSetting();
        QCOMPARE(out.takeFirst().at(0).toDouble(), 8.0);
    }

    void keysMoveWhatHasTheFocus_data()
    {
        QTest::addColumn<QString>("part");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<double>("seconds");
        QTest::newRow("playhead") << "playhead" << int(Qt::Key_Right) << 0 << 5.1;
        QTest::newRow("playhead with shift")
            << "playhead" << int(Qt::Key_Left) << int(Qt::ShiftModifier) << 4.0;
        QTest::newRow("alt wins") << "playhead" << int(Qt::Key_Right)
                                  << int(Qt::ShiftModifier | Qt::AltModifier) << 8.0;
        QTest::newRow("in") << "inMarker" << int(Qt::Key_Left) << int(Qt::ShiftModifier) << 1.0;
        QTest::newRow("out") << "outMarker" << int(Qt::Key_Right) << int(Qt::AltModifier) << 10.0;
    }
    void keysMoveWhatHasTheFocus()
    {
        QFETCH(QString, part);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(double, seconds);
        Slider slider;
        QVERIFY(QTest::qWaitForWindowActive(&slider));
        QSignalSpy seek(&slider, &SeekSlider::seekPosition);
        QSignalSpy in(&slider, &SeekSlider::inpointSet);
        QSignalSpy out(&slider, &SeekSlider::outpointSet);
        QWidget* target = slider.part(qPrintable(part));
        target->setFocus();
        QTest::keyClick(target, static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
        const QSignalSpy& told = part == QLatin1String("playhead")   ? seek
                                 : part == QLatin1String("inMarker") ? in
                                                                     : out;
        QCOMPARE(seek.size() + in.size() + out.size(), 1);
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.first().at(0).toDouble(), seconds);
    }

    void fixedPlayheadStaysAtTheEnd()
    {
        Slider slider;
        slider.setPlayheadFixed(true);
        QSignalSpy start(&slider, &SeekSlider::seekStarting);
        slider.setPosition(3.0);
        QCOMPARE(slider.position(), 5.0);
        slider.press(5.0);
        slider.drag(6.0);
        slider.release(6.0);
        QCOMPARE(start.size(), 0);
        QCOMPARE(slider.playheadPixel(), 206);
    }

    void durationMayChangeUnderADrag()
    {
        Slider slider;
        QSignalSpy out(&slider, &SeekSlider::outpointSet);
        slider.press(8.0);
        slider.drag(9.0);
        slider.setDuration(4.0); // another file stands there now
        slider.setOutpoint(4.0);
        slider.setInpoint(2.0);
        slider.drag(3.0);
        slider.release(3.0);
        QCOMPARE(out.size(), 1);
        QCOMPARE(slider.outpoint(), 3.0);
        QCOMPARE(slider.position(), 3.0);
        slider.setDuration(0.0); // and then none at all
        slider.setOutpoint(0.0);
        slider.setInpoint(0.0);
        slider.setPosition(0.0);
        QCOMPARE(slider.playheadPixel(), 6);
        slider.press(5.0); // the marks share a place: the playhead cannot be taken
        slider.release(5.0);
        QCOMPARE(slider.outpoint(), 0.0);
    }

    void markersDoNotPassEachOther_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("to");
        QTest::addColumn<double>("inpoint");
        QTest::addColumn<double>("outpoint");
        QTest::newRow("in") << 2.0 << 9.0 << 8.0 << 8.0;
        QTest::newRow("out") << 8.0 << 1.0 << 2.0 << 2.0;
    }
    void markersDoNotPassEachOther()
    {
        QFETCH(double, from);
        QFETCH(double, to);
        Slider slider;
        QSignalSpy start(&slider, &SeekSlider::seekStarting);
        QSignalSpy end(&slider, &SeekSlider::seekEnding);
        slider.press(from);
        slider.drag(to);
        slider.release(to);
        QTEST(slider.inpoint(), "inpoint");
        QTEST(slider.outpoint(), "outpoint");
        QCOMPARE(start.size(), 1); // the playhead was pushed along
        QCOMPARE(end.size(), 1);
    }

    void badTimesLeaveItInItsRange_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::newRow("negative") << -5.0;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("endless") << std::numeric_limits<double>::infinity();
        QTest::newRow("endlessly negative") << -std::numeric_limits<double>::infinity();
        QTest::newRow("huge") << 1e300;
    }
    void badTimesLeaveItInItsRange()
    {
        QFETCH(double, seconds);
        Slider slider;
        slider.setPosition(seconds);
        QVERIFY(slider.position() >= 2.0 && slider.position() <= 8.0);
        slider.setInpoint(seconds);
        slider.setOutpoint(seconds);
        slider.setInTransition(seconds);
        slider.setOutTransition(seconds);
        QVERIFY(slider.inpoint() >= 0.0 && slider.inpoint() <= slider.outpoint());
        QVERIFY(slider.outpoint() <= 10.0);
        QVERIFY(!slider.grab().isNull());
        slider.setDuration(seconds);
        slider.setPosition(seconds);
        QVERIFY(slider.playheadPixel() >= 0 && slider.playheadPixel() < slider.width());
    }

    void disabledHandlePaintsTheSameEachTime()
    {
        Slider slider;
        slider.setSeekBarEnabled(false);
        QWidget* handle = slider.part("playhead");
        QImage canvas(handle->size(), QImage::Format_RGB32);
        canvas.fill(Qt::magenta); // whatever stood there before
        handle->render(&canvas, {}, {}, {});
        const QColor once = canvas.pixelColor(2, 10);
        handle->render(&canvas, {}, {}, {});
        QCOMPARE(canvas.pixelColor(2, 10), once);
    }

    void disabledDoesNothing()
    {
        Slider slider;
        slider.drag(4.0);
        QCOMPARE(slider.cursor().shape(), Qt::PointingHandCursor);
        slider.SeekSlider::setEnabled(false);
        QCOMPARE(slider.cursor().shape(), Qt::ArrowCursor);
        QSignalSpy start(&slider, &SeekSlider::seekStarting);
        QSignalSpy in(&slider, &SeekSlider::inpointSet);
        slider.press(5.0);
        slider.release(5.0);
        slider.press(2.0);
        slider.release(2.0);
        QCOMPARE(start.size() + in.size(), 0);
        QVERIFY(!slider.part("playhead")->isVisible());
    }

    void bothMarkersAtAnEndStayReachable_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<bool>("takesIn");
        QTest::newRow("left end: the out mark comes away") << 0.0 << false;
        QTest::newRow("right end: the in mark comes away") << 10.0 << true;
    }
    void bothMarkersAtAnEndStayReachable()
    {
        QFETCH(double, seconds);
        QFETCH(bool, takesIn);
        Slider slider;
        slider.setInpoint(0.0);
        slider.setOutpoint(seconds);
        slider.setInpoint(seconds);
        QSignalSpy in(&slider, &SeekSlider::inpointSet);
        QSignalSpy out(&slider, &SeekSlider::outpointSet);
        slider.press(seconds);
        slider.drag(5.0);
        slider.release(5.0);
        QCOMPARE(in.size(), takesIn ? 1 : 0);
        QCOMPARE(out.size(), takesIn ? 0 : 1);
        QCOMPARE(takesIn ? slider.inpoint() : slider.outpoint(), 5.0);
    }

    void paintsTheRangeInTheMarkersColour()
    {
        Slider slider;
        slider.setMarkerColor(QColor(0xD3191D));
        const auto colorAt = [&](double seconds) {
            return slider.grab().toImage().pixelColor(slider.at(seconds) - QPoint(0, 0));
        };
        QCOMPARE(colorAt(4.0), QColor(0xD3191D));
        QVERIFY(colorAt(1.0) != QColor(0xD3191D));
        slider.setInpointOutpointHidden(true);
        QCOMPARE(colorAt(9.5), QColor(0xD3191D)); // without marks the fill reaches the end
        slider.setDrawGrooveFill(false);
        QVERIFY(colorAt(4.0) != QColor(0xD3191D));
    }
};

HALCYRA_TEST(TestSeekSlider)
#include "test_seekslider.moc"

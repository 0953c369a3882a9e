#include "common/playback/durationeditwidget.h"
#include "common/playback/playbacktimecodes.h"
#include "common/session/settings/configuration.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/timecode/timecodeedit.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"
#include "tests/support/testmain.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>

using namespace vantrel;

class TestTimecodeWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void displayFollowsTheOption_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("fps");
        QTest::addColumn<QString>("text");
        QTest::newRow("time") << 0 << 61.5009 << 25.0 << "00:01:01.500";
        QTest::newRow("negative time") << 0 << -1.5 << 25.0 << "-00:00:01.500";
        QTest::newRow("frames") << 1 << 2.0 << 25.0 << "50";
        QTest::newRow("ndf") << 2 << 2.48 << 25.0 << "00:00:02:12";
        QTest::newRow("drop at 29.97") << 3 << 60.06007 << 29.97 << "00:01:00;02";
        QTest::newRow("nominal rate of 23.976 is 24") << 2 << 1.0428 << 23.976 << "00:00:01:01";
        QTest::newRow("no rate counts as at the start") << 2 << 2.5 << 0.0 << "00:00:02:15";
        QTest::newRow("a bad rate likewise") << 1 << 2.0 << std::numeric_limits<double>::quiet_NaN() << "60";
        QTest::newRow("less than one picture a second") << 2 << 9.0 << 0.25 << "00:00:02:0";
        QTest::newRow("another mode counts as drop") << 7 << 60.06007 << 29.97 << "00:01:00;02";
    }
    void displayFollowsTheOption()
    {
        QFETCH(int, mode);
        QFETCH(double, seconds);
        QFETCH(double, fps);
        Configuration settings;
        TimecodeDisplay display;
        display.setFps(fps);
        display.setTime(seconds);
        settings.setValue(TIMECODE_DISPLAY_MODE, mode);
        QTEST(display.text(), "text");
        QCOMPARE(TimecodeDisplay().text().isEmpty(), false); // a later one starts in the same mode
        settings.resetValue(TIMECODE_DISPLAY_MODE);
    }

    void displayKeepsItsTextForTooManyFrames()
    {
        TimecodeDisplay display;
        display.setTimecodeViewMode(TimecodeViewMode::NDF);
        display.setTime(1.0);
        const QString before = display.text();
        display.setTime(2147483647.0);
        QCOMPARE(display.text(), before);
    }

    void displayIsAsWideForAnyFigures()
    {
        TimecodeDisplay display;
        display.setTime(40271.111); // 11:11:11.111
        const int narrow = display.sizeHint().width();
        display.setTime(32808.888);
        QCOMPARE(display.sizeHint().width(), narrow);
    }

    void remainingNeedsAnOutpoint()
    {
        PlaybackTimecodes timecodes;
        timecodes.setObjectNames(QStringLiteral("T"));
        const auto* remaining = timecodes.findChild<TimecodeDisplay*>(QStringLiteral("T-Remaining"));
        timecodes.setPosition(-5.0);
        QCOMPARE(remaining->getTime(), 0.0);
        timecodes.setOutpoint(10.0);
        timecodes.setPosition(4.0);
        QCOMPARE(remaining->text(), QStringLiteral("00:00:06.000"));
        timecodes.setOutpoint(20.0);
        for (int frame = 0; frame < 500; ++frame) { // to the millisecond, at every picture
            timecodes.setPosition(frame / 25.0);
            const int left = 20000 - frame * 40;
            QCOMPARE(remaining->text(), QString::asprintf("00:00:%02d.%03d", left / 1000, left % 1000));
        }
        timecodes.setOutpoint(10.0);
        timecodes.setPosition(11.0);
        QCOMPARE(remaining->getTime(), 0.0);
        QCOMPARE(timecodes.findChild<TimecodeDisplay*>(QStringLiteral("T-Playhead"))->getTime(), 11.0);
    }

    void aStillCountsNoFurtherThanItsEnd()
    {
        PlaybackTimecodes timecodes;
        timecodes.setObjectNames(QStringLiteral("T"));
        const auto* playhead = timecodes.findChild<TimecodeDisplay*>(QStringLiteral("T-Playhead"));
        timecodes.setOutpoint(10.0);
        timecodes.setPosition(8.04);
        QCOMPARE(playhead->text(), QStringLiteral("00:00:08.040"));
        timecodes.setPosition(48.08); // a video beyond an out point that was moved is where it is
        QCOMPARE(playhead->text(), QStringLiteral("00:00:48.080"));
        timecodes.setHeldAtEnd(true);
        QCOMPARE(playhead->text(), QStringLiteral("00:00:10.000"));
        timecodes.setOutpoint(60.0);
        QCOMPARE(playhead->text(), QStringLiteral("00:00:48.080"));
    }

    void remainingDropsToASecondRowWhereItMust()
    {
        PlaybackTimecodes timecodes;
        timecodes.setObjectNames(QStringLiteral("T"));
        timecodes.show();
        const auto* playhead = timecodes.findChild<TimecodeDisplay*>(QStringLiteral("T-Playhead"));
        const auto* remaining = timecodes.findChild<TimecodeDisplay*>(QStringLiteral("T-Remaining"));
        int used = 0;
        for (const QLabel* label : timecodes.findChildren<QLabel*>())
            used += label->sizeHint().width();
        timecodes.resize(used + 24, 60);
        QTRY_COMPARE(remaining->y(), playhead->y());
        timecodes.resize(used + 23, 60);
        QTRY_VERIFY(remaining->y() > playhead->y());
        QTRY_COMPARE(remaining->x(), playhead->x());
    }

    void editLimitsAndTells()
    {
        TimecodeEdit edit;
        QCOMPARE(edit.timecode(), ClockTime{1});
        QSignalSpy changed(&edit, &TimecodeEdit::timecodeChanged);
        edit.setTimecode(400000000);
        QCOMPARE(edit.timecode(), ClockTime{359999999});
        edit.setMaxTimecode(5000);
        QCOMPARE(edit.timecode(), ClockTime{5000});
        edit.setMinTimecode(6000); // the minimum wins over a maximum below it
        QCOMPARE(edit.timecode(), ClockTime{6000});
        QCOMPARE(changed.size(), 3);
        edit.setMaxTimecode(1000);
        QCOMPARE(edit.maxTimecode(), ClockTime{6000});
        edit.resetTime(6000, 3, true);
        QCOMPARE(changed.size(), 4);
    }

    void editTakesAField_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<qint64>("after");
        QTest::newRow("hours") << 0 << "5" << qint64{5 * 3600000 + 23 * 60000 + 45600};
        QTest::newRow("minutes") << 1 << "07" << qint64{3600000 + 7 * 60000 + 45600};
        QTest::newRow("seconds") << 2 << "0" << qint64{3600000 + 23 * 60000 + 600};
        QTest::newRow("fraction") << 3 << "9" << qint64{3600000 + 23 * 60000 + 45900};
    }
    void editTakesAField()
    {
        QFETCH(int, field);
        QFETCH(QString, typed);
        TimecodeEdit edit;
        edit.setDecimals(1);
        edit.setTimecode(3600000 + 23 * 60000 + 45600);
        QSignalSpy edited(&edit, &TimecodeEdit::timecodeEdited);
        ZTEdit* input = open(edit, field);
        QVERIFY(input);
        QTest::keyClicks(input, typed);
        QTest::keyClick(input, Qt::Key_Return);
        QTEST(static_cast<qint64>(edit.timecode()), "after");
        QCOMPARE(edited.size(), 1);
        QVERIFY(!input->isVisible());
    }

    void editIsDropped_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("a rejected key") << true;
        QTest::newRow("a click elsewhere") << false;
    }
    void editIsDropped()
    {
        QFETCH(bool, byKey);
        TimecodeEdit edit;
        edit.setTimecode(30000);
        QSignalSpy edited(&edit, &TimecodeEdit::timecodeEdited);
        ZTEdit* input = open(edit, TimecodeEdit::Seconds);
        QVERIFY(input);
        QTest::keyClicks(input, QStringLiteral("4"));
        if (byKey)
            QTest::keyClicks(input, QStringLiteral("x"));
        else
            edit.setFocus(Qt::MouseFocusReason);
        QTRY_VERIFY(!input->isVisible());
        QCOMPARE(edit.timecode(), ClockTime{30000});
        QCOMPARE(edited.size(), 0);
    }

    void pastedRubbishChangesNothing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("letters") << "rubbish";
        QTest::newRow("a whole time") << "00:12:34.5";
        QTest::newRow("out of range") << "75";
        QTest::newRow("a sign") << "-4";
        QTest::newRow("very much") << QString(100000, u'x');
        QTest::newRow("lines") << "1\n2";
    }
    void pastedRubbishChangesNothing()
    {
        QFETCH(QString, text);
        TimecodeEdit edit;
        edit.setTimecode(30000);
        ZTEdit* input = open(edit, TimecodeEdit::Seconds);
        QVERIFY(input);
        QGuiApplication::clipboard()->setText(text);
        input->paste();
        if (input->isVisible())
            QTest::keyClick(input, Qt::Key_Return);
        const ClockTime seconds = edit.timecode() / 1000;
        QVERIFY2(seconds == 30 || (seconds >= 0 && seconds < 60 && edit.timecode() % 1000 == 0),
                 qPrintable(QString::number(edit.timecode())));
    }

    void emptyFieldIsNotTaken()
    {
        TimecodeEdit edit;
        edit.setTimecode(30000);
        QSignalSpy edited(&edit, &TimecodeEdit::timecodeEdited);
        ZTEdit* input = open(edit, TimecodeEdit::Seconds);
        QVERIFY(input);
        QTest::keyClick(input, Qt::Key_Backspace);
        QTest::keyClick(input, Qt::Key_Return);
        QVERIFY(input->isVisible()); // still to be filled
        QTest::keyClick(input, Qt::Key_Escape);
        QCOMPARE(edit.timecode(), ClockTime{30000});
        QCOMPARE(edited.size(), 0);
    }

    void tabGoesOnToTheNextField()
    {
        TimecodeEdit edit;
        ZTEdit* input = open(edit, TimecodeEdit::Minutes);
        QVERIFY(input);
        QTest::keyClicks(input, QStringLiteral("2"));
        QTest::keyClick(input, Qt::Key_Tab);
        QCOMPARE(edit.timecode(), ClockTime{120001});
        QVERIFY(edit.findChildren<ZTEdit*>().at(TimecodeEdit::Seconds)->isVisible());
    }

    void stillsStandHalfASecondAtLeast()
    {
        DurationEditWidget duration;
        auto* edit = duration.findChild<TimecodeEdit*>();
        QSignalSpy edited(&duration, &DurationEditWidget::durationEdited);
        duration.show();
        QCOMPARE(duration.durationType(), DurationTypeWidget::Infinite);
        QVERIFY(!edit->isEnabled());
        duration.setDurationType(DurationTypeWidget::Manual);
        QVERIFY(edit->isEnabled());
        QCOMPARE(edited.size(), 0); // the program's change is no edit

        ZTEdit* seconds = open(*edit, TimecodeEdit::Seconds);
        QVERIFY(seconds);
        QTest::keyClicks(seconds, QStringLiteral("0"));
        QTest::keyClick(seconds, Qt::Key_Return);
        QCOMPARE(duration.durationSeconds(), 0.5);
        QCOMPARE(edited.size(), 1);

        duration.setObjectNames(QStringLiteral("D"));
        auto* infinite = duration.findChild<QPushButton*>(QStringLiteral("D-Input-infinite-duration-button"));
        QTest::mouseClick(infinite, Qt::LeftButton);
        QCOMPARE(duration.durationType(), DurationTypeWidget::Infinite);
        QCOMPARE(edited.size(), 2);
    }

    void untimedStillsAreOfferedTenSeconds()
    {
        DurationEditWidget duration;
        QSignalSpy edited(&duration, &DurationEditWidget::durationEdited);
        duration.show();
        duration.setDurationSeconds(3.0);
        duration.setDurationSeconds(0.0); // the next media
        QCOMPARE(duration.findChild<TimecodeEdit*>()->timecode(), ClockTime{10000});
        duration.setObjectNames(QStringLiteral("D"));
        duration.findChild<QPushButton*>(QStringLiteral("D-Input-manual-duration-button"))->click();
        QCOMPARE(edited.size(), 1);
        QCOMPARE(duration.durationSeconds(), 10.0); // what the field says is what is told
    }

    void durationsEqualUpToNoise()
    {
        DurationEditWidget duration;
        QSignalSpy changed(&duration, &DurationEditWidget::durationSecondsChanged);
        duration.setDurationSeconds(10.0 + 1e-12);
        QCOMPARE(changed.size(), 0);
        duration.setDurationSeconds(10.1);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(duration.findChild<TimecodeEdit*>()->timecode(), ClockTime{10100});
    }

private:
    /// Opens a field by a double click on its label; null when that did not open it.
    static ZTEdit* open(TimecodeEdit& edit, int field)
    {
        edit.window()->show();
        if (!QTest::qWaitForWindowActive(edit.window()))
            return nullptr;
        auto* stack = edit.findChildren<QStackedWidget*>().at(field);
        QTest::mouseDClick(stack->currentWidget(), Qt::LeftButton);
        auto* input = stack->findChild<ZTEdit*>();
        return input->isVisible() && input->hasSelectedText() ? input : nullptr;
    }
};

HALCYRA_TEST(TestTimecodeWidgets)
#include "test_timecodewidgets.moc"

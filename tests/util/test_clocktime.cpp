#include "tests/support/testmain.h"
#include "util/clocktime.h"

#include <QTest>

#include <limits>

using namespace vantrel;

class TestClockTime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formats_data()
    {
        QTest::addColumn<qint64>("ns");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << qint64{0} << "00:00:00.000";
        QTest::newRow("cut, not rounded") << qint64{999999} << "00:00:00.000";
        QTest::newRow("negative") << qint64{-1500000000} << "-00:00:01.500";
        QTest::newRow("all fields") << qint64{(((12 * 60) + 34) * 60 + 56) * 1000ll + 789} * 1000000
                                    << "12:34:56.789";
        QTest::newRow("hours keep 16 bits") << qint64{40000} * 3600000000000 << "25536:00:00.000";
        QTest::newRow("lowest") << std::numeric_limits<qint64>::min() << "-6143:47:16.854";
    }
    void formats()
    {
        QFETCH(qint64, ns);
        QFETCH(QString, text);
        QCOMPARE(QString::fromStdString(clocktime::format(ns)), text);
        QCOMPARE(QString::fromStdString(clocktime::formatShort(ns)), text.chopped(4));
    }

    void parses_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<qint64>("ms");
        QTest::newRow("plain") << "01:02:03.004" << true << qint64{3723004};
        QTest::newRow("the fraction counts milliseconds") << "00:00:01.5" << true << qint64{1005};
        QTest::newRow("negative") << "-00:00:01.500" << true << qint64{-1500};
        QTest::newRow("negative hours") << "-01:00:00.000" << true << qint64{-3600000};
        QTest::newRow("32 bits") << "600:00:00.000" << true << qint64{2160000000} - 4294967296;
        QTest::newRow("hour of a negative time keeps 16 bits")
            << "-65537:00:00.000" << true << qint64{-3600000};
        QTest::newRow("endless digits") << "00:00:00." + QString(500, u'9') << false << qint64{0};
        QTest::newRow("minus minutes") << "00:-1:00.000" << false << qint64{0};
        QTest::newRow("no fraction") << "00:00:01" << false << qint64{0};
        QTest::newRow("colon for point") << "00:00:01:000" << false << qint64{0};
        QTest::newRow("empty") << "" << false << qint64{0};
    }
    void parses()
    {
        QFETCH(bool, valid);
        QFETCH(QString, text);
        const auto ns = clocktime::parse(text.toStdString());
        QCOMPARE(ns.has_value(), valid);
        QTEST(static_cast<qint64>(ns.value_or(0) / 1000000), "ms");
    }

    void whatItWritesItReads()
    {
        for (qint64 ms = -100000; ms < 400000000; ms += 8191)
            QCOMPARE(clocktime::parse(clocktime::format(ms * 1000000)).value_or(-1), ms * 1000000);
    }

    void framesFollowTheCutPeriod_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("fps");
        QTest::addColumn<qint64>("frame");
        QTest::newRow("25") << 3600.0 << 25.0 << qint64{90000};
        // 33366700 ns a frame, cut from 33366700.03: the hour reaches its 107892nd frame
        QTest::newRow("29.97") << 3600.0 << 29.97 << qint64{3600000000000 / 33366700};
        QTest::newRow("the nearest nanosecond") << 8.04 << 25.0 << qint64{201};
        QTest::newRow("no rate") << 3600.0 << 0.0 << qint64{0};
        QTest::newRow("absurd rate") << 3600.0 << 1e12 << qint64{0};
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 25.0 << qint64{0};
        QTest::newRow("beyond all") << 1e300 << 1.0 << qint64{9223372036};
    }
    void framesFollowTheCutPeriod()
    {
        QFETCH(double, seconds);
        QFETCH(double, fps);
        QTEST(static_cast<qint64>(clocktime::frameNumber(clocktime::fromSeconds(seconds), fps)), "frame");
    }
};

HALCYRA_TEST(TestClockTime)
#include "test_clocktime.moc"

#include "tests/support/driftwatch.h"
#include "tests/support/testmain.h"

#include <QTest>

using namespace vantrel::test;

/// The time beside a running picture is that of the picture: also right after a seek and a take.
class Drift : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timeAndPictureAgree()
    {
        DriftWatch watch;
        QVERIFY(watch.start());
        QVERIFY(watch.watch(12000));
        for (const DriftWatch::Channel& channel : {watch.preview(), watch.program()}) {
            qInfo() << channel.readings << "readings, at worst" << channel.worst << "frames apart, on average"
                    << channel.sum / channel.readings;
            QVERIFY2(channel.jumps >= 3, "the seeks and takes did not come through");
            QVERIFY2(channel.readings >= 50, "too few pictures could be read");
            QVERIFY2(channel.worst <= 2, qPrintable(QStringLiteral("%1 frames").arg(channel.worst)));
        }
    }
};

HALCYRA_TEST(Drift)
#include "drift.moc"

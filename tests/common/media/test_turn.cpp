#include "common/media/library/turn.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QTest>

#include <memory>

using namespace vantrel;

class TestTurn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onePieceInATurn();
};

/// Whatever is asked for, stopped or deleted meanwhile.
void TestTurn::onePieceInATurn()
{
    Turn first, second, stopped;
    auto deleted = std::make_unique<Turn>();
    QStringList came;
    int more = 2;
    connect(&first, &Turn::come, this, [&] {
        came.append("first");
        if (more-- > 0)
            first.ask();
    });
    connect(&second, &Turn::come, this, [&] {
        came.append("second");
        stopped.stop();
    });
    connect(&stopped, &Turn::come, this, [&] { came.append("stopped"); });
    connect(deleted.get(), &Turn::come, this, [&] { came.append("deleted"); });
    for (Turn* turn : {deleted.get(), &first, &second, &stopped})
        turn->ask();
    first.ask();
    deleted.reset(); // it was to be the next one
    while (first.isAsked() || second.isAsked() || stopped.isAsked()) {
        const qsizetype before = came.size();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QVERIFY2(came.size() - before <= 1, qPrintable(came.mid(before).join(' ')));
    }
    QCOMPARE(came, QStringList({"first", "second", "first", "first"}));
}

HALCYRA_TEST(TestTurn)
#include "test_turn.moc"

#include "tarn/media/playlist.h"
#include "tests/support/testmain.h"

#include <QTest>

using namespace vantrel;

namespace {

EntryAddress at(const QString& text)
{
    EntryAddress address;
    address.parseString(text.toStdString());
    return address;
}

Playlist playlistOf(const QString& addresses)
{
    Playlist playlist;
    for (const QString& text : addresses.split(u' ', Qt::SkipEmptyParts))
        playlist.addEntry(at(text), PlaylistEntry());
    return playlist;
}

/// The addresses that a plan gives for count entries, or "none".
QString taken(const EntryNumberingPlan& plan, int count)
{
    if (!plan.isValid())
        return QStringLiteral("none");
    QStringList list;
    EntryAddress address = plan.getFirstAddress();
    for (int i = 0; i < count; ++i) {
        list.append(QString::fromStdString(address.toString(true)));
        address = plan.advance(address);
    }
    return list.join(u' ');
}

} // namespace

class TestNumbering : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plans_data()
    {
        QTest::addColumn<QString>("present");
        QTest::addColumn<QString>("where"); // "+5": after 5, "-5": before 5, "": at the end
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("expected");

        const auto row = [](const char* present, const char* where, int count, const char* expected) {
            QTest::addRow("[%s] %s x%d", present, where, count)
                << QString::fromLatin1(present) << QString::fromLatin1(where) << count
                << QString::fromLatin1(expected);
        };
        row("", "", 3, "1 2 3");
        row("1 2.5", "", 2, "3 4");
        row("1 2", "+2", 3, "3 4 5");
        row("1 2 3", "+2", 2, "2.1 2.2");
        row("1 5", "+1", 3, "2 3 4");
        row("1 5", "+1", 4, "1.1 1.2 1.3 1.4");
        row("1 2.1", "+1", 1, "2");
        row("1 1.1", "+1", 1, "none");
        row("1 1.3", "+1", 2, "1.1 1.2");
        row("1 1.3", "+1", 3, "none");
        row("1 1.998 2", "+1.998", 1, "1.999");
        row("1 1.998 2", "+1.998", 2, "none");
        row("1 2", "+1", 1000, "none");
        row("1 2", "-1", 1, "0.999");
        row("1 2", "-1", 3, "0.997 0.998 0.999");
        row("0.999 1", "-0.999", 2, "0.997 0.998");
        row("0.999 1", "-1", 1, "none");
        row("0.2 1", "+0.2", 2, "0.3 0.4");
        row("0.2 1", "-0.2", 2, "none");
        row("0.2 3", "+0.2", 2, "1 2");
        row("1 2", "-1", 1000, "none");
        row("5 6", "-5", 2, "1 2");
        row("5 6", "-6", 2, "5.1 5.2");
        row("5 5.4", "-5.4", 3, "5.1 5.2 5.3");
        row("2 9", "-7", 2, "3 4");
        row("999999", "", 2, "999999.1 999999.2");
        row("999999.999", "", 1, "none");
    }

    void plans()
    {
        QFETCH(QString, present);
        QFETCH(QString, where);
        QFETCH(int, count);
        QFETCH(QString, expected);
        const Playlist playlist = playlistOf(present);
        EntryNumberingPlan plan;
        if (where.isEmpty())
            plan = playlist.pickAppendingNumberingPlan();
        else if (where.startsWith(u'+'))
            plan = playlist.pickAppendingNumberingPlan(at(where.mid(1)), count);
        else
            plan = playlist.pickPrependingNumberingPlan(at(where.mid(1)), count);
        if (expected != QLatin1String("none") || count < 1000)
            QCOMPARE(taken(plan, count), expected);
        else
            QVERIFY(!plan.isValid());
    }

    /// Whatever is asked for, a valid plan gives free addresses in order, inside its gap.
    void plansKeepTheOrder()
    {
        std::srand(7);
        for (int round = 0; round < 2000; ++round) {
            Playlist playlist;
            for (int i = 0; i < 12; ++i)
                playlist.addEntry({1 + std::rand() % 8, std::rand() % 2 ? std::rand() % 5 : 0},
                                  PlaylistEntry());
            auto chosen = playlist.getEntries().begin();
            std::advance(chosen, std::rand() % static_cast<int>(playlist.getEntries().size()));
            const int count = 1 + std::rand() % 6;
            const bool after = std::rand() % 2;
            const EntryNumberingPlan plan = after
                                                ? playlist.pickAppendingNumberingPlan(chosen->first, count)
                                                : playlist.pickPrependingNumberingPlan(chosen->first, count);
            if (!plan.isValid())
                continue;
            const EntryAddress anchor = chosen->first;
            EntryAddress address = plan.getFirstAddress();
            EntryAddress last = after ? anchor : EntryAddress();
            for (int i = 0; i < count; ++i) {
                QVERIFY(last < address);
                QVERIFY(after || address < anchor);
                const auto next = playlist.getEntries().lower_bound(last);
                QVERIFY(playlist.addEntry(address, PlaylistEntry()));
                QVERIFY(i == 0 || next->first == last); // nothing stands between two of a plan
                last = address;
                address = plan.advance(address);
            }
        }
    }
};

HALCYRA_TEST(TestNumbering)
#include "test_numbering.moc"

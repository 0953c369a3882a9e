#include "tarn/media/mediaaddress.h"
#include "tarn/media/mediasourceparser.h"
#include "tarn/media/playenums.h"
#include "tests/support/testmain.h"

#include <QTest>

using namespace vantrel;

class TestAddresses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEntryAddresses_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("whole");
        QTest::addColumn<int>("decimal");
        QTest::addColumn<QByteArray>("written");

        QTest::newRow("whole") << QByteArray("5") << 5 << 0 << QByteArray("5");
        QTest::newRow("decimal") << QByteArray("5.1") << 5 << 1 << QByteArray("5.1");
        QTest::newRow("two digits") << QByteArray("5.10") << 5 << 10 << QByteArray("5.10");
        QTest::newRow("zero decimal") << QByteArray("5.0") << 5 << 0 << QByteArray("5");
        QTest::newRow("highest") << QByteArray("999999.999") << 999999 << 999 << QByteArray("999999.999");
        QTest::newRow("before the first") << QByteArray("0.5") << 0 << 5 << QByteArray("0.5");
        for (const char* bad : {"", "0", "0.0", "-1", "+1", "5.", ".5", "5.1.2", "5,1", " 5", "5 ", "1000000",
                                "5.1000", "99999999999", "x"})
            QTest::newRow(bad) << QByteArray(bad) << -1 << -1 << QByteArray();
    }

    void readsEntryAddresses()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, whole);
        QFETCH(int, decimal);
        QFETCH(QByteArray, written);
        EntryAddress address(7, 7);
        QCOMPARE(address.parseString(text.toStdString()), whole >= 0);
        if (whole >= 0) {
            QCOMPARE(address, EntryAddress(whole, decimal));
            QCOMPARE(address.toString(true), written.toStdString());
            QCOMPARE(address.toString(false), written.toStdString());
        } else {
            QCOMPARE(address, EntryAddress(7, 7));
        }
    }

    void ordersDecimalsByNumber()
    {
        QVERIFY(EntryAddress(5, 9) < EntryAddress(5, 10));
        QVERIFY(EntryAddress(5, 999) < EntryAddress(6, 0));
        QVERIFY(!EntryAddress().isValid());
        QCOMPARE(EntryAddress().toString(false), std::string());
    }

    void readsSources_data()
    {
        QTest::addColumn<QByteArray>("url");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QByteArray>("written");

        const auto slot = static_cast<int>(SourceMode::Slot);
        const auto entry = static_cast<int>(SourceMode::Playlist);
        const auto none = static_cast<int>(SourceMode::None);
        const QByteArray slotUrl("brume://collections/2/slots/7");
        const QByteArray entryUrlText("brume://playlists/3/entries/5.1");
        QTest::newRow("slot") << slotUrl << slot << slotUrl;
        QTest::newRow("singular") << QByteArray("brume://collection/2/slots/7") << slot << slotUrl;
        QTest::newRow("capitals") << QByteArray("BRUME://COLLECTIONS/2/SLOTS/7") << slot << slotUrl;
        QTest::newRow("slot zero") << QByteArray("brume://collections/0/slots/0") << slot
                                   << QByteArray("brume://collections/0/slots/0");
        QTest::newRow("entry") << entryUrlText << entry << entryUrlText;
        QTest::newRow("singular entry")
            << QByteArray("Brume://Playlist/3/Entries/5.1") << entry << entryUrlText;
        for (const char* bad :
             {"", "brume://collections/2/slots/7/", "brume://collections/2/slot/7",
              "brume://collectionss/2/slots/7", "brume://collections/99999999999/slots/1",
              "brume://collections/-1/slots/1", "brume://playlists/0/entries/1",
              "brume://playlists/1/entries/1.2.3", "brume://playlists/1/entries/", "file:///a.mp4"})
            QTest::newRow(bad) << QByteArray(bad) << none << QByteArray();
    }

    void readsSources()
    {
        QFETCH(QByteArray, url);
        QFETCH(int, mode);
        QFETCH(QByteArray, written);
        MediaSourceParser parser("brume://playlists/9/entries/9"); // nothing of it may remain
        QCOMPARE(parser.parseString(url.toStdString()), mode != 0);
        QCOMPARE(static_cast<int>(parser.getSourceMode()), mode);
        QCOMPARE(parser.getMediaAddress().toString(),
                 parser.getSourceMode() == SourceMode::Slot ? written.toStdString() : std::string());
        if (parser.getSourceMode() == SourceMode::Playlist)
            QCOMPARE(entryUrl(parser.getPlaylistNumber(), parser.getEntryAddress()), written.toStdString());
    }
};

HALCYRA_TEST(TestAddresses)
#include "test_addresses.moc"

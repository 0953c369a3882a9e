#include "common/media/address/entryaddressutils.h"
#include "common/media/address/mediafiles.h"
#include "common/media/address/mediautils.h"
#include "tarn/media/mediaenums.h"
#include "tests/support/testmain.h"

#include <QTest>
#include <QUrl>

using namespace vantrel;
using media::MediaUtils;

class TestAddresses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slotAddresses_data();
    void slotAddresses();
    void playlistAddresses_data();
    void playlistAddresses();
    void writtenAddressesReadBack();
    void secondsInWords_data();
    void secondsInWords();
    void mediaTypes_data();
    void mediaTypes();
    void ranges_data();
    void ranges();
    void rangesRead_data();
    void rangesRead();
    void adjacency_data();
    void adjacency();
    void urlsAsText_data();
    void urlsAsText();
    void states();
};

void TestAddresses::slotAddresses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("collection");
    QTest::addColumn<int>("slot");
    const auto row = [](const char* text, bool matches, bool valid, int collection = -1, int slot = -1) {
        QTest::newRow(text) << QString::fromLatin1(text) << matches << valid << collection << slot;
    };
    row("brume://collections/2/slots/7", true, true, 2, 7);
    row("brume://collection/2/slots/7", true, true, 2, 7);
    row("BRUME://COLLECTIONS/2/SLOTS/7", true, true, 2, 7);
    row("brume://collections/0/slots/0", true, true, 0, 0);
    row("brume://collections/2147483647/slots/1", true, true, 2147483647, 1);
    row("brume://collections/2147483648/slots/1", true, false);
    row("brume://collections/1/slots/99999999999", true, false);
    row("brume://collections/2/slots/7/", false, false);
    row("brume://collections/-2/slots/7", false, false);
    row(" brume://collections/2/slots/7", false, false);
    row("brume://collections/2/slot/7", false, false);
    row("brume://playlists/1/entries/1", false, false);
    row("", false, false);
}

void TestAddresses::slotAddresses()
{
    QFETCH(QString, text);
    QTEST(MediaUtils::isSlotAddress(text), "matches");
    const MediaAddress parsed = MediaUtils::parseSlotAddress(text);
    QTEST(parsed.isValid(), "valid");
    if (parsed.isValid()) {
        QTEST(parsed.collection, "collection");
        QTEST(parsed.slot, "slot");
    }
}

void TestAddresses::playlistAddresses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("entry");
    const auto row = [](const char* text, bool matches, bool valid, const char* entry = "") {
        QTest::newRow(text) << QString::fromLatin1(text) << matches << valid << QString::fromLatin1(entry);
    };
    row("brume://playlists/3/entries/5.1", true, true, "5.1");
    row("brume://playlist/3/entries/5", true, true, "5");
    row("Brume://Playlists/3/Entries/12.34", true, true, "12.34");
    row("brume://playlists/0/entries/1", true, false);
    row("brume://playlists/1/entries/0", true, false);
    row("brume://playlists/1/entries/0.1", true, true, "0.1");
    row("brume://playlists/1/entries/1.2.3", false, false);
    row("brume://playlists/1/entries/1.", false, false);
    row("brume://playlists/99999999999/entries/1", true, false);
    row("brume://collections/1/slots/1", false, false);
}

void TestAddresses::playlistAddresses()
{
    QFETCH(QString, text);
    QFETCH(QString, entry);
    QTEST(MediaUtils::isPlaylistAddress(text), "matches");
    const media::PlaylistAndEntry parsed = MediaUtils::parsePlaylistAddress(text);
    QTEST(parsed.valid, "valid");
    if (parsed.valid)
        QCOMPARE(QString::fromStdString(parsed.entry.toString(true)), entry);
}

void TestAddresses::writtenAddressesReadBack()
{
    const QString slot = MediaUtils::toSlotAddress(MediaAddress(12, 345));
    QCOMPARE(slot, QStringLiteral("brume://collections/12/slots/345"));
    QCOMPARE(slot, QString::fromStdString(MediaAddress(12, 345).toString()));
    QCOMPARE(MediaUtils::toPlaylistAddress(2, EntryAddress(5, 1)),
             QStringLiteral("brume://playlists/2/entries/5.1"));
    QVERIFY(MediaUtils::parsePlaylistAddress(MediaUtils::toPlaylistAddress(2, EntryAddress(5, 0))).valid);
}

void TestAddresses::secondsInWords_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("both") << 90.5 << QStringLiteral("1 min 30.5 sec");
    QTest::newRow("minute") << 60.0 << QStringLiteral("1 min");
    QTest::newRow("seconds") << 5.0 << QStringLiteral("5 sec");
    QTest::newRow("none") << 0.0 << QString();
    QTest::newRow("rounds up without carrying") << 59.99 << QStringLiteral("60.0 sec");
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << QString();
}

void TestAddresses::secondsInWords()
{
    QFETCH(double, seconds);
    QTEST(MediaUtils::formatSeconds(seconds), "text");
}

void TestAddresses::mediaTypes_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<MediaType>("type");
    QTest::addColumn<bool>("warns");
    const auto row = [](const char* path, MediaType type) {
        QTest::newRow(path) << QString::fromLatin1(path) << type << (type == MediaType::Unknown);
    };
    row("clips/a.mp4", MediaType::VideoFile);
    row("a.wav", MediaType::VideoFile);
    row("a.MP4", MediaType::Unknown);
    row("clips.d/noextension", MediaType::Unknown);
    row("a.png", MediaType::ImageFile);
    row("seq/clip_%05d.png", MediaType::ImageSequence);
    row("seq/clip_%5d.png", MediaType::ImageFile);
    row("%05d.png", MediaType::ImageFile);
    row("a.b.png", MediaType::ImageFile);
}

void TestAddresses::mediaTypes()
{
    QFETCH(QString, path);
    QFETCH(bool, warns);
    if (warns)
        test::expectWarning(QStringLiteral("Unknown file media type for"));
    QTEST(MediaUtils::getMediaType(path), "type");
}

void TestAddresses::ranges_data()
{
    QTest::addColumn<QList<EntryAddress>>("entries");
    QTest::addColumn<QString>("text");
    using List = QList<EntryAddress>;
    QTest::newRow("empty") << List{} << QString();
    QTest::newRow("mixed") << List{{1, 0}, {2, 0}, {3, 0}, {5, 1}, {5, 2}, {7, 0}}
                           << QStringLiteral("1-3,5.1-5.2,7");
    QTest::newRow("no change of step") << List{{5, 0}, {5, 1}, {6, 0}} << QStringLiteral("5-5.1,6");
    QTest::newRow("gap") << List{{1, 0}, {3, 0}} << QStringLiteral("1,3");
    QTest::newRow("backwards") << List{{3, 0}, {2, 0}} << QStringLiteral("3,2");
}

void TestAddresses::ranges()
{
    QFETCH(QList<EntryAddress>, entries);
    QTEST(EntryAddressUtils::entriesToRanges(entries), "text");
}

void TestAddresses::rangesRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<EntryAddress>>("entries");
    using List = QList<EntryAddress>;
    QTest::newRow("whole") << QStringLiteral("1-3") << List{{1, 0}, {2, 0}, {3, 0}};
    QTest::newRow("decimals") << QStringLiteral("5.1-5.3,7") << List{{5, 1}, {5, 2}, {5, 3}, {7, 0}};
    QTest::newRow("decimals of ends ignored") << QStringLiteral("1.2-3.4") << List{{1, 0}, {2, 0}, {3, 0}};
    QTest::newRow("backwards") << QStringLiteral("3-1") << List{};
    QTest::newRow("empty parts") << QStringLiteral(",,2,") << List{{2, 0}};
    QTest::newRow("blanks") << QStringLiteral(" 3, 6 , ,8 - 9") << List{{3, 0}, {6, 0}, {8, 0}, {9, 0}};
    QTest::newRow("no address") << QStringLiteral("x") << List{EntryAddress()};
    QTest::newRow("lone dash") << QStringLiteral("-") << List{};
}

void TestAddresses::rangesRead()
{
    QFETCH(QString, text);
    QTEST(EntryAddressUtils::rangesToEntries(text), "entries");
    test::expectWarning(QStringLiteral("Range of entries is too long"));
    QVERIFY(EntryAddressUtils::rangesToEntries(QStringLiteral("1-900000")).isEmpty());
}

void TestAddresses::adjacency_data()
{
    QTest::addColumn<QList<EntryAddress>>("pair");
    QTest::addColumn<bool>("adjacent");
    using List = QList<EntryAddress>;
    QTest::newRow("whole") << List{{1, 0}, {2, 0}} << true;
    QTest::newRow("decimals") << List{{1, 1}, {1, 2}} << true;
    QTest::newRow("first decimal") << List{{1, 0}, {1, 1}} << true;
    QTest::newRow("decimal of the next") << List{{1, 0}, {2, 1}} << false;
    QTest::newRow("after a decimal") << List{{1, 1}, {2, 0}} << false;
    QTest::newRow("same") << List{{1, 0}, {1, 0}} << false;
}

void TestAddresses::adjacency()
{
    QFETCH(QList<EntryAddress>, pair);
    QTEST(EntryAddressUtils::areEntriesAdjacent(pair[0], pair[1]), "adjacent");
    QCOMPARE(EntryAddressUtils::getIncrement(pair[0], pair[1]), pair[0].major == pair[1].major ? 2 : 1);
}

void TestAddresses::urlsAsText_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    QTest::newRow("brackets") << QStringLiteral("/a[1].mp4") << QStringLiteral("file:///a%5B1%5D.mp4");
    QTest::newRow("equals") << QStringLiteral("/a=b.mp4") << QStringLiteral("file:///a=b.mp4");
    QTest::newRow("pattern") << QStringLiteral("/s/f_%05d.png") << QStringLiteral("file:///s/f_%2505d.png");
    QTest::newRow("blank") << QStringLiteral("/a b.mp4") << QStringLiteral("file:///a%20b.mp4");
}

void TestAddresses::urlsAsText()
{
    QFETCH(QString, path);
    const QUrl url = QUrl::fromLocalFile(path);
    QTEST(mediaUrlToString(url), "text");
    QCOMPARE(QUrl(mediaUrlToString(url)).toLocalFile(), path);
}

void TestAddresses::states()
{
    for (int value = 0; value <= 10; ++value) {
        const auto state = static_cast<MediaState>(value);
        QCOMPARE(MediaUtils::isPlayable(state), value < 8);
        const int server = value < 7 ? 6 : value == 7 ? 7 : 8;
        QCOMPARE(static_cast<int>(MediaUtils::serverEquivalentState(state)), server);
    }
    QCOMPARE(MediaUtils::describeMediaState(static_cast<MediaState>(11)),
             QStringLiteral("default handler, SHOULD NEVER OCCUR!"));
}

HALCYRA_TEST(TestAddresses)
#include "test_addresses.moc"

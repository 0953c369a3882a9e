#include "common/media/items/guiplaylistentry.h"
#include "common/media/items/mimedata.h"
#include "common/views/playlist/droptarget.h"
#include "common/views/playlist/playlistdrop.h"
#include "common/views/playlist/rundown.h"
#include "tests/support/testmain.h"

#include <QJsonDocument>
#include <QMimeData>
#include <QTest>

#include <cmath>
#include <limits>

using namespace vantrel;
using Kind = DropTarget::Kind;

/// Where a drop goes, what of a payload is believed, and how a list goes on: all that needs no window.
class TestPlaylistDrops : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void targets_data();
    void targets();
    void everyPixelHasItsPlace();
    void payloads_data();
    void payloads();
    void rundowns_data();
    void rundowns();
};

void TestPlaylistDrops::targets_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("y");
    QTest::addColumn<DropTarget>("target");
    const auto insert = [](int row) { return DropTarget{Kind::Insert, row}; };
    const auto replace = [](int row) { return DropTarget{Kind::Replace, row}; };
    // Rows of 20 pixels: the distance from the bottom in percent goes by fives.
    QTest::newRow("empty list") << 0 << 300 << insert(-1);
    QTest::newRow("top fifth of the first row") << 3 << 3 << insert(-1);
    QTest::newRow("80 % replaces") << 3 << 4 << replace(0);
    QTest::newRow("20 % replaces") << 3 << 16 << replace(0);
    QTest::newRow("below 20 %") << 3 << 17 << insert(0);
    QTest::newRow("top fifth of the second row") << 3 << 23 << insert(0);
    QTest::newRow("middle of the last row") << 3 << 50 << replace(2);
    QTest::newRow("bottom of the last row") << 3 << 59 << insert(2);
    QTest::newRow("under the last row") << 3 << 61 << insert(2);
    QTest::newRow("above the first row") << 3 << -4 << insert(-1);
}

void TestPlaylistDrops::targets()
{
    QFETCH(int, rows);
    QFETCH(int, y);
    QFETCH(DropTarget, target);
    QVERIFY(DropGeometry(20, rows).targetAt(y) == target);
}

/// Whatever the height of a row: the line of an insertion is the nearest edge of a row, and both sides of an
/// edge mean the same place.
void TestPlaylistDrops::everyPixelHasItsPlace()
{
    for (const int height : {1, 5, 24, 31, 57}) {
        const DropGeometry geometry(height, 4);
        for (int y = 0; y < 4 * height; ++y) {
            const DropTarget target = geometry.targetAt(y);
            if (target.isReplace())
                QCOMPARE(target.row, y / height);
            else
                QVERIFY(std::abs(geometry.lineOf(target) - y) <= (height + 4) / 5);
        }
    }
    QCOMPARE(DropGeometry::scrollStep(119, 100, 400), -1);
    QCOMPARE(DropGeometry::scrollStep(120, 100, 400), 0);
    QCOMPARE(DropGeometry::scrollStep(382, 100, 400), 0);
    QCOMPARE(DropGeometry::scrollStep(383, 100, 400), 1);
}

namespace {

const QByteArray entry =
    R"({"playlistIndex":1,"entryAddress":"2.5","slotUrl":"brume://collections/1/slots/4","endAction":0,)"
    R"("transitionType":0,"transitionDuration":1,"runtimeBefore":0,"runtimeAfter":null})";
const QByteArray slot =
    R"({"address":"brume://collections/1/slots/4","name":"a","contentUrl":"file:///a.mp4","inpoint":0,)"
    R"("outpoint":null,"duration":4,"isPlayable":true,"durationType":"manual"})";

QByteArray listOf(const QByteArray& first, const QByteArray& second = {})
{
    return '[' + first + (second.isEmpty() ? QByteArray() : ',' + second) + ']';
}

} // namespace

void TestPlaylistDrops::payloads_data()
{
    using Drop = PlaylistDrop::Kind;
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<Drop>("kind");
    const QByteArray slots_ = "2", playlist = "3", entries = "4";
    const auto changed = [](const char* from, const char* to) {
        return listOf(QByteArray(entry).replace(from, to));
    };
    QTest::newRow("slots") << slots_ << listOf(slot, slot) << Drop::Media;
    QTest::newRow("slots by their word") << QByteArray("slot") << listOf(slot) << Drop::Media;
    QTest::newRow("slot numbers") << QByteArray("slot") << QByteArray(R"({"collection":1,"slots":[4]})")
                                  << Drop::Media;
    QTest::newRow("entries") << entries << listOf(entry) << Drop::Entries;
    QTest::newRow("playlist") << playlist
                              << QByteArray(R"([{"name":"a","number":2,"entryCount":1,"duration":2}])")
                              << Drop::Playlist;

    QTest::newRow("nothing") << entries << QByteArray("[]") << Drop::Nothing;
    QTest::newRow("no JSON") << entries << QByteArray("[{") << Drop::Nothing;
    QTest::newRow("numbers of no collection")
        << QByteArray("slot") << QByteArray(R"({"slots":[4]})") << Drop::Nothing;
    QTest::newRow("files") << QByteArray("media") << QByteArray(R"([{"path":"/a.mp4"}])") << Drop::Nothing;
    QTest::newRow("entries that say slots") << slots_ << listOf(entry) << Drop::Nothing;
    QTest::newRow("slots that say entries") << entries << listOf(slot) << Drop::Nothing;
    QTest::newRow("one good, one bad") << entries << listOf(entry, slot) << Drop::Nothing;
    QTest::newRow("of two lists") << entries
                                  << listOf(entry, QByteArray(entry).replace(R"("playlistIndex":1)",
                                                                             R"("playlistIndex":2)"))
                                  << Drop::Nothing;
    QTest::newRow("unknown type") << QByteArray("77") << listOf(entry) << Drop::Nothing;
    QTest::newRow("end action") << entries << changed("\"endAction\":0", "\"endAction\":99") << Drop::Nothing;
    QTest::newRow("half an action") << entries << changed("\"endAction\":0", "\"endAction\":0.5")
                                    << Drop::Nothing;
    QTest::newRow("transition") << entries << changed("\"transitionType\":0", "\"transitionType\":-1")
                                << Drop::Nothing;
    QTest::newRow("duration") << entries
                              << changed("\"transitionDuration\":1", "\"transitionDuration\":-1e300")
                              << Drop::Nothing;
    QTest::newRow("list") << entries << changed("\"playlistIndex\":1", "\"playlistIndex\":-7")
                          << Drop::Nothing;
    QTest::newRow("slot of nowhere") << entries << changed("slots/4", "slots/x") << Drop::Nothing;
    QTest::newRow("address") << entries << changed("2.5", "2.5.1") << Drop::Nothing;
    QTest::newRow("playlist 0") << playlist
                                << QByteArray(R"([{"name":"a","number":0,"entryCount":1,"duration":2}])")
                                << Drop::Nothing;
}

void TestPlaylistDrops::payloads()
{
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, json);
    QFETCH(PlaylistDrop::Kind, kind);
    test::allowWarnings(QStringLiteral("did not match|Invalid"));
    QMimeData data;
    data.setData(mimeformat::json, json);
    data.setData(mimeformat::type, type);
    const PlaylistDrop drop = PlaylistDrop::read(&data);
    QCOMPARE(drop.kind(), kind);
    QCOMPARE(drop.fault().isEmpty(), kind != PlaylistDrop::Kind::Nothing);
    if (kind == PlaylistDrop::Kind::Nothing)
        QVERIFY(drop.entries().isEmpty() && drop.mediaUrls().isEmpty());
    if (kind == PlaylistDrop::Kind::Media)
        QCOMPARE(drop.mediaUrls().first(), QStringLiteral("brume://collections/1/slots/4"));
}

void TestPlaylistDrops::rundowns_data()
{
    using R = Rundown::Kind;
    QTest::addColumn<QByteArray>(
        "actions"); // n, p, s, r, g of each entry; i: it has no end, u: it cannot be played
    QTest::addColumn<int>("playing");
    QTest::addColumn<R>("kind");
    QTest::addColumn<int>("last");
    QTest::addColumn<double>("seconds");
    QTest::newRow("to the end") << QByteArray("nnn") << 1 << R::Ends << 3 << 20.0;
    QTest::newRow("the last plays") << QByteArray("nnn") << 3 << R::Ends << 3 << 0.0;
    QTest::newRow("the last holds") << QByteArray("nnp") << 2 << R::Ends << 3 << 10.0;
    QTest::newRow("a pause between") << QByteArray("nnpn") << 1 << R::Pauses << 3 << 20.0;
    QTest::newRow("a pause behind") << QByteArray("pnn") << 2 << R::Ends << 3 << 10.0;
    QTest::newRow("a stop now") << QByteArray("nsn") << 2 << R::Stops << 2 << 0.0;
    QTest::newRow("a loop") << QByteArray("nrn") << 1 << R::Repeats << 2 << 10.0;
    QTest::newRow("no end, later") << QByteArray("nnin") << 1 << R::Endless << 3 << 10.0;
    QTest::newRow("no end, now") << QByteArray("nin") << 2 << R::Endless << 2 << 0.0;
    QTest::newRow("behind one without an end") << QByteArray("innn") << 2 << R::Ends << 4 << 20.0;
    QTest::newRow("holds for a target") << QByteArray("ngn") << 1 << R::Pauses << 2 << 10.0;
    QTest::newRow("passes over what cannot be played") << QByteArray("nuun") << 1 << R::Ends << 4 << 10.0;
    QTest::newRow("nothing else can be played") << QByteArray("nnu") << 2 << R::Ends << 2 << 0.0;
    QTest::newRow("plays what cannot be played any more") << QByteArray("nun") << 2 << R::Ends << 3 << 10.0;
    QTest::newRow("removed, before some that cannot be played")
        << QByteArray("uun") << 0 << R::Removed << 0 << 0.0;
    QTest::newRow("removed, the last") << QByteArray("nn") << 7 << R::Removed << 0 << 0.0;
    QTest::newRow("removed, the first") << QByteArray("nn") << 0 << R::Removed << 0 << 0.0;
}

/// Entries of ten seconds each that follow by a cut.
void TestPlaylistDrops::rundowns()
{
    QFETCH(QByteArray, actions);
    QFETCH(int, playing);
    QList<Rundown::Entry> entries;
    double before = 0;
    for (int i = 0; i < actions.size(); ++i) {
        const char action = actions[i];
        const double after = action == 'i' ? std::numeric_limits<double>::infinity() : before + 10;
        const QJsonObject json =
            QJsonDocument::fromJson(QByteArray(entry).replace("2.5", QByteArray::number(i + 1))).object();
        GuiPlaylistEntry item;
        QVERIFY(item.fromJson(json));
        item.setTransitionType(TakeTransitionType::DirectCut);
        item.setEndAction(action == 'p'   ? EndAction::Pause
                          : action == 's' ? EndAction::Stop
                          : action == 'r' ? EndAction::Repeat
                          : action == 'g' ? EndAction::GoTo
                                          : EndAction::Next);
        item.setRuntimes(before, after);
        item.setPlayable(action != 'u');
        entries.append(std::make_shared<GuiPlaylistEntry>(item));
        before = after;
    }
    const Rundown rundown(entries, EntryAddress(playing, 0), false,
                          [](const GuiPlaylistEntry&) { return 10.0; });
    QTEST(rundown.kind(), "kind");
    QTEST(rundown.last().major, "last");
    QTEST(rundown.seconds(), "seconds");
    if (rundown.kind() == Rundown::Kind::Ends)
        QCOMPARE(rundown.endOf(rundown.last()), std::optional(rundown.seconds()));
    int next = playing;
    while (next < actions.size() && actions[next] == 'u')
        ++next;
    QCOMPARE(rundown.next(), next < actions.size() ? EntryAddress(next + 1, 0) : EntryAddress());
    QVERIFY(!rundown.endOf(EntryAddress(playing - 1, 0)));
}

HALCYRA_TEST(TestPlaylistDrops)
#include "test_playlistdrops.moc"

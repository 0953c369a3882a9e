#include "common/media/address/resourceurl.h"
#include "common/media/models/singlemediamodel.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/mocknetworkaccessmanager.h"
#include "tests/support/testmain.h"
#include "tests/tarn/logcapture.h"

#include <QAbstractItemModelTester>
#include <QLocale>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;

namespace {

const QString slotAddress = QStringLiteral("brume://collections/1/slots/1");
const QString entryAddress = QStringLiteral("brume://playlists/2/entries/5.1");

const QByteArray videoJson = R"({"type":"videoFile","isPlayable":true,"fileSize":5242880,
    "imported":1700000000,"modified":null,
    "video":{"width":1920,"height":1080,"pixelAspect":[16,15],"frameRate":29.97002997,"codec":"h264",
             "profile":"High","colorSpace":"BT.709","pixelFormat":"yuv420p","bitRate":8388608},
    "audio":{"codec":"AAC","description":"LC, 48 kHz","channels":2}})";
const QByteArray smallJson = R"({"type":"videoFile","isPlayable":true,"fileSize":51200,
    "video":{"width":1280,"height":720,"frameRate":25,"codec":"h264","colorSpace":"BT.709",
             "pixelFormat":"yuv420p","bitRate":640000}})";
const QByteArray stillJson = R"({"type":"imageFile","isPlayable":true,"fileSize":0,
    "image":{"width":640,"height":480,"codec":"png","pixelFormat":"rgb24","bitRate":99}})";
const QByteArray soundJson = R"({"type":"audioFile","isPlayable":true,
    "audio":{"codec":"PCM S16LE","description":"44.1 kHz","channels":1}})";
const QByteArray bareJson = R"({"type":"imageSequence","isPlayable":false})";

/// A library of one collection of two slots and a playlist, the helpers of a connection, and the model.
struct Fixture
{
    Fixture()
        : mirror(library())
        , metadata(QStringLiteral("h"), &network, 1000)
        , thumbnails(QStringLiteral("h"), &network, 100)
        , states(nullptr, nullptr, &mirror.playlists, &mirror.provider, &metadata)
        , aggregator(&metadata, &thumbnails, &states)
        , model(&aggregator, &mirror.playlists, &mirror.provider)
        , tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal)
    {
    }

    static Ref<MediaLibrary> library()
    {
        auto library = test::makeLibrary(1, 2);
        Playlist show("Gala");
        for (const EntryAddress& address : {EntryAddress{5, 1}, EntryAddress{12, 0}})
            show.addEntry(address,
                          {test::slotUrl(1, 1), EndAction::Next, TakeTransitionType::DirectCut, 0.0});
        library->addPlaylist(2, show);
        return library;
    }

    void answer(const char* file, const QByteArray& json)
    {
        network.addGetReply(resourceUrl(QStringLiteral("h"), 80, QStringLiteral("/api/brume/v1/metadata/"),
                                        QUrl(QLatin1String(file))),
                            json);
    }

    /// The texts of columns, "|" between them.
    QString texts(const QList<int>& columns) const
    {
        QStringList found;
        for (const int column : columns)
            found.append(model.index(0, column).data().toString());
        return found.join(u'|');
    }

    bool hasData() const { return model.index(0, 0).data().isValid(); }

    test::MediaMirror mirror;
    test::MockNetworkAccessManager network;
    MetadataProvider metadata;
    ThumbnailProvider thumbnails;
    MediaStateProvider states;
    MediaDataAggregator aggregator;
    SingleMediaModel model;
    QAbstractItemModelTester tester;
};

} // namespace

class TestSingleMedia : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The playlists are read before the slots that they link to.
    void init() { test::allowWarnings(QStringLiteral("Missing slot: '")); }
    void describesAFile_data();
    void describesAFile();
    void focus();
    void followsTheLibrary();
    void followsTheFile();
    void unknownColorSpaceIsTold();
};

void TestSingleMedia::describesAFile_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("pictures");
    QTest::addColumn<QString>("rest");
    const QString imported = QString::fromStdString(DateTime(1700000000).toString());
    QTest::newRow("video")
        << videoJson << "1920 px|1080 px|1.90:1 (pixels 16:15)|29.97|H264 High|BT.709|yuv420p|8.4 Mbit/s"
        << "5.2 MB|AAC LC, 48 kHz|2 channels|" + imported + "|--|Video";
    QTest::newRow("small video") << smallJson << "1280 px|720 px|16:9|25|H264|BT.709|yuv420p|640 kbit/s"
                                 << "51 kB|--|--|--|--|Video";
    QTest::newRow("still") << stillJson << "640 px|480 px|4:3|--|png|unknown|rgb24|--"
                           << "0 B|--|--|--|--|Image";
    QTest::newRow("sound") << soundJson << "--|--|--|--|--|--|--|--"
                           << "0 B|PCM S16LE 44.1 kHz|1 channel|--|--|Audio";
    QTest::newRow("no more than its type") << bareJson << "--|--|--|--|--|--|--|--"
                                           << "0 B|--|--|--|--|Image sequence";
}

void TestSingleMedia::describesAFile()
{
    QFETCH(QByteArray, json);
    QLocale::setDefault(QLocale::c());
    Fixture f;
    QVERIFY(!f.hasData());
    f.model.setMediaAddress(slotAddress);
    QVERIFY(!f.hasData()); // asked for, not here yet
    f.model.setMediaAddress(QString());
    f.answer("file:///clips/c1s1.mp4", json);
    f.metadata.invalidateAll();
    f.model.setMediaAddress(slotAddress);
    QTRY_VERIFY(f.hasData());
    QTEST(f.texts({3, 4, 5, 6, 7, 8, 9, 10}), "pictures");
    QTEST(f.texts({11, 12, 13, 14, 15, 19}), "rest");
    QCOMPARE(f.texts({0, 1, 2, 20}), QStringLiteral("c1s1|/clips/c1s1.mp4|10 sec|"));
    QVERIFY(!f.model.index(0, 0).data(Qt::EditRole).isValid());
}

void TestSingleMedia::focus()
{
    Fixture f;
    f.answer("file:///clips/c1s1.mp4", videoJson);
    QSignalSpy told(&f.model, &SingleMediaModel::mediaAddressChanged);
    f.model.setMediaAddress(slotAddress);
    QTRY_VERIFY(f.hasData());
    QCOMPARE(f.texts({16, 17}), QStringLiteral("-|1: Collection 1, slot 1"));
    const QStringList uses{QStringLiteral("\u2514 2: Gala - 5.1"), QStringLiteral("\u2514 2: Gala - 12")};
    QCOMPARE(f.model.index(0, 18).data().toStringList(), uses);

    f.model.setMediaAddress(entryAddress);
    QCOMPARE(f.texts({0, 16, 17}), QStringLiteral("c1s1|2: Gala - 5.1|-"));
    QCOMPARE(f.model.index(0, 18).data().toStringList(),
             QStringList{QStringLiteral("\u2514 1: Collection 1, slot 1")});

    for (const char* nowhere :
         {"brume://collections/1/slots/9", "brume://playlists/9/entries/1", "elsewhere"}) {
        f.model.setMediaAddress(QLatin1String(nowhere));
        QVERIFY2(f.model.contentUrl().isEmpty() && !f.hasData(), nowhere);
    }
    f.model.setMediaAddress(slotAddress);
    f.model.setMediaAddress(slotAddress); // the same again is told again
    QCOMPARE(told.size(), 7);
    QVERIFY(f.hasData());
}

void TestSingleMedia::followsTheLibrary()
{
    Fixture f;
    f.answer("file:///clips/c1s1.mp4", videoJson);
    f.model.setMediaAddress(slotAddress);
    QTRY_VERIFY(f.hasData());
    QSignalSpy reset(&f.model, &QAbstractItemModel::modelReset);
    QSignalSpy changed(&f.model, &QAbstractItemModel::dataChanged);
    f.mirror.edit([](MediaLibrary& library) { library.findSlot(1, 2)->setName("other"); });
    QCOMPARE(reset.size(), 0);
    f.mirror.edit([](MediaLibrary& library) {
        library.findSlot(1, 1)->setName("Opening");
        library.findSlot(1, 1)->setDurationType(MediaDurationType::Infinite);
    });
    QVERIFY(reset.size() > 0);
    QCOMPARE(f.texts({0, 2}), QStringLiteral("Opening|Infinite"));
    changed.clear();
    f.mirror.edit([](MediaLibrary& library) { library.findPlaylist(2)->removeEntry({5, 1}); });
    QVERIFY(changed.size() > 0);
    QCOMPARE(f.model.index(0, 18).data().toStringList().size(), 1);

    // An entry in focus follows its entry.
    f.model.setMediaAddress(QStringLiteral("brume://playlists/2/entries/12"));
    f.answer("file:///clips/c1s2.mp4", stillJson);
    f.mirror.edit([](MediaLibrary& library) {
        library.findPlaylistEntry(2, {12, 0})->setMediaUrl(test::slotUrl(1, 2));
    });
    QTRY_COMPARE(f.texts({0, 19}), QStringLiteral("other|Image"));
    f.mirror.edit([](MediaLibrary& library) { library.findSlot(1, 2)->setName("renamed"); });
    QCOMPARE(f.texts({0}), QStringLiteral("renamed"));
    f.mirror.edit([](MediaLibrary& library) { library.removePlaylist(2); });
    QVERIFY(!f.hasData());

    // So do a collection's name and its end.
    f.model.setMediaAddress(slotAddress);
    f.mirror.edit([](MediaLibrary& library) { library.findCollection(1)->setName("Acts"); });
    QCOMPARE(f.texts({17}), QStringLiteral("1: Acts, slot 1"));
    reset.clear();
    f.mirror.edit([](MediaLibrary& library) { library.removeCollection(1); });
    QVERIFY(reset.size() > 0 && !f.hasData());
}

void TestSingleMedia::followsTheFile()
{
    Fixture f;
    f.answer("file:///clips/c1s1.mp4", videoJson);
    f.model.setMediaAddress(slotAddress);
    QTRY_VERIFY(f.hasData());
    // The file was replaced: what is known of it goes, and is asked for anew.
    f.answer("file:///clips/c1s1.mp4", soundJson);
    f.aggregator.invalidateData(QUrl(QStringLiteral("file:///clips/c1s1.mp4")), true);
    QVERIFY(!f.hasData());
    QTRY_COMPARE(f.texts({19}), QStringLiteral("Audio"));
}

void TestSingleMedia::unknownColorSpaceIsTold()
{
    Fixture f;
    f.answer("file:///clips/c1s1.mp4", QByteArray(videoJson).replace("BT.709", "XYZ"));
    const test::LogCapture log;
    f.model.setMediaAddress(slotAddress);
    QTRY_COMPARE(f.texts({8}), QStringLiteral("unknown"));
    QVERIFY(log.lines().contains(QStringLiteral("enums: Missing enum mapping. Defaulting to 'unknown'")));
}

HALCYRA_TEST(TestSingleMedia)
#include "test_singlemedia.moc"

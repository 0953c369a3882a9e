#include "common/media/address/resourceurl.h"
#include "common/media/net/defaultresourcestatusprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/media/net/networkresourcecollection.h"
#include "common/session/mirror/guiplayback.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/playenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/mocknetworkaccessmanager.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using test::MediaMirror;
using test::MockNetworkAccessManager;
using test::MockNetworkReply;

namespace {

constexpr int timeoutMs = 20;
const QUrl request(QStringLiteral("http://h/x"));
const QString name = QStringLiteral("x");
const QUrl clip(QStringLiteral("file:///clips/c1s1.mp4"));

QUrl metadataUrl(const QUrl& media)
{
    return resourceUrl(QStringLiteral("h"), 80, QStringLiteral("/api/brume/v1/metadata/"), media);
}

QUrl thumbnailUrl(const QUrl& media)
{
    return resourceUrl(QStringLiteral("h"), 80, QStringLiteral("/api/brume/v1/thumbnails/"), media);
}

QByteArray jpeg(int side, bool noisy = false)
{
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::red);
    for (int i = 0; noisy && i < side * side; ++i)
        image.setPixel(i % side, i / side, static_cast<uint>(i * 2654435761U));
    QByteArray data;
    QBuffer buffer(&data);
    image.save(&buffer, "JPG", 100);
    return data;
}

/// The helpers of a connection on a made-up network.
struct Helpers
{
    explicit Helpers(MediaMirror& mirror, GUIPlayback* preview = nullptr, GUIPlayback* program = nullptr)
        : metadata(QStringLiteral("h"), &network, 1000)
        , thumbnails(QStringLiteral("h"), &network, 100)
        , states(preview, program, &mirror.playlists, &mirror.provider, &metadata)
        , aggregator(&metadata, &thumbnails, &states)
    {
    }

    MockNetworkAccessManager network;
    MetadataProvider metadata;
    ThumbnailProvider thumbnails;
    MediaStateProvider states;
    MediaDataAggregator aggregator;
};

} // namespace

class TestNetworkResources : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data();
    void answers();
    void silenceIsAskedAgain();
    void oneRequestAtATime();
    void lateAnswerOfAnOldRequest();
    void terminated();
    void requestUrls_data();
    void requestUrls();
    void metadata();
    void badMetadata_data();
    void badMetadata();
    void thumbnails();
    void largeThumbnail();
    void thumbnailsAreKeptByBytes_data();
    void thumbnailsAreKeptByBytes();
    void forgottenWhileDecoding();
    void cacheIsBounded();
    void aggregation();
    void faults_data();
    void faults();
    void faultsOutlastWhatToldThem();
    void channelStates();
    void resourceStatus();
};

void TestNetworkResources::answers_data()
{
    QTest::addColumn<QNetworkReply::NetworkError>("error");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("warning");
    QTest::addColumn<bool>("goesOn");
    QTest::newRow("found") << QNetworkReply::NoError << 200 << QStringLiteral("data body") << QString()
                           << false;
    QTest::newRow("not found") << QNetworkReply::ContentNotFoundError << 404 << QStringLiteral("none")
                               << QString() << false;
    QTest::newRow("no content") << QNetworkReply::NoError << 204 << QString()
                                << QStringLiteral("Invalid reply for url") << true;
    QTest::newRow("refused") << QNetworkReply::ConnectionRefusedError << 0 << QString() << QString() << true;
}

void TestNetworkResources::answers()
{
    QFETCH(QNetworkReply::NetworkError, error);
    QFETCH(int, status);
    QFETCH(QString, told);
    QFETCH(QString, warning);
    QFETCH(bool, goesOn);
    MockNetworkAccessManager network;
    const auto reply = MockNetworkAccessManager::ReplyPtr::create("body", error);
    reply->setStatus(status);
    network.addGetReply(request, reply);
    NetworkResourceCollection resources(&network, 3, 60000);
    QString got;
    connect(&resources, &NetworkResourceCollection::dataReceived, this,
            [&](const QString&, const QByteArray& data) {
                got = QStringLiteral("data ") + QString::fromUtf8(data);
            });
    connect(&resources, &NetworkResourceCollection::dataNotFound, this,
            [&] { got = QStringLiteral("none"); });
    QSignalSpy finished(&network, &AbstractNetworkAccessManager::finished);
    if (!warning.isEmpty())
        test::expectWarning(warning);
    resources.fetch(name, request);
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(got, told);
    QCOMPARE(resources.isFetching(name), goesOn);
}

void TestNetworkResources::silenceIsAskedAgain()
{
    MockNetworkAccessManager network;
    NetworkResourceCollection resources(&network, 3, timeoutMs);
    QSignalSpy data(&resources, &NetworkResourceCollection::dataReceived);
    test::expectWarning(QStringLiteral("No reply after requesting data for url: "));
    resources.fetch(name, request);
    QTRY_VERIFY(!resources.isFetching(name));
    QCOMPARE(network.requestCount(request), 4);
    QCOMPARE(data.size(), 0);
    // An answer to a later try counts.
    network.urls.clear();
    resources.fetch(name, request);
    QTRY_VERIFY(network.requestCount(request) == 1);
    network.addGetReply(request, "late");
    QTRY_COMPARE(data.size(), 1);
    QCOMPARE(network.requestCount(request), 2);
    // No request at all is no reason to wait.
    network.refuses = true;
    test::expectWarning(QStringLiteral("Nullptr passed as reply for resource: x"));
    resources.fetch(name, request);
    QVERIFY(!resources.isFetching(name));
}

void TestNetworkResources::oneRequestAtATime()
{
    MockNetworkAccessManager network;
    NetworkResourceCollection resources(&network, 3, 60000);
    resources.fetch(name, request);
    resources.fetch(name, request);
    QCOMPARE(network.requestCount(request), 1);
}

void TestNetworkResources::lateAnswerOfAnOldRequest()
{
    MockNetworkAccessManager network;
    const auto old = MockNetworkAccessManager::ReplyPtr::create("old", QNetworkReply::NoError, true);
    NetworkResourceCollection resources(&network, 3, 60000);
    QSignalSpy data(&resources, &NetworkResourceCollection::dataReceived);
    network.addGetReply(request, old);
    resources.fetch(name, request);
    resources.terminateFetch(name);
    QVERIFY(old->aborted);
    resources.fetch(name, request); // never answered
    QSignalSpy finished(&network, &AbstractNetworkAccessManager::finished);
    QTRY_COMPARE(finished.size(), 1); // the old one
    QCOMPARE(data.size(), 0);
    QVERIFY(resources.isFetching(name));
}

void TestNetworkResources::terminated()
{
    MockNetworkAccessManager network;
    NetworkResourceCollection resources(&network, 3, timeoutMs);
    resources.fetch(name, request);
    resources.fetch(QStringLiteral("y"), request);
    resources.terminateAll();
    QVERIFY(!resources.isFetching(name));
    QVERIFY(!resources.isFetching(QStringLiteral("y")));
    resources.terminateFetch(name);
    QCOMPARE(network.requestCount(request), 2);
}

void TestNetworkResources::requestUrls_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("query");
    QTest::newRow("plain") << QStringLiteral("/a.mp4") << QByteArray("file=file%3A%2F%2F%2Fa.mp4");
    QTest::newRow("ampersand") << QStringLiteral("/a&b=c.mp4")
                               << QByteArray("file=file%3A%2F%2F%2Fa%26b%3Dc.mp4");
    QTest::newRow("blank") << QStringLiteral("/a b.mp4") << QByteArray("file=file%3A%2F%2F%2Fa%2520b.mp4");
    QTest::newRow("plus") << QStringLiteral("/a+b.mp4") << QByteArray("file=file%3A%2F%2F%2Fa%2Bb.mp4");
    QTest::newRow("pattern") << QStringLiteral("/f_%05d.png")
                             << QByteArray("file=file%3A%2F%2F%2Ff_%252505d.png");
}

void TestNetworkResources::requestUrls()
{
    QFETCH(QString, path);
    const QUrl url = metadataUrl(QUrl::fromLocalFile(path));
    QCOMPARE(url.path(), QStringLiteral("/api/brume/v1/metadata/"));
    QTEST(url.query(QUrl::FullyEncoded).toLatin1(), "query");
}

void TestNetworkResources::metadata()
{
    MockNetworkAccessManager network;
    MetadataProvider provider(QStringLiteral("h"), &network, 1000);
    QSignalSpy changed(&provider, &MetadataProvider::metadataChanged);
    QVERIFY(!provider.getMetadata(QUrl()));
    QCOMPARE(network.urls.size(), 0);
    network.addGetReply(metadataUrl(clip), R"({"type":"audioFile","isPlayable":true})");
    QVERIFY(!provider.getMetadata(clip));
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toUrl(), clip);
    QCOMPARE(provider.getMetadata(clip)->getMediaType(), MediaType::AudioFile);
    QCOMPARE(network.urls.size(), 1);

    QSignalSpy invalidated(&provider, &MetadataProvider::metadataInvalidated);
    provider.invalidateMetadata(clip, false);
    QVERIFY(!provider.getMetadataFromCache(clip));
    network.addGetReply(metadataUrl(clip), R"({"type":"audioFile","isPlayable":true})");
    provider.getMetadata(clip);
    provider.invalidateMetadata(clip, true); // also what is to come
    QCOMPARE(invalidated.size(), 2);
    network.addGetReply(metadataUrl(clip), R"({"type":"videoFile","isPlayable":false})");
    provider.getMetadata(clip);
    QTRY_COMPARE(changed.size(), 2);
    QCOMPARE(provider.getMetadata(clip)->getMediaType(), MediaType::VideoFile);
    provider.invalidateAll();
    QCOMPARE(invalidated.size(), 3);
}

void TestNetworkResources::badMetadata_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("warning");
    QTest::newRow("no json") << QByteArray("{") << QStringLiteral("JSON data is invalid for reply from ");
    QTest::newRow("no metadata") << QByteArray("[]") << QStringLiteral("Error parsing JSON from reply from ");
}

void TestNetworkResources::badMetadata()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, warning);
    MockNetworkAccessManager network;
    MetadataProvider provider(QStringLiteral("h"), &network, 1000);
    QSignalSpy changed(&provider, &MetadataProvider::metadataChanged);
    QSignalSpy finished(&network, &AbstractNetworkAccessManager::finished);
    network.addGetReply(metadataUrl(clip), body);
    test::expectWarning(warning);
    provider.getMetadata(clip);
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(changed.size(), 0);
    QVERIFY(!provider.getMetadataFromCache(clip));
}

void TestNetworkResources::thumbnails()
{
    MockNetworkAccessManager network;
    ThumbnailProvider provider(QStringLiteral("h"), &network, 100);
    QSignalSpy changed(&provider, &ThumbnailProvider::thumbnailChanged);
    network.addGetReply(thumbnailUrl(clip), jpeg(32));
    QVERIFY(!provider.getThumbnail(clip));
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(provider.getThumbnail(clip)->size(), QSize(32, 32));

    // What is no picture is asked for once.
    const QUrl bad(QStringLiteral("file:///bad.mp4"));
    network.addGetReply(thumbnailUrl(bad), "no jpeg");
    test::expectWarning(QStringLiteral("Not a JPEG file"));
    provider.getThumbnail(bad);
    QTRY_COMPARE(changed.size(), 2);
    QVERIFY(provider.getThumbnail(bad)->isNull());
    QCOMPARE(network.urls.size(), 2);

    // What has none, until its file is another.
    const QUrl sound(QStringLiteral("file:///sound.wav"));
    QSignalSpy finished(&network, &AbstractNetworkAccessManager::finished);
    for (const auto& [asked, error] :
         {std::pair(3, QNetworkReply::ContentNotFoundError), std::pair(4, QNetworkReply::NoError)}) {
        network.addGetReply(thumbnailUrl(sound), {}, error);
        QVERIFY(!provider.getThumbnail(sound));
        QTRY_COMPARE(finished.size(), asked - 2);
        QVERIFY(provider.getThumbnail(sound)->isNull());
        QCOMPARE(network.urls.size(), asked);
        provider.invalidateThumbnail(sound, true);
    }
}

void TestNetworkResources::largeThumbnail()
{
    MockNetworkAccessManager network;
    ThumbnailProvider provider(QStringLiteral("h"), &network, 100);
    QSignalSpy changed(&provider, &ThumbnailProvider::thumbnailChanged);
    const QByteArray large = jpeg(1200, true);
    QVERIFY(large.size() > 200 * 1024);
    network.addGetReply(thumbnailUrl(clip), large);
    provider.getThumbnail(clip);
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(provider.getThumbnail(clip)->size(), QSize(256, 256));
}

void TestNetworkResources::thumbnailsAreKeptByBytes_data()
{
    QTest::addColumn<int>("side"); // pixels, of four bytes
    QTest::addColumn<int>("kept");
    QTest::newRow("as many as fit") << 240 << 291;
    QTest::newRow("never fewer than are in view") << 400 << 256;
}

void TestNetworkResources::thumbnailsAreKeptByBytes()
{
    QFETCH(int, side);
    QFETCH(int, kept);
    MockNetworkAccessManager network;
    ThumbnailProvider provider(QStringLiteral("h"), &network, 100);
    QSignalSpy changed(&provider, &ThumbnailProvider::thumbnailChanged);
    const QByteArray picture = jpeg(side);
    const auto url = [](int i) { return QUrl(QStringLiteral("file:///%1.mp4").arg(i)); };
    for (int i = 0; i <= kept; ++i) {
        network.addGetReply(thumbnailUrl(url(i)), picture);
        provider.getThumbnail(url(i));
        QVERIFY(changed.wait());
    }
    QVERIFY(!provider.getThumbnailFromCache(url(0)));
    for (int i = 1; i <= kept; ++i)
        QVERIFY(provider.getThumbnailFromCache(url(i)));
}

void TestNetworkResources::forgottenWhileDecoding()
{
    MockNetworkAccessManager network;
    ThumbnailProvider provider(QStringLiteral("h"), &network, 100);
    QSignalSpy changed(&provider, &ThumbnailProvider::thumbnailChanged);
    QSignalSpy finished(&network, &AbstractNetworkAccessManager::finished);
    network.addGetReply(thumbnailUrl(clip), jpeg(1200, true));
    provider.getThumbnail(clip);
    QTRY_COMPARE(finished.size(), 1);
    QVERIFY(!provider.getThumbnail(clip)); // being decoded: not asked for again
    QCOMPARE(network.urls.size(), 1);
    provider.invalidateThumbnail(clip, true);
    network.addGetReply(thumbnailUrl(clip), jpeg(16));
    provider.getThumbnail(clip);
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(provider.getThumbnail(clip)->size(), QSize(16, 16));
}

void TestNetworkResources::cacheIsBounded()
{
    MockNetworkAccessManager network;
    MetadataProvider provider(QStringLiteral("h"), &network, 1000);
    QSignalSpy changed(&provider, &MetadataProvider::metadataChanged);
    const auto url = [](int i) { return QUrl(QStringLiteral("file:///%1.mp4").arg(i)); };
    for (int i = 0; i <= 100; ++i) {
        network.addGetReply(metadataUrl(url(i)), R"({"type":"videoFile","isPlayable":true})");
        provider.getMetadata(url(i));
    }
    QTRY_COMPARE(changed.size(), 101);
    QVERIFY(!provider.getMetadataFromCache(url(0)));
    QVERIFY(provider.getMetadataFromCache(url(1)));
}

void TestNetworkResources::aggregation()
{
    MediaMirror mirror(test::makeLibrary(1, 2));
    Helpers helpers(mirror);
    MediaDataAggregator& aggregator = helpers.aggregator;
    QStringList told;
    connect(&aggregator, &MediaDataAggregator::thumbnailChanged, this,
            [&] { told.append(QStringLiteral("thumbnail")); });
    connect(&aggregator, &MediaDataAggregator::mediaStateChanged, this,
            [&] { told.append(QStringLiteral("state")); });
    connect(&aggregator, &MediaDataAggregator::metadataChanged, this,
            [&] { told.append(QStringLiteral("metadata")); });
    connect(&aggregator, &MediaDataAggregator::thumbnailInvalidated, this,
            [&] { told.append(QStringLiteral("no thumbnail")); });
    connect(&aggregator, &MediaDataAggregator::metadataInvalidated, this,
            [&] { told.append(QStringLiteral("no metadata")); });
    helpers.network.addGetReply(metadataUrl(clip),
                                R"({"type":"audioFile","isPlayable":true,"caveats":["unsupportedAudio"]})");
    const ThumbnailPtr unknown = aggregator.thumbnail(clip);
    QVERIFY(unknown && !unknown->isNull());
    QVERIFY(!aggregator.knownThumbnail(clip));
    QCOMPARE(aggregator.metadataMediaState(clip), MediaState::UnknownState);
    QTRY_COMPARE(told.join(u','), QStringLiteral("thumbnail,state,metadata"));
    QCOMPARE(aggregator.mediaState(clip), MediaState::PlayableWithCaveats);
    QCOMPARE(aggregator.mediaCaveatsDescribed(clip),
             QStringList{QStringLiteral("Media contains unsupported audio")});
    QVERIFY(aggregator.thumbnail(clip)->cacheKey() != unknown->cacheKey()); // the placeholder of sound
    QCOMPARE(helpers.states.mediaState(MediaAddress(1, 1)), MediaState::PlayableWithCaveats);
    QCOMPARE(helpers.states.mediaState(MediaAddress(1, 9)), MediaState::UnknownState);
    told.clear();
    aggregator.invalidateData(clip, true);
    QCOMPARE(told.join(u','), QStringLiteral("no thumbnail,state,no metadata"));
}

void TestNetworkResources::faults_data()
{
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<QStringList>("faults");
    const auto row = [](const char* name, const char* told, const QStringList& faults) {
        QTest::newRow(name) << QByteArray(told) << faults;
    };
    row("none", R"({"type":"videoFile","isPlayable":true})", {});
    row("the server's own",
        R"({"type":"videoFile","isPlayable":false,"error":"Empty.\u0000\u202e Copy it\nagain."})",
        {QStringLiteral("Empty. Copy it again.")});
    row("none given", R"({"type":"videoFile","isPlayable":false})",
        {QStringLiteral("The server cannot play it, and does not say why.")});
    row("both",
        R"({"type":"videoFile","isPlayable":false,"error":"No pictures.","caveats":["unsupportedAudio"],)"
        R"("caveatTexts":{"unsupportedAudio":"The sound is DTS."}})",
        {QStringLiteral("No pictures."), QStringLiteral("The sound is DTS.")});
}

/// What a row says of its file: known, in words that may stand on the screen, and asked of nobody.
void TestNetworkResources::faults()
{
    QFETCH(QByteArray, told);
    MediaMirror mirror(test::makeLibrary(1, 2));
    Helpers helpers(mirror);
    helpers.network.addGetReply(metadataUrl(clip), told);
    QCOMPARE(helpers.aggregator.knownFaults(clip), QStringList());
    QVERIFY(!helpers.aggregator.knownMetadata(clip));
    helpers.aggregator.metadata(clip);
    QTRY_VERIFY(helpers.aggregator.knownMetadata(clip));
    QTEST(helpers.aggregator.knownFaults(clip), "faults");
}

/// Its state is known for as long, and so is the reason of it.
void TestNetworkResources::faultsOutlastWhatToldThem()
{
    MediaMirror mirror(test::makeLibrary(1, 2));
    Helpers helpers(mirror);
    helpers.network.addGetReply(metadataUrl(clip),
                                R"({"type":"videoFile","isPlayable":false,"error":"Empty."})");
    helpers.aggregator.metadata(clip);
    QTRY_VERIFY(helpers.aggregator.knownMetadata(clip));
    QList<QUrl> others;
    for (int i = 0; i < 100; ++i) {
        others.append(QUrl(QStringLiteral("file:///%1.mp4").arg(i)));
        helpers.network.addGetReply(metadataUrl(others.last()), R"({"type":"videoFile","isPlayable":true})");
        helpers.aggregator.metadata(others.last());
    }
    for (const QUrl& other : std::as_const(others)) // who asks for the clip itself keeps it
        QTRY_VERIFY_WITH_TIMEOUT(helpers.aggregator.knownMetadata(other), 30000);
    QVERIFY(!helpers.aggregator.knownMetadata(clip));
    QCOMPARE(helpers.aggregator.knownFaults(clip), QStringList{QStringLiteral("Empty.")});
    helpers.aggregator.invalidateData(clip, true);
    QCOMPARE(helpers.aggregator.knownFaults(clip), QStringList());
}

void TestNetworkResources::channelStates()
{
    MediaMirror mirror(test::makeLibrary(1, 3));
    mirror.edit([](MediaLibrary& library) {
        library.addPlaylist(1, Playlist("p"));
        library.findPlaylist(1)->addEntry(
            {1, 0}, {test::slotUrl(1, 2), EndAction::Next, TakeTransitionType::DirectCut, 1});
    });
    GUIPlayback preview(&mirror.playlists, &mirror.provider);
    GUIPlayback program(&mirror.playlists, &mirror.provider);
    preview.init();
    program.init();
    Helpers helpers(mirror, &preview, &program);
    MediaStateProvider& states = helpers.states;
    QCOMPARE(states.previewMediaState(0), MediaState::PreviewStop);
    QCOMPARE(states.programMediaState(0), MediaState::ProgramStop);

    const auto play = [&states](GUIPlayback& playback, const char* address, SourcePlayState state) {
        playback.setMedia(QString::fromLatin1(address));
        playback.setState(state);
        states.reset();
    };
    play(preview, "brume://collections/1/slots/1", SourcePlayState::Pause);
    QCOMPARE(states.mediaState(MediaAddress(1, 1)), MediaState::PreviewPause);
    QCOMPARE(states.previewMediaState(0), MediaState::PreviewPause);
    play(program, "brume://playlists/1/entries/1", SourcePlayState::Play);
    QCOMPARE(states.mediaState(MediaAddress(1, 2)), MediaState::ProgramPlay);
    QCOMPARE(states.mediaState(1, EntryAddress(1, 0)), MediaState::ProgramPlay);
    QCOMPARE(states.programMediaState(1, EntryAddress(2, 0)), MediaState::UnknownState);
    QCOMPARE(states.previewMediaState(1, EntryAddress(1, 0)), MediaState::UnknownState);
    // Program wins where both play it.
    play(preview, "brume://collections/1/slots/2", SourcePlayState::Play);
    QCOMPARE(states.mediaState(MediaAddress(1, 2)), MediaState::ProgramPlay);
    QCOMPARE(states.knownMediaState(MediaAddress(1, 1), clip), MediaState::UnknownState);
    QCOMPARE(MediaStateProvider::sourcePlayStateToMediaState(SourcePlayState::Play,
                                                             static_cast<PlaybackViewMode>(3)),
             MediaState::UnknownState);
}

void TestNetworkResources::resourceStatus()
{
    DefaultResourceStatusProvider status;
    QSignalSpy changed(&status, &ResourceStatusProvider::isConstrainedChanged);
    status.setIsConstrained(PlaybackViewMode::Preview, false);
    QCOMPARE(changed.size(), 0);
    status.setIsConstrained(PlaybackViewMode::Preview, true);
    QCOMPARE(changed.size(), 1);
    QVERIFY(status.isConstrained(PlaybackViewMode::Preview));
    QVERIFY(!status.isConstrained(PlaybackViewMode::Program));
}

HALCYRA_TEST(TestNetworkResources)
#include "test_networkresources.moc"

#include "common/media/address/resourceurl.h"
#include "common/media/items/abstractmedialibraryprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/media/net/networkresourcecollection.h"
#include "common/session/mirror/guiplayback.h"
#include "tarn/media/playenums.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/mocknetworkaccessmanager.h"
#include "tests/support/testmain.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

namespace vantrel::test {

namespace {

const QUrl clip(QStringLiteral("file:///clips/c1s1.mp4"));

QUrl requestFor(const char* kind)
{
    return resourceUrl(QStringLiteral("h"), 80,
                       QStringLiteral("/api/brume/v1/") + QLatin1String(kind) + QLatin1Char('/'), clip);
}

/// A red JPEG that claims to be of another size.
QByteArray jpegOf(int claimed)
{
    QImage image(32, 32, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray data;
    QBuffer buffer(&data);
    image.save(&buffer, "JPG");
    const qsizetype frame = data.indexOf("\xff\xc0");
    for (const int at : {5, 7}) {
        data[frame + at] = static_cast<char>(claimed >> 8);
        data[frame + at + 1] = static_cast<char>(claimed & 255);
    }
    return data;
}

} // namespace

/// What is asked of a server about a media file, when the server answers late, wrong or not at all, and when
/// the file changes meanwhile.
class TestHostileAnswers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksAgainInEvenSteps()
    {
        constexpr int step = 120;
        MockNetworkAccessManager network;
        const QUrl request(QStringLiteral("http://h/x"));
        network.addGetReply(request, "busy", QNetworkReply::InternalServerError);
        NetworkResourceCollection resources(&network, 3, step);
        QList<qint64> times;
        QElapsedTimer clock;
        clock.start();
        connect(&network, &AbstractNetworkAccessManager::finished, this, [&] { times += clock.elapsed(); });
        QSignalSpy data(&resources, &NetworkResourceCollection::dataReceived);
        resources.fetch(QStringLiteral("x"), request);
        QTRY_COMPARE(times.size(), 1);
        // An error is not the end, and brings the next try no nearer.
        QVERIFY(resources.isFetching(QStringLiteral("x")));
        network.addGetReply(request, "still busy", QNetworkReply::ServiceUnavailableError);
        QTRY_COMPARE(times.size(), 2);
        network.addGetReply(request, "here");
        QTRY_COMPARE(data.size(), 1);
        QCOMPARE(data[0][1].toByteArray(), QByteArray("here"));
        QCOMPARE(network.requestCount(request), 3);
        QVERIFY(times[1] >= step && times[2] >= 2 * step);
        QVERIFY(!resources.isFetching(QStringLiteral("x")));
    }

    void manyAreAskedForAFewAtATime()
    {
        constexpr int count = 2000;
        MockNetworkAccessManager network;
        NetworkResourceCollection resources(&network, 3, 60000);
        const auto url = [](int i) { return QUrl(QStringLiteral("http://h/%1").arg(i)); };
        for (int i = 0; i < count; ++i)
            resources.fetch(url(i).path(), url(i));
        QCOMPARE(network.urls.size(), NetworkResourceCollection::maxRunning);
        // What is looked at comes next, and what nobody wants any more not at all.
        resources.fetch(url(500).path(), url(500));
        resources.terminateFetch(url(count - 1).path());
        resources.terminateFetch(url(0).path());
        QCOMPARE(network.urls.last(), url(500));
        resources.terminateFetch(url(500).path());
        QCOMPARE(network.urls.last(), url(count - 2));
        resources.terminateAll();
        const qsizetype asked = network.urls.size();
        QCoreApplication::processEvents();
        QCOMPARE(network.urls.size(), asked);
        // All are asked for in the end, also where each is refused at once.
        QSignalSpy data(&resources, &NetworkResourceCollection::dataReceived);
        for (int i = 0; i < count; ++i) {
            network.addGetReply(url(i), "x");
            resources.fetch(url(i).path(), url(i));
        }
        QTRY_COMPARE(data.size(), count);
        network.refuses = true;
        allowWarnings(QStringLiteral("Nullptr passed as reply for resource"));
        for (int i = 0; i < 20; ++i)
            resources.fetch(url(i).path(), url(i));
        QVERIFY(!resources.isFetching(url(0).path()) && !resources.isFetching(url(19).path()));
    }

    void metadataIsReadStrictly_data()
    {
        QTest::addColumn<QByteArray>("body");
        const auto row = [](const char* name, const QByteArray& body) { QTest::newRow(name) << body; };
        row("html", "<html><body>It works!</body></html>");
        row("empty", "");
        row("not utf-8", "{\"type\":\"videoFile\",\"isPlayable\":true,\"error\":\"\xff\xfe\"}");
        row("deep", QByteArray(200000, '['));
        row("a number", "1");
        row("twice the same", R"({"type":"videoFile","isPlayable":true} {})");
        row("no type", R"({"isPlayable":true})");
        row("a type of its own", R"({"type":"hologram","isPlayable":true})");
        row("playable in words", R"({"type":"videoFile","isPlayable":"yes"})");
        row("endless", R"({"type":"videoFile","isPlayable":true,"duration":1e999})");
        row("before it began", R"({"type":"videoFile","isPlayable":true,"duration":-1})");
        row("too wide", R"({"type":"videoFile","isPlayable":true,"video":{"width":99999999999}})");
        row("caveats in one", R"({"type":"videoFile","isPlayable":true,"caveats":"unsupportedAudio"})");
        row("by zero", R"({"type":"videoFile","isPlayable":true,"video":{"pixelAspect":[1,0]}})");
    }
    void metadataIsReadStrictly()
    {
        QFETCH(QByteArray, body);
        MediaMirror mirror(makeLibrary(1, 1));
        MockNetworkAccessManager network;
        MetadataProvider metadata(QStringLiteral("h"), &network, 1000);
        MediaStateProvider states(nullptr, nullptr, &mirror.playlists, &mirror.provider, &metadata);
        QSignalSpy changed(&metadata, &MetadataProvider::metadataChanged);
        QSignalSpy finished(&network, &AbstractNetworkAccessManager::finished);
        network.addGetReply(requestFor("metadata"), body);
        expectWarning(QStringLiteral("reply from "));
        QCOMPARE(states.metadataMediaState(clip), MediaState::UnknownState);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(changed.size(), 0);
        QCOMPARE(states.mediaState(clip), MediaState::UnknownState);
        // The next reader asks anew.
        network.addGetReply(requestFor("metadata"), R"({"type":"videoFile","isPlayable":true})");
        metadata.getMetadata(clip);
        QTRY_COMPARE(changed.size(), 1);
    }

    void picturesAreKeptSmall_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("warning");
        QTest::newRow("30,000 pixels square") << jpegOf(30000) << QStringLiteral("Thumbnail is too large:");
        QTest::newRow("65,500 pixels square") << jpegOf(65500) << QStringLiteral("Thumbnail is too large:");
        QTest::newRow("html") << QByteArray("<html>") << QStringLiteral("Not a JPEG file");
        QTest::newRow("empty") << QByteArray() << QString();
        QTest::newRow("cut off") << jpegOf(32).left(200) << QString();
        QTest::newRow("another format")
            << QByteArray("\x89PNG\r\n\x1a\n") << QStringLiteral("Not a JPEG file");
    }
    void picturesAreKeptSmall()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, warning);
        MediaMirror mirror(makeLibrary(1, 1));
        MockNetworkAccessManager network;
        MetadataProvider metadata(QStringLiteral("h"), &network, 1000);
        ThumbnailProvider thumbnails(QStringLiteral("h"), &network, 100);
        MediaStateProvider states(nullptr, nullptr, &mirror.playlists, &mirror.provider, &metadata);
        MediaDataAggregator aggregator(&metadata, &thumbnails, &states);
        const ThumbnailPtr placeholder = aggregator.thumbnail(QUrl(QStringLiteral("file:///other.mp4")));
        QSignalSpy changed(&thumbnails, &ThumbnailProvider::thumbnailChanged);
        network.addGetReply(requestFor("thumbnails"), body);
        warning.isEmpty() ? allowWarnings(QStringLiteral("JPEG")) : expectWarning(warning);
        QElapsedTimer clock;
        clock.start();
        aggregator.thumbnail(clip);
        QTRY_COMPARE(changed.size(), 1);
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(aggregator.thumbnail(clip)->cacheKey(), placeholder->cacheKey());
        QCOMPARE(network.requestCount(requestFor("thumbnails")), 1);
    }

    void anAnswerOvertakenByAChangeIsAskedForAgain()
    {
        MockNetworkAccessManager network;
        MetadataProvider metadata(QStringLiteral("h"), &network, 1000);
        QSignalSpy changed(&metadata, &MetadataProvider::metadataChanged);
        network.addGetReply(requestFor("metadata"), R"({"type":"videoFile","isPlayable":false})");
        network.addGetReply(requestFor("metadata"), R"({"type":"videoFile","isPlayable":true})");
        metadata.getMetadata(clip);
        metadata.invalidateMetadata(clip, false);
        metadata.getMetadata(clip);
        QCOMPARE(network.urls.size(), 1); // never two at once
        QTRY_COMPARE(changed.size(), 2);
        QVERIFY(metadata.getMetadataFromCache(clip)->getIsPlayable());
        QCOMPARE(network.urls.size(), 2);
    }

    void aStateIsForgottenWithItsMetadata()
    {
        MediaMirror mirror(makeLibrary(1, 1));
        MockNetworkAccessManager network;
        MetadataProvider metadata(QStringLiteral("h"), &network, 1000);
        ThumbnailProvider thumbnails(QStringLiteral("h"), &network, 100);
        MediaStateProvider states(nullptr, nullptr, &mirror.playlists, &mirror.provider, &metadata);
        MediaDataAggregator aggregator(&metadata, &thumbnails, &states);
        mirror.model.setMediaDataAggregator(&aggregator);
        mirror.model.setMediaStateProvider(&states);
        network.addGetReply(requestFor("metadata"), R"({"type":"videoFile","isPlayable":true})");
        const auto shown = [&] {
            return MediaState(mirror.model.slotIndex({1, 1}).data(MediaLibraryModel::StateRole).toInt());
        };
        QTRY_COMPARE(shown(), MediaState::Playable);
        QSignalSpy rows(&mirror.model, &QAbstractItemModel::dataChanged);
        network.addGetReply(requestFor("metadata"), R"({"type":"videoFile","isPlayable":false})");
        aggregator.invalidateData(clip, false);
        QVERIFY(!rows.isEmpty());
        QTRY_COMPARE(shown(), MediaState::NotPlayable);
        aggregator.invalidateData(clip, true);
        QCOMPARE(states.mediaState(clip), MediaState::UnknownState);
    }

    void aLibraryMayComeAfterItsChannel()
    {
        MediaMirror mirror(makeRef<MediaLibrary>());
        GUIPlayback program(&mirror.playlists, &mirror.provider);
        program.init();
        MockNetworkAccessManager network;
        MetadataProvider metadata(QStringLiteral("h"), &network, 1000);
        MediaStateProvider states(nullptr, &program, &mirror.playlists, &mirror.provider, &metadata);
        program.setMedia(QStringLiteral("brume://collections/1/slots/1"));
        program.setState(SourcePlayState::Play);
        QSignalSpy changed(&states, &MediaStateProvider::mediaStateChanged);
        QVERIFY(mirror.library->parseJson(makeLibrary(1, 1)->toJson()));
        mirror.load();
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].toUrl(), clip);
        QCOMPARE(states.programMediaState(0), MediaState::ProgramPlay);
        QCOMPARE(states.mediaState(MediaAddress(1, 1)), MediaState::ProgramPlay);
    }
};

HALCYRA_TEST(TestHostileAnswers)

} // namespace vantrel::test

#include "test_hostileanswers.moc"

#include "common/filesystem/server/servermetadata.h"
#include "common/media/address/resourceurl.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "tests/support/librarymaker.h"
#include "tests/support/mediamirror.h"
#include "tests/support/mocknetworkaccessmanager.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using namespace vantrel::test;

namespace {

const QString file = QStringLiteral("/clips/a.mp4");
const QUrl clip = QUrl::fromLocalFile(file);

QUrl requestFor(const char* what)
{
    return resourceUrl(QStringLiteral("h"), 80, QStringLiteral("/api/brume/v1/%1/").arg(what), clip);
}

} // namespace

class TestServerMetadata : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A picture that is no longer true is asked for by the rows that show it, not for each known file.
    void fetchesNoPictureThatNobodyLooksAt()
    {
        MediaMirror mirror(makeLibrary(1, 1));
        MockNetworkAccessManager network;
        MetadataProvider metadata(QStringLiteral("h"), &network, 1000);
        ThumbnailProvider thumbnails(QStringLiteral("h"), &network, 100);
        MediaStateProvider states(nullptr, nullptr, &mirror.playlists, &mirror.provider, &metadata);
        MediaDataAggregator aggregator(&metadata, &thumbnails, &states);
        ServerMetadata server;
        server.setAggregator(&aggregator);
        QSignalSpy changed(&server, &ServerMetadata::changed);
        FileMetadata told;
        network.addGetReply(requestFor("metadata"), R"({"type":"videoFile","isPlayable":true})");
        QVERIFY(!server.request(file, 7, told));
        QTRY_VERIFY(metadata.getMetadataFromCache(clip));
        const int asked = network.requestCount(requestFor("thumbnails"));
        changed.clear();
        thumbnails.invalidateThumbnail(clip, true);
        QCOMPARE(network.requestCount(requestFor("thumbnails")), asked);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed[0][0].value<FileSystemFile>().getFullPath(), file);
        told = changed[0][1].value<FileMetadata>();
        QCOMPARE(told.thumbnail, clip);
        QVERIFY(told.isPlayable);
    }
};

HALCYRA_TEST(TestServerMetadata)
#include "test_servermetadata.moc"

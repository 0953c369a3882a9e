#include "common/command/playback/playmediacommand.h"
#include "common/command/playback/seekcommand.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"
#include "tests/support/testmedia.h"

#include <QFile>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

namespace vantrel::test {

namespace {

const QUrl clip(QStringLiteral("file:///clip.mp4"));
const Quadrants before = {Qt::red, Qt::green, Qt::blue, Qt::white};
const Quadrants after = {Qt::yellow, Qt::black, Qt::cyan, Qt::magenta};

QByteArray contentOf(const QString& file)
{
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

} // namespace

/// What the session knows of a file of the server's folder, while the file comes, changes and goes.
class TestLiveMediaData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
        if (!makeClip(made("first"), before, 4) || !makeClip(made("second"), after, 2))
            QSKIP("the ffmpeg tool is missing");
    }

    void init()
    {
        allowWarnings(QStringLiteral("Getting system property failed"));
        allowWarnings(QStringLiteral("Failed to get media library"));
        m_server = std::make_unique<OmbraProcess>();
        QVERIFY(QFile::copy(made("first"), onServer("clip")));
        QVERIFY(m_server->start());
        m_session = new Session;
        Session::initializeWith(m_session, m_server->ports());
        QSignalSpy loaded(m_session->mediaLibraryProvider(), &AbstractMediaLibraryProvider::reset);
        m_session->connectionHandler()->connect(m_server->host());
        QTRY_VERIFY(m_session->isConnected() && m_session->getMediaLibraryApi() && !loaded.isEmpty());
        Patch patch;
        QVERIFY(Patch::parseString(
            "[{\"op\":\"add\",\"path\":\"/collections/7\",\"value\":{\"name\":\"t\",\"slots\":{"
            "\"1\":{\"name\":\"clip\",\"contentUrl\":\"file:///clip.mp4\"},"
            "\"2\":{\"name\":\"later\",\"contentUrl\":\"file:///later.mp4\"}}}}]",
            patch));
        QNetworkReply* reply = m_session->getMediaLibraryApi()->patchMediaLibrary(patch);
        connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
        QTRY_VERIFY(m_session->mediaLibraryProvider()->slot({7, 2}));
    }

    void cleanup()
    {
        delete std::exchange(m_session, nullptr);
        m_server.reset();
    }

    void aFileComesSlowly()
    {
        const QUrl later(QStringLiteral("file:///later.mp4"));
        QCOMPARE(shown(2), MediaState::UnknownState);
        const QByteArray bytes = contentOf(made("first"));
        QFile file(onServer("later"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes.left(bytes.size() / 2));
        QVERIFY(file.flush());
        // Half a file is no clip, and who asks is told so.
        QTRY_COMPARE(shown(2), MediaState::NotPlayable);
        file.write(bytes.mid(bytes.size() / 2));
        file.close();
        QTRY_COMPARE(shown(2), MediaState::Playable);
        QTRY_VERIFY(shows(later, before));
    }

    void aFileIsReplacedWhileItPlays()
    {
        QTRY_VERIFY(shows(clip, before));
        QTRY_COMPARE(shown(1), MediaState::Playable);
        play(false);
        QTRY_COMPARE(shown(1), MediaState::ProgramPlay);
        QVERIFY(QFile::copy(made("second"), onServer(".new")));
        QCOMPARE(std::rename(qPrintable(onServer(".new")), qPrintable(onServer("clip"))), 0);
        QTRY_VERIFY(shows(clip, after));
        QTRY_VERIFY(aggregator()->metadata(clip) &&
                    qAbs(aggregator()->metadata(clip)->getDuration().value_or(0) - 2) < 0.2);
        QCOMPARE(shown(1), MediaState::ProgramPlay);
        // The slot's length is that of the new file, too.
        QTRY_VERIFY(qAbs(program()->duration() - 2) < 0.2);
        const double position = program()->mediaPosition();
        QTRY_VERIFY(program()->mediaPosition() != position); // it plays on
    }

    void aCuedFileIsDeleted()
    {
        QTRY_VERIFY(shows(clip, before));
        play(true);
        QTRY_COMPARE(shown(1), MediaState::PreviewPlay);
        QSignalSpy invalidated(aggregator(), &MediaDataAggregator::metadataInvalidated);
        QVERIFY(QFile::remove(onServer("clip")));
        QTRY_VERIFY(!invalidated.isEmpty());
        QVERIFY(!shows(clip, before));
        QTRY_COMPARE(aggregator()->metadataMediaState(clip), MediaState::NotPlayable);
        QVERIFY(aggregator()->metadata(clip)->getError().starts_with("The media folder has no clip.mp4."));
        auto* seek = new SeekCommand;
        QVERIFY(seek->init(preview()->object(), 1));
        m_session->executeCommand(seek);
        QTRY_VERIFY(m_session->isConnected() && m_server->isRunning());
        // Back again, it is what it was.
        QVERIFY(QFile::copy(made("first"), onServer("clip")));
        QTRY_VERIFY(shows(clip, before));
        QTRY_COMPARE(aggregator()->metadataMediaState(clip), MediaState::Playable);
    }

    /// Nothing of what comes in a heap is lost: a hundred files a second are read by themselves, and of the
    /// others it is told, so that whoever looks at them asks.
    void aFolderComes()
    {
        constexpr int count = 300;
        QTemporaryDir folder(m_server->mediaFolder() + QStringLiteral("/../in-XXXXXX"));
        QImage picture(64, 36, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QSet<QUrl> urls;
        for (int i = 0; i < count; ++i) {
            const QString name = QStringLiteral("p%1x.png").arg(i);
            QVERIFY(picture.save(folder.filePath(name)));
            urls.insert(QUrl(QStringLiteral("file:///in/") + name));
        }
        const QObject viewer;
        connect(aggregator(), &MediaDataAggregator::metadataInvalidated, &viewer,
                [this](const QUrl& url) { aggregator()->refreshData(url); });
        QSet<QUrl> known;
        connect(aggregator(), &MediaDataAggregator::metadataChanged, &viewer, [&](const QUrl& url) {
            if (urls.contains(url))
                known.insert(url);
        });
        QSignalSpy pictures(aggregator(), &MediaDataAggregator::thumbnailChanged);
        folder.setAutoRemove(false);
        QCOMPARE(std::rename(qPrintable(folder.path()),
                             qPrintable(m_server->mediaFolder() + QStringLiteral("/in"))),
                 0);
        QTRY_COMPARE_WITH_TIMEOUT(known.size(), urls.size(), 30000);
        QTRY_VERIFY_WITH_TIMEOUT(pictures.count() >= count, 30000);
    }

private:
    QString made(const char* name) const
    {
        return m_folder.filePath(QLatin1String(name) + QStringLiteral(".mp4"));
    }
    QString onServer(const char* name) const
    {
        return m_server->mediaFolder() + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".mp4");
    }
    MediaDataAggregator* aggregator() const { return m_session->mediaDataAggregator(); }
    const GUIPlayback* preview() const { return m_session->sceneObjectProvider()->previewPlayback(); }
    const GUIPlayback* program() const { return m_session->sceneObjectProvider()->programPlayback(); }
    /// As a row of the media panel shows it.
    MediaState shown(int slot) const
    {
        return MediaState(
            m_session->mediaLibraryModel()->slotIndex({7, slot}).data(MediaLibraryModel::StateRole).toInt());
    }
    bool shows(const QUrl& url, const Quadrants& colours) const
    {
        const ThumbnailPtr picture = aggregator()->thumbnail(url);
        return picture && alike(quadrantsOf(picture->toImage()), colours);
    }
    void play(bool onPreview)
    {
        auto command = std::make_unique<PlayMediaCommand>();
        QVERIFY(command->init(onPreview, 0, 7, 1));
        m_session->executeCommand(command.release());
    }

    QTemporaryDir m_folder;
    std::unique_ptr<OmbraProcess> m_server;
    Session* m_session = nullptr;
};

HALCYRA_TEST(TestLiveMediaData)

} // namespace vantrel::test

#include "test_livemediadata.moc"

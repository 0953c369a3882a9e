#include "common/command/playback/playmediacommand.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/link/previewthread.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QProcess>
#include <QTest>

namespace vantrel::test {

/// Sound from the file on the server to the application: its levels, and what it says of sound that it cannot
/// play.
class TestLiveSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
        m_server = std::make_unique<OmbraProcess>();
        const QString tone = m_server->mediaFolder() + QStringLiteral("/1 tone.mov");
        QCOMPARE(QProcess::execute(
                     QStringLiteral("ffmpeg"),
                     QStringLiteral(
                         "-y -loglevel error -nostdin -f lavfi -i color=gray:s=160x90:r=25:d=20 -f lavfi "
                         "-i aevalsrc=0.5*sin(2*PI*1000*t)|0.125*sin(2*PI*1000*t):s=48000:d=20 "
                         "-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a pcm_s16le")
                             .split(u' ') +
                         QStringList{tone}),
                 0);
        QFile file(tone), spoilt(m_server->mediaFolder() + QStringLiteral("/2 spoilt.mov"));
        QVERIFY(file.open(QIODevice::ReadOnly) && spoilt.open(QIODevice::WriteOnly));
        QVERIFY(spoilt.write(file.readAll().replace("sowt", "zzzz")) == file.size());
        spoilt.close();
        QVERIFY(m_server->start());
        m_session = new Session;
        Session::initializeWith(m_session, m_server->ports());
        m_session->connectionHandler()->connect(m_server->host());
        QTRY_VERIFY(m_session->sceneObjectProvider()->previewPlayback()->object());
        QTRY_VERIFY(m_session->mediaLibraryProvider()->slot(MediaAddress(1, 2)));
    }
    void cleanup()
    {
        delete std::exchange(m_session, nullptr);
        m_server.reset();
    }

    void levelsReachTheApplication()
    {
        AudioLevels last;
        connect(m_session->preview(), &PreviewThread::levelsChanged, this,
                [&](const std::string& source, const AudioLevels& levels) {
                    if (source == "/device/channels/0/preview")
                        last = levels;
                });
        play(1);
        QTRY_VERIFY(last.channels.size() == 2 && std::abs(last.channels[0].peak + 6.02) < 0.1 &&
                    std::abs(last.channels[1].peak + 18.06) < 0.1);
        play(2);
        QTRY_VERIFY(last.channels.empty());
        QTRY_VERIFY(m_session->sceneObjectProvider()->previewPlayback()->mediaPosition() > 0.2);
    }

    void unsupportedSoundIsACaveat()
    {
        MediaDataAggregator* aggregator = m_session->mediaDataAggregator();
        QVERIFY(aggregator);
        const auto stateOf = [&](int slot) {
            const QUrl url = m_session->mediaLibraryProvider()->slot(MediaAddress(1, slot))->contentUrl();
            aggregator->refreshData(url);
            return aggregator->mediaState(url);
        };
        QTRY_COMPARE(stateOf(1), MediaState::Playable);
        QTRY_COMPARE(stateOf(2), MediaState::PlayableWithCaveats);
        const QUrl url = m_session->mediaLibraryProvider()->slot(MediaAddress(1, 2))->contentUrl();
        const QStringList told = aggregator->mediaCaveatsDescribed(url);
        QCOMPARE(told.size(), 1);
        QVERIFY2(
            told.first().startsWith(QLatin1String("Media contains unsupported audio (of the kind \"zzzz\")")),
            qPrintable(told.first()));
    }

private:
    void play(int slot)
    {
        auto* command = new PlayMediaCommand;
        QVERIFY(command->init(true, 0, 1, slot));
        m_session->executeCommand(command);
        QTRY_COMPARE(m_session->sceneObjectProvider()->previewPlayback()->playingSlotAddress(),
                     MediaAddress(1, slot));
    }

    std::unique_ptr<OmbraProcess> m_server;
    Session* m_session = nullptr;
};

HALCYRA_TEST(TestLiveSound)

} // namespace vantrel::test

#include "test_livesound.moc"

#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/edit/mediasloteditfunctional.h"
#include "common/media/edit/playlist/addplaylistcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/medialibrary.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QImage>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

/// Edits of the library on their whole way: command, server, event stream, providers, and back by undo.
class TestLiveLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
    }

    void init()
    {
        allowWarnings(QStringLiteral("Getting system property failed"));
        allowWarnings(QStringLiteral("Failed to get media library"));
        m_server = std::make_unique<OmbraProcess>();
        QImage red(320, 180, QImage::Format_RGB32);
        red.fill(QColor(220, 10, 10));
        QVERIFY(red.save(m_server->mediaFolder() + QStringLiteral("/red & blue.png")));
        QVERIFY(m_server->start());
        m_session = new Session;
        Session::initializeWith(m_session, m_server->ports());
        QSignalSpy loaded(m_session->mediaLibraryProvider(), &AbstractMediaLibraryProvider::reset);
        m_session->connectionHandler()->connect(m_server->host());
        QTRY_VERIFY(m_session->isConnected() && m_session->getMediaLibraryApi());
        QTRY_VERIFY(!loaded.isEmpty());
        // A new show lists what lies in the media folder; these start with nothing.
        if (m_session->mediaLibraryProvider()->collection(1)) {
            QVERIFY(m_manager.removeCollection(1));
            QTRY_VERIFY(!m_session->mediaLibraryProvider()->collection(1));
        }
        m_session->getQUndoStack()->clear();
    }

    void cleanup()
    {
        delete std::exchange(m_session, nullptr);
        m_server.reset();
    }

    void editsComeBackAndUndo()
    {
        const MediaLibraryProvider* provider = m_session->mediaLibraryProvider();
        QUndoStack* stack = m_session->getQUndoStack();
        QVERIFY(m_manager.appendCollection(QString()));
        QTRY_VERIFY(provider->collection(1));
        QCOMPARE(provider->collection(1)->name(), QStringLiteral("My collection 1"));
        m_manager.addMedia(1, 5, red());
        QTRY_VERIFY(provider->slot({1, 5}));
        QTRY_COMPARE(
            m_session->mediaLibraryModel()->slotIndex({1, 5}).data(MediaLibraryModel::NameRole).toString(),
            QStringLiteral("Red"));

        m_manager.moveSlot(1, 5, 8);
        QTRY_COMPARE(nameOf(8), QStringLiteral("Red"));
        QTRY_COMPARE(nameOf(5), QString());
        QVERIFY(m_manager.updateMediaDuration(1, 8, 12.5, false));
        QTRY_COMPARE(provider->slot({1, 8})->duration(), 12.5);
        QVERIFY(MediaSlotEditFunctional::rename({1, 8}, QStringLiteral("Rot  two blanks")));
        QTRY_COMPARE(nameOf(8), QStringLiteral("Rot  two blanks")); // the stream keeps every blank
        QVERIFY(MediaSlotEditFunctional::clearSlots(1, {8}));
        QTRY_COMPARE(nameOf(8), QString());

        // One step waits for the last to come back: the server takes each undo on what the one before left.
        for (const char* name : {"Rot  two blanks", "Red"}) {
            stack->undo();
            QTRY_COMPARE(nameOf(8), QString::fromLatin1(name));
        }
        stack->undo();
        QTRY_VERIFY(provider->slot({1, 8})->duration() != 12.5);
        stack->undo();
        QTRY_COMPARE(nameOf(5), QStringLiteral("Red"));
        stack->undo();
        QTRY_COMPARE(nameOf(5), QStringLiteral("(none)"));
        stack->undo();
        QTRY_VERIFY(!provider->collection(1));
        stack->redo();
        QTRY_VERIFY(provider->collection(1));
    }

    /// Somebody else is faster, and this window has not heard of it yet: the server refuses. What still means
    /// the same is made anew, what would overwrite is refused.
    void overtakenEditsGiveWay()
    {
        QVERIFY(m_manager.insertCollection(1, QStringLiteral("One")));
        const auto nameOfOne = [this] {
            const auto one = m_session->mediaLibraryProvider()->collection(1);
            return one ? one->name() : QString();
        };
        QTRY_COMPARE(nameOfOne(), QStringLiteral("One"));
        QTRY_VERIFY(m_session->getMediaLibraryApi()->edits()->isEmpty());
        // Without a turn of the event loop, so that nothing comes in between.
        const QByteArray body = R"([{"op":"replace","path":"/collections/1/name","value":"theirs"}])";
        QTcpSocket other;
        other.connectToHost(QStringLiteral("127.0.0.1"), m_server->ports().http);
        QVERIFY(other.waitForConnected());
        other.write("PATCH /api/brume/v1/medialibrary HTTP/1.1\r\nHost: localhost\r\n"
                    "Content-Type: application/json\r\nContent-Length: " +
                    QByteArray::number(body.size()) + "\r\n\r\n" + body);
        QVERIFY(other.waitForReadyRead() && other.readAll().startsWith("HTTP/1.1 200"));
        QCOMPARE(nameOfOne(), QStringLiteral("One"));

        expectWarning(QStringLiteral("Redo failed! Somebody else"));
        m_manager.renameCollection(1, QStringLiteral("mine"));
        QVERIFY(m_manager.insertCollection(2, QStringLiteral("Two")));
        QTRY_VERIFY(m_session->mediaLibraryProvider()->collection(2));
        QTRY_COMPARE(nameOfOne(), QStringLiteral("theirs"));
    }

    /// What is done before the server has answered finds the room taken that the last edit took, and is held
    /// against what that made.
    void whatIsUnderWayHasItsPlace()
    {
        QVERIFY(m_manager.insertCollection(1, QStringLiteral("One")));
        QTRY_VERIFY(m_session->mediaLibraryProvider()->collection(1));
        QTRY_VERIFY(m_session->getMediaLibraryApi()->edits()->isEmpty());
        m_server->hang();
        m_manager.addMedia(1, 8, red());
        QVERIFY(m_manager.holdsMedia(1, 8) && !m_manager.holdsMedia(1, 9));
        m_manager.moveSlot(1, 8, 9);
        QVERIFY(m_manager.isSlotOccupied(1, 9) && !m_manager.holdsMedia(1, 8));
        QVERIFY(m_manager.updateMediaDuration(1, 9, 12.5, false));
        QVERIFY(
            m_manager.updateMediaDuration(1, 9, red().duration(), false)); // back to what the server knows
        m_server->goOn();
        QTRY_VERIFY(m_session->getMediaLibraryApi()->edits()->isEmpty());
        QCOMPARE(m_session->mediaLibraryProvider()->slot({1, 9})->duration(), red().duration());
    }

    void collectionsAreCopiedAndRemoved()
    {
        const MediaLibraryProvider* provider = m_session->mediaLibraryProvider();
        QVERIFY(m_manager.insertCollection(3, QStringLiteral("Three")));
        QTRY_VERIFY(provider->collection(3));
        m_manager.addMedia(3, 1, red());
        QTRY_VERIFY(provider->slot({3, 1}));
        QVERIFY(m_manager.copyCollection(3, -1));
        QTRY_VERIFY(provider->collection(1) && provider->slot({1, 1}));
        QCOMPARE(provider->collection(1)->name(), QStringLiteral("Duplicate of Three"));
        QVERIFY(m_manager.removeCollection(3));
        QTRY_VERIFY(!provider->collection(3));
        expectWarning(QStringLiteral("removal failed since it doesn't exist"));
        QVERIFY(!m_manager.removeCollection(3));
        expectWarning(QStringLiteral("Too large index for collection:"));
        QVERIFY(!m_manager.insertCollection(MediaLibrary::getCollectionIndexMax() + 1, QString()));
        QVERIFY(m_manager.insertCollection(MediaLibrary::getCollectionIndexMax(), QStringLiteral("last")));
        QTRY_VERIFY(provider->collection(MediaLibrary::getCollectionIndexMax()));
    }

    void playlistsComeBack()
    {
        const PlaylistProvider* provider = m_session->playlistProvider();
        auto add = std::make_unique<AddPlaylistCommand>();
        QVERIFY(add->init(m_session->mediaLibrary(), 2, QStringLiteral("Show")));
        m_session->executeCommand(add.release());
        QTRY_VERIFY(provider->playlist(2));
        auto rename = std::make_unique<RenamePlaylistCommand>();
        QVERIFY(rename->init(m_session->mediaLibrary(), 2, QStringLiteral("Abend")));
        m_session->executeCommand(rename.release());
        QTRY_COMPARE(provider->playlist(2)->name(), QStringLiteral("Abend"));
        m_session->getQUndoStack()->undo();
        QTRY_COMPARE(provider->playlist(2)->name(), QStringLiteral("Show"));
        m_session->getQUndoStack()->undo();
        QTRY_VERIFY(!provider->playlist(2));
    }

    void picturesAndMetadata()
    {
        QVERIFY(m_manager.insertCollection(1, QStringLiteral("One")));
        QTRY_VERIFY(m_session->mediaLibraryProvider()->collection(1));
        m_manager.addMedia(1, 1, red());
        QTRY_VERIFY(m_session->mediaLibraryProvider()->slot({1, 1}));
        const QUrl url = m_session->mediaLibraryProvider()->slot({1, 1})->contentUrl();
        MediaDataAggregator* aggregator = m_session->mediaDataAggregator();
        aggregator->refreshData(url);
        QTRY_VERIFY(aggregator->knownThumbnail(url));
        QTRY_VERIFY(aggregator->knownMetadata(url));
        QCOMPARE(aggregator->knownMetadata(url)->getMediaType(), MediaType::ImageFile);
        QCOMPARE(aggregator->mediaState(url), MediaState::Playable);
        const QColor colour = aggregator->knownThumbnail(url)->toImage().pixelColor(5, 5);
        QVERIFY2(colour.red() > 190 && colour.green() < 50, qPrintable(colour.name()));

        const QUrl gone(QStringLiteral("file:///gone.mp4"));
        aggregator->refreshData(gone);
        aggregator->refreshData(url);
        QTRY_VERIFY(aggregator->thumbnail(gone) && !aggregator->thumbnail(gone)->isNull()); // a placeholder
        QVERIFY(!aggregator->knownThumbnail(gone));
    }

    void libraryComesBackAfterALostLink()
    {
        const MediaLibraryProvider* provider = m_session->mediaLibraryProvider();
        QVERIFY(m_manager.insertCollection(4, QStringLiteral("Four")));
        QTRY_VERIFY(provider->collection(4));
        m_server->kill();
        QTRY_VERIFY(!m_session->getMediaLibraryApi());
        QVERIFY(provider->collection(4)); // what was known stays
        expectWarning(QStringLiteral("No api available, check connection?"));
        QVERIFY(!m_manager.insertCollection(5, QStringLiteral("Five")));
        QSignalSpy loaded(provider, &AbstractMediaLibraryProvider::reset);
        QVERIFY(m_server->start());
        QTRY_VERIFY_WITH_TIMEOUT(!loaded.isEmpty(), 15000);
        QVERIFY(provider->collection(4));
        QVERIFY(m_manager.insertCollection(5, QStringLiteral("Five")));
        QTRY_VERIFY(provider->collection(5));
    }

private:
    QString nameOf(int slot) const
    {
        const auto item = m_session->mediaLibraryProvider()->slot({1, slot});
        return item ? item->name() : QStringLiteral("(none)");
    }
    static GuiMediaSlot red()
    {
        GuiMediaSlot slot;
        slot.setName(QStringLiteral("Red"));
        slot.setContentUrl(QUrl::fromLocalFile(QStringLiteral("/red & blue.png")));
        slot.setDuration(5);
        slot.setMediaType(MediaType::ImageFile);
        slot.setIsPlayable(true);
        return slot;
    }

    std::unique_ptr<OmbraProcess> m_server;
    Session* m_session = nullptr;
    ImplMediaCollectionManager m_manager;
};

} // namespace vantrel::test

using vantrel::test::TestLiveLibrary;
HALCYRA_TEST(TestLiveLibrary)
#include "test_livelibrary.moc"

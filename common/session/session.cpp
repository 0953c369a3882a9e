#include "common/session/session.h"

#include "common/command/abstractsessioncommand.h"
#include "common/media/edit/trimcommands.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/models/playbackmodel.h"
#include "common/media/net/defaultresourcestatusprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/media/net/metadataprovider.h"
#include "common/media/net/networkaccessmanager.h"
#include "common/media/net/thumbnailprovider.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/link/connectionprovider.h"
#include "common/session/link/metadataclient.h"
#include "common/session/link/previewthread.h"
#include "common/session/link/signalrelay.h"
#include "common/session/link/systemproxy.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/mirror/serverconfigurationmodel.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/sessionlogging.h"
#include "tarn/media/medialibrary.h"
#include "tarn/scene/scene.h"

#include <QDir>
#include <QFileSystemModel>
#include <QNetworkAccessManager>
#include <QTimer>
#include <QUndoStack>

namespace vantrel {

namespace {
constexpr int shutDownTime = 2000; // milliseconds
constexpr int libraryRetry = 1000; // milliseconds

Session* theInstance = nullptr;
} // namespace

Session::Session()
    : m_undoStack(std::make_unique<QUndoStack>())
{
}

Session::~Session()
{
    if (m_scene)
        m_scene->removeChangeCallback(&Session::onSceneChange, this);
    // A thread that hangs in a name look-up is left to the process's end; it must not outlive its object.
    if (m_connection && !m_connection->shutDown(shutDownTime)) {
        m_connection->QObject::disconnect();
        m_connection->setParent(nullptr);
    }
    m_preview.reset();
    m_resourceStatus.reset();
    m_undoStack.reset();
    // Children that hold on to the scene or the library go before those do.
    delete m_mediaLibraryApi;
    delete m_metadataClient;
    delete m_mediaDataAggregator;
    delete m_formerAggregator;
    delete m_previewPlaybackModel;
    delete m_programPlaybackModel;
    delete m_mediaLibraryModel;
    delete m_sceneObjects;
    delete m_playlistProvider;
    delete m_mediaLibraryProvider;
    if (theInstance == this)
        theInstance = nullptr;
}

void Session::initialize(const ServerPorts& ports)
{
    initializeWith(new Session, ports);
}

void Session::initializeWith(Session* session, const ServerPorts& ports)
{
    session->m_ports = ports;
    theInstance = session;
    session->doInit();
}

Session* Session::instance()
{
    return theInstance;
}

QAbstractItemModel* Session::localFileSystemModel() const
{
    return m_localFileSystemModel.get();
}

QAbstractItemModel* Session::remoteFileSystemModel() const
{
    return m_remoteFileSystemModel;
}

Configuration* Session::configuration() const
{
    return m_configuration.get();
}

void Session::executeCommand(AbstractSessionCommand* command)
{
    m_undoStack->push(command);
}

QUndoStack* Session::getQUndoStack() const
{
    return m_undoStack.get();
}

NetworkAccessManager* Session::getNetworkAccessManager() const
{
    return m_network.get();
}

MediaLibrary* Session::mediaLibrary() const
{
    return m_mediaLibrary.get();
}

DefaultResourceStatusProvider* Session::resourceStatusProvider() const
{
    return m_resourceStatus.get();
}

void Session::sendPatch(const Patch& patch)
{
    m_connection->sendPatch(patch);
}

bool Session::isConnected() const
{
    return !m_connection->getConnectedHost().isEmpty();
}

void Session::doInit()
{
    m_qnam = new QNetworkAccessManager(this);
    m_network = std::make_unique<NetworkAccessManager>(m_qnam);
    m_scene = makeRef<Scene>();
    m_scene->addChangeCallback(&Session::onSceneChange, this);
    m_mediaLibrary = makeRef<MediaLibrary>();
    m_objectTree = std::make_unique<ObjectTreeModel>();
    m_objectTree->setScene(m_scene.get());
    m_mediaLibraryProvider = new MediaLibraryProvider(m_mediaLibrary, this);
    m_mediaLibraryProvider->setTrimCommands(&makeInpointCommand, &makeOutpointCommand);
    m_playlistProvider = new PlaylistProvider(m_mediaLibrary, m_mediaLibraryProvider, this);
    m_sceneObjects =
        new SceneObjectProvider(m_objectTree.get(), m_playlistProvider, m_mediaLibraryProvider, this);
    GUIPlayback* const preview = m_sceneObjects->previewPlayback();
    GUIPlayback* const program = m_sceneObjects->programPlayback();
    m_mediaLibraryModel = new MediaLibraryModel(m_mediaLibrary.get(), preview, program, this);
    m_mediaLibraryModel->setMediaLibaryProvider(m_mediaLibraryProvider);
    m_localFileSystemModel = std::make_unique<QFileSystemModel>();
    m_localFileSystemModel->setRootPath(QDir::rootPath());
    m_configuration = std::make_unique<Configuration>();
    m_preview = std::make_unique<PreviewThread>(m_ports.preview);
    m_signalRelay = std::make_unique<SignalRelay>();
    initConnection();
    m_serverConfiguration = std::make_shared<ServerConfigurationModel>();
    m_serverConfiguration->setShowConfiguration(m_sceneObjects->showConfiguration());
    m_previewPlaybackModel = new PlaybackModel(preview, m_playlistProvider, this);
    m_programPlaybackModel = new PlaybackModel(program, m_playlistProvider, this);
    wireProviders();
}

void Session::initConnection()
{
    m_connection = new ConnectionHandler(m_ports.link, this);
    connect(m_connection, &ConnectionHandler::patchAvailable, this, &Session::onPatchAvailable);
    connect(m_connection, &ConnectionHandler::connected, this, &Session::onConnect);
    connect(m_connection, &ConnectionHandler::disconnected, this, &Session::onDisconnect);
    m_connection->start();
    m_systemProxy = std::make_unique<SystemProxy>();
    m_systemProxy->setSession(this);
    m_connectionProvider = std::make_unique<ConnectionProvider>();
}

void Session::wireProviders()
{
    MediaLibraryProvider* library = m_mediaLibraryProvider;
    // Playlists are rebuilt after the slots that they link to, and the models after both.
    connect(library, &MediaLibraryProvider::reset, m_playlistProvider, &PlaylistProvider::onReset);
    connect(library, &MediaLibraryProvider::libraryCommandExec, this, &Session::executeCommand);
    connect(library, &MediaLibraryProvider::slotAdded, m_playlistProvider, &PlaylistProvider::onSlotModified);
    connect(library, &MediaLibraryProvider::slotChanged, m_playlistProvider,
            &PlaylistProvider::onSlotModified);
    connect(library, &MediaLibraryProvider::slotRemoved, m_playlistProvider,
            &PlaylistProvider::onSlotModified);
    for (PlaybackModel* model : {m_previewPlaybackModel, m_programPlaybackModel}) {
        connect(library, &MediaLibraryProvider::slotAdded, model, &PlaybackModel::onSlotModified);
        connect(library, &MediaLibraryProvider::slotChanged, model, &PlaybackModel::onSlotModified);
        connect(library, &MediaLibraryProvider::slotRemoved, model, &PlaybackModel::onSlotModified);
        connect(library, &MediaLibraryProvider::reset, model, &PlaybackModel::refreshSlot);
    }
}

void Session::onConnect()
{
    ++m_linksSeen;
    const QString host = m_connection->getConnectedHost();
    if (host.isEmpty())
        return; // the operator left before this signal came through
    m_sceneLoading = true;
    m_sceneCleared = false;
    m_nextPatch = {};
    qCInfo(lcSession, "Session connected to: %s", qPrintable(host));
    followLibrary(host);
    initMediaLibraryHelpers(host);
    Q_EMIT connected(host);
    delete m_metadataClient;
    m_metadataClient = new MetadataClient(host, m_ports.http, this);
}

/// Reads the library and follows its changes; what goes wrong with either is tried again as long as the link
/// stands.
void Session::followLibrary(const QString& host)
{
    delete m_mediaLibraryApi;
    auto* const api = new MediaLibraryApi(host, m_qnam, m_mediaLibrary.get(), this);
    m_mediaLibraryApi = api;
    api->setPort(m_ports.http);
    connectMediaLibraryApi();
    connect(api, &MediaLibraryApi::streamLost, this, [this, api, host] {
        QTimer::singleShot(libraryRetry, api, [this, host] { followLibrary(host); });
    });
    connect(api, &MediaLibraryApi::mediaLibraryRequestFailed, this,
            [api] { QTimer::singleShot(libraryRetry, api, &MediaLibraryApi::requestMediaLibrary); });
    connect(api, &MediaLibraryApi::readingChanged, this, &Session::libraryReadingChanged);
    api->listenChanges();
    api->requestMediaLibrary();
    Q_EMIT libraryReadingChanged();
}

void Session::connectMediaLibraryApi()
{
    using Api = MediaLibraryApi;
    const Api* api = m_mediaLibraryApi;
    // The order of the connections is the order in which models and providers learn of a change.
    MediaLibraryModel* model = m_mediaLibraryModel;
    connect(api, &Api::mediaLibraryReplaced, model, &MediaLibraryModel::reset);
    connect(api, &Api::mediaCollectionChanged, model, &MediaLibraryModel::onCollectionChanged);
    connect(api, &Api::mediaCollectionAdded, model, &MediaLibraryModel::onCollectionAdded);
    connect(api, &Api::mediaCollectionRemoved, model, &MediaLibraryModel::onCollectionRemoved);
    connect(api, &Api::mediaAdded, model, &MediaLibraryModel::onMediaAdded);
    connect(api, &Api::mediaChanged, model, &MediaLibraryModel::onMediaChanged);
    connect(api, &Api::mediaRemoved, model, &MediaLibraryModel::onMediaRemoved);
    MediaLibraryProvider* library = m_mediaLibraryProvider;
    connect(api, &Api::mediaLibraryReplaced, library, &MediaLibraryProvider::onReset);
    connect(api, &Api::mediaCollectionChanged, library, &MediaLibraryProvider::onCollectionChanged);
    connect(api, &Api::mediaCollectionAdded, library, &MediaLibraryProvider::onCollectionAdded);
    connect(api, &Api::mediaCollectionRemoved, library, &MediaLibraryProvider::onCollectionRemoved);
    connect(api, &Api::mediaAdded, library, &MediaLibraryProvider::onSlotAdded);
    connect(api, &Api::mediaChanged, library, &MediaLibraryProvider::onSlotChanged);
    connect(api, &Api::mediaRemoved, library, &MediaLibraryProvider::onSlotRemoved);
    PlaylistProvider* playlists = m_playlistProvider;
    connect(api, &Api::playlistAdded, playlists, &PlaylistProvider::onPlaylistAdded);
    connect(api, &Api::playlistChanged, playlists, &PlaylistProvider::onPlaylistChanged);
    connect(api, &Api::playlistRemoved, playlists, &PlaylistProvider::onPlaylistRemoved);
    connect(api, &Api::playlistEntryAdded, playlists, &PlaylistProvider::onEntryAdded);
    connect(api, &Api::playlistEntryChanged, playlists, &PlaylistProvider::onEntryChanged);
    connect(api, &Api::playlistEntryRemoved, playlists, &PlaylistProvider::onEntryRemoved);
}

void Session::initMediaLibraryHelpers(const QString& host)
{
    // Views may still hold the helpers of the last connection; those of the one before it go.
    delete std::exchange(m_formerAggregator, m_mediaDataAggregator);
    auto* metadata = new MetadataProvider(host, m_network.get(), 1000);
    auto* thumbnails = new ThumbnailProvider(host, m_network.get(), 100);
    metadata->setPort(m_ports.http);
    thumbnails->setPort(m_ports.http);
    GUIPlayback* const preview = m_sceneObjects->previewPlayback();
    GUIPlayback* const program = m_sceneObjects->programPlayback();
    m_mediaStateProvider =
        new MediaStateProvider(preview, program, m_playlistProvider, m_mediaLibraryProvider, metadata, this);
    m_mediaDataAggregator = new MediaDataAggregator(metadata, thumbnails, m_mediaStateProvider, this);
    for (QObject* helper : {static_cast<QObject*>(metadata), static_cast<QObject*>(thumbnails),
                            static_cast<QObject*>(m_mediaStateProvider)})
        helper->setParent(m_mediaDataAggregator);
    m_resourceStatus = std::make_unique<DefaultResourceStatusProvider>();
    m_mediaLibraryModel->setMediaDataAggregator(m_mediaDataAggregator);
    m_mediaLibraryModel->setMediaStateProvider(m_mediaStateProvider);
}

void Session::onDisconnect()
{
    delete std::exchange(m_mediaLibraryApi, nullptr);
    delete std::exchange(m_metadataClient, nullptr);
    m_qnam->clearAccessCache();
    Q_EMIT disconnected();
}

} // namespace vantrel

#include "common/session/session.h"

#include "common/command/commandgate.h"
#include "common/command/execute.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperationsprovider.h"
#include "common/media/edit/trimcommands.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/models/playbackmodel.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/media/net/defaultresourcestatusprovider.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/media/net/mediastateprovider.h"
#include "common/media/net/metadataprovider.h"
#include "common/media/net/networkaccessmanager.h"
#include "common/media/net/serveraccess.h"
#include "common/media/net/thumbnailprovider.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/link/connectionprovider.h"
#include "common/session/link/linkhealth.h"
#include "common/session/link/metadataclient.h"
#include "common/session/link/previewthread.h"
#include "common/session/link/signalrelay.h"
#include "common/session/link/systemproxy.h"
#include "common/session/link/webprobe.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/objecttreemodel.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/mirror/serverconfigurationmodel.h"
#include "common/session/sessionfiles.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/sessionlogging.h"
#include "common/session/transferlimit.h"
#include "tarn/media/medialibrary.h"
#include "tarn/scene/scene.h"

#include <QDir>
#include <QFileSystemModel>
#include <QPointer>
#include <QTimer>
#include <QUndoStack>

#include <atomic>
#include <utility>

namespace vantrel {

namespace {
constexpr int shutDownTime = 2000; // milliseconds
constexpr int libraryRetry = 1000; // milliseconds

std::atomic<Session*> theInstance = nullptr; // the connection's thread asks too
} // namespace

Session::Session()
    : m_undoStack(std::make_unique<QUndoStack>())
    , m_gate(new CommandGate(m_undoStack.get()))
{
}

Session::~Session()
{
    if (theInstance == this)
        theInstance = nullptr;
    if (m_scene)
        m_scene->removeChangeCallback(&Session::onSceneChange, this);
    // A thread that hangs in a name look-up is left to the process's end; it must not outlive its object.
    if (m_connection && !m_connection->shutDown(shutDownTime)) {
        qCWarning(lcSession) << "The connection's thread does not end; it is left behind";
        m_connection->QObject::disconnect();
        m_connection.release();
        m_preview.release(); // it may be about to subscribe
    }
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
    // It walks the disk on a thread of its own: from the first look on, and not before.
    m_localFileSystemModel->setRootPath(QDir::rootPath());
    return m_localFileSystemModel.get();
}

QAbstractItemModel* Session::remoteFileSystemModel() const
{
    return nullptr;
}

Configuration* Session::configuration() const
{
    return m_configuration.get();
}

bool Session::executeCommand(AbstractSessionCommand* command)
{
    return submit(m_undoStack.get(), std::unique_ptr<AbstractSessionCommand>(command));
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
    if (m_linkHealth->state() != LinkHealth::State::Silent)
        m_connection->sendPatch(patch);
    else
        qCInfo(lcSession) << "Not sent, since the server does not answer:" << patch.size() << "operations";
}

bool Session::isReachable() const
{
    return isConnected() && m_linkHealth->state() != LinkHealth::State::Silent;
}

QString Session::libraryObstacle() const
{
    if (!isConnected())
        return tr("There is no connection to the server.");
    if (!isReachable())
        return tr("The server does not answer.");
    return m_mediaLibraryApi ? m_mediaLibraryApi->unread().whole : tr("The library is not read yet.");
}

void Session::followObstacle()
{
    m_obstacle = libraryObstacle();
    const auto tell = [this] {
        const QString now = libraryObstacle();
        if (std::exchange(m_obstacle, now) != now)
            Q_EMIT libraryObstacleChanged();
    };
    connect(this, &Session::connected, this, tell);
    connect(this, &Session::disconnected, this, tell);
    connect(this, &Session::libraryReadingChanged, this, tell);
    connect(m_linkHealth.get(), &LinkHealth::changed, this, tell);
}

bool Session::isConnected() const
{
    return !m_connection->getConnectedHost().isEmpty();
}

void Session::doInit()
{
    m_qnam = std::make_unique<ServerAccess>();
    m_network = std::make_unique<NetworkAccessManager>(m_qnam.get());
    m_scene = makeRef<Scene>();
    m_scene->addChangeCallback(&Session::onSceneChange, this);
    m_mediaLibrary = makeRef<MediaLibrary>();
    m_objectTree = std::make_unique<ObjectTreeModel>();
    m_objectTree->setScene(m_scene.get());
    m_mediaLibraryProvider = std::make_unique<MediaLibraryProvider>(m_mediaLibrary);
    MediaLibraryProvider* const library = m_mediaLibraryProvider.get();
    library->setTrimCommands(&makeInpointCommand, &makeOutpointCommand);
    m_playlistProvider = std::make_unique<PlaylistProvider>(m_mediaLibrary, library);
    PlaylistProvider* const playlists = m_playlistProvider.get();
    m_sceneObjects = std::make_unique<SceneObjectProvider>(m_objectTree.get(), playlists, library);
    GUIPlayback* const preview = m_sceneObjects->previewPlayback();
    GUIPlayback* const program = m_sceneObjects->programPlayback();
    m_mediaLibraryModel = std::make_unique<MediaLibraryModel>(m_mediaLibrary.get(), preview, program);
    m_mediaLibraryModel->setMediaLibaryProvider(library);
    m_localFileSystemModel = std::make_unique<QFileSystemModel>();
    m_configuration = std::make_unique<Configuration>();
    m_preview = std::make_unique<PreviewThread>(m_ports.preview);
    m_signalRelay = std::make_unique<SignalRelay>();
    initConnection();
    m_serverConfiguration = std::make_shared<ServerConfigurationModel>();
    m_serverConfiguration->setShowConfiguration(m_sceneObjects->showConfiguration());
    m_previewPlaybackModel = std::make_unique<PlaybackModel>(preview, playlists, nullptr);
    m_programPlaybackModel = std::make_unique<PlaybackModel>(program, playlists, nullptr);
    for (PlaybackModel* model : {m_previewPlaybackModel.get(), m_programPlaybackModel.get()})
        model->setUndoStack(m_undoStack.get());
    initMediaLibraryHelpers();
    initPlaylistModels();
    wireProviders();
    followObstacle();
    m_files = std::make_unique<SessionFiles>();
    m_transferLimit = std::make_unique<TransferLimit>(m_configuration.get(), program);
    connect(m_files.get(), &SessionFiles::serverFilesModelChanged, this, &Session::serverFilesModelChanged);
    connect(m_files.get(), &SessionFiles::serverFilesPathModelChanged, this,
            &Session::serverFilesPathModelChanged);
}

void Session::initConnection()
{
    m_connection = std::make_unique<ConnectionHandler>(m_ports.link);
    m_linkHealth = std::make_unique<LinkHealth>(m_connection.get()); // hears of the link before all others
    connect(m_connection.get(), &ConnectionHandler::patchAvailable, this, &Session::onPatchAvailable);
    connect(m_connection.get(), &ConnectionHandler::connected, this, &Session::onConnect);
    connect(m_connection.get(), &ConnectionHandler::disconnected, this, &Session::onDisconnect);
    m_linkHealth->follow(m_sceneObjects->previewPlayback());
    m_linkHealth->follow(m_sceneObjects->programPlayback());
    connect(m_linkHealth.get(), &LinkHealth::changed, this, &Session::onHealthChanged);
    m_webProbe = std::make_unique<WebProbe>(m_qnam.get(), m_ports.http);
    connect(m_webProbe.get(), &WebProbe::answered, m_linkHealth.get(), &LinkHealth::setWebAnswers);
    m_connection->start();
    m_systemProxy = std::make_unique<SystemProxy>();
    m_systemProxy->setSession(this);
    m_connectionProvider = std::make_unique<ConnectionProvider>();
}

void Session::onHealthChanged()
{
    const LinkHealth::State state = m_linkHealth->state();
    m_preview->setServerAnswers(state == LinkHealth::State::Current);
    const bool isGone = state == LinkHealth::State::Silent || state == LinkHealth::State::Lost;
    m_webProbe->setHost(isGone ? m_lastHost : QString());
    if (state == LinkHealth::State::Silent)
        m_gate->setReason(tr("The server does not answer."));
    else // also while another host is tried: what is pressed then would go nowhere
        m_gate->setReason(state == LinkHealth::State::Current ? QString()
                                                              : tr("There is no connection to the server."));
    if (state == LinkHealth::State::Current && !m_unsent.empty())
        askForUnsent();
}

/// What was changed here alone becomes again what the server has.
void Session::askForUnsent()
{
    m_connection->sendPatch(std::exchange(m_unsent, {}));
}

void Session::wireProviders()
{
    MediaLibraryProvider* library = m_mediaLibraryProvider.get();
    PlaylistProvider* playlists = m_playlistProvider.get();
    // Playlists are rebuilt after the slots that they link to, and the models after both.
    connect(library, &MediaLibraryProvider::reset, playlists, &PlaylistProvider::onReset);
    connect(library, &MediaLibraryProvider::libraryCommandExec, this,
            [this, library](AbstractSessionCommand* command) {
                if (!executeCommand(command) && (!m_mediaLibraryApi || m_mediaLibraryApi->edits()->isEmpty()))
                    library->tellSettled();
            });
    connect(library, &MediaLibraryProvider::slotAdded, playlists, &PlaylistProvider::onSlotModified);
    connect(library, &MediaLibraryProvider::slotChanged, playlists, &PlaylistProvider::onSlotModified);
    connect(library, &MediaLibraryProvider::slotRemoved, playlists, &PlaylistProvider::onSlotModified);
    for (PlaybackModel* model : {m_previewPlaybackModel.get(), m_programPlaybackModel.get()}) {
        connect(library, &MediaLibraryProvider::slotAdded, model, &PlaybackModel::onSlotModified);
        connect(library, &MediaLibraryProvider::slotChanged, model, &PlaybackModel::onSlotModified);
        connect(library, &MediaLibraryProvider::slotRemoved, model, &PlaybackModel::onSlotModified);
        connect(library, &MediaLibraryProvider::reset, model, &PlaybackModel::refreshSlot);
        connect(library, &MediaLibraryProvider::collectionAdded, model, &PlaybackModel::refreshSlot);
        connect(library, &MediaLibraryProvider::collectionRemoved, model, &PlaybackModel::refreshSlot);
    }
}

void Session::onConnect()
{
    ++m_linksSeen;
    m_loading = Loading::Stale;
    m_nextPatch = {};
    m_unsent = {};
    const QString host = m_connection->getConnectedHost();
    if (host.isEmpty())
        return; // the operator left before this signal came through
    m_lastHost = host;
    qCInfo(lcSession, "Session connected to: %s", qPrintable(host));
    followLibrary(host);
    aimMediaLibraryHelpers(host);
    Q_EMIT connected(host);
    connectFiles(host);
    m_metadataClient.reset();
    m_metadataClient = std::make_unique<MetadataClient>(host, m_ports.http);
}

/// Reads the library and follows its changes; what goes wrong with either is tried again as long as the link
/// stands.
void Session::followLibrary(const QString& host)
{
    m_mediaLibraryApi.reset();
    m_mediaLibraryApi = std::make_unique<MediaLibraryApi>(host, m_qnam.get(), m_mediaLibrary.get());
    MediaLibraryApi* const api = m_mediaLibraryApi.get();
    api->setPort(m_ports.http);
    connectMediaLibraryApi();
    connect(api, &MediaLibraryApi::streamLost, this, [this, api = QPointer(api), host] {
        m_linkHealth->setLibraryCurrent(false);
        QTimer::singleShot(libraryRetry, this, [this, api, host] {
            if (api && api == m_mediaLibraryApi.get())
                followLibrary(host);
        });
    });
    connect(api, &MediaLibraryApi::readingChanged, this, [this, api] {
        m_linkHealth->setLibraryCurrent(api->reading() == MediaLibraryApi::Reading::Done);
        Q_EMIT libraryReadingChanged();
    });
    api->listenChanges();
    api->requestMediaLibrary();
    Q_EMIT libraryReadingChanged();
}

void Session::connectMediaLibraryApi()
{
    using Api = MediaLibraryApi;
    const Api* api = m_mediaLibraryApi.get();
    m_previewPlaylistEditorModel->setLibraryApi(api);
    m_programPlaylistEditorModel->setLibraryApi(api);
    // The order of the connections is the order in which models and providers learn of a change.
    MediaLibraryModel* model = m_mediaLibraryModel.get();
    connect(api, &Api::mediaLibraryReplaced, model, &MediaLibraryModel::reset);
    connect(api, &Api::changesStarted, model, &MediaLibraryModel::onChangesStarted);
    connect(api, &Api::changesFinished, model, &MediaLibraryModel::onChangesFinished);
    connect(api, &Api::mediaCollectionChanged, model, &MediaLibraryModel::onCollectionChanged);
    connect(api, &Api::mediaCollectionAdded, model, &MediaLibraryModel::onCollectionAdded);
    connect(api, &Api::mediaCollectionRemoved, model, &MediaLibraryModel::onCollectionRemoved);
    connect(api, &Api::mediaAdded, model, &MediaLibraryModel::onMediaAdded);
    connect(api, &Api::mediaChanged, model, &MediaLibraryModel::onMediaChanged);
    connect(api, &Api::mediaRemoved, model, &MediaLibraryModel::onMediaRemoved);
    MediaLibraryProvider* library = m_mediaLibraryProvider.get();
    connect(api, &Api::mediaLibraryReplaced, library, &MediaLibraryProvider::onReset);
    connect(api, &Api::mediaCollectionChanged, library, &MediaLibraryProvider::onCollectionChanged);
    connect(api, &Api::mediaCollectionAdded, library, &MediaLibraryProvider::onCollectionAdded);
    connect(api, &Api::mediaCollectionRemoved, library, &MediaLibraryProvider::onCollectionRemoved);
    connect(api, &Api::mediaAdded, library, &MediaLibraryProvider::onSlotAdded);
    connect(api, &Api::mediaChanged, library, &MediaLibraryProvider::onSlotChanged);
    connect(api, &Api::mediaRemoved, library, &MediaLibraryProvider::onSlotRemoved);
    connect(api, &Api::editsSettled, library, &MediaLibraryProvider::editsSettled);
    PlaylistProvider* playlists = m_playlistProvider.get();
    connect(api, &Api::changesStarted, playlists, &PlaylistProvider::onChangesStarted);
    connect(api, &Api::changesFinished, playlists, &PlaylistProvider::onChangesFinished);
    connect(api, &Api::playlistAdded, playlists, &PlaylistProvider::onPlaylistAdded);
    connect(api, &Api::playlistChanged, playlists, &PlaylistProvider::onPlaylistChanged);
    connect(api, &Api::playlistRemoved, playlists, &PlaylistProvider::onPlaylistRemoved);
    connect(api, &Api::playlistEntryAdded, playlists, &PlaylistProvider::onEntryAdded);
    connect(api, &Api::playlistEntryChanged, playlists, &PlaylistProvider::onEntryChanged);
    connect(api, &Api::playlistEntryRemoved, playlists, &PlaylistProvider::onEntryRemoved);
}

/// One source of metadata, thumbnails and states for the life of the session: who holds it need not know of
/// connections.
void Session::initMediaLibraryHelpers()
{
    m_metadata = std::make_unique<MetadataProvider>(QString(), m_network.get(), 1000);
    m_thumbnails = std::make_unique<ThumbnailProvider>(QString(), m_network.get(), 100);
    m_mediaStateProvider = std::make_unique<MediaStateProvider>(
        m_sceneObjects->previewPlayback(), m_sceneObjects->programPlayback(), m_playlistProvider.get(),
        m_mediaLibraryProvider.get(), m_metadata.get());
    m_mediaDataAggregator = std::make_unique<MediaDataAggregator>(m_metadata.get(), m_thumbnails.get(),
                                                                  m_mediaStateProvider.get());
    m_resourceStatus = std::make_unique<DefaultResourceStatusProvider>();
    m_mediaLibraryModel->setMediaDataAggregator(m_mediaDataAggregator.get());
    m_mediaLibraryModel->setMediaStateProvider(m_mediaStateProvider.get());
}

/// Another server may hold other files under the same names.
void Session::aimMediaLibraryHelpers(const QString& host)
{
    m_metadata->setServer(host, m_ports.http);
    m_thumbnails->setServer(host, m_ports.http);
    m_mediaDataAggregator->forgetAll();
    m_mediaStateProvider->reset();
    for (const PlaybackViewMode mode : {PlaybackViewMode::Preview, PlaybackViewMode::Program})
        m_resourceStatus->setIsConstrained(mode, false);
}

void Session::initPlaylistModels()
{
    m_playlistLibraryModel = std::make_unique<PlaylistLibraryModel>(m_playlistProvider.get());
    const auto make = [this](PlaybackViewMode mode) {
        auto model = std::make_unique<PlaylistEditorModel>(
            m_playlistProvider.get(), m_mediaDataAggregator.get(), m_sceneObjects->previewPlayback(),
            m_sceneObjects->programPlayback(), QSet<PlaybackViewMode>{mode}, m_mediaStateProvider.get());
        model->setUndoStack(m_undoStack.get());
        model->setResourceStatusProvider(m_resourceStatus.get());
        return model;
    };
    m_previewPlaylistEditorModel = make(PlaybackViewMode::Preview);
    m_programPlaylistEditorModel = make(PlaybackViewMode::Program);
}

QNetworkAccessManager* Session::getQNetworkAccessManager() const
{
    return m_qnam.get();
}

PlaylistSelectionModel* Session::playlistSelection() const
{
    return m_playlistSelection;
}

void Session::setPlaylistSelection(PlaylistSelectionModel* selection)
{
    m_playlistSelection = selection;
    m_previewPlaylistEditorModel->setSelection(selection);
    m_programPlaylistEditorModel->setSelection(selection);
}

void Session::connectFiles(const QString& host)
{
    m_files->disconnectServer(); // of a link of which no end was heard
    m_files->connectTo(host, m_ports.ftp, m_configuration->value(SERVER_CREDENTIALS_USERNAME).toString(),
                       m_configuration->value(SERVER_CREDENTIALS_PASSWORD).toString());
    m_transferLimit->setServer(m_files->serverFileSystem());
}

FilesModel* Session::localFilesModel() const
{
    return m_files->localFilesModel();
}

PathModel* Session::localFilesPathModel() const
{
    return m_files->localFilesPathModel();
}

FilesModel* Session::serverFilesModel() const
{
    return m_files->serverFilesModel();
}

PathModel* Session::serverFilesPathModel() const
{
    return m_files->serverFilesPathModel();
}

MediaArrivals* Session::mediaArrivals() const
{
    return m_files ? m_files->mediaArrivals() : nullptr;
}

OperationsModel* Session::operationsModel() const
{
    return m_files->operationsModel();
}

FileSystemOperations* Session::fileSystemOperations() const
{
    return FileSystemOperationsProvider::getFileSystemOperations();
}

FileSystemProvider* Session::fileSystemProvider() const
{
    return DefaultFileSystemProvider::instance();
}

FileSystemOperationsProvider* Session::fileSystemOperationsProvider() const
{
    static FileSystemOperationsProvider theProvider;
    return &theProvider;
}

void Session::onDisconnect()
{
    m_files->disconnectServer();
    m_mediaLibraryApi.reset();
    m_metadataClient.reset();
    m_qnam->forgetConnections();
    Q_EMIT disconnected();
}

} // namespace vantrel

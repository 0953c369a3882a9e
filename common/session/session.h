#pragma once

#include "common/session/settings/serverports.h"
#include "tarn/json/patch.h"
#include "tarn/ref.h"

#include <QObject>
#include <QPointer>

#include <memory>

class QAbstractItemModel;
class QFileSystemModel;
class QNetworkAccessManager;
class QUndoStack;

namespace vantrel {

class AbstractSessionCommand;
class CommandGate;
class Configuration;
class ConnectionHandler;
class ConnectionProvider;
class DefaultResourceStatusProvider;
class FileSystemOperations;
class FileSystemOperationsProvider;
class FileSystemProvider;
class FilesModel;
class Hotkeys;
class LinkHealth;
class MediaArrivals;
class MediaDataAggregator;
class MediaLibrary;
class MediaLibraryApi;
class MediaLibraryModel;
class MediaLibraryProvider;
class MediaStateProvider;
class MetadataClient;
class MetadataProvider;
class NetworkAccessManager;
class ObjectTreeModel;
class OperationsModel;
class Patch;
class PathModel;
class PlaybackModel;
class PlaylistEditorModel;
class PlaylistLibraryModel;
class PlaylistProvider;
class PlaylistSelectionModel;
class PreviewThread;
class Scene;
class SceneObjectProvider;
class ServerAccess;
class ServerConfigurationModel;
class SessionFiles;
class SignalRelay;
class SystemProxy;
class ThumbnailProvider;
class TransferLimit;
class WebProbe;
struct SceneChange;

/// Ties the application together: one a process, owner of the scene, the library, the undo stack, the
/// connection thread and every shared provider and model. Made by the launcher before the main window. Main
/// thread only, except that the connection thread reads instance() and preview().
class Session : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("common/filesystem/models/filesmodel.h")
    Q_MOC_INCLUDE("common/filesystem/models/operationsmodel.h")
    Q_MOC_INCLUDE("common/filesystem/models/pathmodel.h")
    Q_MOC_INCLUDE("common/filesystem/schedule/filesystemoperations.h")
    Q_PROPERTY(vantrel::OperationsModel* operationsModel READ operationsModel CONSTANT)
    Q_PROPERTY(vantrel::FilesModel* localFilesModel READ localFilesModel CONSTANT)
    Q_PROPERTY(vantrel::FilesModel* serverFilesModel READ serverFilesModel NOTIFY serverFilesModelChanged)
    Q_PROPERTY(vantrel::FileSystemOperations* fileSystemOperations READ fileSystemOperations CONSTANT)
    Q_PROPERTY(vantrel::PathModel* localFilesPathModel READ localFilesPathModel CONSTANT)
    Q_PROPERTY(
        vantrel::PathModel* serverFilesPathModel READ serverFilesPathModel NOTIFY serverFilesPathModelChanged)

public:
    Session();
    ~Session() override;

    virtual QAbstractItemModel* localFileSystemModel() const;
    /// Null unless a derived session fills it.
    virtual QAbstractItemModel* remoteFileSystemModel() const;
    virtual Configuration* configuration() const;
    /// Pushes the command on the undo stack, which owns it from now on and runs its redo() at once. False,
    /// and it is gone, when the gate is closed.
    virtual bool executeCommand(AbstractSessionCommand* command);
    virtual QUndoStack* getQUndoStack() const;
    virtual void doInit();

    /// Makes the one instance and builds it. The ports hold for the life of the process.
    static void initialize(const ServerPorts& ports = {});
    /// Takes a caller's instance (which the caller keeps) in place of the default one.
    static void initializeWith(Session* session, const ServerPorts& ports = {});
    /// Null before initialisation and after the instance has gone.
    static Session* instance();

    const ServerPorts& ports() const { return m_ports; }

    /// Sends to the server; without a link the patch is dropped.
    void sendPatch(const Patch& patch);
    bool isConnected() const;
    /// Connected, and the server says something on its link.
    bool isReachable() const;
    /// Why the library cannot be edited now, a sentence; empty where it can.
    QString libraryObstacle() const;

    Scene* getScene() const { return m_scene.get(); }
    QNetworkAccessManager* getQNetworkAccessManager() const;
    NetworkAccessManager* getNetworkAccessManager() const;
    /// Null while disconnected.
    MediaLibraryApi* getMediaLibraryApi() const { return m_mediaLibraryApi.get(); }
    MediaLibrary* mediaLibrary() const;
    ConnectionHandler* connectionHandler() const { return m_connection.get(); }
    LinkHealth* linkHealth() const { return m_linkHealth.get(); }
    ConnectionProvider* connectionProvider() const { return m_connectionProvider.get(); }
    PreviewThread* preview() const { return m_preview.get(); }
    SignalRelay* signalRelay() const { return m_signalRelay.get(); }
    SystemProxy* systemProxy() const { return m_systemProxy.get(); }
    SceneObjectProvider* sceneObjectProvider() const { return m_sceneObjects.get(); }
    std::shared_ptr<ServerConfigurationModel> serverConfigurationModel() const
    {
        return m_serverConfiguration;
    }
    ObjectTreeModel* objectTreeModel() const { return m_objectTree.get(); }
    Hotkeys* hotkeys() const { return m_hotkeys; }
    /// The main window's; null clears it.
    void setHotkeys(Hotkeys* hotkeys) { m_hotkeys = hotkeys; }

    MediaLibraryModel* mediaLibraryModel() const { return m_mediaLibraryModel.get(); }
    MediaLibraryProvider* mediaLibraryProvider() const { return m_mediaLibraryProvider.get(); }
    PlaylistProvider* playlistProvider() const { return m_playlistProvider.get(); }
    PlaybackModel* previewPlaybackModel() const { return m_previewPlaybackModel.get(); }
    PlaybackModel* programPlaybackModel() const { return m_programPlaybackModel.get(); }
    PlaylistLibraryModel* playlistLibraryModel() const { return m_playlistLibraryModel.get(); }
    PlaylistEditorModel* previewPlaylistEditorModel() const { return m_previewPlaylistEditorModel.get(); }
    PlaylistEditorModel* programPlaylistEditorModel() const { return m_programPlaylistEditorModel.get(); }
    /// What is selected in the editor; its view's, null while there is none.
    PlaylistSelectionModel* playlistSelection() const;
    void setPlaylistSelection(PlaylistSelectionModel* selection);
    // One of each for the life of the session.
    MediaDataAggregator* mediaDataAggregator() const { return m_mediaDataAggregator.get(); }
    MediaStateProvider* mediaStateProvider() const { return m_mediaStateProvider.get(); }
    DefaultResourceStatusProvider* resourceStatusProvider() const;
    /// Made anew on each connection, and null before the first.
    MetadataClient* metadataClient() const { return m_metadataClient.get(); }

    // Of files; those of this computer and of the work in hand are made when they are first asked for.
    FilesModel* localFilesModel() const;
    PathModel* localFilesPathModel() const;
    /// Null without a link.
    FilesModel* serverFilesModel() const;
    /// Without a link one of no file system.
    PathModel* serverFilesPathModel() const;
    OperationsModel* operationsModel() const;
    FileSystemOperations* fileSystemOperations() const;
    FileSystemProvider* fileSystemProvider() const;
    /// What of this computer is on its way into slots, whoever dropped it; null before the session is built.
    MediaArrivals* mediaArrivals() const;
    FileSystemOperationsProvider* fileSystemOperationsProvider() const;

Q_SIGNALS:
    void connected(QString host);
    void disconnected();
    /// The first drain of patches after a connection has ended.
    void sceneLoaded();
    /// MediaLibraryApi::reading() of the present connection.
    void libraryReadingChanged();
    void libraryObstacleChanged();
    void serverFilesModelChanged();
    void serverFilesPathModelChanged();

private:
    void onConnect();
    void onDisconnect();
    void onPatchAvailable();
    void initConnection();
    void onHealthChanged();
    void followObstacle();
    void askForUnsent();
    void wireProviders();
    void followLibrary(const QString& host);
    void connectMediaLibraryApi();
    void initMediaLibraryHelpers();
    void aimMediaLibraryHelpers(const QString& host);
    void initPlaylistModels();
    void connectFiles(const QString& host);
    static void onSceneChange(Scene* scene, int count, const SceneChange* changes, void* user);

    /// How the scene comes to be what the server's is.
    enum class Loading {
        Live,     // it is; what comes is applied at once
        Behind,   // the same, and what is left waits for the next turn of the event loop
        Stale,    // a new link: what stands has to go before the first patch
        Clearing, // half of it is gone, the next slice waits
        Filling,  // all of it is gone, the next slice waits
        Applying, // within a slice: changes are the server's and do not go back to it
    };
    static bool isLive(Loading loading);
    bool hasPatch();
    void takeSlice();
    Loading applySlice(Loading from);

    // In the order of construction: who stands further down knows those above and goes before them.
    ServerPorts m_ports;
    std::unique_ptr<ServerAccess> m_qnam;
    std::unique_ptr<NetworkAccessManager> m_network;
    Ref<Scene> m_scene;
    Ref<MediaLibrary> m_mediaLibrary;
    std::unique_ptr<ObjectTreeModel> m_objectTree;
    std::unique_ptr<MediaLibraryProvider> m_mediaLibraryProvider;
    std::unique_ptr<PlaylistProvider> m_playlistProvider;
    std::unique_ptr<SceneObjectProvider> m_sceneObjects;
    std::shared_ptr<ServerConfigurationModel> m_serverConfiguration;
    std::unique_ptr<MediaLibraryModel> m_mediaLibraryModel;
    std::unique_ptr<QFileSystemModel> m_localFileSystemModel;
    std::unique_ptr<Configuration> m_configuration;
    std::unique_ptr<SignalRelay> m_signalRelay;
    std::unique_ptr<PlaybackModel> m_previewPlaybackModel;
    std::unique_ptr<PlaybackModel> m_programPlaybackModel;
    std::unique_ptr<PlaylistLibraryModel> m_playlistLibraryModel;
    std::unique_ptr<MetadataProvider> m_metadata;
    std::unique_ptr<ThumbnailProvider> m_thumbnails;
    std::unique_ptr<MediaStateProvider> m_mediaStateProvider;
    std::unique_ptr<MediaDataAggregator> m_mediaDataAggregator;
    std::unique_ptr<MetadataClient> m_metadataClient;
    std::unique_ptr<MediaLibraryApi> m_mediaLibraryApi;
    std::unique_ptr<QUndoStack> m_undoStack;
    std::unique_ptr<DefaultResourceStatusProvider> m_resourceStatus;
    std::unique_ptr<PlaylistEditorModel> m_previewPlaylistEditorModel;
    std::unique_ptr<PlaylistEditorModel> m_programPlaylistEditorModel;
    QPointer<PlaylistSelectionModel> m_playlistSelection;
    std::unique_ptr<PreviewThread> m_preview;
    std::unique_ptr<ConnectionHandler> m_connection;
    std::unique_ptr<LinkHealth> m_linkHealth;
    std::unique_ptr<WebProbe> m_webProbe;
    std::unique_ptr<SystemProxy> m_systemProxy;
    std::unique_ptr<ConnectionProvider> m_connectionProvider;
    std::unique_ptr<SessionFiles> m_files;
    std::unique_ptr<TransferLimit> m_transferLimit;
    Hotkeys* m_hotkeys = nullptr; // the main window's
    CommandGate* m_gate;          // the undo stack's

    Loading m_loading = Loading::Live;
    int m_linksSeen = 0; // of ConnectionHandler::linkCount(): which link the scene has heard of
    Patch m_nextPatch;   // taken from the link, not applied yet
    QString m_lastHost;  // of the last link
    QString m_obstacle;  // libraryObstacle(), as it was told last
    Patch m_unsent;      // asks for what was changed here while the server did not answer
};

} // namespace vantrel

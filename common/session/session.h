#pragma once

#include "common/session/settings/serverports.h"
#include "tarn/json/patch.h"
#include "tarn/ref.h"

#include <QObject>

#include <memory>

class QAbstractItemModel;
class QFileSystemModel;
class QNetworkAccessManager;
class QUndoStack;

namespace vantrel {

class AbstractSessionCommand;
class Configuration;
class ConnectionHandler;
class ConnectionProvider;
class DefaultResourceStatusProvider;
class Hotkeys;
class MediaDataAggregator;
class MediaLibrary;
class MediaLibraryApi;
class MediaLibraryModel;
class MediaLibraryProvider;
class MediaStateProvider;
class MetadataClient;
class NetworkAccessManager;
class ObjectTreeModel;
class Patch;
class PlaybackModel;
class PlaylistProvider;
class PreviewThread;
class Scene;
class SceneObjectProvider;
class ServerConfigurationModel;
class SignalRelay;
class SystemProxy;
struct SceneChange;

/// Ties the application together: one a process, owner of the scene, the library, the undo stack, the
/// connection thread and every shared provider and model. Made by the launcher before the main window. Main
/// thread only, except that the connection thread reads instance() and preview().
class Session : public QObject
{
    Q_OBJECT

public:
    Session();
    ~Session() override;

    virtual QAbstractItemModel* localFileSystemModel() const;
    /// Null unless a derived session fills it.
    virtual QAbstractItemModel* remoteFileSystemModel() const;
    virtual Configuration* configuration() const;
    /// Pushes the command on the undo stack, which owns it from now on and runs its redo() at once.
    virtual void executeCommand(AbstractSessionCommand* command);
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

    Scene* getScene() const { return m_scene.get(); }
    QNetworkAccessManager* getQNetworkAccessManager() const { return m_qnam; }
    NetworkAccessManager* getNetworkAccessManager() const;
    /// Null while disconnected.
    MediaLibraryApi* getMediaLibraryApi() const { return m_mediaLibraryApi; }
    MediaLibrary* mediaLibrary() const;
    ConnectionHandler* connectionHandler() const { return m_connection; }
    ConnectionProvider* connectionProvider() const { return m_connectionProvider.get(); }
    PreviewThread* preview() const { return m_preview.get(); }
    SignalRelay* signalRelay() const { return m_signalRelay.get(); }
    SystemProxy* systemProxy() const { return m_systemProxy.get(); }
    SceneObjectProvider* sceneObjectProvider() const { return m_sceneObjects; }
    std::shared_ptr<ServerConfigurationModel> serverConfigurationModel() const
    {
        return m_serverConfiguration;
    }
    ObjectTreeModel* objectTreeModel() const { return m_objectTree.get(); }
    Hotkeys* hotkeys() const { return m_hotkeys; }
    /// The main window's; null clears it.
    void setHotkeys(Hotkeys* hotkeys) { m_hotkeys = hotkeys; }

    MediaLibraryModel* mediaLibraryModel() const { return m_mediaLibraryModel; }
    MediaLibraryProvider* mediaLibraryProvider() const { return m_mediaLibraryProvider; }
    PlaylistProvider* playlistProvider() const { return m_playlistProvider; }
    PlaybackModel* previewPlaybackModel() const { return m_previewPlaybackModel; }
    PlaybackModel* programPlaybackModel() const { return m_programPlaybackModel; }
    /// The four below are made anew on each connection, and null before the first.
    MediaDataAggregator* mediaDataAggregator() const { return m_mediaDataAggregator; }
    MediaStateProvider* mediaStateProvider() const { return m_mediaStateProvider; }
    DefaultResourceStatusProvider* resourceStatusProvider() const;
    MetadataClient* metadataClient() const { return m_metadataClient; }

Q_SIGNALS:
    void connected(QString host);
    void disconnected();
    /// The first drain of patches after a connection has ended.
    void sceneLoaded();
    /// MediaLibraryApi::reading() of the present connection.
    void libraryReadingChanged();

private:
    void onConnect();
    void onDisconnect();
    void onPatchAvailable();
    void initConnection();
    void wireProviders();
    void followLibrary(const QString& host);
    void connectMediaLibraryApi();
    void initMediaLibraryHelpers(const QString& host);
    bool hasPatch();
    bool clearForLoading();
    bool applyPatches();
    static void onSceneChange(Scene* scene, int count, const SceneChange* changes, void* user);

    struct Media;

    ServerPorts m_ports;
    QAbstractItemModel* m_remoteFileSystemModel = nullptr;
    std::unique_ptr<QFileSystemModel> m_localFileSystemModel;
    Ref<Scene> m_scene;
    std::unique_ptr<QUndoStack> m_undoStack;
    std::unique_ptr<Configuration> m_configuration;
    std::unique_ptr<NetworkAccessManager> m_network;
    QNetworkAccessManager* m_qnam = nullptr;
    std::unique_ptr<ObjectTreeModel> m_objectTree;
    std::unique_ptr<SignalRelay> m_signalRelay;
    std::unique_ptr<SystemProxy> m_systemProxy;
    std::unique_ptr<ConnectionProvider> m_connectionProvider;
    std::unique_ptr<PreviewThread> m_preview;
    ConnectionHandler* m_connection = nullptr;
    SceneObjectProvider* m_sceneObjects = nullptr;
    std::shared_ptr<ServerConfigurationModel> m_serverConfiguration;
    Hotkeys* m_hotkeys = nullptr;

    Ref<MediaLibrary> m_mediaLibrary;
    MediaLibraryProvider* m_mediaLibraryProvider = nullptr;
    PlaylistProvider* m_playlistProvider = nullptr;
    MediaLibraryModel* m_mediaLibraryModel = nullptr;
    PlaybackModel* m_previewPlaybackModel = nullptr;
    PlaybackModel* m_programPlaybackModel = nullptr;
    MediaLibraryApi* m_mediaLibraryApi = nullptr;
    MetadataClient* m_metadataClient = nullptr;
    MediaDataAggregator* m_mediaDataAggregator = nullptr;
    MediaDataAggregator* m_formerAggregator = nullptr; // of the connection before
    MediaStateProvider* m_mediaStateProvider = nullptr;
    std::unique_ptr<DefaultResourceStatusProvider> m_resourceStatus;

    int m_linksSeen = 0; // of ConnectionHandler::linkCount()
    bool m_sceneLoading = false;
    bool m_sceneCleared = false; // the first slice after a connection has emptied the scene
    Patch m_nextPatch;           // taken from the link, not applied yet
    bool m_drainPosted = false;  // more patches wait for the next turn of the event loop
    bool m_applyingPatch = false;
};

} // namespace vantrel

#pragma once

#include "ombra/display/paintby.h"
#include "ombra/show/mediawatcher.h"
#include "tarn/media/channelenums.h"
#include "tarn/scene/scene.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/steady_timer.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantrel {
class NetworkResponder;
}

namespace vantrel::ombra {

class AutoSave;
class AutoStart;
class CurrentShow;
class Engine;
class EventTeller;
class FtpService;
class HttpServer;
class LinkServer;
class MachineOutputs;
class MediaData;
class NoticeBoard;
class Outputs;
class PlayPositions;
class PreviewServer;
class ProgramOut;
class RestApi;
class SceneSettings;
class ShowFiles;
class ShowStore;
class SlotProber;

struct ServerOptions
{
    std::filesystem::path media; // folder
    std::filesystem::path state; // folder, made where needed
    boost::asio::ip::address bind = boost::asio::ip::address_v4::loopback();
    // 0 takes a free one.
    unsigned short httpPort = 80;
    unsigned short linkPort = 11060;
    unsigned short previewPort = 11061;
    unsigned short ftpPort = 21;
    bool discovery = true; // answer searches of the network
    enum class Screen { None, Window, Full };
    Screen screen = Screen::None;                       // where program is shown
    bool showsPreview = false;                          // and preview as well
    PaintBy paintBy = PaintBy::Itself;                  // the screens
    std::map<AudioPlaybackDevice, std::string> soundOf; // what stands for a device of the scene
    std::optional<std::string> sound;        // the device of program's sound, "" for the machine's own choice
    std::optional<std::string> previewSound; // likewise
    double soundOffset = 0;                  // seconds after the pictures, until an operator sets another
    bool simulateOutputs = false;            // displays are plugged in and out by a route for tests
    std::vector<std::string> hostNames;      // that clients may call it by, beside the machine's own
    std::chrono::milliseconds copyEach = std::chrono::hours(1); // of the show, while somebody works on it
};

/// The whole server: the show, the scene, the players and every interface. Lives on the io_context's thread.
class Server
{
public:
    Server(boost::asio::io_context& io, ServerOptions options);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Loads the show and opens the ports. False, with the reason in one line, when that cannot be done.
    bool start(std::string* error);

    unsigned short httpPort() const;
    unsigned short linkPort() const;
    unsigned short previewPort() const;
    unsigned short ftpPort() const;

private:
    bool openShow(std::string* error);
    void buildOutputs();
    bool openPorts(std::string* error);
    bool openFiles(std::string* error);
    void startEngine();
    void stopEngine();
    void restartPlayers();
    void watchMedia();
    void tellFolder(MediaWatcher::Folder folder);
    bool invoke(PathView methodPath, const Json& args, std::string* error);
    void propertyWritten(Object* object, const PropertyInfo* property, bool isByClient);
    void countSeconds();
    void simulateOutputs();

    boost::asio::io_context& m_io;
    ServerOptions m_options;
    // Goes last: a graphics card that hangs holds up no show that is being kept.
    std::unique_ptr<ProgramOut> m_out;
    Ref<Scene> m_scene;
    std::unique_ptr<NoticeBoard> m_notices;
    std::unique_ptr<ShowStore> m_store;
    std::unique_ptr<Outputs> m_outputs;
    std::unique_ptr<MachineOutputs> m_machine; // where it has screens of its own
    std::unique_ptr<SceneSettings> m_settings;
    std::unique_ptr<CurrentShow> m_currentShow;
    std::unique_ptr<ShowFiles> m_showFiles;
    std::unique_ptr<PlayPositions> m_positions;
    std::unique_ptr<AutoSave> m_autoSave;
    std::unique_ptr<AutoStart> m_autoStart;
    std::unique_ptr<PreviewServer> m_preview;
    std::unique_ptr<FtpService> m_files;
    std::unique_ptr<Engine> m_engine;
    std::unique_ptr<MediaData> m_mediaData;
    std::unique_ptr<RestApi> m_rest;
    std::unique_ptr<HttpServer> m_http;
    std::unique_ptr<EventTeller> m_teller;
    std::unique_ptr<LinkServer> m_link;
    std::unique_ptr<MediaWatcher> m_watcher;
    std::unique_ptr<NetworkResponder> m_responder;
    std::unique_ptr<SlotProber> m_prober;
    boost::asio::steady_timer m_seconds;
};

} // namespace vantrel::ombra

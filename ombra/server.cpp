#include "ombra/server.h"

#include "ombra/announcement.h"
#include "ombra/base/version.h"
#include "ombra/display/machineoutputs.h"
#include "ombra/engine/engine.h"
#include "ombra/ftp/ftpservice.h"
#include "ombra/link/linkserver.h"
#include "ombra/outputs/outputs.h"
#include "ombra/outputs/sceneaccess.h"
#include "ombra/preview/previewserver.h"
#include "ombra/programout.h"
#include "ombra/rest/eventteller.h"
#include "ombra/rest/httpserver.h"
#include "ombra/rest/mediadata.h"
#include "ombra/rest/restapi.h"
#include "ombra/show/autosave.h"
#include "ombra/show/autostart.h"
#include "ombra/show/currentshow.h"
#include "ombra/show/generations.h"
#include "ombra/show/initiallibrary.h"
#include "ombra/show/mediawatcher.h"
#include "ombra/show/noticeboard.h"
#include "ombra/show/playpositions.h"
#include "ombra/show/scenesettings.h"
#include "ombra/show/showfiles.h"
#include "ombra/show/showstore.h"
#include "ombra/show/slotfacts.h"
#include "ombra/show/slotprober.h"
#include "tarn/discovery/networkresponder.h"
#include "tarn/log/log.h"
#include "tarn/media/playenums.h"

#include <boost/asio/post.hpp>

#include <chrono>
#include <cstdio>
#include <random>

namespace vantrel::ombra {

namespace {

constexpr auto machinePatience = std::chrono::seconds(2); // with a desktop that is busy when it starts
constexpr auto probeBudget = std::chrono::seconds(3); // of a first start; the rest follows while it serves

/// Probes slots whose media nobody has looked at yet, until the time is over.
void probeSome(const std::filesystem::path& media, MediaLibrary& library)
{
    const auto deadline = std::chrono::steady_clock::now() + probeBudget;
    const MediaCollectionMap collections = library.getCollections();
    for (const auto& [index, collection] : collections) {
        for (const auto& [number, slot] : collection.getSlots()) {
            if (std::chrono::steady_clock::now() > deadline)
                return;
            MediaSlot probed = slot;
            if (applyFacts(probeFacts(media, slot.getUrl()), probed))
                library.findCollection(index)->insertMediaSlot(number, probed, true);
        }
    }
}

/// Tells one server that is found at several addresses from several servers.
std::string runId()
{
    std::random_device random;
    char text[17] = {};
    std::snprintf(text, sizeof text, "%08x%08x", random(), random());
    return text;
}

} // namespace

Server::Server(boost::asio::io_context& io, ServerOptions options)
    : m_io(io)
    , m_options(std::move(options))
    , m_scene(makeRef<Scene>())
    , m_seconds(io)
{
}

Server::~Server()
{
    stopEngine(); // before what its sink and its scene feed
}

bool Server::start(std::string* error)
{
    std::error_code code;
    // A show that is there already is worth starting for: its media come with a disk that is mounted late.
    if (!std::filesystem::is_directory(m_options.media, code) &&
        Generations::find(m_options.state).snapshots.empty()) {
        *error = "there is no media folder " + m_options.media.string();
        return false;
    }
    m_options.media = std::filesystem::weakly_canonical(m_options.media, code);
    if (!openShow(error))
        return false;
    m_preview = std::make_unique<PreviewServer>(m_io);
    m_mediaData = std::make_unique<MediaData>(m_io, m_options.media);
    m_rest = std::make_unique<RestApi>(m_io, *m_store, *m_mediaData, *m_showFiles);
    const std::string root(RestApi::root);
    std::vector<std::string> names = m_options.hostNames;
    names.push_back(hostName());
    m_http = std::make_unique<HttpServer>(
        m_io, HttpHandlers{[this](HttpRequest request, const HttpAnswer& answer) {
                               m_rest->handle(std::move(request), answer);
                           },
                           root + "/sse", root + "/events", root + "/show/current", RequestGuard(names)});
    m_link = std::make_unique<LinkServer>(
        m_io, *m_scene,
        LinkServer::Handlers{
            [this](PathView path, const Json& args, std::string* why) { return invoke(path, args, why); },
            [this](Object* object, const PropertyInfo* property) {
                propertyWritten(object, property, true);
            }});
    if (m_options.simulateOutputs)
        simulateOutputs();
    if (!openPorts(error))
        return false;
    m_out = std::make_unique<ProgramOut>(m_io, m_options, *m_scene, *m_outputs, *m_notices);
    startEngine();
    countSeconds();
    m_autoStart = std::make_unique<AutoStart>(*m_store, *m_settings, *m_showFiles, *m_currentShow);
    m_autoStart->begin(m_positions->stood(m_store->settings()));
    m_teller = std::make_unique<EventTeller>(
        m_io, [this](const EventTeller::Message& message) { m_http->broadcastStream(message); });
    m_store->addLibraryListener([this](const ShowStore::Difference& difference, bool isAnotherShow) {
        m_engine->libraryChanged(isAnotherShow);
        m_teller->tell(difference, m_store->libraryRevision());
    });
    m_prober = std::make_unique<SlotProber>(m_io, m_options.media, *m_store);
    watchMedia();
    m_prober->probeAll(); // what the first start had no time for, and what came and went meanwhile
    m_store->addLibraryListener(
        [this](const ShowStore::Difference& difference, bool) { m_prober->probeEdited(difference); });
    return true;
}

bool Server::openShow(std::string* error)
{
    m_store = std::make_unique<ShowStore>(m_io, m_options.state);
    const auto makeInitial = [this] {
        Log::write(LogLevel::Info, "vantrel.show", "a new show from " + m_options.media.string());
        MediaLibrary library = makeInitialLibrary(m_options.media);
        probeSome(m_options.media, library);
        return library;
    };
    if (!m_store->open(makeInitial, error))
        return false;
    buildOutputs();
    m_notices = std::make_unique<NoticeBoard>(*m_scene);
    m_notices->set("show", m_store->loadNotice());
    m_store->setTroubleListener([this](const std::string& sentence) {
        m_notices->set("disk", sentence);
        if (sentence.empty() && m_prober)
            m_prober->probeUnsaved();
    });
    m_settings = std::make_unique<SceneSettings>(
        *m_scene, *m_store,
        [this](Object* object, const PropertyInfo* property) { propertyWritten(object, property, false); },
        [this](const std::string& playback, double seconds) {
            std::string ignored; // without media there is nothing to show
            const Path seek(playback + "/methods/seekMedia");
            m_engine->invoke(seek, Json::object({{"mediaPosition", seconds}}), &ignored);
        });
    m_currentShow = std::make_unique<CurrentShow>(m_io, *m_scene, *m_store, *m_settings);
    m_showFiles =
        std::make_unique<ShowFiles>(m_io, ShowFiles::Parts{*m_store, *m_settings, *m_outputs, *m_currentShow},
                                    m_options.state, m_options.media, m_options.copyEach);
    m_positions = std::make_unique<PlayPositions>(m_options.state);
    m_autoSave = std::make_unique<AutoSave>(m_io, *m_showFiles, *m_currentShow, *m_store);
    m_showFiles->setTroubleListener(
        [this](const std::string& sentence) { m_notices->set("show file", sentence); });
    return true;
}

/// A full screen is one of the machine's own; what is known of them comes before what was kept of them.
void Server::buildOutputs()
{
    const bool isReal = m_options.screen == ServerOptions::Screen::Full;
    m_outputs = std::make_unique<Outputs>(*m_scene, isReal ? Outputs::Kind::Real : Outputs::Kind::Simulated);
    m_outputs->build();
    setProperty(*m_scene, m_scene->findObject("/device/channels/0/program"), "audioOffset",
                m_options.soundOffset);
    if (!isReal)
        return;
    m_machine = std::make_unique<MachineOutputs>(drmRoot, m_options.state / "screen-modes.json");
    m_machine->setListener([this](const MachineOutputs::Connectors& connectors) {
        boost::asio::post(m_io, [this, connectors] {
            m_outputs->follow(connectors);
            if (m_out)
                m_out->follow();
        });
    });
    m_outputs->setModeSetter(
        [this](const std::string& connector, const VideoTiming& mode, const VideoOutput::ModeAnswer& answer) {
            m_machine->setMode(connector, mode, [this, answer](const std::string& why) {
                boost::asio::post(m_io, [answer, why] { answer(why); });
            });
        });
    m_outputs->follow(m_machine->first(machinePatience));
}

bool Server::openPorts(std::string* error)
{
    if (!m_http->listen(m_options.bind, m_options.httpPort, error) ||
        !m_link->listen(m_options.bind, m_options.linkPort, error) ||
        !m_preview->listen(m_options.bind, m_options.previewPort, error) || !openFiles(error))
        return false;
    if (m_options.discovery) {
        m_responder = std::make_unique<NetworkResponder>(m_io, [this, id = runId()] {
            discovery::Attributes attributes = programAttributes(*m_scene, m_store->library());
            attributes.insert({{"name", hostName()},
                               {"version", versionText()},
                               {"id", id},
                               {"link", std::to_string(m_link->port())}});
            return attributes;
        });
        m_responder->start(m_options.bind);
    }
    return true;
}

bool Server::openFiles(std::string* error)
{
    FtpCredentials credentials;
    if (!credentials.read(m_options.state / "credentials.json", error))
        return false;
    m_files = std::make_unique<FtpService>(
        m_io, m_options.media, std::move(credentials),
        [this](const std::string& sentence) { m_notices->set("files", sentence); });
    return m_files->listen(m_options.bind, m_options.ftpPort, error);
}

void Server::startEngine()
{
    stopEngine(); // never two at once
    m_engine = std::make_unique<Engine>(m_io, *m_scene, m_store->library(), EngineConfig{m_options.media});
    m_out->connect(*m_engine);
    m_engine->setPreviewSink(
        [preview = m_preview.get()](PreviewFrame picture) { preview->show(std::move(picture)); },
        [preview = m_preview.get()] { return preview->hasReaders(); });
    m_engine->setLevelSink([preview = m_preview.get()](const PreviewLevels& levels) {
        PreviewFrame frame{levels.source, Frame(levels.levels.toSurface().get(), levels.timeNs)};
        frame.frame.setStreamIndex(levels.stream);
        preview->show(std::move(frame));
    });
}

void Server::stopEngine()
{
    if (m_out)
        m_out->disconnect();
    m_engine.reset();
}

void Server::watchMedia()
{
    m_watcher = std::make_unique<MediaWatcher>(
        m_io, m_options.media, [this](MediaWatcher::Event event, const std::string& url) {
            const char* type = event == MediaWatcher::Event::Added     ? "metadata-added"
                               : event == MediaWatcher::Event::Changed ? "metadata-changed"
                                                                       : "metadata-removed";
            // Who asked while it was being written holds what half a file says.
            if (event == MediaWatcher::Event::Added)
                m_http->broadcastSocket(
                    Json::object({{"type", "metadata-changed"}, {"mediaUrl", url}}).toString());
            m_http->broadcastSocket(Json::object({{"type", type}, {"mediaUrl", url}}).toString());
            m_prober->probeAgain(url, event == MediaWatcher::Event::Changed);
        });
    std::string why;
    if (!m_watcher->start(&why))
        Log::write(LogLevel::Warning, "vantrel.show", why);
    m_watcher->setFolderListener([this](MediaWatcher::Folder folder) { tellFolder(folder); });
}

void Server::tellFolder(MediaWatcher::Folder folder)
{
    std::string sentence;
    if (folder == MediaWatcher::Folder::Gone)
        sentence = "The media folder " + m_options.media.string() +
                   " is not there. Mount its disk or make it again: what comes back can be played at once.";
    else if (folder == MediaWatcher::Folder::Empty && !m_store->library().getCollections().empty())
        sentence = "The media folder " + m_options.media.string() +
                   " is empty. Mount its disk or copy the media there again.";
    m_notices->set("media", sentence);
}

bool Server::invoke(PathView methodPath, const Json& args, std::string* error)
{
    if (const auto done = m_outputs->invoke(methodPath, args, error)) {
        m_out->follow();
        return *done;
    }
    const ScenePointer at = m_scene->find(methodPath);
    if (at.deref() && at.method() && at.deref()->getTypeName() == "ShowConfiguration")
        return m_showFiles->invoke(at.method()->name, args, error);
    if (at.deref() && at.method() && at.deref()->getTypeName() == "System" && at.method()->name == "reboot") {
        restartPlayers();
        return true;
    }
    const bool isDone = m_engine->invoke(methodPath, args, error);
    m_out->follow();
    return isDone;
}

/// What "reboot" means to this machine: everything stops, and the players start anew with the media that they
/// had, playing or paused, where they were.
void Server::restartPlayers()
{
    Log::write(LogLevel::Info, "vantrel.server", "restarting the players");
    const Json before = m_settings->current();
    const Positions playing = positionsOf(*m_scene);
    stopEngine();
    for (const char* side : {"preview", "program"})
        m_scene->replaceProperty(
            m_scene->find("/device/channels/0/" + std::string(side) + "/properties/state"),
            Variant::from(SourcePlayState::Stop));
    startEngine();
    m_settings->apply(before, {"playback", "audio"}, playing);
}

void Server::propertyWritten(Object* object, const PropertyInfo* property, bool isByClient)
{
    m_outputs->propertyWritten(object, property, isByClient);
    if (m_out)
        m_out->follow();
    if (m_engine)
        m_engine->propertyWritten(object, property);
}

void Server::countSeconds()
{
    m_seconds.expires_after(std::chrono::seconds(1));
    m_seconds.async_wait([this](boost::system::error_code code) {
        if (code)
            return;
        m_outputs->secondPassed();
        m_out->tellFigures();
        m_positions->keep(*m_scene);
        countSeconds();
    });
}

/// What a hand at the connectors does, for tests: a display is plugged in, its own or another, or pulled out.
void Server::simulateOutputs()
{
    for (const int output : {0, 1}) {
        m_rest->addRoute("/simulate/outputs/" + std::to_string(output), "POST",
                         [this, output](const HttpRequest& request, const HttpAnswer& answer) {
                             Json body;
                             std::string why;
                             if (!Json::parseString(request.body, body, &why))
                                 return answer(httpError(400, why));
                             const std::string edid(body.get("edid").stringView());
                             const std::string plugged = !body.get("connected").asBool() ? std::string()
                                                         : edid.empty() ? Outputs::ownEdid(output)
                                                                        : edid;
                             if (!m_outputs->plug(output, plugged, &why))
                                 return answer(httpError(422, why));
                             answer({.body = "{}"});
                         });
    }
}

unsigned short Server::httpPort() const
{
    return m_http->port();
}

unsigned short Server::linkPort() const
{
    return m_link->port();
}

unsigned short Server::previewPort() const
{
    return m_preview->port();
}

unsigned short Server::ftpPort() const
{
    return m_files->port();
}

} // namespace vantrel::ombra

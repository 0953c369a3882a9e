#pragma once

#include "ombra/base/asidethread.h"
#include "ombra/base/listener.h"
#include "ombra/link/linkclient.h"
#include "tarn/scene/scene.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// The server's end of the scene link, for any number of clients: answers gets with snapshots, applies what
/// clients may write, calls methods, and sends every change of the scene to all clients but the one that made
/// it. The changes of one turn of the loop go as one frame; where nothing changes, an empty one goes at least
/// every 250 ms, so that clients can tell a quiet server from one that hangs. Large frames are parsed
/// aside and applied in slices, so that nobody waits for another's. One thread, that of the io_context and
/// the scene.
class LinkServer
{
public:
    struct Handlers
    {
        /// Calls a method; false, with the reason, when that failed.
        std::function<bool(PathView methodPath, const Json& args, std::string* error)> invoke;
        /// A client wrote a property; the scene holds the value already.
        std::function<void(Object* object, const PropertyInfo* property)> written;
    };

    static constexpr std::size_t operationsPerFrame = 1000; // of a snapshot

    LinkServer(boost::asio::io_context& io, Scene& scene, Handlers handlers);
    ~LinkServer();
    LinkServer(const LinkServer&) = delete;
    LinkServer& operator=(const LinkServer&) = delete;

    /// False, with the reason, when the port is not to be had. Port 0 takes a free one.
    bool listen(const boost::asio::ip::address& address, unsigned short port, std::string* error);
    unsigned short port() const;

private:
    bool accept(boost::asio::ip::tcp::socket socket);
    void handle(LinkClient& client, const PatchOp& op);
    void answerGet(LinkClient& client, PathView path);
    void writeProperty(LinkClient& client, const PatchOp& op);
    void restructure(LinkClient& client, const PatchOp& op);
    void refuse(LinkClient& client, const PatchOp& op, const std::string& why);
    void sendBack(LinkClient& client, const Path& path, bool missing);
    void settleCrossed(LinkClient& client);

    void onSceneChange(int count, const SceneChange* changes);
    void publish(const PatchOp& op);
    void scheduleFlush();
    void showLife();

    boost::asio::io_context& m_io;
    Scene& m_scene;
    Handlers m_handlers;
    Listener m_listener;
    PeerLimit m_room{64, 32};
    std::shared_ptr<const LinkClient::Handlers> m_clientHandlers;
    std::vector<std::shared_ptr<LinkClient>> m_clients;
    LinkClient* m_origin = nullptr; // whose operation is being applied
    boost::asio::steady_timer m_life;
    bool m_flushPosted = false;
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
    Scene::ChangeCallback m_callback;
    AsideThread m_reader; // parses what is large
};

} // namespace vantrel::ombra

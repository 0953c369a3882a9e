#pragma once

#include "ombra/base/listener.h"
#include "ombra/base/peerlimit.h"
#include "ombra/rest/http.h"
#include "ombra/rest/requestguard.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace vantrel::ombra {

class BroadcastHub;
class HeaderQueue;
struct HttpLimits;

/// What the server does with what it reads.
struct HttpHandlers
{
    std::function<void(HttpRequest, HttpAnswer)> request;
    std::string streamPath;                       // a GET of it opens an event stream
    std::string socketPath;                       // a WebSocket may be opened here
    std::string showPath;                         // takes bodies as large as whole shows
    RequestGuard guard;                           // of all of these
    std::chrono::milliseconds headerTime{10'000}; // to send the header of a request, once it has begun
};

/// An HTTP/1.1 server with event streams and WebSockets. Each second an event stream gets a comment, so that
/// its reader can tell a quiet server from one that hangs. Sizes and times are limited, so that nothing
/// outside can hold it up: 16 KiB of header in 10 s, 64 MiB of body in 60 s (a show 272), 320 MiB of all
/// bodies together, 64 MiB of unread events, 512 connections, 256 of one peer, of which 64 have sent no
/// header and 32 are streams or WebSockets. One thread, that of the io_context.
class HttpServer
{
public:
    HttpServer(boost::asio::io_context& io, HttpHandlers handlers);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// False, with the reason, when the port is not to be had. Port 0 takes a free one.
    bool listen(const boost::asio::ip::address& address, unsigned short port, std::string* error);
    unsigned short port() const;

    /// To all open event streams: a whole message with its empty line.
    void broadcastStream(const std::shared_ptr<const std::string>& message);
    /// To all open WebSockets: one text message.
    void broadcastSocket(const std::string& message);

private:
    bool accept(boost::asio::ip::tcp::socket socket);
    void showLife();

    boost::asio::io_context& m_io;
    Listener m_listener;
    std::shared_ptr<HttpHandlers> m_handlers; // shared with the sessions, which may outlive this
    std::shared_ptr<BroadcastHub> m_streams;
    std::shared_ptr<BroadcastHub> m_sockets;
    std::shared_ptr<HeaderQueue> m_headers;
    PeerLimit m_sessions{512, 256};
    std::shared_ptr<HttpLimits> m_limits;
    boost::asio::steady_timer m_life;
    std::shared_ptr<int> m_alive = std::make_shared<int>(0); // the timer's waits hold it weakly
};

} // namespace vantrel::ombra

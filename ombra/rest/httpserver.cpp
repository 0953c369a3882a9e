#include "ombra/rest/httpserver.h"

#include "ombra/rest/broadcasthub.h"
#include "ombra/rest/headerqueue.h"
#include "ombra/rest/httpsession.h"

#include <chrono>

namespace vantrel::ombra {

namespace {

constexpr std::chrono::seconds lifeTick{1};

} // namespace

HttpServer::HttpServer(boost::asio::io_context& io, HttpHandlers handlers)
    : m_io(io)
    , m_listener(io, "vantrel.rest",
                 [this](boost::asio::ip::tcp::socket socket) { return accept(std::move(socket)); })
    , m_handlers(std::make_shared<HttpHandlers>(std::move(handlers)))
    , m_streams(std::make_shared<BroadcastHub>())
    , m_sockets(std::make_shared<BroadcastHub>())
    , m_headers(std::make_shared<HeaderQueue>())
    , m_limits(std::make_shared<HttpLimits>())
    , m_life(io)
{
    showLife();
}

HttpServer::~HttpServer()
{
    m_handlers->request = [](const HttpRequest&, const HttpAnswer& answer) {
        answer(httpError(503, "the server is ending"));
    };
}

bool HttpServer::listen(const boost::asio::ip::address& address, unsigned short port, std::string* error)
{
    return m_listener.listen(address, port, error);
}

unsigned short HttpServer::port() const
{
    return m_listener.port();
}

bool HttpServer::accept(boost::asio::ip::tcp::socket socket)
{
    boost::system::error_code code;
    PeerLimit::Place room = m_sessions.enter(socket.remote_endpoint(code).address());
    if (!room)
        return false;
    startHttpSession(std::move(socket), m_handlers, m_streams, m_sockets, m_headers, m_limits,
                     std::move(room));
    return true;
}

void HttpServer::broadcastStream(const std::shared_ptr<const std::string>& message)
{
    m_streams->broadcast(message);
}

void HttpServer::showLife()
{
    broadcastStream(std::make_shared<const std::string>(":\n\n")); // a comment: no message
    m_life.expires_after(lifeTick);
    m_life.async_wait([this, alive = std::weak_ptr(m_alive)](boost::system::error_code code) {
        if (!code && !alive.expired())
            showLife();
    });
}

void HttpServer::broadcastSocket(const std::string& message)
{
    m_sockets->broadcast(std::make_shared<const std::string>(message));
}

} // namespace vantrel::ombra

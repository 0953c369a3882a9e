#include "ombra/rest/httpserver.h"

#include "ombra/rest/broadcasthub.h"
#include "ombra/rest/httpsession.h"
#include "ombra/serverlog.h"
#include "tarn/net/tcplink.h"

#include <chrono>

namespace vantrel::ombra {

namespace {

constexpr int maxSessions = 512;

}

HttpServer::HttpServer(boost::asio::io_context& io, HttpHandlers handlers)
    : m_io(io)
    , m_acceptor(io)
    , m_retry(io)
    , m_handlers(std::make_shared<HttpHandlers>(std::move(handlers)))
    , m_streams(std::make_shared<BroadcastHub>())
    , m_sockets(std::make_shared<BroadcastHub>())
{
}

HttpServer::~HttpServer()
{
    m_handlers->request = [](const HttpRequest&, const HttpAnswer& answer) {
        answer(httpError(503, "the server is ending"));
    };
}

bool HttpServer::listen(const boost::asio::ip::address& address, unsigned short port, std::string* error)
{
    const boost::asio::ip::tcp::endpoint endpoint(address, port);
    boost::system::error_code code;
    m_acceptor.open(endpoint.protocol(), code);
    if (!code)
        m_acceptor.set_option(boost::asio::socket_base::reuse_address(true), code);
    if (!code)
        m_acceptor.bind(endpoint, code);
    if (!code)
        m_acceptor.listen(boost::asio::socket_base::max_listen_connections, code);
    if (code) {
        *error = "cannot listen on " + address.to_string() + " port " + std::to_string(port) + ": " +
                 code.message();
        return false;
    }
    accept();
    return true;
}

unsigned short HttpServer::port() const
{
    boost::system::error_code code;
    return m_acceptor.local_endpoint(code).port();
}

void HttpServer::accept()
{
    m_acceptor.async_accept([this](boost::system::error_code code, boost::asio::ip::tcp::socket socket) {
        if (code == boost::asio::error::operation_aborted)
            return;
        if (code) {
            // Out of descriptors, most likely: wait until some are free again.
            logLine(LogLevel::Warning, "vantrel.rest", "cannot accept a connection: " + code.message());
            m_retry.expires_after(std::chrono::milliseconds(200));
            m_retry.async_wait([this](boost::system::error_code waited) {
                if (!waited)
                    accept();
            });
            return;
        }
        if (*m_openSessions >= maxSessions) {
            logLine(LogLevel::Warning, "vantrel.rest", "too many connections: refusing one");
        } else {
            setLinkOptions(socket);
            startHttpSession(std::move(socket), m_handlers, m_streams, m_sockets, m_openSessions);
        }
        accept();
    });
}

void HttpServer::broadcastStream(const std::string& message)
{
    m_streams->broadcast(message);
}

void HttpServer::broadcastSocket(const std::string& message)
{
    m_sockets->broadcast(message);
}

} // namespace vantrel::ombra

#include "tarn/net/tcplink.h"

#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace vantrel {

namespace asio = boost::asio;
using boost::system::error_code;

boost::system::error_code TcpLink::connect(const Endpoint& endpoint, unsigned int timeoutMs)
{
    error_code result = asio::error::operation_aborted;
    bool isLate = false;
    asio::steady_timer deadline(m_loop);
    if (timeoutMs > 0) {
        deadline.expires_after(std::chrono::milliseconds(timeoutMs));
        deadline.async_wait([&](const error_code& error) {
            if (!error) {
                isLate = true;
                closeHere();
            }
        });
    }
    m_socket.async_connect(endpoint, [&](const error_code& error) {
        result = error;
        deadline.cancel();
    });
    m_loop.run();
    m_loop.restart();
    if (isLate)
        return {ETIMEDOUT, boost::system::system_category()};
    if (!result && m_isClosed)
        result = asio::error::operation_aborted;
    if (!result) {
        setLinkOptions(m_socket);
        m_isOpen = true;
    }
    return result;
}

void TcpLink::run()
{
    m_runs.emplace(m_loop.get_executor());
    m_loop.run();
    m_isOpen = false;
}

void TcpLink::close()
{
    m_isClosed = true;
    m_isOpen = false;
    post([this] { closeHere(); });
}

void TcpLink::closeHere()
{
    error_code ignored;
    m_socket.close(ignored);
    m_runs.reset();
}

void setLinkOptions(asio::ip::tcp::socket& socket)
{
    error_code ignored;
    socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    socket.set_option(asio::socket_base::keep_alive(true), ignored);
    const auto set = [&](int option, int value) {
        ::setsockopt(socket.native_handle(), IPPROTO_TCP, option, &value, sizeof value);
    };
    set(TCP_KEEPIDLE, 4); // seconds; with three probes two seconds apart that makes ten
    set(TCP_KEEPINTVL, 2);
    set(TCP_KEEPCNT, 3);
    set(TCP_USER_TIMEOUT, 10'000); // milliseconds
}

} // namespace vantrel

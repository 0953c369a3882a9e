#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>

#include <atomic>
#include <optional>

namespace vantrel {

/// One TCP connection and the loop that serves it, from connect() to its end; a new connection is a new link.
/// One worker thread connects and runs; close() and post() may come from any thread that holds a reference.
class TcpLink
{
public:
    using Endpoint = boost::asio::ip::tcp::endpoint;

    /// timeoutMs 0 means the system's own limit. Gives ETIMEDOUT after the time and ECANCELED after close().
    boost::system::error_code connect(const Endpoint& endpoint, unsigned int timeoutMs);
    /// Runs what was started on the socket until close().
    void run();
    void close();
    bool isOpen() const noexcept { return m_isOpen; }
    /// Runs on the worker thread inside run(); dropped without running when the link ends before.
    template <typename F>
    void post(F&& f);

    boost::asio::ip::tcp::socket& socket() noexcept { return m_socket; }

private:
    void closeHere();

    boost::asio::io_context m_loop{1};
    boost::asio::ip::tcp::socket m_socket{m_loop};
    std::optional<boost::asio::executor_work_guard<boost::asio::io_context::executor_type>> m_runs;
    std::atomic<bool> m_isOpen{false};
    std::atomic<bool> m_isClosed{false}; // for good
};

/// Notices a pulled cable within about ten seconds, and sends small messages at once.
void setLinkOptions(boost::asio::ip::tcp::socket& socket);

template <typename F>
void TcpLink::post(F&& f)
{
    boost::asio::post(m_loop, std::forward<F>(f));
}

} // namespace vantrel

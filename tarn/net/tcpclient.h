#pragma once

#include <boost/asio/ip/tcp.hpp>

#include <memory>

namespace vantrel {

class TcpLink;

/// A blocking TCP connection that any thread may end. connect() and the reader belong to one worker thread.
class TcpClient
{
public:
    TcpClient();
    virtual ~TcpClient();

    /// Opens the connection; timeoutMs 0 means the system's own limit. False on failure, with the system's
    /// error code in error where that is given (111: refused). Keepalive and a user time-out of ten seconds
    /// are turned on. An older connection ends.
    bool connect(const boost::asio::ip::tcp::endpoint& endpoint, unsigned int timeoutMs, int* error);
    /// Ends the connection, or a connect in progress, from any thread, without waiting.
    void disconnect();

protected:
    /// The connection of the last connect(), open or not; null before the first.
    std::shared_ptr<TcpLink> link() const;

    struct Impl;
    std::unique_ptr<Impl> m_tcp;
};

} // namespace vantrel

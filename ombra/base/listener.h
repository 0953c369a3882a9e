#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>
#include <string>

namespace vantrel::ombra {

/// A listening port: gives each new connection, with the options of a link set, to its owner's function.
/// Lives on the thread of its io_context, and must end before what the function names.
class Listener
{
public:
    /// Takes one connection; false refuses it, which is logged.
    using Accepted = std::function<bool(boost::asio::ip::tcp::socket socket)>;

    /// module names the owner in the log: "vantrel.link".
    Listener(boost::asio::io_context& io, const char* module, Accepted accepted);

    /// Port 0 picks a free one. False, and a sentence in error, when the address cannot be had within
    /// takePort()'s patience.
    bool listen(const boost::asio::ip::address& address, unsigned short port, std::string* error);
    /// The port in use; 0 before listen().
    unsigned short port() const;

private:
    void accept();

    const char* m_module;
    Accepted m_accepted;
    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::steady_timer m_retry;
};

} // namespace vantrel::ombra

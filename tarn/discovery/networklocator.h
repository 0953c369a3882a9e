#pragma once

#include <boost/asio/ip/udp.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vantrel {

/// A server that answered: where it is, and what it says of itself ("name", "version").
struct NetworkPeer
{
    std::string address;
    std::map<std::string, std::string> attributes;

    friend bool operator==(const NetworkPeer&, const NetworkPeer&) = default;
};

/// Where searches and answers meet: datagrams of at most 1400 bytes of JSON. A search is {"locate": 1} to the
/// group, the answer goes to the one who asks, as {"peer": {"name": ..., "version": ...}}; the address is the
/// sender's.
namespace discovery {

inline constexpr const char* group = "239.255.110.60";
inline constexpr unsigned short port = 11062;

} // namespace discovery

/// Finds the servers of the local networks, the loopback interface included. One thread.
class NetworkLocator
{
public:
    explicit NetworkLocator(unsigned short port = discovery::port)
        : m_port(port)
    {
    }

    /// Asks on all interfaces and collects answers for the whole time. False when no search could be sent.
    bool findPeers(unsigned int timeoutMs);
    /// Those that answered the last search, by address.
    std::vector<NetworkPeer> currentPeers() const;

private:
    unsigned short m_port;
    std::vector<NetworkPeer> m_peers;
};

/// The server's side: answers searches on the interface that the server is bound to. Lives on the loop's
/// thread.
class NetworkResponder
{
public:
    NetworkResponder(boost::asio::io_context& loop, std::map<std::string, std::string> attributes);
    ~NetworkResponder();

    /// With the unspecified address it answers on all interfaces. False, with a log line, when the port is
    /// not to be had.
    bool start(const boost::asio::ip::address& bound, unsigned short port = discovery::port);

private:
    struct Impl;
    std::shared_ptr<Impl> m_impl;
};

} // namespace vantrel

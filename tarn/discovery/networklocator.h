#pragma once

#include "tarn/discovery/searchtext.h"

#include <boost/asio/ip/address.hpp>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vantrel {

/// A server that answered: where it is, and what it says of itself ("name", "version", "id", "link",
/// "program", "state").
struct NetworkPeer
{
    std::string address;
    discovery::Attributes attributes;

    friend bool operator==(const NetworkPeer&, const NetworkPeer&) = default;
};

/// Finds the servers of the local networks, the loopback interface included. One thread.
class NetworkLocator
{
public:
    /// Told every 20 ms of a search: whether somebody new is among the peers. False ends the search.
    using Progress = std::function<bool(bool isNews)>;

    explicit NetworkLocator(unsigned short port = discovery::port)
        : m_port(port)
    {
    }

    /// Asks on all interfaces, four times, and collects answers for the whole time. False when no search
    /// could be sent, or when it was ended early.
    bool findPeers(unsigned int timeoutMs, const Progress& progress = {});
    /// Those that answered the last search; while one runs, also those that have answered it by now. A server
    /// with an "id" that answers from several addresses is one peer, at the one that is reached best.
    std::vector<NetworkPeer> currentPeers() const;

private:
    class Search;
    struct Heard
    {
        NetworkPeer peer;
        unsigned int since = 0;  // the first search that it answered
        unsigned int search = 0; // the last one
    };
    // One machine may run several servers, on ports of their own ("link"). An id does not tell them apart:
    // one that was started again has another.
    using Key = std::pair<boost::asio::ip::address, std::string>;

    bool hear(const boost::asio::ip::address& sender, std::string_view datagram);
    bool isWorthReading(const boost::asio::ip::address& sender) const;
    bool makeRoom();

    unsigned short m_port;
    unsigned int m_search = 0;
    unsigned int m_readAnswers = 0;  // in this search
    std::size_t m_answeredPeers = 0; // likewise
    std::map<Key, Heard> m_heard;
};

} // namespace vantrel

#pragma once

#include <boost/asio/ip/address.hpp>

#include <deque>
#include <functional>
#include <map>
#include <memory>

namespace vantrel::ombra {

/// How many connections a server keeps open, in all and of one peer, so that one leaves room for others.
/// Where all are taken, the oldest of the peer that has most gives way to a peer that has fewer: silent
/// connections keep nobody out for good. One thread.
class PeerLimit
{
public:
    /// One connection's. Its owner says how it ends when it has to give way; unsaid, it stays.
    struct Seat
    {
        std::function<void()> giveWay;
    };
    /// Leaves the seat when the last copy goes, also after the limit itself.
    using Place = std::shared_ptr<Seat>;

    PeerLimit(std::size_t inAll, std::size_t ofPeer)
        : m_inAll(inAll)
        , m_ofPeer(ofPeer)
    {
    }

    /// Null when there is no room for this peer.
    Place enter(const boost::asio::ip::address& peer);

private:
    using Seats = std::deque<std::weak_ptr<Seat>>; // the oldest first

    bool makeRoom(std::size_t forSmallerThan);

    std::size_t m_inAll;
    std::size_t m_ofPeer;
    std::map<boost::asio::ip::address, Seats> m_peers;
};

} // namespace vantrel::ombra

#pragma once

#include <boost/asio/ip/address.hpp>

#include <map>
#include <memory>

namespace vantrel::ombra {

/// How many connections a server keeps open, in all and of one peer, so that one leaves room for others. One
/// thread.
class PeerLimit
{
public:
    /// One connection's; leaves it when the last copy goes, also after the limit itself.
    using Place = std::shared_ptr<const void>;

    PeerLimit(int inAll, int ofPeer)
        : m_inAll(inAll)
        , m_ofPeer(ofPeer)
    {
    }

    /// Null when there is no room for this peer.
    Place enter(const boost::asio::ip::address& peer)
    {
        const auto present = m_peers->find(peer);
        if (m_open.use_count() > m_inAll || (present != m_peers->end() && present->second >= m_ofPeer))
            return nullptr;
        ++(*m_peers)[peer];
        return {m_open.get(), [peers = m_peers, open = m_open, peer](const int*) {
                    if (--(*peers)[peer] <= 0)
                        peers->erase(peer);
                }};
    }

private:
    int m_inAll;
    int m_ofPeer;
    std::shared_ptr<std::map<boost::asio::ip::address, int>> m_peers =
        std::make_shared<std::map<boost::asio::ip::address, int>>();
    std::shared_ptr<int> m_open = std::make_shared<int>(0); // each place holds it
};

} // namespace vantrel::ombra

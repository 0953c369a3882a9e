#include "ombra/base/peerlimit.h"

#include <algorithm>
#include <numeric>

namespace vantrel::ombra {

PeerLimit::Place PeerLimit::enter(const boost::asio::ip::address& peer)
{
    for (auto& [ignored, seats] : m_peers)
        std::erase_if(seats, [](const auto& seat) { return seat.expired(); });
    std::erase_if(m_peers, [](const auto& item) { return item.second.empty(); });
    const auto present = m_peers.find(peer);
    const std::size_t own = present == m_peers.end() ? 0 : present->second.size();
    const std::size_t all =
        std::accumulate(m_peers.begin(), m_peers.end(), std::size_t{0},
                        [](std::size_t sum, const auto& item) { return sum + item.second.size(); });
    if (own >= m_ofPeer || (all >= m_inAll && !makeRoom(own + 1)))
        return nullptr;
    auto place = std::make_shared<Seat>();
    m_peers[peer].push_back(place);
    return place;
}

/// Ends the oldest connection of the fullest peer; false where that one has no more than the newcomer would.
bool PeerLimit::makeRoom(std::size_t forSmallerThan)
{
    const auto fullest =
        std::ranges::max_element(m_peers, {}, [](const auto& item) { return item.second.size(); });
    if (fullest == m_peers.end() || fullest->second.size() <= forSmallerThan)
        return false;
    const Place oldest = fullest->second.front().lock();
    if (!oldest || !oldest->giveWay)
        return false;
    fullest->second.pop_front();
    const auto giveWay = oldest->giveWay; // it may take itself away
    giveWay();
    return true;
}

} // namespace vantrel::ombra

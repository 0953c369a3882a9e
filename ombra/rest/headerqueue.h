#pragma once

#include <boost/asio/ip/address.hpp>

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>

namespace vantrel::ombra {

/// Connections that have not sent the header of a request yet, by peer. One peer may have so many; the oldest
/// makes room for a new one, so that whoever comes with a whole header gets in, whatever else waits.
class HeaderQueue
{
public:
    /// One place in the queue; leaves it when it goes.
    using Place = std::shared_ptr<const std::function<void()>>;

    static constexpr std::size_t longest = 64; // of one peer

    /// giveWay is called when the place is needed for another.
    Place join(const boost::asio::ip::address& peer, std::function<void()> giveWay)
    {
        auto& places = m_peers[peer];
        std::erase_if(places, [](const auto& weak) { return weak.expired(); });
        if (places.size() >= longest) {
            const Place oldest = places.front().lock();
            places.pop_front();
            (*oldest)();
        }
        const auto place = std::make_shared<const std::function<void()>>(std::move(giveWay));
        places.push_back(place);
        if (m_peers.size() > mostPeers)
            std::erase_if(m_peers, [](const auto& item) {
                return std::ranges::all_of(item.second, [](const auto& weak) { return weak.expired(); });
            });
        return place;
    }

private:
    static constexpr std::size_t mostPeers = 1024;

    std::map<boost::asio::ip::address, std::deque<std::weak_ptr<const std::function<void()>>>> m_peers;
};

} // namespace vantrel::ombra

#include "tarn/discovery/networklocator.h"

#include "tarn/discovery/networkinterfaces.h"
#include "tarn/json/json.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/multicast.hpp>

#include <array>
#include <chrono>
#include <list>

namespace vantrel {

namespace asio = boost::asio;
using asio::ip::udp;
using boost::system::error_code;

namespace {

constexpr std::size_t maxDatagram = 1400;
constexpr std::size_t maxPeers = 256;

/// One socket that asks on one interface and hears the answers.
class Search
{
public:
    using Peers = std::map<std::string, NetworkPeer>;

    Search(asio::io_context& loop, Peers& peers)
        : m_socket(loop)
        , m_peers(peers)
    {
    }

    bool start(const asio::ip::address_v4& through, unsigned short port)
    {
        const std::string question = Json::object({{"locate", Json(1)}}).toString();
        error_code error;
        m_socket.open(udp::v4(), error);
        if (!error)
            m_socket.bind({through, 0}, error);
        if (!error)
            m_socket.set_option(asio::ip::multicast::outbound_interface(through), error);
        if (!error)
            m_socket.set_option(asio::ip::multicast::hops(1), error);
        if (!error)
            m_socket.send_to(asio::buffer(question), {asio::ip::make_address(discovery::group), port}, 0,
                             error);
        if (error)
            return false;
        receive();
        return true;
    }

private:
    void receive()
    {
        m_socket.async_receive_from(asio::buffer(m_buffer), m_sender,
                                    [this](const error_code& error, std::size_t n) {
                                        if (error == asio::error::operation_aborted)
                                            return;
                                        if (!error)
                                            hear({m_buffer.data(), n});
                                        receive();
                                    });
    }

    void hear(std::string_view text)
    {
        Json answer;
        if (!Json::parseString(text, answer))
            return;
        const Json* attributes = answer.find("peer");
        if (!attributes || !attributes->isObject() || m_peers.size() >= maxPeers)
            return;
        NetworkPeer peer{m_sender.address().to_string(), {}};
        attributes->forEachMember([&](std::string_view name, const Json& value) {
            if (value.isString())
                peer.attributes.emplace(name, value.asString());
            return true;
        });
        m_peers.insert_or_assign(peer.address, std::move(peer));
    }

    udp::socket m_socket;
    Peers& m_peers;
    udp::endpoint m_sender;
    std::array<char, maxDatagram> m_buffer{};
};

} // namespace

bool NetworkLocator::findPeers(unsigned int timeoutMs)
{
    asio::io_context loop;
    Search::Peers peers;
    std::list<Search> searches;
    for (const auto& address : interfaceAddresses()) {
        searches.emplace_back(loop, peers);
        if (!searches.back().start(address, m_port))
            searches.pop_back();
    }
    if (searches.empty())
        return false;
    loop.run_for(std::chrono::milliseconds(timeoutMs));
    m_peers.clear();
    for (auto& [address, peer] : peers)
        m_peers.push_back(std::move(peer));
    return true;
}

std::vector<NetworkPeer> NetworkLocator::currentPeers() const
{
    return m_peers;
}

} // namespace vantrel

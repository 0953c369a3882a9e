#include "tarn/discovery/networklocator.h"

#include "tarn/discovery/networkinterfaces.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/multicast.hpp>
#include <boost/asio/ip/udp.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <list>
#include <thread>

namespace vantrel {

namespace asio = boost::asio;
using asio::ip::udp;
using boost::system::error_code;

namespace {

using Clock = std::chrono::steady_clock;

// Answers are read by the round: a flood of them then wakes nobody up for each, and what goes beyond the
// socket's buffer the kernel throws away.
constexpr std::chrono::milliseconds roundTime{20};
constexpr std::chrono::milliseconds newsPause{100};
constexpr int socketBuffer = 1 << 20;
constexpr int maxOfRound = 512;
constexpr int questions = 4; // a datagram may be lost, and a server may start just after one
constexpr unsigned int maxAnswers = 4096;
constexpr std::size_t maxPeers = 256;
constexpr std::ptrdiff_t maxOfAddress = 64;

/// Of several addresses of a server the lowest is taken: one that needs no network, then one that is easy to
/// read and to type.
int rank(const asio::ip::address& address)
{
    if (address.is_loopback())
        return address.is_v4() ? 0 : 1;
    if (address.is_v4())
        return 2;
    return address.to_v6().is_link_local() ? 4 : 3;
}

std::string attribute(const discovery::Attributes& attributes, const char* name)
{
    const auto found = attributes.find(name);
    return found == attributes.end() ? std::string() : found->second;
}

} // namespace

/// One socket that asks on one interface and hears the answers.
class NetworkLocator::Search
{
public:
    explicit Search(asio::io_context& loop)
        : m_socket(loop)
    {
    }

    bool open(const NetworkInterface& through, unsigned short port)
    {
        const bool isV4 = through.address.is_v4();
        error_code error;
        m_socket.open(isV4 ? udp::v4() : udp::v6(), error);
        if (!error)
            m_socket.bind({through.address, 0}, error);
        if (!error && isV4)
            m_socket.set_option(asio::ip::multicast::outbound_interface(through.address.to_v4()), error);
        if (!error)
            m_socket.set_option(asio::ip::multicast::hops(1), error);
        if (!error)
            m_socket.non_blocking(true, error);
        if (error)
            return false;
        m_socket.set_option(asio::socket_base::receive_buffer_size(socketBuffer), error); // as much as it may
        m_target = {groupFor(through), port};
        return true;
    }

    bool ask()
    {
        error_code error;
        m_socket.send_to(asio::buffer(discovery::questionText()), m_target, 0, error);
        return !error;
    }

    /// Hands each waiting answer to hear(sender, datagram); true when one of them was news to it.
    template <typename Hear>
    bool collect(const Hear& hear)
    {
        bool isNews = false;
        for (int count = 0; count < maxOfRound; ++count) {
            udp::endpoint sender;
            error_code error;
            const std::size_t size = m_socket.receive_from(asio::buffer(m_buffer), sender, 0, error);
            if (error == asio::error::would_block)
                break;
            if (!error) // else it tells of a question that nobody heard
                isNews = hear(sender.address(), std::string_view(m_buffer.data(), size)) || isNews;
        }
        return isNews;
    }

private:
    /// The loopback interface takes part in no group of IPv6: there the server itself is asked.
    static asio::ip::address groupFor(const NetworkInterface& through)
    {
        if (through.address.is_v4())
            return asio::ip::make_address(discovery::group);
        if (through.address.is_loopback())
            return through.address;
        asio::ip::address_v6 group = asio::ip::make_address_v6(discovery::group6);
        group.scope_id(through.index);
        return group;
    }

    udp::socket m_socket;
    udp::endpoint m_target;
    std::array<char, discovery::maxDatagram + 1> m_buffer{}; // what is longer is seen to be
};

bool NetworkLocator::findPeers(unsigned int timeoutMs, const Progress& progress)
{
    asio::io_context loop;
    std::list<Search> searches;
    for (const NetworkInterface& through : networkInterfaces()) {
        searches.emplace_back(loop);
        if (!searches.back().open(through, m_port) || !searches.back().ask())
            searches.pop_back();
    }
    if (searches.empty())
        return false;
    ++m_search;
    m_readAnswers = 0;
    m_answeredPeers = 0;
    const std::chrono::milliseconds whole(timeoutMs);
    const auto begin = Clock::now();
    auto nextNews = begin;
    int asked = 1;
    bool isNews = false;
    for (auto now = begin; now < begin + whole; now = Clock::now()) {
        if (now >= begin + asked * whole / questions) {
            std::ranges::for_each(searches, &Search::ask);
            ++asked;
        }
        std::this_thread::sleep_for(std::min<Clock::duration>(roundTime, begin + whole - now));
        for (Search& search : searches)
            isNews = search.collect(std::bind_front(&NetworkLocator::hear, this)) || isNews;
        const bool isTold = isNews && now >= nextNews;
        if (progress && !progress(isTold))
            return false;
        if (isTold) {
            isNews = false;
            nextNews = now + newsPause;
        }
    }
    std::erase_if(m_heard, [this](const auto& entry) { return entry.second.search != m_search; });
    return true;
}

/// True when it is the first answer of that server.
bool NetworkLocator::hear(const asio::ip::address& sender, std::string_view datagram)
{
    if (m_readAnswers >= maxAnswers || !isWorthReading(sender))
        return false;
    ++m_readAnswers;
    auto attributes = discovery::parseAnswer(datagram);
    if (!attributes)
        return false;
    const Key key{sender, attribute(*attributes, "link")};
    auto known = m_heard.find(key);
    const bool isNew = known == m_heard.end();
    if (isNew) {
        if (!makeRoom())
            return false;
        known = m_heard.emplace(key, Heard{{}, m_search, 0}).first;
    }
    Heard& heard = known->second;
    if (heard.search != m_search)
        ++m_answeredPeers;
    heard.search = m_search;
    heard.peer = {sender.to_string(), std::move(*attributes)};
    return isNew;
}

bool NetworkLocator::isWorthReading(const asio::ip::address& sender) const
{
    const auto first = m_heard.lower_bound({sender, {}});
    const auto end =
        std::find_if(first, m_heard.end(), [&](const auto& entry) { return entry.first.first != sender; });
    return first == end ? m_answeredPeers < maxPeers : std::distance(first, end) <= maxOfAddress;
}

/// Under a flood the one goes that has not answered this search, and of those the latest: a server that has
/// been there for some time is none of the flood's.
bool NetworkLocator::makeRoom()
{
    if (m_heard.size() < maxPeers)
        return true;
    auto latest = m_heard.end();
    for (auto at = m_heard.begin(); at != m_heard.end(); ++at) {
        if (at->second.search != m_search &&
            (latest == m_heard.end() || at->second.since > latest->second.since))
            latest = at;
    }
    if (latest == m_heard.end())
        return false;
    m_heard.erase(latest);
    return true;
}

std::vector<NetworkPeer> NetworkLocator::currentPeers() const
{
    std::map<std::string, const Heard*> best; // by id
    std::vector<NetworkPeer> peers;
    for (const auto& [key, heard] : m_heard) {
        const std::string id = attribute(heard.peer.attributes, "id");
        if (id.empty()) {
            peers.push_back(heard.peer);
            continue;
        }
        const auto [at, isFirst] = best.emplace(id, &heard);
        if (!isFirst && rank(key.first) < rank(asio::ip::make_address(at->second->peer.address)))
            at->second = &heard;
    }
    for (const auto& [id, heard] : best)
        peers.push_back(heard->peer);
    return peers;
}

} // namespace vantrel

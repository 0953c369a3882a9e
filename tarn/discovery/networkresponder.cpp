#include "tarn/discovery/networkresponder.h"

#include "tarn/discovery/networkinterfaces.h"
#include "tarn/log/log.h"

#include <boost/asio/ip/multicast.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <netinet/in.h>
#include <set>
#include <sys/socket.h>
#include <vector>

namespace vantrel {

namespace asio = boost::asio;
using asio::ip::udp;
using boost::system::error_code;

namespace {

using Clock = std::chrono::steady_clock;
using Interfaces = std::vector<NetworkInterface>;
constexpr std::chrono::milliseconds textAge{100}; // a flood of questions makes no text for each

/// A place where questions come in.
struct Ear
{
    explicit Ear(asio::io_context& loop)
        : socket(loop)
        , mouth(loop)
    {
    }

    bool open(const udp::endpoint& at, error_code& error)
    {
        socket.open(at.protocol(), error);
        if (!error)
            socket.set_option(asio::socket_base::reuse_address(true), error);
        if (!error && at.protocol() == udp::v6())
            socket.set_option(asio::ip::v6_only(true), error);
        if (!error)
            socket.bind(at, error); // hears what is sent to that address, and nothing else
        return !error;
    }
    /// A server of one of a machine's addresses is not to be had at the others: the answer has to come from
    /// that one.
    bool answerFrom(const asio::ip::address& address, error_code& error)
    {
        mouth.open(address.is_v4() ? udp::v4() : udp::v6(), error);
        if (!error)
            mouth.bind({address, 0}, error);
        return !error;
    }

    void close()
    {
        error_code ignored;
        socket.close(ignored);
    }

    udp::socket socket;
    udp::socket mouth; // not open where the socket itself answers
    udp::endpoint asker;
    std::array<char, discovery::maxDatagram> buffer{};
};

/// Whether the ear takes part in the group on an interface from now on, or no more.
bool setGroup(Ear& ear, int option, unsigned int interface)
{
    ip_mreqn group{};
    group.imr_multiaddr.s_addr = htonl(asio::ip::make_address_v4(discovery::group).to_uint());
    group.imr_ifindex = static_cast<int>(interface);
    return ::setsockopt(ear.socket.native_handle(), IPPROTO_IP, option, &group, sizeof group) == 0;
}

} // namespace

struct NetworkResponder::Impl : std::enable_shared_from_this<Impl>
{
    Impl(asio::io_context& io, std::function<discovery::Attributes()> what)
        : loop(io)
        , attributes(std::move(what))
        , nextLook(io)
    {
    }

    void start(const asio::ip::address& address, unsigned short number);
    void lookEachTime();
    void look();
    void hearV4(const Interfaces& present);
    void hearV6(const NetworkInterface& at);
    void receive(const std::shared_ptr<Ear>& ear);
    void answer(Ear& ear, std::size_t count);
    void end();

    asio::io_context& loop;
    std::function<discovery::Attributes()> attributes;
    asio::ip::address bound;
    unsigned short port = 0;
    std::shared_ptr<Ear> ear4;
    std::set<unsigned int> joined;                     // by that ear, whatever addresses they have
    std::map<unsigned int, std::shared_ptr<Ear>> ears; // of IPv6, by the interface, whatever addresses it has
    asio::steady_timer nextLook;
    bool hasEnded = false;
    std::string text;
    std::optional<Clock::time_point> textMade;
    error_code error; // the last one, of opening
};

void NetworkResponder::Impl::start(const asio::ip::address& address, unsigned short number)
{
    bound = address;
    port = number;
    look();
    if (joined.empty() && ears.empty())
        Log::write_fmt(LogLevel::Warning, {}, "discovery", "Cannot answer searches at %s: %s",
                       bound.to_string().c_str(),
                       error ? error.message().c_str() : "no interface has this address");
    lookEachTime();
}

/// A machine may get its network after its server has started, or another one.
void NetworkResponder::Impl::lookEachTime()
{
    constexpr std::chrono::seconds pause{2};
    nextLook.expires_after(pause);
    nextLook.async_wait([self = shared_from_this()](const error_code& failed) {
        if (failed || self->hasEnded) // its time may have been over when it ended
            return;
        self->look();
        self->lookEachTime();
    });
}

void NetworkResponder::Impl::look()
{
    const Interfaces present = networkInterfaces();
    if (bound.is_v4() || bound.is_unspecified())
        hearV4(present);
    std::erase_if(ears, [&present](const auto& ear) {
        const bool isGone = std::ranges::find(present, ear.first, &NetworkInterface::index) == present.end();
        if (isGone)
            ear.second->close();
        return isGone;
    });
    for (const NetworkInterface& at : present) {
        if (bound.is_v6() && at.address.is_v6() && (bound.is_unspecified() || bound == at.address) &&
            !ears.contains(at.index))
            hearV6(at);
    }
}

void NetworkResponder::Impl::hearV4(const Interfaces& present)
{
    const auto group = asio::ip::make_address_v4(discovery::group);
    if (!ear4) {
        ear4 = std::make_shared<Ear>(loop);
        if (!ear4->open({group, port}, error) ||
            (bound.is_v4() && !bound.is_unspecified() && !ear4->answerFrom(bound, error))) {
            ear4.reset();
            return;
        }
        // Else the kernel hands over what any socket of this machine has joined, on other interfaces too.
        const int all = 0;
        ::setsockopt(ear4->socket.native_handle(), IPPROTO_IP, IP_MULTICAST_ALL, &all, sizeof all);
        receive(ear4);
    }
    std::set<unsigned int> ours;
    for (const NetworkInterface& at : present) {
        // The loopback interface has all addresses of 127.0.0.0/8, and names one.
        const bool isLoopback = at.address.is_v4() && at.address.is_loopback() && bound.is_loopback();
        if (at.index != 0 && at.address.is_v4() &&
            (bound.is_unspecified() || bound == at.address || isLoopback))
            ours.insert(at.index);
    }
    // A socket takes part in twenty groups or so, those of interfaces that are gone for good among them.
    std::erase_if(joined, [&](unsigned int one) {
        const bool isGone = !ours.contains(one);
        if (isGone)
            setGroup(*ear4, IP_DROP_MEMBERSHIP, one);
        return isGone;
    });
    for (const unsigned int one : ours) {
        if (!joined.contains(one) && setGroup(*ear4, IP_ADD_MEMBERSHIP, one))
            joined.insert(one);
    }
}

void NetworkResponder::Impl::hearV6(const NetworkInterface& at)
{
    // The loopback interface takes part in no group of IPv6: there one asks the server itself.
    const bool isGroup = !at.address.is_loopback();
    asio::ip::address_v6 ours = isGroup ? asio::ip::make_address_v6(discovery::group6) : at.address.to_v6();
    if (isGroup)
        ours.scope_id(at.index);
    const auto ear = std::make_shared<Ear>(loop);
    bool isOpen = ear->open({ours, port}, error);
    if (isOpen && isGroup)
        ear->socket.set_option(asio::ip::multicast::join_group(ours, at.index), error);
    isOpen = isOpen && !error && (bound.is_unspecified() || ear->answerFrom(bound, error));
    if (!isOpen)
        return;
    ears.emplace(at.index, ear);
    receive(ear);
}

void NetworkResponder::Impl::receive(const std::shared_ptr<Ear>& ear)
{
    ear->socket.async_receive_from(
        asio::buffer(ear->buffer), ear->asker,
        [self = shared_from_this(), ear](const error_code& failed, std::size_t count) {
            if (!ear->socket.is_open())
                return;
            if (!failed)
                self->answer(*ear, count);
            self->receive(ear);
        });
}

void NetworkResponder::Impl::answer(Ear& ear, std::size_t count)
{
    if (!discovery::isQuestion({ear.buffer.data(), count}))
        return;
    if (const auto now = Clock::now(); !textMade || now - *textMade > textAge) {
        text = discovery::answerText(attributes());
        textMade = now;
    }
    error_code ignored; // who asked may be gone
    (ear.mouth.is_open() ? ear.mouth : ear.socket).send_to(asio::buffer(text), ear.asker, 0, ignored);
}

void NetworkResponder::Impl::end()
{
    hasEnded = true;
    nextLook.cancel();
    if (ear4)
        ear4->close();
    for (const auto& [interface, ear] : ears)
        ear->close();
}

NetworkResponder::NetworkResponder(asio::io_context& loop, std::function<discovery::Attributes()> attributes)
    : m_impl(std::make_shared<Impl>(loop, std::move(attributes)))
{
}

NetworkResponder::~NetworkResponder()
{
    m_impl->end();
}

bool NetworkResponder::start(const asio::ip::address& bound, unsigned short port)
{
    m_impl->start(bound, port);
    return !m_impl->joined.empty() || !m_impl->ears.empty();
}

} // namespace vantrel

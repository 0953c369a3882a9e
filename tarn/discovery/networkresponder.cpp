#include "tarn/discovery/networkresponder.h"

#include "tarn/discovery/networkinterfaces.h"
#include "tarn/log/log.h"

#include <boost/asio/ip/multicast.hpp>
#include <boost/asio/ip/udp.hpp>
#include <boost/asio/ip/v6_only.hpp>

#include <array>
#include <chrono>
#include <list>
#include <netinet/in.h>
#include <set>
#include <sys/socket.h>

namespace vantrel {

namespace asio = boost::asio;
using asio::ip::udp;
using boost::system::error_code;

namespace {

using Clock = std::chrono::steady_clock;
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

    udp::socket socket;
    udp::socket mouth; // not open where the socket itself answers
    udp::endpoint asker;
    std::array<char, discovery::maxDatagram> buffer{};
};

} // namespace

struct NetworkResponder::Impl : std::enable_shared_from_this<Impl>
{
    Impl(asio::io_context& io, std::function<discovery::Attributes()> what)
        : loop(io)
        , attributes(std::move(what))
    {
    }

    bool open(const asio::ip::address& bound, unsigned short port);
    bool openV4(const asio::ip::address& bound, unsigned short port);
    bool openV6(const asio::ip::address& bound, const NetworkInterface& at, unsigned short port);
    void receive(Ear& ear);
    void answer(Ear& ear, std::size_t count);

    asio::io_context& loop;
    std::function<discovery::Attributes()> attributes;
    std::list<Ear> ears;
    std::string text;
    std::optional<Clock::time_point> textMade;
    error_code error; // the last one, of opening
};

bool NetworkResponder::Impl::open(const asio::ip::address& bound, unsigned short port)
{
    bool isOpen = false;
    if (bound.is_v4() || bound.is_unspecified())
        isOpen = openV4(bound, port);
    std::set<unsigned int> heard; // an interface may have several addresses
    for (const NetworkInterface& at : bound.is_v6() ? networkInterfaces() : std::vector<NetworkInterface>()) {
        if (at.address.is_v6() && (bound.is_unspecified() || bound == at.address) &&
            heard.insert(at.index).second)
            isOpen = openV6(bound, at, port) || isOpen;
    }
    if (!isOpen)
        Log::write_fmt(LogLevel::Warning, {}, "discovery", "Cannot answer searches at %s: %s",
                       bound.to_string().c_str(),
                       error ? error.message().c_str() : "no interface has this address");
    return isOpen;
}

bool NetworkResponder::Impl::openV4(const asio::ip::address& bound, unsigned short port)
{
    const auto group = asio::ip::make_address_v4(discovery::group);
    Ear& ear = ears.emplace_back(loop);
    if (!ear.open({group, port}, error) ||
        (bound.is_v4() && !bound.is_unspecified() && !ear.answerFrom(bound, error))) {
        ears.pop_back();
        return false;
    }
    // Else the kernel hands over what any socket of this machine has joined, on other interfaces too.
    const int all = 0;
    ::setsockopt(ear.socket.native_handle(), IPPROTO_IP, IP_MULTICAST_ALL, &all, sizeof all);
    bool isJoined = false;
    for (const auto& [address, index] : networkInterfaces()) {
        // The loopback interface has all addresses of 127.0.0.0/8, and names one.
        const bool isLoopback = address.is_v4() && address.is_loopback() && bound.is_loopback();
        if (address.is_v4() && (bound.is_unspecified() || bound == address || isLoopback)) {
            error_code failed;
            ear.socket.set_option(asio::ip::multicast::join_group(group, address.to_v4()), failed);
            isJoined = isJoined || !failed;
        }
    }
    if (!isJoined)
        ears.pop_back();
    return isJoined;
}

bool NetworkResponder::Impl::openV6(const asio::ip::address& bound, const NetworkInterface& at,
                                    unsigned short port)
{
    // The loopback interface takes part in no group of IPv6: there one asks the server itself.
    const bool isGroup = !at.address.is_loopback();
    asio::ip::address_v6 ours = isGroup ? asio::ip::make_address_v6(discovery::group6) : at.address.to_v6();
    if (isGroup)
        ours.scope_id(at.index);
    Ear& ear = ears.emplace_back(loop);
    bool isOpen = ear.open({ours, port}, error);
    if (isOpen && isGroup)
        ear.socket.set_option(asio::ip::multicast::join_group(ours, at.index), error);
    isOpen = isOpen && !error && (bound.is_unspecified() || ear.answerFrom(bound, error));
    if (!isOpen)
        ears.pop_back();
    return isOpen;
}

void NetworkResponder::Impl::receive(Ear& ear)
{
    ear.socket.async_receive_from(
        asio::buffer(ear.buffer), ear.asker,
        [self = shared_from_this(), &ear](const error_code& failed, std::size_t count) {
            if (failed == asio::error::operation_aborted || !ear.socket.is_open())
                return;
            if (!failed)
                self->answer(ear, count);
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

NetworkResponder::NetworkResponder(asio::io_context& loop, std::function<discovery::Attributes()> attributes)
    : m_impl(std::make_shared<Impl>(loop, std::move(attributes)))
{
}

NetworkResponder::~NetworkResponder()
{
    for (Ear& ear : m_impl->ears) {
        error_code ignored;
        ear.socket.close(ignored);
    }
}

bool NetworkResponder::start(const asio::ip::address& bound, unsigned short port)
{
    if (!m_impl->open(bound, port))
        return false;
    for (Ear& ear : m_impl->ears)
        m_impl->receive(ear);
    return true;
}

} // namespace vantrel

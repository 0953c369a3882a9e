#include "tarn/discovery/networkinterfaces.h"
#include "tarn/discovery/networklocator.h"
#include "tarn/json/json.h"
#include "tarn/log/log.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/multicast.hpp>

#include <array>
#include <netinet/in.h>
#include <sys/socket.h>

namespace vantrel {

namespace asio = boost::asio;
using asio::ip::udp;
using boost::system::error_code;

struct NetworkResponder::Impl : std::enable_shared_from_this<Impl>
{
    explicit Impl(asio::io_context& loop)
        : socket(loop)
    {
    }

    bool open(const asio::ip::address& bound, unsigned short port);
    void receive();
    void answer(std::size_t count);

    udp::socket socket;
    std::string text;
    udp::endpoint asker;
    std::array<char, 1400> buffer{};
};

bool NetworkResponder::Impl::open(const asio::ip::address& bound, unsigned short port)
{
    const auto group = asio::ip::make_address_v4(discovery::group);
    error_code error;
    socket.open(udp::v4(), error);
    if (!error)
        socket.set_option(asio::socket_base::reuse_address(true), error);
    if (!error)
        socket.bind({group, port}, error); // hears what is sent to the group, and nothing else
    if (error) {
        Log::write_fmt(LogLevel::Warning, {}, "discovery", "Cannot answer searches: %s",
                       error.message().c_str());
        return false;
    }
    // Else the kernel hands over what any socket of this machine has joined, on other interfaces too.
    const int all = 0;
    ::setsockopt(socket.native_handle(), IPPROTO_IP, IP_MULTICAST_ALL, &all, sizeof all);

    bool isJoined = false;
    for (const auto& address : interfaceAddresses()) {
        if (bound.is_unspecified() || bound == asio::ip::address(address)) {
            socket.set_option(asio::ip::multicast::join_group(group, address), error);
            isJoined = isJoined || !error;
        }
    }
    if (!isJoined)
        Log::write_fmt(LogLevel::Warning, {}, "discovery",
                       "Cannot answer searches: no interface has the address %s", bound.to_string().c_str());
    return isJoined;
}

void NetworkResponder::Impl::receive()
{
    socket.async_receive_from(asio::buffer(buffer), asker,
                              [self = shared_from_this()](const error_code& error, std::size_t count) {
                                  if (error == asio::error::operation_aborted || !self->socket.is_open())
                                      return;
                                  if (!error)
                                      self->answer(count);
                                  self->receive();
                              });
}

void NetworkResponder::Impl::answer(std::size_t count)
{
    Json question;
    if (!Json::parseString({buffer.data(), count}, question) || question.get("locate").asInt() != 1)
        return;
    error_code ignored; // who asked may be gone
    socket.send_to(asio::buffer(text), asker, 0, ignored);
}

NetworkResponder::NetworkResponder(asio::io_context& loop, std::map<std::string, std::string> attributes)
    : m_impl(std::make_shared<Impl>(loop))
{
    Json peer = Json::object();
    for (const auto& [name, value] : attributes)
        peer.set(name, Json(value));
    m_impl->text = Json::object({{"peer", peer}}).toString();
}

NetworkResponder::~NetworkResponder()
{
    error_code ignored;
    m_impl->socket.close(ignored);
}

bool NetworkResponder::start(const asio::ip::address& bound, unsigned short port)
{
    if (!m_impl->open(bound, port))
        return false;
    m_impl->receive();
    return true;
}

} // namespace vantrel

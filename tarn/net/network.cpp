#include "tarn/net/network.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

namespace vantrel {

namespace asio = boost::asio;

std::vector<asio::ip::address> Network::resolveAll(const std::string& host)
{
    if (host.empty())
        return {};
    const bool isBracketed = host.front() == '[' && host.back() == ']';
    boost::system::error_code error;
    const auto written = asio::ip::make_address(isBracketed ? host.substr(1, host.size() - 2) : host, error);
    if (!error)
        return {written};
    asio::io_context loop;
    asio::ip::tcp::resolver resolver(loop);
    std::vector<asio::ip::address> addresses;
    for (const auto& entry : resolver.resolve(host, "", error))
        addresses.push_back(entry.endpoint().address());
    return addresses;
}

bool Network::resolve(const std::string& host, asio::ip::address& out)
{
    const auto addresses = resolveAll(host);
    if (addresses.empty())
        return false;
    out = addresses.front();
    return true;
}

} // namespace vantrel

#include "tarn/net/network.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

namespace vantrel {

namespace asio = boost::asio;

bool Network::resolve(const std::string& host, asio::ip::address& out)
{
    if (host.empty())
        return false;
    boost::system::error_code error;
    if (const auto address = asio::ip::make_address(host, error); !error) {
        out = address;
        return true;
    }
    asio::io_context loop;
    asio::ip::tcp::resolver resolver(loop);
    const auto found = resolver.resolve(host, "", error);
    if (error || found.empty())
        return false;
    out = found.begin()->endpoint().address();
    return true;
}

} // namespace vantrel

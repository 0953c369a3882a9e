#include "ombra/base/takeport.h"

#include "tarn/log/log.h"

#include <chrono>
#include <string>
#include <thread>

namespace vantrel::ombra {

namespace {

constexpr std::chrono::seconds patience{2};
constexpr std::chrono::milliseconds between{20};

void take(boost::asio::ip::tcp::acceptor& acceptor, const boost::asio::ip::tcp::endpoint& endpoint,
          boost::system::error_code& code)
{
    boost::system::error_code ignored;
    acceptor.close(ignored);
    acceptor.open(endpoint.protocol(), code);
    if (!code)
        acceptor.set_option(boost::asio::socket_base::reuse_address(true), code);
    if (!code)
        acceptor.bind(endpoint, code);
    if (!code)
        acceptor.listen(boost::asio::socket_base::max_listen_connections, code);
}

} // namespace

bool takePort(boost::asio::ip::tcp::acceptor& acceptor, const boost::asio::ip::tcp::endpoint& endpoint,
              boost::system::error_code& code)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    take(acceptor, endpoint, code);
    if (code == boost::asio::error::address_in_use)
        Log::write(LogLevel::Info, "vantrel.net",
                   "waits for port " + std::to_string(endpoint.port()) + ", which another program still has");
    while (code == boost::asio::error::address_in_use && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(between);
        take(acceptor, endpoint, code);
    }
    return !code;
}

} // namespace vantrel::ombra

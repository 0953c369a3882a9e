#pragma once

#include <boost/asio/ip/tcp.hpp>

namespace vantrel::ombra {

/// Opens, binds and listens; false, with the reason in code. A port that is taken is waited for for two
/// seconds: of a server that was killed the system takes it back a moment later, and its file server's part
/// in it another moment. Whoever starts it again at once is not to find it taken. Blocks meanwhile.
bool takePort(boost::asio::ip::tcp::acceptor& acceptor, const boost::asio::ip::tcp::endpoint& endpoint,
              boost::system::error_code& code);

} // namespace vantrel::ombra

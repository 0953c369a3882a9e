#pragma once

#include <boost/asio/ip/address_v4.hpp>

#include <vector>

namespace vantrel {

/// The IPv4 addresses of all interfaces that are up.
std::vector<boost::asio::ip::address_v4> interfaceAddresses();

} // namespace vantrel

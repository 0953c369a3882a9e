#pragma once

#include <boost/asio/ip/address.hpp>

#include <vector>

namespace vantrel {

/// An address that this machine has, and the interface that has it.
struct NetworkInterface
{
    boost::asio::ip::address address; // one of a link alone names it by its scope
    unsigned int index = 0;
    friend bool operator==(const NetworkInterface&, const NetworkInterface&) = default;
};

/// All addresses of the interfaces that are up.
std::vector<NetworkInterface> networkInterfaces();

} // namespace vantrel

#pragma once

#include "tarn/ref.h"

#include <boost/asio/ip/address.hpp>

#include <string>
#include <vector>

namespace vantrel {

/// Name look-ups, on the calling thread.
class Network : public RefCounted
{
public:
    /// The addresses of a host name, the one to try first in front, or the one that is written there, also in
    /// the brackets of a URL; blocks. Empty when there is none.
    std::vector<boost::asio::ip::address> resolveAll(const std::string& host);
    /// The first of them. False when there is none.
    bool resolve(const std::string& host, boost::asio::ip::address& out);
};

} // namespace vantrel

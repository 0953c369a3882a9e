#pragma once

#include "tarn/ref.h"

#include <boost/asio/ip/address.hpp>

#include <string>

namespace vantrel {

/// Name look-ups, on the calling thread.
class Network : public RefCounted
{
public:
    /// The first address of a host name or of a dotted address; blocks. False when there is none.
    bool resolve(const std::string& host, boost::asio::ip::address& out);
};

} // namespace vantrel

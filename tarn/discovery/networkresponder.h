#pragma once

#include "tarn/discovery/searchtext.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address.hpp>

#include <functional>
#include <memory>

namespace vantrel {

/// The server's side of discovery: answers searches on the interface that the server is bound to, from the
/// address that it is bound to. Lives on the loop's thread.
class NetworkResponder
{
public:
    /// The attributes are asked for when somebody searches.
    NetworkResponder(boost::asio::io_context& loop, std::function<discovery::Attributes()> attributes);
    ~NetworkResponder();

    /// With the unspecified address it answers on all interfaces; with that of IPv6 by both protocols, as
    /// what listens there hears both. False, with a log line, when the port is not to be had.
    bool start(const boost::asio::ip::address& bound, unsigned short port = discovery::port);

private:
    struct Impl;
    std::shared_ptr<Impl> m_impl;
};

} // namespace vantrel

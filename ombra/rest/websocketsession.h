#pragma once

#include "ombra/base/peerlimit.h"
#include "ombra/rest/broadcasthub.h"

#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <array>
#include <memory>

namespace vantrel::ombra {

/// The seats that a connection takes: as one, and as a WebSocket.
using SocketSeats = std::array<PeerLimit::Place, 2>;

/// Takes the connection over as a WebSocket that is told what the hub broadcasts; what the client sends is
/// ignored, but for pings.
void startWebSocket(boost::beast::tcp_stream stream,
                    boost::beast::http::request<boost::beast::http::string_body> request,
                    const std::shared_ptr<BroadcastHub>& hub, SocketSeats seats);

} // namespace vantrel::ombra

#pragma once

#include "ombra/base/peerlimit.h"
#include "ombra/rest/broadcasthub.h"

#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include <memory>

namespace vantrel::ombra {

/// Takes the connection over as a WebSocket that is told what the hub broadcasts; what the client sends is
/// ignored, but for pings.
void startWebSocket(boost::beast::tcp_stream stream,
                    boost::beast::http::request<boost::beast::http::string_body> request,
                    const std::shared_ptr<BroadcastHub>& hub, PeerLimit::Place room);

} // namespace vantrel::ombra

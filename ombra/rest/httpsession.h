#pragma once

#include "ombra/base/bytebudget.h"
#include "ombra/base/peerlimit.h"
#include "ombra/rest/broadcasthub.h"
#include "ombra/rest/httpserver.h"

namespace vantrel::ombra {

/// What all sessions of a server share of its room.
struct HttpLimits
{
    ByteBudget bodies{320u * 1024 * 1024};
    PeerLimit streams{256, 32}; // event streams and WebSockets, which stay
};

/// Serves one connection until its end. It keeps itself alive by its pending operations.
void startHttpSession(boost::asio::ip::tcp::socket socket, std::shared_ptr<const HttpHandlers> handlers,
                      std::shared_ptr<BroadcastHub> streams, std::shared_ptr<BroadcastHub> sockets,
                      std::shared_ptr<HeaderQueue> headers, std::shared_ptr<HttpLimits> limits,
                      PeerLimit::Place room);

} // namespace vantrel::ombra

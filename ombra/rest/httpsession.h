#pragma once

#include "ombra/base/peerlimit.h"
#include "ombra/rest/broadcasthub.h"
#include "ombra/rest/httpserver.h"

namespace vantrel::ombra {

/// Serves one connection until its end. It keeps itself alive by its pending operations.
void startHttpSession(boost::asio::ip::tcp::socket socket, std::shared_ptr<const HttpHandlers> handlers,
                      std::shared_ptr<BroadcastHub> streams, std::shared_ptr<BroadcastHub> sockets,
                      std::shared_ptr<HeaderQueue> headers, PeerLimit::Place room);

} // namespace vantrel::ombra

#include "ombra/rest/websocketsession.h"

#include "tarn/log/log.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket.hpp>

#include <chrono>
#include <deque>

namespace vantrel::ombra {

namespace beast = boost::beast;
namespace websocket = boost::beast::websocket;

namespace {

using namespace std::chrono_literals;

constexpr std::size_t maxMessage = 64 * 1024;

class WebSocketSession : public Subscriber, public std::enable_shared_from_this<WebSocketSession>
{
public:
    WebSocketSession(beast::tcp_stream stream, SocketSeats seats)
        : m_socket(std::move(stream))
        , m_seats(std::move(seats))
    {
    }

    void start(const beast::http::request<beast::http::string_body>& request,
               const std::shared_ptr<BroadcastHub>& hub)
    {
        // A client that is gone is noticed by the pings within a minute.
        m_socket.set_option(websocket::stream_base::timeout{10s, 60s, true});
        m_socket.read_message_max(maxMessage);
        for (const PeerLimit::Place& seat : m_seats)
            seat->giveWay = [weak = weak_from_this()] {
                if (const auto self = weak.lock())
                    self->close();
            };
        m_socket.async_accept(request, [self = shared_from_this(), hub](beast::error_code code) {
            if (code)
                return;
            hub->add(self);
            self->read();
        });
    }

    void send(const std::shared_ptr<const std::string>& message) override
    {
        if (m_closing)
            return;
        if (m_waitingBytes + message->size() > BroadcastHub::maxWaiting) {
            Log::write(LogLevel::Warning, "vantrel.rest", "dropping a WebSocket that does not read");
            return close();
        }
        m_waiting.push_back(message);
        m_waitingBytes += message->size();
        if (m_waiting.size() == 1)
            write();
    }

private:
    void read()
    {
        m_socket.async_read(m_buffer, [self = shared_from_this()](beast::error_code code, std::size_t) {
            if (code)
                return self->close();
            self->m_buffer.clear();
            self->read();
        });
    }

    void write()
    {
        m_socket.text(true);
        m_socket.async_write(boost::asio::buffer(*m_waiting.front()),
                             [self = shared_from_this()](beast::error_code code, std::size_t) {
                                 if (code)
                                     return self->close();
                                 self->m_waitingBytes -= self->m_waiting.front()->size();
                                 self->m_waiting.pop_front();
                                 if (!self->m_waiting.empty() && !self->m_closing)
                                     self->write();
                             });
    }

    void close()
    {
        m_closing = true;
        beast::get_lowest_layer(m_socket).close();
    }

    websocket::stream<beast::tcp_stream> m_socket;
    SocketSeats m_seats;
    beast::flat_buffer m_buffer;
    std::deque<std::shared_ptr<const std::string>> m_waiting; // the front one is being written
    std::size_t m_waitingBytes = 0;
    bool m_closing = false;
};

} // namespace

void startWebSocket(beast::tcp_stream stream, beast::http::request<beast::http::string_body> request,
                    const std::shared_ptr<BroadcastHub>& hub, SocketSeats seats)
{
    std::make_shared<WebSocketSession>(std::move(stream), std::move(seats))->start(request, hub);
}

} // namespace vantrel::ombra

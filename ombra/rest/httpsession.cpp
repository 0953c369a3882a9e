#include "ombra/rest/httpsession.h"

#include "ombra/base/asidethread.h"
#include "ombra/rest/headerqueue.h"
#include "ombra/rest/websocketsession.h"
#include "tarn/log/log.h"

#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include <chrono>
#include <deque>
#include <optional>
#include <sys/socket.h>

namespace vantrel::ombra {

namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t maxHeader = 16 * 1024;
constexpr std::uint64_t maxBody = 64u * 1024 * 1024;
constexpr std::uint64_t maxShow =
    272u * 1024 * 1024; // a library as large as one may be, and what is beside it
constexpr std::uint64_t maxUnannounced = 1024 * 1024; // of a body that does not say how long it is
constexpr auto requestTime = 60s; // to send a body, to read an answer, and until the next request
constexpr auto lingerTime = 3s;   // to take a refused request off the wire

/// A field that means nothing when it comes twice; all of it then, which matches nothing.
std::string onlyField(const http::request<http::string_body>& request, http::field name)
{
    std::string text;
    const auto [begin, end] = request.equal_range(name);
    for (auto field = begin; field != end; ++field)
        text += (text.empty() ? "" : ", ") + std::string(field->value());
    return text;
}

/// With a text of many megabytes the memory around it is put in order, which takes its time.
void letGoOfText(std::shared_ptr<const std::string> text)
{
    constexpr std::size_t large = 1024 * 1024;
    if (text && text->size() > large)
        letGo(std::move(text));
}

class HttpSession : public Subscriber, public std::enable_shared_from_this<HttpSession>
{
public:
    HttpSession(boost::asio::ip::tcp::socket socket, std::shared_ptr<const HttpHandlers> handlers,
                std::shared_ptr<BroadcastHub> streams, std::shared_ptr<BroadcastHub> sockets,
                std::shared_ptr<HeaderQueue> headers, std::shared_ptr<HttpLimits> limits,
                PeerLimit::Place room)
        : m_stream(std::move(socket))
        , m_handlers(std::move(handlers))
        , m_streams(std::move(streams))
        , m_sockets(std::move(sockets))
        , m_headers(std::move(headers))
        , m_limits(std::move(limits))
        , m_room(std::move(room))
    {
        beast::error_code code;
        m_peer = m_stream.socket().remote_endpoint(code).address();
    }

    void start();
    void send(const std::shared_ptr<const std::string>& message) override;

private:
    void readHeader();
    void awaitRequest();
    void headerRead(beast::error_code code);
    bool makeRoom(std::string_view path);
    bool makeRoomToStay();
    void readBody();
    void bodyRead(beast::error_code code);
    bool isListening();
    void refuse(beast::error_code code);
    void answer(HttpReply reply);
    void written(beast::error_code code, bool keepAlive);
    void linger();

    void startStream();
    void watchStream();
    void writeStream();
    void close();

    beast::tcp_stream m_stream;
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::string_body>> m_parser;
    std::optional<http::response<http::span_body<const char>>> m_reply;
    std::shared_ptr<const std::string> m_replyBody; // of it
    std::shared_ptr<const HttpHandlers> m_handlers;
    std::shared_ptr<BroadcastHub> m_streams;
    std::shared_ptr<BroadcastHub> m_sockets;
    std::shared_ptr<HeaderQueue> m_headers;
    std::shared_ptr<HttpLimits> m_limits;
    PeerLimit::Place m_room;
    PeerLimit::Place m_roomToStay; // of a stream
    ByteBudget::Place m_bodyRoom;  // from the header to the answer
    boost::asio::ip::address m_peer;
    HeaderQueue::Place m_place;                               // while a header is being read
    std::deque<std::shared_ptr<const std::string>> m_waiting; // the front one is being written
    std::size_t m_waitingBytes = 0;
    std::array<char, 1024> m_discard{};
    bool m_closing = false;
};

void HttpSession::start()
{
    m_room->giveWay = [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->close();
    };
    readHeader();
}

void HttpSession::readHeader()
{
    m_parser.emplace();
    m_parser->header_limit(maxHeader);
    m_parser->body_limit(maxShow); // what the path takes is known with the header
    m_stream.expires_after(m_handlers->headerTime);
    m_place = m_headers->join(m_peer, [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->close();
    });
    http::async_read_header(
        m_stream, m_buffer, *m_parser,
        [self = shared_from_this()](beast::error_code code, std::size_t) { self->headerRead(code); });
}

/// A connection that is kept for the next request may take its time until that begins.
void HttpSession::awaitRequest()
{
    if (m_buffer.size() > 0)
        return readHeader();
    m_stream.expires_after(requestTime);
    m_stream.async_read_some(m_buffer.prepare(4096),
                             [self = shared_from_this()](beast::error_code code, std::size_t count) {
                                 if (code)
                                     return self->close();
                                 self->m_buffer.commit(count);
                                 self->readHeader();
                             });
}

void HttpSession::headerRead(beast::error_code code)
{
    m_place.reset();
    if (code)
        return refuse(code);
    const auto& request = m_parser->get();
    if (auto refusal = m_handlers->guard.refuse(onlyField(request, http::field::host),
                                                onlyField(request, http::field::origin))) {
        m_closing = true; // before its body is read
        return answer(std::move(*refusal));
    }
    const std::string path(request.target().substr(0, request.target().find('?')));
    if (path == m_handlers->socketPath && beast::websocket::is_upgrade(request)) {
        if (!makeRoomToStay())
            return;
        m_stream.expires_never();
        startWebSocket(std::move(m_stream), m_parser->release(), m_sockets,
                       {std::move(m_room), std::move(m_roomToStay)});
        return;
    }
    if (path == m_handlers->streamPath && request.method() == http::verb::get)
        return makeRoomToStay() ? startStream() : void();
    if (!makeRoom(path))
        return;
    if (!beast::iequals(request[http::field::expect], "100-continue"))
        return readBody();
    static const std::string goOn = "HTTP/1.1 100 Continue\r\n\r\n";
    boost::asio::async_write(m_stream, boost::asio::buffer(goOn),
                             [self = shared_from_this()](beast::error_code failed, std::size_t) {
                                 if (!failed)
                                     self->readBody();
                             });
}

/// False, and the request is refused, when its body is too large, or for now while others are as large.
bool HttpSession::makeRoom(std::string_view path)
{
    const std::uint64_t most = path == m_handlers->showPath ? maxShow : maxBody;
    const auto announced = m_parser->content_length();
    const std::uint64_t bytes = announced ? *announced : m_parser->chunked() ? maxUnannounced : 0;
    m_closing = true; // if it is refused, then before its body is read
    if (bytes > most) {
        answer(httpError(413, "the body is too large"));
        return false;
    }
    m_bodyRoom = bytes > ByteBudget::small ? m_limits->bodies.take(bytes) : nullptr;
    if (bytes > ByteBudget::small && !m_bodyRoom) {
        answer(httpError(503, "others are sending as much as there is room for: send it again"));
        return false;
    }
    m_closing = false;
    m_parser->body_limit(bytes);
    return true;
}

bool HttpSession::makeRoomToStay()
{
    m_roomToStay = m_limits->streams.enter(m_peer);
    if (m_roomToStay) {
        m_roomToStay->giveWay = m_room->giveWay;
        return true;
    }
    m_closing = true;
    answer(httpError(503, "too many streams of this peer are open already"));
    return false;
}

void HttpSession::readBody()
{
    constexpr std::uint64_t bytesASecond = 2 * 1024 * 1024; // so that a show has the time that it takes
    m_stream.expires_after(requestTime +
                           std::chrono::seconds(m_parser->content_length().value_or(0) / bytesASecond));
    http::async_read(
        m_stream, m_buffer, *m_parser,
        [self = shared_from_this()](beast::error_code code, std::size_t) { self->bodyRead(code); });
}

void HttpSession::bodyRead(beast::error_code code)
{
    if (code)
        return refuse(code);
    m_stream.expires_never(); // the time that an answer takes is ours
    auto& request = m_parser->get();
    HttpRequest plain;
    plain.method = request.method_string();
    const auto target = request.target();
    const std::size_t mark = target.find('?');
    plain.path = target.substr(0, mark);
    if (mark != beast::string_view::npos)
        plain.query = target.substr(mark + 1);
    plain.body = std::move(request.body());
    plain.contentType = request[http::field::content_type];
    plain.ifMatch = request[http::field::if_match];
    plain.idempotencyKey = request["Idempotency-Key"];
    plain.isWanted = [self = shared_from_this()] { return self->isListening(); };
    m_handlers->request(std::move(plain),
                        [self = shared_from_this()](HttpReply reply) { self->answer(std::move(reply)); });
}

/// Whether the peer has not gone: it sends nothing while it waits, but its end shows.
bool HttpSession::isListening()
{
    char byte = 0;
    return ::recv(m_stream.socket().native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) != 0;
}

void HttpSession::refuse(beast::error_code code)
{
    unsigned status = 400;
    if (code == http::error::body_limit)
        status = 413;
    else if (code == http::error::header_limit || code == http::error::buffer_overflow)
        status = 431;
    else if (code == beast::error::timeout)
        status = 408;
    else if (code.category() != http::make_error_code(http::error::end_of_stream).category())
        return close(); // the connection is gone
    if (code == http::error::end_of_stream || code == http::error::partial_message)
        return close();
    m_closing = true;
    answer(httpError(status, status == 413 ? "The body is larger than is taken here." : code.message()));
}

void HttpSession::answer(HttpReply reply)
{
    const auto& request = m_parser->get();
    m_reply.emplace(static_cast<http::status>(reply.status), 11);
    m_reply->set(http::field::server, "ombra");
    m_reply->set(http::field::content_type, reply.contentType);
    m_reply->set(http::field::cache_control, "no-store");
    if (!reply.allow.empty())
        m_reply->set(http::field::allow, reply.allow);
    if (!reply.etag.empty())
        m_reply->set(http::field::etag, reply.etag);
    m_reply->keep_alive(!m_closing && request.keep_alive());
    m_replyBody = reply.sharedBody ? std::move(reply.sharedBody)
                                   : std::make_shared<const std::string>(std::move(reply.body));
    m_reply->body() = {m_replyBody->data(), m_replyBody->size()};
    if (reply.status == 204)
        m_reply->erase(http::field::content_type);
    m_reply->prepare_payload();
    if (request.method() == http::verb::head)
        m_reply->body() = {}; // its length stays said
    m_stream.expires_after(requestTime);
    http::async_write(m_stream, *m_reply, [self = shared_from_this()](beast::error_code code, std::size_t) {
        self->written(code, self->m_reply->keep_alive());
    });
}

void HttpSession::written(beast::error_code code, bool keepAlive)
{
    m_reply.reset();
    letGoOfText(std::move(m_replyBody));
    m_bodyRoom.reset();
    if (code)
        return close();
    if (keepAlive)
        return awaitRequest();
    // A peer that is still sending would lose the answer to a reset: take its bytes for a moment.
    beast::error_code ignored;
    m_stream.socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, ignored);
    m_stream.expires_after(lingerTime);
    linger();
}

void HttpSession::linger()
{
    m_stream.async_read_some(boost::asio::buffer(m_discard),
                             [self = shared_from_this()](beast::error_code code, std::size_t) {
                                 if (code)
                                     self->close();
                                 else
                                     self->linger();
                             });
}

void HttpSession::startStream()
{
    m_stream.expires_never();
    m_streams->add(shared_from_this());
    send(std::make_shared<const std::string>("HTTP/1.1 200 OK\r\nServer: ombra\r\n"
                                             "Content-Type: text/event-stream\r\nCache-Control: no-store\r\n"
                                             "Connection: close\r\n\r\n"));
    watchStream();
}

void HttpSession::watchStream()
{
    m_stream.async_read_some(boost::asio::buffer(m_discard),
                             [self = shared_from_this()](beast::error_code code, std::size_t) {
                                 if (code)
                                     self->close();
                                 else
                                     self->watchStream();
                             });
}

void HttpSession::send(const std::shared_ptr<const std::string>& message)
{
    if (m_closing)
        return;
    if (m_waitingBytes + message->size() > BroadcastHub::maxWaiting && !m_waiting.empty()) {
        Log::write(LogLevel::Warning, "vantrel.rest", "dropping an event stream that does not read");
        return close();
    }
    m_waiting.push_back(message);
    m_waitingBytes += message->size();
    if (m_waiting.size() == 1)
        writeStream();
}

void HttpSession::writeStream()
{
    boost::asio::async_write(m_stream, boost::asio::buffer(*m_waiting.front()),
                             [self = shared_from_this()](beast::error_code code, std::size_t) {
                                 if (code)
                                     return self->close();
                                 self->m_waitingBytes -= self->m_waiting.front()->size();
                                 letGoOfText(std::move(self->m_waiting.front()));
                                 self->m_waiting.pop_front();
                                 if (!self->m_waiting.empty() && !self->m_closing)
                                     self->writeStream();
                             });
}

void HttpSession::close()
{
    m_closing = true;
    m_stream.close();
}

} // namespace

void startHttpSession(boost::asio::ip::tcp::socket socket, std::shared_ptr<const HttpHandlers> handlers,
                      std::shared_ptr<BroadcastHub> streams, std::shared_ptr<BroadcastHub> sockets,
                      std::shared_ptr<HeaderQueue> headers, std::shared_ptr<HttpLimits> limits,
                      PeerLimit::Place room)
{
    std::make_shared<HttpSession>(std::move(socket), std::move(handlers), std::move(streams),
                                  std::move(sockets), std::move(headers), std::move(limits), std::move(room))
        ->start();
}

} // namespace vantrel::ombra

#include "tarn/net/jsonclient.h"

#include "tarn/log/log.h"
#include "tarn/net/linkframe.h"
#include "tarn/net/tcplink.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>

#include <atomic>
#include <cerrno>
#include <deque>
#include <mutex>
#include <source_location>
#include <vector>

namespace vantrel {

namespace asio = boost::asio;
using boost::system::error_code;

namespace {

constexpr std::size_t readSize = 256 * 1024;
constexpr std::size_t maxUnsent = 2 * linkframe::maxPayload;

} // namespace

/// What belongs to one connection; used on the thread in run() only, but for the link.
struct JsonClient::Connection
{
    TcpLink link;
    linkframe::Decoder decoder;
    std::vector<char> received = std::vector<char>(readSize);
    std::deque<std::string> unsent; // the first is being written
    std::size_t unsentBytes = 0;
    bool isPaused = false;
    std::string reason; // why it ended, when it was not asked to
};

struct JsonClient::Impl
{
    Impl(JsonClient* client, std::size_t maxUntakenOperations)
        : owner(client)
        , maxUntaken(maxUntakenOperations)
    {
    }

    std::shared_ptr<Connection> current() const
    {
        const std::lock_guard lock(mutex);
        return connection;
    }

    void read(Connection& c);
    void received(Connection& c, std::size_t count);
    bool queue(Connection& c, Patch&& patch);
    void send(Connection& c, const Patch& patch);
    void write(Connection& c);
    void end(Connection& c, std::string reason);
    void log(const std::string& text,
             const std::source_location& where = std::source_location::current()) const;

    JsonClient* const owner;
    const std::size_t maxUntaken;
    void (*callback)(JsonClient*, void*) = nullptr;
    void* user = nullptr;
    std::atomic<bool> isVerbose{true};

    mutable std::mutex mutex; // for what follows
    std::shared_ptr<Connection> connection;
    std::deque<Patch> patches; // of this connection only
    std::size_t untaken = 0;   // operations in them
};

void JsonClient::Impl::log(const std::string& text, const std::source_location& where) const
{
    if (isVerbose)
        Log::write(LogLevel::Warning, "net", text, where);
}

void JsonClient::Impl::end(Connection& c, std::string reason)
{
    if (c.link.isOpen() && c.reason.empty())
        c.reason = std::move(reason);
    c.link.close();
}

void JsonClient::Impl::read(Connection& c)
{
    c.link.socket().async_read_some(
        asio::buffer(c.received), [this, &c](const error_code& error, std::size_t count) {
            if (error)
                end(c, error == asio::error::eof ? "the server closed it" : error.message());
            else
                received(c, count);
        });
}

void JsonClient::Impl::received(Connection& c, std::size_t count)
{
    c.decoder.feed({c.received.data(), count});
    bool isQueued = false;
    Patch patch;
    auto result = c.decoder.next(patch);
    for (; result == linkframe::Decoder::Result::Patch; result = c.decoder.next(patch)) {
        if (!queue(c, std::move(patch)))
            return;
        isQueued = true;
        patch = Patch();
    }
    if (isQueued && callback)
        callback(owner, user);
    if (result == linkframe::Decoder::Result::Error) {
        end(c, c.decoder.message());
        return;
    }
    {
        const std::lock_guard lock(mutex);
        c.isPaused = untaken > maxUntaken;
        if (c.isPaused)
            return;
    }
    read(c);
}

// False when the connection is no longer the current one, and its patches are nobody's.
bool JsonClient::Impl::queue(Connection& c, Patch&& patch)
{
    std::vector<Patch> pieces;
    if (patch.size() <= chunkSize) {
        pieces.push_back(std::move(patch));
    } else {
        for (std::size_t i = 0; i < patch.size(); ++i) {
            if (i % chunkSize == 0)
                pieces.emplace_back();
            pieces.back().append(patch[i]);
        }
    }
    const std::lock_guard lock(mutex);
    if (connection.get() != &c)
        return false;
    for (Patch& piece : pieces) {
        if (piece.empty() && !patches.empty())
            continue; // a sign of life, which those that wait are as well
        untaken += piece.size();
        patches.push_back(std::move(piece));
    }
    return true;
}

void JsonClient::Impl::send(Connection& c, const Patch& patch)
{
    if (!c.link.isOpen())
        return;
    std::string frame = linkframe::encode(patch);
    if (frame.empty())
        return;
    c.unsentBytes += frame.size();
    c.unsent.push_back(std::move(frame));
    if (c.unsentBytes > maxUnsent)
        end(c, "the server does not read");
    else if (c.unsent.size() == 1)
        write(c);
}

void JsonClient::Impl::write(Connection& c)
{
    asio::async_write(c.link.socket(), asio::buffer(c.unsent.front()),
                      [this, &c](const error_code& error, std::size_t) {
                          if (error) {
                              end(c, error.message());
                              return;
                          }
                          c.unsentBytes -= c.unsent.front().size();
                          c.unsent.pop_front();
                          if (!c.unsent.empty())
                              write(c);
                      });
}

JsonClient::JsonClient(std::size_t maxUntaken)
    : m_impl(std::make_unique<Impl>(this, maxUntaken))
{
}
JsonClient::~JsonClient() = default;

void JsonClient::setRecvCallback(void (*callback)(JsonClient*, void*), void* user)
{
    m_impl->callback = callback;
    m_impl->user = user;
}

void JsonClient::setVerbose(bool verbose)
{
    m_impl->isVerbose = verbose;
}

bool JsonClient::connect(const asio::ip::address& address, unsigned short port, unsigned int timeoutMs,
                         int* error)
{
    const auto fresh = std::make_shared<Connection>();
    {
        const std::lock_guard lock(m_impl->mutex);
        if (m_impl->connection)
            m_impl->connection->link.close();
        m_impl->connection = fresh;
        m_impl->patches.clear();
        m_impl->untaken = 0;
    }
    const auto result = fresh->link.connect({address, port}, timeoutMs);
    if (error)
        *error = result.value();
    if (result && result != asio::error::operation_aborted)
        m_impl->log("Connecting to " + address.to_string() + " failed: " + result.message());
    return !result;
}

void JsonClient::run()
{
    const auto connection = m_impl->current();
    if (!connection || !connection->link.isOpen())
        return;
    m_impl->read(*connection);
    connection->link.run();
    if (!connection->reason.empty())
        m_impl->log("The link ended: " + connection->reason);
}

void JsonClient::disconnect()
{
    if (const auto connection = m_impl->current())
        connection->link.close();
}

void JsonClient::sendPatch(const Patch& patch)
{
    const auto connection = m_impl->current();
    if (!connection || !connection->link.isOpen())
        return;
    connection->link.post([impl = m_impl.get(), c = connection.get(), patch] { impl->send(*c, patch); });
}

void JsonClient::sendPatch(const PatchOp& op)
{
    Patch patch;
    patch.append(op);
    sendPatch(patch);
}

bool JsonClient::recvPatch(Patch& out)
{
    const std::lock_guard lock(m_impl->mutex);
    if (m_impl->patches.empty())
        return false;
    out = std::move(m_impl->patches.front());
    m_impl->patches.pop_front();
    m_impl->untaken -= out.size();
    if (Connection* c = m_impl->connection.get(); c->isPaused && m_impl->untaken <= m_impl->maxUntaken / 2) {
        c->isPaused = false;
        c->link.post([impl = m_impl.get(), c] {
            if (c->link.isOpen())
                impl->read(*c);
        });
    }
    return true;
}

} // namespace vantrel

#include "ombra/preview/previewserver.h"

#include "tarn/preview/newestqueue.h"
#include "tarn/preview/previewwire.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <array>

namespace vantrel::ombra {

/// Lives by its pending operations.
class PreviewServer::Reader : public std::enable_shared_from_this<Reader>
{
public:
    Reader(boost::asio::ip::tcp::socket socket, PeerLimit::Place room)
        : m_socket(std::move(socket))
        , m_room(std::move(room))
    {
    }

    void start()
    {
        m_room->giveWay = [weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->close();
        };
        watch();
    }

    /// Notices the end; what a reader sends means nothing.
    void watch()
    {
        m_socket.async_read_some(boost::asio::buffer(m_discard),
                                 [self = shared_from_this()](boost::system::error_code code, std::size_t) {
                                     if (code)
                                         self->close();
                                     else
                                         self->watch();
                                 });
    }

    void offer(const Key& key, const Bytes& bytes)
    {
        if (!m_socket.is_open())
            return;
        m_waiting.push({key, bytes});
        if (!m_current)
            write();
    }

    void close()
    {
        boost::system::error_code ignored;
        m_socket.close(ignored);
        m_waiting = {};
    }

private:
    struct Waiting
    {
        Key key;
        Bytes bytes;

        bool isOfOneKindWith(const Waiting& other) const { return key == other.key; }
    };

    void write()
    {
        m_current = m_waiting.take().bytes;
        boost::asio::async_write(m_socket, boost::asio::buffer(*m_current),
                                 [self = shared_from_this()](boost::system::error_code code, std::size_t) {
                                     self->m_current.reset();
                                     if (code)
                                         self->close();
                                     else if (!self->m_waiting.empty())
                                         self->write();
                                 });
    }

    boost::asio::ip::tcp::socket m_socket;
    PeerLimit::Place m_room;
    std::array<char, 1024> m_discard{};
    Bytes m_current; // on its way
    NewestQueue<Waiting> m_waiting;
};

PreviewServer::PreviewServer(boost::asio::io_context& io)
    : m_io(io)
    , m_listener(io, "vantrel.preview",
                 [this](boost::asio::ip::tcp::socket socket) { return accept(std::move(socket)); })
{
}

PreviewServer::~PreviewServer()
{
    m_alive.reset();
    for (const auto& weak : m_readers) {
        if (const auto reader = weak.lock())
            reader->close();
    }
}

bool PreviewServer::listen(const boost::asio::ip::address& address, unsigned short port, std::string* error)
{
    return m_listener.listen(address, port, error);
}

unsigned short PreviewServer::port() const
{
    return m_listener.port();
}

bool PreviewServer::accept(boost::asio::ip::tcp::socket socket)
{
    std::erase_if(m_readers, [](const auto& weak) { return weak.expired(); });
    boost::system::error_code ignored;
    PeerLimit::Place room = m_room.enter(socket.remote_endpoint(ignored).address());
    if (!room)
        return false;
    // A small send buffer: what lies in it is old by the time it is read.
    socket.set_option(boost::asio::socket_base::send_buffer_size(512 * 1024), ignored);
    const auto reader = std::make_shared<Reader>(std::move(socket), std::move(room));
    m_readers.push_back(reader);
    m_hasReaders = true;
    reader->start();
    for (const auto& [key, frame] : m_latest)
        reader->offer(key, std::make_shared<const std::string>(previewwire::encode(frame)));
    return true;
}

void PreviewServer::show(PreviewFrame frame)
{
    const std::lock_guard lock(m_mutex);
    Key key(frame.source, frame.frame.getStreamIndex(), frame.formatCode());
    m_incoming[std::move(key)] = std::move(frame);
    if (std::exchange(m_posted, true))
        return;
    boost::asio::post(m_io, [this, alive = std::weak_ptr(m_alive)] {
        if (!alive.expired())
            distribute();
    });
}

void PreviewServer::distribute()
{
    std::map<Key, PreviewFrame> frames;
    {
        const std::lock_guard lock(m_mutex);
        frames.swap(m_incoming);
        m_posted = false;
    }
    std::erase_if(m_readers, [](const auto& weak) { return weak.expired(); });
    m_hasReaders = !m_readers.empty();
    if (m_readers.empty()) {
        m_latest.clear();
        return;
    }
    for (auto& [key, frame] : frames) {
        const auto bytes = std::make_shared<const std::string>(previewwire::encode(frame));
        for (const auto& weak : m_readers) {
            if (const auto reader = weak.lock(); reader && !bytes->empty())
                reader->offer(key, bytes);
        }
        m_latest[key] = std::move(frame);
    }
}

} // namespace vantrel::ombra

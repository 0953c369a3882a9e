#pragma once

#include "ombra/base/bytebudget.h"
#include "ombra/base/peerlimit.h"
#include "ombra/link/changebatch.h"
#include "ombra/link/crossedwrites.h"
#include "tarn/net/linkframe.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace vantrel::ombra {

/// One client's end of the link. At most one frame is on its way; what changes meanwhile waits in a batch, so
/// that a slow client gets fewer and newer values. Lives by its pending operations; the thread of the
/// io_context.
class LinkClient : public std::enable_shared_from_this<LinkClient>
{
public:
    /// The most bytes that may wait for a client before its link is ended, beside one snapshot of the scene:
    /// nobody is to be cut off for the size of that.
    static constexpr std::size_t maxWaiting = 64u * 1024 * 1024;

    struct Handlers
    {
        std::function<void(LinkClient&, const PatchOp&)> operation;
        std::function<void(std::function<void()>)> aside; // runs work on another thread
        std::function<void(LinkClient&)> drained;         // a snapshot was asked for while one was on its way
        std::function<void(LinkClient&)> closed;          // once
        /// Of all clients.
        std::shared_ptr<ByteBudget> largeFrames = std::make_shared<ByteBudget>(256u * 1024 * 1024);
    };

    LinkClient(boost::asio::ip::tcp::socket socket, std::shared_ptr<const Handlers> handlers,
               PeerLimit::Place room);

    void start();
    void close();
    bool isOpen() const noexcept { return m_open; }
    const std::string& name() const noexcept { return m_name; } // for the log

    /// Puts a change where the next flush() takes it from. What changes before the client's first
    /// frame is left out: a change means nothing to who has no scene, and the one asked for holds it.
    void add(const PatchOp& op);
    enum class Content { Changes, Snapshot };
    /// Sends whole operations after all that was added before.
    void send(const Patch& patch, Content content = Content::Changes);
    /// False while an earlier snapshot is on its way; drained() tells when there is room for this one.
    bool startSnapshot();
    /// Writes what waits, if nothing is being written.
    void flush();
    /// Says that the server is there, by an empty frame, if nothing else was said since the last call.
    void showLife();

    /// The client wrote a property.
    void written(const Path& path) { m_crossed.written(path, std::chrono::steady_clock::now()); }
    /// What it is to be told once more, since its write crossed another value on the link.
    std::vector<Path> takeCrossed() { return m_crossed.takeDue(std::chrono::steady_clock::now()); }

private:
    void read();
    void received(std::size_t count);
    bool awaitFrame();
    void handleFrames();
    void handleFrame(linkframe::Decoder::Result result);
    void handleOperations();
    void write();
    void written();
    void queueBatch();
    bool checkWaiting();
    void end(const std::string& why);

    boost::asio::ip::tcp::socket m_socket;
    std::shared_ptr<const Handlers> m_handlers;
    PeerLimit::Place m_room;
    std::string m_name;
    linkframe::Decoder m_decoder;
    boost::asio::steady_timer m_patience; // runs while a frame is half there, and before the first one
    bool m_isPatient = false;
    std::size_t m_awaited = 0;     // bytes of the frame that it waits for
    ByteBudget::Place m_roomForIt; // of a large one
    std::array<char, 64 * 1024> m_readBuffer{};
    ChangeBatch m_batch;
    CrossedWrites m_crossed;
    Patch m_patch; // the one being handled, up to m_handled
    std::size_t m_handled = 0;
    bool m_isLarge = false; // the frame that it came in
    struct Frame
    {
        std::string bytes;
        Content content = Content::Changes;
    };
    std::deque<Frame> m_frames; // the front one is being written while m_writing
    std::size_t m_frameBytes = 0;
    std::size_t m_snapshotFrames = 0;
    bool m_wantsSnapshot = false;
    bool m_writing = false;
    bool m_hasSpoken = false; // by a frame
    bool m_silent = true;     // since the last showLife()
    bool m_open = true;
};

} // namespace vantrel::ombra

#include "ombra/link/linkclient.h"

#include "tarn/log/log.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::chrono::seconds frameTime{20}; // for a frame to come, and so much more for a large one:
constexpr std::size_t bytesASecond = 128 * 1024;
constexpr std::size_t smallFrame = 64 * 1024;     // bytes that are parsed at once
constexpr std::chrono::milliseconds sliceTime{5}; // of one client's operations, then it is others' turn

} // namespace

LinkClient::LinkClient(boost::asio::ip::tcp::socket socket, std::shared_ptr<const Handlers> handlers,
                       PeerLimit::Place room)
    : m_socket(std::move(socket))
    , m_handlers(std::move(handlers))
    , m_room(std::move(room))
    , m_patience(m_socket.get_executor())
{
    boost::system::error_code code;
    const auto peer = m_socket.remote_endpoint(code);
    m_name = peer.address().to_string() + ":" + std::to_string(peer.port());
}

void LinkClient::start()
{
    m_room->giveWay = [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            self->end("it gives way to another peer");
    };
    awaitFrame();
    read();
}

/// Who never says anything, or stops within a frame, keeps no place for ever. False, and the link is ended,
/// when there is no room for a frame as large as this one.
bool LinkClient::awaitFrame()
{
    const std::size_t size = m_decoder.waitingSize();
    if (std::exchange(m_isPatient, true) && size == m_awaited)
        return true;
    m_awaited = size;
    if (size > ByteBudget::small && !m_roomForIt && !(m_roomForIt = m_handlers->largeFrames->take(size))) {
        end("too many large frames are on their way");
        return false;
    }
    m_patience.expires_after(frameTime + std::chrono::seconds(size / bytesASecond));
    m_patience.async_wait([weak = weak_from_this()](boost::system::error_code code) {
        const auto self = weak.lock();
        if (!code && self && self->m_isPatient)
            self->end("it sends no whole frame");
    });
    return true;
}

void LinkClient::end(const std::string& why)
{
    if (m_open)
        Log::write(LogLevel::Warning, "vantrel.link", "ending the link of " + m_name + ": " + why);
    close();
}

void LinkClient::close()
{
    if (!std::exchange(m_open, false))
        return;
    boost::system::error_code ignored;
    m_isPatient = false;
    m_patience.cancel();
    m_socket.close(ignored);
    m_handlers->closed(*this);
}

void LinkClient::read()
{
    m_socket.async_read_some(boost::asio::buffer(m_readBuffer),
                             [self = shared_from_this()](boost::system::error_code code, std::size_t count) {
                                 if (code)
                                     return self->close();
                                 self->received(count);
                             });
}

void LinkClient::received(std::size_t count)
{
    m_decoder.feed({m_readBuffer.data(), count});
    handleFrames();
}

/// Reads on when all that is there is handled. A large frame is parsed on another thread, and nothing is read
/// meanwhile.
void LinkClient::handleFrames()
{
    if (!m_open)
        return;
    m_isLarge = m_decoder.nextSize() > smallFrame;
    if (!m_isLarge)
        return handleFrame(m_decoder.next(m_patch));
    m_handlers->aside([self = shared_from_this()]() mutable {
        const auto result = self->m_decoder.next(self->m_patch);
        const auto executor = self->m_socket.get_executor();
        // Nothing of the client stays behind on this thread, to end there.
        boost::asio::post(executor, [self = std::move(self), result] { self->handleFrame(result); });
    });
}

void LinkClient::handleFrame(linkframe::Decoder::Result result)
{
    if (!m_open)
        return;
    if (result == linkframe::Decoder::Result::NeedMore) {
        if (m_decoder.waitingSize() == 0 || awaitFrame())
            read();
        return;
    }
    if (std::exchange(m_isPatient, false))
        m_patience.cancel();
    m_roomForIt.reset();
    if (result == linkframe::Decoder::Result::Error)
        return end(m_decoder.message());
    m_handled = 0;
    m_hasSpoken = true;
    handleOperations();
}

void LinkClient::handleOperations()
{
    const auto until = std::chrono::steady_clock::now() + sliceTime;
    while (m_open && m_handled < m_patch.size()) {
        m_handlers->operation(*this, m_patch[m_handled++]);
        if (std::chrono::steady_clock::now() >= until)
            break;
    }
    if (m_open && m_handled < m_patch.size()) {
        boost::asio::post(m_socket.get_executor(), [self = shared_from_this()] { self->handleOperations(); });
        return;
    }
    auto done = std::make_shared<Patch>(std::exchange(m_patch, {}));
    if (m_isLarge) // to free it takes time as well
        m_handlers->aside([done = std::move(done)] {});
    // By the loop, so that a client with many small frames leaves others their turn as well.
    boost::asio::post(m_socket.get_executor(), [self = shared_from_this()] { self->handleFrames(); });
}

void LinkClient::queueBatch()
{
    if (m_batch.empty())
        return;
    m_frames.push_back({linkframe::encode(m_batch.take())});
    m_frameBytes += m_frames.back().bytes.size();
}

void LinkClient::add(const PatchOp& op)
{
    if (!m_hasSpoken)
        return;
    m_batch.add(op);
    if (op.op == PatchOpType::Replace)
        m_crossed.sent(op.path, std::chrono::steady_clock::now());
}

bool LinkClient::startSnapshot()
{
    m_wantsSnapshot = m_snapshotFrames > 0;
    return !m_wantsSnapshot;
}

void LinkClient::send(const Patch& patch, Content content)
{
    if (!m_open)
        return;
    if (!patch.empty())
        m_crossed.sentMuch(std::chrono::steady_clock::now());
    queueBatch();
    m_frames.push_back({linkframe::encode(patch), content});
    if (content == Content::Snapshot)
        ++m_snapshotFrames;
    else
        m_frameBytes += m_frames.back().bytes.size();
    checkWaiting();
}

bool LinkClient::checkWaiting()
{
    if (m_frameBytes + m_batch.bytes() <= maxWaiting)
        return true;
    end("it does not read");
    return false;
}

void LinkClient::flush()
{
    if (!m_open || !checkWaiting() || m_writing)
        return;
    if (m_frames.empty())
        queueBatch();
    if (!m_frames.empty())
        write();
}

void LinkClient::showLife()
{
    if (std::exchange(m_silent, true) && !m_writing)
        send({});
    flush();
}

void LinkClient::write()
{
    m_writing = true;
    m_silent = false;
    boost::asio::async_write(m_socket, boost::asio::buffer(m_frames.front().bytes),
                             [self = shared_from_this()](boost::system::error_code code, std::size_t) {
                                 self->m_writing = false;
                                 if (code)
                                     return self->close();
                                 self->written();
                                 self->flush();
                             });
}

void LinkClient::written()
{
    if (m_frames.front().content == Content::Snapshot)
        --m_snapshotFrames;
    else
        m_frameBytes -= m_frames.front().bytes.size();
    m_frames.pop_front();
    if (m_snapshotFrames == 0 && std::exchange(m_wantsSnapshot, false))
        m_handlers->drained(*this);
}

} // namespace vantrel::ombra

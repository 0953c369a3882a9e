#include "ombra/link/linkclient.h"

#include "tarn/log/log.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>

namespace vantrel::ombra {

LinkClient::LinkClient(boost::asio::ip::tcp::socket socket, std::shared_ptr<const Handlers> handlers)
    : m_socket(std::move(socket))
    , m_handlers(std::move(handlers))
{
    boost::system::error_code code;
    const auto peer = m_socket.remote_endpoint(code);
    m_name = peer.address().to_string() + ":" + std::to_string(peer.port());
}

void LinkClient::start()
{
    read();
}

void LinkClient::close()
{
    if (!std::exchange(m_open, false))
        return;
    boost::system::error_code ignored;
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
    for (Patch patch; m_open;) {
        const auto result = m_decoder.next(patch);
        if (result == linkframe::Decoder::Result::NeedMore)
            break;
        if (result == linkframe::Decoder::Result::Error) {
            Log::write(LogLevel::Warning, "vantrel.link",
                       "ending the link of " + m_name + ": " + m_decoder.message());
            return close();
        }
        m_handlers->patch(*this, patch);
    }
    if (m_open)
        read();
}

void LinkClient::queueBatch()
{
    if (m_batch.empty())
        return;
    m_frames.push_back(linkframe::encode(m_batch.take()));
    m_frameBytes += m_frames.back().size();
}

void LinkClient::add(const PatchOp& op)
{
    m_batch.add(op);
    if (op.op == PatchOpType::Replace)
        m_crossed.sent(op.path, std::chrono::steady_clock::now());
}

void LinkClient::send(const Patch& patch)
{
    if (!m_open)
        return;
    if (!patch.empty())
        m_crossed.sentMuch(std::chrono::steady_clock::now());
    queueBatch();
    m_frames.push_back(linkframe::encode(patch));
    m_frameBytes += m_frames.back().size();
    checkWaiting();
}

bool LinkClient::checkWaiting()
{
    if (m_frameBytes + m_batch.bytes() <= maxWaiting)
        return true;
    Log::write(LogLevel::Warning, "vantrel.link", "ending the link of " + m_name + ": it does not read");
    close();
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
    boost::asio::async_write(m_socket, boost::asio::buffer(m_frames.front()),
                             [self = shared_from_this()](boost::system::error_code code, std::size_t) {
                                 self->m_writing = false;
                                 if (code)
                                     return self->close();
                                 self->m_frameBytes -= self->m_frames.front().size();
                                 self->m_frames.pop_front();
                                 self->flush();
                             });
}

} // namespace vantrel::ombra

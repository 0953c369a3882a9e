#include "tarn/preview/previewclient.h"

#include "tarn/log/log.h"
#include "tarn/net/tcplink.h"
#include "tarn/preview/newestqueue.h"
#include "tarn/preview/previewwire.h"

#include <boost/asio/buffer.hpp>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace vantrel {

namespace asio = boost::asio;

namespace {

// Far more than a server has previews: a stream that names ever new sources must not fill the memory.
constexpr std::size_t maxWaiting = 64;

} // namespace

struct PreviewClient::State
{
    void read(TcpLink& link);
    void push(PreviewFrame&& frame);
    void end(TcpLink& link, const std::string& reason);

    previewwire::Decoder decoder; // on the thread in run()

    std::mutex mutex; // for what follows
    std::condition_variable arrived;
    NewestQueue<PreviewFrame> waiting;
    std::function<void()> callback;
};

void PreviewClient::State::end(TcpLink& link, const std::string& reason)
{
    if (link.isOpen())
        Log::write_fmt(LogLevel::Warning, {}, "preview", "The preview ended: %s", reason.c_str());
    link.close();
}

void PreviewClient::State::read(TcpLink& link)
{
    const auto space = decoder.space();
    link.socket().async_read_some(asio::buffer(space.data(), space.size()),
                                  [this, &link](const boost::system::error_code& error, std::size_t count) {
                                      if (error) {
                                          end(link, error == asio::error::eof ? "the server closed it"
                                                                              : error.message());
                                          return;
                                      }
                                      const auto result = decoder.commit(count);
                                      if (result == previewwire::Decoder::Result::Error) {
                                          end(link, decoder.message());
                                          return;
                                      }
                                      if (result == previewwire::Decoder::Result::Frame)
                                          push(decoder.take());
                                      read(link);
                                  });
}

void PreviewClient::State::push(PreviewFrame&& frame)
{
    std::function<void()> tell;
    {
        const std::lock_guard lock(mutex);
        waiting.push(std::move(frame));
        if (waiting.size() > maxWaiting)
            waiting.take();
        tell = callback;
    }
    arrived.notify_one();
    if (tell)
        tell();
}

PreviewClient::PreviewClient()
    : m_state(std::make_unique<State>())
{
}
PreviewClient::~PreviewClient() = default;

void PreviewClient::addFrameCallback(std::function<void()> callback)
{
    const std::lock_guard lock(m_state->mutex);
    if (auto first = std::move(m_state->callback)) {
        m_state->callback = [first = std::move(first), second = std::move(callback)] {
            first();
            second();
        };
    } else {
        m_state->callback = std::move(callback);
    }
}

void PreviewClient::run()
{
    const auto current = link();
    if (!current || !current->isOpen())
        return;
    m_state->decoder = {};
    m_state->read(*current);
    current->run();
}

bool PreviewClient::pollFrame(PreviewFrame& out, unsigned int timeoutMs)
{
    std::unique_lock lock(m_state->mutex);
    if (!m_state->arrived.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                   [this] { return !m_state->waiting.empty(); }))
        return false;
    out = m_state->waiting.take();
    return true;
}

} // namespace vantrel

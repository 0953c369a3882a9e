#pragma once

#include "ombra/base/listener.h"
#include "ombra/base/peerlimit.h"
#include "tarn/preview/frame.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vantrel::ombra {

/// Streams preview pictures and audio levels (format: tarn/preview/previewwire.h) to any number of readers.
/// Each reader has at most one frame on its way; behind it waits only the newest of each source, stream and
/// format. A new reader gets the latest ones at once. Lives on the thread of the io_context; show() may come
/// from any thread.
class PreviewServer
{
public:
    explicit PreviewServer(boost::asio::io_context& io);
    ~PreviewServer();
    PreviewServer(const PreviewServer&) = delete;
    PreviewServer& operator=(const PreviewServer&) = delete;

    /// False, with the reason, when the port is not to be had. Port 0 takes a free one.
    bool listen(const boost::asio::ip::address& address, unsigned short port, std::string* error);
    unsigned short port() const;

    /// A new frame; replaces an earlier one of its kind that was not passed on yet.
    void show(PreviewFrame frame);
    /// Whether anybody reads: else nothing needs to be made for them. Any thread.
    bool hasReaders() const { return m_hasReaders; }

private:
    class Reader;
    using Key = std::tuple<std::string, int, int>; // source, stream and format
    using Bytes = std::shared_ptr<const std::string>;

    bool accept(boost::asio::ip::tcp::socket socket);
    void distribute();

    boost::asio::io_context& m_io;
    Listener m_listener;
    PeerLimit m_room{64, 32};
    std::vector<std::weak_ptr<Reader>> m_readers;
    std::map<Key, PreviewFrame> m_latest; // while somebody reads: later they would be old
    std::atomic<bool> m_hasReaders{false};
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);

    std::mutex m_mutex; // guards what follows
    std::map<Key, PreviewFrame> m_incoming;
    bool m_posted = false;
};

} // namespace vantrel::ombra

#pragma once

#include "tarn/json/patch.h"

#include <boost/asio/ip/address.hpp>

#include <memory>

namespace vantrel {

/// The client's end of the scene link: frames of JSON patches over TCP (format: tarn/net/linkframe.h). run()
/// blocks on the connection thread; sendPatch, recvPatch and disconnect may come from the main thread
/// meanwhile. Frames are parsed on the thread in run(), and large patches are queued in pieces of at most
/// chunkSize operations, so that the main thread can apply them without stalling.
class JsonClient
{
public:
    static constexpr std::size_t chunkSize = 512;

    /// Reading pauses above so many operations that nobody has taken, and goes on when half of them are left.
    static constexpr std::size_t defaultMaxUntaken = 2'000'000;

    explicit JsonClient(std::size_t maxUntaken = defaultMaxUntaken);
    ~JsonClient();

    void setRecvCallback(void (*callback)(JsonClient*, void*), void* user);
    void setVerbose(bool verbose);
    bool connect(const boost::asio::ip::address& address, unsigned short port, unsigned int timeoutMs,
                 int* error);
    void run();
    void disconnect();
    /// Never blocks: writes from a queue on the link's own thread; dropped when there is no link.
    void sendPatch(const Patch& patch);
    void sendPatch(const PatchOp& op);
    bool recvPatch(Patch& out);

private:
    struct Connection;
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantrel

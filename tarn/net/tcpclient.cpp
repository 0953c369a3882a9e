#include "tarn/net/tcpclient.h"

#include "tarn/net/tcplink.h"

#include <mutex>

namespace vantrel {

struct TcpClient::Impl
{
    mutable std::mutex mutex;
    std::shared_ptr<TcpLink> link;
};

TcpClient::TcpClient()
    : m_tcp(std::make_unique<Impl>())
{
}
TcpClient::~TcpClient() = default;

std::shared_ptr<TcpLink> TcpClient::link() const
{
    const std::lock_guard lock(m_tcp->mutex);
    return m_tcp->link;
}

bool TcpClient::connect(const boost::asio::ip::tcp::endpoint& endpoint, unsigned int timeoutMs, int* error)
{
    const auto fresh = std::make_shared<TcpLink>();
    {
        const std::lock_guard lock(m_tcp->mutex);
        if (m_tcp->link)
            m_tcp->link->close();
        m_tcp->link = fresh;
    }
    const auto result = fresh->connect(endpoint, timeoutMs);
    if (error)
        *error = result.value();
    return !result;
}

void TcpClient::disconnect()
{
    if (const auto current = link())
        current->close();
}

} // namespace vantrel

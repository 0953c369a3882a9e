#include "ombra/base/listener.h"

#include "ombra/base/takeport.h"
#include "tarn/log/log.h"
#include "tarn/net/tcplink.h"

#include <chrono>

namespace vantrel::ombra {

Listener::Listener(boost::asio::io_context& io, const char* module, Accepted accepted)
    : m_module(module)
    , m_accepted(std::move(accepted))
    , m_acceptor(io)
    , m_retry(io)
{
}

bool Listener::listen(const boost::asio::ip::address& address, unsigned short port, std::string* error)
{
    boost::system::error_code code;
    if (!takePort(m_acceptor, {address, port}, code)) {
        *error = "cannot listen on " + address.to_string() + " port " + std::to_string(port) + ": " +
                 code.message();
        return false;
    }
    accept();
    return true;
}

unsigned short Listener::port() const
{
    boost::system::error_code code;
    return m_acceptor.local_endpoint(code).port();
}

void Listener::accept()
{
    m_acceptor.async_accept([this](boost::system::error_code code, boost::asio::ip::tcp::socket socket) {
        if (code == boost::asio::error::operation_aborted)
            return;
        if (code) {
            // Out of descriptors, most likely: wait until some are free again.
            Log::write(LogLevel::Warning, m_module, "cannot accept a connection: " + code.message());
            m_retry.expires_after(std::chrono::milliseconds(200));
            m_retry.async_wait([this](boost::system::error_code waited) {
                if (!waited)
                    accept();
            });
            return;
        }
        setLinkOptions(socket);
        if (!m_accepted(std::move(socket)))
            Log::write(LogLevel::Warning, m_module, "too many connections: refusing one");
        accept();
    });
}

} // namespace vantrel::ombra

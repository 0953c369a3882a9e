#pragma once

#include <QtGlobal>

#include <arpa/inet.h>
#include <array>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vantrel::test {

/// A loopback port that lets a connect hang, as a host behind a dead cable does: its queue is full and nobody
/// accepts.
class SilentPort
{
public:
    SilentPort()
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* where = reinterpret_cast<sockaddr*>(&address);
        m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
        if (::bind(m_listener, where, size) != 0 || ::listen(m_listener, 0) != 0 ||
            ::getsockname(m_listener, where, &size) != 0)
            qFatal("no port to be silent on");
        m_port = ntohs(address.sin_port);
        for (int& filler : m_fillers) {
            filler = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
            ::connect(filler, where, size);
        }
    }
    ~SilentPort()
    {
        for (const int filler : m_fillers)
            ::close(filler);
        ::close(m_listener);
    }
    SilentPort(const SilentPort&) = delete;
    SilentPort& operator=(const SilentPort&) = delete;

    quint16 port() const { return m_port; }

private:
    int m_listener = -1;
    std::array<int, 4> m_fillers{};
    quint16 m_port = 0;
};

} // namespace vantrel::test

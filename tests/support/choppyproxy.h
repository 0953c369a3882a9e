#pragma once

#include "tests/support/localproxy.h"

#include <QTimer>

namespace vantrel::test {

/// What the server sends comes in pieces of random size, each in a turn of the event loop of its own.
class ChoppyProxy : public LocalProxy
{
public:
    using LocalProxy::LocalProxy;

    int pieces() const { return m_pieces; }
    /// Ends all connections, in the middle of what they bring.
    void drop()
    {
        cut([](const QTcpSocket*) { return true; });
    }

protected:
    void join(QTcpSocket* client, QTcpSocket* server) override
    {
        auto* pump = new QTimer(client);
        connect(client, &QTcpSocket::readyRead, server, [=] { server->write(client->readAll()); });
        connect(server, &QTcpSocket::readyRead, pump, [=] { pump->start(0); });
        connect(pump, &QTimer::timeout, this, [=, this] { passOn(*server, *client, *pump); });
        connect(server, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
    }

private:
    void passOn(QTcpSocket& server, QTcpSocket& client, QTimer& pump)
    {
        // Mostly smaller than a message of the event stream, so that many end inside of one.
        const qint64 size = m_random.bounded(4) ? 1 + m_random.bounded(120) : 1 + m_random.bounded(8000);
        client.write(server.read(size));
        client.flush();
        ++m_pieces;
        if (server.bytesAvailable() == 0)
            pump.stop();
    }

    int m_pieces = 0;
};

} // namespace vantrel::test

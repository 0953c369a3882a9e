#pragma once

#include <QPointer>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace vantrel::test {

/// Stands between a client and a server on this machine and passes on what both send; what the server sends
/// comes in pieces of random size, each in a turn of the event loop of its own.
class ChoppyProxy : public QObject
{
public:
    ChoppyProxy(quint16 serverPort, quint32 seed)
        : m_serverPort(serverPort)
        , m_random(seed)
    {
        connect(&m_listener, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* client = m_listener.nextPendingConnection())
                accept(client);
        });
        if (!m_listener.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }

    quint16 port() const { return m_listener.serverPort(); }
    int pieces() const { return m_pieces; }
    /// Ends all connections, in the middle of what they bring.
    void drop()
    {
        for (QTcpSocket* client : m_listener.findChildren<QTcpSocket*>())
            client->abort();
    }

private:
    void accept(QTcpSocket* client)
    {
        auto* server = new QTcpSocket(client);
        auto* pump = new QTimer(client);
        server->connectToHost(QHostAddress::LocalHost, m_serverPort);
        connect(client, &QTcpSocket::readyRead, server, [=] { server->write(client->readAll()); });
        connect(server, &QTcpSocket::readyRead, pump, [=] { pump->start(0); });
        connect(pump, &QTimer::timeout, this, [=, this] { passOn(*server, *client, *pump); });
        connect(server, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
        connect(client, &QTcpSocket::disconnected, client, [=] {
            server->abort();
            client->deleteLater();
        });
    }
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

    quint16 m_serverPort;
    QRandomGenerator m_random;
    QTcpServer m_listener;
    int m_pieces = 0;
};

} // namespace vantrel::test

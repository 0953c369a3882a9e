#pragma once

#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

namespace vantrel::test {

/// Stands between clients and a server on this machine. What it does to what both send is a derived class's
/// matter; a client that goes takes its connection to the server along.
class LocalProxy : public QObject
{
public:
    LocalProxy(quint16 serverPort, quint32 seed)
        : m_random(seed)
        , m_serverPort(serverPort)
    {
        connect(&m_listener, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* client = m_listener.nextPendingConnection())
                accept(client);
        });
        if (!m_listener.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }

    quint16 port() const { return m_listener.serverPort(); }

protected:
    /// The server's end is a child of the client's.
    virtual void join(QTcpSocket* client, QTcpSocket* server) = 0;
    /// Ends connections in the middle of what they bring.
    void cut(const std::function<bool(const QTcpSocket*)>& concerns)
    {
        for (QTcpSocket* client : m_listener.findChildren<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly))
            if (concerns(client))
                client->abort();
    }

    QRandomGenerator m_random;

private:
    void accept(QTcpSocket* client)
    {
        auto* server = new QTcpSocket(client);
        server->connectToHost(QHostAddress::LocalHost, m_serverPort);
        join(client, server);
        connect(client, &QTcpSocket::disconnected, client, [=] {
            server->abort();
            client->deleteLater();
        });
    }

    quint16 m_serverPort;
    QTcpServer m_listener;
};

} // namespace vantrel::test

#pragma once

#include <QQueue>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <functional>
#include <memory>

namespace vantrel::test {

/// Stands between a client and a server on this machine like a slow line: each connection has a delay of its
/// own, of 0 to 200 ms in each direction, so that connections overtake each other, and can be cut.
class DelayProxy : public QObject
{
public:
    DelayProxy(quint16 serverPort, quint32 seed)
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
    void cutAll()
    {
        cut([](const QTcpSocket*) { return true; });
    }
    /// The event stream alone.
    void cutStreams() { cut(&DelayProxy::isStream); }
    /// Requests and answers, whatever of them is under way.
    void cutRequests()
    {
        cut([](const QTcpSocket* client) { return !isStream(client); });
    }

private:
    static constexpr int longestDelay = 200; // milliseconds

    static bool isStream(const QTcpSocket* client) { return client->property("isStream").toBool(); }
    void cut(const std::function<bool(const QTcpSocket*)>& concerns)
    {
        for (QTcpSocket* client : m_listener.findChildren<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly))
            if (concerns(client))
                client->abort();
    }
    void accept(QTcpSocket* client)
    {
        auto* server = new QTcpSocket(client);
        server->connectToHost(QHostAddress::LocalHost, m_serverPort);
        pass(client, server);
        pass(server, client);
        connect(client, &QTcpSocket::disconnected, client, [=] {
            server->abort();
            client->deleteLater();
        });
    }
    /// What comes from one end reaches the other, in its order, after the delay; so does the end.
    void pass(QTcpSocket* from, QTcpSocket* to)
    {
        const int delay = m_random.bounded(longestDelay + 1);
        const auto later = [=](std::function<void()> act) {
            QTimer::singleShot(delay, Qt::PreciseTimer, to, std::move(act));
        };
        const auto queue = std::make_shared<QQueue<QByteArray>>();
        connect(from, &QTcpSocket::readyRead, to, [=] {
            const QByteArray bytes = from->readAll();
            if (bytes.contains("/sse?") && bytes.startsWith("GET "))
                from->setProperty("isStream", true);
            queue->enqueue(bytes);
            later([=] { to->write(queue->dequeue()); });
        });
        if (from->parent() == to)
            connect(from, &QTcpSocket::disconnected, to, [=] { later([=] { to->disconnectFromHost(); }); });
    }

    quint16 m_serverPort;
    QRandomGenerator m_random;
    QTcpServer m_listener;
};

} // namespace vantrel::test

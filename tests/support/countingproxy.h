#pragma once

#include <QMutex>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include <memory>

namespace vantrel::test {

/// Stands between a client and a web server on this machine, on a thread of its own, passes on what both send
/// and notes the targets of the GET requests.
class CountingProxy : public QThread
{
public:
    explicit CountingProxy(quint16 serverPort)
        : m_serverPort(serverPort)
    {
        start();
        m_listening.acquire();
    }
    ~CountingProxy() override
    {
        quit();
        wait();
    }

    quint16 port() const { return m_port; }
    /// Paths and queries so far, in order.
    QList<QByteArray> targets() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_targets;
    }

private:
    void run() override
    {
        QTcpServer listener;
        connect(&listener, &QTcpServer::newConnection, &listener, [this, &listener] {
            while (QTcpSocket* client = listener.nextPendingConnection())
                accept(client);
        });
        if (!listener.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
        m_port = listener.serverPort();
        m_listening.release();
        exec();
    }
    void accept(QTcpSocket* client)
    {
        auto* server = new QTcpSocket(client);
        server->connectToHost(QHostAddress::LocalHost, m_serverPort);
        connect(client, &QTcpSocket::readyRead, server,
                [this, client, server, line = QByteArray()]() mutable {
                    const QByteArray bytes = client->readAll();
                    note(line, bytes);
                    server->write(bytes);
                });
        connect(server, &QTcpSocket::readyRead, client, [=] { client->write(server->readAll()); });
        connect(server, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
        connect(client, &QTcpSocket::disconnected, client, [=] {
            server->abort();
            client->deleteLater();
        });
    }
    /// line: what came of the last line, which may go on.
    void note(QByteArray& line, const QByteArray& bytes)
    {
        line += bytes;
        for (qsizetype end; (end = line.indexOf('\n')) >= 0; line.remove(0, end + 1)) {
            if (line.startsWith("GET ")) {
                const QMutexLocker lock(&m_mutex);
                m_targets.append(line.mid(4, line.indexOf(' ', 4) - 4));
            }
        }
    }

    const quint16 m_serverPort;
    quint16 m_port = 0;
    QSemaphore m_listening;
    mutable QMutex m_mutex;
    QList<QByteArray> m_targets;
};

} // namespace vantrel::test

#pragma once

#include <QHash>
#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace vantrel::test {

/// A web server on the test's thread that answers what it is told to. Without a handler it answers 404; one
/// that gives the status 0 leaves the request open, and a negative one breaks the connection.
class ScriptedHttp : public QObject
{
public:
    struct Request
    {
        QByteArray method;
        QByteArray target; // path and query
        QByteArray body;
    };
    struct Reply
    {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "application/json";
        bool endsHere = true; // else the connection stays open for more, as that of an event stream
    };
    using Handler = std::function<Reply(const Request&)>;

    ScriptedHttp()
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        });
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }

    quint16 port() const { return m_server.serverPort(); }

    /// Requests of this method whose target contains the text.
    int count(const QByteArray& method, const QByteArray& target) const
    {
        return int(std::ranges::count_if(requests, [&](const Request& request) {
            return request.method == method && request.target.contains(target);
        }));
    }

    /// Also for a request that was left open.
    static void answer(QTcpSocket* socket, const Reply& reply)
    {
        const QByteArray size =
            reply.endsHere ? "\r\nContent-Length: " + QByteArray::number(reply.body.size()) : QByteArray();
        socket->write("HTTP/1.1 " + QByteArray::number(reply.status) + " Scripted\r\nContent-Type: " +
                      reply.contentType + size + "\r\nConnection: close\r\n\r\n" + reply.body);
        if (reply.endsHere)
            socket->disconnectFromHost();
    }

    /// Breaks the connections of requests that were left open.
    void breakOpen()
    {
        for (const QPointer<QTcpSocket>& socket : std::exchange(unanswered, {})) {
            if (socket)
                socket->abort();
        }
    }

    Handler handler;
    std::vector<Request> requests;
    QList<QPointer<QTcpSocket>> unanswered; // of requests that were left open

private:
    void read(QTcpSocket* socket)
    {
        QByteArray& buffer = m_buffers[socket];
        buffer += socket->readAll();
        const qsizetype end = buffer.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        const QList<QByteArray> lines = buffer.left(end).split('\n');
        qsizetype length = 0;
        for (const QByteArray& line : lines)
            if (line.toLower().startsWith("content-length:"))
                length = line.mid(15).trimmed().toLongLong();
        if (buffer.size() < end + 4 + length)
            return;
        const QList<QByteArray> words = lines.first().split(' ');
        const Request request{words.value(0), words.value(1), buffer.mid(end + 4, length)};
        buffer.clear();
        requests.push_back(request);
        const Reply reply = handler ? handler(request) : Reply{404, {}, "text/plain"};
        if (reply.status == 0) {
            unanswered.append(socket);
            return;
        }
        if (reply.status < 0) {
            socket->abort();
            return;
        }
        answer(socket, reply);
    }

    QTcpServer m_server;
    QHash<QTcpSocket*, QByteArray> m_buffers;
};

} // namespace vantrel::test

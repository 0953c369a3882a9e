#pragma once

#include "common/session/settings/serverports.h"

#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>
#include <vector>

namespace vantrel::test {

/// Stands where the server stood and means harm: on each of its ports it takes every connection and sends
/// rubbish, some of it well-formed up to a point, then closes or goes silent. On the thread of the test.
class HostilePeer : public QObject
{
public:
    HostilePeer(const ServerPorts& ports, quint32 seed)
        : m_random(seed)
    {
        for (const quint16 port : {ports.http, ports.link, ports.preview}) {
            auto listener = std::make_unique<QTcpServer>();
            isListening = listener->listen(QHostAddress::LocalHost, port) && isListening;
            connect(listener.get(), &QTcpServer::newConnection, this, [this, server = listener.get()] {
                while (QTcpSocket* socket = server->nextPendingConnection())
                    serve(socket);
            });
            m_listeners.push_back(std::move(listener));
        }
    }

    bool isListening = true;
    int connections = 0;

private:
    void serve(QTcpSocket* socket)
    {
        ++connections;
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            socket->readAll();
            socket->write(rubbish());
            if (m_random.bounded(3) == 0)
                socket->disconnectFromHost();
        });
        if (m_random.bounded(2))
            socket->write(rubbish());
    }

    QByteArray frame(const QByteArray& json)
    {
        const auto size = quint32(json.size());
        const char head[] = {char(size >> 24), char(size >> 16), char(size >> 8), char(size)};
        return QByteArray(head, 4) + json;
    }

    QByteArray http(const QByteArray& body)
    {
        return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
               QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }

    QByteArray rubbish()
    {
        static const QByteArray jsons[] = {
            "[]",
            "{",
            "null",
            "[{\"op\":\"add\",\"path\":\"\",\"value\":17}]",
            "[{\"op\":\"replace\",\"path\":\"\",\"value\":{\"type\":\"Root\",\"device\":[]}}]",
            "[{\"op\":\"remove\",\"path\":\"/device\"}]",
            "[{\"op\":\"replace\",\"path\":\"/device/channels/0/preview/properties/"
            "duration\",\"value\":1e308}]",
            "[{\"op\":\"replace\",\"path\":\"/device/channels/0/preview/properties/"
            "media\",\"value\":\"brume://x\"}]",
            "[{\"op\":\"add\",\"path\":\"/device/channels/99\",\"value\":{\"type\":\"Channel\"}}]",
            "{\"collections\":{\"1\":{\"name\":5,\"slots\":[]}},\"playlists\":null}",
            "{\"collections\":{\"-1\":{\"name\":\"x\",\"slots\":{\"0\":{}}}},\"playlists\":{}}",
        };
        const QByteArray json = jsons[m_random.bounded(int(std::size(jsons)))];
        switch (m_random.bounded(6)) {
        case 0: {
            QByteArray noise(1 + m_random.bounded(5000), '\0');
            for (char& byte : noise)
                byte = char(m_random.bounded(256));
            return noise;
        }
        case 1:
            return http(json);
        case 2:
            return "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\ndata: " + json + "\n\n";
        case 3:
            return QByteArray(4, '\xff') + json; // a frame of 4 GiB
        case 4:
            return "HTTP/1.1 500 <b>No</b>\r\n\r\n";
        default:
            return frame(json);
        }
    }

    QRandomGenerator m_random;
    std::vector<std::unique_ptr<QTcpServer>> m_listeners;
};

} // namespace vantrel::test

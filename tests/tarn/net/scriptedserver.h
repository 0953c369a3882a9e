#pragma once

#include "tarn/net/linkframe.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <vector>

namespace vantrel::test {

/// The other end of a link, on the test's thread: takes one connection after the other, collects what comes
/// and says what it is told to say.
class ScriptedServer : public QObject
{
public:
    ScriptedServer()
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            socket = m_server.nextPendingConnection();
            ++connections;
            if (!greeting.isEmpty())
                socket->write(greeting);
            if (closesAfterGreeting)
                socket->disconnectFromHost();
            connect(socket, &QTcpSocket::readyRead, this, [this] {
                const QByteArray bytes = socket->readAll();
                m_decoder.feed({bytes.constData(), static_cast<std::size_t>(bytes.size())});
                Patch patch;
                while (m_decoder.next(patch) == linkframe::Decoder::Result::Patch)
                    received.push_back(std::exchange(patch, {}));
            });
        });
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("no port to listen on");
    }

    quint16 port() const { return m_server.serverPort(); }

    QByteArray greeting;
    bool closesAfterGreeting = false;
    QTcpSocket* socket = nullptr; // of the newest connection
    int connections = 0;
    std::vector<Patch> received;

private:
    QTcpServer m_server;
    linkframe::Decoder m_decoder;
};

} // namespace vantrel::test

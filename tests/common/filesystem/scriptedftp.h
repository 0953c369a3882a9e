#pragma once

#include <QHash>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>
#include <vector>

namespace vantrel::test {

/// A file server on the thread of the test that says what it is told to, sound or not. Verbs without an
/// answer of their own are answered as a well-behaved server does; an empty answer is none at all.
class ScriptedFtp : public QObject
{
public:
    explicit ScriptedFtp(const QHostAddress& address = QHostAddress::LocalHost)
        : m_address(address)
    {
        connect(&m_server, &QTcpServer::newConnection, this,
                [this] { serve(m_server.nextPendingConnection()); });
        if (!m_server.listen(address))
            qFatal("no port to listen on");
    }

    quint16 port() const { return m_server.serverPort(); }
    QString host() const { return m_address.toString(); }

    QHash<QByteArray, QByteArray> answers; // by line or by verb, with the line's end
    QByteArray greeting = "220 ready\r\n";
    QByteArray content;   // what RETR and LIST send
    QByteArray leftover;  // what STOR is sent, although it asks for nothing
    qint64 cutAfter = -1; // bytes of it, then the data connection goes
    bool keepsDataOpen = false;
    QByteArray transferEnd = "226 done\r\n";
    QList<QByteArray> lines; // that came, of all connections
    QByteArray received;     // by STOR
    int connections = 0;
    int dataConnections = 0;

    int count(const QByteArray& start) const
    {
        return int(
            std::count_if(lines.begin(), lines.end(), [&](const auto& l) { return l.startsWith(start); }));
    }
    void say(const QByteArray& text)
    {
        if (!m_control)
            return;
        m_control->write(text);
        m_control->flush();
    }
    void closeControl()
    {
        if (m_control)
            m_control->abort();
    }

private:
    void serve(QTcpSocket* socket)
    {
        ++connections;
        m_control = socket;
        m_verb.clear();
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            while (socket->canReadLine())
                handle(socket->readLine());
        });
        socket->write(greeting);
    }

    void handle(const QByteArray& raw)
    {
        const QByteArray line = raw.trimmed();
        lines << line;
        const QByteArray verb = line.left(line.indexOf(' ') < 0 ? line.size() : line.indexOf(' '));
        const bool isTransfer = verb == "RETR" || verb == "LIST" || verb == "STOR";
        if (const QByteArray known = answers.contains(line) ? line : verb; answers.contains(known)) {
            const QByteArray answer = answers.value(known);
            say(answer);
            if (!isTransfer || !answer.startsWith('1'))
                return;
        } else {
            say(usual(verb));
        }
        if (isTransfer) {
            m_verb = verb;
            transfer();
        } else if (verb == "QUIT") {
            m_control->disconnectFromHost();
        } else if (verb == "ABOR" && m_data) {
            m_data->abort();
        }
    }

    QByteArray usual(const QByteArray& verb)
    {
        static const QHash<QByteArray, QByteArray> usual{
            {"USER", "331 word?\r\n"}, {"PASS", "230 in\r\n"},     {"TYPE", "200 ok\r\n"},
            {"RETR", "150 comes\r\n"}, {"LIST", "150 comes\r\n"},  {"STOR", "150 give\r\n"},
            {"ABOR", "226 over\r\n"},  {"NOOP", "200 ok\r\n"},     {"QUIT", "221 bye\r\n"},
            {"RNFR", "350 to\r\n"},    {"REST", "350 from\r\n"},   {"MKD", "257 made\r\n"},
            {"PWD", "257 \"/\"\r\n"},  {"ALLO", "202 no need\r\n"}};
        if (verb == "SIZE")
            return "213 " + QByteArray::number(content.size()) + "\r\n";
        if (verb == "PASV") {
            const QByteArray port =
                QByteArray::number(listen() / 256) + ',' + QByteArray::number(listen() % 256);
            return "227 here (127,0,0,1," + port + ")\r\n";
        }
        if (verb == "EPSV")
            return "229 here (|||" + QByteArray::number(listen()) + "|)\r\n";
        return usual.value(verb, "250 done\r\n");
    }

    quint16 listen()
    {
        if (!m_listener) {
            m_listener = std::make_unique<QTcpServer>();
            m_listener->listen(m_address);
            connect(m_listener.get(), &QTcpServer::newConnection, this, [this] {
                ++dataConnections;
                m_data = m_listener->nextPendingConnection();
                m_data->setParent(this);
                connect(m_data, &QTcpSocket::disconnected, m_data, &QObject::deleteLater);
                m_listener.release()->deleteLater();
                transfer();
            });
        }
        return m_listener->serverPort();
    }

    /// As soon as both the command and the connection are there.
    void transfer()
    {
        if (!m_data || m_verb.isEmpty())
            return;
        if (std::exchange(m_verb, {}) == "STOR") {
            m_data->write(leftover);
            connect(m_data, &QTcpSocket::disconnected, this, [this] { say(transferEnd); });
            connect(m_data, &QTcpSocket::readyRead, this, [this] {
                received += m_data->readAll();
                if (cutAfter >= 0 && received.size() >= cutAfter)
                    m_data->abort();
            });
            return;
        }
        m_data->write(cutAfter < 0 ? content : content.left(cutAfter));
        if (keepsDataOpen)
            return;
        m_data->disconnectFromHost();
        say(transferEnd);
    }

    QHostAddress m_address;
    QTcpServer m_server;
    QPointer<QTcpSocket> m_control;
    std::unique_ptr<QTcpServer> m_listener;
    QPointer<QTcpSocket> m_data;
    QByteArray m_verb; // of a transfer that waits for its connection
};

} // namespace vantrel::test

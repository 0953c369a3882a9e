#pragma once

#include "ombra/server.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <functional>
#include <memory>

namespace vantrel::ombra::test {

/// The whole server inside the test, on free ports, run by the test's own thread: whoever waits serves.
class LiveServer
{
public:
    QString mediaFolder() const { return m_folder.filePath(QStringLiteral("media")); }
    QString stateFolder() const { return m_folder.filePath(QStringLiteral("state")); }

    bool start(bool hasMedia = true)
    {
        if (hasMedia)
            QDir(m_folder.path()).mkpath(QStringLiteral("media"));
        ServerOptions options;
        options.media = mediaFolder().toStdString();
        options.state = stateFolder().toStdString();
        options.httpPort = options.linkPort = options.previewPort = options.ftpPort = 0;
        options.discovery = false;
        options.hostNames = {"Stage-1.example.org"};
        options.copyEach = m_hour;
        m_server = std::make_unique<Server>(m_io, options);
        std::string error;
        const bool started = m_server->start(&error);
        if (!started)
            qInfo("%s", error.c_str());
        return started;
    }
    void stop() { m_server.reset(); }
    /// What is an hour to it from its next start on.
    void setHour(std::chrono::milliseconds hour) { m_hour = hour; }
    Server& server() { return *m_server; }

    /// Serves until the condition holds; false when it takes too long.
    bool waitFor(const std::function<bool()>& condition, qint64 patience = patienceMs)
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < patience;) {
            if (condition())
                return true;
            m_io.restart();
            m_io.run_for(std::chrono::milliseconds(1));
            QCoreApplication::processEvents();
        }
        return false;
    }

    /// Sends an HTTP request of these bytes and gives the whole answer; empty when none came.
    QByteArray exchange(const QByteArray& request)
    {
        QTcpSocket socket;
        socket.connectToHost(QStringLiteral("127.0.0.1"), m_server->httpPort());
        socket.write(request);
        QByteArray answer;
        waitFor([&] {
            answer += socket.readAll();
            const qsizetype end = answer.indexOf("\r\n\r\n");
            if (socket.state() == QAbstractSocket::UnconnectedState)
                return true;
            const qsizetype field = answer.indexOf("Content-Length: ");
            return end >= 0 && field >= 0 && field < end &&
                   answer.size() >=
                       end + 4 +
                           answer.mid(field + 16, answer.indexOf('\r', field) - field - 16).toLongLong();
        });
        return answer;
    }

    struct Answer
    {
        int status = 0;
        QByteArray body;
        QByteArray tag; // the ETag, with its quotes
    };
    /// fields: more lines of the header, each with its end.
    Answer request(const QByteArray& method, const QByteArray& path, const QByteArray& body = {},
                   const QByteArray& fields = {})
    {
        const QByteArray json = fields.contains("Content-Type: ") ? "" : "Content-Type: application/json\r\n";
        const QByteArray answer =
            exchange(method + " /api/brume/v1" + path + " HTTP/1.1\r\nHost: localhost\r\n" + json + fields +
                     "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        const qsizetype end = answer.indexOf("\r\n\r\n");
        const qsizetype tag = answer.left(end).indexOf("ETag: ");
        return {answer.mid(9, 3).toInt(), end < 0 ? QByteArray() : answer.mid(end + 4),
                tag < 0 ? QByteArray() : answer.mid(tag + 6, answer.indexOf('\r', tag) - tag - 6)};
    }

private:
#if defined(__SANITIZE_THREAD__) // 70 MB of a library are copied ten times slower
    static constexpr qint64 patienceMs = 100000;
#else
    static constexpr qint64 patienceMs = 10000;
#endif

    boost::asio::io_context m_io;
    std::chrono::milliseconds m_hour = std::chrono::hours(1);
    QTemporaryDir m_folder;
    std::unique_ptr<Server> m_server;
};

} // namespace vantrel::ombra::test

#pragma once

#include "tests/support/localproxy.h"

#include <QQueue>
#include <QTimer>

#include <functional>
#include <memory>

namespace vantrel::test {

/// A slow line: each connection has a delay of its own, of 0 to 200 ms in each direction, so that connections
/// overtake each other, and can be cut.
class DelayProxy : public LocalProxy
{
public:
    using LocalProxy::LocalProxy;

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

protected:
    void join(QTcpSocket* client, QTcpSocket* server) override
    {
        pass(client, server);
        pass(server, client);
    }

private:
    static constexpr int longestDelay = 200; // milliseconds

    static bool isStream(const QTcpSocket* client) { return client->property("isStream").toBool(); }
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
};

} // namespace vantrel::test

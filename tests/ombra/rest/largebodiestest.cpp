#include "tests/ombra/liveserver.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>

#include <memory>
#include <vector>

using namespace vantrel;
using namespace vantrel::ombra::test;

namespace {

constexpr qint64 mebibyte = 1024 * 1024;

QByteArray head(const QByteArray& request, qint64 length)
{
    return request + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: " +
           QByteArray::number(length) + "\r\n\r\n";
}

} // namespace

/// Whoever sends much takes neither the server's memory nor its time from the others.
class LargeBodiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_live = std::make_unique<LiveServer>();
        QVERIFY(m_live->start());
    }

    /// What is announced counts, before a byte of it has come; who sends little always gets through.
    void areBoundedTogether()
    {
        std::vector<std::unique_ptr<QTcpSocket>> sockets;
        const QByteArray half = head("PATCH /api/brume/v1/medialibrary", 60 * mebibyte) + "[";
        for (int i = 0; i < 20; ++i) {
            sockets.push_back(std::make_unique<QTcpSocket>());
            sockets.back()->connectToHost(QStringLiteral("127.0.0.1"), m_live->server().httpPort());
            sockets.back()->write(half);
        }
        int refused = 0;
        QVERIFY(m_live->waitFor([&] {
            for (const auto& socket : sockets)
                refused += socket->readAll().startsWith("HTTP/1.1 503 ");
            return refused == 15;
        }));
        const QByteArray edit = R"([{"op":"add","path":"/collections/1","value":{"name":"x","slots":{}}}])";
        QCOMPARE(m_live->request("PATCH", "/medialibrary", edit).status, 200);
        sockets.clear(); // and the room is there again
        QVERIFY(m_live->waitFor([&] {
            return m_live->request("PATCH", "/medialibrary", "[" + QByteArray(100'000, ' ') + "]").status ==
                   200;
        }));
    }

    void areTakenByTheirPath()
    {
        const auto status = [this](const QByteArray& request, qint64 length) {
            return m_live->exchange(head(request, length)).mid(9, 3).toInt();
        };
        QCOMPARE(status("PATCH /api/brume/v1/medialibrary", 65 * mebibyte), 413);
        QCOMPARE(status("POST /api/brume/v1/show/current", 300 * mebibyte), 413);
    }

    /// A turn of the server's loop is what everybody else waits for.
    void holdNobodyUp()
    {
        QByteArray patch = "[";
        while (patch.size() < 20 * mebibyte)
            patch += R"({"op":"replace","path":"/collections/7/name","value":"a name of some length"},)";
        patch += R"({"op":"remove","path":"/collections/7"}])";
        const QByteArray request = head("PATCH /api/brume/v1/medialibrary", patch.size()) + patch;
        QTcpSocket socket;
        socket.connectToHost(QStringLiteral("127.0.0.1"), m_live->server().httpPort());
        qsizetype sent = 0;
        qint64 longest = 0;
        QByteArray answer;
        QElapsedTimer turn;
        turn.start();
        QVERIFY(m_live->waitFor([&] {
            longest = std::max(longest, turn.restart());
            for (; sent < request.size() && socket.bytesToWrite() < mebibyte; sent += mebibyte / 4)
                socket.write(request.mid(sent, mebibyte / 4));
            answer += socket.readAll();
            return answer.contains("\r\n\r\n");
        }));
        QVERIFY2(answer.startsWith("HTTP/1.1 409 "), answer.constData());
        qInfo("the longest turn: %lld ms", longest);
        QVERIFY(longest < 150); // parsed in one go it takes several times that
    }

private:
    std::unique_ptr<LiveServer> m_live;
};

HALCYRA_TEST(LargeBodiesTest)
#include "largebodiestest.moc"

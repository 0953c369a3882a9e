#include "tests/support/fakelink.h"

#include <QTcpSocket>

namespace vantrel::test {

FakeLink::FakeLink(QByteArray answer, QObject* parent)
    : QTcpServer(parent)
    , m_answer(std::move(answer))
{
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket* socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            socket->readAll();
            if (socket->property("answered").toBool())
                return;
            socket->setProperty("answered", true);
            socket->write(m_answer);
            ++m_answered;
        });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
}

Patch largeScene(int operations)
{
    Patch patch;
    const int surfaces = operations / 2;
    for (int i = 0; i < surfaces; ++i) {
        PatchOp add;
        add.op = PatchOpType::Add;
        add.path = Path{"device", "surfaces", "-"};
        add.value = Json::object(
            {{"type", Json("Surface")}, {"properties", Json::object({{"name", Json("surface")}})}});
        patch.append(std::move(add));
    }
    for (int i = surfaces; i < operations; ++i) {
        PatchOp name;
        name.op = PatchOpType::Replace;
        name.path = Path("/device/surfaces/" + std::to_string(i - surfaces) + "/properties/name");
        name.value = Json("surface " + std::to_string(i));
        patch.append(std::move(name));
    }
    return patch;
}

} // namespace vantrel::test

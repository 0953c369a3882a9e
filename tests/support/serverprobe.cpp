#include "tests/support/serverprobe.h"

#include "tarn/net/linkframe.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QTcpSocket>
#include <QTest>

#include <memory>

namespace vantrel::test {

namespace {

constexpr int patienceMs = 20000;

} // namespace

QJsonObject ServerProbe::library()
{
    const QUrl url(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_ports.http));
    const std::unique_ptr<QNetworkReply> reply(m_network.get(QNetworkRequest(url)));
    if (!QTest::qWaitFor([&] { return reply->isFinished(); }, patienceMs))
        return {};
    return QJsonDocument::fromJson(reply->readAll()).object();
}

QJsonObject ServerProbe::slot(int collection, int slot)
{
    return library()["collections"][QString::number(collection)]["slots"][QString::number(slot)].toObject();
}

QJsonValue ServerProbe::property(const QString& path) const
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), m_ports.link);
    if (!socket.waitForConnected(patienceMs))
        return QJsonValue::Undefined;
    PatchOp get;
    get.op = PatchOpType::Get;
    get.path = Path(path.toStdString());
    Patch question;
    question.append(get);
    const std::string frame = linkframe::encode(question);
    socket.write(frame.data(), qint64(frame.size()));

    linkframe::Decoder decoder;
    const QDeadlineTimer limit(patienceMs);
    while (!limit.hasExpired() && socket.waitForReadyRead(int(limit.remainingTime()))) {
        decoder.feed(socket.readAll().toStdString());
        Patch patch;
        while (decoder.next(patch) == linkframe::Decoder::Result::Patch) {
            for (const PatchOp& op : patch) {
                if (op.path.toString() != get.path.toString())
                    continue;
                const auto text = QByteArray::fromStdString("[" + op.value.toString() + "]");
                return QJsonDocument::fromJson(text).array().first();
            }
        }
    }
    return QJsonValue::Undefined;
}

} // namespace vantrel::test

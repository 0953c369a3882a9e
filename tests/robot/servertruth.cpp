#include "tests/robot/servertruth.h"

#include "tarn/json/json.h"
#include "tarn/net/linkframe.h"
#include "tarn/scene/scene.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QStringList>
#include <QTcpSocket>
#include <QTest>

#include <memory>

namespace vantrel::test {

namespace {

QString textOf(const Json& json)
{
    return QString::fromStdString(json.toString()).left(120);
}

/// Where the two differ, depth first.
QString difference(const Json& window, const Json& server, const QString& path)
{
    static const QStringList running = {QStringLiteral("mediaPosition"), QStringLiteral("takeProgress"),
                                        QStringLiteral("resourceConstrained"), QStringLiteral("fps")};
    if (running.contains(path.section(u'/', -1)))
        return {};
    if (window == server)
        return {};
    const QString both = QStringLiteral("%1 is %2 in the window and %3 on the server")
                             .arg(path, textOf(window), textOf(server));
    if (window.type() != server.type() || !(window.isObject() || window.isArray()))
        return both;
    QString found;
    if (window.isArray()) {
        if (window.size() != server.size())
            return both;
        for (std::size_t i = 0; i < window.size() && found.isEmpty(); ++i)
            found = difference(*window.at(i), *server.at(i), path + u'/' + QString::number(i));
        return found;
    }
    const auto below = [&path](std::string_view name) {
        return path + u'/' + QString::fromUtf8(name.data(), qsizetype(name.size()));
    };
    server.forEachMember([&](std::string_view name, const Json& value) {
        const Json* ours = window.find(name);
        found = ours ? difference(*ours, value, below(name))
                     : below(name) + QStringLiteral(" is missing in the window");
        return found.isEmpty();
    });
    if (!found.isEmpty())
        return found;
    window.forEachMember([&](std::string_view name, const Json&) {
        if (!server.find(name))
            found = below(name) + QStringLiteral(" is in the window alone");
        return found.isEmpty();
    });
    return found;
}

QString compare(const QString& window, const std::string& server)
{
    Json ours;
    Json theirs;
    if (!Json::parseString(window.toStdString(), ours) || !Json::parseString(server, theirs))
        return QStringLiteral("no JSON");
    return difference(ours, theirs, QString());
}

} // namespace

bool ServerTruth::fetch()
{
    return fetchLibrary() && fetchScene();
}

bool ServerTruth::lacksSlot(const QString& address) const
{
    static const QRegularExpression form(QStringLiteral("^brume://collections/(\\d+)/slots/(\\d+)$"));
    const QRegularExpressionMatch match = form.match(address);
    Json library;
    if (!match.hasMatch() || !Json::parseString(m_library, library))
        return false;
    return library.get("collections")
        .get(match.captured(1).toStdString())
        .get("slots")
        .get(match.captured(2).toStdString())
        .isNull();
}

bool ServerTruth::fetchLibrary()
{
    QNetworkAccessManager network;
    const QUrl url(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_ports.http));
    const std::unique_ptr<QNetworkReply> reply(network.get(QNetworkRequest(url)));
    if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 10000) ||
        reply->error() != QNetworkReply::NoError)
        return false;
    m_library = reply->readAll().toStdString();
    return true;
}

bool ServerTruth::fetchScene()
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), m_ports.link);
    if (!socket.waitForConnected(5000))
        return false;
    Patch get;
    PatchOp op;
    op.op = PatchOpType::Get;
    get.append(op);
    const std::string frame = linkframe::encode(get);
    socket.write(frame.data(), qint64(frame.size()));
    linkframe::Decoder decoder;
    Scene scene;
    for (int i = 0; i < 50; ++i) {
        if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(5000))
            return false;
        const QByteArray bytes = socket.readAll();
        decoder.feed({bytes.constData(), std::size_t(bytes.size())});
        for (Patch patch; decoder.next(patch) == linkframe::Decoder::Result::Patch;) {
            scene.apply(patch, false);
            m_scene = Scene::toJson(scene.root()).toString();
            return true; // all of it stands in the first frame
        }
    }
    return false;
}

QString ServerTruth::libraryFault(const QString& json) const
{
    return compare(json, m_library);
}

QString ServerTruth::sceneFault(const QString& json) const
{
    return compare(json, m_scene);
}

} // namespace vantrel::test

#include "tests/support/robotclient.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QTcpSocket>
#include <QTest>

namespace vantrel::test {

RobotClient::RobotClient()
    : m_socket(std::make_unique<QTcpSocket>())
{
}

RobotClient::~RobotClient() = default;

bool RobotClient::connectTo(quint16 port)
{
    m_socket->abort();
    m_socket->connectToHost(QStringLiteral("127.0.0.1"), port);
    return m_socket->waitForConnected(10000);
}

QJsonArray RobotClient::ask(const QJsonObject& request)
{
    m_socket->write(QJsonDocument(request).toJson(QJsonDocument::Compact));
    const QDeadlineTimer limit(10000);
    QByteArray reply;
    while (!limit.hasExpired()) {
        if (!m_socket->waitForReadyRead(int(limit.remainingTime())))
            return {};
        reply += m_socket->readAll();
        const QJsonDocument document = QJsonDocument::fromJson(reply);
        if (!document.isNull())
            return document.array();
    }
    return {};
}

QJsonObject RobotClient::find(const QString& objectName)
{
    for (const QJsonValue& value : ask({{"objectName", objectName}, {"maxResults", 1}})) {
        if (value["objectName"].toString() == objectName)
            return value.toObject();
    }
    return {};
}

QJsonObject RobotClient::waitFor(const QString& objectName, int msLimit)
{
    QJsonObject found;
    const bool came = QTest::qWaitFor(
        [&] {
            found = find(objectName);
            return found["visible"].toBool();
        },
        msLimit);
    return came ? found : QJsonObject();
}

QString RobotClient::text(const QString& objectName)
{
    return find(objectName)["text"].toString();
}

bool RobotClient::mouse(const QString& operation, const QJsonObject& target)
{
    if (target.isEmpty())
        return false;
    ask({{"operation", operation},
         {"objectName", target["objectName"]}, // items of declarative views are reached by it
         {"global_x", target["global_x"]},
         {"global_y", target["global_y"]},
         {"local_x", target["local_x"]},
         {"local_y", target["local_y"]}});
    return true;
}

bool RobotClient::click(const QString& objectName)
{
    return mouse(QStringLiteral("click"), waitFor(objectName));
}

bool RobotClient::doubleClick(const QString& objectName)
{
    return mouse(QStringLiteral("double_click"), waitFor(objectName));
}

QJsonObject RobotClient::pointOf(const QString& objectName, double share)
{
    QJsonObject target = waitFor(objectName);
    const int off = static_cast<int>(share * (target["width"].toInt() - 1)) - target["local_x"].toInt();
    for (const QString axis : {"global_x", "local_x"}) {
        if (!target.isEmpty())
            target[axis] = target[axis].toInt() + off;
    }
    return target;
}

QJsonArray RobotClient::cells(const QString& view)
{
    QJsonArray all = ask({{"objectName", view}, {"maxResults", 1}});
    if (!all.isEmpty())
        all.removeFirst(); // the view itself
    return all;
}

QJsonObject RobotClient::waitForCell(const QString& view, int row, int column, int msLimit)
{
    const QString name = QStringLiteral("%1-row%2-col%3").arg(view).arg(row).arg(column);
    QJsonObject cell;
    const auto isThere = [&] {
        for (const QJsonValue& value : cells(view)) {
            if (value["objectName"].toString() == name)
                cell = value.toObject();
        }
        return !cell.isEmpty();
    };
    return QTest::qWaitFor(isThere, msLimit) ? cell : QJsonObject();
}

bool RobotClient::doubleClickCell(const QString& view, int row, int column, int msLimit)
{
    return mouse(QStringLiteral("double_click"), waitForCell(view, row, column, msLimit));
}

bool RobotClient::clickCell(const QString& view, int row, int column)
{
    return mouse(QStringLiteral("click"), waitForCell(view, row, column, 15000));
}

bool RobotClient::clickMenuEntry(const QString& menu, const QString& text)
{
    QJsonObject entry;
    const auto isThere = [&] {
        for (const QJsonValue& value : ask({{"objectName", menu}, {"maxResults", 100}})) {
            if (value["text"].toString() == text && value["visible"].toBool())
                entry = value.toObject();
        }
        return !entry.isEmpty();
    };
    return QTest::qWaitFor(isThere, 5000) && mouse(QStringLiteral("click"), entry);
}

void RobotClient::key(const QString& keyName)
{
    ask({{"operation", "key_press"}, {"keyName", keyName}});
}

void RobotClient::type(const QString& text)
{
    for (const QChar c : text)
        key(QString(c));
}

RobotClient::Drawing RobotClient::draw(const QString& objectName)
{
    const QJsonValue reply = ask({{"operation", "grab"}, {"objectName", objectName}}).first();
    return {QImage::fromData(QByteArray::fromBase64(reply["png"].toString().toLatin1()), "PNG"),
            reply["texts"].toObject()};
}

QJsonObject RobotClient::figures(bool reset)
{
    return ask({{"operation", reset ? "figures_reset" : "figures"}}).first().toObject();
}

void RobotClient::restFigures()
{
    ask({{"operation", "figures_rest"}});
}

} // namespace vantrel::test

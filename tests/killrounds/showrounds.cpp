#include "tarn/json/json.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QTest>

#include <array>

using namespace vantrel;
using namespace vantrel::test;

/// The server is killed at random moments in which another show is imported or brought back. What it starts
/// with then is the old show or the new one, the library and the settings of the same one.
/// HALCYRA_KILL_ROUNDS sets the number of rounds, 10 by default.
class ShowRounds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyShowIsWholeOrNotAtAll_data();
    void everyShowIsWholeOrNotAtAll();

private:
    QByteArray otherState();
    QByteArray ask(const QByteArray& method, const QByteArray& path, const QByteArray& body = {});
    void send(QTcpSocket& socket, const QByteArray& method, const QByteArray& path, const QByteArray& body);
    static QByteArray makeShow(const char* name, double volume);

    OmbraProcess m_ombra;
};

void ShowRounds::send(QTcpSocket& socket, const QByteArray& method, const QByteArray& path,
                      const QByteArray& body)
{
    socket.connectToHost(m_ombra.host(), m_ombra.ports().http);
    socket.write(method + " /api/brume/v1" + path +
                 " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nContent-Type: application/json\r\n"
                 "Content-Length: " +
                 QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

/// The body of the answer.
QByteArray ShowRounds::ask(const QByteArray& method, const QByteArray& path, const QByteArray& body)
{
    QTcpSocket socket;
    send(socket, method, path, body);
    if (socket.state() != QAbstractSocket::UnconnectedState && !socket.waitForDisconnected(10000))
        return {};
    const QByteArray answer = socket.readAll();
    return answer.mid(answer.indexOf("\r\n\r\n") + 4);
}

QByteArray ShowRounds::makeShow(const char* name, double volume)
{
    Json members = Json::object();
    for (int i = 1; i <= 300; ++i)
        members.set(std::to_string(i), Json::object({{"name", name + std::to_string(i)}}));
    const Json collection = Json::object({{"name", name}, {"slots", members}});
    Json settings = Json::object();
    for (const char* side : {"preview", "program"})
        settings.set(std::string("/device/channels/0/") + side + "/properties/volume", volume);
    settings.set("/device/channels/0/mappings/0/properties/backgroundColor",
                 volume > 0.5 ? "#ff0000" : "#0000ff");
    return QByteArray::fromStdString(
        Json::object({{"format", "halcyra-show"},
                      {"version", 1},
                      {"library", Json::object({{"collections", Json::object({{"1", collection}})}})},
                      {"settings", settings}})
            .toString());
}

/// Of the earlier ones the newest that is not as the present.
QByteArray ShowRounds::otherState()
{
    Json list;
    Json::parseString(ask("GET", "/shows/earlier").toStdString(), list);
    const Json states = list.get("states");
    for (std::size_t i = 0; const Json* state = states.at(i); ++i) {
        if (state->get("difference").get("slots").get("changed").asInt() > 0)
            return QByteArray::fromStdString(state->get("id").asString());
    }
    return {};
}

void ShowRounds::everyShowIsWholeOrNotAtAll_data()
{
    QTest::addColumn<bool>("isBroughtBack");
    QTest::newRow("imported") << false;
    QTest::newRow("an earlier state") << true;
}

void ShowRounds::everyShowIsWholeOrNotAtAll()
{
    QFETCH(bool, isBroughtBack);
    allowWarnings(QString()); // a killed peer makes many, all expected
    const int set = qEnvironmentVariableIntValue("HALCYRA_KILL_ROUNDS");
    const int rounds = set > 0 ? set : 10;
    QVERIFY2(m_ombra.isRunning() || m_ombra.start(), m_ombra.output().constData());
    std::array<QByteArray, 2> shows;
    QElapsedTimer timer;
    timer.start();
    for (int i : {0, 1}) {
        QCOMPARE(ask("POST", "/show/current", makeShow(i ? "red " : "blue ", i ? 0.75 : 0.25)),
                 QByteArray("{}"));
        shows[size_t(i)] = ask("GET", "/show/current");
        QVERIFY(shows[size_t(i)].size() > 10000);
    }
    QVERIFY(shows[0] != shows[1]);
    const qint64 longest = timer.nsecsElapsed() / 2; // of an import and an export

    QRandomGenerator random(20261127);
    int present = 1, taken = 0;
    for (int round = 0; round < rounds; ++round) {
        const int next = 1 - present;
        QTcpSocket socket;
        const QByteArray state = isBroughtBack ? otherState() : QByteArray();
        QVERIFY(!isBroughtBack || !state.isEmpty());
        if (isBroughtBack)
            send(socket, "POST", "/shows/earlier?state=" + state, {});
        else
            send(socket, "POST", "/show/current", shows[size_t(next)]);
        QVERIFY(socket.waitForConnected(10000));
        timer.start();
        for (const qint64 moment = random.bounded(longest); timer.nsecsElapsed() < moment;)
            socket.waitForReadyRead(1);
        m_ombra.kill();
        const bool isBack = m_ombra.restart();
        QVERIFY2(isBack, m_ombra.lastWords().constData());
        const QByteArray found = ask("GET", "/show/current");
        QVERIFY2(found == shows[0] || found == shows[1],
                 qPrintable(QStringLiteral("neither show in round %1").arg(round)));
        taken += found == shows[size_t(next)];
        present = found == shows[0] ? 0 : 1;
    }
    qInfo() << rounds << "shows killed on their way," << taken << "of them were taken by then";
}

HALCYRA_TEST(ShowRounds)
#include "showrounds.moc"

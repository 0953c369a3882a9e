#include "common/media/library/medialibraryapi.h"
#include "common/session/link/connectionhandler.h"
#include "common/session/session.h"
#include "tarn/json/json.h"
#include "tarn/json/patch.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QNetworkReply>
#include <QPointer>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <map>

using namespace vantrel;
using namespace vantrel::test;

/// The server is killed at random moments while a client edits. What was answered with 200 must be there
/// afterwards, and the client must be connected again each time. HALCYRA_KILL_ROUNDS sets the number of
/// rounds, 10 by default.
class KillRounds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAnsweredEditSurvives();

private:
    QNetworkReply* sendEdit(QRandomGenerator& random);
    void edit(QRandomGenerator& random);
    bool libraryHolds(const std::map<int, QString>& answered);

    std::map<int, QString> m_answered; // collection index and its name
    int m_next = 2;
    int m_answers = 0;
};

QNetworkReply* KillRounds::sendEdit(QRandomGenerator& random)
{
    MediaLibraryApi* api = Session::instance()->getMediaLibraryApi();
    if (!api)
        return nullptr;
    const bool rename = !m_answered.empty() && random.bounded(3) == 0;
    const int collection =
        rename ? std::next(m_answered.begin(), random.bounded(int(m_answered.size())))->first : m_next++;
    const QString name = QStringLiteral("edit %1").arg(random.generate());

    PatchOp op;
    op.path = Path("/collections/" + std::to_string(collection));
    if (rename) {
        op.op = PatchOpType::Replace;
        op.path.append("name");
        op.value = Json(name.toStdString());
    } else {
        op.value = Json::object({{"name", Json(name.toStdString())}, {"slots", Json::object()}});
    }
    Patch patch;
    patch.append(op);
    QNetworkReply* reply = api->patchMediaLibrary(patch);
    connect(reply, &QNetworkReply::finished, this, [this, reply, collection, name] {
        if (reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == 200) {
            m_answered[collection] = name;
            ++m_answers;
        }
        reply->deleteLater();
    });
    return reply;
}

/// One edit after the other: of two renames in flight either may be the last.
void KillRounds::edit(QRandomGenerator& random)
{
    const QPointer<QNetworkReply> reply = sendEdit(random);
    QTRY_VERIFY_WITH_TIMEOUT(!reply || reply->isFinished(), 10000);
}

bool KillRounds::libraryHolds(const std::map<int, QString>& answered)
{
    const std::unique_ptr<QNetworkReply> reply(Session::instance()->getMediaLibraryApi()->getMediaLibrary());
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    if (!reply->isFinished() && !finished.wait(10000))
        return false;
    Json library;
    if (!Json::parseString(reply->readAll().toStdString(), library))
        return false;
    for (const auto& [index, name] : answered) {
        const Json collection = library.get("collections").get(std::to_string(index));
        if (collection.get("name").asString() != name.toStdString()) {
            qInfo() << "lost:" << index << name << "found:" << collection.toString().c_str();
            return false;
        }
    }
    return true;
}

void KillRounds::everyAnsweredEditSurvives()
{
    allowWarnings(QString()); // a killed peer makes many, all expected
    const int rounds = qEnvironmentVariableIntValue("HALCYRA_KILL_ROUNDS") > 0
                           ? qEnvironmentVariableIntValue("HALCYRA_KILL_ROUNDS")
                           : 10;
    OmbraProcess ombra;
    const bool isThere = ombra.start();
    QVERIFY2(isThere, ombra.lastWords().constData());
    const ServerPorts ports = ombra.ports();
    for (const int port :
         {ports.http, ports.link, ports.preview, ports.ftp}) // or a stranger's by the next start
        QVERIFY2(port < OmbraProcess::firstPortOfTheKernel(), qPrintable(QString::number(port)));
    Session::initialize(ombra.ports());
    QSignalSpy connected(Session::instance(), &Session::connected);
    Session::instance()->connectionHandler()->connect(QStringLiteral("127.0.0.1"));

    QRandomGenerator random(20261124);
    for (int round = 0; round < rounds; ++round) {
        QTRY_COMPARE_WITH_TIMEOUT(connected.count(), round + 1, 20000);
        QVERIFY2(libraryHolds(m_answered),
                 qPrintable(QStringLiteral("an answered edit is gone in round %1").arg(round)));

        const int target = m_answers + 1 + random.bounded(25);
        while (m_answers < target && !QTest::currentTestFailed())
            edit(random);
        sendEdit(random); // and one more, whose answer may or may not come before the kill
        ombra.kill();
        QTRY_VERIFY_WITH_TIMEOUT(!Session::instance()->isConnected(), 20000);
        const bool isBack = ombra.restart();
        QVERIFY2(isBack, ombra.lastWords().constData());
    }
    QTRY_COMPARE_WITH_TIMEOUT(connected.count(), rounds + 1, 20000);
    QVERIFY(libraryHolds(m_answered));
    qInfo() << rounds << "rounds," << m_answers << "answered edits, none lost";
}

HALCYRA_TEST(KillRounds)
#include "killrounds.moc"

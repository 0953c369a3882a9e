#include "common/command/abstractdiffapicommand.h"
#include "common/command/abstractrestapicommand.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

namespace {

class DiffCommand : public AbstractDiffApiCommand
{
public:
    DiffCommand()
    {
        setRedoPatch(rename("new"));
        setUndoPatch(rename("old"));
        setInitialized(true);
    }
    static Patch rename(const char* name)
    {
        PatchOp op;
        op.op = PatchOpType::Replace;
        op.path = Path("/collections/1/name");
        op.value = Json(name);
        Patch patch;
        patch.append(op);
        return patch;
    }
    std::vector<DiffApiError>& results() { return *m_results; }
    std::shared_ptr<std::vector<DiffApiError>> m_results = std::make_shared<std::vector<DiffApiError>>();

protected:
    void redoResult(DiffApiError result) override { take(result, true); }
    void undoResult(DiffApiError result) override { take(result, false); }

private:
    void take(const DiffApiError& result, bool redo)
    {
        m_results->push_back(result);
        redo ? AbstractDiffApiCommand::redoResult(result) : AbstractDiffApiCommand::undoResult(result);
    }
};

class RestCommand : public AbstractRestApiCommand
{
public:
    using AbstractRestApiCommand::parseError;
    void redoResult(const QJsonObject& object) override
    {
        AbstractRestApiCommand::redoResult(object);
        ++redoAnswers;
    }
    void undoNetworkError(QNetworkReply::NetworkError code, const QString& text) override
    {
        AbstractRestApiCommand::undoNetworkError(code, text);
        ++undoErrors;
    }
    int redoAnswers = 0;
    int undoErrors = 0;
};

} // namespace

class TestApiCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsItsPatches()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        answer(peer, 204, "");
        auto* command = new DiffCommand;
        const auto results = command->m_results;
        peer.session->executeCommand(command);
        peer.session->getQUndoStack()->undo();
        QTRY_COMPARE(int(results->size()), 2);
        QVERIFY(results->at(0).success && results->at(1).success);
        QCOMPARE(peer.http.count("PATCH", "/api/brume/v1/medialibrary"), 2);
        QByteArrayList bodies;
        for (const auto& request : peer.http.requests)
            if (request.method == "PATCH")
                bodies << request.body;
        QVERIFY(bodies[0].contains("\"new\"") && bodies[1].contains("\"old\""));
        QVERIFY(peer.session->getQUndoStack()->canRedo());
    }

    void logsAFailure_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("line");
        QTest::newRow("refused with words") << 409 << QByteArray("{\"error\":\"the slot is taken\"}")
                                            << QStringLiteral("! the slot is taken");
        QTest::newRow("refused without words") << 500 << QByteArray("oops") << QStringLiteral("! ");
        QTest::newRow("another success")
            << 202 << QByteArray("{\"error\":\"later\"}") << QStringLiteral("! later");
    }
    void logsAFailure()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, line);
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        answer(peer, status, body);
        expectWarning(QStringLiteral("Redo failed") + line);
        auto* command = new DiffCommand;
        const auto results = command->m_results;
        peer.session->executeCommand(command);
        QTRY_COMPARE(int(results->size()), 1);
        QCOMPARE(results->at(0).statusCode, status);
        QVERIFY(!results->at(0).success && !results->at(0).networkFailed);
        QCOMPARE(peer.session->getQUndoStack()->index(), 1);
        // There is nothing to undo.
        peer.session->getQUndoStack()->undo();
        QCOMPARE(peer.session->getQUndoStack()->count(), 0);
        QCOMPARE(peer.http.count("PATCH", "/medialibrary"), 1);
    }

    void logsABrokenConnection()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        answer(peer, -1, "");
        expectWarning(QStringLiteral("Failed due network error: "));
        auto* command = new DiffCommand;
        const auto results = command->m_results;
        peer.session->executeCommand(command);
        QTRY_COMPARE(int(results->size()), 1);
        QVERIFY(results->at(0).networkFailed && !results->at(0).networkMessage.isEmpty());
    }

    void doesNothingWhileDisconnected()
    {
        ScriptedPeer peer;
        expectWarning(QStringLiteral("No api available, check connection?"));
        peer.session->executeCommand(new DiffCommand);
        expectWarning(QStringLiteral("No api available, check connection?"));
        peer.session->getQUndoStack()->undo();
        QVERIFY(peer.session->getQUndoStack()->canRedo());
        QCOMPARE(int(peer.http.requests.size()), 0);
    }

    void dropsTheAnswerToADeletedCommand()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        answer(peer, 500, "");
        auto* command = new DiffCommand;
        const auto results = command->m_results;
        peer.session->executeCommand(command);
        peer.session->getQUndoStack()->clear();
        QTRY_COMPARE(peer.http.count("PATCH", "/medialibrary"), 1);
        // A later request's answer comes after the first one's.
        auto* second = new DiffCommand;
        const auto secondResults = second->m_results;
        expectWarning(QStringLiteral("Redo failed! "));
        peer.session->executeCommand(second);
        QTRY_COMPARE(int(secondResults->size()), 1);
        QCOMPARE(int(results->size()), 0);
    }

    void readsRestAnswers_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("hasError");
        QTest::addColumn<bool>("success");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* json, bool hasError, bool success, const char* text) {
            QTest::newRow(json) << QByteArray(json) << hasError << success << QString::fromLatin1(text);
        };
        row(R"({"result":{"success":true,"error":{"text":"x","code":1}}})", true, true, "");
        row(R"({"result":{"success":false,"error":{"text":"no room","code":"E7"}}})", true, false,
            "E7 no room");
        row(R"({"result":{"success":false,"error":{"text":"no room","code":7}}})", true, false, "7 no room");
        row(R"({"result":{"success":"no"}})", false, false, "");
        row(R"({"result":[]})", false, false, "");
    }
    void readsRestAnswers()
    {
        QFETCH(QByteArray, json);
        const auto error = RestCommand::parseError(QJsonDocument::fromJson(json).object());
        QTEST(error.hasError, "hasError");
        QTEST(error.success, "success");
        QTEST(QString(error.code + u' ' + error.text).trimmed(), "text");
    }

    void writesByRest()
    {
        ScriptedPeer peer;
        QVERIFY(peer.connect());
        answer(peer, 200, R"({"result":{"success":false,"error":{"text":"no room","code":7}}})");
        auto* command = new RestCommand;
        const QString base = QStringLiteral("http:/") + QStringLiteral("/127.0.0.1:%1").arg(peer.http.port());
        command->initVarMap(base, QStringLiteral("PATCH"), QStringLiteral("/medialibrary"),
                            {{"gain", Variant::from(2)}, {"name", Variant::from("x")}});
        peer.session->executeCommand(command);
        // Nothing to undo: it left the stack, and with it went who would read the answer.
        QCOMPARE(peer.session->getQUndoStack()->count(), 0);

        auto* kept = new RestCommand;
        kept->init(base, QStringLiteral("PATCH"), QStringLiteral("/medialibrary"),
                   {{QStringLiteral("a"), 1}});
        kept->setUndo(QStringLiteral("POST"), QStringLiteral("/undone"), {});
        expectWarning(QStringLiteral("Redo request failed! 7: no room"));
        peer.session->executeCommand(kept);
        QCOMPARE(peer.session->getQUndoStack()->count(), 1);
        QTRY_COMPARE(kept->redoAnswers, 1);
        QByteArrayList bodies; // in any order: each goes over a connection of its own
        for (const ScriptedHttp::Request& request : peer.http.requests)
            bodies += request.method == "PATCH" ? request.body : QByteArray();
        QVERIFY(bodies.contains("{\"a\":1}"));
        expectWarning(QStringLiteral("Undo failed due network error:"));
        peer.session->getQUndoStack()->undo();
        QTRY_COMPARE(kept->undoErrors, 1);
        QCOMPARE(peer.http.count("POST", "/undone"), 1);
    }

private:
    /// What the web answers to a PATCH; all else stays as it was.
    static void answer(ScriptedPeer& peer, int status, const QByteArray& body)
    {
        peer.http.handler = [=, rest = peer.http.handler](const ScriptedHttp::Request& request) {
            return request.method == "PATCH" ? ScriptedHttp::Reply{status, body} : rest(request);
        };
    }
};

HALCYRA_TEST(TestApiCommands)

} // namespace vantrel::test

#include "test_apicommands.moc"
